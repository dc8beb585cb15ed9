#!/usr/bin/env python3
"""The check of the exports must find strays: a library with one sound and four stray symbols is built and looked at."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

import check_exports

SOURCE = """
#include <list>
namespace kt { class Sound { public: virtual ~Sound(); }; Sound::~Sound() = default; }
namespace other { void stray() {} class Type { public: virtual ~Type(); }; Type::~Type() = default; }
extern "C" void plain() {}
template class std::list<kt::Sound*>;
"""


class ExportsTest(unittest.TestCase):
    COMPILER = sys.argv.pop()

    def test_strays_are_found(self):
        with tempfile.TemporaryDirectory() as folder:
            library = pathlib.Path(folder) / "libstray.so"
            subprocess.run(
                [self.COMPILER, "-shared", "-fPIC", "-x", "c++", "-", "-o", library], input=SOURCE, text=True, check=True)
            found = check_exports.stray_symbols(library)
        for stray in ("other::stray()", "vtable for other::Type", "typeinfo for other::Type", "plain"):
            self.assertIn(stray, found)
        self.assertTrue(any(name.startswith("std::") for name in found))
        self.assertEqual([name for name in found if "for kt::" in name or name.startswith("kt::")], [])


if __name__ == "__main__":
    unittest.main()
