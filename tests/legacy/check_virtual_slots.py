#!/usr/bin/env python3
"""Holds the order of the virtual operations against a table.

usage: check_virtual_slots.py TABLE COMPILER ARGUMENTS...

The compiler (g++) is run with the arguments and its class dump compared with the table, whose paragraphs are a class name
and one indented line per slot.
"""

import difflib
import pathlib
import re
import subprocess
import sys
import tempfile


def read_table(path):
    """The class names and slots of a table, one paragraph per class."""
    lines = [line for line in path.read_text().splitlines() if not line.startswith("#")]
    return [paragraph.splitlines() for paragraph in "\n".join(lines).strip().split("\n\n")]


def read_dump(command):
    """Maps each class to the functions of its virtual table as the compiler dumps it."""
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, "classes.txt")
        subprocess.run([*command, "-fsyntax-only", f"-fdump-lang-class={path}"], check=True)
        tables = re.findall(r"^Vtable for (\S+)\n((?:.+\n)*)", path.read_text(), re.MULTILINE)
    entry = re.compile(r"^\d+ +\(int \(\*\)\(\.\.\.\)\)(.*)$", re.MULTILINE)
    # Entries 0 and 1 are the offset to the top and the type information.
    return {name: [f"    {function}" for function in entry.findall(body)[2:]] for name, body in tables}


expected = read_table(pathlib.Path(sys.argv[1]))
actual = read_dump(sys.argv[2:])
differences = []
for name, *slots in expected:
    differences += difflib.unified_diff(slots, actual.get(name, []), "table", "compiler", name, name, lineterm="")
print(*differences, sep="\n")
sys.exit(1 if differences or len(expected) < 2 else 0)
