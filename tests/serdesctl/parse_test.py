#!/usr/bin/env python3
"""serdesctl parse: every expected output of the end-to-end cases, saved logs, and what is refused."""
import csv
import io
import json
import subprocess

from program import HERE, SERDES, SWITCHES, ProgramTest, main
from schemas import load

CASES = HERE.parent / "e2e"


class Parse(ProgramTest):
    def parse(self, text, *words):
        text = text if isinstance(text, bytes) else text.encode()
        process = self.start("parse", *words, stdin=subprocess.PIPE, text=False)
        out, err = process.communicate(text, timeout=60)
        return process.returncode, out.decode(), err.decode()

    def tool(self, commands, **more):
        """What the tool prints at its prompt on a pipe."""
        return subprocess.run(
            [SERDES], input=commands.encode(), capture_output=True, env=dict(self.env, **more), timeout=60
        ).stdout

    def switch_of(self, case):
        if (case / "switch.toml").exists():
            return {"SERDES_SIMULATOR_SWITCH": str(case / "switch.toml")}
        if (case / "switch").exists():
            return {"SERDES_SIMULATOR_SWITCH": str(SWITCHES / f"{(case / 'switch').read_text().strip()}.toml")}
        return {}

    def test_every_expected_output_is_read_whole(self):
        kinds = set()
        cases = sorted(path.parent for path in CASES.glob("*/*/out"))
        self.assertGreater(len(cases), 50)
        for case in cases:
            with self.subTest(case=str(case.relative_to(CASES))):
                config = self.tool("showConfig\nsetAsicNum 1\nshowConfig\n", **self.switch_of(case))
                known = ["--config", self.script(config, "config")]
                if self.parse("\n\n", *known)[0] != 0:
                    known = []  # the switch could not be opened
                status, out, err = self.parse((case / "out").read_bytes(), *known)
                objects = [load(line) for line in out.splitlines()]
                refused = [found for found in objects if found["kind"] == "refused"]
                self.assertEqual((status, err.count("\n")), (1 if refused else 0, len(refused)), err)
                kinds.update(found["kind"] for found in objects)
        schemas = {path.stem for path in (HERE.parents[1] / "serdesctl" / "schemas").iterdir()}
        self.assertEqual(schemas - kinds, set(), "kinds that no case shows")

    def test_show_and_parse_agree(self):
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

    def test_a_runs_log_with_its_commands(self):
        script = self.script("showVGA 16\nshowConfig\nshowVGA gl\nsetFFE FFE9 1 1 1 1 1 0 #: expect 6\n")
        _, log, _ = self.ctl("-t", "sim", "run", "--echo", script)
        status, out, err = self.parse(log)
        answers = [load(line) for line in out.splitlines()]
        self.assertEqual([a["kind"] for a in answers], ["vga", "config", "vga", "refused"])
        self.assertEqual([len(a["records"]) for a in answers], [4, 24, 16, 0])
        self.assertEqual(answers[3]["message"], "invalid command parameter")
        self.assertEqual((status, err), (1, "serdesctl: setFFE FFE9 1 1 1 1 1 0: invalid command parameter\n"))

    def test_a_bare_table(self):
        _, table, _ = self.ctl("-t", "sim", "show", "--text", "showVGA", "gl")
        _, config, _ = self.ctl("-t", "sim", "show", "--text", "showConfig")
        file = self.script(config, "config")
        self.assertEqual(self.parse(table)[0], 3)
        self.assertIn("the answer to showConfig tells", self.parse(table)[2])
        for words in (["--config", file], ["--config", file, "showVGA", "gl"], ["showVGA gl", "--config", file]):
            status, out, _ = self.parse(table, *words)
            self.assertEqual((status, len(load(out)["records"])), (0, 16))
        status, _, err = self.parse(table, "--config", file, "showVGA", "exg")
        self.assertEqual(status, 3)
        self.assertIn("which the command does not name", err)

    def test_csv_leaves_the_start_out(self):
        log = self.tool("showRate 0-3\nshowRate 5\n")
        status, out, _ = self.parse(log, "--csv")
        self.assertEqual((status, len(list(csv.DictReader(io.StringIO(out))))), (0, 5))
        status, out, err = self.parse(self.tool("showRate 0\nshowFFE 0\n"), "--csv")
        self.assertEqual((status, out), (2, ""))
        self.assertIn("rate and ffe", err)

    def test_what_cannot_be_read(self):
        for text, place in (("", "line 1, column 1"), ("hello\n", "line 1, column 1"), ("status: 1\n\n\nx", "line 4")):
            status, out, err = self.parse(text)
            self.assertEqual((status, out), (3, ""))
            self.assertTrue(err.startswith(f"serdesctl: standard input, {place}"), err)
        status, _, err = self.parse("\n", "--config", self.script("status: 1\n"))
        self.assertEqual(status, 2)
        self.assertIn("no answer to showConfig in it", err)
        self.assertEqual(self.parse("\n", "--config", str(self.folder / "absent"))[0], 2)


if __name__ == "__main__":
    main()
