#!/usr/bin/env python3
"""Runs of the tool that are told in text: what is there, what is run, what comes out."""

import json
import os
import pathlib
import tempfile
import unittest

import support


class Case(dict):
    """The lines of a case by what they begin with, e.g. "4" under "exit" of "exit: 4"."""

    def __missing__(self, key):
        return []


def read_cases():
    text = (support.SOURCE / "tests/data/command_cases.txt").read_text(encoding="utf-8")
    for block in text.split("\n== ")[1:]:
        name, *lines = block.splitlines()
        case = Case()
        for line in filter(None, lines):
            key, value = line.split(": ", 1)
            case.setdefault(key, []).append(value)
        yield name, case


class CommandCases(support.ToolTest):
    def expand(self, text):
        """The text with the places of this machine and other words replaced."""
        view = support.view("good", '{"type":"text","text":"M8"}')
        raster = support.view("r", '{"type":"raster","rastername":"p","sizeem":[1,1]}')
        words = {"$DIR": str(self.folder), "$DOCUMENTS": f"{support.SOURCE}/tests/data/documents",
                 "$SAMPLES": str(support.SAMPLES), "$VIEW": view, "$RASTER": raster, "$PNG": "\udc89PNG\r\n\x1a\n",
                 "$WHOLEPNG": support.PICTURES["png"], "$LARGE": " " * 7_400_000, "$ESC": "\x1b", "$BREAK": "\n"}
        for word, meaning in words.items():
            text = text.replace(word, meaning)
        return text

    def joined(self, lines):
        return "".join(self.expand(line) + "\n" for line in lines if line != "(nothing)")

    def pairs(self, lines):
        """The first word and the rest of each line."""
        return [line.partition(" ")[::2] for line in map(self.expand, lines)]

    def make_files(self, case):
        for name, content in self.pairs(case["file"]):
            self.write(name, content)
        for name, target in self.pairs(case["link"]):
            os.symlink(target, self.folder / name)
        for name in case["pipe"]:
            os.mkfifo(self.folder / name)

    def check_text(self, case, key, text):
        if key in case:
            self.assertEqual(text, self.joined(case[key]))
        for part in case[key + " has"]:
            self.assertIn(self.expand(part), text)
        drawings = text.split("<?xml")[1:]
        for drawing in drawings:
            self.assertEqual(support.find_faults("<?xml" + drawing), [])
        for control in [] if drawings else support.CONTROLS:
            self.assertNotIn(control, text)

    def check_files(self, case):
        tree = self.read_tree()
        for name, part in self.pairs(case["holds"]):
            self.assertIn(part, tree[name])
        for name, _ in self.pairs(case["file"]) + self.pairs(case["link"]):
            tree.pop(name, None)
        drawings = {name: content for name, content in tree.items() if name.endswith(".svg")}
        self.check_sound(drawings)
        for control in support.CONTROLS:
            self.assertNotIn(control, "".join(tree[name] for name in tree.keys() - drawings.keys()))
        if "made" in case:
            self.assertEqual(sorted(tree), sorted(name for name in case["made"] if name != "(nothing)"))
        if "drawings" in case:
            self.assertEqual([str(len(drawings))], case["drawings"])

    def check_run(self, case, command):
        self.make_files(case)
        words = ["" if word == "''" else word for word in self.expand(command).split()]
        result = support.run(*words, input=self.joined(case["input"]), cwd=self.folder)
        self.assertEqual([str(result.code)], case["exit"], result.error)
        if result.code == 0 and not case["error"] and not case["error has"]:
            self.assertEqual(result.error, "")
        self.check_text(case, "out", result.out)
        self.check_text(case, "error", result.error)
        if "log" in case:
            lines = [line for dump in result.out.splitlines() for line in json.loads(dump)["log"]]
            self.assertEqual([(5, message) for message in case["log"]], [(line["type"], line["message"]) for line in lines])
        self.check_files(case)

    def test_run_as_told(self):
        count = 0
        for name, case in read_cases():
            for command in case["run"]:
                with self.subTest(name, run=command), tempfile.TemporaryDirectory() as folder:
                    self.folder = pathlib.Path(folder)
                    self.check_run(case, command)
                    count += 1
        self.assertGreater(count, 150)


if __name__ == "__main__":
    unittest.main()
