#!/usr/bin/env python3
"""Holds the transcripts of the tutorial and of the README against the binary, or refreshes them.

A fenced block with the word `serdes` is a piece of one session at the prompt: lines that begin with the prompt are typed,
the others are what the tool answers. All blocks of a page together are run as one session on the default switch, in the
clock that the tutorial tells its reader to choose. Blanks at the end of a line and empty lines around an answer do not
count, and a line of three dots stands for any number of lines.
"""
import argparse
import re
import sys
from collections.abc import Iterator
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from serdes_runs import PROMPT, ROOT, environment, run

TUTORIAL = ROOT / "docs" / "tutorial.md"
PAGES = [TUTORIAL, ROOT / "README.md"]
BLOCK = re.compile(r"^```serdes\n(.*?)^```$", re.MULTILINE | re.DOTALL)
CLOCK = re.compile(r"^export SERDES_SIMULATOR_CLOCK=(\S+)$", re.MULTILINE)
LABEL = 19  # characters of a row
ANY = "..."


def shown(text: str) -> list[str]:
    return [line.rstrip() for line in text.strip("\n").splitlines()]


def steps_of(block: str) -> list[tuple[str, list[str]]]:
    """What is typed in a block, and what is shown as its answer."""
    steps = (step.partition("\n") for step in re.split(rf"^{PROMPT.decode()}", block, flags=re.MULTILINE)[1:])
    return [(typed, shown(answer)) for typed, _, answer in steps]


def answers_to(typed: list[str], clock: str) -> list[list[str]]:
    done = run(typed="".join(f"{line}\n" for line in typed).encode(), env=environment(clock=clock))
    answers = done.stdout.decode().split(PROMPT.decode())[1:-1]
    assert len(answers) == len(typed), f"{len(typed)} lines, {len(answers)} answers"
    return [shown(answer) for answer in answers]


def agrees(expected: list[str], answer: list[str]) -> bool:
    pattern = "".join("(?:.*\n)*" if line == ANY else re.escape(line) + "\n" for line in expected)
    return re.fullmatch(pattern, "".join(f"{line}\n" for line in answer)) is not None


def refreshed(expected: list[str], answer: list[str]) -> list[str]:
    """The answer, cut as what was expected is: the rows of the same labels are shown."""
    if ANY not in expected:
        return answer
    rest = iter(answer)
    rows = []
    for line in expected:
        same_label = (row for row in rest if row[:LABEL].rstrip() == line[:LABEL].rstrip())
        rows.append(ANY if line == ANY else next(same_label, line))
    return rows


def block_of(steps: list[tuple[str, list[str]]]) -> str:
    """The text of a block: an answer is followed by an empty line."""
    parts = ("\n".join([PROMPT.decode() + typed, *answer, *([""] if answer else [])]) for typed, answer in steps)
    return "```serdes\n" + "\n".join(parts).rstrip("\n") + "\n```"


def check(page: Path, clock: str, update: bool) -> bool:
    text = page.read_text(encoding="utf-8")
    blocks = [steps_of(block) for block in BLOCK.findall(text)]
    steps = [step for block in blocks for step in block]
    answers = answers_to([typed for typed, _ in steps], clock)
    if update:
        left: Iterator[list[str]] = iter(answers)
        new = [[(typed, refreshed(expected, next(left))) for typed, expected in block] for block in blocks]
        written = iter(map(block_of, new))
        page.write_text(BLOCK.sub(lambda _: next(written), text), encoding="utf-8")
        steps = [step for block in new for step in block]
    failed = 0
    for (typed, expected), answer in zip(steps, answers):
        if not agrees(expected, answer):
            failed += 1
            print(f"FAILED {page.name}: {PROMPT.decode()}{typed}")
            print("\n    ".join(["  expected", *expected]))
            print("\n    ".join(["  got", *answer]))
    print(f"{page.name}: {len(steps) - failed} passed, {failed} failed")
    return bool(steps) and not failed


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--update", action="store_true", help="write what the binary answers into the pages")
    options = parser.parse_args()
    found = CLOCK.search(TUTORIAL.read_text(encoding="utf-8"))
    assert found, "the tutorial chooses no clock"
    return 0 if all([check(page, found[1], options.update) for page in PAGES]) else 1


if __name__ == "__main__":
    sys.exit(main())
