#!/usr/bin/env python3
"""The scripts with which people build, run and package, where nothing is built by them.

SOURCE and BUILD are the trees, SERDES is the binary.
"""
import os
import pty
import re
import shutil
import subprocess
import tempfile
import unittest
from collections.abc import Iterable
from pathlib import Path
from typing import Any

SOURCE, BUILD, SERDES = Path(os.environ["SOURCE"]), Path(os.environ["BUILD"]), Path(os.environ["SERDES"])
SCRIPTS = SOURCE / "scripts"
LIMIT_SECONDS = 60
# Installed besides what the packages are built with.
BESIDES = {"g++", "libgtest-dev", "python3-pyte", "python3-jsonschema", "jc", "jq"}


def run(*command: str | Path, **options: Any) -> subprocess.CompletedProcess[str]:
    return subprocess.run(
        command,
        text=True,
        capture_output=True,
        timeout=LIMIT_SECONDS,
        check=False,
        stdin=subprocess.DEVNULL,
        **options,
    )


class Tree(unittest.TestCase):
    """A tree with copies of some scripts and stand-ins for others, which write down how they were called."""

    def setUp(self) -> None:
        self.root = Path(self.enterContext(tempfile.TemporaryDirectory()))
        (self.root / "scripts").mkdir()

    def copy(self, *names: str) -> None:
        for name in names:
            shutil.copy(SCRIPTS / name, self.root / "scripts")

    def stand_in(self, path: str, status: int = 0) -> None:
        file = self.root / path
        file.parent.mkdir(exist_ok=True)
        file.write_text(f'#!/bin/sh\necho "{path} $*" >>"{self.root}/called"\nexit {status}\n', encoding="ascii")
        file.chmod(0o755)

    def called(self) -> list[str]:
        file = self.root / "called"
        return file.read_text(encoding="ascii").splitlines() if file.exists() else []


class Run(Tree):
    def setUp(self) -> None:
        super().setUp()
        self.copy("run")
        self.stand_in("scripts/install-dependencies")
        (self.root / "build").mkdir()
        (self.root / "build/serdes").symlink_to(SERDES)

    def test_scripts_are_handed_on_and_named_from_where_one_stands(self) -> None:
        self.stand_in("scripts/build")
        folder = self.root / "my scripts"
        folder.mkdir()
        (folder / "one more").write_text("readPLL 1 7\n", encoding="ascii")
        (folder / "other").write_text("readPLL 1 8\n", encoding="ascii")
        done = run(self.root / "scripts/run", "one more", "other", cwd=folder)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(re.findall("PLL address (0x..)=", done.stdout), ["0x07", "0x08"])
        self.assertEqual(self.called(), ["scripts/build serdes"])

    def test_off_a_terminal_the_prompt_is_the_tool_alone(self) -> None:
        self.stand_in("scripts/build")
        done = run(self.root / "scripts/run")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("\nserdes: ", done.stdout)
        self.assertEqual(self.called(), ["scripts/build serdes"])

    def at_a_terminal(self) -> list[str]:
        self.stand_in("scripts/build")
        self.stand_in("build/serdes-prompt")
        terminal, device = pty.openpty()
        try:
            status = subprocess.call([self.root / "scripts/run"], stdin=device, stdout=device, timeout=LIMIT_SECONDS)
        finally:
            os.close(terminal)
            os.close(device)
        self.assertEqual(status, 0)
        return self.called()

    def test_at_a_terminal_the_prompt_has_line_editing_which_is_installed(self) -> None:
        self.assertEqual(
            self.at_a_terminal(),
            ["scripts/build serdes command_texts", "scripts/install-dependencies rlwrap", "build/serdes-prompt "],
        )

    def test_at_a_terminal_where_line_editing_cannot_be_installed_there_is_a_prompt_all_the_same(self) -> None:
        self.stand_in("scripts/install-dependencies", status=1)
        self.assertEqual(self.at_a_terminal()[-1], "build/serdes-prompt ")

    def test_a_build_that_fails_runs_nothing(self) -> None:
        self.stand_in("scripts/build", status=1)
        done = run(self.root / "scripts/run", "/dev/null")
        self.assertEqual((done.returncode, done.stdout), (1, ""))


class Serdesctl(Tree):
    def serdesctl(self, status: int = 0) -> subprocess.CompletedProcess[str]:
        self.copy("serdesctl")
        self.stand_in("scripts/build", status)
        self.stand_in("build/serdesctl")
        return run(self.root / "scripts/serdesctl", "-t", "sim", "run", "my script", cwd="/")

    def test_it_is_built_with_the_tool_and_gets_its_arguments(self) -> None:
        self.assertEqual(self.serdesctl().returncode, 0)
        self.assertEqual(self.called(), ["scripts/build serdesctl serdes", "build/serdesctl -t sim run my script"])

    def test_a_build_that_fails_runs_nothing(self) -> None:
        self.assertEqual(self.serdesctl(status=1).returncode, 1)
        self.assertEqual(self.called(), ["scripts/build serdesctl serdes"])


class Build(Tree):
    def build(self, *targets: str, **variables: str) -> list[str]:
        self.copy("build", "quietly")
        self.stand_in("scripts/install-dependencies")
        self.stand_in("programs/cmake")
        path = f"{self.root}/programs:{os.environ['PATH']}"
        done = run(self.root / "scripts/build", *targets, env={"PATH": path, **variables})
        self.assertEqual(done.returncode, 0, done.stderr)
        return self.called()

    def test_configures_once_and_builds_everything(self) -> None:
        self.assertEqual(
            self.build(),
            [
                "scripts/install-dependencies ",
                "programs/cmake -S . -B build -G Ninja -DSERDES_WERROR=OFF",
                "programs/cmake --build build --parallel",
            ],
        )

    def test_a_configured_tree_is_only_built(self) -> None:
        (self.root / "build").mkdir()
        (self.root / "build/CMakeCache.txt").touch()
        self.assertEqual(
            self.build("serdes", "words"),
            ["scripts/install-dependencies ", "programs/cmake --build build --target serdes words"],
        )

    def test_warnings_are_errors_in_continuous_integration(self) -> None:
        self.assertIn("programs/cmake -S . -B build -G Ninja -DSERDES_WERROR=ON", self.build(CI="1"))


class Quietly(unittest.TestCase):
    def quietly(self, command: str) -> tuple[int, str, str]:
        done = run(SCRIPTS / "quietly", "sh", "-c", command)
        return done.returncode, done.stdout, done.stderr

    def test_success_says_nothing(self) -> None:
        self.assertEqual(self.quietly("echo out; echo err >&2"), (0, "", ""))

    def test_failure_shows_all_that_was_said_and_fails(self) -> None:
        self.assertEqual(self.quietly("echo out; echo err >&2; exit 3"), (1, "", "out\nerr\n"))


class Dependencies(Tree):
    def installs(self, *more: str, installed: Iterable[str] = ()) -> set[str]:
        """What install-dependencies asks apt for where only the packages named are installed."""
        programs = self.root / "programs"
        programs.mkdir(exist_ok=True)
        self.copy("install-dependencies")
        shutil.copytree(SOURCE / "packaging/debian", self.root / "packaging/debian", dirs_exist_ok=True)
        (programs / "dpkg-query").write_text(
            '#!/bin/sh\nfor name; do :; done\ncase " $INSTALLED " in *" $name "*) echo "install ok installed" ;; esac\n'
        )
        (programs / "id").write_text("#!/bin/sh\necho 0\n")
        self.stand_in("programs/apt-get")
        for name in ("dpkg-query", "id"):
            (programs / name).chmod(0o755)
        done = run(
            self.root / "scripts/install-dependencies",
            *more,
            env={"PATH": f"{programs}:{os.environ['PATH']}", "INSTALLED": " ".join(installed)},
        )
        self.assertEqual(done.returncode, 0, done.stderr)
        prefix = "programs/apt-get install -y --no-install-recommends "
        return {name for line in self.called() for name in line.removeprefix(prefix).split()}

    def build_depends(self) -> set[str]:
        control = (SOURCE / "packaging/debian/control").read_text(encoding="ascii")
        (line,) = re.findall(r"^Build-Depends: (.*(?:\n .*)*)", control, re.MULTILINE)
        return {re.match(r"[\w.+-]+", item.strip()).group() for item in line.split(",")} - {"debhelper-compat"}

    def test_what_the_packages_are_built_with_is_installed(self) -> None:
        self.assertLessEqual({"cmake", "ninja-build", "libtomlplusplus-dev", "python3"}, self.build_depends())
        self.assertEqual(self.installs(), self.build_depends() | BESIDES)

    def test_only_what_is_missing_is_installed_and_what_else_is_asked_for(self) -> None:
        there = self.build_depends() | BESIDES - {"libgtest-dev"}
        self.assertEqual(self.installs("shellcheck", "g++", installed=there), {"libgtest-dev", "shellcheck"})

    def test_nothing_is_done_when_all_is_there(self) -> None:
        self.assertEqual(self.installs(installed=self.build_depends() | BESIDES), set())

    @unittest.skipUnless(shutil.which("dpkg-query"), "not a Debian system")
    def test_everything_outside_the_tree_that_the_build_uses_is_of_a_package_that_is_installed(self) -> None:
        cache = (BUILD / "CMakeCache.txt").read_text(encoding="utf-8")

        def cached(name: str) -> Path:
            return Path(re.search(rf"^{name}:\w+=(.*)$", cache, re.MULTILINE).group(1))

        used = [
            cached("CMAKE_COMMAND"),
            cached("TOMLPLUSPLUS_INCLUDE_DIR") / "toml++/toml.h",
            cached("Python3_EXECUTABLE"),
            cached("GTest_DIR") / "GTestConfig.cmake",
        ]
        if cached("CMAKE_GENERATOR") == Path("Ninja"):
            used.append(cached("CMAKE_MAKE_PROGRAM"))
        if cached("CMAKE_CXX_COMPILER").name in ("c++", "g++"):
            used.append(cached("CMAKE_CXX_COMPILER"))
        # What is of no package was brought here by other means.
        packages = {self.package_of(file) for file in used} - {""}
        self.assertLessEqual(packages, self.with_dependencies(self.installs()))

    def package_of(self, file: Path) -> str:
        return re.split("[:,]", run("dpkg-query", "--search", file.resolve()).stdout)[0]

    def with_dependencies(self, names: Iterable[str]) -> set[str]:
        """The packages, and those that they depend on."""
        shown = run("dpkg-query", "--show", "--showformat", "${Package}: ${Depends}, ${Pre-Depends}\n").stdout
        depends = dict(line.split(":", 1) for line in shown.splitlines())
        found, left = set(), set(names)
        while left:
            name = left.pop()
            found.add(name)
            left |= set(re.findall(r"(?:^|[,|])\s*([\w.+-]+)", depends.get(name, ""))) - found
        return found


if __name__ == "__main__":
    unittest.main()
