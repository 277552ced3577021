#!/usr/bin/env python3
"""Holds the transcripts of pages about serdesctl against the binary, or refreshes them (--update).

Blocks marked `console` are pieces of one session of a shell: lines that begin with "$ " are typed, the others are what is
printed. A block marked `toml` or `serdes-script` whose first line is a comment with a file name is that file. A line of
three dots stands for any number of lines.
"""

from __future__ import annotations

import re
import subprocess
import sys
import unittest
from pathlib import Path

from program import SERDESCTL, ProgramTest
from serdes_runs import LIMIT_SECONDS, ROOT

sys.path.insert(0, str(ROOT / "tests" / "tutorial"))
from tutorial_test import ANY, agrees, shown

PAGES = [ROOT / "docs" / "changing-settings.md"]
BLOCK = re.compile(r"^```(console|toml|serdes-script)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
UPDATE = "--update" in sys.argv


class Shell:
    """Runs lines one by one; each finds the status of the one before it."""

    def __init__(self, folder: Path, env: dict[str, str]) -> None:
        self.folder, self.env, self.status = folder, env, 0

    def run(self, line: str) -> list[str]:
        done = subprocess.run(
            ["sh", "-c", f"(exit {self.status}); {line}"],
            cwd=self.folder,
            env=self.env,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            timeout=LIMIT_SECONDS,
            check=False,
        )
        self.status = done.returncode
        return shown(done.stdout)


class Pages(ProgramTest):
    def test_transcripts(self) -> None:
        for page in PAGES:
            with self.subTest(page.name):
                self.check(page)

    def check(self, page: Path) -> None:
        (self.folder / "bin").mkdir()
        (self.folder / "bin" / "serdesctl").symlink_to(SERDESCTL)
        self.env["PATH"] = f"{self.folder}/bin:{self.env['PATH']}"
        shell = Shell(self.folder, self.env)
        text = page.read_text()
        new = BLOCK.sub(lambda found: self.block(shell, found[1], found[2]), text)
        self.assertIn("\n$ ", new)
        if UPDATE:
            page.write_text(new)

    def block(self, shell: Shell, kind: str, text: str) -> str:
        if kind != "console":
            name = re.match(r"# (\S+)\n", text)
            assert name, text
            (self.folder / name[1]).write_text(text)
            return f"```{kind}\n{text}```"
        new = ""
        for step in re.split(r"^\$ ", text, flags=re.MULTILINE)[1:]:
            typed, _, answer = step.partition("\n")
            expected, printed = shown(answer), shell.run(typed)
            if not UPDATE:
                self.assertTrue(agrees(expected, printed), "\n".join([typed, "expected", *expected, "got", *printed]))
            new += "\n".join([f"$ {typed}", *(expected if ANY in expected else printed)]) + "\n"
        return f"```console\n{new}```"


if __name__ == "__main__":
    unittest.main(argv=[word for word in sys.argv if word != "--update"])
