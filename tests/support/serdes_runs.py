"""Runs of the tool, for all tests that run it: to its end, in a dialogue through pipes, and at a terminal.

SERDES names the binary; without it, it is the one in build/. Nothing waits for a fixed time: everything waits for text or
for the end of the process, with a limit that only a failure reaches.
"""

from __future__ import annotations

import contextlib
import fcntl
import os
import pty
import re
import select
import struct
import subprocess
import tempfile
import termios
import time
from collections.abc import Callable, Mapping, Sequence
from pathlib import Path
from typing import IO, Any, Self

ROOT = Path(__file__).resolve().parents[2]
SERDES = os.path.abspath(os.environ.get("SERDES", ROOT / "build" / "serdes"))
LIMIT_SECONDS = 600  # of what may hang: on a busy machine, by emulation, much takes minutes
PROMPT = b"serdes: "
ROWS, COLUMNS = 400, 200  # more than a test prints

StrPath = str | os.PathLike[str]


def environment(
    *,
    switch: StrPath | None = None,
    state: StrPath | None = None,
    trace: StrPath | None = None,
    clock: str = "virtual",
    **others: StrPath,
) -> dict[str, str]:
    """The caller's, where what is asked for, and nothing else, is said to the simulated switch."""
    env = {name: value for name, value in os.environ.items() if not name.startswith("SERDES")}
    said = {"SWITCH": switch, "STATE": state, "TRACE": trace, "CLOCK": clock}
    env |= {f"SERDES_SIMULATOR_{name}": str(value) for name, value in said.items() if value is not None}
    return env | {"LC_ALL": "C"} | {name: str(value) for name, value in others.items()}


def shipped_switch(name: str) -> Path:
    return ROOT / "simulator" / "switches" / f"{name}.toml"


def run(
    *words: StrPath,
    typed: bytes = b"",
    program: Sequence[StrPath] = (SERDES,),
    env: Mapping[str, str] | None = None,
    folder: StrPath | None = None,
) -> subprocess.CompletedProcess[bytes]:
    """Runs the tool with these words after its name and this standard input, to its end."""
    return subprocess.run(
        [*program, *words],
        input=typed,
        capture_output=True,
        env=environment() if env is None else env,
        cwd=folder,
        timeout=LIMIT_SECONDS,
        check=False,
    )


def run_script(lines: str, **how: Any) -> subprocess.CompletedProcess[bytes]:
    """Runs the tool with a script file of these lines."""
    with tempfile.NamedTemporaryFile("w") as script:
        script.write(lines)
        script.flush()
        return run(script.name, **how)


def start(
    *words: StrPath,
    program: Sequence[StrPath] = (SERDES,),
    env: Mapping[str, str] | None = None,
    folder: StrPath | None = None,
    **popen: Any,
) -> subprocess.Popen[bytes]:
    """Starts the tool, and leaves it to the caller to wait for it and to end it. Its output goes into a pipe."""
    how: dict[str, Any] = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE} | popen
    return subprocess.Popen([*program, *words], env=environment() if env is None else env, cwd=folder, **how)


class Dialogue:
    """The tool with somebody who types and reads, through pipes. Killed at the end of a `with` block."""

    input: IO[bytes]
    output: IO[bytes]

    def __init__(self, *words: StrPath, **how: Any) -> None:
        self.process = start(*words, stdin=subprocess.PIPE, **how)
        self.input, self.output = self.process.stdin, self.process.stdout
        self.seen = b""  # since the last text that was waited for

    def __enter__(self) -> Self:
        return self

    def __exit__(self, *_: object) -> None:
        self.process.kill()
        self.process.wait()
        self.output.close()
        with contextlib.suppress(BrokenPipeError):
            self.input.close()

    def type(self, text: str | bytes) -> None:
        self.input.write(text.encode() if isinstance(text, str) else text)
        self.input.flush()

    def read_to(self, text: bytes, times: int = 1) -> bytes:
        """Waits for the text to come that many times after what was read before, and gives all up to there."""
        self._wait_until(lambda: self.seen.count(text) >= times, lambda: f"{text!r} in {self.seen!r}")
        parts = self.seen.split(text, times)
        self.seen = parts.pop()
        return text.join([*parts, b""])

    def exit_status(self) -> int:
        """Ends the input, reads the output to its end and gives the exit status."""
        self.input.close()
        self._read_to_the_end()
        return self.process.wait(LIMIT_SECONDS)

    def _read(self, end: float) -> bool:
        """Takes what comes next; whether anything came before the output ended or time was up."""
        ready, _, _ = select.select([self.output], [], [], max(0, end - time.monotonic()))
        output = self._output() if ready else b""
        self.seen += output
        return bool(output)

    def _output(self) -> bytes:
        return os.read(self.output.fileno(), 65536)

    def _read_to_the_end(self) -> None:
        end = time.monotonic() + LIMIT_SECONDS
        while self._read(end):
            pass

    def _wait_until(self, reached: Callable[[], object], what: Callable[[], str]) -> None:
        end = time.monotonic() + LIMIT_SECONDS
        while not reached():
            if not self._read(end):
                raise AssertionError(f"no {what()}")


class Terminal(Dialogue):
    """A program at a terminal, and what a person sees there, where line editors redraw their line.

    With `root` the program runs in a root of its own, and `program` and `folder` are paths there.
    """

    def __init__(
        self,
        *words: StrPath,
        program: Sequence[StrPath] = (SERDES,),
        env: Mapping[str, str] | None = None,
        folder: StrPath | None = None,
        root: StrPath = "/",
    ) -> None:
        import pyte  # not every Python has it, and not every test needs it

        self.screen = pyte.Screen(COLUMNS, ROWS)
        # Keeps the beginning of a sequence or a character whose rest has not been read yet.
        self.stream = pyte.ByteStream(self.screen)
        fd, device = pty.openpty()
        # The window has its size before the program can ask for it.
        fcntl.ioctl(device, termios.TIOCSWINSZ, struct.pack("HHHH", ROWS, COLUMNS, 0, 0))

        def enter() -> None:
            os.login_tty(device)
            if root != "/":
                os.chroot(root)
            os.chdir(folder or ("." if root == "/" else "/"))

        variables = {**(environment() if env is None else env), "TERM": "xterm"}
        self.process = start(*words, program=program, env=variables, stdout=None, preexec_fn=enter, pass_fds=[device])
        os.close(device)
        self.input = self.output = os.fdopen(fd, "r+b", buffering=0)
        self.seen = b""

    def read_to(self, text: bytes, times: int = 1) -> bytes:
        """As in a dialogue, with the ends of lines as the program wrote them."""
        return super().read_to(text, times).replace(b"\r\n", b"\n")

    def text(self) -> str:
        """What stands on the screen, without blanks that nobody sees."""
        rows = (self.screen.buffer[y] for y in range(self.screen.lines))
        lines = ("".join(row[x].data for x in range(max(row, default=-1) + 1)) for row in rows)
        return "\n".join(line.rstrip() for line in lines).rstrip()

    def wait_until(self, reached: Callable[[str], object], what: str) -> str:
        """Waits until the screen's text is as wanted, and gives the text."""
        self._wait_until(lambda: reached(self.text()), lambda: f"{what!r} at the end of:\n" + self.text()[-2000:])
        return self.text()

    def wait_for(self, pattern: str) -> str:
        """Waits until the screen's text ends in the pattern, and gives the text."""
        return self.wait_until(lambda text: re.search(rf"(?:{pattern})\Z", text), pattern)

    def hang_up(self) -> None:
        self.output.close()

    def exit_status(self) -> int:
        """Reads the output to its end and gives the exit status."""
        if not self.output.closed:
            self._read_to_the_end()
        return self.process.wait(LIMIT_SECONDS)

    def _output(self) -> bytes:
        try:
            output = super()._output()
        except OSError:  # the program has left the terminal
            return b""
        self.stream.feed(output)
        return output
