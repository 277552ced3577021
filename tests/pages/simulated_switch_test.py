#!/usr/bin/env python3
"""The tables of docs/simulated-switch.md say what the simulated switch does. Those of the registers have a unit test."""
import re
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from serdes_runs import ROOT, environment, run_script

PAGE = (ROOT / "docs" / "simulated-switch.md").read_text()
SWITCH = '[[asics]]\n[[asics.cores]]\ncores = 0\ntype = 2\n[[asics.ports]]\nports = 0\nkind = "GL"\n'


def table(*head: str) -> list[list[str]]:
    """The rows of the table with this head."""
    lines = PAGE[PAGE.index(f"| {' | '.join(head)} |\n") :].split("\n\n")[0].splitlines()[2:]
    return [[cell.strip() for cell in line.strip("|").split(" | ")] for line in lines]


class Results(unittest.TestCase):
    def test_every_code_is_listed_as_its_header_explains_it(self) -> None:
        header = (ROOT / "simulator" / "error_codes.h").read_text()
        codes = re.findall(r"^ +(k\w+) = (-\d+), +// (.*)$", header, re.MULTILINE)
        self.assertEqual(len(codes), len(re.findall(r" = -\d", header)))
        self.assertEqual([(name, code, meaning) for code, name, meaning in table("Code", "Name", "Meaning")], codes)


class TestOptions(unittest.TestCase):
    def test_each_takes_the_modes_that_are_listed_and_no_others(self) -> None:
        rows = table("Option", "Modes", "Set", "Get: status")
        self.assertEqual([row[0].split()[0] for row in rows], [str(option) for option in range(10)])
        tried, expected = [], []
        for option, modes, *_ in rows:
            number = int(option.split()[0])
            if modes == "none":  # the tool does not let such an option through
                self.assertIn("invalid command parameter", run_script(f"runTest 4 0 {number} 0\n").stdout.decode())
                continue
            least, greatest = int(modes.split()[0]), int(modes.split()[-1])
            for mode in (least - 1, least, greatest, greatest + 1):
                tried.append(f"runTest 4 0 {number} {mode % 2**32}\n")
                expected.append(
                    f"SetSerDesTestOption(0, 4, 0, {number}, {mode}) = {0 if least <= mode <= greatest else -9}"
                )
        with tempfile.NamedTemporaryFile("r") as trace:
            run_script("".join(tried), env=environment(trace=trace.name))
            self.assertEqual([line for line in trace.read().splitlines() if line.startswith("SetSerDesTest")], expected)


class Faults(unittest.TestCase):
    def outputs_of(self, operation: str) -> list[str]:
        """What the switch offers when an output is asked for that the operation does not have."""
        fault = f'[[faults]]\noperation = "{operation}"\nanswer = {{ output = "mood", value = 1 }}\n'
        with tempfile.NamedTemporaryFile("w") as switch:
            switch.write(SWITCH + fault)
            switch.flush()
            complaint = run_script("", env=environment(switch=switch.name)).stderr.decode()
        offered = re.search(r"answer.output: (?:must be one of: (.*)|the operation has no outputs)\n", complaint)
        self.assertTrue(offered, complaint)
        return (offered[1] or "").split()

    def test_every_output_is_listed(self) -> None:
        listed: dict[str, list[str]] = {}
        taps = ", ".join(f"h{tap}" for tap in range(10))
        for operations, outputs in table("Operation", "Outputs"):
            ranged = outputs.split(" (")[0].replace("h0 to h9", taps)
            listed |= {name: ranged.split(", ") for name in re.findall(r"`(.*?)`", operations)}
        names = re.findall(r'\.name = "([\w/]+)"', (ROOT / "platform" / "operations.cc").read_text())
        self.assertGreater(len(names), 35)
        self.assertEqual({name: offered for name in names if (offered := self.outputs_of(name))}, listed)


if __name__ == "__main__":
    unittest.main()
