#!/usr/bin/env python3
"""serdesctl rehearse: scripts and settings on twins; the switch itself is left alone."""

from __future__ import annotations

import os
import re
import unittest
from pathlib import Path
from typing import Any

from program import ProgramTest
from schemas import load
from serdes_runs import StrPath, shipped_switch

BENCH = f"sim:{shipped_switch('bench')}"


class Rehearse(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.temporary = self.folder / "tmp"
        self.temporary.mkdir()
        self.env["TMPDIR"] = str(self.temporary)

    def tearDown(self) -> None:
        self.assertEqual(os.listdir(self.temporary), [], "something is left behind")

    def rehearse(self, text: str, *words: StrPath, target: str = BENCH, name: str = "script") -> dict[str, Any]:
        done = self.ctl("-t", target, "rehearse", self.script(text, name), "--json", *words)
        self.assertEqual(done.err, "")
        report = load(done.out)
        self.assertEqual(report["kind"], "rehearsal")
        good = not report["refused"] and not any(port["trend"] == "worse" for port in report["ports"])
        self.assertEqual((report["good"], done.status), (good, 0 if good else 1))
        return report

    def test_nothing_changes(self) -> None:
        report = self.rehearse("showRate all\n# nothing\n")
        self.assertEqual((report["refused"], report["changes"], report["ports"]), ([], [], []))

    def test_a_port_gets_worse(self) -> None:
        report = self.rehearse("setTxParams FFE2 20 0 30 -30 0 100 3\n")
        self.assertEqual(report["refused"], [])
        self.assertEqual({(c["port"], c["side"], c["link"]) for c in report["changes"]}, {(3, "tx", 0)})
        self.assertIn(("k", 115, 20), [(c["parameter"], c["old"], c["new"]) for c in report["changes"]])
        worst = report["ports"][0]
        self.assertEqual((worst["port"], worst["trend"], worst["verdict_before"]), (3, "worse", "good"))
        self.assertLess(worst["amin_after"], worst["amin_before"])

    def test_a_port_gets_better(self) -> None:
        report = self.rehearse("setRxParams DFE5 6 6 0x4e 14\nsetTxParams FFE3 140 -3 55 -20 0 24 14\n")
        trends = {port["port"]: port["trend"] for port in report["ports"]}
        self.assertEqual(trends.get(14), "better")
        self.assertTrue(report["good"])

    def test_refused_lines(self) -> None:
        report = self.rehearse(
            "setTxParams FFE3 140 -60 63 -63 0 24 0\n"  # beyond the peak power
            "setRate 9G 1\n"
            "showRate 30\n"
            "setRate 4G 2\n"
            "nonsense\n"
            "setRate 20G 3 #: expect 10\n"
            "setRate 1G 4 #: expect 10\n"
        )
        script = str(self.folder / "script")
        places = [refusal["place"] for refusal in report["refused"]]
        self.assertEqual(places, [f"{script}:{line}" for line in (1, 2, 3, 5, 7)])
        self.assertIn("-9", next(r["reason"] for r in report["refused"] if r["place"].endswith(":1")))
        self.assertIn("nonsense", next(r["command"] for r in report["refused"] if r["place"].endswith(":5")))
        self.assertRegex(report["refused"][-1]["reason"], r", and status 10 was expected$")
        self.assertEqual({c["parameter"] for c in report["changes"] if c["port"] == 2}, {"config_rate"})

    def test_lines_that_cannot_be_read_are_told_first(self) -> None:
        report = self.rehearse("setRate 9G 1\nsetTxEnable 0 5\nshowRate" + 65 * " 1" + "\n")
        places = [refusal["place"].removeprefix(f"{self.folder / 'script'}:") for refusal in report["refused"]]
        self.assertEqual(places, ["3", "1"])
        self.assertEqual([port["port"] for port in report["ports"]], [5])

    def test_the_switch_is_left_alone(self) -> None:
        trace, state = self.folder / "trace", self.folder / "state"
        script = self.script("setTxEnable 0 gl\nloop setRate 4G 2\nsetAsicNum 1\nsetTxEnable 0 3\n")
        self.env["SERDES_SIMULATOR_TRACE"] = str(trace)
        done = self.ctl("-t", "sim", "--state", state, "rehearse", script)
        self.assertEqual(done.status, 1)
        calls = trace.read_text()
        self.assertNotRegex(calls, r"(?m)^(Set|Write|EnableTx|Clr)")
        self.assertRegex(done.out, r"(?m)^worse: ASIC 0 port 0: .*good -> down, ")
        self.assertRegex(done.out, r"(?m)^ASIC 1 port 3 .*\n- stream_enabled yes\n\+ stream_enabled no$")

    def test_on_a_save(self) -> None:
        save = self.folder / "save.json"
        self.assertEqual(self.ctl("-t", BENCH, "save", "-o", save).status, 0)
        report = self.rehearse("setTxEnable 0 5\n", "--on", save, target="nobody")
        self.assertEqual([(p["port"], p["verdict_after"]) for p in report["ports"]], [(5, "down")])

    def test_an_asic_that_is_not_in_the_save(self) -> None:
        save = self.folder / "save.json"
        target = f"sim:{shipped_switch('all-gl')}"
        self.assertEqual(self.ctl("-t", target, "save", "-o", save, "--asic", "1", "--ports", "3").status, 0)
        report = self.rehearse("setAsicNum 1\nsetTxEnable 0 3\n", "--on", save, target="nobody")
        self.assertEqual([(p["asic"], p["port"], p["trend"]) for p in report["ports"]], [(1, 3, "worse")])

    def test_without_a_place_for_the_twin(self) -> None:
        self.env["TMPDIR"] = f"{self.folder}/none"
        done = self.ctl("-t", BENCH, "rehearse", self.script("showRate all\n"))
        self.assertEqual(done, (2, "", f"serdesctl: {self.folder}/none: No such file or directory\n"))

    def test_all_settings_that_are_refused_are_told(self) -> None:
        beyond = (
            '[[settings]]\nports = "{}"\ntransmit = {{ mode = "FFE3", k = {}, c0 = -60, c1 = 63, c2 = -63, c3 = 0 }}\n'
        )
        report = self.rehearse(beyond.format(2, 140) + beyond.format(5, 141), name="settings.toml")
        self.assertEqual(report["changes"], [])
        self.assertEqual(
            [re.findall(r"port \d|FFE3 \d+", one["reason"]) for one in report["refused"]],
            [["port 2", "FFE3 140"], ["port 5", "FFE3 141"]],
        )

    def test_all_commands_of_settings_that_are_refused_are_told(self) -> None:
        beyond = '[[settings]]\nports = {}\nspeed = "{}"\n'
        report = self.rehearse(beyond.format(2, "20G") + beyond.format(20, "8G"), target="sim", name="settings.toml")
        commands = {one["command"] for one in report["refused"]}
        self.assertEqual(commands, {"setRate 20G 2", "setRate 8G 20"})

    def test_a_save_of_some_ports_says_nothing_of_the_others(self) -> None:
        save = self.folder / "some.json"
        self.assertEqual(self.ctl("-t", BENCH, "save", "--ports", "0-2", "-o", save).status, 0)
        script = self.script("setSlew 75 2-3\n")
        done = self.ctl("rehearse", "--on", save, script)
        self.assertEqual(done.status, 1)
        self.assertIn(f"refused: {script}: sets ASIC 0 port 3 (user 3), which the save does not have\n", done.out)
        self.assertIn("ASIC 0 port 2 (user 2) tx link 0\n- slew_ps 36\n+ slew_ps 75\n", done.out)
        self.assertNotIn("\nASIC 0 port 3", done.out)

    def test_settings(self) -> None:
        settings = (
            '[[settings]]\nports = "3"\ntransmit = { mode = "FFE2", k = 20, c0 = 0, c1 = 30, c2 = -30, c3 = 0 }\n'
        )
        report = self.rehearse(settings, name="settings.toml")
        self.assertEqual({c["port"] for c in report["changes"]}, {3})
        self.assertEqual((report["ports"][0]["port"], report["ports"][0]["trend"]), (3, "worse"))

    def test_apply_rehearses_first(self) -> None:
        words = ["-t", BENCH, "--state", str(self.folder / "state")]
        save = self.folder / "save.json"
        self.assertEqual(self.ctl(*words, "save", "-o", save).status, 0)
        bad = '[[settings]]\nports = "3"\ntransmit = { mode = "FFE2", k = 20, c0 = 0, c1 = 30, c2 = -30, c3 = 0 }\n'
        done = self.ctl(*words, "apply", "--rehearse", "--yes", self.script(bad, "bad.toml"))
        self.assertEqual(done.status, 1)
        self.assertIn("nothing was sent, for on a twin it went wrong:\n", done.err)
        self.assertIn("serdesctl: worse: ASIC 0 port 3: good -> ", done.err)
        self.assertEqual(self.ctl(*words, "diff", save).status, 0)
        refused = self.script('[[settings]]\nports = "3-4"\nspeed = "20G"\n', "refused.toml")
        done = self.ctl(*words, "apply", "--rehearse", "--yes", refused)
        self.assertEqual(done.status, 1)
        self.assertIn(f"serdesctl: refused: {refused}: setRate 20G 3-4: error during", done.err)
        self.assertEqual(self.ctl(*words, "diff", save).status, 0)
        good = '[[settings]]\nports = "3"\nto = ["2G"]\ntransmit = { k = 90 }\n'
        done = self.ctl(*words, "apply", "--rehearse", "--yes", self.script(good, "good.toml"))
        self.assertEqual(done.status, 0, done.err)
        self.assertEqual(self.ctl(*words, "diff", save).status, 1)

    def test_what_is_refused(self) -> None:
        for words in (["rehearse", "missing"], ["rehearse", self.script("x = 1", "bad.toml")], ["rehearse"]):
            done = self.ctl("-t", BENCH, *words)
            self.assertEqual((done.status, done.out), (2, ""), done.err)


if __name__ == "__main__":
    unittest.main()
