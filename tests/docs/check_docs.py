#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the project's documents.

    check_docs.py links ROOT      every link to a file or a heading leads somewhere, every picture exists, and
                                  every script that is named exists
    check_docs.py spelling ROOT   prints the words that neither the British dictionary of aspell nor
                                  tests/docs/words.txt knows; code is left out
    check_docs.py commands ROOT   prints the commands of the program that the documents name, one a line
"""

import pathlib
import re
import subprocess
import sys

FENCE = re.compile(r"^```.*?^```$", re.M | re.S)
INDENTED = re.compile(r"(?:\A|\n)\n((?:    .*\n)+)")
CODE = re.compile(r"`([^`\n]+(?:\n[^`\n]+)?)`")
LINK = re.compile(r"\]\(([^)\s]+)\)")
COMMAND = re.compile(r"(?<![\w/.~-])tessarel((?: (?:--)?[\w-]+)+)")


def documents(root):
    """Returns the documents below `root` that belong to the project."""
    found = [*root.glob("*.md")]
    for folder in ("docs", "tests", "src", "packaging", "bench", "demo"):
        found += (root / folder).rglob("*.md")
    return sorted(found)


def anchors(document):
    """Returns the anchors of a document's headings, as GitHub makes them."""
    found = set()
    for heading in re.findall(r"^#+ (.*)$", FENCE.sub("", document.read_text()), re.M):
        text = re.sub(r"[^\w\- ]", "", LINK.sub("]", heading).lower())
        found.add(text.strip().replace(" ", "-"))
    return found


def broken_links(root):
    """Yields a line for each link and each script name that leads nowhere."""
    for document in documents(root):
        text = document.read_text()
        for target in LINK.findall(FENCE.sub("", text)):
            if re.match(r"[a-z]+:", target):
                continue
            name, _, anchor = target.partition("#")
            file = (document.parent / name) if name else document
            if not file.exists():
                yield f"{document.relative_to(root)}: {target} does not exist"
            elif anchor and file.suffix == ".md" and anchor not in anchors(file):
                yield f"{document.relative_to(root)}: there is no heading for {target}"
        for script in re.findall(r"\bscript/(\w+)", text):
            if not (root / "script" / script).exists():
                yield f"{document.relative_to(root)}: there is no script/{script}"


def prose(document):
    """Returns a document's text without code, addresses and commit names."""
    text = FENCE.sub("", document.read_text())
    for pattern in (INDENTED, CODE, LINK, re.compile(r"<[^>\s]+>|https?://\S+|\b[0-9a-f]{7}\b|\S+@\S+")):
        text = pattern.sub(" ", text)
    return text


def misspelt(root):
    """Yields a line for each unknown word of each document."""
    known = set((root / "tests/docs/words.txt").read_text().split())
    for document in documents(root):
        listed = subprocess.run(["aspell", "--lang=en_GB", "--encoding=utf-8", "--ignore=2", "list"],
                                input=prose(document), capture_output=True, text=True, check=True)
        for word in sorted(set(listed.stdout.split()) - known):
            yield f"{document.relative_to(root)}: {word}"


def commands(root):
    """Yields the commands that the documents name."""
    found = set()
    for document in documents(root):
        text = document.read_text()
        spans = [span.replace("\n", " ") for span in CODE.findall(FENCE.sub("", text))]
        for code in FENCE.findall(text) + INDENTED.findall(text) + spans:
            found.update("tessarel" + words for words in COMMAND.findall(code) if not words.endswith("-"))
    yield from sorted(found)


def main():
    what, root = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    if what == "commands":
        print("\n".join(commands(root)))
        return 0
    problems = list({"links": broken_links, "spelling": misspelt}[what](root))
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
