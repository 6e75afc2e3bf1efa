#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the table of tested window managers in docs/platforms.md from a run of the desktop tests.

    matrix.py check|write ROOT BUILD LOG

BUILD holds the test programs, LOG is what ctest has printed. A cell has a tick if tests of that kind exist for
the window manager and the entry of ctest that runs them has passed. "check" fails if the table in the document
is another one.
"""

import pathlib
import re
import subprocess
import sys

# A column of the table, the program and the suites of its tests.
COLUMNS = [
    ("hot keys", "desktop_test", ("SnapTest", "KeysTest", "TargetsTest")),
    ("kinds of windows", "desktop_test", ("PlacementTest",)),
    ("arranging", "desktop_test", ("ArrangeTest",)),
    ("several displays", "desktop_test", ("DisplaysTest",)),
    ("stopped programs", "desktop_test", ("StoppedProgramTest",)),
    ("drags", "desktop_test", ("DragTest", "AttentiveDragTest")),
    ("corners", "desktop_test", ("DragCornersTest",)),
    ("pulling off", "desktop_test", ("PulledOffTest",)),
    ("resizing", "desktop_test", ("BorderDragTest",)),
    ("new windows", "homes_test", ("HomesTest",)),
    ("settings in front", "settings_front_test", ("SettingsFrontTest",)),
]
NAMES = {"windowmaker": "Window Maker"}
BEGIN = "<!-- The table is made by tests/docs/matrix.py. -->"
END = "<!-- End of the table. -->"


def listed(program):
    """Returns the tests of a program as pairs of suite and parameter, such as ("SnapTest", "openbox")."""
    output = subprocess.run([program, "--gtest_list_tests"], capture_output=True, text=True, check=True).stdout
    tests, suite = [], ""
    for line in output.splitlines():
        if not line.startswith(" "):
            suite = line.rstrip(".").split("/")[-1]
        elif "/" in line:
            tests.append((suite, line.split("#")[0].strip().split("/")[-1]))
    return tests


def entry_of(program, parameter):
    """Returns the entry of ctest that runs the tests with this parameter."""
    manager, _, kind = parameter.partition("_")
    if program == "desktop_test":
        return ("placement_" if kind else "desktop_") + manager
    return program.removesuffix("_test") + "_" + manager


def table(build, log):
    """Returns the table as lines of Markdown."""
    passed = set(re.findall(r"Test +#\d+: (\S+) [. ]*Passed", log.read_text()))
    tests = {program: listed(build / program) for program in {column[1] for column in COLUMNS}}
    managers = []
    for suite, parameter in tests["desktop_test"]:
        if suite == "SnapTest" and parameter not in managers:
            managers.append(parameter)
    lines = ["| | " + " | ".join(column[0] for column in COLUMNS) + " |", "|---|" + ":-:|" * len(COLUMNS)]
    for manager in managers:
        cells = []
        for _, program, suites in COLUMNS:
            entries = {entry_of(program, parameter) for suite, parameter in tests[program]
                       if suite in suites and parameter.split("_")[0] == manager}
            cells.append("✓" if entries and entries <= passed else "")
        lines.append(f"| {NAMES.get(manager, manager)} | " + " | ".join(cells) + " |")
    return lines


def main():
    mode, root, build, log = sys.argv[1], *map(pathlib.Path, sys.argv[2:5])
    document = root / "docs/platforms.md"
    text = document.read_text()
    before, _, rest = text.partition(BEGIN + "\n")
    _, _, after = rest.partition(END)
    made = before + BEGIN + "\n" + "\n".join(table(build, log)) + "\n" + END + after
    if mode == "write":
        document.write_text(made)
    elif made != text:
        print(f"FAILED: the table in {document} is not that of this run; matrix.py write makes it")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
