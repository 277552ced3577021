#!/usr/bin/env python3
"""Prints llvm-cov's summaries of the tool, of the simulator and of serdesctl as a table per file, and fails below the
promises.

Arguments: the three summaries (llvm-cov export -summary-only), the list of exclusions. The tool promises 100 % of lines,
branches and MC/DC but for the exclusions; the others shares of lines and of branches in all.
"""
import json
import pathlib
import sys
from collections.abc import Iterator
from typing import Any

FLOOR = 95.0  # per cent
MOST_EXCLUSIONS = 10
MEASURES = ("lines", "branches", "mcdc")


def summaries(path: str) -> Iterator[tuple[str, Any]]:
    root = pathlib.Path.cwd()
    for file in json.loads(pathlib.Path(path).read_text(encoding="utf-8"))["data"][0]["files"]:
        name = pathlib.Path(file["filename"])
        yield str(name.relative_to(root) if name.is_absolute() else name), file["summary"]


def exclusions(path: str) -> dict[tuple[str, str], int]:
    """FILE MEASURE COUNT REASON a line: what may stay uncovered, and why."""
    found: dict[tuple[str, str], int] = {}
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            file, measure, count, _reason = line.split(maxsplit=3)
            found[file, measure] = int(count)
    return found


def cell(measure: dict[str, int]) -> str:
    return f"{measure['covered']:5}/{measure['count']:<5}" if measure["count"] else "    -      "


def below_floor(what: str, path: str) -> Iterator[str]:
    """Prints the rows of a program that promises a share of all, and what it fails."""
    totals = {measure: [0, 0] for measure in MEASURES[:2]}
    for name, summary in sorted(summaries(path)):
        print(f"{name:36}" + "".join(f"{cell(summary[measure]):>12}" for measure in MEASURES))
        for measure, total in totals.items():
            total[0] += summary[measure]["covered"]
            total[1] += summary[measure]["count"]
    for measure, (covered, count) in totals.items():
        share = 100 * covered / count
        print(f"{what}, {measure}: {share:.1f} %")
        if share < FLOOR:
            yield f"{what}: {share:.1f} % of {measure}, {FLOOR} % promised"


def main() -> int:
    tool, simulator, serdesctl, excluded_path = sys.argv[1:]
    excluded = exclusions(excluded_path)
    complaints: list[str] = []
    print(f"{'file':36}{'lines':>12}{'branches':>12}{'MC/DC':>12}")
    for name, summary in sorted(summaries(tool)):
        print(f"{name:36}" + "".join(f"{cell(summary[measure]):>12}" for measure in MEASURES))
        for measure in MEASURES:
            missing = summary[measure]["count"] - summary[measure]["covered"]
            allowed = excluded.pop((name, measure), 0)
            if missing != allowed:
                complaints.append(f"{name}: {missing} {measure} not covered, {allowed} excluded")
    complaints += [f"{file}: excluded {measure} of a file that was not measured" for file, measure in excluded]
    for what, path in (("simulator", simulator), ("serdesctl", serdesctl)):
        complaints += below_floor(what, path)
    if len(exclusions(excluded_path)) > MOST_EXCLUSIONS:
        complaints.append(f"more than {MOST_EXCLUSIONS} exclusions")
    for complaint in complaints:
        print("BELOW " + complaint)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
