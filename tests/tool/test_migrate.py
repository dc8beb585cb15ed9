#!/usr/bin/env python3
"""Batches of migrate that take more than a line to tell: all samples, many inputs, pictures, interruptions."""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import unittest

import support
from support import view


class Output(support.ToolTest):
    def migrate(self, *arguments):
        return support.run("migrate", "-o", str(self.folder / "out"), *arguments)

    def test_the_samples_give_sound_drawings_whatever_the_jobs(self):
        for form, text, count, with_text in [("svg", "text", 82, 80), ("svg", "outlines", 82, 0), ("json", "text", 12, 0)]:
            trees = []
            for jobs in ["1", "4"]:
                result = self.migrate(support.SAMPLES, "--accept", "all", "--format", form, "--text", text, "--jobs", jobs)
                self.assertEqual(result.code, 4)  # the catalogues hold a view that is refused
                trees.append(self.read_tree("out"))
                shutil.rmtree(self.folder / "out")
            self.assertTrue(trees[0] == trees[1], form)
            self.assertEqual([len(trees[0]), sum("<text" in drawing for drawing in trees[0].values())], [count, with_text])
            if form == "svg":
                self.check_sound(trees[0])

    def test_lines_on_standard_output_keep_the_order_of_the_inputs(self):
        # Documents of very different size, and one that is refused now and then.
        sources = [self.write(f"{index}.json", "{" if index % 7 == 0 else f'[{",".join([view("v")] * (index % 5 * 40 + 1))}]')
                   for index in reversed(range(60))]
        lines = support.run("migrate", "--format", "json", "-o", "-", "--jobs", "4", *sources).out.splitlines()
        dumps = [json.loads(line) for line in lines]
        self.assertEqual([dump["source"] for dump in dumps], sources)
        self.assertTrue(all(("refused" in dump) != ("views" in dump) for dump in dumps))

    def test_deeply_nested_texts_make_sound_drawings(self):
        text = '{"type":"text","text":"M8"}'
        for _ in range(200):
            text = f'{{"type":"text","text":"M8","children":[{text[:-1]},"anchorloc":"rt"}}]}}'
        self.migrate(self.write("a.json", view("deep", text)))
        self.check_sound(self.read_tree("out"))
        self.assertEqual(len(self.read_tree("out")), 1)

    def test_output_that_fails_is_a_failure_of_the_environment(self):
        sample = support.SAMPLES / "parts_list_v627.json"
        for arguments in ["inspect", "--json", sample, sample], ["migrate", "-o", "-", "--accept", "all", sample]:
            reader, closed = os.pipe()
            os.close(reader)
            with open("/dev/full", "wb") as full, open(closed, "wb", closefd=True) as pipe:
                for output, told in (full, b"No space left"), (pipe, b""):
                    done = subprocess.run([support.TOOL, *arguments], stdout=output, stderr=subprocess.PIPE, check=False)
                    self.assertEqual(done.returncode, 6)
                    self.assertTrue(told in done.stderr if told else not done.stderr, done.stderr)


class Pictures(support.ToolTest):
    CONTENTS = {**support.PICTURES, "text": "<svg xmlns='http://www.w3.org/2000/svg'/>",
                "cut webp": "RIFF\x10", "wave": "RIFF\x10\0\0\0WAVEfmt ", "nothing": ""}
    # A file, its content, the raster's name, the media type in the drawing or none when the view is refused.
    ROWS = [("in/a.png", "png", "a.png", "png"), ("in/b", "png", "b", "png"), ("in/c.png", "png", "c", "png"),
            ("in/d.jpg", "jpeg", "d", "jpeg"), ("in/e.jpeg", "jpeg", "e", "jpeg"), ("in/f.gif", "gif", "f", "gif"),
            ("in/g.webp", "webp", "g", "webp"), ("in/images/h.png", "png", "h", "png"),
            ("in/i.png", "jpeg", "i", "jpeg"),  # the content counts
            ("in/j.bmp", "png", "j", None),  # no suffix of a picture
            ("in/k.png", "text", "k", None), ("in/l.webp", "cut webp", "l", None), ("in/x.webp", "wave", "x", None),
            ("in/m.png", "nothing", "m", None), ("in/.n.png", "png", ".n", "png"), ("in/pictures/o.png", "png", "o", None),
            ("in/pictures/p.png", "png", "pictures/p.png", None), ("q.png", "png", "../q.png", None),
            ("in/images/r.png", "png", "./images/r.png", None), ("in/images/s.png", "png", "..", None),
            ("in/t.png", "png", "t.png\\u0000.txt", None), ("in/u.png", "png", "", None), ("in/v.PNG", "png", "v", None),
            ("in/w.png", "png", "$DIR/in/w.png", None)]

    def migrate(self, raster, *options):
        """The media type of the image in the drawing; none when the view is refused."""
        raster = raster.replace("$DIR", str(self.folder))
        document = view("v", f'{{"type":"raster","name":"r","sizeem":[1,1],"rastername":"{raster}"}}')
        result = support.run("migrate", "-o", "-", self.write("in/a.json", document), *options)
        self.assertIn(result.code, [0, 4])
        if result.code == 4:
            return None
        self.assertEqual(support.find_faults(result.out), [])
        return result.out.partition("data:image/")[2].partition(";")[0]

    def test_are_found_by_name_and_content(self):
        for file, kind, raster, expected in self.ROWS:
            self.write(file, self.CONTENTS[kind])
            self.assertEqual(self.migrate(raster), expected, f"{file} as '{raster}'")

    def test_a_folder_given_takes_the_place_of_the_others(self):
        self.write("in/near.png", self.CONTENTS["png"])
        self.write("far/away.png", self.CONTENTS["png"])
        (self.folder / "link").symlink_to(self.folder / "far")
        for raster, place, expected in [("near", "far", None), ("away", "far", "png"), ("away", "link", "png"),
                                        ("away", "in", None)]:
            self.assertEqual(self.migrate(raster, "--raster-dir", self.folder / place), expected, f"{raster} in {place}")

    def test_links_and_special_files_are_not_opened(self):
        secret = self.write("secret.png", self.CONTENTS["png"])
        self.write("elsewhere/x.png", self.CONTENTS["png"])
        self.write("in/b.jpg", self.CONTENTS["jpeg"])
        for name, target in [("a.png", secret), ("b.png", secret), ("images", self.folder / "elsewhere")]:
            (self.folder / "in" / name).symlink_to(target)
        (self.folder / "in/folder.png").mkdir()
        os.mkfifo(self.folder / "in/pipe.png")
        # The link to a picture is passed over, what follows is found.
        for raster, expected in [("a", None), ("b", "jpeg"), ("x", None), ("folder", None), ("pipe", None)]:
            self.assertEqual(self.migrate(raster), expected, raster)


class Interruption(support.ToolTest):
    """Three hundred documents and, in the middle of them, a pipe: the tool waits there until it has been stopped."""

    COUNT = 301
    DOCUMENT = f'[{view("a")},{view("b")}]'

    def setUp(self):
        super().setUp()
        self.inputs = [self.write(f"in/{1000 + index}.json", self.DOCUMENT) for index in range(self.COUNT)]
        self.pipe = pathlib.Path(self.inputs[self.COUNT // 2])
        self.arguments = ["migrate", "-o", str(self.folder / "out"), *self.inputs]

    def stop(self, number, *options):
        """Exit code and messages of a run that got the signal in the middle, and the files it made."""
        self.pipe.unlink()
        os.mkfifo(self.pipe)
        with subprocess.Popen([support.TOOL, *self.arguments, *options], stderr=subprocess.PIPE,
                              stdout=subprocess.DEVNULL) as tool:
            with open(self.pipe, "w", encoding="utf-8") as pipe:  # opens when the tool has opened the other end
                tool.send_signal(number)
                pipe.write(self.DOCUMENT)
            error = tool.communicate()[1].decode()
        self.pipe.unlink()
        self.pipe.write_text(self.DOCUMENT, encoding="utf-8")
        return tool.returncode, error, self.read_tree("out")

    def go_on(self, *options):
        result = support.run(*self.arguments, "--skip-existing", *options)
        self.assertEqual(result.code, 0, result.error)
        return self.read_tree("out")

    def test_leaves_whole_drawings_and_goes_on_later(self):
        report = self.folder / "report.json"
        for number, expected, jobs in (signal.SIGINT, 130, "1"), (signal.SIGINT, 130, "4"), (signal.SIGTERM, 143, "2"):
            code, error, part = self.stop(number, "--jobs", jobs, "--report", report)
            self.assertEqual(code, expected)
            self.assertRegex(error, "^interrupted after [0-9]+ of 301 documents; [^\n]*--skip-existing")
            self.assertLess(len(part), 2 * self.COUNT)
            self.check_sound(part)
            # The report counts what is there, and calls nothing refused that was only not reached.
            told = json.loads(report.read_bytes())
            counts = told["exit"], told["summary"]["written"], told["summary"]["refused"]
            self.assertEqual(counts, (expected, len(part), 0))
            whole = self.go_on()
            self.assertEqual(len(whole), 2 * self.COUNT)
            self.check_sound(whole)
            shutil.rmtree(self.folder / "out")

    def test_dumps_hold_all_views_or_are_not_there(self):
        code, _, part = self.stop(signal.SIGINT, "--jobs", "1", "--format", "json")
        self.assertEqual(code, 130)
        self.assertLess(len(part), self.COUNT)
        views = [len(json.loads(dump)["views"]) for dump in self.go_on("--format", "json").values()]
        self.assertEqual(views, [2] * self.COUNT)


if __name__ == "__main__":
    unittest.main()
