#!/usr/bin/env python3
"""serdesctl health: the shipped switches, and ports that cannot be read."""

from __future__ import annotations

import json
import unittest
from typing import Any

from program import ProgramTest
from schemas import load
from serdes_runs import StrPath, shipped_switch

# Of the default switch's ASIC 0, as its description says what is the matter with them.
VERDICTS = {
    "dead": {10, 19},
    "bad": {1, 2, 8, 15},
    "marginal": {13},
    "unknown": {20, 21, 23},
    "down": {9, 11, 12, 22},
    "good": {0, 3, 4, 5, 6, 7, 14, 16, 17, 18},
}
ORDER = list(VERDICTS)


class Health(ProgramTest):
    def health(self, *words: StrPath, switch: StrPath | None = None, status: int = 0) -> dict[str, Any]:
        done = self.ctl("-t", f"sim:{switch}" if switch else "sim", "health", "--json", *words)
        self.assertEqual(done.status, status, done.err)
        return load(done.out)

    def test_the_default_switch(self) -> None:
        report = self.health(status=1)
        self.assertIsNone(report["asic"])
        records = report["records"]
        self.assertEqual({record["asic"] for record in records}, {0, 1})
        for verdict, ports in VERDICTS.items():
            found = {r["port"] for r in records if r["asic"] == 0 and r["verdict"] == verdict}
            self.assertEqual(found, ports, verdict)
        order = [(ORDER.index(r["verdict"]), r["asic"], r["port"]) for r in records]
        self.assertEqual(order, sorted(order))

    def test_status_is_of_the_ports_asked_for(self) -> None:
        self.assertEqual(len(self.health("0", "3-7")["records"]), 6)
        self.assertEqual(len(self.health("gl", status=1)["records"]), 16)
        self.assertEqual({r["verdict"] for r in self.health("20-23")["records"]}, {"unknown", "down"})
        report = self.health("--asic", "1")
        self.assertEqual((report["asic"], {record["asic"] for record in report["records"]}), (1, {1}))
        self.assertEqual(self.health("6", "--asic", "1")["records"][0]["user_port"], 36)

    def test_the_table(self) -> None:
        done = self.ctl("-t", "sim", "health", "0-2")
        self.assertEqual((done.status, done.err), (1, ""))
        lines = done.out.splitlines()
        self.assertRegex(lines[0], r"^VERDICT +ASIC +PORT +USER .* REASON$")
        self.assertRegex(lines[1], r"^bad +0 +1 +9 +gl +8G +OPT +on +0 +78 ")
        self.assertRegex(lines[-1], r"^good +0 +0 +8 +gl .* no errors$")

    def test_two_looks(self) -> None:
        report = self.health("0-2", "--interval", "0.01", status=1)
        self.assertEqual(report["interval_s"], 0.01)
        rates = {r["port"]: r for r in report["records"]}
        self.assertEqual(rates[0]["decode_errors_per_s"], 0)
        self.assertGreaterEqual(rates[2]["decode_errors_per_s_max"], rates[2]["decode_errors_per_s_min"])
        self.assertGreater(rates[2]["decode_errors_per_s_max"], 1e6)

    def test_clearing_is_said_and_journaled(self) -> None:
        state = self.folder / "state"
        self.ctl("-t", "sim", "--state", state, "health", "2")
        words = ["-t", "sim", "--state", str(state), "health", "--clear", "2", "--json"]
        done = self.ctl(*words)
        self.assertEqual(done.err, "serdesctl: cleared the error counters of ports 2 of ASIC 0\n")
        self.assertTrue(load(done.out)["cleared"])
        entries = [json.loads(line) for line in self.ctl("journal", "--json").out.splitlines()]
        self.assertEqual([e["command"] for e in entries], ["setAsicNum 0", "clearErrors 2"])
        self.assertEqual({(e["result"], e["target"]) for e in entries}, {("answered", "sim")})

    def test_no_journal_no_clearing(self) -> None:
        self.env["SERDESCTL_JOURNAL"] = "/dev/null/journal"
        trace = self.folder / "trace"
        self.env["SERDES_SIMULATOR_TRACE"] = str(trace)
        done = self.ctl("-t", "sim", "health", "--clear", "2")
        self.assertEqual((done.status, done.out), (2, ""))
        self.assertNotIn("ClrFrameStatCntrs", trace.read_text())

    def test_clearing_that_is_refused(self) -> None:
        self.misbehaving("refuses", "clearErrors 2")
        status, out, err = self.ctl("health", "--clear", "2")
        self.assertEqual((status, out), (1, ""))
        self.assertIn("clearErrors 2: error during command execution (handler: serdes err -5)", err)
        entries = [json.loads(line) for line in self.ctl("journal", "--json").out.splitlines()]
        self.assertEqual([e["status_name"] for e in entries], ["CMD_OK", "CMD_EXEC_ERROR"])

    def test_clearing_whose_answer_is_lost(self) -> None:
        self.misbehaving("dies", "clearErrors 2")
        self.assertEqual(self.ctl("health", "--clear", "2").status, 3)
        entries = [json.loads(line) for line in self.ctl("journal", "--json").out.splitlines()]
        self.assertEqual([e["result"] for e in entries], ["answered", "unknown"])
        self.assertIn("ended with status 7 in the answer to 'clearErrors 2'", entries[1]["reason"])
        self.assertIn("clearErrors 2  (unknown: local: the tool ended", self.ctl("journal").out)

    def test_an_asic_that_cannot_be_asked(self) -> None:
        self.misbehaving("refuses", "setAsicNum 1")
        status, out, err = self.ctl("health")
        self.assertEqual(
            (status, err), (1, "serdesctl: setAsicNum 1: error during command execution (handler: serdes err -5)\n")
        )
        self.assertEqual(out.count("\n"), 25)
        self.assertEqual(self.ctl("health", "--asic", "1"), (1, "", err))

    def test_awkward_and_faulty_switches(self) -> None:
        for name, status in (("awkward", 1), ("faulty", 0)):
            done = self.ctl("-t", f"sim:{shipped_switch(name)}", "health", "--json")
            self.assertEqual(done.status, status, done.err)
            self.assertGreater(len(load(done.out)["records"]), 8)

    def test_ports_that_cannot_be_read_do_not_hide_the_others(self) -> None:
        faults = "".join(
            f'\n[[faults]]\noperation = "{operation}"\nasic = 0\nport = {port}\ncode = -77\nalways = true\n'
            for operation, port in (("GetSerDesRxDFEStats", 3), ("TxStreamState", 6))
        )
        switch = self.script(shipped_switch("default").read_text() + faults, "switch.toml")
        records = {r["port"]: r for r in self.health("0-7", switch=switch, status=1)["records"]}
        self.assertEqual(len(records), 8)
        for port, handler in ((3, "showDFEStatsCmdHandler"), (6, "showRateCmdHandler")):
            self.assertEqual(records[port]["verdict"], "unknown")
            self.assertIn(f"{handler}: serdes err -77", records[port]["reason"])
        self.assertEqual((records[0]["verdict"], records[1]["verdict"]), ("good", "bad"))

    def test_what_is_refused(self) -> None:
        for words, message in (
            (["30"], "no port 30 of ASIC 0"),
            (["64"], "no port 64 of ASIC 0"),
            (["12", "--asic", "1"], "no port 12 of ASIC 1"),
            (["7-5"], "no ports '7-5'"),
            (["x"], "'x' is no port list"),
            (["0-"], "'0-' is no port list"),
            (["--interval", "0"], "--interval"),
            (["--asic", "2"], "--asic"),
        ):
            done = self.ctl("-t", "sim", "health", *words)
            self.assertEqual((done.status, done.out), (2, ""), words)
            self.assertIn(message, done.err)
        done = self.ctl("-t", f"sim:{shipped_switch('bench')}", "health", "--asic", "1")
        self.assertEqual((done.status, done.out), (1, ""))


if __name__ == "__main__":
    unittest.main()
