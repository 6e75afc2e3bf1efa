# SPDX-License-Identifier: MIT
"""Injects small faults into the product and checks that its tests catch them. script/mutants starts it."""

import argparse
import fcntl
import os
import random
import signal
import subprocess
import sys
import threading
import time
from collections import Counter
from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path

from faults import Fault, accepted_faults, faults_of
from workshop import Measure, Workshop

HERE = Path(__file__).resolve().parent
CHECKOUT = HERE.parent.parent
PLACE = CHECKOUT / "build" / "mutants"
CHUNK = 12  # faults of one file that a job takes at a time

KILLED, SURVIVED, DROPPED = "killed", "survived", "dropped"


@dataclass(frozen=True)
class Folder:
    sources: tuple[str, ...]
    suites: tuple[str, ...]  # the most likely to catch a fault and cheapest first


MACOS_SUITES = ("macos_test", "macos_contract_test", "macos_application_test")
FOLDERS = {
    "model": Folder(("src/model",), ("model_test",)),
    "ports": Folder(("src/ports",), ("ports_test", "sim_test", "engine_test", "snap_test")),
    "engine": Folder(("src/engine",), ("engine_test", "engine_session_test")),
    "snap": Folder(("src/snap",), ("snap_test",)),
    "placer": Folder(("src/placer",), ("placer_test",)),
    "app": Folder(("src/app",), ("app_test",)),
    "look": Folder(("src/look",), ("look_test", "settings_ui_test")),
    "settings_ui": Folder(("src/settings_ui",), ("settings_ui_test", "recorder_keys_test")),
    "platform/macos": Folder(
        ("src/platform/macos", "src/program/mac_program.cpp", "src/program/main_macos.cpp"), MACOS_SUITES
    ),
}


@dataclass(frozen=True)
class Outcome:
    folder: str
    fault: Fault
    result: str
    suite: str = ""


class Trial:
    """Tests faults in several workshops in parallel."""

    def __init__(self, jobs: int, folders: list[str]):
        self._targets = {name: list(FOLDERS[name].suites) for name in folders}
        self._workshops = [Workshop(CHECKOUT, PLACE / f"job-{number}") for number in range(jobs)]
        self._measured: dict[str, Measure] = {}
        self._lock = threading.Lock()

    def prepare(self) -> None:
        names = list(dict.fromkeys(name for suites in self._targets.values() for name in suites))
        for number, workshop in enumerate(self._workshops, 1):
            print(f"Building {', '.join(names)} ({number} of {len(self._workshops)})", flush=True)
            workshop.prepare(names)
        self._measured = {name: self._workshops[0].measure(name) for name in names}
        print(", ".join(f"{name} {each.duration:.1f} s" for name, each in self._measured.items()), flush=True)

    def run(self, chosen: list[tuple[str, Fault]]) -> list[Outcome]:
        by_file: dict[str, list[tuple[str, Fault]]] = {}
        for folder, fault in chosen:
            by_file.setdefault(fault.path, []).append((folder, fault))
        chunks = [each[at : at + CHUNK] for each in by_file.values() for at in range(0, len(each), CHUNK)]
        outcomes: list[Outcome] = []
        failures: list[BaseException] = []

        def work(workshop: Workshop) -> None:
            try:
                while not failures:
                    with self._lock:
                        if not chunks:
                            return
                        chunk = chunks.pop(0)
                    for folder, fault in chunk:
                        outcome = self._try(workshop, folder, fault)
                        with self._lock:
                            outcomes.append(outcome)
                            show(outcome)
            except BaseException as failure:
                failures.append(failure)

        threads = [threading.Thread(target=work, args=(workshop,)) for workshop in self._workshops]
        for thread in threads:
            thread.start()
        try:
            for thread in threads:
                thread.join()
        except BaseException as interruption:
            failures.append(interruption)
            raise
        if failures:
            raise failures[0]
        return outcomes

    def _try(self, workshop: Workshop, folder: str, fault: Fault) -> Outcome:
        workshop.inject(fault)
        for name in self._targets[folder]:
            if not workshop.builds([name]):
                return Outcome(folder, fault, DROPPED)
            if workshop.notices(name, self._measured[name], fault.path):
                return Outcome(folder, fault, KILLED, name)
        return Outcome(folder, fault, SURVIVED)


def show(outcome: Outcome) -> None:
    fault = outcome.fault
    head = f"{fault.path}:{fault.line}: {fault.operator}"
    with (PLACE / "outcomes.txt").open("a") as log:
        log.write(f"{outcome.result} {head} {outcome.suite}\n{difference(fault)}")
    if outcome.result == SURVIVED:
        print(f"survived {head}\n{difference(fault)}", end="", flush=True)


def difference(fault: Fault) -> str:
    lines = [f"    - {line}" for line in fault.before.splitlines()]
    lines += [f"    + {line}" for line in fault.after.splitlines()]
    return "\n".join(lines) + "\n"


def try_patches() -> int:
    """Tests the faults in the patches one by one. Returns the number of faults that no suite catches."""
    checks = ("macos_analyze", "macos_compile")
    workshop = Workshop(CHECKOUT, PLACE / "patches", sanitized=True)
    print(f"Building {', '.join(MACOS_SUITES)} with the sanitizers", flush=True)
    workshop.prepare(list(MACOS_SUITES))
    measured = {name: workshop.measure(name) for name in (*MACOS_SUITES, *checks)}
    unnoticed = 0
    for patch in sorted((HERE / "patches").glob("*.patch")):
        result = _try_patch(workshop, patch, measured)
        workshop.synchronize()
        unnoticed += not result.startswith("killed")
        print(f"{patch.stem}: {result}", flush=True)
    return unnoticed


def _try_patch(workshop: Workshop, patch: Path, measured: dict[str, Measure]) -> str:
    if not workshop.apply(patch):
        return "does not apply any more"
    if not workshop.builds(list(MACOS_SUITES)):
        return "does not compile"
    for name in measured:
        if workshop.notices(name, measured[name], ""):
            return f"killed by {name}"
    return "survived"


def all_faults(folders: list[str]) -> list[tuple[str, Fault]]:
    listed = subprocess.run(
        ["git", "ls-files", "--cached", "--others", "--exclude-standard", "src"],
        cwd=CHECKOUT, capture_output=True, text=True, check=True,
    )  # fmt: skip
    found = []
    for path in map(Path, sorted(set(listed.stdout.splitlines()))):
        if path.suffix not in (".cpp", ".h", ".mm") or not (CHECKOUT / path).exists():
            continue
        for name in folders:
            if any(path.is_relative_to(source) for source in FOLDERS[name].sources):
                text = (CHECKOUT / path).read_text()
                found += [(name, fault) for fault in faults_of(str(path), text)]
    return found


def stale_entries() -> list[tuple[str, str, str]]:
    """Returns the entries of accepted.txt that are faults no more."""
    accepted = accepted_faults(HERE / "accepted.txt")
    return sorted(accepted.keys() - {fault.key for _, fault in all_faults(list(FOLDERS))})


def selected(arguments: list[str]) -> list[tuple[str, Fault]]:
    """Returns the faults of the named folders, files and lines; all faults without names. Exits when a name
    has no fault."""
    wanted: list[tuple[str, Fault]] = []
    every = all_faults(list(FOLDERS))
    for argument in arguments or list(FOLDERS):
        name, _, line = argument.partition(":")
        if not name.startswith("src/") and name not in FOLDERS:
            name = os.path.relpath(Path.cwd() / name, CHECKOUT)
        name = name.removeprefix("src/").rstrip("/")
        some = [
            (folder, fault)
            for folder, fault in every
            if (folder == name or fault.path == f"src/{name}") and line in ("", str(fault.line))
        ]
        if not some:
            raise SystemExit(f"mutants: no fault can be made in {argument}")
        wanted += some
    return list(dict.fromkeys(wanted))


def drawn(faults: list[tuple[str, Fault]], seed: int) -> Iterator[tuple[str, Fault]]:
    """Yields the faults in random order. Folders take turns, and each line of a folder yields one fault
    before any line yields a second."""
    chance = random.Random(seed)
    folders: dict[str, dict[tuple[str, int], list[Fault]]] = {}
    for folder, fault in faults:
        folders.setdefault(folder, {}).setdefault((fault.path, fault.line), []).append(fault)
    orders = []
    for folder, lines in folders.items():
        for faults_of_line in lines.values():
            chance.shuffle(faults_of_line)
        order = list(lines.values())
        chance.shuffle(order)
        deepest = max(map(len, order))
        orders.append([(folder, each[depth]) for depth in range(deepest) for each in order if depth < len(each)])
    for turn in range(max(map(len, orders))):
        for order in orders:
            if turn < len(order):
                yield order[turn]


def run_sample(trial: Trial, faults: list[tuple[str, Fault]], count: int, seed: int) -> list[Outcome]:
    """Tests `count` random faults, replacing each one that does not compile."""
    order = drawn(faults, seed)
    outcomes: list[Outcome] = []
    while True:
        missing = count - sum(outcome.result != DROPPED for outcome in outcomes)
        batch = [next(order, None) for _ in range(missing)]
        batch = [each for each in batch if each]
        if not batch:
            return outcomes
        outcomes += trial.run(batch)


def summarize(outcomes: list[Outcome], accepted: Counter) -> tuple[int, int]:
    counts = Counter((outcome.folder, outcome.result) for outcome in outcomes)
    print(f"\n{'folder':<16}{'killed':>8}{'survived':>10}{'killed %':>10}{'accepted':>10}")
    folders = [name for name in FOLDERS if any(outcome.folder == name for outcome in outcomes)]
    rows = [(name, counts[name, KILLED], counts[name, SURVIVED], accepted[name]) for name in folders]
    rows.append(("all", *(sum(row[column] for row in rows) for column in (1, 2, 3))))
    for name, killed, survived, equivalent in rows:
        share = f"{100 * killed / (killed + survived):.1f}" if killed + survived else "-"
        print(f"{name:<16}{killed:>8}{survived:>10}{share:>10}{equivalent:>10}")
    return rows[-1][1], rows[-1][2]


def main() -> int:
    parser = argparse.ArgumentParser(prog="script/mutants", description=__doc__)
    parser.add_argument("sources", nargs="*", metavar="FILE", help="folder, file or file:line; else all")
    parser.add_argument("--sample", type=int, metavar="N", help="try N faults drawn at random")
    parser.add_argument(
        "--at-least", type=float, default=100, metavar="PERCENT", help="fail only if fewer are killed"
    )
    parser.add_argument("--seed", type=int, help="draw as in an earlier run")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1, help="faults to try at once")
    parser.add_argument("--list", action="store_true", help="print the faults and try none")
    parser.add_argument("--patches", action="store_true", help="try the faults of tests/mutants/patches")
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    PLACE.mkdir(parents=True, exist_ok=True)
    lock = (PLACE / "lock").open("w")
    if not options.list:
        fcntl.flock(lock, fcntl.LOCK_EX)  # only one run at a time may use the copies of the tree
    if options.patches:
        return 1 if try_patches() else 0

    faults = selected(options.sources)
    accepted = accepted_faults(HERE / "accepted.txt")
    stale = stale_entries()
    for path, line, becomes in stale:
        print(f"accepted.txt: no such fault in {path}: {line} -> {becomes}")
    skipped = Counter(folder for folder, fault in faults if fault.key in accepted)
    faults = [(folder, fault) for folder, fault in faults if fault.key not in accepted]
    if options.list:
        for _, fault in faults:
            print(f"{fault.path}:{fault.line}: {fault.operator}\n{difference(fault)}", end="")
        return 0

    begin = time.monotonic()
    (PLACE / "outcomes.txt").unlink(missing_ok=True)
    trial = Trial(options.jobs, list(dict.fromkeys(folder for folder, _ in faults)))
    trial.prepare()
    prepared = time.monotonic()
    if options.sample is None:
        outcomes = trial.run(faults)
    else:
        seed = random.randrange(10**6) if options.seed is None else options.seed
        print(f"Trying {options.sample} of {len(faults)} faults, seed {seed}", flush=True)
        outcomes = run_sample(trial, faults, options.sample, seed)
    killed, survived = summarize(outcomes, skipped)
    dropped = sum(outcome.result == DROPPED for outcome in outcomes)
    print(
        f"{dropped} more did not compile. {prepared - begin:.0f} s to build, "
        f"{time.monotonic() - prepared:.0f} s to try. All outcomes: build/mutants/outcomes.txt"
    )
    return 1 if stale or 100 * killed < options.at_least * (killed + survived) else 0


if __name__ == "__main__":
    sys.exit(main())
