#!/usr/bin/env python3
"""The strict runner: what it refuses, what it prints, and how it ends."""

from __future__ import annotations

import functools
import os
import resource
import time
import unittest
from pathlib import Path

from program import EMULATED, ProgramTest, plain_tool
from schemas import load
from serdes_runs import LIMIT_SECONDS, shipped_switch

GOOD = "setFFE FFE3 115 -4 55 -25 0 gl # drive\n\n# comment\n\tSHOWFFE   0\r\nreadRx 4 0 3\ndcfg\nhelp\nsetRate ?\n"


class Running(ProgramTest):
    def test_answers_are_the_tools(self) -> None:
        status, out, err = self.run_script(GOOD)
        self.assertEqual((status, err), (0, ""))
        commands = [line for line in GOOD.splitlines() if line.split("#")[0].strip()]
        self.assertEqual(out, plain_tool("\n".join(commands) + "\n", self.env))

    def test_it_stops_at_the_first_failure(self) -> None:
        script = "readRx 0 0 1\nwriteRx 0 0 99 1\nreadRx 0 0 2\n"
        status, out, err = self.run_script(script)
        self.assertEqual(status, 1)
        self.assertEqual(err, f"{self.folder}/script:2: writeRx 0 0 99 1: error during command execution\n")
        self.assertIn("serdes err", out)
        self.assertNotIn("0x02", out)

    def test_keep_going_goes_on_and_fails_in_the_end(self) -> None:
        script = self.script("readRx 0 0 1\nwriteRx 0 0 99 1\nreadRx 0 0 2\n")
        status, out, err = self.ctl("run", "--keep-going", script)
        self.assertEqual((status, err.count("\n")), (1, 1))
        self.assertIn("0x02", out)

    def test_expected_failures(self) -> None:
        script = "#: expect 6\n\nsetFFE FFE9 1 1 1 1 1 0\nreadRx 0 0 99 #: expect 10\nreadRx 99 0 1 #: expect 10\n"
        status, _, err = self.run_script(script)
        self.assertEqual((status, err), (0, ""))

    def test_an_expected_failure_that_does_not_come(self) -> None:
        status, _, err = self.run_script("readRx 0 0 1 #: expect 10\n")
        self.assertEqual(status, 1)
        self.assertEqual(err, f"{self.folder}/script:1: readRx 0 0 1: done, and status 10 was expected\n")

    def test_waiting(self) -> None:
        start = time.monotonic()
        status, _, err = self.run_script("readRx 0 0 1 #: wait 0.3s\n#: wait 0.3\nreadRx 0 0 1\n")
        self.assertEqual((status, err), (0, ""))
        self.assertGreater(time.monotonic() - start, 0.6)

    def test_exit_ends_its_script_alone(self) -> None:
        first = self.script("readRx 0 0 1\nquit\nbogus\n" + "x" * 200, "first")
        second = self.script("readRx 0 0 2\n", "second")
        status, out, err = self.ctl("run", first, second)
        self.assertEqual((status, err), (0, ""))
        self.assertEqual(out, plain_tool("readRx 0 0 1\nreadRx 0 0 2\n", self.env))

    def test_the_asic_stays_over_scripts_and_is_checked_with_its_own_topology(self) -> None:
        first = self.script("setAsicNum 1\nshowRate 11\n", "first")
        second = self.script("showRate 12\n", "second")
        status, _, err = self.ctl("run", first, second)
        self.assertEqual((status, err), (2, f"{second}:1: no port 12 of ASIC 1\n"))
        status, out, err = self.ctl("run", first)
        self.assertEqual((status, err), (0, ""))
        self.assertEqual(out, plain_tool("setAsicNum 1\nshowRate 11\n", self.env))

    def test_standard_input(self) -> None:
        with open(self.script("readRx 0 0 1\nbogus\n")) as script:
            status, _, err = self.ctl("run", "-", stdin=script)
        self.assertEqual((status, err), (2, "-:2: unknown command 'bogus'\n"))

    def test_echo(self) -> None:
        status, out, _ = self.ctl("run", "--echo", self.script("readRx  0 0 1\nclearErrors 1\n"))
        self.assertEqual(status, 0)
        self.assertRegex(out, r"\Aserdes: readRx 0 0 1\nPort 0 .*\n\n\nserdes: clearErrors 1\n\n\n\Z")

    def test_json(self) -> None:
        script = self.script("readRx 0 0 1\n# nothing\nreadRx 0 0 99\nexit\n")
        status, out, err = self.ctl("run", "--json", script)
        self.assertEqual((status, err.count("\n")), (1, 1))
        good, bad = (load(line, "run") for line in out.splitlines())
        self.assertRegex(good.pop("output"), r"\APort 0 .*\n\Z")
        self.assertGreater(good.pop("seconds"), 0)
        expected = dict(file=script, line=1, command="readRx 0 0 1", status=0, status_name="CMD_OK", message="")
        self.assertEqual(good, expected)
        self.assertEqual((bad["line"], bad["status"], bad["status_name"]), (3, 10, "CMD_EXEC_ERROR"))
        self.assertEqual(bad["message"], "error during command execution")
        self.assertRegex(bad["output"], r"\AreadRxRegisterCmdHandler: serdes err -\d+\n\Z")

    def test_names_that_are_no_utf8_reach_json_in_one_piece(self) -> None:
        description = shipped_switch("awkward").read_text()
        switch = self.script(description.replace('"TYPE4"', '"T\\u00e9"'))
        self.env["SERDES_SIMULATOR_SWITCH"] = switch
        status, out, _ = self.ctl("-t", "sim", "run", "--json", self.script("showConfig\n", "s"))
        self.assertEqual(status, 0)
        self.assertIn("T\u00e9", load(out, "run")["output"])

    def test_loop_is_ten_passes_and_its_help_is_printed(self) -> None:
        script = "loop ?\nexit help\nloop readRx 4 0 3\n"
        start = time.monotonic()
        process = self.start("run", self.script(script))
        expected = plain_tool(script, self.env)
        out, err = process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual((process.returncode, err), (0, ""))
        self.assertGreater(time.monotonic() - start, 17)
        self.assertEqual(out, expected)

    def test_loop_ends_with_its_command(self) -> None:
        status, out, err = self.run_script("loop loop readRx 0 0 99\n")
        self.assertEqual(status, 1)
        self.assertIn(":1: loop loop readRx 0 0 99: error during command execution", err)
        self.assertNotIn("passes", out)

    def test_awkward_and_faulty_switches(self) -> None:
        script = "showConfig\nsetAsicNum 1\nshowConfig\nsetAsicNum 0\nreadRx 0 0 1\n"
        for name in ("default", "awkward", "all-gl", "bench"):
            with self.subTest(name):
                switch = shipped_switch(name)
                text = script if name in ("default", "awkward") else "showConfig\nreadRx 0 0 1\n"
                status, out, err = self.ctl("-t", f"sim:{switch}", "run", self.script(text))
                self.assertEqual((status, err), (0, ""))
                self.assertEqual(out, plain_tool(text, dict(self.env, SERDES_SIMULATOR_SWITCH=str(switch))))

    def test_a_switch_that_does_not_close(self) -> None:
        status, out, err = self.ctl("-t", f"sim:{shipped_switch('faulty')}", "run", self.script("readRx 0 0 1\n"))
        self.assertEqual(status, 3)
        self.assertIn("0x01", out)
        self.assertIn("the tool ended with status 255: main()->closeSerdes(): serdes err -199", err)

    def test_state_is_kept(self) -> None:
        state = str(self.folder / "state")
        words = ("-t", f"sim:{shipped_switch('default')}", "--state", state, "run")
        self.assertEqual(self.ctl(*words, self.script("setFFE FFE2 77 0 50 -9 0 0\n"))[0], 0)
        _, out, _ = self.ctl(*words, self.script("showFFE 0\n"))
        self.assertIn("k (power)             77", out)


class Refusing(ProgramTest):
    def refused(self, text: str, *words: str) -> list[str]:
        """Why a script is refused, without its name; nothing may have been sent."""
        trace = self.folder / "trace"
        trace.unlink(missing_ok=True)
        self.env["SERDES_SIMULATOR_TRACE"] = str(trace)
        script = self.script(text)
        status, out, err = self.ctl(*words, "run", script)
        self.assertEqual((status, out), (2, ""))
        calls = trace.read_text() if trace.exists() else ""
        for change in ("Set", "Write", "Clr", "TxStreamEnable"):
            self.assertNotIn(change, calls)
        lines = err.splitlines()
        self.assertTrue(all(line.startswith(script + ":") for line in lines), err)
        return [line.removeprefix(script + ":") for line in lines]

    def test_everything_is_checked_before_anything_is_sent(self) -> None:
        cases = {
            "setFFE FFE3 115 -4 55 -25 0 gl": None,
            "bogus": "unknown command 'bogus'",
            "showRate " + "x" * 200: "longer than 125 characters",
            "showRate" + " 1" * 24: "more than 24 words",
            "readRx 1": "too few command args; readRx takes portNum LinkNum addr",
            "dcfg x": "too many command args; showConfig takes no words",
            "readRx 0 0 0x": "invalid command parameter; readRx takes portNum LinkNum addr",
            "setRate 3G 1": "invalid command parameter; setRate takes rate [portList]",
            "showRate 1-": "invalid command parameter; showRate takes [portlist]",
            "showRate 7-5": "no ports '7-5'",
            "showRate 1-3-5": "no ports '1-3-5'",
            "setRate 8G all": "invalid port list, no mixed types",
            "setTxParamsCache 8G FFE3 1 2 3 4 5 36 exg": "invalid port list, fibre channel only",
            "est 10G 1 1 gl": "invalid port list, ethernet only",
            "showRate 24": "no port 24 of ASIC 0",
            "showRate 20-31": "no port 24 of ASIC 0",
            "showDFEStats 3 20-31": "no port 24 of ASIC 0",
            "clearErrors 64": "no port 64 of ASIC 0",
            "showPLL 12": "no core 12 of ASIC 0",
            "readTx 24 0 0": "no port 24 of ASIC 0",
            "writeRx 0 1 0 0": "no link 1 of port 0",
            "readTx 16 4 0": "no link 4 of port 16",
            "runTest 1 -1 0 0": None,
            "runTest 0 0 100 0": None,
            "setAsicNum 2": "invalid command parameter; setAsicNum takes asicNum",
            "loop bogus 1": "unknown command 'bogus'",
            "loop showFFE ?": "invalid command parameter; showFFE takes [portlist]",
            "loop": "too few command args; loop takes cmd args ...",
            "#: wait for it": "#: is followed by 'wait SECONDSs' or 'expect STATUS'",
            "#: wait -1s": "'-1s' is no time from 0s to 86400s",
            "showRate 1 #: expect 11": "'11' is no status from 0 to 10",
            "showRate 1 #: expect 6": "status 6 is expected, and the command would not be refused",
            "showRate x #: expect 5": "status 5 is expected, and it would be 6 (invalid command parameter)",
            "showRate \0 1": "a NUL character",
            "setRate ? \x01": "a control character",
            "setRate ? \x7f": "a control character",
            "setAsicNum": "too few command args; setAsicNum takes asicNum",
            "#: wait s": "'s' is no time from 0s to 86400s",
            "#: wait 1xs": "'1xs' is no time from 0s to 86400s",
            "#: wait 86401s": "'86401s' is no time from 0s to 86400s",
            "#: expect x": "'x' is no status from 0 to 10",
            "#: expect -1": "'-1' is no status from 0 to 10",
            "#: hope 6": "#: is followed by 'wait SECONDSs' or 'expect STATUS'",
            "#: expect 4": None,
            "#: expect 5": "no command follows the #: expect before",
            "readRx": "status 4 is expected, and it would be 3 (too few command args)",
            "#: expect 6": "no command follows #: expect",
        }
        expected = [f"{number}: {why}" for number, why in enumerate(cases.values(), 1) if why]
        self.assertEqual(self.refused("\n".join(cases) + "\n"), expected)

    def test_an_exit_that_is_to_fail(self) -> None:
        self.assertEqual(
            self.refused("loop exit #: expect 6\nbogus\n"),
            ["1: status 6 is expected, and the command ends the script"],
        )

    def test_scripts_that_cannot_be_read(self) -> None:
        missing = str(self.folder / "missing")
        status, out, err = self.ctl("run", missing, str(self.folder), self.script("bogus\n"))
        self.assertEqual((status, out), (2, ""))
        self.assertEqual(
            err,
            f"{missing}: No such file or directory\n{self.folder}: Is a directory\n"
            f"{self.folder}/script:1: unknown command 'bogus'\n",
        )

    def test_check_sends_nothing(self) -> None:
        status, out, err = self.ctl("run", "--check", self.script("setFFE FFE3 1 1 1 1 1 0\n"))
        self.assertEqual((status, out, err), (0, "", ""))
        self.assertEqual(self.ctl("run", "--check", self.script("showRate 24\n"))[0], 2)

    def test_offline_needs_no_switch_and_knows_what_no_switch_has(self) -> None:
        self.env["SERDESCTL_TOOL"] = "/nothing"
        self.assertEqual(self.ctl("run", "--check", "--offline", self.script("setRate 8G 1 20\nreadRx 5 3 1\n"))[0], 0)
        status, _, err = self.ctl("run", "--check", "--offline", self.script("showRate 24\nreadRx 5 4 1\nbogus\n"))
        self.assertEqual((status, err.count("\n")), (2, 3))

    def test_a_long_line_that_the_tool_would_take_apart_is_never_sent(self) -> None:
        self.assertEqual(len(self.refused("readRx 0 0 1" + " " * 120 + "readRx 0 0 2\n")), 1)

    def test_lines_of_exactly_125_characters_are_sent(self) -> None:
        status, _, err = self.run_script("readRx 0 0 1".ljust(125) + "\n")
        self.assertEqual((status, err), (0, ""))


class CommandLine(ProgramTest):
    def test_usage_errors_name_the_word(self) -> None:
        for words, text in (
            (("bogus",), "unknown subcommand 'bogus'"),
            ((), "a subcommand is missing"),
            (("--bogus",), "unknown option '--bogus'"),
            (("-",), "unknown subcommand|unknown word '-'|a subcommand is missing"),
            (("journal", "word"), "unknown word 'word'"),
            (("journal", "-"), "unknown word '-'"),
            (("--timeout",), "--timeout: its value is missing"),
            (("run", "--bogus", "x"), "unknown option '--bogus'"),
            (("run",), "SCRIPT is required"),
            (("--timeout", "soon", "run", "x"), "--timeout: 'soon' is no number from 0.001 to 86400"),
            (("--timeout", "nan", "run", "x"), "--timeout: 'nan' is no number"),
            (("save", "--asic", "7"), "--asic: '7' is none of 0, 1, all"),
            (("run", "--offline", "x"), "--offline requires --check"),
            (("run", "--json", "--echo", "x"), "--echo excludes --json"),
            (("-t", "nowhere", "run", "x"), "unknown target 'nowhere'"),
            (("-t", "sim:", "run", "x"), "names no file"),
            (("-t", "ssh:-oProxyCommand=x", "run", "x"), "is no .USER@.HOST"),
            (("-t", "ssh:", "run", "x"), "is no .USER@.HOST"),
            (("-t", "ssh:a\x01b", "run", "x"), "is no .USER@.HOST"),
            (("--state", "x", "run", "x"), "--state goes with the target sim"),
            (("-t", "lab", "--state", "x", "run", "x"), "--state goes with the target sim"),
        ):
            with self.subTest(words):
                status, out, err = self.ctl(*words)
                self.assertEqual((status, out), (2, ""))
                self.assertRegex(err, rf"\Aserdesctl: .*{text}")
                self.assertEqual(err.count("\n"), 1)

    def test_help_and_version(self) -> None:
        for words, text in (
            (("--help",), "Subcommands:"),
            (("run", "--help"), "--keep-going"),
            (("--version",), "serdesctl 1"),
        ):
            status, out, err = self.ctl(*words)
            self.assertEqual((status, err), (0, ""))
            self.assertIn(text, out)

    @unittest.skipIf(EMULATED, "the tool beside the program runs by itself on its own processor alone")
    def test_the_tool_beside_the_program_is_found(self) -> None:
        del self.env["SERDESCTL_TOOL"]
        self.env["LD_LIBRARY_PATH"] = str(self.folder)
        self.assertEqual(self.ctl("-t", "sim", "show", "readRx", "0", "0", "1").status, 0)

    def test_the_tool_in_the_path_is_a_program(self) -> None:
        (self.folder / "folder" / "tool").mkdir(parents=True)
        (self.folder / "bin").mkdir()
        (self.folder / "bin" / "tool").symlink_to(self.env["SERDES"])
        self.script("no program", "tool")
        self.env["SERDESCTL_TOOL"] = "tool"
        self.env["PATH"] = f":{self.folder}:{self.folder}/folder:{self.folder}/bin:{self.env['PATH']}"
        self.assertEqual(self.run_script("readRx 0 0 1\n").status, 0)

    def test_a_switch_that_does_not_tell_its_topology(self) -> None:
        self.misbehaving("refuses", "showConfig")
        status, out, err = self.run_script("readRx 0 0 1\n")
        self.assertEqual((status, out, err), (3, "", "serdesctl: showConfig: error during command execution\n"))

    def test_an_asic_that_cannot_be_selected(self) -> None:
        self.misbehaving("refuses", "setAsicNum 1")
        status, _, err = self.run_script("setAsicNum 1\nshowRate 12\n")
        self.assertEqual(status, 1)
        self.assertIn("script:1: setAsicNum 1: error during command execution", err)

    def test_the_lock_of_a_named_target(self) -> None:
        name = f"test-{os.getpid()}/x"
        folder = self.folder / "configuration" / "serdesctl"
        folder.mkdir(parents=True)
        (folder / "targets.toml").write_text(f'["{name}"]\ncommand = ["{self.env["SERDES"]}"]\n')
        self.env["XDG_CONFIG_HOME"] = str(self.folder / "configuration")
        status, _, err = self.ctl("-t", name, "run", self.script("readRx 0 0 1\n"))
        self.assertEqual((status, err), (0, ""))
        locks = [
            Path(folder) / f"serdes.{name.replace('/', '_')}.lock" for folder in ("/run/lock", "/var/lock", "/tmp")
        ]
        (lock,) = {lock.resolve() for lock in locks if lock.exists()}
        lock.unlink()
        self.assertIn(
            "unknown target 'other'",
            self.ctl("-t", "other", "journal", "x").err + self.ctl("-t", "other", "health").err,
        )

    def test_few_descriptors_are_an_error(self) -> None:
        """However few there are: it does all, or says why not."""
        script = self.script("setRate 8G 1\n")
        statuses = set()
        for most in range(3, 24):
            limit = functools.partial(resource.setrlimit, resource.RLIMIT_NOFILE, (most, most))
            status, out, err = self.ctl("-t", "sim", "run", script, preexec_fn=limit)
            statuses.add(status)
            if status == 0:
                self.assertEqual((out, err), ("\n\n", ""))
            else:
                self.assertIn(status, (1, 2, 3, 127), err)
                self.assertNotEqual(err, "")
        self.assertGreater(len(statuses), 1)

    def test_named_targets(self) -> None:
        self.env["XDG_CONFIG_HOME"] = ""  # as if it were not there
        folder = self.folder / ".config" / "serdesctl"
        folder.mkdir(parents=True)
        targets = folder / "targets.toml"
        targets.write_text(
            f'[lab]\ncommand = ["{self.env["SERDES"]}"]\nlock = "{self.folder}/lab.lock"\n'
            f'environment = {{ SERDES_SIMULATOR_SWITCH = "{shipped_switch("awkward")}" }}\n'
        )
        status, out, err = self.ctl("-t", "lab", "run", self.script("showConfig\n"))
        self.assertEqual((status, err), (0, ""))
        self.assertIn("%s%n%d", out)
        self.assertTrue((self.folder / "lab.lock").exists())
        for text, why in (
            ("lab = 1\n", "1: lab.: is not a table"),
            ('[lab]\n\norder = ["x"]\n', "3: lab.order: is none of"),
            ('[lab]\ncommand = "x y"\n', "2: lab.command: is not a list of words"),
            ("[lab]\ncommand = []\n", "2: lab.command: is not a list of words"),
            ('[lab]\nlock = "x"\n', "1: lab.command: is missing"),
            ('[lab]\nssh = "a b"\n', "is no [USER@]HOST"),
            ('[lab]\nssh = ""\n', "2: lab.ssh: is not a text"),
            ("[lab]\nssh = 5\n", "2: lab.ssh: is not a text"),
            ('[lab]\ncommand = ["x"]\nenvironment = 5\n', "3: lab.environment: is not a table"),
            ('[lab]\ncommand = ["x"]\nenvironment = { "" = "x" }\n', "3: lab.environment: bad name"),
            ('[lab]\ncommand = ["x"]\nenvironment = { "a=b" = "x" }\n', "3: lab.environment: bad name"),
            ('[other]\ncommand = ["x"]\n', "unknown target 'lab'"),
            ('[lab]\nssh = "a\\n"\n', "2: lab.ssh: has a control character"),
            ("[lab\n", "1: "),
        ):
            with self.subTest(text):
                targets.write_text(text)
                status, _, err = self.ctl("-t", "lab", "run", self.script("showConfig\n"))
                self.assertEqual(status, 2)
                self.assertIn(why, err)


if __name__ == "__main__":
    unittest.main()
