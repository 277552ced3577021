"""What the tests of the binary share: running it in surroundings of its own, and tools that misbehave.

SERDESCTL names the binary; without it, it is the one in build/.
"""

from __future__ import annotations

import contextlib
import os
import subprocess
import sys
import tempfile
import time
import unittest
from collections.abc import Callable, Iterable, Mapping
from pathlib import Path
from typing import Any, NamedTuple

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
import serdes_runs
from serdes_runs import LIMIT_SECONDS, ROOT, SERDES, StrPath

SERDESCTL = os.path.abspath(os.environ.get("SERDESCTL", ROOT / "build" / "serdesctl"))
EMULATED = SERDESCTL.endswith("-emulated")  # a script that runs it as another processor would
HERE = Path(__file__).resolve().parent


class Result(NamedTuple):
    status: int
    out: str
    err: str


class ProgramTest(unittest.TestCase):
    """A folder per test; lock, journal and configuration are in it."""

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.env = serdes_runs.environment(
            HOME=self.folder,
            SERDES=SERDES,
            SERDESCTL_TOOL=SERDES,
            SERDESCTL_LOCK=self.folder / "lock",
            SERDESCTL_JOURNAL=self.folder / "journal",
        )
        for name in [name for name in self.env if name.startswith(("XDG_", "SUDO_", "SSH_"))]:
            del self.env[name]

    def script(self, text: str | bytes, name: str = "script") -> str:
        path = self.folder / name
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return str(path)

    def start(self, *words: StrPath, **how: Any) -> subprocess.Popen[str]:
        pipes: dict[str, Any] = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
        process: subprocess.Popen[str] = subprocess.Popen(
            [SERDESCTL, *words], env=self.env, text=True, **(pipes | how)  # fmt: skip
        )
        self.addCleanup(end, process)
        return process

    def ctl(self, *words: StrPath, **how: Any) -> Result:
        """Runs the program to its end."""
        process = self.start(*words, **how)
        out, err = process.communicate(timeout=LIMIT_SECONDS)
        return Result(process.returncode, out, err)

    def without_profile(self) -> None:
        """Who is killed while writing what was covered, or has no room for it, would spoil what others write there."""
        self.env["LLVM_PROFILE_FILE"] = os.devnull

    def run_script(self, text: str | bytes, *words: StrPath) -> Result:
        return self.ctl(*words, "run", self.script(text))

    def misbehaving(self, how: str, trigger: str = "readRx 0 0 7") -> None:
        """Makes the tool one that behaves so at the command `trigger`; see fake_tool.py."""
        tool = self.folder / "tool"
        words = f"{sys.executable} {HERE}/fake_tool.py {how} '{trigger}' {self.folder}/tool.pid"
        tool.write_text(f"#!/bin/sh\nexec {words}\n")
        tool.chmod(0o755)
        self.env["SERDESCTL_TOOL"] = str(tool)

    def tool_pids(self) -> list[int]:
        return [int(word) for word in (self.folder / "tool.pid").read_text().split()]

    def assert_ended(self, pids: Iterable[int]) -> None:
        self.wait_until(lambda: not any(alive(pid) for pid in pids), f"one of {pids} lives on")

    def wait_until(self, condition: Callable[[], object], message: str) -> None:
        limit = time.monotonic() + LIMIT_SECONDS
        while not condition():
            if time.monotonic() > limit:
                self.fail(message)
            time.sleep(0.01)


def end(process: subprocess.Popen[str]) -> None:
    if process.poll() is None:
        process.kill()
    process.wait()
    for stream in (process.stdin, process.stdout, process.stderr):
        if stream:
            stream.close()


def alive(pid: int) -> bool:
    with contextlib.suppress(FileNotFoundError, ProcessLookupError):
        return state_of(pid) != "Z"
    return False


def state_of(pid: int) -> str:
    """The letter that the system has for what the process does."""
    return Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()[0]


def children(pid: int) -> list[int]:
    found = subprocess.run(["pgrep", "-P", str(pid)], capture_output=True, text=True, check=True)
    return [int(word) for word in found.stdout.split()]


def plain_tool(lines: str, env: Mapping[str, str]) -> str:
    """What the tool alone prints for these commands as a script, without its start."""
    done = serdes_runs.run_script(lines, env=env)
    start, _, rest = done.stdout.decode().partition("current asicNum:")
    assert start and done.returncode == 0, done.stderr
    answers = rest.split("\n", 2)[2]
    assert answers.endswith("\n\n"), answers[-80:]
    return answers[:-2]  # the end of the script
