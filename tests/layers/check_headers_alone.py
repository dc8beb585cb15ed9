#!/usr/bin/env python3
"""Compiles every public header alone, twice in one file, with the project's warnings and without any other include path.

Usage: check_headers_alone.py PUBLIC_HEADERS_FILE COMPILER FLAG...
"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys


def compile_alone(header, command):
    """The compiler's messages; empty when the header compiles."""
    source = f'#include "{header}"\n#include "{header}"\n'
    command = [*command, "-fsyntax-only", "-x", "c++", "-"]
    run = subprocess.run(command, input=source, capture_output=True, text=True, check=False)
    return f"{header} does not compile alone:\n{run.stderr}" if run.returncode else ""


def main():
    headers = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8").split()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        failures = list(filter(None, pool.map(lambda header: compile_alone(header, sys.argv[2:]), headers)))
    print("\n".join(failures))
    print(f"{len(headers)} headers, {len(failures)} failures")
    return 1 if failures or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
