"""What the tests of the built tool share: runs of it, folders of their own, and what every drawing must be.

Their last two arguments are the tool and the source folder; those before go to unittest.
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ET
from typing import NamedTuple

SOURCE = pathlib.Path(sys.argv.pop())
TOOL = sys.argv.pop()
SAMPLES = SOURCE / "samples"

MAX_DEPTH = 48  # of elements; readers refuse more than 50
# What acts on a terminal and must not reach it raw.
CONTROLS = ["\x1b", "\x07", "\r", "\x9b", "\u202e"]


def as_text(data):
    return data.decode("utf-8", "surrogateescape")


# Whole picture files of one pixel, as far as heads and ends go.
PICTURES = {kind: as_text(data) for kind, data in {
    "png": b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\1\0\0\0\0crc0\0\0\0\0IEND\xaeB`\x82",
    "jpeg": b"\xff\xd8\xff\xc0\0\x0b\x08\0\1\0\1\1\1\x11\0\xff\xda\0\2scan\xff\xd9",
    "gif": b"GIF89a\1\0\1\0\0\0\0;",
    "webp": b"RIFF\x12\0\0\0WEBPVP8 \6\0\0\0pixels"}.items()}


class Result(NamedTuple):
    code: int
    out: str
    error: str


def run(*arguments, input="", **options):
    done = subprocess.run([TOOL, *arguments], input=input.encode("utf-8", "surrogateescape"), capture_output=True,
                          check=False, **options)
    return Result(done.returncode, as_text(done.stdout), as_text(done.stderr))


def view(name, *annotations, metadata="{}"):
    """A view map of version 6.27 as JSON; without annotations it has a text."""
    annotations = ",".join(annotations) or '{"type":"text","name":"note","position":[1,2,0],"text":"M8"}'
    return f'{{"ver":"6.27","name":"{name}","metadata":{metadata},"annotations":[{annotations}]}}'


def find_faults(drawing):
    """What is wrong with a drawing: not well-formed, nested too deeply, or with script, entities or references."""
    faults = ["has declarations"] if "<!" in drawing else []
    try:
        level = [ET.fromstring(drawing)]
    except (ET.ParseError, UnicodeEncodeError) as error:
        return [f"is not well-formed: {error}"]
    if level[0].tag != "{http://www.w3.org/2000/svg}svg":
        faults.append("is no drawing")
    depth = 0
    while level:
        depth += 1
        for element in level:
            if element.tag.endswith(("}script", "}foreignObject")):
                faults.append(f"has {element.tag}")
            faults += [f"has {name}={value[:100]}" for name, value in element.items()
                       if name.startswith("on") or name.endswith("href") and not value.startswith(("data:image/", "#"))]
        level = [child for element in level for child in element]
    return faults + ([f"is {depth} deep"] if depth > MAX_DEPTH else [])


class ToolTest(unittest.TestCase):
    """Each test has a folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, content):
        """Writes a file, with the folders above it; its path."""
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content.encode("utf-8", "surrogateescape"))
        return str(path)

    def read_tree(self, name="."):
        """The regular files below a folder: content by path."""
        top = self.folder / name
        return {str(path.relative_to(top)): as_text(path.read_bytes()) for path in sorted(top.rglob("*"))
                if path.is_file()}

    def check_sound(self, tree):
        for name, content in tree.items():
            self.assertEqual(find_faults(content), [], name)
