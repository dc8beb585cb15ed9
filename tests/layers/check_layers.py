#!/usr/bin/env python3
"""Holds every include of the project against the layers: arrows point down only, each layer sees of the others nothing
but public headers, and third-party headers stand where they are allowed.

Usage: check_layers.py SOURCE_DIRECTORY PUBLIC_HEADERS_FILE   (one path per line)
"""

import pathlib
import re
import sys

LIBRARY = ["library", "legacy", "migration", "math"]
PLATFORM = ["platform/wm4", "platform/system", "platform/scenegraph", "platform/svg", "platform/annotation"]

# Which folders a folder's files may include from, besides its own.
BELOW = {
    "platform/wm4": [],
    "platform/system": ["platform/wm4"],
    "platform/scenegraph": ["platform/wm4", "platform/system"],
    "platform/svg": ["platform/wm4"],
    "platform/annotation": ["platform/wm4", "platform/system", "platform/svg"],
    **{folder: LIBRARY + PLATFORM for folder in LIBRARY},
    "tools/ktannot": LIBRARY + PLATFORM,
}
# Folders that make up one layer: they may use each other's private headers.
SAME_LAYER = [set(LIBRARY)]

# Headers beyond the standard library, by folder; public headers may include none of them.
POSIX = r"unistd\.h|fcntl\.h|syslog\.h|sys/(mman|stat|types)\.h"
THIRD_PARTY = {
    "platform/system": rf"simdjson\.h|spdlog/.*|rapidjson/.*|{POSIX}",
    "platform/annotation": r"hb(-[a-z]+)?\.h|fribidi\.h|fontconfig/.*|ft2build\.h|freetype/.*",
    "tools/ktannot": r".*",
}
STANDARD = set(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
    climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef
    cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem forward_list fstream
    functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
    memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator
    semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view
    syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray
    variant vector version""".split()
)

# FreeType names its headers by macros.
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]+)"|<([^>]+)>|(FT_[A-Z_]+_H)\b|(\S+))')


def folder_of(path):
    """The layer's folder that a path from the root lies in; empty for others."""
    return next((folder for folder in BELOW if path.startswith(folder + "/")), "")


def check_quoted(path, folder, header, public_headers, root):
    """What is wrong with an include of one of our own headers; empty when nothing is."""
    target = folder_of(header)
    if not (root / header).is_file() or not target:
        return "is no header from the project's root"
    same_layer = target == folder or any({folder, target} <= layer for layer in SAME_LAYER)
    if not same_layer and target not in BELOW[folder]:
        return "points up"
    if not same_layer and header not in public_headers:
        return "is private to its layer"
    if path in public_headers and header not in public_headers:
        return "is not installed, the including header is"
    return ""


def check_angled(path, folder, header, public_headers):
    """What is wrong with an include of a header of others; empty when nothing is."""
    if header in STANDARD:
        return ""
    if path in public_headers:
        return "is no standard header, the including header is public"
    if not re.fullmatch(THIRD_PARTY.get(folder, "(?!)"), header):
        return "is no standard header and not allowed here"
    return ""


def check_file(root, path, public_headers):
    """Every finding in one file, as lines of text."""
    findings = []
    folder = folder_of(path)
    for number, line in enumerate((root / path).read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        quoted, angled, freetype, other = match.groups()
        if quoted:
            wrong = check_quoted(path, folder, quoted, public_headers, root)
        elif angled:
            wrong = check_angled(path, folder, angled, public_headers)
        elif freetype:
            wrong = check_angled(path, folder, "freetype/" + freetype, public_headers)
        else:
            wrong = "cannot be checked"
        if wrong:
            findings.append(f"{path}:{number}: {quoted or angled or freetype or other} {wrong}")
    return findings


def check_tree(root, public_headers):
    """Every finding in the layers' folders below root, and the number of files looked at."""
    files = sorted(
        file.relative_to(root).as_posix()
        for folder in BELOW
        for file in (root / folder).rglob("*")
        if file.suffix in (".h", ".cpp")
    )
    findings = [f"{header}: private headers are not installed" for header in public_headers if header.endswith("_p.h")]
    for path in files:
        findings += check_file(root, path, public_headers)
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
