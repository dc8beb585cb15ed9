#!/usr/bin/env python3
"""Holds every include of the project against the layers: arrows point down only, each layer sees of the others nothing
but public headers, and third-party headers stand where they are allowed.

Usage: check_layers.py SOURCE_DIRECTORY PUBLIC_HEADERS_FILE   (one path per line)
"""

import pathlib
import re
import sys

# Which folders each folder may include from, besides itself. A folder's row speaks for the folders below it that have
# no row of their own; what a row names speaks for itself alone. Rows of one shared library may name each other's
# private headers.
SYSTEM = "platform/system"
SVG, WM4, ENCODING = "platform/svg", "platform/wm4", "platform/encoding"
OBJECT, STREAM, VARIANT = f"{SYSTEM}/object", f"{SYSTEM}/stream", f"{SYSTEM}/variant"
JSON, LOG, MEMORY = f"{SYSTEM}/json", f"{SYSTEM}/log", f"{SYSTEM}/memory"
SYSTEM_ROOMS = [SYSTEM, OBJECT, STREAM, VARIANT, JSON, LOG, MEMORY]
PLATFORM = [WM4, *SYSTEM_ROOMS, "platform/scenegraph", SVG, "platform/annotation"]
LEGACY = ["legacy", "legacy/annotation", "legacy/stream", "legacy/variant"]
LIBRARY = ["library", "migration", "math", *LEGACY]
TOOL = [f"tools/ktannot{room}" for room in ("/commands", "/batch", "/report", "/files", "/console", "")]
COMMANDS, BATCH, REPORT, FILES, CONSOLE, _ = TOOL

BELOW = {
    WM4: [],
    ENCODING: [],
    SYSTEM: [LOG, MEMORY, OBJECT],
    MEMORY: [SYSTEM],
    LOG: [SYSTEM],
    # Objects load themselves from streams, and streams hand out objects: the model's own circle.
    OBJECT: [SYSTEM, STREAM, VARIANT, MEMORY, LOG],
    STREAM: [SYSTEM, OBJECT, MEMORY],
    VARIANT: [SYSTEM, MEMORY, ENCODING],
    JSON: [SYSTEM, VARIANT, MEMORY, ENCODING],
    "platform/scenegraph": [SYSTEM],
    SVG: [WM4, ENCODING],
    "platform/annotation": [WM4, SVG, ENCODING, *SYSTEM_ROOMS],
    "math": PLATFORM,
    "legacy/stream": PLATFORM,
    # The document reader makes views and annotations, whose loaders use what stands beside it.
    "legacy/variant": ["legacy", *PLATFORM],
    "legacy": ["math", "legacy/stream", "legacy/variant", *PLATFORM],
    "legacy/annotation": ["legacy"],
    "migration": ["legacy", *PLATFORM],
    "library": ["legacy", "migration", *PLATFORM],
    "document": [ENCODING, *LIBRARY, *PLATFORM],
    CONSOLE: [ENCODING],
    FILES: [ENCODING, "tools/ktannot"],
    REPORT: [FILES, CONSOLE, "tools/ktannot", ENCODING, "document", *LIBRARY, *PLATFORM],
    BATCH: [REPORT, FILES, CONSOLE, ENCODING, "tools/ktannot", "document", *LIBRARY, *PLATFORM],
    COMMANDS: [*TOOL, "document", *LIBRARY, *PLATFORM],
    "tools/ktannot": [*TOOL, *LIBRARY, *PLATFORM],
}
# Folders that make up one shared library or program: they may use each other's private headers.
TARGETS = [set(SYSTEM_ROOMS), set(LIBRARY), set(TOOL)]
# The export macro of the library, which all of its folders use.
COMMON = {"legacy/ktAnnotationLegacyExport.h"}

# Headers beyond the standard library, by folder; public headers may include none of them.
POSIX = r"unistd\.h|fcntl\.h|syslog\.h|sys/(mman|stat|types)\.h"
THIRD_PARTY = {
    LOG: r"spdlog/.*|syslog\.h",
    JSON: r"simdjson\.h|rapidjson/.*",
    MEMORY: POSIX,
    "math": r"immintrin\.h",
    "platform/annotation": r"hb(-[a-z]+)?\.h|unicode/.*|fontconfig/.*|ft2build\.h|FT_[A-Z_]+_H",
    **{room: r".*\.(h|hpp)" for room in TOOL},
}
# No other header that the system holds has such a name.
STANDARD = re.compile(r"<[a-z_]+>")

# FreeType names its headers by macros.
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]+)"|(<[^>]+>|\S+))')


def folder_of(path):
    """The layer's folder that a path from the root lies in; empty for others."""
    return max((folder for folder in BELOW if path.startswith(folder + "/")), key=len, default="")


def check_ours(path, header, public_headers, root):
    """What is wrong with an include of one of our own headers; empty when nothing is."""
    folder, target = folder_of(path), folder_of(header)
    if not (root / header).is_file() or not target:
        return "is no header from the project's root"
    if target != folder and target not in BELOW[folder] and header not in COMMON:
        return "points up"
    same_target = target == folder or any({folder, target} <= rooms for rooms in TARGETS)
    if not same_target and target != ENCODING and header not in public_headers:
        return "is private to its layer"
    if path in public_headers and header not in public_headers:
        return "is not installed, the including header is"
    return ""


def check_others(path, header, public_headers):
    """What is wrong with an include of a header of others; empty when nothing is."""
    if STANDARD.fullmatch(header):
        return ""
    if path in public_headers:
        return "is no standard header, the including header is public"
    if not re.fullmatch(THIRD_PARTY.get(folder_of(path), "(?!)"), header.strip("<>")):
        return "is no standard header and not allowed here"
    return ""


def check_tree(root, public_headers):
    """Every finding in the layers' folders below root, as lines of text, and the number of files looked at."""
    findings = [f"{header}: private headers are not installed" for header in public_headers if header.endswith("_p.h")]
    files = {file for folder in BELOW for file in (root / folder).rglob("*") if file.suffix in (".h", ".cpp")}
    for file in sorted(files):
        path = file.relative_to(root).as_posix()
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            ours, others = match.groups() if match else ("", "")
            wrong = ours and check_ours(path, ours, public_headers, root)
            wrong = wrong or others and check_others(path, others, public_headers)
            if wrong:
                findings.append(f"{path}:{number}: {ours or others} {wrong}")
    return findings, len(files)


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    listed = pathlib.Path(sys.argv[2]).read_text(encoding="utf-8").split()
    public_headers = {pathlib.Path(line).resolve().relative_to(root).as_posix() for line in listed}
    findings, count = check_tree(root, public_headers)
    print("\n".join(findings))
    print(f"{count} files, {len(public_headers)} public headers, {len(findings)} findings")
    return 1 if findings or not count else 0


if __name__ == "__main__":
    sys.exit(main())
