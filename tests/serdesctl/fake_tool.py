"""A tool that misbehaves. It passes everything on to the real one until it reads the trigger.

Arguments: how, the trigger, a file to write process ids to. The real tool is in SERDES.
"""
import os
import pathlib
import subprocess
import sys
import time

PROMPT = b"serdes: "
END = b"\n\n" + PROMPT
before_next = []  # printed before the answer to the next command


def write(data):
    os.write(1, data)


def flood(_):
    while True:
        write(b"x" * 65536)


def in_two(answer, at, pause=0.2):
    write(answer[:at])
    time.sleep(pause)
    write(answer[at:])


HOW = {
    "dies": lambda _: os._exit(7),
    "is_killed": lambda _: os.kill(os.getpid(), 9),
    "dies_in_answer": lambda answer: (write(answer[:5]), os._exit(0)),
    "hangs": lambda _: time.sleep(1000),
    "hangs_in_answer": lambda answer: (write(answer[:5]), time.sleep(1000)),
    "closes_output": lambda _: (os.close(1), time.sleep(1000)),
    "floods": flood,
    "trickles": lambda _: [(write(b"x"), time.sleep(0.05)) for _ in range(100000)],
    "is_slow": lambda answer: in_two(answer, len(answer) // 2),
    "byte_by_byte": lambda answer: [(write(answer[i : i + 1]), time.sleep(0.001)) for i in range(len(answer))],
    "garbage": lambda _: write(bytes(range(256)) * 3 + END),
    "garbage_and_hangs": lambda _: (write(bytes(range(256))), time.sleep(1000)),
    "no_message": lambda answer: write(b"something without a newline" + END),
    # A table that looks like the prompt, just where a write ends.
    "false_prompt": lambda answer: (
        write(b"a table\n\n\nserdes: "),
        time.sleep(0.2),
        write(b"its name\n\n\n" + PROMPT),
    ),
    "extra_prompt": lambda answer: write(answer + PROMPT),
    "extra_prompt_later": lambda answer: (write(answer), time.sleep(0.2), write(END)),
    # A prompt too many after the next command has been sent.
    "late_prompt": lambda answer: (write(answer), before_next.append(END)),
    "message_in_output": lambda _: write(b"unknown command\n\n\nmore\n" + END),
    "complains": lambda _: (os.write(2, b"something is broken\n"), os._exit(1)),
    "copies_the_journal": lambda answer: (copy_journal(), write(answer)),
    "ignores_its_end": lambda _: (os.close(0), write(END + END), time.sleep(1000)),
}


def copy_journal():
    """What the journal holds before the trigger is answered."""
    journal = pathlib.Path(os.environ["SERDESCTL_JOURNAL"])
    (journal.parent / "seen").write_text((journal / "journal.jsonl").read_text())


def read_line():
    line = b""
    while not line.endswith(b"\n"):
        byte = os.read(0, 1)
        if not byte:
            os._exit(0)
        line += byte
    return line


def read_answer(tool):
    answer = b""
    while not answer.endswith(END):
        chunk = os.read(tool.stdout.fileno(), 65536)
        if not chunk:
            write(answer)
            sys.exit(tool.wait())
        answer += chunk
    return answer


def main():
    how, trigger, pid_file = sys.argv[1:]
    tool = subprocess.Popen([os.environ["SERDES"]], stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)
    pathlib.Path(pid_file).write_text(f"{os.getpid()} {tool.pid}\n")
    if how == "start":
        HOW[trigger](read_answer(tool))
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
            HOW[how](answer)
        else:
            write(answer)


main()
