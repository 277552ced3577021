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
Time is virtual, so that runs repeat exactly. Cases run in a copy of their folder.
"""
import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
SHIPPED = HERE.parent.parent / "simulator" / "switches"
TIMEOUT_SECONDS = 120


# The operations of start-up and close.
AROUND = {b"AsicCtlOpen", b"PortCtlOpen", b"GetSwitchConfig", b"GetSerDesInfo", b"GetPortHwConfig", b"AsicCtlClose",
          b"PortCtlClose"}


def without_start_and_close(calls):
    lines = calls.splitlines(True)
    around = [line.split(b"(")[0] in AROUND for line in lines]
    first = around.index(False) if False in around else len(lines)
    last = len(lines) - around[::-1].index(False) if False in around else first
    return b"".join(lines[first:last])


def read(path):
    return path.read_bytes() if path.exists() else None


def run_case(serdes, case, work):
    """Runs a case in `work` and returns what it gave, by the names of the expectation files."""
    shutil.copytree(case, work, dirs_exist_ok=True)
    trace = work / "calls.traced"
    env = dict(os.environ, LC_ALL="C", SERDES_SIMULATOR_TRACE=str(trace), SERDES_SIMULATOR_CLOCK="virtual")
    env.pop("SERDES_SIMULATOR_SWITCH", None)
    env.pop("SERDES_SIMULATOR_STATE", None)
    if (work / "switch.toml").exists():
        env["SERDES_SIMULATOR_SWITCH"] = "switch.toml"
    if (work / "switch").exists():
        env["SERDES_SIMULATOR_SWITCH"] = str(SHIPPED / f"{(work / 'switch').read_text().strip()}.toml")
    for line in (read(work / "env") or b"").decode().splitlines():
        name, _, value = line.partition("=")
        env[name] = value
    stdin = work / "stdin"
    args = (read(work / "args") or (b"" if stdin.exists() else b"script")).decode().splitlines()
    with open(stdin if stdin.exists() else os.devnull, "rb") as typed:
        done = subprocess.run([serdes, *args], cwd=work, env=env, stdin=typed, capture_output=True,
                              timeout=TIMEOUT_SECONDS, check=False)
    calls = read(trace) or b""
    return {"out": done.stdout, "err": done.stderr, "status": b"%d\n" % done.returncode,
            "calls": without_start_and_close(calls), "all_calls": calls}


def differences(case, got):
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


def difference(name, want, got):
    want_lines, got_lines = want.splitlines(True), got.splitlines(True)
    for number, (a, b) in enumerate(zip(want_lines, got_lines), 1):
        if a != b:
            return f"{name}, line {number}:\n    expected {a!r}\n    got      {b!r}"
    shorter = min(len(want_lines), len(got_lines))
    more, kind = (want_lines, "missing") if len(want_lines) > shorter else (got_lines, "unexpected")
    return f"{name}, line {shorter + 1}: {kind} {more[shorter]!r}"


def update(case, got):
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


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--serdes", required=True, help="the binary")
    parser.add_argument("--update", action="store_true", help="take what is printed as what is expected")
    parser.add_argument("cases", nargs="*", help="<command>/<case>; none: all")
    options = parser.parse_args()
    names = options.cases or sorted({str(p.parent.relative_to(HERE)) for kind in ("script", "stdin")
                                     for p in HERE.glob(f"*/*/{kind}")})
    serdes = str(pathlib.Path(options.serdes).resolve())
    failed = 0
    for name in names:
        with tempfile.TemporaryDirectory() as work:
            got = run_case(serdes, HERE / name, pathlib.Path(work))
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
