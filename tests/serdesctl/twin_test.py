#!/usr/bin/env python3
"""serdesctl twin: twins of shipped, changed and random switches load, are set alike, and read alike."""

from __future__ import annotations

import random
import re
import tomllib
import unittest
from pathlib import Path
from typing import Any

from program import ProgramTest
from schemas import load
from serdes_runs import StrPath, shipped_switch

LINES_OF_BENCH = {port: 2 + 2 * port for port in range(20)}  # inches, as bench.toml says
SWITCHES = ("bench", "all-gl", "awkward", "faulty")  # the built-in one has a test of its own, since it takes long

# What the twin cannot be: a port that changes its answer, and names that are not what they should be.
CHANGES = """
setTxParams FFE3 100 -3 50 -12 0 36 0-3
setRxParams DFE3 5 3 0x40 1
setTxEnable 0 4
setRate 4G 5
setTxParamsCache 8G FFE2 90 0 55 -4 0 50 6
setTxParamsRaw asic 2G 4000 9 -7 1 2 3 4 7
setRxParamsRaw asic 2G 9 -1 2 3 5 7
esetTxParamsCache 10G 9 3 20
"""
CHANGED = ("--asic", "0", "--ports", "0-7,20")


def random_switch(draw: random.Random, far_ends: list[str]) -> tuple[str, dict[int, float]]:
    """A description of boards, and their lengths by port."""
    text = ""
    for name in range(4):
        taps = [-draw.randrange(5), draw.randrange(48, 60), -draw.randrange(26), 0]
        text += f'[settings.s{name}]\nffe = "{draw.choice(("FFE2", "FFE3"))}"\ntaps = {taps}\n'
        text += f"power = {draw.randrange(100, 160)}\nslew = {draw.choice((24, 30, 36, 50))}\n"
        text += f'dfe = "{draw.choice(("DFE1", "DFE3", "DFE5"))}"\npeak = {draw.randrange(6)}\n\n'
    lengths = {port: draw.uniform(8, 40) for port in range(16)}
    for port, length in lengths.items():
        text += f"[channels.c{port}]\nfr4_inches = {length:.3f}\nconnectors = 2\n\n"
    text += '[[asics]]\n[[asics.cores]]\ncores = "0-1"\ntype = 2\n[[asics.cores]]\ncores = "2-3"\ntype = 5\n'
    for port in range(16):
        speed = draw.choice(("4G", "8G", "10G"))
        text += f'[[asics.ports]]\nports = {port}\nkind = "GL"\ncore = {port // 4}\nmedia = "electrical"\n'
        text += f'channel = "c{port}"\nspeed = "{speed}"\ncache = "s{draw.randrange(4)}"\n'
        text += draw.choice(far_ends).format(draw.randrange(4)) + "\n"
    return text, lengths


class Twin(ProgramTest):
    def save(self, target: StrPath, name: str, *words: StrPath) -> Path:
        file = self.folder / name
        done = self.ctl("-t", target, "save", "-o", file, *words)
        self.assertIn(done.status, (0, 1), done.err)
        return file

    def twin(self, save: StrPath, name: str = "twin.toml") -> tuple[Path, dict[str, Any]]:
        file = self.folder / name
        done = self.ctl("twin", save, "-o", file, "--json")
        self.assertIn(done.status, (0, 1), done.err)
        self.assertEqual(done.err, "")
        report = load(done.out)
        self.assertEqual(report["kind"], "twin")
        tomllib.loads(file.read_text())
        return file, report

    def differences(self, target: StrPath, *words: StrPath) -> tuple[list[dict[str, Any]], dict[str, Any]]:
        """Between a switch and its twin, and what the twin says of itself."""
        before = self.save(target, "before.json", *words)
        twin, report = self.twin(before)
        after = self.save(f"sim:{twin}", "after.json", *words)
        done = self.ctl("diff", before, after, "--json")
        self.assertIn(done.status, (0, 1), done.err)
        differences = load(done.out)
        self.assertEqual((differences["only_before"], differences["only_after"]), ([], []))
        return differences["records"], report

    def test_shipped_switches(self) -> None:
        for name in SWITCHES:
            with self.subTest(name):
                self.env.pop("SERDES_SIMULATOR_STATE", None)
                target = f"sim:{shipped_switch(name)}"
                records, report = self.differences(target)
                ports = {(r["asic"], r["port"]) for r in records}
                if name == "faulty":
                    noted = {int(port) for port in re.findall(r"port (\d+) of ASIC 0", "\n".join(report["notes"]))}
                    self.assertEqual(ports - {(1, None)}, {(0, port) for port in noted})
                else:
                    self.assertEqual(records, [])
                    self.assertEqual(report["notes"], [])

    def test_a_changed_switch(self) -> None:
        state = self.folder / "state"
        script = self.script(CHANGES)
        self.assertEqual(self.ctl("-t", "sim", "--state", state, "run", script).status, 0)
        before = self.folder / "before.json"
        self.ctl("-t", "sim", "--state", state, "save", "-o", before, *CHANGED)
        twin, _ = self.twin(before)
        done = self.ctl("-t", f"sim:{twin}", "diff", before)
        self.assertEqual((done.status, done.out, done.err), (0, "", ""))

    def test_registers(self) -> None:
        state = self.folder / "state"
        script = self.script("writeTx 0 0 11 0x1234\nwriteRx 17 2 14 0x77\nwritePLL 4 7 0x99\nwriteTx 16 1 1 0x30\n")
        self.assertEqual(self.ctl("-t", "sim", "--state", state, "run", script).status, 0)
        before = self.folder / "before.json"
        some = ("--registers", "--asic", "0", "--ports", "0,16-17")
        self.ctl("-t", "sim", "--state", state, "save", "-o", before, *some)
        twin, report = self.twin(before)
        ports = "ports 1-15 18-23 of ASIC 0, which are not in the save"
        self.assertEqual(report["notes"], [ports, "ASIC 1, which is not in the save"])
        shown = self.ctl("-t", f"sim:{twin}", "show", "--text", "readTx", "0", "0", "11").out
        self.assertIn("1234", shown)
        after = self.save(f"sim:{twin}", "after.json", *some)
        records = load(self.ctl("diff", before, after, "--json").out)["records"]
        self.assertEqual([r for r in records if r["of"] != "register"], [])
        # What differs is what registers report: readings, counts and temperatures, and taps that adapt.
        self.assertLess(len(records), 300)
        self.assertFalse(any(r["side"] == "tx" for r in records), records[:3])

    def test_lengths_of_the_bench(self) -> None:
        _, report = self.twin(self.save(f"sim:{shipped_switch('bench')}", "save.json"))
        for record in report["records"]:
            length = LINES_OF_BENCH.get(record["port"])
            if length is None or not 8 <= length <= 40:
                continue
            self.assertEqual((record["medium"], record["far_end"]), ("board", "itself"))
            self.assertAlmostEqual(record["length"], length, delta=length / 10)
            self.assertAlmostEqual(record["amin_twin"], record["amin"], delta=3)
            self.assertLess(record["residual"], 0.5)

    def assert_reads_alike(self, target: StrPath, lengths: dict[int, float]) -> list[dict[str, Any]]:
        """Gives what the twin says of its links."""
        records, report = self.differences(target)
        self.assertEqual(records, [])
        twin = f"sim:{self.folder / 'twin.toml'}"
        shown = [load(self.ctl("-t", t, "show", "--json", "showDFEStats", "gl").out)["records"] for t in (target, twin)]
        fits = {record["port"]: record for record in report["records"]}
        for was, now in zip(*shown):
            port = was["port"]
            if all(was[f"h{tap}_{side}"] == 0 for tap in range(1, 6) for side in ("even", "odd")):
                continue
            self.assertAlmostEqual(now["amin"], was["amin"], delta=3, msg=f"{port}")
            self.assertAlmostEqual(now["ap"], was["ap"], delta=1, msg=f"{port}")
            fit, length = fits[port], lengths[port]
            if abs(fit["length"] - length) > length / 10:
                # Another far end explains it as well: said, with a range that the line is in.
                found = re.search(r"on ([\d.]+) to ([\d.]+) in", fit["note"])
                ranges = [(fit["shortest"], fit["longest"])] + ([(float(found[1]), float(found[2]))] if found else [])
                self.assertTrue(any(low * 0.9 <= length <= high * 1.1 for low, high in ranges), (length, fit))
        return list(fits.values())

    def test_random_switches(self) -> None:
        for seed in range(3):
            draw = random.Random(seed)
            text, lengths = random_switch(draw, ['far_end = "loop"'])
            with self.subTest(seed):
                for record in self.assert_reads_alike(f"sim:{self.script(text, 'switch.toml')}", lengths):
                    length = lengths[record["port"]]
                    self.assertAlmostEqual(record["length"], length, delta=length / 10)

    def test_random_partners(self) -> None:
        for seed in range(2):
            draw = random.Random(100 + seed)
            text, lengths = random_switch(draw, ['far_end = "loop"', 'partner = {{ settings = "s{}" }}'])
            with self.subTest(seed):
                self.assert_reads_alike(f"sim:{self.script(text, 'switch.toml')}", lengths)

    def test_the_built_in_switch(self) -> None:
        before, twin = self.save("sim", "before.json"), self.folder / "twin.toml"
        done = self.ctl("twin", before, "-o", twin)
        self.assertEqual((done.status, done.err), (0, ""))
        self.assertRegex(done.out.splitlines()[0], "^ASIC +PORT +LINK +HEARS +MEDIUM +LENGTH ")
        self.assertRegex(done.out, r"(?m)^0 +1 +0 +itself +(board|optical) +2[3-7]\.\d in ")
        self.assertRegex(done.out, r"(?m)^0 +11 +0 +nothing +optical +~8\.0 in +- +- +")
        self.assertRegex(done.out, r"(?m)^0 +15 +0 +partner +(board|optical) ")
        self.assertRegex(done.out, r"(?m)^0 +19 +.*another speed")
        self.assertEqual(self.ctl("-t", f"sim:{twin}", "diff", before), (0, "", ""))
        self.assertEqual(self.verdicts("sim"), self.verdicts(f"sim:{twin}"))

    def verdicts(self, target: str) -> dict[tuple[int, int], bool]:
        done = self.ctl("-t", target, "health", "--interval", "1", "--json")
        return {(r["asic"], r["port"]): r["verdict"] in ("dead", "bad") for r in load(done.out)["records"]}

    def test_without_a_file_the_description_is_printed(self) -> None:
        bench = f"sim:{shipped_switch('bench')}"
        twin, _ = self.twin(self.save(bench, "save.json"))
        printed = self.ctl("-t", bench, "twin")
        self.assertEqual(printed.status, 0)
        self.assertRegex(printed.out, r"^# A twin of sim:\S+ as it was at 20\d\d-")
        self.assertEqual(printed.out.splitlines()[1:], twin.read_text().splitlines()[1:])

    def test_names_of_any_kind(self) -> None:
        text = 'type_names = ["a\\"b", "\\\\", "tab\\there", "\\u00e4\\u00f6", "#", "\'", "]"]\n'
        switch = self.script(text + shipped_switch("bench").read_text(), "switch.toml")
        records, report = self.differences(f"sim:{switch}")
        self.assertEqual((records, report["notes"]), ([], []))

    def test_what_is_refused(self) -> None:
        for words in (["twin", "missing.json"], ["twin", self.script("{}", "save.json")], ["-t", "nobody", "twin"]):
            done = self.ctl(*words)
            self.assertEqual((done.status, done.out), (2, ""), done.err)
        bench = f"sim:{shipped_switch('bench')}"
        done = self.ctl("-t", bench, "twin", "-o", self.folder / "no" / "twin.toml")
        self.assertEqual(done.status, 2, done.err)


if __name__ == "__main__":
    unittest.main()
