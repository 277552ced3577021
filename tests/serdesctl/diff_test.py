#!/usr/bin/env python3
"""serdesctl diff: exactly what was changed, between saves and with the switch."""

from __future__ import annotations

import json
import os
import pty
import unittest
from pathlib import Path
from typing import Any

from program import SERDESCTL
from schemas import load
from serdes_runs import StrPath, shipped_switch
import serdes_runs
from switch_saves import SWITCHES, SaveTest

# Each command that sets something, and the differences that it makes: place, parameter, old, new.
Change = tuple[str, list[tuple[Any, ...]]]
CHANGES: list[Change] = [
    ("setTxEnable 0 4", [(4, None, None, None, "stream_enabled", True, False)]),
    ("setSlew 24 4", [(4, "tx", 0, None, "slew_ps", 36, 24)]),
    (
        "setFFE FFE2 120 -2 58 -12 1 4",
        [
            (4, "tx", 0, None, "ffe_mode", "FFE3", "FFE2"),
            (4, "tx", 0, None, "k", 115, 120),
            (4, "tx", 0, None, "c2", -10, -12),
            (4, "tx", 0, None, "c3", 0, 1),
        ],
    ),
    ("setDFE DFE5 4 5", [(4, "rx", 0, None, "dfe_mode", "DFE3", "DFE5")]),
    (
        "setVGA 5 3 0x4f 4",
        [
            (4, "rx", 0, None, "pole", 6, 5),
            (4, "rx", 0, None, "peak", 4, 3),
            (4, "rx", 0, None, "amax", 78, 79),
        ],
    ),
    (
        "setTxParamsRaw asic 10G 70000 -1 9 1 2 3 4 4",
        [
            (4, "tx", None, "10G", name, old, new)
            for name, old, new in (
                ("power", 160, 70000),
                ("slew", 0, -1),
                ("mode", 2, 9),
                ("p0", -4, 1),
                ("p1", 55, 2),
                ("p2", -12, 3),
                ("p3", 0, 4),
            )
        ],
    ),
    ("setRxParamsCache 4G DFE1 6 4 0x4e 4", [(4, "rx", None, "4G", "mode", 0, 3)]),
    ("setTxParamsCache 1G FFE2 100 0 63 0 0 75 4", [(4, "tx", None, "1G", "mode", 0, 1)]),
    ("esetRxParamsCache 10G 3 2 20", [(20, "rx", None, "10G", "mode", 1, 3)]),
    ("setSlew 50 16", [(16, "tx", link, None, "slew_ps", 60, 50) for link in range(4)]),
]


class Diff(SaveTest):
    def diff(self, *words: StrPath, status: int) -> dict[str, Any]:
        done = self.on("default", "diff", "--json", *words)
        self.assertEqual((done.status, done.err), (status, ""))
        return load(done.out)

    def test_each_set_shows_as_itself_and_nothing_else(self) -> None:
        for command, changes in CHANGES:
            self.state.unlink(missing_ok=True)
            before = self.save()
            self.change(command + "\n")
            records = self.diff(before, status=1)["records"]
            found = [(r["port"], r["side"], r["link"], r["rate"], r["parameter"], r["old"], r["new"]) for r in records]
            self.assertEqual([f for f in found if f[0] in (4, 16, 20)], changes, command)
            self.assertEqual({r["of"] for r in records}, {"setting"})
            self.assertLessEqual({f[0] for f in found}, {4, 5, 16, 20}, command)
            after = self.save(name="after.json")
            self.assertEqual(self.diff(before, after, status=1)["records"], records)
            back = self.diff(after, before, status=1)["records"]
            self.assertEqual([(r["new"], r["old"]) for r in back], [(r["old"], r["new"]) for r in records])

    def test_a_speed_brings_its_cache(self) -> None:
        before = self.save()
        self.change("setRate 10G 4\n")
        records = self.diff(before, status=1)["records"]
        changed = {r["parameter"]: (r["old"], r["new"]) for r in records}
        self.assertEqual(changed["config_rate"], ("8G", "10G"))
        self.assertEqual((changed["k"], changed["dfe_mode"]), ((115, 160), ("DFE3", "DFE5")))
        self.assertNotIn("running_rate", changed)
        observed = self.diff(before, "--observations", status=1)["records"]
        self.assertIn(("running_rate", "8G", "10G"), [(r["parameter"], r["old"], r["new"]) for r in observed])
        self.assertEqual({r["of"] for r in observed}, {"setting", "observation"})

    def test_the_other_asic(self) -> None:
        before = self.save()
        self.change("setAsicNum 1\nsetTxEnable 0 0\n")
        (record,) = self.diff(before, status=1)["records"]
        self.assertEqual((record["asic"], record["port"], record["user_port"]), (1, 0, 30))

    def test_shipped_switches_do_not_differ_from_themselves(self) -> None:
        for switch in SWITCHES:
            self.state.unlink(missing_ok=True)
            save = self.save(switch, "--registers", status=1 if switch == "faulty" else 0)
            done = self.on(switch, "diff", save)
            self.assertEqual((done.status, done.out), (0, ""), switch)
            self.assertEqual(self.ctl("diff", save, save, "--observations"), (0, "", ""))

    def test_what_could_not_be_read_of_one(self) -> None:
        fault = '\n[[faults]]\noperation = "GetSerDesTxSlew"\nasic = 0\nport = 4\nalways = true\ncode = -108\n'
        switch = self.script(shipped_switch("default").read_text() + fault, "switch.toml")
        whole = self.save()
        self.state.unlink()
        lacking = self.save(switch, name="lacking.json", status=1)
        unread = "ASIC 0 port 4 slew: "
        for words, name in (((whole, lacking), lacking), ((lacking, whole), lacking)):
            done = self.ctl("diff", *words)
            self.assertEqual(done.status, 1)
            self.assertIn(f"not read in {name}: {unread}", done.out)
        report = load(self.ctl("diff", "--json", whole, lacking).out)
        self.assertEqual((report["unread_before"], len(report["unread_after"]), report["records"]), ([], 1, []))
        self.assertEqual(self.ctl("diff", lacking, lacking), (0, "", ""))

    def test_text(self) -> None:
        before = self.save()
        self.change("setSlew 24 4\nsetRxParamsCache 4G DFE1 6 4 0x4e 5\n")
        after = self.save(name="after.json")
        done = self.ctl("diff", before, after)
        self.assertEqual((done.status, done.err), (1, ""))
        self.assertEqual(
            done.out,
            f"--- {before}\n+++ {after}\n"
            "ASIC 0 port 4 (user 12) tx link 0\n- slew_ps 36\n+ slew_ps 24\n"
            "ASIC 0 port 5 (user 13) 4G rx cache\n- mode 0\n+ mode 3\n",
        )

    def test_colour_at_a_terminal(self) -> None:
        before = self.save()
        self.change("setSlew 24 4\n")
        after = self.save(name="after.json")
        coloured = b"\x1b[31m- slew_ps 36\x1b[0m\r\n\x1b[32m+ slew_ps 24\x1b[0m\r\n"
        for env, lines in (
            ({"TERM": "xterm"}, coloured),
            ({"TERM": "dumb"}, b"\r\n- slew_ps 36\r\n+ slew_ps 24\r\n"),
            ({"TERM": "xterm", "NO_COLOR": "1"}, b"\r\n- slew_ps 36\r\n+ slew_ps 24\r\n"),
        ):
            self.env.update(env)
            mine, theirs = pty.openpty()
            done = self.ctl("diff", before, after, stdout=theirs)
            os.close(theirs)
            self.assertEqual(done.status, 1)
            self.assertIn(lines, os.read(mine, 65536), env)
            os.close(mine)

    def test_reading_sets_nothing(self) -> None:
        before = self.save()
        self.env["SERDES_SIMULATOR_TRACE"] = str(self.trace)
        self.diff(before, status=0)
        self.assertGreater(len(self.calls()), 100)
        self.assert_sets_nothing()

    def test_registers_where_both_have_them(self) -> None:
        before = self.save("default", "--registers")
        self.change("writeTx 4 0 15 0x1c\n")
        (record,) = self.diff(before, status=1)["records"]
        self.assertEqual((record["of"], record["parameter"], record["new"]), ("register", "register 15", 0x1C))
        self.assertEqual(self.diff(before, self.save(name="without.json"), status=0)["records"], [])

    def test_a_save_of_some_ports_is_compared_with_them(self) -> None:
        some = self.save("default", "--ports", "0-3", name="some.json")
        self.change("setSlew 24 4\n")
        self.diff(some, status=0)
        every = self.save()
        report = self.diff(every, some, status=1)
        self.assertEqual((report["records"], report["only_after"]), ([], []))
        self.assertEqual(len(report["only_before"]), 21)
        done = self.ctl("diff", some, every)
        self.assertIn(f"only in {every}: ASIC 0 port 4 (user 12)\n", done.out)
        self.assertIn(f"only in {every}: ASIC 1\n", done.out)

    def test_another_switch(self) -> None:
        self.save("all-gl")
        self.state.unlink()
        done = self.on("default", "diff", "--json", self.folder / "lab.json")
        self.assertEqual((done.status, done.err), (1, ""))
        records = load(done.out)["records"]
        self.assertIn("port_type", {r["parameter"] for r in records if r["of"] == "hardware"})
        compared = {r["port"] for r in records if r["of"] == "setting" and r["asic"] == 0}
        self.assertFalse(compared & set(range(16, 24)), "ports of other types")

    def test_what_is_no_save(self) -> None:
        save = self.save()
        for text, message in (
            ("", ": parse error at line 1, column 1"),
            ("{}", ": /: has no 'kind'"),
            (
                save.read_text().replace('"schema": 1', '"schema": 7'),
                ": /schema: this program knows schema 1 and not 7",
            ),
            (save.read_text()[:-100], ": parse error at line "),
            (json.dumps({"kind": "rate", "schema": 1}), ': /kind: not "save"'),
        ):
            file = self.script(text, "broken.json")
            for words in ([file], [file, str(save)], [str(save), file]):
                done = self.ctl("-t", "sim", "diff", *words)
                self.assertEqual((done.status, done.out), (2, ""))
                self.assertTrue(done.err.startswith(f"serdesctl: {file}{message}"), done.err)
        done = self.ctl("diff", self.folder / "none", save)
        self.assertEqual((done.status, done.err), (2, f"serdesctl: {self.folder}/none: No such file or directory\n"))
        self.assertEqual(self.ctl("diff").status, 2)

    def test_standard_input(self) -> None:
        save = self.save()
        self.change("setSlew 24 4\n")
        words = self.target("default")
        done = serdes_runs.run(*words, "diff", "-", program=[SERDESCTL], typed=Path(save).read_bytes(), env=self.env)
        self.assertEqual((done.returncode, done.stderr), (1, b""))
        self.assertIn(b"+ slew_ps 24\n", done.stdout)


if __name__ == "__main__":
    unittest.main()
