"""What the tests of plan, apply, restore and undo share: a simulated switch that is kept, and changes at random."""

from __future__ import annotations

import json
import random
import re
import sys
from pathlib import Path
from typing import Any

from program import ProgramTest, Result
from schemas import load
from serdes_runs import StrPath, run_script

RATES = ("1G", "2G", "4G", "8G", "10G", "20G")
SETS = re.compile(r"^(Set|TxStreamEnable|Write|Clr)\w*\(", re.MULTILINE)

# Two ports with loop-back plugs; two on a cable to each other, one of which follows the other's speed; one with four
# links; one of ethernet. Small, so that every platform call of an apply can fail in turn.
SMALL = """
clock = { kind = "virtual", step = 500 }
[settings.fast]
ffe = "FFE3"
taps = [-2, 58, -10, 0]
[settings.slow]
power = 90
ffe = "FFE2"
taps = [0, 60, -8, 0]
slew = 60
dfe = "DFE1"
[channels.line]
fr4_inches = 12
connectors = 1
[[asics]]
[[asics.cores]]
cores = 0
type = 2
[[asics.cores]]
cores = 1
type = 3
[[asics.cores]]
cores = 2
type = 4
[[asics.ports]]
ports = "0-3"
kind = "GL"
user_port = 8
core = 0
channel = "line"
far_end = "loop"
speed = "8G"
cache = { 8G = "fast", 4G = "slow" }
[[asics.ports]]
ports = "2-3"
far_end = "pair"
[[asics.ports]]
ports = 3
speed = "AUTO"
[[asics.ports]]
ports = 4
kind = "XG"
core = 1
channel = "line"
far_end = "loop"
speed = "10G"
cache = { 10G = "fast" }
[[asics.ports]]
ports = 5
kind = "EXG"
core = 2
channel = "line"
far_end = "loop"
speed = "10G"
[[asics]]
[[asics.cores]]
cores = 0
type = 5
[[asics.ports]]
ports = 0
kind = "GL"
core = 0
channel = "line"
far_end = "loop"
speed = "8G"
cache = { 8G = "fast" }
"""


class ChangingTest(ProgramTest):
    """A switch of its own, which a state file keeps between runs."""

    def setUp(self) -> None:
        super().setUp()
        self.state = self.folder / "switch.state"
        self.on("sim")

    def on(self, target: str) -> None:
        self.words = ["-t", target, "--state", str(self.state)]

    def on_description(self, text: str, name: str = "switch.toml") -> None:
        self.on(f"sim:{self.script(text, name)}")

    def do(self, *words: StrPath, **how: Any) -> Result:
        return self.ctl(*self.words, *words, **how)

    def must(self, *words: StrPath, status: int = 0) -> Result:
        result = self.do(*words)
        self.assertEqual(result.status, status, result)
        return result

    def save(self, name: str = "save.json") -> str:
        path = str(self.folder / name)
        self.must("save", "-o", path)
        return path

    def differences(self, save: str) -> str:
        """What differs from a save now; empty for nothing."""
        status, out, err = self.do("diff", save)
        self.assertEqual(status, 1 if out else 0, err)
        return out

    def tool(self, *lines: str) -> None:
        """Somebody works with the plain tool."""
        env = self.env | {"SERDES_SIMULATOR_STATE": str(self.state)}
        if self.words[1] != "sim":
            env["SERDES_SIMULATOR_SWITCH"] = self.words[1].removeprefix("sim:")
        run_script("".join(f"{line}\n" for line in lines), env=env)

    def before_each_line(self, code: str) -> None:
        """The tool, behind somebody who does this before each line for it; `former` is the line before."""
        between = self.folder / "between"
        between.write_text(
            f"#!{sys.executable}\nimport os, subprocess, sys, time\n"
            f"tool = subprocess.Popen([{self.env['SERDES']!r}], stdin=subprocess.PIPE)\n"
            "former, sent = '', 0\n"
            f"for line in sys.stdin:\n    {code}\n"
            "    tool.stdin.write(line.encode()); tool.stdin.flush(); former = line\n"
            "tool.stdin.close(); tool.wait()\n"
        )
        between.chmod(0o755)
        self.env["SERDESCTL_TOOL"] = str(between)

    def traced(self, *words: StrPath) -> tuple[Result, list[str]]:
        """A run, and the platform calls that set something."""
        trace = self.folder / "trace"
        trace.unlink(missing_ok=True)
        self.env["SERDES_SIMULATOR_TRACE"] = str(trace)
        result = self.do(*words)
        del self.env["SERDES_SIMULATOR_TRACE"]
        calls = trace.read_text().splitlines() if trace.exists() else []
        return result, [call for call in calls if SETS.match(call)]

    def history(self) -> list[dict[str, Any]]:
        return [load(line) for line in self.must("history", "--json").out.splitlines()]

    def last_run(self) -> str:
        return str(self.history()[-1]["run"])


def topology(save: str) -> list[tuple[int, int, str]]:
    """ASIC, port and kind of the ports that can be set, by a save."""
    ports = []
    for asic in json.loads(Path(save).read_text())["asics"]:
        for port in asic["topology"]["ports"]:
            if port["port_type"] and port["tx_links"]:
                ports.append((asic["asic"], port["port"], port["port_type"]))
    return ports


def random_lines(rng: random.Random, ports: list[tuple[int, int, str]], count: int) -> list[str]:
    """Commands as somebody might type them. Some are refused by the SerDes that they name."""
    lines = []
    for _ in range(count):
        asic, port, kind = rng.choice(ports)
        lines += [f"setAsicNum {asic}", f"{random_command(rng, kind)} {port}"]
    return lines


def random_command(rng: random.Random, kind: str) -> str:
    rate = rng.choice(RATES)
    ffe = f"{rng.choice(('FFE2', 'FFE3', 'FFE4'))} {rng.randrange(256)} {rng.randint(-9, 0)} 50 {rng.randint(-30, 0)} 0"
    slew = rng.choice((24, 30, 36, 50, 60, 75, 100))
    dfe = rng.choice(("NONE", "DFE1", "DFE3", "DFE5"))
    vga = f"{rng.randrange(8)} {rng.randrange(8)} {rng.randrange(128)}"
    commands = [
        f"setRate {rng.choice((*RATES, 'AUTO'))}",
        f"setTxEnable {rng.randrange(2)}",
    ]
    if kind == "exg":
        commands += [
            f"esetTxParamsCache {rate} {rng.randrange(16)} {rng.randrange(16)}",
            f"esetRxParamsCache {rate} {rng.randrange(4)} {rng.randrange(8)}",
        ]
    else:
        commands += [
            f"setFFE {ffe}",
            f"setSlew {slew}",
            f"setTxParams {ffe} {slew}",
            f"setDFE {dfe}",
            f"setVGA {vga}",
            f"setRxParams {dfe} {vga}",
            f"setTxParamsCache {rate} {ffe} {slew}",
            f"setRxParamsCache {rate} {dfe} {vga}",
            f"setTxParamsRaw asic {rate} 99 {rng.randrange(9)} 0 0 63 0 0",
        ]
    return rng.choice(commands)
