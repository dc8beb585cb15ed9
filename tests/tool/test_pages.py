#!/usr/bin/env python3
"""PDF files and PNG pictures of documents, looked at with programs that are not ours."""

import pathlib
import shutil
import struct
import subprocess
import unittest

import support
from support import view


def ask(*command):
    return subprocess.run(command, capture_output=True, check=True).stdout.decode()


class Pages(support.ToolTest):
    def setUp(self):
        super().setUp()
        wide = '{"type":"text","name":"a","text":"4X DIA 12 THRU"},{"type":"text","name":"b","position":[300,0,0],"text":"M8"}'
        self.document = self.write("in/plate.json", f'[{view("front", wide)},{view("detail")}]')

    def migrate(self, *arguments):
        return support.run("migrate", self.document, "-o", str(self.folder / "out"), "--background", "white", *arguments)

    def test_a_pdf_has_a_page_for_each_view_with_searchable_text(self):
        self.assertEqual(self.migrate("--format", "pdf").code, 0)
        path = self.folder / "out/plate.json.pdf"
        self.assertEqual([file.name for file in path.parent.iterdir()], [path.name])
        info = ask("pdfinfo", "-f", "1", "-l", "9", path)
        self.assertRegex(info, r"Title: +plate.json\nSubject: +drawn from .*in/plate.json\nCreator: +ktannot 3")
        self.assertRegex(info, r"Pages: +2\n")
        self.migrate("--format", "svg")
        for page in 1, 2:
            drawing = next((self.folder / "out/plate.json").glob(f"00{page}-*.svg")).read_text()
            width, height = [float(drawing.split(f'{side}="')[1].split("mm")[0]) / 25.4 * 72 for side in ("width", "height")]
            found = info.split(f"Page    {page} size:")[1].split()
            self.assertAlmostEqual(float(found[0]), width, delta=0.01)
            self.assertAlmostEqual(float(found[2]), height, delta=0.01)
        self.assertEqual(ask("pdftotext", path, "-").split(), ["4X", "DIA", "12", "THRU", "M8", "M8"])
        fonts = [line.split() for line in ask("pdffonts", path).splitlines()[2:]]
        self.assertTrue(fonts and all(line[-5] == "yes" for line in fonts), fonts)  # embedded
        before = path.read_bytes()
        self.assertEqual(self.migrate("--format", "pdf").code, 6)
        self.assertEqual(self.migrate("--format", "pdf", "--force").code, 0)
        self.assertEqual(path.read_bytes(), before)
        path.write_text("something else")
        self.assertEqual(self.migrate("--format", "pdf", "--force").code, 6)
        self.assertEqual(path.read_text(), "something else")

    def test_a_png_has_the_pixels_that_are_asked_for(self):
        self.assertEqual(self.migrate("--format", "png", "--dpi", "254", "--view", "1").code, 0)
        drawing = support.run("migrate", self.document, "-o", "-", "--view", "1").out
        [path] = (self.folder / "out/plate.json").iterdir()
        self.assertEqual(path.name, "001-front.png")
        size = struct.unpack(">II", path.read_bytes()[16:24])
        for pixels, side in zip(size, ("width", "height")):
            self.assertAlmostEqual(pixels, float(drawing.split(f'{side}="')[1].split("mm")[0]) * 10, delta=1)
        picture = ask("convert", path, "-format", "%[fx:minima] %[fx:maxima] %[opaque]", "info:").lower().split()
        self.assertEqual(picture, ["0", "1", "true"])
        result = self.migrate("--format", "png", "--dpi", "9999", "--force")
        self.assertEqual(result.code, 6)
        self.assertIn("choose --dpi", result.error)

    def test_a_tool_without_the_module_tells_what_to_install(self):
        tool = shutil.copy(support.TOOL, self.folder / "ktannot")
        libraries = [line.split()[2] for line in ask("ldd", support.TOOL).splitlines() if " => /" in line]
        environment = {"LD_LIBRARY_PATH": ":".join({str(pathlib.Path(library).parent) for library in libraries})}
        for form in "pdf", "png":
            done = subprocess.run([tool, "migrate", self.document, "-o", str(self.folder / "out"), "--format", form],
                                  env=environment, capture_output=True, check=False)
            self.assertEqual(done.returncode, 6, done.stderr)
            self.assertIn(b"install the packages librsvg2-2 and libcairo2", done.stderr)
            self.assertFalse((self.folder / "out").exists())


unittest.main()
