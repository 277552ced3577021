#!/usr/bin/env python3
"""There and back, on shipped switches and random ones: saves, settings written from a switch, twins, and restoring.

CHANGING_ROUNDS says how many random changes each shipped switch goes through, and how many random switches are tried;
CHANGING_FIRST is the number of the first.
"""

from __future__ import annotations

import json
import os
import random
import unittest

from changing import ChangingTest, random_lines, topology
from random_switches import RandomSwitch
from serdes_runs import StrPath, shipped_switch
from switch_saves import settings_part

ROUNDS = int(os.environ.get("CHANGING_ROUNDS", "0"))
FIRST = int(os.environ.get("CHANGING_FIRST", "1"))
COMMANDS = 30


class RoundTrips(ChangingTest):
    def check_changes(self, seed: int) -> None:
        """Changed at random and restored, a switch differs in nothing but what was told beforehand."""
        save = self.save("before.json")
        ports = topology(save)
        if not ports:
            return
        self.tool(*random_lines(random.Random(seed), ports, COMMANDS))
        plan = json.loads(self.do("plan", "--through-cache", "--json", save).out)
        self.must("restore", "--yes", "--through-cache", "--partial", save)
        impossible = {(one["asic"], one["port"]) for one in plan["impossible"]}
        left = json.loads(self.do("diff", "--json", save).out)["records"]
        self.assertLessEqual({(record["asic"], record["port"]) for record in left}, impossible, left)
        result, calls = self.traced("restore", "--yes", "--through-cache", "--partial", save)
        self.assertEqual((result.status, calls), (0, []), result)

    def check_reading(self) -> None:
        """Whatever reads a switch sets nothing, and reads it as it is."""
        first, second = self.folder / "first.json", self.folder / "second.json"
        settings, twin = self.folder / "lab.toml", self.folder / "twin.toml"
        readers: list[list[StrPath]] = [
            ["save", "--registers", "-o", first],
            ["save", "--registers", "-o", second],
            ["diff", first],
            ["save", "--as-settings", "-o", settings],
            ["plan", settings],
            ["twin", "-o", twin],
        ]
        for words in readers:
            result, calls = self.traced(*words)
            self.assertEqual((result.status, calls), (0, []), result)
        self.assertEqual(settings_part(first), settings_part(second))
        self.assertEqual(self.ctl("-t", f"sim:{twin}", "diff", self.save("plain.json")), (0, "", ""))

    def test_shipped_switches(self) -> None:
        for switch in ("default", "bench", "all-gl", "awkward"):
            for seed in range(max(1, ROUNDS)):
                with self.subTest(switch, seed=seed):
                    self.state.unlink(missing_ok=True)
                    self.on(f"sim:{shipped_switch(switch)}")
                    self.check_changes(seed)

    def test_random_switches(self) -> None:
        for seed in range(FIRST, FIRST + max(4, ROUNDS)):
            with self.subTest(seed=seed):
                self.state.unlink(missing_ok=True)
                self.on_description(RandomSwitch(seed).text())
                self.check_reading()
                self.check_changes(seed)


if __name__ == "__main__":
    unittest.main()
