#!/usr/bin/env python3
"""Faults of the machine in a small run: the n-th call of each kind fails. Needs strace.

Whatever fails, a run ends by itself with a code of its own, says why when it is not 0, leaves whole drawings under their
names and no temporary file, and what it calls written is what an undisturbed run writes. KT_TORTURE=1 makes every call
fail, one run each; without it some of each kind.
"""

import json
import os
import re
import shutil
import subprocess
import unittest

import support
from support import view

# What a run asks of the machine, and how that can fail.
FAULTS = {"write": "ENOSPC", "openat": "EMFILE", "openat2": "EACCES", "renameat2": "EIO", "renameat": "EIO", "mkdirat": "ENOSPC",
          "fsync": "EIO", "fstat": "EIO", "newfstatat": "EIO", "read": "EIO", "clone": "EAGAIN",
          "pipe2": "EMFILE", "getdents64": "EIO", "flock": "ENOLCK", "fcntl": "EMFILE", "prctl": "EINVAL", "seccomp": "EPERM",
          "landlock_create_ruleset": "EOPNOTSUPP", "landlock_restrict_self": "E2BIG", "ioctl": "EIO", "prlimit64": "EPERM"}
# Calls before the tool's own first one are the loader's.
SAMPLES = 2


@unittest.skipUnless(shutil.which("strace"), "there is no strace")
class Faults(support.ToolTest):
    def setUp(self):
        super().setUp()
        self.write("in/a.json", f'[{view("a")},{view("b")}]')
        self.write("in/c.json", view("c"))
        self.arguments = [support.TOOL, "migrate", "in", "-o", "out", "-j", "1", "--durable", "--report", "report.jsonl"]
        self.assertEqual(subprocess.run(self.arguments, cwd=self.folder, capture_output=True, check=False).returncode, 0)
        self.whole = self.read_tree("out")

    def clean(self):
        shutil.rmtree(self.folder / "out", ignore_errors=True)
        for name in "report.jsonl", "trace":
            (self.folder / name).unlink(missing_ok=True)

    def trace(self, *options):
        self.clean()
        done = subprocess.run(["strace", "-f", "-qq", "-o", "trace", *options, *self.arguments], cwd=self.folder,
                              capture_output=True, check=False, timeout=60)
        return done.returncode, support.as_text(done.stderr), (self.folder / "trace").read_text(errors="replace")

    def check(self, what, code, error):
        self.assertIn(code, [0, 3, 4, 5, 6, 7], f"{what}: {error}")
        self.assertTrue(code == 0 or error, f"{what}: nothing is told of {code}")
        tree = self.read_tree("out") if (self.folder / "out").exists() else {}
        for name, content in tree.items():
            self.assertNotIn("/.ktannot-", name, what)
            self.check_sound({name: content})
        if code == 0:
            self.assertEqual(tree, self.whole, what)
        report = self.folder / "report.jsonl"
        for line in report.read_text().splitlines() if report.exists() else []:
            for told in json.loads(line).get("views", []):
                if told["state"] == "written":
                    self.assertIn(told["file"].removeprefix("out/"), tree, what)

    def test_each_call_may_fail(self):
        _, _, trace = self.trace("-e", "trace=" + ",".join(f"?{name}" for name in FAULTS))
        # Ours begin when the program has been loaded; what the dynamic loader does is not.
        calls = re.findall(r"^\d+\s+(\w+)\(", trace, re.MULTILINE)
        before = re.findall(r"^\d+\s+(\w+)\(", trace.partition("in/a.json")[0].partition("in\", ")[0], re.MULTILINE)
        count = 0
        for name, error in FAULTS.items():
            first, last = before.count(name) + 1, calls.count(name)
            every = range(first, last + 1)
            chosen = every if os.environ.get("KT_TORTURE") else every[::max(1, len(every) // SAMPLES)]
            for number in chosen:
                code, told, _ = self.trace("-e", f"trace={name}", "-e", f"inject={name}:error={error}:when={number}")
                self.check(f"{error} of {name} {number} of {last}", code, told)
                count += 1
        self.assertGreater(count, 20)


if __name__ == "__main__":
    unittest.main()
