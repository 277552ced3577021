#!/usr/bin/env python3
"""Runs end-to-end cases: the real binary on the simulated switch, compared byte by byte.

A case is a folder <command>/<case>/ below this one. It holds
  script       run as `serdes script`, or
  stdin        typed at the prompt through a pipe,
and what is expected:
  out          standard output
  err          standard error            (absent: empty)
  status       exit status               (absent: 0)
  calls        platform calls as traced, start-up and close left out (absent: not compared)
  all_calls    the same with start-up and close (absent: not compared)
and, where it differs from the default switch:
  switch.toml  the switch's description, or
  switch       the name of a shipped one, without .toml
  args         the words after `serdes`, one a line, instead of `script`
  env          NAME=VALUE a line, more environment
Time is virtual, so that runs repeat exactly. Cases run in a copy of their folder. SERDES names the binary, without it
build/serdes is run.
"""
import argparse
import shutil
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
from serdes_runs import environment, run, shipped_switch

# The operations of start-up and close.
AROUND = set(b"AsicCtlOpen PortCtlOpen GetSwitchConfig GetSerDesInfo GetPortHwConfig AsicCtlClose PortCtlClose".split())

# By the names of the expectation files.
Results = dict[str, bytes]


def without_start_and_close(calls: bytes) -> bytes:
    lines = calls.splitlines(True)
    around = [line.split(b"(")[0] in AROUND for line in lines]
    first = around.index(False) if False in around else len(lines)
    last = len(lines) - around[::-1].index(False) if False in around else first
    return b"".join(lines[first:last])


def read(path: Path) -> bytes | None:
    return path.read_bytes() if path.exists() else None


def switch_of(case: Path) -> Path | str | None:
    if (case / "switch").exists():
        return shipped_switch((case / "switch").read_text().strip())
    return "switch.toml" if (case / "switch.toml").exists() else None


def run_case(case: Path, work: Path) -> Results:
    """Runs a case in `work` and returns what it gave."""
    shutil.copytree(case, work, dirs_exist_ok=True)
    more = dict(line.split("=", 1) for line in (read(work / "env") or b"").decode().splitlines())
    typed = read(work / "stdin")
    words = (read(work / "args") or (b"script" if typed is None else b"")).decode().splitlines()
    env = environment(switch=switch_of(work), trace=work / "calls.traced") | more
    done = run(*words, typed=typed or b"", folder=work, env=env)
    calls = read(work / "calls.traced") or b""
    return {
        "out": done.stdout,
        "err": done.stderr,
        "status": b"%d\n" % done.returncode,
        "calls": without_start_and_close(calls),
        "all_calls": calls,
    }


def differences(case: Path, got: Results) -> list[str]:
    expected = {
        "out": read(case / "out"),
        "err": read(case / "err") or b"",
        "status": read(case / "status") or b"0\n",
        "calls": read(case / "calls"),
        "all_calls": read(case / "all_calls"),
    }
    found = []
    for name, want in expected.items():
        if want is None and name.endswith("calls"):
            continue
        if want is None:
            found.append(f"{name}: the case has no file of this name")
        elif want != got[name]:
            found.append(difference(name, want, got[name]))
    return found


def difference(name: str, want: bytes, got: bytes) -> str:
    want_lines, got_lines = want.splitlines(True), got.splitlines(True)
    for number, (a, b) in enumerate(zip(want_lines, got_lines), 1):
        if a != b:
            return f"{name}, line {number}:\n    expected {a!r}\n    got      {b!r}"
    shorter = min(len(want_lines), len(got_lines))
    more, kind = (want_lines, "missing") if len(want_lines) > shorter else (got_lines, "unexpected")
    return f"{name}, line {shorter + 1}: {kind} {more[shorter]!r}"


def update(case: Path, got: Results) -> None:
    """Writes what the case gave as what is expected. Read the result before you commit it."""
    (case / "out").write_bytes(got["out"])
    for name, plain in (("err", b""), ("status", b"0\n")):
        if got[name] != plain:
            (case / name).write_bytes(got[name])
        else:
            (case / name).unlink(missing_ok=True)
    for name in ("calls", "all_calls"):
        if (case / name).exists():
            (case / name).write_bytes(got[name])


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--update", action="store_true", help="take what is printed as what is expected")
    parser.add_argument("cases", nargs="*", help="<command>/<case>; none: all")
    options = parser.parse_args()
    everything = {str(path.parent.relative_to(HERE)) for path in HERE.glob("*/*/*") if path.name in ("script", "stdin")}
    names = options.cases or sorted(everything)
    failed = 0
    for name in names:
        with tempfile.TemporaryDirectory() as work:
            got = run_case(HERE / name, Path(work))
        if options.update:
            update(HERE / name, got)
        found = differences(HERE / name, got)
        if found:
            failed += 1
            print(f"FAILED {name}\n  " + "\n  ".join(found))
    print(f"{len(names) - failed} passed, {failed} failed")
    return 1 if failed or not names else 0


if __name__ == "__main__":
    sys.exit(main())
