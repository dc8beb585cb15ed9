#!/usr/bin/env python3
"""Holds the project's text files against its conventions.

Usage: check_conventions.py SOURCE_DIRECTORY
"""

import os
import pathlib
import re
import sys

# Everything that is needed to understand the project stands in it: no text defers to one that the reader does not have.
OUTSIDE_TEXT = re.compile(
    r"\b(the|this|a|per|see|by) spec(ification)?\b|\bspec\.md\b|\bspecification (says|states|requires|part)\b"
    r"|\bParts? [1-6]\.[1-7]\b",
    re.IGNORECASE,
)
# Nor does any file hold a path of its author's machine.
MACHINE_PATH = re.compile(r"(^|[^A-Za-z0-9._/-])/(work|root|home)/")
SKIPPED = {".git", "build", "out", "migrated", "__pycache__"}


def check_header(text):
    findings = []
    lines = text.splitlines()
    if not lines or lines[0] != "#pragma once":
        findings.append("1: a header begins with #pragma once")
    if not any(line.startswith("/// @file") for line in lines[:5]):
        findings.append("1: a header tells under /// @file what it holds")
    return findings


def check_text(path, text):
    """Every finding in one file, as "line: what"."""
    findings = check_header(text) if path.suffix == ".h" else []
    for number, line in enumerate(text.splitlines(), 1):
        if OUTSIDE_TEXT.search(line):
            findings.append(f"{number}: speaks of a text outside the project")
        if MACHINE_PATH.search(line):
            findings.append(f"{number}: holds a path of one machine")
    return findings


def text_files(root):
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if name not in SKIPPED and not name.startswith("build")]
        for name in names:
            path = pathlib.Path(folder) / name
            if path.is_symlink() or not path.is_file():
                continue
            data = path.read_bytes()
            if b"\0" not in data:
                yield path, data.decode("utf-8", errors="replace")


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    count = 0
    findings = []
    for path, text in text_files(root):
        count += 1
        findings += [f"{path.relative_to(root)}:{finding}" for finding in check_text(path, text)]
    print("\n".join(findings))
    print(f"{count} files, {len(findings)} findings")
    return 1 if findings or not count else 0


if __name__ == "__main__":
    sys.exit(main())
