#!/usr/bin/env python3
"""Batches on the way to their end: workers that die, limits, shards, lists."""

import fcntl
import json
import os
import pathlib
import resource
import signal
import subprocess
import unittest

import support
from support import view


def children_of(process):
    """The process numbers of the children, without those that have ended."""
    found = []
    for status in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            state, parent = status.read_text().rpartition(")")[2].split()[:2]
        except OSError:
            continue
        if int(parent) == process and state != "Z":
            found.append(int(status.parent.name))
    return found


class Workers(support.ToolTest):
    """Twenty documents and, in the middle of them, a pipe that a worker waits at."""

    def setUp(self):
        super().setUp()
        self.inputs = [self.write(f"in/{index:02}.json", f'[{view("a")},{view("b")}]') for index in range(20)]
        os.unlink(self.inputs[10])
        os.mkfifo(self.inputs[10])
        self.report = self.folder / "report.jsonl"

    def migrate(self, *options, at_pipe=lambda tool: None):
        """A run that is met at the pipe, which nothing is ever written to."""
        with subprocess.Popen([support.TOOL, "migrate", "-o", self.folder / "out", "-j", "1", "--report", self.report,
                               *self.inputs, *options], stderr=subprocess.PIPE, stdout=subprocess.DEVNULL) as tool:
            with open(self.inputs[10], "wb"):  # opens when the tool has opened the other end
                at_pipe(tool)
                error = tool.communicate(timeout=60)[1].decode()
        return tool.returncode, error

    def exits_told(self):
        lines = [json.loads(line) for line in self.report.read_text().splitlines()]
        return {line["source"]: line["exit"] for line in lines if "source" in line}

    def check_only_the_pipe_failed(self, code):
        self.assertEqual(self.exits_told(), {source: code if source == self.inputs[10] else 0 for source in self.inputs})
        drawings = self.read_tree("out")
        self.assertEqual(len(drawings), 38)
        self.check_sound(drawings)

    def test_a_death_costs_the_document_in_hand(self):
        for number in signal.SIGSEGV, signal.SIGKILL, signal.SIGABRT:
            def end_worker(tool, number=number):
                for child in children_of(tool.pid):
                    os.kill(child, number)
            code, error = self.migrate("--force", at_pipe=end_worker)
            self.assertEqual(code, 7, error)
            self.assertIn(f"{self.inputs[10]}: the process that worked on it was ended by signal {number}", error)
            self.check_only_the_pipe_failed(7)

    def test_time_has_an_end(self):
        code, error = self.migrate("--time-limit", "0.2")
        self.assertEqual(code, 5, error)
        self.assertIn(f"{self.inputs[10]}: a limit was reached: 0.2 seconds for one document; --time-limit", error)
        self.check_only_the_pipe_failed(5)

    def test_signals_are_answered_within_a_document(self):
        for number in signal.SIGTERM, signal.SIGINT:
            code, error = self.migrate("--force", at_pipe=lambda tool, number=number: tool.send_signal(number))
            self.assertEqual(code, 128 + number)
            self.assertIn("interrupted after 10 of 20 documents", error)
            self.assertEqual(list(self.exits_told()), self.inputs[:10])
            self.assertEqual(len(self.read_tree("out")), 20)

    def test_workers_are_shut_in(self):
        def status_of_worker(*options):
            found = {}

            def look(tool):
                for child in children_of(tool.pid):
                    for line in pathlib.Path(f"/proc/{child}/status").read_text().splitlines():
                        name, _, value = line.partition(":")
                        found[name] = value.strip()
                tool.kill()
            self.migrate("--force", *options, at_pipe=look)
            return found["NoNewPrivs"], found.get("Seccomp")
        self.assertEqual(status_of_worker("--sandbox", "off")[0], "0")
        inside = status_of_worker("--sandbox", "auto")
        if inside[0] == "1":  # else the kernel cannot
            self.assertEqual(inside, ("1", "2"))
            self.assertEqual(status_of_worker("--sandbox", "require"), ("1", "2"))

    def test_workers_do_not_outlive_the_run(self):
        workers = []

        def end_run(tool):
            workers.extend(children_of(tool.pid))
            tool.kill()
        self.migrate(at_pipe=end_run)
        self.assertEqual(len(workers), 1)
        for _ in range(1000):
            if not pathlib.Path(f"/proc/{workers[0]}").exists():
                break
            os.sched_yield()
        else:
            self.assertIn("Z", pathlib.Path(f"/proc/{workers[0]}/stat").read_text())


class Threads(support.ToolTest):
    def test_draw_what_processes_draw(self):
        told = [support.run("migrate", support.SAMPLES, "-o", self.folder / way, "--accept", "all", "-j", "4", "-q",
                            "--isolate", way).error.replace(f"{self.folder / way}", "out") for way in ("auto", "off")]
        self.assertEqual(told[0], told[1])
        self.assertEqual(self.read_tree("auto"), self.read_tree("off"))
        self.assertGreater(len(self.read_tree("off")), 80)


class Sandbox(support.ToolTest):
    def test_changes_no_drawing(self):
        """Documents and pictures behind links, lists and other folders are read in the sandbox as outside."""
        picture = '{"type":"raster","name":"r","rastername":"p","sizeem":[1,1]}'
        self.write("far/a.json", view("a", picture))
        self.write("far/images/p.png", support.PICTURES["png"])
        self.write("pictures/p.gif", support.PICTURES["gif"])
        self.write("near/b.json", view("b", picture))
        (self.folder / "near/a.json").symlink_to("../far/a.json")
        (self.folder / "near/images").mkdir()
        self.write("near/images/p.jpg", support.PICTURES["jpeg"])
        (self.folder / "way").symlink_to("near")
        self.write("list", "near/a.json\nway/b.json\n")
        for arguments in (["--files-from", "list"], ["near/a.json", "far", "--base", "."], ["way"],
                          ["way", "near/a.json", "--base", ".", "--raster-dir", "pictures"]):
            trees = []
            for mode in "off", "auto":
                done = support.run("migrate", *arguments, "-o", f"out-{mode}", "--sandbox", mode, "--force", "-q",
                                   cwd=self.folder)
                self.assertEqual(done.code, 0, [arguments, done.error])
                trees.append(self.read_tree(f"out-{mode}"))
            self.assertTrue(trees[0])
            self.assertEqual(trees[0], trees[1], arguments)


class Leftovers(support.ToolTest):
    def test_temporary_files_of_killed_runs_are_removed_and_no_others(self):
        self.write("in/a.json", view("a"))
        self.write("out/a.json/.ktannot-1-1", "of a run that is gone")
        held = self.write("out/a.json/.ktannot-1-2", "of one that is at work")
        self.write("out/a.json/.ktannot-notes", "of the user")
        with open(held, "rb") as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            self.assertEqual(support.run("migrate", "in", "-o", "out", cwd=self.folder).code, 0)
        self.assertEqual(sorted(self.read_tree("out")),
                         ["a.json/.ktannot-1-2", "a.json/.ktannot-notes", "a.json/001-a.svg"])

    def test_files_over_the_limit_are_failed_writes(self):
        self.write("in/a.json", view("a"))
        self.write("in/b.json", view("b"))
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (700, 700))
        for mode in "auto", "off":
            done = support.run("migrate", "in", "-o", "out", "--isolate", mode, cwd=self.folder, preexec_fn=limit)
            self.assertEqual(done.code, 6)
            self.assertEqual(done.error.count("cannot write: File too large"), 2)
            self.assertEqual(self.read_tree("out"), {})

    def test_dumps_of_long_names_keep_apart(self):
        for name in "a" * 255, "a" * 254 + "b", "ä" * 126 + ".k":
            self.write(f"in/{name}", view("v"))
        done = support.run("migrate", *sorted(str(path) for path in (self.folder / "in").iterdir()), "-o", "out",
                           "--format", "json", cwd=self.folder)
        self.assertEqual(done.code, 0, done.error)
        names = [os.path.basename(name).encode() for name in self.read_tree("out")]
        self.assertEqual([len(names), max(map(len, names))], [3, 255])

    @unittest.skipUnless(os.geteuid() == 0, "only root can lose rights for a run")
    def test_what_may_not_be_read_is_told(self):
        """Folders that can be listed but not entered, and pictures without permission: code 6, by name."""
        picture = '{"type":"raster","name":"r","rastername":"p","sizeem":[1,1]}'
        self.write("in/a.json", view("a", picture))
        self.write("in/p.png", "\udc89PNG\r\n\x1a\n")
        self.write("in/shut/b.json", view("b"))
        self.write("in/c.json", view("c"))
        (self.folder / "in/p.png").chmod(0)
        (self.folder / "in/shut").chmod(0o744)
        (self.folder / "out").mkdir()
        for path in self.folder, self.folder / "out":
            path.chmod(0o777)
        for mode in "auto", "off":
            done = support.run("migrate", "in", "-o", "out", "--isolate", mode, "--force", cwd=self.folder,
                               user=65534, group=65534, extra_groups=[])
            self.assertEqual(done.code, 6, done.error)
            self.assertIn("in/shut: the folder can be listed but not entered: Permission denied", done.error)
            self.assertIn("the picture 'p.png' cannot be read: Permission denied", done.error)
            self.assertEqual(list(self.read_tree("out")), ["c.json/001-c.svg"])

    def test_two_runs_into_one_folder_lose_nothing(self):
        for index in range(80):
            self.write(f"in/{index}.json", view(f"v{index}"))
        runs = [subprocess.Popen([support.TOOL, "migrate", "in", "-o", "out", "-q", "--force", "-j", "2"],
                                 cwd=self.folder) for _ in range(2)]
        self.assertEqual([process.wait() for process in runs], [0, 0])
        tree = self.read_tree("out")
        self.assertEqual(len(tree), 80)
        self.check_sound(tree)


class Shards(support.ToolTest):
    def test_their_union_is_one_run(self):
        for index in range(60):
            self.write(f"in/{index % 7}/{index}.json", view(f"v{index}"))
        whole = support.run("migrate", "in", "-o", "whole", cwd=self.folder)
        self.assertEqual(whole.code, 0, whole.error)
        sizes = []
        for shard in range(1, 8):
            done = support.run("migrate", "in", "-o", "parts", "--shard", f"{shard}/7", cwd=self.folder)
            self.assertEqual(done.code, 0, done.error)
            sizes.append(int(done.out.split()[0]))
        self.assertEqual(self.read_tree("whole"), self.read_tree("parts"))
        self.assertEqual(sum(sizes), 60)
        # The hash of the path below the base decides, whatever stands in front of it.
        for arguments in ["--base", "in", *[f"in/{folder}" for folder in range(7)]], ["--base", ".", "in"]:
            done = support.run("migrate", "-o", "again", "--shard", "3/7", "--force", *arguments, cwd=self.folder)
            self.assertEqual(int(done.out.split()[0]) == sizes[2], arguments[1] == "in", done)

    def test_the_hash_is_fnv_1a(self):
        def fnv(text):
            value = 0xcbf29ce484222325
            for byte in text.encode():
                value = (value ^ byte) * 0x100000001b3 % 2**64
            return value
        names = [f"{word}.json" for word in ["a", "b", "c/d", "ä", "long" * 20]]
        for name in names:
            self.write(f"in/{name}", view("v"))
        for shard in range(1, 4):
            support.run("migrate", "in", "-o", f"out{shard}", "--shard", f"{shard}/3", cwd=self.folder)
            made = {name.rpartition("/")[0] for name in self.read_tree(f"out{shard}")}
            self.assertEqual(made, {name for name in names if fnv(name) % 3 == shard - 1})


class Resumption(support.ToolTest):
    """A run over thirty documents, one of which is refused and one of which has problems."""

    def setUp(self):
        super().setUp()
        self.sources = [f"in/{index:02}.json" for index in range(30)]
        for index, source in enumerate(self.sources):
            self.write(source, f'[{view("a")},{view("b")}]' if index % 2 else view(f"v{index}"))
        self.write(self.sources[3], '{"ver":"1.0"}')
        self.write(self.sources[4], '{"ver":"6.22","name":"m","axis":0,"annotations":[]}')

    def arguments(self, *options):
        return ["migrate", "in", "-o", "out", "-j", "2", "--report", "report.jsonl", *options]

    def migrate(self, *options):
        return support.run(*self.arguments("--resume", *options), cwd=self.folder)

    def read_lines(self):
        """Lines of documents by source, without what differs from run to run; each whole and no source twice."""
        text = (self.folder / "report.jsonl").read_text()
        lines = [json.loads(line) for line in text.splitlines()]
        self.assertEqual(lines[0]["report"], 1)
        self.assertEqual([lines[-1]["exit"], lines[-1]["summary"]["documents"]], [4, 30])
        sources = {line["source"]: {key: line[key] for key in line if key not in ("seconds", "mtime")}
                   for line in lines[1:-1]}
        self.assertEqual(len(sources), len(lines) - 2)
        return sources

    def times(self):
        return {path: path.stat().st_mtime_ns for path in (self.folder / "out").rglob("*.svg")}

    def test_does_what_is_left_and_what_has_changed(self):
        self.assertEqual(self.migrate().code, 4)
        whole, lines, before = self.read_tree("out"), self.read_lines(), self.times()
        self.assertEqual(len(lines), 30)
        self.assertEqual(lines["in/04.json"]["findings"], [
            {"code": "KT1204", "severity": "warning", "what": "invalid 'axis' field", "view": 1, "name": "m"}])
        self.assertEqual(lines["in/00.json"]["views"], [
            {"view": 1, "name": "v0", "state": "written", "file": "out/00.json/001-v0.svg", "findings": []}])
        again = self.migrate()
        self.assertEqual([again.code, self.times(), self.read_lines()], [4, before, lines], again.error)
        # Touched and the same; of another content; without its drawing.
        os.utime(self.folder / "in/06.json", (1, 1))
        self.write("in/08.json", view("changed"))
        (self.folder / "out/10.json/001-v10.svg").unlink()
        self.assertEqual(self.migrate().code, 4)
        self.assertEqual({path.parent.name for path, time in self.times().items() if before.get(path) != time},
                         {"08.json", "10.json"})
        self.assertEqual(self.read_lines().keys(), lines.keys())
        self.assertEqual(whole.keys() | {"08.json/001-changed.svg"}, self.read_tree("out").keys())

    def test_kills_cost_the_documents_in_hand_at_most(self):
        self.assertEqual(self.migrate().code, 4)
        whole, lines = self.read_tree("out"), self.read_lines()
        for path in (self.folder / "out").rglob("*.svg"):
            path.unlink()
        report = self.folder / "report.jsonl"
        report.unlink()
        count = 0
        for lines_until_kill in range(0, 30, 3):
            with subprocess.Popen([support.TOOL, *self.arguments("--resume")], cwd=self.folder,
                                  stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL) as tool:
                while tool.poll() is None and (not report.exists() or
                                               report.read_bytes().count(b"\n") < lines_until_kill):
                    pass
                tool.kill()
            if report.exists() and report.stat().st_size > 10:  # a last line that is torn
                count += 1
                with open(report, "r+b") as file:
                    file.truncate(report.stat().st_size - count % 3)
        self.assertEqual(self.migrate().code, 4)
        self.assertEqual(self.read_tree("out"), whole)
        self.assertEqual(self.read_lines(), lines)

    def test_goes_on_with_the_same_options_only(self):
        self.migrate()
        before = (self.folder / "report.jsonl").read_bytes()
        done = self.migrate("--text", "outlines")
        self.assertEqual([done.code, (self.folder / "report.jsonl").read_bytes()], [2, before])
        self.assertIn("other options", done.error)


if __name__ == "__main__":
    unittest.main()
