"""Programs at a terminal, and what a person sees there: line editors redraw their line, a screen shows the result."""
import contextlib
import fcntl
import os
import pty
import re
import select
import signal
import struct
import termios
import time

LIMIT_SECONDS = 30
ROWS, COLUMNS = 100, 200
TOKEN = re.compile(r"\x1b\[(\??[\d;]*)([A-Za-z])|[\s\S]")


class Screen:
    """The lines of a terminal that does as much as line editors ask of it."""

    def __init__(self):
        self.lines = [""]
        self.row = 0
        self.column = 0

    def show(self, output):
        for token in TOKEN.finditer(output):
            if token.group(2):
                self._control(token.group(1), token.group(2))
            else:
                self._character(token.group(0))

    def text(self):
        return "\n".join(line.rstrip() for line in self.lines)

    def _control(self, parameters, letter):
        count = int(parameters or 1) if not parameters.startswith("?") else 0
        if letter == "C":
            self.column += count
        elif letter == "A":
            self.row -= count
        elif letter == "K":
            self._line(self._line()[: self.column])
        elif letter not in "hlm":
            raise AssertionError(f"escape sequence {parameters}{letter}")

    def _character(self, character):
        if character == "\n":
            self.row += 1
            if self.row == len(self.lines):
                self.lines.append("")
        elif character == "\r":
            self.column = 0
        elif character == "\b":
            self.column -= 1
        elif character != "\a":
            line = self._line().ljust(self.column)
            self._line(line[: self.column] + character + line[self.column + 1:])
            self.column += 1

    def _line(self, text=None):
        if text is not None:
            self.lines[self.row] = text
        return self.lines[self.row]


class Terminal:
    """A program on a pseudo-terminal, in a root of its own."""

    def __init__(self, root, arguments, environment, folder="/"):
        self.screen = Screen()
        # The window has its size before the program can ask for it.
        self.fd, device = pty.openpty()
        fcntl.ioctl(device, termios.TIOCSWINSZ, struct.pack("HHHH", ROWS, COLUMNS, 0, 0))
        self.pid = os.fork()
        if self.pid == 0:
            os.close(self.fd)
            os.login_tty(device)
            os.chroot(root)
            os.chdir(folder)
            os.execve(arguments[0], arguments, dict(environment, TERM="xterm"))
        os.close(device)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.fd)
        with contextlib.suppress(ProcessLookupError):
            os.kill(self.pid, signal.SIGKILL)
        with contextlib.suppress(ChildProcessError):
            os.waitpid(self.pid, 0)

    def type(self, text):
        os.write(self.fd, text.encode())

    def wait_until(self, reached, what):
        """Waits until the screen's text is as wanted, and gives the text."""
        end = time.monotonic() + LIMIT_SECONDS
        while not reached(self.screen.text()):
            ready, _, _ = select.select([self.fd], [], [], max(0, end - time.monotonic()))
            try:
                output = os.read(self.fd, 65536) if ready else b""
            except OSError:
                output = b""
            if not output:
                last_lines = "\n".join(self.screen.text().splitlines()[-20:])
                raise AssertionError(f"no {what!r} at the end of:\n{last_lines}")
            self.screen.show(output.decode())
        return self.screen.text()

    def wait_for(self, pattern):
        """Waits until the screen's text ends in the pattern."""
        return self.wait_until(lambda text: re.search(rf"(?:{pattern})\Z", text), pattern)

    def exit_status(self):
        """Reads to the end and gives the exit status."""
        with contextlib.suppress(OSError):
            while output := os.read(self.fd, 65536):
                self.screen.show(output.decode())
        _, status = os.waitpid(self.pid, 0)
        return os.waitstatus_to_exitcode(status)
