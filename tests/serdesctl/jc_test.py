#!/usr/bin/env python3
"""The parser for jc, in a user's folder of such."""
from __future__ import annotations

import json
import shutil
import sys
import unittest

from program import SERDESCTL, ProgramTest, Result
import serdes_runs
from serdes_runs import ROOT, SERDES, StrPath

PLUGIN = ROOT / "packaging" / "jc" / "serdes.py"


class Jc(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        parsers = self.folder / ".local" / "share" / "jc" / "jcparsers"
        parsers.mkdir(parents=True)
        shutil.copy(PLUGIN, parsers)
        self.env["SERDESCTL"] = SERDESCTL

    def jc(self, text: bytes, *words: StrPath) -> Result:
        jc = [sys.executable, "-m", "jc"]
        done = serdes_runs.run(*(words or ["--serdes"]), program=jc, typed=text, env=self.env)
        return Result(done.returncode, done.stdout.decode(), done.stderr.decode())

    def log(self, commands: str) -> bytes:
        return serdes_runs.run(typed=commands.encode(), env=self.env).stdout

    def test_a_log(self) -> None:
        log = self.log("showFFE 0-1\nbogus\n")
        status, out, err = self.jc(log)
        self.assertEqual((status, err), (0, ""))
        answers = json.loads(out)
        self.assertEqual([answer["kind"] for answer in answers], ["start", "commands", "ffe", "refused"])
        direct = serdes_runs.run("parse", program=[SERDESCTL], typed=log, env=self.env).stdout
        self.assertEqual(answers, [json.loads(line) for line in direct.splitlines()])

    def test_the_topology_from_a_file(self) -> None:
        table = self.ctl("-t", "sim", "show", "--text", "showVGA", "gl").out.encode()
        status, _, err = self.jc(table)
        self.assertNotEqual(status, 0)
        self.assertIn("the answer to showConfig tells", " ".join(err.split()))
        self.env["SERDESCTL_CONFIG"] = self.script(self.log("showConfig\n"), "config")
        status, out, _ = self.jc(table)
        self.assertEqual((status, len(json.loads(out)[0]["records"])), (0, 16))

    def test_a_command_that_jc_runs(self) -> None:
        tools = self.folder / "bin"
        tools.mkdir()
        (tools / "serdes").symlink_to(SERDES)
        self.env["PATH"] = f"{tools}:{self.env['PATH']}"
        status, out, err = self.jc(b"", "serdes", self.script("readRx 4 0 3\n"))
        self.assertEqual((status, err), (0, ""))
        self.assertEqual(json.loads(out)[1]["records"][0]["address"], 3)

    def test_nothing_gives_nothing(self) -> None:
        self.assertEqual(self.jc(b""), (0, "[]\n", ""))


if __name__ == "__main__":
    unittest.main()
