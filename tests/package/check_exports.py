#!/usr/bin/env python3
"""Holds the shared libraries against what they promise: their names, their exported symbols and what they ask for.

Usage: check_exports.py LIBRARY_FOLDER
"""

import pathlib
import re
import subprocess
import sys

# Library: the major version in its name, and what it may ask for besides the C++ run-time library.
LIBRARIES = {
    "Wm4Foundation": (4, r"(?!)"),
    "ktSystem": (1, r"libsimdjson|libspdlog|libfmt"),
    "ktSceneGraph": (1, r"libktSystem"),
    "ktSvg": (1, r"libWm4Foundation"),
    "ktAnnotation": (1, r"libktSystem|libktSvg|libharfbuzz|libicuuc|libfreetype|libfontconfig"),
    "ktLegacyDocument": (3, r"libktAnnotationLegacy|libktAnnotation|libktSvg|libktSceneGraph|libktSystem|libWm4Foundation"),
    "ktAnnotationLegacy": (3, r"libktAnnotation|libktSvg|libktSceneGraph|libktSystem|libWm4Foundation"),
}
RUN_TIME = r"libstdc\+\+|libm|libgcc_s|libc|ld-linux-x86-64|libpthread"
OURS = re.compile(r"((typeinfo|typeinfo name|vtable) for )?(Wm4|kt|ktLegacy|ktAnnotationLegacy)::")


def stray_symbols(library):
    """Exported symbols outside our namespaces."""
    listing = subprocess.run(
        ["nm", "--dynamic", "--demangle", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    names = [line.split(maxsplit=2)[2] for line in listing.splitlines()]
    if not names:
        return ["(exports nothing)"]
    return [name for name in names if not OURS.match(name)]


def dynamic_entries(library, tag):
    listing = subprocess.run(["readelf", "--dynamic", "--wide", library], check=True, capture_output=True, text=True)
    return re.findall(rf"\({tag}\)[^\[]*\[(.*)\]", listing.stdout)


def check_library(folder, name, major, allowed):
    library = folder / f"lib{name}.so"
    findings = [f"exports {symbol}" for symbol in stray_symbols(library)]
    if dynamic_entries(library, "SONAME") != [f"lib{name}.so.{major}"]:
        findings.append(f"is named {dynamic_entries(library, 'SONAME')}")
    if dynamic_entries(library, "RUNPATH") != ["$ORIGIN"]:
        findings.append(f"looks for libraries in {dynamic_entries(library, 'RUNPATH')}")
    for needed in dynamic_entries(library, "NEEDED"):
        if not re.match(rf"({allowed}|{RUN_TIME})\.so", needed):
            findings.append(f"asks for {needed}")
    return [f"{library.name} {finding}" for finding in findings]


def main():
    folder = pathlib.Path(sys.argv[1])
    findings = [f for name, (major, allowed) in LIBRARIES.items() for f in check_library(folder, name, major, allowed)]
    # What consumers of the CMake packages would have to find, too.
    for file in folder.glob("cmake/*/*.cmake"):
        for word in re.findall(r"simdjson|spdlog|fmt::|PkgConfig|Threads::|ktCompiler", file.read_text(encoding="utf-8")):
            findings.append(f"{file.name} names {word}")
    print("\n".join(findings))
    print(f"{len(LIBRARIES)} libraries, {len(findings)} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
