#!/usr/bin/env python3
"""Holds the order of the virtual operations against a table.

usage: check_virtual_slots.py TABLE COMPILER ARGUMENTS...

The compiler (g++) is run with the arguments and its class dump compared with the table, whose paragraphs are a class name
and one indented line per slot. With KT_PRINT_SLOTS set the table is printed as the compiler sees it.
"""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile


def read_table(text):
    """Maps each class of a table to its slots."""
    table = {}
    for line in text.splitlines():
        if line.startswith(" "):
            table[name].append(line.strip())
        elif line and not line.startswith("#"):
            name = line.strip()
            table[name] = []
    return table


def read_dump(text):
    """Maps each class of a g++ class dump to the functions of its virtual table."""
    table = {}
    for paragraph in re.split(r"\n\n", text):
        match = re.match(r"Vtable for (\S+)\n", paragraph)
        if match:
            # Entries 0 and 1 are the offset to the top and the type information.
            entries = re.findall(r"^\d+ +\(int \(\*\)\(\.\.\.\)\)(.*)$", paragraph, re.MULTILINE)
            table[match.group(1)] = entries[2:]
    return table


def dump_classes(command):
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, "classes.txt")
        subprocess.run([*command, "-fsyntax-only", f"-fdump-lang-class={path}"], check=True)
        return read_dump(path.read_text())


def main():
    expected = read_table(pathlib.Path(sys.argv[1]).read_text())
    actual = dump_classes(sys.argv[2:])
    failed = False
    for name, slots in expected.items():
        if os.environ.get("KT_PRINT_SLOTS"):
            print("\n".join([name, *(f"    {slot}" for slot in actual.get(name, []))]) + "\n")
        difference = list(difflib.unified_diff(slots, actual.get(name, []), "table", "compiler", name, name, lineterm=""))
        print(*difference, sep="\n", end="\n" if difference else "")
        failed = failed or bool(difference)
    return 1 if failed or not expected else 0


if __name__ == "__main__":
    sys.exit(main())
