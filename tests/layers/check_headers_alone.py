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
    source = f'#include "{header}"\n#include "{header}"\n'
    run = subprocess.run(
        [*command, "-fsyntax-only", "-x", "c++", "-"], input=source, capture_output=True, text=True, check=False
    )
    return header, run.returncode, run.stderr


def main():
    headers = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8").split()
    command = sys.argv[2:]
    failures = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for header, code, messages in pool.map(lambda header: compile_alone(header, command), headers):
            if code != 0:
                failures += 1
                print(f"{header} does not compile alone:\n{messages}")
    print(f"{len(headers)} headers, {failures} failures")
    return 1 if failures or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
