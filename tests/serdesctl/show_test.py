#!/usr/bin/env python3
"""serdesctl show: answers as data on three switches, and what is refused."""
from __future__ import annotations

import csv
import datetime
import io
import json
import os
import pty
import unittest
from typing import Any

from program import ProgramTest, Result, plain_tool
from schemas import load
from serdes_runs import LIMIT_SECONDS, StrPath, shipped_switch

PORTS = ("all", "gl", "xg", "exg", "0-23", "0", "5 6", "16-19", "30")
COMMANDS = [
    *(f"{name} {ports}" for name in ("showRate", "dffe", "showSlew", "showTxParams", "showTx") for ports in PORTS),
    *(f"{name} {ports}" for name in ("showRxParams", "showDFE", "showVGA", "drx", "showDFEStats") for ports in PORTS),
    *(f"showTxParamsRaw {at} {ports}" for at in ("asic 8G", "n auto") for ports in PORTS),
    *(f"showRxParamsRaw {at} {ports}" for at in ("asic 8g", "system 4") for ports in PORTS),
    *(f"{name} 8G {ports}" for name in ("showTxParamsCache", "showRxParamsCache") for ports in ("gl", "xg", "0-7")),
    *(f"{name} 10 exg" for name in ("eshowTxParamsCache", "eshowRxParamsCache")),
    *("showPLL all", "showPLL 0-17", "readTx 0 0 1", "readRx 5 0 0xff", "readPLL 0 1", "getTest 0 0 0"),
    *("showConfig", "help", "setRate ?", "setFFE help", "loop ?"),
]


class Show(ProgramTest):
    def show(self, *words: StrPath, switch: StrPath | None = None) -> Result:
        return self.ctl("-t", f"sim:{switch}" if switch else "sim", "show", *words)

    def shown(self, *words: StrPath, switch: StrPath | None = None) -> dict[str, Any]:
        status, out, err = self.show("--json", *words, switch=switch)
        self.assertEqual((status, err, out.count("\n")), (0, "", 1))
        return load(out)

    def test_every_command_on_every_switch(self) -> None:
        for switch in map(shipped_switch, ("default", "awkward", "faulty")):
            kinds = set()
            for command in COMMANDS:
                with self.subTest(switch=switch.stem, command=command):
                    status, out, err = self.show("--json", command, switch=switch)
                    if status != 0:
                        why = {1: "[^\n]*: (invalid|error)", 2: "no (port|core|link)"}[status]
                        self.assertEqual(out, "")
                        self.assertRegex(err, rf"\Aserdesctl: {why}[^\n]*\n\Z")
                        continue
                    answer = load(out)
                    self.assertEqual(answer["command"], command)
                    kinds.add(answer["kind"])
            self.assertGreater(len(kinds), 15, f"{switch}: {kinds}")

    def test_the_envelope(self) -> None:
        before = datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)
        answer = self.shown("dtxp", "0-1")
        time = datetime.datetime.strptime(answer["time"], "%Y-%m-%dT%H:%M:%S%z")
        self.assertTrue(before <= time <= datetime.datetime.now(datetime.timezone.utc))
        head = {name: value for name, value in answer.items() if name not in ("time", "records")}
        self.assertEqual(head, dict(schema=1, kind="tx_params", command="dtxp 0-1", target="sim", asic=0))
        self.assertEqual(list(answer), ["schema", "kind", "command", "target", "time", "asic", "records"])
        self.assertEqual([record["port"] for record in answer["records"]], [0, 1])

    def test_the_other_asic(self) -> None:
        answer = self.shown("--asic", "1", "showRate", "0")
        self.assertEqual((answer["asic"], answer["records"][0]["asic"]), (1, 1))
        status, out, err = self.show("--asic", "1", "showRate 0", switch=shipped_switch("bench"))
        self.assertEqual((status, out, err), (1, "", "serdesctl: setAsicNum 1: invalid command parameter\n"))

    def test_what_is_not_there_is_refused(self) -> None:
        for command, missing in (
            ("showRate 24", "no port 24 of ASIC 0"),
            ("showRate 64", "no port 64 of ASIC 0"),  # the tool shows port 0
            ("showDFEStats 3 20-31", "no port 24 of ASIC 0"),
            ("showRate 7-5", "no ports '7-5'"),
            ("showPLL 12", "no core 12 of ASIC 0"),
            ("readTx 24 0 0", "no port 24 of ASIC 0"),
            ("getTest 0 1 0", "no link 1 of port 0"),
            ("showRate 12 --asic 1", "no port 12 of ASIC 1"),
        ):
            status, out, err = self.show(*command.split())
            self.assertEqual((status, out), (2, ""), command)
            self.assertEqual(err, f"serdesctl: {missing}\n")
        status, out, err = self.show("showRate", "xg", switch=shipped_switch("all-gl"))
        self.assertEqual((status, out, err), (2, "", "serdesctl: no ports 'xg' of ASIC 0\n"))

    def test_statistics_are_asked_for_type_by_type(self) -> None:
        records = self.shown("showDFEStats", "all")["records"]
        self.assertEqual({record["port"] for record in records}, set(range(24)))
        for record in records:
            even_odd, plain, amin = (record[name] is not None for name in ("h1_even", "h1", "amin"))
            type_name = record["serdes_type"]
            self.assertEqual(even_odd, type_name.startswith("SERDES_11G"), record)
            self.assertEqual(plain, type_name == "SERDES_6G_QUAD", record)
            self.assertEqual(amin, type_name != "SERDES_10GE", record)
        status, out, err = self.show("showDFEStats", "20")
        self.assertEqual((status, out, err), (1, "", "serdesctl: showDFEStats 20: error during command execution\n"))

    def test_types_that_share_a_name_are_asked_for_port_by_port(self) -> None:
        described = shipped_switch("awkward").read_text()
        names = described[described.index("type_names = ") :].split("\n")[0]
        switch = self.script(described.replace(names, f"type_names = {['x'] * 7}"), "switch.toml")
        one_by_one = []
        for port in range(15):
            status, out, _ = self.show("--json", "showDFEStats", str(port), switch=switch)
            one_by_one += json.loads(out)["records"] if status == 0 else []
        together = self.shown("showDFEStats", "0-14", switch=switch)["records"]
        self.assertEqual({record["port"] for record in one_by_one}, {0, 2, 3, 4, 6, 7, 8, 9, 10, 11, 14})
        with_values = [record for record in together if record["amin"] is not None]
        self.assertEqual(*(list(map(without_counters, records)) for records in (with_values, one_by_one)))

    def test_text_is_the_tools(self) -> None:
        for command in ("showFFE 0-3", "showConfig", "showPLL 0"):
            status, out, _ = self.show("--text", command)
            self.assertEqual(status, 0)
            self.assertEqual(out + "\n\n", plain_tool(command + "\n", self.env))

    def test_text_is_for_terminals(self) -> None:
        terminal, end = pty.openpty()
        self.addCleanup(os.close, terminal)
        process = self.start("-t", "sim", "show", "readRx", "0", "0", "1", stdout=end)
        os.close(end)
        self.assertEqual(process.wait(timeout=LIMIT_SECONDS), 0)
        self.assertRegex(os.read(terminal, 4096).decode(), r"\APort 0 .*\r\n\Z")
        self.assertRegex(self.show("readRx", "0", "0", "1")[1], r"\A\{.*\}\n\Z")

    def test_csv(self) -> None:
        for command in ("showTxParams all", "showDFEStats all", "showRx 16", "showConfig", "readPLL 0 1"):
            records = self.shown(command)["records"]
            status, out, err = self.show("--csv", command)
            self.assertEqual((status, err), (0, ""))
            rows = list(csv.DictReader(io.StringIO(out)))
            self.assertEqual(len(rows), len(records))
            for row, record in zip(rows, records):
                self.assertEqual(list(row), list(record))
                for name, value in record.items():
                    self.assertEqual(row[name], as_csv(value), name)

    def test_a_refusal_is_status_1_with_its_message(self) -> None:
        for words, message in (
            (["showRate"], "showRate: too few command args"),
            (["showRate", "x"], "showRate x: invalid command parameter"),
            (["eshowTxParamsCache", "8G", "gl"], "eshowTxParamsCache 8G gl: invalid port list, ethernet only"),
            (["readRx", "0", "0", "99"], "readRx 0 0 99: error during command execution (readRxRegisterCmdHandler: "),
        ):
            for form in ("--json", "--csv", "--text"):
                status, out, err = self.show(form, *words)
                self.assertEqual((status, out), (1, ""))
                self.assertTrue(err.startswith("serdesctl: " + message), err)

    def test_what_shows_nothing_is_not_sent(self) -> None:
        self.env["SERDESCTL_TOOL"] = "/bin/false"
        for words, message in (
            (["setFFE", "FFE3", "1", "1", "1", "1", "1", "0"], "setFFE shows nothing: see serdesctl run"),
            (["setAsicNum", "1"], "setAsicNum shows nothing"),
            (["loop", "showRate", "0"], "loop shows nothing"),
            (["exit"], "exit shows nothing"),
            (["runTest", "0", "0", "0", "0"], "runTest shows nothing"),
            (["clearErrors", "0"], "clearErrors shows nothing"),
            (["showRates", "0"], "unknown command 'showRates 0'"),
            (["showRate 0\nsetRate 8G 0"], "the command has a control character"),
            (["showRate", "0" * 130], "the command is longer than 125 characters"),
            ([" # showRate"], "unknown command"),
        ):
            status, out, err = self.show(*words)
            self.assertEqual((status, out), (2, ""), words)
            self.assertIn(message, err)

    def test_answers_that_are_no_tables(self) -> None:
        for how in ("garbage", "message_in_output", "false_prompt"):
            self.misbehaving(how, trigger="showFFE 0")
            status, out, err = self.ctl("show", "showFFE", "0")
            self.assertEqual((status, out), (3, ""), how)
            self.assertEqual(err.count("\n"), 1, err)

    def test_output_that_cannot_be_written(self) -> None:
        with open("/dev/full", "w") as full:
            status, _, err = self.ctl("-t", "sim", "show", "--json", "showRate", "0", stdout=full)
        self.assertEqual(status, 1)
        self.assertIn("standard output", err)


def without_counters(record: dict[str, Any]) -> dict[str, Any]:
    return {name: value for name, value in record.items() if "_errors" not in name}


def as_csv(value: Any) -> str:
    if value is None:
        return ""
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, list):
        return " ".join(f"0x{number:04x}" for number in value)
    return str(value)


if __name__ == "__main__":
    unittest.main()
