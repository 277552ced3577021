#!/usr/bin/env python3
"""Holds the tutorial's transcripts against the binary.

A fenced block with the word `serdes` in docs/tutorial.md is a piece of one session at the prompt: lines that begin with
the prompt are typed, the others are what the tool answers. All blocks together are run as one session on the default
switch, in the clock that the tutorial tells its reader to choose. Trailing blanks do not count, and a line of three
dots stands for any number of lines.
"""
import argparse
import os
import pathlib
import re
import subprocess
import sys

TUTORIAL = pathlib.Path(__file__).resolve().parents[2] / "docs" / "tutorial.md"
PROMPT = "serdes: "
BLOCK = re.compile(r"^```serdes\n(.*?)^```$", re.MULTILINE | re.DOTALL)
CLOCK = re.compile(r"^export SERDES_SIMULATOR_CLOCK=(\S+)$", re.MULTILINE)


def steps_of(block):
    """The (typed line, answer lines) of a block."""
    steps = []
    for line in block.splitlines():
        if line.startswith(PROMPT):
            steps.append((line[len(PROMPT) :], []))
        else:
            steps[-1][1].append(line.rstrip())
    return steps


def run(serdes, commands, clock):
    """Types the commands and gives each one's answer lines, without the empty lines around them."""
    env = dict(os.environ, LC_ALL="C", SERDES_SIMULATOR_CLOCK=clock)
    env.pop("SERDES_SIMULATOR_SWITCH", None)
    env.pop("SERDES_SIMULATOR_STATE", None)
    done = subprocess.run(
        [serdes],
        input="".join(f"{command}\n" for command in commands),
        text=True,
        capture_output=True,
        env=env,
        timeout=60,
        check=True,
    )
    answers = done.stdout.split(PROMPT)[1:-1]
    assert len(answers) == len(commands), f"{len(commands)} commands, {len(answers)} answers"
    return [[line.rstrip() for line in answer.strip("\n").splitlines()] for answer in answers]


def agrees(expected, got):
    """Whether the answer is the expected one, "..." standing for any lines."""
    while expected and not expected[-1]:
        expected = expected[:-1]
    pattern = "".join("(?:.*\n)*" if line == "..." else re.escape(line) + "\n" for line in expected)
    return re.fullmatch(pattern, "".join(f"{line}\n" for line in got)) is not None


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--serdes", required=True, help="the binary")
    parser.add_argument("--update", action="store_true", help="write what the binary answers into the tutorial")
    options = parser.parse_args()
    text = TUTORIAL.read_text(encoding="utf-8")
    blocks = [steps_of(block) for block in BLOCK.findall(text)]
    steps = [step for block in blocks for step in block]
    clock = CLOCK.search(text).group(1)
    answers = run(str(pathlib.Path(options.serdes).resolve()), [typed for typed, _ in steps], clock)
    if options.update:
        left = iter(zip(steps, answers))

        def filled(match):
            lines = []
            for _ in steps_of(match.group(1)):
                (typed, expected), got = next(left)
                # An answer that the tutorial cuts stays as it was written.
                lines += [PROMPT + typed, *(expected if "..." in expected else got + [""] if got else [])]
            return "```serdes\n" + "\n".join(lines).rstrip("\n") + "\n```"

        TUTORIAL.write_text(BLOCK.sub(filled, text), encoding="utf-8")
        return 0
    failed = 0
    for (typed, expected), got in zip(steps, answers):
        if not agrees(expected, got):
            failed += 1
            print(
                f"FAILED {PROMPT}{typed}\n  expected\n    "
                + "\n    ".join(expected)
                + "\n  got\n    "
                + "\n    ".join(got)
            )
    print(f"{len(steps) - failed} passed, {failed} failed")
    return 1 if failed or not steps else 0


if __name__ == "__main__":
    sys.exit(main())
