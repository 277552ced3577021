#!/usr/bin/env python3
"""Plans: what they say, that they change nothing, and that they are kept."""

from __future__ import annotations

import unittest
from pathlib import Path

from changing import ChangingTest
from schemas import load

SETTINGS = """
[[settings]]
ports = "0,4,5"
transmit = { c2 = -20, slew = 50 }

[[settings]]
ports = "3"
speed = "4G"
stream = false

[[settings]]
kind = "gl"
receive = { mode = "DFE5", pole = 6, peak = 4, amax = 78 }
to = "10G"
"""


class Planning(ChangingTest):
    def setUp(self) -> None:
        super().setUp()
        self.file = self.script(SETTINGS, "lab.toml")

    def test_it_tells_everything_and_sets_nothing(self) -> None:
        result, calls = self.traced("plan", self.file)
        self.assertEqual((result.status, result.err, calls), (1, "", []))
        self.assertIn(
            "ASIC 0 port 3: links go down\n  config_rate AUTO -> 4G\n  stream_enabled yes -> no\n", result.out
        )
        self.assertIn("  tx link 0 c2 -10 -> -20\n", result.out)
        self.assertRegex(result.out, r"\n\d+ commands\n\Z")

    def test_nothing_to_do(self) -> None:
        result, calls = self.traced("plan", self.save())
        self.assertEqual((result, calls), ((0, "nothing to do\n", ""), []))

    def test_its_script_is_one_of_the_plain_tools(self) -> None:
        status, script, _ = self.do("plan", "--script", self.file)
        self.assertEqual(status, 1)
        self.assertIn("setTxEnable 0 3\n", script)
        self.tool(*script.splitlines())
        self.assertEqual(self.do("plan", self.file), (0, "nothing to do\n", ""))

    def test_json(self) -> None:
        status, out, _ = self.do("plan", "--json", self.file)
        plan = load(out)
        self.assertEqual((status, plan["schema"], plan["kind"], plan["impossible"]), (1, 1, "plan", []))
        down = [step for step in plan["steps"] if step["effect"] == "down"]
        self.assertEqual([(step["command"], step["asic"]) for step in down], [("setTxEnable 0 3", 0)])
        change = down[0]["changes"][0]
        told = [change[name] for name in ("port", "parameter", "before", "after")]
        self.assertEqual(told, [3, "stream_enabled", True, False])

    def test_a_kept_plan_is_carried_out(self) -> None:
        kept = str(self.folder / "kept.json")
        self.must("plan", "-o", kept, self.file, status=1)
        self.assertIn("verified", self.must("apply", "--yes", kept).out)
        self.must("plan", self.file)

    def test_a_kept_plan_is_refused_when_the_switch_has_changed_since(self) -> None:
        kept = str(self.folder / "kept.json")
        self.must("plan", "-o", kept, self.file, status=1)
        self.tool("setSlew 60 5")
        result, calls = self.traced("apply", "--yes", kept)
        self.assertEqual((result.status, calls), (2, []))
        self.assertIn("has changed since the plan was made\n", result.err)
        self.assertRegex(result.err, r"port 5 .*slew_ps 24 -> 60")

    def test_a_kept_plan_is_refused_when_what_it_stands_on_has_changed(self) -> None:
        kept = str(self.folder / "kept.json")
        self.must("plan", "-o", kept, self.file, status=1)
        self.tool("setTxParamsCache 4G FFE3 100 -4 55 -25 0 36 3")  # which a speed of port 3 would put into force
        result, calls = self.traced("apply", "--yes", kept)
        self.assertEqual((result.status, calls), (2, []))
        self.assertIn("it would do otherwise now:\n", result.err)
        self.assertIn("ASIC 0 port 3 (user 11) tx link 0 c2 -10 -> -25\n", result.err)

    def test_a_kept_plan_and_a_save_of_another_switch_are_refused(self) -> None:
        kept = str(self.folder / "kept.json")
        self.must("plan", "-o", kept, self.file, status=1)
        save = self.save()
        self.state = self.folder / "other.state"
        self.on("sim:simulator/switches/all-gl.toml")
        root = Path(__file__).resolve().parents[2]
        for words in (("apply", kept), ("plan", save), ("restore", save)):
            status, _, err = self.do(*words, cwd=root)
            self.assertEqual(status, 2, err)
            self.assertIn("another switch", err)

    def test_a_plan_that_cannot_be_kept_is_not_made(self) -> None:
        status, out, err = self.do("plan", "-o", str(self.folder / "no" / "kept.json"), self.file)
        self.assertEqual(
            (status, out, err), (2, "", f"serdesctl: {self.folder}/no/kept.json: No such file or directory\n")
        )

    def test_files_that_are_none(self) -> None:
        kept = self.folder / "kept.json"
        self.must("plan", "-o", str(kept), self.file, status=1)
        plan = kept.read_text()
        broken = {"{": "broken", '{"kind":"plan"}': "plan", '{"kind":"save"}': "save", "x = 1": "settings", "": "empty"}
        broken |= {
            "[]": "list",
            plan.replace('"schema": 1', '"schema": 2', 1): "other",
            plan.replace(': "down"', ': "up"'): "up",
        }
        for text, name in broken.items():
            status, out, err = self.do("plan", self.script(text, name))
            self.assertEqual((status, out), (2, ""), err)
            self.assertIn(name, err)

    def test_what_cannot_be_done_is_said_before(self) -> None:
        save = self.save()
        self.tool("setRate 10G 23", "setTxParamsRaw asic 8G 100 2 0 0 63 0 0 4", "setRate 8G 4", "setSlew 24 5")
        nameless = self.save("nameless.json")
        self.must("restore", "--yes", "--through-cache", save)
        status, out, _ = self.do("plan", nameless)
        self.assertEqual(status, 1)
        self.assertIn("cannot be done: ASIC 0 port 4 (user 12) ffe FFENone 100 0 63 0 0: the tool has no keyword", out)
        result, calls = self.traced("restore", "--yes", nameless)
        self.assertEqual((result.status, calls), (2, []))
        self.assertIn("--partial", result.err)
        status, out, err = self.do("plan", "--script", nameless)
        self.assertEqual(
            (status, out, "cannot be done: ASIC 0 port 4" in err),
            (1, "setTxParamsRaw asic 8G 100 2 0 0 63 0 0 4\n", True),
            err,
        )
        self.must("restore", "--yes", "--partial", nameless)
        self.assertEqual(self.differences(nameless).count("+++"), 1)
        self.assertNotIn("commands", self.must("plan", nameless, status=1).out)
        self.must("restore", "--yes", "--through-cache", nameless)
        self.assertEqual(self.differences(nameless), "")


if __name__ == "__main__":
    unittest.main()
