#!/usr/bin/env python3
"""serdesctl parse: every expected output of the end-to-end cases, saved logs, and what is refused."""
from __future__ import annotations

import csv
import io
import json
import unittest
from pathlib import Path

from program import SERDESCTL, ProgramTest, Result
from schemas import FOLDER, load
import serdes_runs
from serdes_runs import ROOT, StrPath, shipped_switch

CASES = ROOT / "tests" / "e2e"


def switch_of(case: Path) -> Path | None:
    if (case / "switch").exists():
        return shipped_switch((case / "switch").read_text().strip())
    return case / "switch.toml" if (case / "switch.toml").exists() else None


class Parse(ProgramTest):
    def parse(self, text: str | bytes, *words: StrPath) -> Result:
        typed = text if isinstance(text, bytes) else text.encode()
        done = serdes_runs.run("parse", *words, program=[SERDESCTL], typed=typed, env=self.env)
        return Result(done.returncode, done.stdout.decode(), done.stderr.decode())

    def tool(self, commands: str, switch: Path | None = None) -> bytes:
        """What the tool prints at its prompt on a pipe."""
        return serdes_runs.run(typed=commands.encode(), env=serdes_runs.environment(switch=switch)).stdout

    def test_every_expected_output_is_read_whole(self) -> None:
        kinds: set[str] = set()
        cases = sorted(path.parent for path in CASES.glob("*/*/out"))
        self.assertGreater(len(cases), 50)
        for case in cases:
            with self.subTest(case=str(case.relative_to(CASES))):
                config = self.tool("showConfig\nsetAsicNum 1\nshowConfig\n", switch_of(case))
                known = ["--config", self.script(config, "config")]
                if self.parse("\n\n", *known).status != 0:
                    known = []  # the switch could not be opened
                status, out, err = self.parse((case / "out").read_bytes(), *known)
                objects = [load(line) for line in out.splitlines()]
                refused = [found for found in objects if found["kind"] == "refused"]
                self.assertEqual((status, err.count("\n")), (1 if refused else 0, len(refused)), err)
                kinds.update(found["kind"] for found in objects)
        # What subcommands of their own print.
        others = {"diff", "health", "history", "journal", "plan", "rehearsal", "run", "save", "twin"}
        self.assertEqual({path.stem for path in FOLDER.iterdir()} - kinds, others, "kinds that no case shows")

    def test_the_page_tells_every_kind(self) -> None:
        page = (ROOT / "docs" / "records.md").read_text()
        rows = {word for line in page.splitlines() if line.startswith("| `") for word in line.split("|")[1].split("`")}
        self.assertEqual({path.stem for path in FOLDER.iterdir()} - rows, set())

    def test_show_and_parse_agree(self) -> None:
        log = self.tool("showConfig\nshowRxParams 0-19\nshowPLL all\nshowTxParamsCache 8g gl\n").decode()
        status, out, err = self.parse(log)
        self.assertEqual((status, err), (0, ""))
        answers = [load(line) for line in out.splitlines()]
        commands = ["showConfig", "showRxParams 0-19", "showPLL all", "showTxParamsCache 8g gl"]
        self.assertEqual(len(answers), 2 + len(commands))  # the start and the command list stand before
        for command, parsed in zip(commands, answers[2:]):
            shown = json.loads(self.ctl("-t", "sim", "show", "--json", command)[1])
            self.assertEqual(parsed["records"], shown["records"])
            self.assertEqual((parsed["command"], parsed["target"], parsed["time"]), (None, None, None))

    def test_a_runs_log_with_its_commands(self) -> None:
        script = self.script("showVGA 16\nshowConfig\nshowVGA gl\nsetFFE FFE9 1 1 1 1 1 0 #: expect 6\n")
        _, log, _ = self.ctl("-t", "sim", "run", "--echo", script)
        status, out, err = self.parse(log)
        answers = [load(line) for line in out.splitlines()]
        self.assertEqual([a["kind"] for a in answers], ["vga", "config", "vga", "refused"])
        self.assertEqual([len(a["records"]) for a in answers], [4, 24, 16, 0])
        self.assertEqual(answers[3]["message"], "invalid command parameter")
        self.assertEqual((status, err), (1, "serdesctl: setFFE FFE9 1 1 1 1 1 0: invalid command parameter\n"))

    def test_a_bare_table(self) -> None:
        _, table, _ = self.ctl("-t", "sim", "show", "--text", "showVGA", "gl")
        _, config, _ = self.ctl("-t", "sim", "show", "--text", "showConfig")
        file = self.script(config, "config")
        self.assertEqual(self.parse(table).status, 3)
        self.assertIn("the answer to showConfig tells", self.parse(table).err)
        for words in (["--config", file], ["--config", file, "showVGA", "gl"], ["showVGA gl", "--config", file]):
            status, out, _ = self.parse(table, *words)
            self.assertEqual((status, len(load(out)["records"])), (0, 16))
        status, _, err = self.parse(table, "--config", file, "showVGA", "exg")
        self.assertEqual(status, 3)
        self.assertIn("which the command does not name", err)

    def test_names_that_are_no_utf8(self) -> None:
        log = self.tool("showConfig\nshowFFE 0\n").replace(b"SERDES_11G", b"SERD\xe9S_11G")
        status, out, _ = self.parse(log)
        config, ffe = (load(line) for line in out.splitlines()[-2:])
        self.assertEqual((status, config["serdes_types"][2]["name"]), (0, "SERD\ufffdS_11G"))
        self.assertEqual(ffe["records"][0]["serdes_type"], "SERD\ufffdS_11G")

    def test_csv_leaves_the_start_out(self) -> None:
        log = self.tool("showRate 0-3\nshowRate 5\n")
        status, out, _ = self.parse(log, "--csv")
        self.assertEqual((status, len(list(csv.DictReader(io.StringIO(out))))), (0, 5))
        status, out, err = self.parse(self.tool("showRate 0\nshowFFE 0\n"), "--csv")
        self.assertEqual((status, out), (2, ""))
        self.assertIn("rate and ffe", err)

    def test_what_cannot_be_read(self) -> None:
        for text, place in (("", "line 1, column 1"), ("hello\n", "line 1, column 1"), ("status: 1\n\n\nx", "line 4")):
            status, out, err = self.parse(text)
            self.assertEqual((status, out), (3, ""))
            self.assertTrue(err.startswith(f"serdesctl: standard input, {place}"), err)
        status, _, err = self.parse("\n", "--config", self.script("status: 1\n"))
        self.assertEqual(status, 2)
        self.assertIn("no answer to showConfig in it", err)
        self.assertEqual(self.parse("\n", "--config", self.folder / "absent").status, 2)


if __name__ == "__main__":
    unittest.main()
