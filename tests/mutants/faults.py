# SPDX-License-Identifier: MIT
"""Generates the faults of a source file and reads the list of accepted ones."""

from dataclasses import dataclass
from pathlib import Path

from operators import OPERATORS
from structure import Source


@dataclass(frozen=True)
class Fault:
    path: str  # from the top of the tree
    line: int
    operator: str
    start: int
    end: int
    replacement: str
    before: str  # the affected lines, without the fault
    after: str

    def applied(self, text: str) -> str:
        return text[: self.start] + self.replacement + text[self.end :]

    @property
    def key(self) -> tuple[str, str, str]:
        """Returns its key in the list of accepted faults, which does not depend on line numbers."""
        return self.path, _squeezed(self.before), _squeezed(self.after)


def faults_of(path: str, text: str) -> list[Fault]:
    """Returns all faults that the operators can make in a file, ordered by position."""
    source = Source(text)
    found = {}
    for operator, edits in OPERATORS.items():
        for start, end, replacement in edits(source):
            found.setdefault((start, end, replacement), operator)
    faults = {}
    for (start, end, replacement), operator in sorted(found.items()):
        first = text.rfind("\n", 0, start) + 1
        last = text.find("\n", end)
        before, after = text[first:last], text[first:start] + replacement + text[end:last]
        line = text.count("\n", 0, start) + 1
        faults.setdefault((first, after), Fault(path, line, operator, start, end, replacement, before, after))
    return list(faults.values())


def accepted_faults(path: Path) -> dict[tuple[str, str, str], str]:
    """Returns the reasons of the accepted faults by key. Exits when an entry is malformed."""
    accepted = {}
    for number, block in enumerate(path.read_text().split("\n\n")):
        lines = [line for line in block.splitlines() if line and not line.startswith("#")]
        if not lines:
            continue
        entry = dict(line.split(": ", 1) for line in lines)
        if sorted(entry) != ["becomes", "file", "line", "why"]:
            raise SystemExit(f"{path}: entry {number} needs the lines file, line, becomes and why")
        accepted[entry["file"].strip(), _squeezed(entry["line"]), _squeezed(entry["becomes"])] = entry["why"]
    return accepted


def _squeezed(text: str) -> str:
    """Returns the text on one line, without its middle when it is long."""
    line = " ".join(text.split())
    return line if len(line) <= 240 else line[:120] + " ... " + line[-100:]
