#!/usr/bin/env python3
"""The checks of this folder must find what they are for: each violation is planted in a small tree and looked for."""

import pathlib
import sys
import tempfile
import unittest

import check_conventions
import check_headers_alone
import check_layers

TREE = {
    "platform/wm4/Vector.h": "#include <cmath>\n",
    "platform/system/Stream.h": '#include "platform/wm4/Vector.h"\n',
    "platform/svg/Node.h": '#include "platform/wm4/Vector.h"\n',
    "platform/annotation/View.h": '#include "platform/svg/Node.h"\n#include "platform/system/Stream.h"\n',
    "legacy/Annotation.h": '#include "platform/system/Stream.h"\n',
    "platform/system/Json_p.h": "#include <simdjson.h>\n",
    "platform/system/Json.cpp": '#include "platform/system/Json_p.h"\n\n#include <unistd.h>\n',
    "platform/annotation/Font_p.h": "#include <ft2build.h>\n#include FT_FREETYPE_H\n",
    "migration/Leaders_p.h": '#include "platform/annotation/View.h"\n',
    "legacy/Annotation.cpp": '#include "legacy/Annotation.h"\n#include "migration/Leaders_p.h"\n',
    "tools/ktannot/main.cpp": '#include "legacy/Annotation.h"\n\n#include <CLI/CLI.hpp>\n',
}
PUBLIC = {name for name in TREE if name.endswith(".h") and not name.endswith("_p.h")}
# Where what is added, and a part of the finding that it must give.
VIOLATIONS = [
    ("platform/wm4/Vector.h", '#include "platform/system/Stream.h"', "points up"),
    ("platform/system/Json.cpp", '#include "platform/svg/Node.h"', "points up"),
    ("platform/svg/Node.h", '#include "platform/annotation/View.h"', "points up"),
    ("platform/annotation/View.h", '#include "legacy/Annotation.h"', "points up"),
    ("legacy/Annotation.cpp", '#include "tools/ktannot/main.cpp"', "points up"),
    ("legacy/Annotation.cpp", '#include "platform/system/Json_p.h"', "private to its layer"),
    ("tools/ktannot/main.cpp", '#  include "migration/Leaders_p.h"', "private to its layer"),
    ("legacy/Annotation.h", '#include "migration/Leaders_p.h"', "is not installed"),
    ("legacy/Annotation.cpp", '#include "Annotation.h"', "no header from the project's root"),
    ("legacy/Annotation.cpp", "#include <unistd.h>", "not allowed here"),
    ("migration/Leaders_p.h", "#include <simdjson.h>", "not allowed here"),
    ("platform/svg/Node.h", "#include <math.h>", "is no standard header"),
    ("platform/system/Stream.h", "#include <spdlog/spdlog.h>", "the including header is public"),
    ("platform/wm4/Vector.h", "#include HEADER", "the including header is public"),
    ("tools/ktannot/main.cpp", "#include HEADER", "not allowed here"),
]


class LayersTest(unittest.TestCase):
    def test_each_violation_is_found_and_nothing_else(self):
        for path, line, what in [("", "", None), *VIOLATIONS]:
            with self.subTest(path=path, line=line), tempfile.TemporaryDirectory() as folder:
                root = pathlib.Path(folder)
                for name, text in TREE.items():
                    (root / name).parent.mkdir(parents=True, exist_ok=True)
                    (root / name).write_text(text + (line + "\n" if name == path else ""), encoding="utf-8")
                findings = check_layers.check_tree(root, PUBLIC)[0]
                self.assertEqual(len(findings), 1 if what else 0, findings)
                self.assertTrue(not what or findings[0].startswith(path + ":") and what in findings[0], findings)

    def test_installed_private_header_is_found(self):
        self.assertEqual(len(check_layers.check_tree(pathlib.Path("/nowhere"), {"legacy/Annotation_p.h"})[0]), 1)


class ConventionsTest(unittest.TestCase):
    def test_each_violation_is_found(self):
        # Put together from pieces, so that this file keeps the conventions itself.
        for text in ["as the " + "spec says", "spec" + ".md", "Part" + " 3.1", "a /" + "home/me"]:
            self.assertEqual(len(check_conventions.check_text(pathlib.Path("a.md"), text)), 1, text)
        for text in ["special", "the specific case", "version 3.1", "Part of it", "cd /usr/share, a/" + "work/b"]:
            self.assertEqual(check_conventions.check_text(pathlib.Path("a.md"), text), [])
        self.assertEqual(len(check_conventions.check_text(pathlib.Path("a.h"), "int a;")), 2)


class HeadersAloneTest(unittest.TestCase):
    COMPILER = sys.argv.pop()

    def test_header_must_bring_what_it_needs_and_bear_two_inclusions(self):
        sound = "#pragma once\n#include <string>\nstruct Name { std::string mText; };\n"
        texts = [sound, sound.replace("#include <string>", ""), sound.replace("#pragma once", "")]
        for text in texts:
            with self.subTest(text=text), tempfile.TemporaryDirectory() as folder:
                header = pathlib.Path(folder) / "header.h"
                header.write_text(text, encoding="utf-8")
                messages = check_headers_alone.compile_alone(header, [self.COMPILER, "-Wall", "-Werror"])
                self.assertEqual(messages == "", text == sound)


if __name__ == "__main__":
    unittest.main()
