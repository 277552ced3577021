#!/usr/bin/env python3
"""Runs the recipes of docs/automation.md, and what the README shows of serdesctl.

A fenced block is a file where its first line names one behind the language; `toml` is targets.toml, `sh` is run, a `cron`
line is run without its five fields, and a block without a language is what was printed, where three dots stand for
anything. `ssh` runs its command on this machine, on a simulated switch for each host.
"""

from __future__ import annotations

import re
import shutil
import subprocess
import sys
import unittest

from program import SERDESCTL, ProgramTest
from serdes_runs import LIMIT_SECONDS, ROOT, SERDES

PAGE = ROOT / "docs" / "automation.md"
RECIPE = re.compile(r"^## \d+\. (.*?)\n(.*?)(?=^## |\Z)", re.MULTILINE | re.DOTALL)
BLOCK = re.compile(r"^```(\w*) ?(.*?)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
# A remote shell: the last word is its command; the host is the word before.
SSH = """#!/bin/sh
while [ $# -gt 2 ]; do shift; done
SERDES_SIMULATOR_STATE={folder}/$1.state exec sh -c "$2"
"""


def without_counts(text: str) -> str:
    """Counted errors grow with each platform call, and columns with them."""
    return re.sub(" +", " ", re.sub(r"~\d+", "~N", text))


def matches(expected: str, printed: str) -> bool:
    """Whether the lines are as expected: "..." stands for the rest of a line, and alone for any number of lines."""
    expected, printed = without_counts(expected), without_counts(printed)
    lines = (
        "(?:.*\n)*" if line == "..." else re.escape(line).replace(r"\.\.\.", ".*") + "\n"
        for line in expected.splitlines()
    )
    return re.fullmatch("".join(lines), printed) is not None


@unittest.skipUnless(shutil.which("jq"), "no jq here: scripts/install-dependencies jq")
class Recipes(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        programs = self.folder / "bin"
        programs.mkdir()
        for name, target in (("serdesctl", SERDESCTL), ("serdes", SERDES), ("python3", sys.executable)):
            self.program(name, f'#!/bin/sh\nexec {target} "$@"\n')
        self.program("jc", f'#!/bin/sh\nexec {sys.executable} -m jc "$@"\n')
        self.program("ssh", SSH.format(folder=self.folder))
        self.env["PATH"] = f"{programs}:{self.env['PATH']}"
        self.env["SERDES_SIMULATOR_CLOCK"] = "virtual:1000000"
        parsers = self.folder / ".local/share/jc/jcparsers"
        parsers.mkdir(parents=True)
        shutil.copy(ROOT / "packaging/jc/serdes.py", parsers)

    def program(self, name: str, text: str) -> None:
        path = self.folder / "bin" / name
        path.write_text(text)
        path.chmod(0o755)

    def targets(self, text: str) -> None:
        """A lock for each, as they are all on one machine here."""
        file = self.folder / ".config/serdesctl/targets.toml"
        file.parent.mkdir(parents=True)
        file.write_text(re.sub(r"^\[(\w+)\]$", rf'[\1]\nlock = "{self.folder}/\1.lock"', text, flags=re.MULTILINE))

    def shell(self, text: str) -> str:
        """What commands print, errors too, and how they end if not well."""
        done = subprocess.run(
            ["sh", "-c", text],
            env=self.env,
            cwd=self.folder,
            text=True,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=LIMIT_SECONDS,
            check=False,
        )
        return done.stdout + (f"status {done.returncode}\n" if done.returncode else "")

    def test_every_recipe_does_what_the_page_says(self) -> None:
        recipes = RECIPE.findall(PAGE.read_text(encoding="utf-8"))
        self.assertEqual(len(recipes), 10)
        for title, text in recipes:
            printed, compared = "", 0
            for language, name, block in BLOCK.findall(text):
                if name:
                    (self.folder / name).write_text(block)
                elif language == "toml":
                    self.targets(block)
                elif language:
                    printed = self.shell(block.split(" ", 5)[5] if language == "cron" else block)
                else:
                    compared += 1
                    with self.subTest(title):
                        self.assertTrue(matches(block, printed), f"\n{block}---\n{printed}")
            self.assertTrue(compared, title)

    def test_the_readme_begins_with_health(self) -> None:
        text = (ROOT / "README.md").read_text(encoding="utf-8").partition("\n## Automate\n")[2].partition("\n## ")[0]
        first, shown, more = (block for _, _, block in BLOCK.findall(text))
        command = first.splitlines()[-1].removeprefix("scripts/")
        printed = self.shell(command)
        self.assertTrue(matches(shown + "status 1\n", printed), printed)
        for command in more.splitlines():
            with self.subTest(command):
                printed = self.shell(f"cd {ROOT} && {command.removeprefix('scripts/').partition('#')[0]}")
                self.assertNotRegex(printed, r"status \d+\n\Z")


if __name__ == "__main__":
    unittest.main()
