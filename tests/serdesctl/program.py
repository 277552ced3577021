"""What the tests of the binary share: running it in surroundings of its own, and tools that misbehave."""
import contextlib
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

SERDES = os.path.abspath(os.environ["SERDES"])
SERDESCTL = os.path.abspath(os.environ["SERDESCTL"])
HERE = pathlib.Path(__file__).resolve().parent
SWITCHES = HERE.parents[1] / "simulator" / "switches"
LIMIT_SECONDS = 60


class ProgramTest(unittest.TestCase):
    """A folder per test; lock, journal and configuration are in it."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.env = {
            name: value for name, value in os.environ.items() if not name.startswith(("SERDES", "XDG_", "SUDO_"))
        }
        self.env.update(
            LC_ALL="C",
            HOME=folder.name,
            SERDES=SERDES,
            SERDESCTL_TOOL=SERDES,
            SERDESCTL_LOCK=str(self.folder / "lock"),
            SERDESCTL_JOURNAL=str(self.folder / "journal"),
            SERDES_SIMULATOR_CLOCK="virtual",
        )

    def script(self, text, name="script"):
        path = self.folder / name
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return str(path)

    def start(self, *words, **more):
        process = subprocess.Popen(
            [SERDESCTL, *words],
            env=self.env,
            **dict(dict(stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True), **more),
        )
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        if process.poll() is None:
            process.kill()
        process.wait()
        for stream in (process.stdout, process.stderr):
            if stream:
                stream.close()

    def ctl(self, *words, **more):
        """Runs the program to its end: status, standard output, standard error."""
        process = self.start(*words, **more)
        out, err = process.communicate(timeout=LIMIT_SECONDS)
        return process.returncode, out, err

    def run_script(self, text, *words):
        return self.ctl(*words, "run", self.script(text))

    def misbehaving(self, how, trigger="readRx 0 0 7"):
        """Makes the tool one that behaves so at the command `trigger`; see fake_tool.py."""
        tool = self.folder / "tool"
        tool.write_text(
            f"#!/bin/sh\nexec {sys.executable} {HERE}/fake_tool.py {how} '{trigger}' {self.folder}/tool.pid\n"
        )
        tool.chmod(0o755)
        self.env["SERDESCTL_TOOL"] = str(tool)

    def tool_pids(self):
        return [int(line) for line in (self.folder / "tool.pid").read_text().split()]

    def assert_ended(self, pids):
        self.wait_until(lambda: not any(alive(pid) for pid in pids), f"one of {pids} lives on")

    def wait_until(self, condition, message):
        end = time.monotonic() + LIMIT_SECONDS
        while not condition():
            if time.monotonic() > end:
                self.fail(message)
            time.sleep(0.01)


def alive(pid):
    with contextlib.suppress(FileNotFoundError, ProcessLookupError):
        return pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()[0] != "Z"
    return False


def plain_tool(lines, env):
    """What the tool alone prints for these commands as a script, without its start."""
    with tempfile.NamedTemporaryFile("w") as script:
        script.write(lines)
        script.flush()
        done = subprocess.run([SERDES, script.name], env=env, capture_output=True, text=True, check=True)
    start, _, rest = done.stdout.partition("current asicNum:")
    assert start, done.stderr
    answers = rest.split("\n", 2)[2]
    assert answers.endswith("\n\n"), answers[-80:]
    return answers[:-2]  # the end of the script


def main():
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    unittest.main()
