#!/usr/bin/env python3
"""Holds docs/platform-interface.md against the library: the page names the platform's headers and classes that the
library's folders use, and no others.

Usage: check_platform_interface.py SOURCE_DIRECTORY
"""

import pathlib
import re
import sys

FOLDERS = ["library", "legacy", "math", "migration", "document"]
HEADER = re.compile(r'#include "(platform/[^"]+)"')
# The first name behind the namespaces: of nested ones the page tells with their class.
NAME = re.compile(r"\b(?:kt|Wm4)::(?:(?:svg|text|impl|encoding)::)?(\w+)")
NAMESPACES = {"svg", "text", "impl", "encoding"}
# Compiled into whoever uses it: no part of a platform.
OWN = "platform/encoding/"


def sources(root):
    for folder in FOLDERS:
        for file in sorted((root / folder).rglob("*")):
            if file.suffix in (".h", ".cpp"):
                yield re.sub(r"//.*", "", file.read_text(encoding="utf-8"))


def main():
    root = pathlib.Path(sys.argv[1])
    page = (root / "docs/platform-interface.md").read_text(encoding="utf-8")
    text = "\n".join(sources(root))
    headers = {header.rsplit("/", 1)[1] for header in HEADER.findall(text) if not header.startswith(OWN)}
    told_headers = set(re.findall(r"(\w+\.h)\b", page))
    # What the library itself has in these namespaces is declared in its own headers.
    own = set(re.findall(r"\bclass (?:\w+ )?(kt\w+)\b(?! *;)", text)) | set(re.findall(r"\bvoid (\w+)\(\)", text))
    used = {name for name in NAME.findall(text) if name not in NAMESPACES and not name.endswith("Utf8")}
    used -= {name for name in own if not re.search(rf"`kt::(?:\w+::)?{name}`", page)} | {"Utf8Character"}
    told = set(NAME.findall(page)) - NAMESPACES
    findings = [f"the page lacks {name}" for name in sorted(headers - told_headers) + sorted(used - told)]
    findings += [f"the page tells {name}" for name in sorted(told_headers - headers)]
    findings += [f"the page tells {name}" for name in sorted(told) if not re.search(rf"\b{name}\b", text)]
    print("\n".join(findings))
    print(f"{len(headers)} headers, {len(used)} names, {len(findings)} findings")
    return 1 if findings or not used else 0


if __name__ == "__main__":
    sys.exit(main())
