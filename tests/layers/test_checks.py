#!/usr/bin/env python3
"""The checks of this folder must find what they are for: each violation is planted in a small tree and looked for."""

import pathlib
import sys
import tempfile
import unittest

import check_conventions
import check_headers_alone
import check_layers

PUBLIC = {
    "platform/wm4/Vector.h": "#include <cmath>\n",
    "platform/system/Stream.h": '#include "platform/wm4/Vector.h"\n',
    "platform/svg/Node.h": '#include "platform/wm4/Vector.h"\n',
    "platform/annotation/View.h": '#include "platform/svg/Node.h"\n#include "platform/system/Stream.h"\n',
    "legacy/Annotation.h": '#include "platform/system/Stream.h"\n',
}
PRIVATE = {
    "platform/system/Json_p.h": "#include <simdjson.h>\n",
    "platform/system/Json.cpp": '#include "platform/system/Json_p.h"\n\n#include <unistd.h>\n',
    "platform/annotation/Font_p.h": "#include <ft2build.h>\n#include FT_FREETYPE_H\n",
    "migration/Leaders_p.h": '#include "platform/annotation/View.h"\n',
    "legacy/Annotation.cpp": '#include "legacy/Annotation.h"\n#include "migration/Leaders_p.h"\n',
    "tools/ktannot/main.cpp": '#include "legacy/Annotation.h"\n\n#include <CLI/CLI.hpp>\n',
}
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
    ("platform/wm4/Vector.h", "#include HEADER", "cannot be checked"),
]


class LayersTest(unittest.TestCase):
    def findings_with(self, path=None, line=None):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in (PUBLIC | PRIVATE).items():
                file = root / name
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(text + (line + "\n" if name == path else ""), encoding="utf-8")
            return check_layers.check_tree(root, set(PUBLIC))[0]

    def test_sound_tree_passes(self):
        self.assertEqual(self.findings_with(), [])

    def test_each_violation_is_found(self):
        for path, line, what in VIOLATIONS:
            with self.subTest(path=path, line=line):
                findings = self.findings_with(path, line)
                self.assertEqual(len(findings), 1, findings)
                self.assertIn(what, findings[0])
                self.assertTrue(findings[0].startswith(path + ":"), findings[0])

    def test_installed_private_header_is_found(self):
        with tempfile.TemporaryDirectory() as folder:
            findings = check_layers.check_tree(pathlib.Path(folder), {"legacy/Annotation_p.h"})[0]
        self.assertEqual(len(findings), 1)


class ConventionsTest(unittest.TestCase):
    # Put together from pieces, so that this file keeps the conventions itself.
    OUTSIDE = ["as the " + "spec says", "see " + "Specification", "spec" + ".md", "Part" + " 3.1", "parts" + " 2.4"]
    ALLOWED = ["special", "the specific case", "version 3.1", "Part of it", "a specified width"]

    def test_outside_texts_are_found(self):
        for text in self.OUTSIDE:
            self.assertEqual(len(check_conventions.check_text(pathlib.Path("a.md"), text)), 1, text)
        for text in self.ALLOWED:
            self.assertEqual(check_conventions.check_text(pathlib.Path("a.md"), text), [], text)

    def test_paths_of_a_machine_are_found(self):
        self.assertEqual(len(check_conventions.check_text(pathlib.Path("a.sh"), "cd /" + "home/me")), 1)
        self.assertEqual(check_conventions.check_text(pathlib.Path("a.sh"), "cd /usr/share, a/" + "work/b"), [])

    def test_headers_need_guard_and_purpose(self):
        sound = "#pragma once\n\n/// @file\n/// Numbers.\n"
        self.assertEqual(check_conventions.check_text(pathlib.Path("a.h"), sound), [])
        self.assertEqual(len(check_conventions.check_text(pathlib.Path("a.h"), sound[13:])), 1)
        self.assertEqual(len(check_conventions.check_text(pathlib.Path("a.h"), "#pragma once\n\nint a;\n")), 1)


class HeadersAloneTest(unittest.TestCase):
    COMPILER = sys.argv.pop()

    def compile(self, text):
        with tempfile.TemporaryDirectory() as folder:
            header = pathlib.Path(folder) / "header.h"
            header.write_text(text, encoding="utf-8")
            return check_headers_alone.compile_alone(header, [self.COMPILER, "-Wall", "-Werror"])[1]

    def test_header_must_bring_what_it_needs_and_bear_two_inclusions(self):
        self.assertEqual(self.compile("#pragma once\n#include <string>\nstruct Name { std::string mText; };\n"), 0)
        self.assertNotEqual(self.compile("#pragma once\nstruct Name { std::string mText; };\n"), 0)
        self.assertNotEqual(self.compile("#include <string>\nstruct Name { std::string mText; };\n"), 0)
        self.assertNotEqual(self.compile("#pragma once\ninline bool less(int a, unsigned b) { return a < b; }\n"), 0)


if __name__ == "__main__":
    unittest.main()
