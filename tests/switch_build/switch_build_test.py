#!/usr/bin/env python3
"""The build for a switch, against folders of libraries as switches have them.

It is configured as one does it by hand, in BUILD_FOLDER, which is kept from run to run. CMAKE, SOURCE_FOLDER, READELF,
BUILD_OPTIONS (a line each), EMULATOR (for a cross build), FOREIGN_PLATFORM and SIMULATOR (folders of libraries) come
from the build that the test belongs to.
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

CMAKE, SOURCES, BUILD = os.environ["CMAKE"], os.environ["SOURCE_FOLDER"], Path(os.environ["BUILD_FOLDER"])
BUILD_OPTIONS = os.environ["BUILD_OPTIONS"].splitlines()
EMULATOR = shlex.split(os.environ.get("EMULATOR", ""))
FOREIGN, SIMULATOR = Path(os.environ["FOREIGN_PLATFORM"]), Path(os.environ["SIMULATOR"])
FOREIGN_CASE = Path(SOURCES, "tests", "foreign_platform")
PLATFORM = ["libasicApi.so", "libswbApi.so", "libswServerApi.so"]
LIMIT_SECONDS = 300  # of a build


def build_step(*arguments: serdes_runs.StrPath) -> subprocess.CompletedProcess[str]:
    """Runs CMake; its complaints are in the output."""
    return subprocess.run(
        [CMAKE, *arguments],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        timeout=LIMIT_SECONDS,
        check=False,
    )


def configure(libraries: Path) -> subprocess.CompletedProcess[str]:
    platform = ["-DSERDES_PLATFORM=switch", f"-DSERDES_PLATFORM_DIR={libraries}"]
    return build_step("-S", SOURCES, "-B", BUILD, *BUILD_OPTIONS, *platform)


def run(libraries: Path, script: serdes_runs.StrPath) -> subprocess.CompletedProcess[bytes]:
    env = serdes_runs.environment(LD_BIND_NOW="1", LD_LIBRARY_PATH=libraries)
    return serdes_runs.run(script, program=[*EMULATOR, BUILD / "serdes"], env=env)


class SwitchBuild(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.libraries = Path(folder.name)

    def copy_from(self, folder: Path) -> None:
        """Copies the three libraries, and what they need besides stays behind."""
        for name in PLATFORM:
            shutil.copy(folder / name, self.libraries)

    def build(self) -> None:
        done = configure(self.libraries)
        self.assertEqual(done.returncode, 0, done.stdout)
        done = build_step("--build", BUILD, "--target", "serdes", "command_texts")
        self.assertEqual(done.returncode, 0, done.stdout)

    def check_dynamic_section(self) -> None:
        """The binary needs the platform by its plain names and the C library, and brings no search path."""
        dynamic = subprocess.check_output([os.environ["READELF"], "-d", BUILD / "serdes"], text=True)
        needed = re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)
        self.assertEqual(needed[:3], PLATFORM)
        self.assertLessEqual({re.sub(r"\.so.*", "", name) for name in needed[3:]}, {"libm", "libc"})
        self.assertNotRegex(dynamic, r"\((RUNPATH|RPATH)\)")

    def check_texts(self) -> None:
        """The manual and the words are made without a platform."""
        self.assertIn(".It Ic setFFE ", (BUILD / "packaging/serdes.8").read_text(encoding="ascii"))
        self.assertIn("setFFE\n", (BUILD / "packaging/words").read_text(encoding="ascii"))

    def check_foreign_platform(self) -> None:
        done = run(FOREIGN, FOREIGN_CASE / "script")
        self.assertEqual((done.stderr, done.returncode), (b"", 0))
        self.assertEqual(done.stdout, (FOREIGN_CASE / "out").read_bytes())

    def test_libraries_without_sonames_that_need_a_library_that_is_not_there(self) -> None:
        self.copy_from(FOREIGN)
        self.build()
        self.check_dynamic_section()
        self.check_texts()
        self.check_foreign_platform()

    def test_libraries_with_sonames_and_another_platform_at_run_time(self) -> None:
        self.copy_from(SIMULATOR)
        self.build()
        self.check_dynamic_section()
        done = run(self.libraries, os.devnull)
        self.assertEqual((done.stderr, done.returncode), (b"", 0))
        self.assertIn(b", portCount:24\n", done.stdout)
        self.check_foreign_platform()

    def test_a_folder_that_lacks_a_library_is_refused(self) -> None:
        self.copy_from(FOREIGN)
        (self.libraries / "libswbApi.so").unlink()
        done = configure(self.libraries)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(f"{self.libraries} has no libswbApi.so", " ".join(done.stdout.split()))

    def test_a_folder_that_does_not_exist_is_refused(self) -> None:
        done = configure(self.libraries / "nowhere")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("SERDES_PLATFORM_DIR must name the folder", done.stdout)


if __name__ == "__main__":
    unittest.main()
