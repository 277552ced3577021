#!/usr/bin/env python3
"""The build installed into a folder, moved away from there, and run.

BUILD is the build tree, SERDES its binary, SOURCE the source tree, CMAKE the program that installs, and EMULATOR runs what
was built, in a cross build.
"""
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
import serdes_runs

BUILD, SOURCE, SERDES = Path(os.environ["BUILD"]), Path(os.environ["SOURCE"]), Path(os.environ["SERDES"])
EMULATOR = shlex.split(os.environ["EMULATOR"])
FAILURES = "(?m)^(command|too|unknown|invalid|error) |serdes err"


def run(*command: str | Path, **variables: str) -> subprocess.CompletedProcess[str]:
    """Runs a program, with changes to its environment."""
    done = serdes_runs.run(program=command, env=serdes_runs.environment(**variables))
    stdout, stderr = done.stdout.decode(), done.stderr.decode()
    if done.returncode != 0:
        raise AssertionError(f"{command}: {stdout}{stderr}")
    return subprocess.CompletedProcess(done.args, done.returncode, stdout, stderr)


class InstalledTree(unittest.TestCase):
    folder: Path
    tree: Path
    bin: Path

    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        # What was installed before can be removed by this file: it stays.
        manifest = BUILD / "install_manifest.txt"
        if manifest.exists():
            manifest.rename(cls.folder / "manifest")
            cls.addClassCleanup(shutil.move, cls.folder / "manifest", manifest)
        run(os.environ["CMAKE"], "--install", BUILD, "--prefix", cls.folder / "first")
        manifest.unlink()
        (cls.folder / "elsewhere").mkdir()
        cls.tree = (cls.folder / "first").rename(cls.folder / "elsewhere/tree")
        cls.bin = cls.tree / "bin"

    def path_with(self, name: str, text: str) -> str:
        """A search path with a program of that name, and what a shell script needs."""
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for needed in ("sh", "dirname", "readlink", "stty", "cat"):
            (folder / needed).symlink_to(shutil.which(needed))
        if name:
            (folder / name).write_text(f"#!/bin/sh\n{text}\n", encoding="ascii")
            (folder / name).chmod(0o755)
        return str(folder)

    def test_everything_that_the_packages_take_is_there(self) -> None:
        wanted = [
            line
            for package in ("serdes", "serdes-simulator", "serdesctl")
            for line in (SOURCE / f"packaging/debian/{package}.install").read_text(encoding="ascii").split()
        ]
        self.assertGreater(len(wanted), 8)
        for pattern in wanted:
            with self.subTest(pattern=pattern):
                # The folder of the architecture is Debian's.
                here = pattern.replace("usr/lib/*/", "lib*/**/").removeprefix("usr/")
                self.assertTrue(list(self.tree.glob(here)))
        for document in ("serdes/README.md", "serdes/choices.md", "serdesctl/records.md", "serdesctl/automation.md"):
            self.assertTrue((self.tree / "share/doc" / document).is_file())

    def test_the_binary_is_the_one_that_was_built(self) -> None:
        self.assertEqual((self.bin / "serdes").read_bytes(), SERDES.read_bytes())

    @unittest.skipIf(EMULATOR, "starts the tool without the emulator")
    def test_serdesctl_finds_the_tool_and_the_simulated_switch_of_the_tree(self) -> None:
        journal = self.folder / "journal"
        script = self.tree / "share/serdesctl/examples/check-and-tune.serdes"
        done = run(*EMULATOR, self.bin / "serdesctl", "-t", "sim", "run", script, SERDESCTL_JOURNAL=str(journal))
        self.assertIn(
            "ffe mode", run(*EMULATOR, self.bin / "serdesctl", "-t", "sim", "show", "--text", "showFFE", "2").stdout
        )
        self.assertIn("Amin                  26 \n", done.stdout)
        self.assertIn("clearErrors 2", (journal / "journal.jsonl").read_text(encoding="utf-8"))

    def test_the_example_scripts_run_on_the_simulated_switch_of_the_tree(self) -> None:
        for script in (self.tree / "share/serdes/examples").iterdir():
            with self.subTest(script=script.name):
                done = run(*EMULATOR, self.bin / "serdes", script)
                self.assertTrue(done.stdout.startswith("switchHwConfig.NumSlots:4"))
                self.assertNotRegex(done.stdout, FAILURES)
                self.assertIn("=====", done.stdout)
                self.assertEqual(done.stderr, "")

    @unittest.skipIf(EMULATOR, "the dynamic loader's listing is the emulator's own")
    def test_the_libraries_are_those_of_the_tree(self) -> None:
        listed = run(self.bin / "serdes", LD_TRACE_LOADED_OBJECTS="1", LD_LIBRARY_PATH="").stdout
        found = dict(re.findall(r"(lib\w+Api\.so) => (\S+)", listed))
        self.assertEqual(len(found), 3)
        for library in found.values():
            self.assertTrue(Path(library).resolve().is_relative_to(self.tree), library)

    @unittest.skipIf(EMULATOR, "runs the binary without the emulator")
    def test_the_prompt_without_a_line_editor_hands_on_its_arguments_and_says_why(self) -> None:
        path = self.path_with("", "")
        script = self.folder / "two words.serdes"
        script.write_text("readPLL 1 7\n", encoding="ascii")
        done = run(self.bin / "serdes-prompt", script, "no-such", PATH=path)
        plain = run(self.bin / "serdes", script, "no-such")
        self.assertIn("PLL address 0x07= 0x", done.stdout)
        self.assertEqual(done.stdout, plain.stdout)
        self.assertEqual(done.stderr, "serdes-prompt: rlwrap is not installed: lines cannot be edited\n" + plain.stderr)

    def check_editor_arguments(self, prompt: Path, binary: Path, words: Path) -> None:
        path = self.path_with("rlwrap", 'printf "%s\\n" "$@"')
        *options, file, tool, first, second = run(prompt, "a script", "b", PATH=path).stdout.splitlines()
        self.assertEqual((options[-1], Path(file).resolve()), ("--file", words))
        self.assertEqual((Path(tool), first, second), (binary, "a script", "b"))

    def test_the_line_editor_gets_the_words_and_the_arguments(self) -> None:
        self.check_editor_arguments(self.bin / "serdes-prompt", self.bin / "serdes", self.tree / "share/serdes/words")

    def test_the_prompt_of_the_build_tree_too(self) -> None:
        self.check_editor_arguments(BUILD / "serdes-prompt", SERDES, BUILD / "packaging/words")

    def test_the_prompt_can_be_started_by_a_link(self) -> None:
        link = self.folder / "link"
        link.symlink_to(self.bin / "serdes-prompt")
        self.check_editor_arguments(link, self.bin / "serdes", self.tree / "share/serdes/words")


if __name__ == "__main__":
    unittest.main()
