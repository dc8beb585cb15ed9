#!/usr/bin/env python3
"""Holds the project's text files against its conventions.

Usage: check_conventions.py SOURCE_DIRECTORY
"""

import os
import pathlib
import re
import sys

# No file holds a path of its author's machine.
MACHINE_PATH = re.compile(r"(^|[^A-Za-z0-9._/-])/(work|root|home)/")
SKIPPED = {".git", "build", "out", "migrated", "__pycache__"}


def check_text(path, text):
    """Every finding in one file, as "line: what"."""
    findings = []
    lines = text.splitlines()
    if path.suffix == ".h":
        if lines[:1] != ["#pragma once"]:
            findings.append("1: a header begins with #pragma once")
        if not any(line.startswith("/// @file") for line in lines[:5]):
            findings.append("1: a header tells under /// @file what it holds")
    for number, line in enumerate(lines, 1):
        if MACHINE_PATH.search(line):
            findings.append(f"{number}: holds a path of one machine")
    return findings


def text_files(root):
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if name not in SKIPPED and not name.startswith("build")]
        for path in (pathlib.Path(folder) / name for name in names if name not in SKIPPED):
            data = path.read_bytes() if path.is_file() and not path.is_symlink() else b"\0"
            if b"\0" not in data:
                yield path, data.decode("utf-8", errors="replace")


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    texts = list(text_files(root))
    findings = [f"{path.relative_to(root)}:{what}" for path, text in texts for what in check_text(path, text)]
    print("\n".join(findings))
    print(f"{len(texts)} files, {len(findings)} findings")
    return 1 if findings or not texts else 0


if __name__ == "__main__":
    sys.exit(main())
