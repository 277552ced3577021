"""A tool that misbehaves. It passes everything on to the real one until it reads the trigger.

Arguments: how, the trigger, a file to write process ids to. The real tool is in SERDES.
"""

from __future__ import annotations

import os
import pathlib
import subprocess
import sys
import time
from collections.abc import Callable, Iterable, Iterator
from functools import partial
from itertools import cycle, repeat

PROMPT = b"serdes: "
END = b"\n\n" + PROMPT
before_next: list[bytes] = []  # printed before the answer to the next command


def write(data: bytes) -> None:
    os.write(1, data)


# What a behaviour consists of: text to print, seconds to wait, something to do.
Act = bytes | float | Callable[[], object]

FOR_EVER = 1000.0


def byte_by_byte(answer: bytes) -> Iterator[Act]:
    for i in range(len(answer)):
        yield answer[i : i + 1]
        yield 0.001


HOW: dict[str, Callable[[bytes], Iterable[Act]]] = {
    "dies": lambda _: [partial(os._exit, 7)],
    "is_killed": lambda _: [partial(os.kill, os.getpid(), 9)],
    "dies_in_answer": lambda answer: [answer[:5], partial(os._exit, 0)],
    "complains": lambda _: [partial(os.write, 2, b"something is broken\n"), partial(os._exit, 1)],
    "hangs": lambda _: [FOR_EVER],
    "hangs_in_answer": lambda answer: [answer[:5], FOR_EVER],
    "closes_output": lambda _: [partial(os.close, 1), FOR_EVER],
    "ignores_its_end": lambda _: [partial(os.close, 0), END + END, FOR_EVER],
    "floods": lambda _: repeat(b"x" * 65536),
    "trickles": lambda _: cycle([b"x", 0.05]),
    "is_slow": lambda answer: [answer[: len(answer) // 2], 0.2, answer[len(answer) // 2 :]],
    "byte_by_byte": byte_by_byte,
    "refuses": lambda _: [b"handler: serdes err -5\nerror during command execution" + END],
    "garbage": lambda _: [bytes(range(256)) * 3 + END],
    "garbage_and_hangs": lambda _: [bytes(range(256)), FOR_EVER],
    "no_message": lambda _: [b"something without a newline" + END],
    "message_in_output": lambda _: [b"unknown command\n\n\nmore\n" + END],
    # A table that looks like the prompt, just where a write ends.
    "false_prompt": lambda _: [b"a table\n\n\nserdes: ", 0.2, b"its name\n\n\n" + PROMPT],
    "extra_prompt": lambda answer: [answer + PROMPT],
    "extra_prompt_later": lambda answer: [answer, 0.2, END],
    # After the next command has been sent.
    "late_prompt": lambda answer: [answer, partial(before_next.append, END)],
    "copies_the_journal": lambda answer: [copy_journal, answer],
}


def perform(how: str, answer: bytes) -> None:
    for act in HOW[how](answer):
        if isinstance(act, bytes):
            write(act)
        elif callable(act):
            act()
        else:
            time.sleep(act)


def copy_journal() -> None:
    """What the journal holds before the trigger is answered."""
    journal = pathlib.Path(os.environ["SERDESCTL_JOURNAL"])
    (journal.parent / "seen").write_text((journal / "journal.jsonl").read_text())


def read_line() -> bytes:
    line = b""
    while not line.endswith(b"\n"):
        byte = os.read(0, 1)
        if not byte:
            os._exit(0)
        line += byte
    return line


def read_answer(tool: subprocess.Popen[bytes]) -> bytes:
    answer = b""
    while not answer.endswith(END):
        chunk = os.read(tool.stdout.fileno(), 65536)
        if not chunk:
            write(answer)
            sys.exit(tool.wait())
        answer += chunk
    return answer


def main() -> None:
    how, trigger, pid_file = sys.argv[1:]
    tool = subprocess.Popen([os.environ["SERDES"]], stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)
    pathlib.Path(pid_file).write_text(f"{os.getpid()} {tool.pid}\n")
    if how == "start":
        perform(trigger, read_answer(tool))
    write(read_answer(tool))
    while True:
        line = read_line()
        if line.strip() and before_next:
            write(before_next.pop())
            time.sleep(0.2)
        tool.stdin.write(line)
        answer = read_answer(tool)
        if line.decode().strip() == trigger:
            pathlib.Path(pid_file).with_name("triggered").touch()
            perform(how, answer)
        else:
            write(answer)


main()
