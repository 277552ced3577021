#!/usr/bin/env python3
"""The binary on platform libraries that were not made from this tree's declarations.

LD_LIBRARY_PATH alone puts them in the simulated switch's place. Their records have other names and types, their
operations are spread over the three libraries in another way, none has a soname, and two need a fourth library.
SERDES names the binary, FOREIGN_PLATFORM the libraries' folder.
"""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
from serdes_runs import environment, run

LIBRARIES = os.environ["FOREIGN_PLATFORM"]


def run_on(libraries: str, script: Path | str) -> subprocess.CompletedProcess[bytes]:
    """Runs the binary with every symbol looked up at the start, so that one that is missing shows."""
    return run(script, env=environment(LD_BIND_NOW="1", LD_LIBRARY_PATH=libraries))


class ForeignPlatform(unittest.TestCase):
    def test_every_operation_means_the_same_to_both_sides(self) -> None:
        done = run_on(LIBRARIES, HERE / "script")
        self.assertEqual((done.stderr, done.returncode), (b"", 0))
        self.assertEqual(done.stdout.decode().splitlines(), (HERE / "out").read_text().splitlines())
        self.assertEqual(done.stdout, (HERE / "out").read_bytes())

    def test_a_folder_without_such_libraries_leaves_the_simulated_switch(self) -> None:
        with tempfile.TemporaryDirectory() as empty:
            done = run_on(empty, os.devnull)
        self.assertEqual(done.stdout, run_on("", os.devnull).stdout)
        self.assertEqual((done.stderr, done.returncode), (b"", 0))
        self.assertIn(b", portCount:24\n", done.stdout)


if __name__ == "__main__":
    unittest.main()
