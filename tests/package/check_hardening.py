#!/usr/bin/env python3
"""Looks into built files for the protections that they were to be built with.

Usage: check_hardening.py FILE...
"""

import re
import subprocess
import sys

ENDBR64 = bytes.fromhex("f30f1efa")


def readelf(*arguments):
    return subprocess.run(["readelf", "--wide", *arguments], check=True, capture_output=True, text=True).stdout


def find_unmarked_functions(path, symbols):
    """Exported functions that an indirect branch could not enter under control-flow enforcement."""
    segments = [[int(number, 16) for number in line.split()[1:6]]
                for line in readelf("--program-headers", path).splitlines() if line.split()[:1] == ["LOAD"]]
    content = open(path, "rb").read()
    unmarked = []
    for address, name in re.findall(r"^ *\d+: ([0-9a-f]+) +\d+ FUNC +\w+ +DEFAULT +\d+ (\S+)", symbols, re.MULTILINE):
        offset = next(begin + int(address, 16) - start
                      for begin, start, _, size, _ in segments if start <= int(address, 16) < start + size)
        if content[offset:offset + len(ENDBR64)] != ENDBR64:
            unmarked.append(name)
    return unmarked


def check_file(path):
    """What one file lacks."""
    header = readelf("--file-header", path)
    dynamic = readelf("--dynamic", path)
    segments = readelf("--program-headers", path)
    symbols = readelf("--dyn-syms", path)
    findings = [what for what, is_there in {
        "position-independent code": "DYN (" in header,
        "read-only relocations": "GNU_RELRO" in segments,
        "binding at start": re.search(r"\bBIND_NOW\b|Flags:.*\bNOW\b", dynamic),
        "a stack without code": re.search(r"GNU_STACK.*\bRW\b", segments),
        "text without relocations": "TEXTREL" not in dynamic,
    }.items() if not is_there]
    if "X86-64" in header:
        unmarked = find_unmarked_functions(path, symbols)
        findings += [f"landing marks of {len(unmarked)} functions, {unmarked[0]} first"] if unmarked else []
    return [f"{path} lacks {finding}" for finding in findings]


def main():
    paths = sys.argv[1:]
    findings = [finding for path in paths for finding in check_file(path)]
    # Not every file has functions that need these; among them all there are some.
    symbols = "".join(readelf("--dyn-syms", path) for path in paths)
    for what, pattern in {"stack protection": r"__stack_chk_fail\b", "checked C functions": r"__\w+_chk\b"}.items():
        if not re.search(pattern, symbols):
            findings.append(f"none of them has {what}")
    print("\n".join(findings))
    print(f"{len(paths)} files, {len(findings)} findings")
    return 1 if findings or not paths else 0


if __name__ == "__main__":
    sys.exit(main())
