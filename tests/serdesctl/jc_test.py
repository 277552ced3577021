#!/usr/bin/env python3
"""The parser for jc, in a user's folder of such."""
import json
import os
import shutil
import subprocess
import sys

from program import HERE, SERDES, SERDESCTL, ProgramTest, main

PLUGIN = HERE.parents[1] / "packaging" / "jc" / "serdes.py"


class Jc(ProgramTest):
    def setUp(self):
        super().setUp()
        parsers = self.folder / ".local" / "share" / "jc" / "jcparsers"
        parsers.mkdir(parents=True)
        shutil.copy(PLUGIN, parsers)
        self.env["SERDESCTL"] = SERDESCTL

    def jc(self, text, *words):
        done = subprocess.run(
            [sys.executable, "-m", "jc", *(words or ["--serdes"])], input=text, capture_output=True, env=self.env
        )
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def log(self, commands):
        return subprocess.run([SERDES], input=commands.encode(), capture_output=True, env=self.env).stdout

    def test_a_log(self):
        log = self.log("showFFE 0-1\nbogus\n")
        status, out, err = self.jc(log)
        self.assertEqual((status, err), (0, ""))
        answers = json.loads(out)
        self.assertEqual([answer["kind"] for answer in answers], ["start", "commands", "ffe", "refused"])
        direct = subprocess.run([SERDESCTL, "parse"], input=log, capture_output=True, env=self.env).stdout
        self.assertEqual(answers, [json.loads(line) for line in direct.splitlines()])

    def test_the_topology_from_a_file(self):
        table = subprocess.run(
            [SERDESCTL, "-t", "sim", "show", "--text", "showVGA", "gl"], capture_output=True, env=self.env
        ).stdout
        status, _, err = self.jc(table)
        self.assertNotEqual(status, 0)
        self.assertIn("the answer to showConfig tells", " ".join(err.split()))
        self.env["SERDESCTL_CONFIG"] = self.script(self.log("showConfig\n"), "config")
        status, out, _ = self.jc(table)
        self.assertEqual((status, len(json.loads(out)[0]["records"])), (0, 16))

    def test_a_command_that_jc_runs(self):
        tools = self.folder / "bin"
        tools.mkdir()
        os.symlink(SERDES, tools / "serdes")
        self.env["PATH"] = f"{tools}:{self.env['PATH']}"
        status, out, err = self.jc(b"", "serdes", self.script("readRx 4 0 3\n"))
        self.assertEqual((status, err), (0, ""))
        self.assertEqual(json.loads(out)[1]["records"][0]["address"], 3)

    def test_nothing_gives_nothing(self):
        self.assertEqual(self.jc(b"")[:2], (0, "[]\n"))


if __name__ == "__main__":
    main()
