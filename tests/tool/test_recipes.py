#!/usr/bin/env python3
"""The recipes of docs/batches.md, run as they stand there: each gives the drawings of one run."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

import support
from support import view

RECIPE = re.compile(r"<!-- recipe: ([^>]*) -->\n```\w+\n(.*?)^```$", re.MULTILINE | re.DOTALL)
RECIPES = dict(RECIPE.findall((support.SOURCE / "docs/batches.md").read_text(encoding="utf-8")))
COUNT = 120


def find_python(*modules):
    """A Python that has these modules; none when there is none."""
    for python in sys.executable, "/usr/bin/python3":
        if shutil.which(python) and not subprocess.run([python, "-c", f"import {','.join(modules)}"], check=False,
                                                       stderr=subprocess.DEVNULL).returncode:
            return python
    return None


class Recipes(support.ToolTest):
    def setUp(self):
        super().setUp()
        for index in range(COUNT):
            self.write(f"archive/{index % 5}/part {index}.{'JSON' if index % 3 else 'json'}", view(f"v{index}"))
        (self.folder / "bin").mkdir()
        (self.folder / "bin/ktannot").symlink_to(os.path.abspath(support.TOOL))
        self.environment = {**os.environ, "PATH": f"{self.folder}/bin:{os.environ['PATH']}", "HOME": str(self.folder)}
        support.run("migrate", "archive", "-o", "expected", "-q", cwd=self.folder)

    def do(self, *command, **variables):
        done = subprocess.run(command, cwd=self.folder, env={**self.environment, **variables}, capture_output=True,
                              timeout=120, check=False)
        self.assertEqual(done.returncode, 0, support.as_text(done.stderr))

    def check(self, reports=0):
        expected = self.read_tree("expected")
        self.assertEqual(len(expected), COUNT)
        self.assertEqual(self.read_tree("drawings"), expected)
        lines = [json.loads(line) for path in self.folder.glob("report*.jsonl") for line in path.read_text().splitlines()]
        self.assertEqual(sum("source" in line for line in lines), COUNT if reports else 0)
        self.assertEqual(sum("summary" in line for line in lines), reports)

    def test_one_machine(self):
        for _ in range(2):
            self.do("bash", "-c", RECIPES["one machine"])
            self.check(1)

    @unittest.skipUnless(shutil.which("parallel"), "there is no GNU parallel")
    def test_parallel(self):
        self.write(".parallel/will-cite", "")
        self.do("bash", "-c", RECIPES["parallel"])
        self.check(7)
        # A part that failed is done again, and nothing else.
        log = self.folder / "shards.log"
        rows = log.read_text().splitlines()
        log.write_text("\n".join(rows[:-1] + [re.sub(r"\t0\t0\tktannot", "\t6\t0\tktannot", rows[-1])]) + "\n")
        shutil.rmtree(self.folder / "drawings/4")
        self.do("bash", "-c", "parallel --retry-failed --joblog shards.log")
        made = {path.parent.name for path in (self.folder / "drawings/4").rglob("*.svg")}
        self.assertTrue(0 < len(made) < COUNT // 5)

    def test_xargs(self):
        self.do("bash", "-o", "pipefail", "-c", RECIPES["xargs"])
        self.check()

    @unittest.skipUnless(find_python("distributed"), "there is no Dask")
    def test_dask(self):
        for name, reports in ("dask, by shard", 7), ("dask, by document", 7):
            script = self.write("tasks.py", RECIPES[name])
            self.do(find_python("distributed"), script)
            self.check(reports)

    def test_slurm(self):
        script = self.write("shards.sh", RECIPES["slurm"])
        first, last = map(int, re.search(r"--array=(\d+)-(\d+)", RECIPES["slurm"]).groups())
        for task in range(first, last + 1):
            self.do("bash", script, SLURM_ARRAY_TASK_ID=str(task), SLURM_ARRAY_TASK_MAX=str(last),
                    SLURM_CPUS_PER_TASK="2")
        self.check(7)

    @unittest.skipUnless(find_python("yaml"), "there is no reader of YAML")
    def test_kubernetes(self):
        read = "import json, sys, yaml; print(json.dumps(yaml.safe_load(sys.stdin)))"
        job = json.loads(subprocess.run([find_python("yaml"), "-c", read], input=RECIPES["kubernetes"].encode(),
                                        capture_output=True, check=True).stdout)["spec"]
        container = job["template"]["spec"]["containers"][0]
        for index in range(job["completions"]):
            self.do(*container["command"], *container["args"], JOB_COMPLETION_INDEX=str(index))
        self.check(7)
        never = job["podFailurePolicy"]["rules"][0]["onExitCodes"]["values"]
        self.assertFalse({0, 3, 6, 130, 137, 143} & set(never))
        # What ends with problems has ended well; other codes come out as they are.
        for code, expected in (3, 0), (6, 6), (4, 4):
            (self.folder / "bin/ktannot").unlink()
            tool = pathlib.Path(self.write("bin/ktannot", f"#!/bin/sh\nexit {code}\n"))
            tool.chmod(0o755)
            done = subprocess.run([*container["command"], *container["args"]], cwd=self.folder, check=False,
                                  env={**self.environment, "JOB_COMPLETION_INDEX": "0"})
            self.assertEqual(done.returncode, expected)


if __name__ == "__main__":
    unittest.main()
