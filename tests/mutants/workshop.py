# SPDX-License-Identifier: MIT
"""A copy of the tree with a build folder of its own, in which faults are injected and tested."""

import json
import math
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass, field
from pathlib import Path

from faults import Fault

_OPTIONS = (
    "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_COMPILER=clang++",
    "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld",
)  # fmt: skip
# No warnings: a fault that only a warning reveals still has to be caught by a test.
_QUICK = "-O0 -w -D_GLIBCXX_ASSERTIONS"
_SANITIZED = "-O0 -g1 -w"
_MEMORY_LIMIT = 4 << 20  # KiB: an endless loop must not use up the memory
_LEAST_TIME = 5  # seconds of CPU time
_PATIENCE = 120  # seconds of wall time for tests that wait or get little CPU time
_SLOW = 0.5  # seconds of CPU time from which on a test is slow


@dataclass(frozen=True)
class Suite:
    """A test program or a check, as CTest runs it."""

    command: list[str]
    environment: dict[str, str]
    fails_on: list[str]
    folder: str

    @property
    def is_program(self) -> bool:
        """Returns whether this is a test program, which accepts GoogleTest's options, and not a script."""
        return len(self.command) == 1


@dataclass
class Measure:
    """The CPU time of a suite without a fault, in seconds."""

    duration: float
    tests: dict[str, tuple[str, float]] = field(default_factory=dict)  # file and duration by name

    def stages(self, source: str) -> list[list[str]]:
        """Returns the tests in groups: those named after the source, other fast ones, and slow ones."""
        near = re.compile(rf"(^|_){re.escape(Path(source).stem)}(_|\.)")
        stages: list[list[str]] = [[], [], []]
        for name, (file, duration) in self.tests.items():
            stages[0 if near.search(file) else 1 if duration < _SLOW else 2].append(name)
        return [stage for stage in stages if stage]


class Workshop:
    def __init__(self, checkout: Path, place: Path, sanitized: bool = False):
        self._checkout = checkout
        self.tree = place / "tree"
        self._build = place / "build"
        self._scratch = place / "tmp"
        self._sanitized = sanitized
        self._changed = ""  # the source that has a fault
        self._original = ""
        self._suites: dict[str, Suite] = {}
        self._environment = {
            **os.environ,
            "CCACHE_BASEDIR": str(place),
            "CCACHE_NOHASHDIR": "1",
            "QT_QPA_PLATFORM": "offscreen",
            "TMPDIR": str(self._scratch),
            "GTEST_FAIL_FAST": "1",
            "GTEST_BRIEF": "1",
        }
        self._environment.pop("TESSAREL_TEST_LONG", None)

    def prepare(self, targets: list[str]) -> None:
        """Makes the copy equal to the checkout and builds the targets. Exits when the build fails."""
        shutil.rmtree(self._scratch, ignore_errors=True)
        for folder in (self.tree, self._build, self._scratch):
            folder.mkdir(parents=True, exist_ok=True)
        self._copy_checkout()
        flags = _SANITIZED if self._sanitized else _QUICK
        sanitized = "ON" if self._sanitized else "OFF"
        options = [*_OPTIONS, f"-DTESSAREL_SANITIZE={sanitized}", f"-DTESSAREL_SHARE_HEADERS={sanitized}"]
        # Keeps the job's path out of the objects, so that all jobs share the compiler cache.
        compiling = f"-DCMAKE_CXX_FLAGS={flags} -ffile-prefix-map={self.tree.parent}/="
        added = f"-DCMAKE_PROJECT_INCLUDE={self.tree}/tests/mutants/build.cmake"
        self._run_or_exit(["cmake", "-S", str(self.tree), "-B", str(self._build), added, compiling, *options])
        self._run_or_exit(["ninja", "-C", str(self._build), *targets])
        self._find_suites()

    def measure(self, name: str) -> Measure:
        """Runs the suite without a fault and returns its CPU time. Exits when it fails."""
        report = self._scratch / "report.json"
        begin, used = time.monotonic(), _processor_time()
        output = self._failure(name, [f"--gtest_output=json:{report}"], limit=None)
        used = _processor_time() - used
        if output is not None:
            raise SystemExit(f"{name} fails without any fault:\n{output[-4000:]}")
        measured = Measure(used)
        if report.exists():
            share = used / (time.monotonic() - begin)
            for group in json.loads(report.read_text())["testsuites"]:
                for test in group["testsuite"]:
                    test_name = f"{group['name']}.{test['name']}"
                    duration = share * float(test["time"].rstrip("s"))
                    measured.tests[test_name] = Path(test["file"]).name, duration
            report.unlink()
        return measured

    def inject(self, fault: Fault) -> None:
        """Injects the fault into the copy, after removing the previous one."""
        is_same = self._changed == fault.path
        if not is_same:
            self.restore()
            self._changed, self._original = fault.path, (self.tree / fault.path).read_text()
        (self.tree / fault.path).write_text(fault.applied(self._original))
        # The compiler cache only helps to rebuild the previous source, which is restored at this point.
        if is_same:
            self._environment["CCACHE_DISABLE"] = "1"
        else:
            self._environment.pop("CCACHE_DISABLE", None)

    def restore(self) -> None:
        if self._changed:
            (self.tree / self._changed).write_text(self._original)
        self._changed = ""

    def builds(self, targets: list[str]) -> bool:
        return self._run(["ninja", "-C", str(self._build), *targets]).returncode == 0

    def notices(self, name: str, measured: Measure, source: str) -> bool:
        """Runs the suite, tests of the changed source first and slow ones last. Returns whether it fails."""
        for tests in measured.stages(source):
            arguments = ["--gtest_filter=" + ":".join(tests)]
            if self._failure(name, arguments, sum(measured.tests[test][1] for test in tests)) is not None:
                return True
        return not measured.tests and self._failure(name, [], measured.duration) is not None

    def apply(self, patch: Path) -> bool:
        return self._run(["git", "apply", "--whitespace=nowarn", str(patch)], cwd=self.tree).returncode == 0

    def synchronize(self) -> None:
        self._copy_checkout()

    def _find_suites(self) -> None:
        listed = self._run_or_exit(["ctest", "--test-dir", str(self._build), "-C", "mutants", "--show-only=json-v1"])
        for entry in json.loads(listed)["tests"]:
            properties = {each["name"]: each["value"] for each in entry["properties"]}
            self._suites[entry["name"]] = Suite(
                entry.get("command", []),
                dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", [])),
                properties.get("FAIL_REGULAR_EXPRESSION", []),
                properties.get("WORKING_DIRECTORY", str(self._build)),
            )

    def _failure(self, name: str, arguments: list[str], limit: float | None) -> str | None:
        """Runs a suite. Returns its output when it fails or exceeds `limit` seconds by far, else None."""
        suite = self._suites[name]
        memory = "unlimited" if self._sanitized else str(_MEMORY_LIMIT)
        seconds = "unlimited" if limit is None else str(math.ceil(max(_LEAST_TIME, 5 * limit)))
        limited = ["bash", "-c", f'ulimit -c 0 -v {memory} -t {seconds}; exec "$@"', "bash"]
        command = limited + suite.command + (arguments if suite.is_program else [])
        patience = None if limit is None else _PATIENCE + 50 * limit
        with tempfile.TemporaryFile(dir=self._scratch) as output:
            process = subprocess.Popen(
                command,
                cwd=suite.folder,
                env={**self._environment, **suite.environment},
                stdin=subprocess.DEVNULL,
                stdout=output,
                stderr=subprocess.STDOUT,
                start_new_session=True,
            )
            try:
                failed = process.wait(patience) != 0
            except subprocess.TimeoutExpired:
                failed = True
            finally:
                _end_group(process)
            output.seek(0)
            text = output.read().decode(errors="replace")
        failed = failed or any(re.search(expression, text) for expression in suite.fails_on)
        return text if failed else None

    def _copy_checkout(self) -> None:
        """Copies the files that git lists, but only those that differ: ninja compares their times."""
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=self._checkout,
            capture_output=True,
            check=True,
        )
        wanted = {Path(os.fsdecode(name)) for name in listed.stdout.split(b"\0") if name}
        wanted = {path for path in wanted if (self._checkout / path).is_file()}
        for path in list(self.tree.rglob("*")):
            if path.is_file() and path.relative_to(self.tree) not in wanted:
                path.unlink()
        for path in wanted:
            source, copy = self._checkout / path, self.tree / path
            if not copy.exists() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, copy)
        self._changed = ""

    def _run(self, command: list[str], cwd: Path | None = None) -> subprocess.CompletedProcess:
        # The copy lies inside the checkout, whose repository git must not find from there.
        environment = {**self._environment, "GIT_CEILING_DIRECTORIES": str(self.tree.parent)}
        return subprocess.run(command, cwd=cwd, env=environment, text=True, capture_output=True)

    def _run_or_exit(self, command: list[str]) -> str:
        done = self._run(command)
        if done.returncode != 0:
            raise SystemExit(f"{' '.join(command)} failed:\n{(done.stdout + done.stderr)[-4000:]}")
        return done.stdout


def _processor_time() -> float:
    """Returns the CPU time of all child processes that have ended, in seconds."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def _end_group(process: subprocess.Popen) -> None:
    """Kills the process group of a test program, with everything it has left running."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()
