#!/usr/bin/env python3
"""The binary on platform libraries that were not made from this tree's declarations.

LD_LIBRARY_PATH alone puts them in the simulated switch's place. Their records have other names and types, their
operations are spread over the three libraries in another way, none has a soname, and two need a fourth library.
SERDES is the binary's path, FOREIGN_PLATFORM the libraries' folder.
"""
import os
import pathlib
import subprocess
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
SERDES = os.path.abspath(os.environ["SERDES"])
LIBRARIES = os.environ["FOREIGN_PLATFORM"]
LIMIT_SECONDS = 30


class ForeignPlatform(unittest.TestCase):
    def run_on(self, libraries, *args):
        """Runs the binary with every symbol looked up at the start, so that one that is missing shows."""
        env = dict(os.environ, LC_ALL="C", LD_BIND_NOW="1", LD_LIBRARY_PATH=libraries)
        for name in ("SERDES_SIMULATOR_SWITCH", "SERDES_SIMULATOR_STATE"):
            env.pop(name, None)
        return subprocess.run([SERDES, *args], env=env, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=LIMIT_SECONDS, check=False)

    def test_every_operation_means_the_same_to_both_sides(self):
        done = self.run_on(LIBRARIES, str(HERE / "script"))
        self.assertEqual((done.stderr, done.returncode), (b"", 0))
        self.assertEqual(done.stdout.decode().splitlines(), (HERE / "out").read_text().splitlines())
        self.assertEqual(done.stdout, (HERE / "out").read_bytes())

    def test_a_folder_without_such_libraries_leaves_the_simulated_switch(self):
        with tempfile.TemporaryDirectory() as empty:
            done = self.run_on(empty, os.devnull)
        self.assertEqual(done.stdout, self.run_on("", os.devnull).stdout)
        self.assertEqual((done.stderr, done.returncode), (b"", 0))
        self.assertIn(b", portCount:24\n", done.stdout)


if __name__ == "__main__":
    unittest.main()
