#!/usr/bin/env python3
"""serdesctl save: the shipped switches, and what cannot be read or written."""

from __future__ import annotations

import os
import unittest
from pathlib import Path

from switch_saves import SWITCHES, SaveTest, loaded, settings_part
from serdes_runs import SERDES, shipped_switch


class Save(SaveTest):
    def test_an_unchanged_switch_gives_the_same_bytes(self) -> None:
        for switch in SWITCHES:
            self.state.unlink(missing_ok=True)
            status = 1 if switch == "faulty" else 0
            first = self.save(switch, "--registers", name="first", status=status)
            second = self.save(switch, "--registers", name="second", status=status)
            self.assertEqual(settings_part(first), settings_part(second), switch)
            loaded(first.read_text())

    def test_what_is_in_it(self) -> None:
        save = loaded(self.save().read_text())
        self.assertEqual([asic["asic"] for asic in save["asics"]], [0, 1])
        port = save["asics"][0]["ports"][4]
        self.assertEqual((port["port"], port["config_rate"], port["stream_enabled"]), (4, "8G", True))
        self.assertEqual(list(port["tx_caches"]), ["1G", "2G", "4G", "8G", "10G", "20G"])
        self.assertEqual(port["tx"], [dict(link=0, ffe_mode="FFE3", k=115, c0=-2, c1=58, c2=-10, c3=0, slew_ps=36)])
        self.assertEqual(port["rx"], [dict(link=0, dfe_mode="DFE3", pole=6, peak=4, amax=78)])
        self.assertEqual(len(save["asics"][0]["ports"][16]["tx"]), 4)
        self.assertIsNone(save["asics"][0]["registers"])
        observed = save["observations"]
        self.assertEqual(observed["asics"][0]["ports"][4]["running_rate"], "8G")
        self.assertEqual(observed["asics"][0]["ports"][4]["links"][0]["ap"], 78)
        self.assertTrue(observed["target"].startswith("sim:"))

    def test_registers(self) -> None:
        registers = loaded(self.save("default", "--registers").read_text())["asics"][0]["registers"]
        self.assertEqual(len(registers["pll"]), 12)
        self.assertEqual(len(registers["tx"]), 16 + 4 * 4 + 4)
        self.assertEqual(len(registers["rx"][0]["registers"]), 24)
        # They show the settings once more: the map of registers has k in one of them.
        self.assertIn(115, [value & 0xFF for value in registers["tx"][4]["registers"]])

    def test_chosen_ports(self) -> None:
        for words, chosen in (
            (["--ports", "0-2,5"], {0: [0, 1, 2, 5]}),
            (["--ports", "exg", "--asic", "1"], {1: [8, 9, 10]}),
            (["--ports", "3", "--asic", "all"], {0: [3], 1: [3]}),
            (["--asic", "1"], {1: list(range(12))}),
        ):
            done = self.on("default", "save", *words)
            self.assertEqual(done.status, 0, done.err)
            asics = loaded(done.out)["asics"]
            self.assertEqual({a["asic"]: [p["port"] for p in a["ports"]] for a in asics}, chosen)

    def test_reading_sets_nothing_and_asks_little(self) -> None:
        self.save()
        self.env["SERDES_SIMULATOR_TRACE"] = str(self.trace)
        self.save("default", "--registers")
        self.assert_sets_nothing()
        reads = [call for call in self.calls() if call.startswith("GetSerDesTxFFE(0, 4,")]
        self.assertEqual(len(reads), 1)
        self.assertEqual(len([call for call in self.calls() if call.startswith("GetSerDesTxRateParams(0, 4,")]), 6)

    def test_a_port_that_cannot_be_read_does_not_lose_the_others(self) -> None:
        faults = "".join(
            f'\n[[faults]]\noperation = "{operation}"\nasic = 0\nport = {port}\ncode = -77\nalways = true\n'
            for operation, port in (
                ("GetSerDesTxFFE", 3),
                ("GetSerDesTxRateParams", 6),
                ("TxStreamState", 9),
                ("GetSerDesRxDFEStats", 2),
            )
        )
        switch = self.script(shipped_switch("default").read_text() + faults, "switch.toml")
        done = self.on(switch, "save")
        self.assertEqual(done.status, 1)
        save = loaded(done.out)
        self.assertEqual(
            [(one["port"], one["what"]) for one in save["unread"]],
            [(9, "rate"), (3, "ffe")]
            + [(6, f"tx_cache_raw {rate}") for rate in ("1G", "2G", "4G", "8G", "10G", "20G")],
        )
        self.assertIn("showFFE 3: error during command execution (showFFECmdHandler: serdes err -77)", done.err)
        ports = save["asics"][0]["ports"]
        self.assertEqual((ports[3]["tx"][0]["k"], ports[3]["tx"][0]["slew_ps"]), (None, 36))
        self.assertEqual((ports[6]["tx_caches"], len(ports[6]["rx_caches"])), ({}, 6))
        self.assertEqual((ports[9]["config_rate"], ports[10]["config_rate"]), (None, "8G"))
        observed = save["observations"]["asics"][0]["ports"]
        self.assertIn("showDFEStats 2", observed[2]["unread"])
        self.assertEqual((observed[2]["links"], observed[3]["unread"]), ([], None))

    def test_an_asic_that_cannot_be_selected_does_not_lose_the_other(self) -> None:
        fault = '\n[[faults]]\noperation = "GetSerDesInfo/asic"\nasic = 1\ncode = -9\nalways = true\n'
        switch = self.script(shipped_switch("default").read_text() + fault, "switch.toml")
        done = self.on(switch, "save")
        self.assertEqual(done.status, 1)
        save = loaded(done.out)
        self.assertEqual([asic["asic"] for asic in save["asics"]], [0])
        self.assertEqual([(one["asic"], one["port"], one["what"]) for one in save["unread"]], [(1, None, "config")])

    def test_a_fault_that_passes_is_none(self) -> None:
        fault = '\n[[faults]]\noperation = "GetSerDesRxVGA"\nasic = 0\nport = 3\ncode = -9\n'
        switch = self.script(shipped_switch("default").read_text() + fault, "switch.toml")
        self.assertEqual(loaded(self.on(switch, "save").out)["unread"], [])

    def test_what_is_refused(self) -> None:
        for words, status, message in (
            (["--ports", "24"], 2, "no port 24 of ASIC 0"),
            (["--ports", "1-"], 2, "'1-' is no port list"),
            (["--ports", ","], 2, "',' is no port list"),
            (["--ports", "3-1"], 2, "'3-1' is no port list"),
            (["--ports", "0-3,99"], 2, "no port 99 of ASIC 0"),
            (["--ports", "64"], 2, "no port 64 of ASIC 0"),
            (["--ports", ""], 2, "--ports: its value is empty"),
            (["--asic", "2"], 2, "--asic"),
            (["--registers", "--as-settings"], 2, "excludes"),
        ):
            done = self.on("default", "save", *words)
            self.assertEqual((done.status, done.out), (status, ""), words)
            self.assertIn(message, done.err)
        self.state.unlink()
        self.assertEqual(self.on("bench", "save", "--asic", "1").err, "serdesctl: the switch has no ASIC 1\n")

    def test_a_file_is_written_whole_or_not_at_all(self) -> None:
        unusable = ((f"{self.folder}/none/x", "No such file"), (f"{self.folder}", "Is a directory"))
        for name, message in (("/dev/full", "No space left on device"), *unusable):
            done = self.on("default", "save", "-o", name)
            self.assertEqual((done.status, done.out), (1 if name == "/dev/full" else 2, ""))
            self.assertIn(f"serdesctl: {name}: {message}", done.err)
        self.assertEqual(self.on("default", "save", "-o", "-"), (2, "", "serdesctl: '-' is no file to write to\n"))
        path = self.save()
        path.chmod(0o640)
        link = self.folder / "link"
        link.symlink_to(path)
        before = path.read_bytes()
        self.env["SERDESCTL_TOOL"] = "/bin/false"
        done = self.ctl("save", "-o", link)
        self.assertEqual((done.status, path.read_bytes()), (3, before))
        self.env["SERDESCTL_TOOL"] = SERDES
        self.save("default", "--ports", "0", name="link")
        self.assertTrue(link.is_symlink())
        self.assertLess(path.stat().st_size, len(before))
        self.assertEqual(path.stat().st_mode & 0o777, 0o640)
        left = {name for name in os.listdir(self.folder) if not name.startswith(("lock", "state"))}
        self.assertEqual(left, {"lab.json", "link"})

    def test_standard_output(self) -> None:
        to_file = self.save().read_text()
        self.assertEqual(loaded(self.on("default", "save").out)["asics"], loaded(to_file)["asics"])
        with Path("/dev/full").open("w") as full:
            done = self.ctl("-t", "sim", "save", stdout=full)
        self.assertEqual((done.status, done.err), (1, "serdesctl: standard output: No space left on device\n"))


if __name__ == "__main__":
    unittest.main()
