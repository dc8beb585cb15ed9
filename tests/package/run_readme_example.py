#!/usr/bin/env python3
"""Builds the example of the README, its CMake and C++ blocks as they are printed, against an installation, draws a
variant and a binary document with it and looks at what it prints.

Usage: run_readme_example.py README cmake|pkg-config PREFIX FOLDER COMPILER [FLAG...]
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ET

FILES = {"cmake": "CMakeLists.txt", "cpp": "main.cpp"}


def write_example(readme, folder):
    text = readme.read_text(encoding="utf-8")
    for language, name in FILES.items():
        blocks = re.findall(rf"^```{language}\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
        if len(blocks) != 1:
            sys.exit(f"the README holds {len(blocks)} {language} blocks; the example is one of each kind")
        (folder / name).write_text(blocks[0], encoding="utf-8")


def build_with_cmake(prefix, folder, compiler, flags):
    build = folder / "build"
    subprocess.run(
        ["cmake", "-S", folder, "-B", build, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
         f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_CXX_FLAGS={' '.join(flags)}"], check=True)
    subprocess.run(["cmake", "--build", build], check=True)
    return [build / "example"]


def build_with_pkg_config(prefix, folder, compiler, flags):
    (library_folder,) = [file.parent.parent for file in prefix.rglob("ktAnnotationLegacy.pc")]
    search = os.environ | {"PKG_CONFIG_PATH": str(library_folder / "pkgconfig")}
    arguments = subprocess.run(
        ["pkg-config", "--cflags", "--libs", "ktLegacyDocument"], env=search, check=True, capture_output=True, text=True)
    if "-std" in arguments.stdout:
        sys.exit(f"pkg-config overrides the host's language version: {arguments.stdout}")
    program = folder / "example"
    subprocess.run([compiler, "-std=c++20", *flags, folder / "main.cpp", *arguments.stdout.split(), "-o", program], check=True)
    return ["env", f"LD_LIBRARY_PATH={library_folder}", program]


VIEW = """{"ver": "6.27", "name": "Front", "metadata": {}, "axis": 0, "annotations": [
    {"type": "text", "text": "2x DIA 12 THRU", "leaders": [{"pos": [40, 25, 0], "head": "arrow"}]}]}"""
BINARY = pathlib.Path(__file__).parent.parent / "data/documents/body_cut.kts"


def check_drawings(result, path):
    """A drawing of each document; the view's name is the title and the note stands in it as searchable text."""
    drawings = result.stdout.split("<?xml")[1:]
    if len(drawings) < 2:
        sys.exit(f"{len(drawings)} drawings of two documents:\n{result.stdout}")
    root = ET.fromstring("<?xml" + drawings[0])
    texts = ["".join(element.itertext()) for element in root.iter()]
    for text in ("Front", "2x DIA 12 THRU"):
        if text not in texts:
            sys.exit(f"the drawing does not hold '{text}':\n{drawings[0]}")
    for finding in (f"{path}: view 1 'Front': invalid 'axis' field\n", f"{BINARY}: view 1 'front', object 2, byte "):
        if finding not in result.stderr:
            sys.exit(f"nothing tells '{finding}':\n{result.stderr}")


def main():
    readme, way, prefix, folder, compiler, *flags = sys.argv[1:]
    folder = pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    write_example(pathlib.Path(readme), folder)
    build = {"cmake": build_with_cmake, "pkg-config": build_with_pkg_config}[way]
    command = build(pathlib.Path(prefix), folder, compiler, flags)
    (folder / "front.json").write_text(VIEW, encoding="utf-8")
    documents = [folder / "front.json", BINARY]
    check_drawings(subprocess.run([*command, *documents], check=True, capture_output=True, text=True), documents[0])


if __name__ == "__main__":
    main()
