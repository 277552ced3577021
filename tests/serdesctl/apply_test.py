#!/usr/bin/env python3
"""Apply and restore: what they reach, and that nothing is left half done."""

from __future__ import annotations

import functools
import json
import os
import re
import resource
import signal
import subprocess
import sys
import time
import unittest
from pathlib import Path

from changing import SMALL, ChangingTest
from program import EMULATED, SERDESCTL, Result
from serdes_runs import LIMIT_SECONDS, Terminal

# Every how manieth platform call fails; 1 for all of them.
STRIDE = int(os.environ.get("CHANGING_STRIDE", "200" if EMULATED else "50"))

SETTINGS = """
[[settings]]
ports = "0-1"
transmit = { mode = "FFE3", k = 100, c0 = -2, c1 = 58, c2 = -20, c3 = 0, slew = 50 }
receive = { mode = "DFE3", pole = 5, peak = 2, amax = 70 }
[[settings]]
ports = "0"
transmit = { c2 = -12 }
to = "8G"
[[settings]]
ports = "2"
speed = "4G"
[[settings]]
ports = "4"
transmit = { k = 90 }
[[settings]]
ports = "5"
stream = false
[[settings]]
asic = 1
ports = "0"
receive = { amax = 60 }
"""


class Applying(ChangingTest):
    def setUp(self) -> None:
        super().setUp()
        self.on_description(SMALL)
        self.file = self.script(SETTINGS, "lab.toml")

    def test_it_verifies_and_the_second_time_does_nothing(self) -> None:
        first, calls = self.traced("apply", "--yes", self.file)
        self.assertEqual(first.status, 0, first.err)
        self.assertRegex(first.out, r"verified: run \S+\n\Z")
        self.assertTrue(calls)
        second, calls = self.traced("apply", "--yes", self.file)
        self.assertEqual((second, calls), ((0, "nothing to do\n", ""), []))

    def test_without_a_terminal_somebody_must_have_said_yes(self) -> None:
        result, calls = self.traced("apply", self.file)
        self.assertEqual((result.status, calls), (2, []))
        self.assertIn("--yes", result.err)
        self.assertEqual(self.history(), [])

    def test_it_asks_at_a_terminal(self) -> None:
        save = self.save()
        for answer, status in (("n\n", 2), ("\n", 2), ("y\n", 0)):
            with Terminal(*self.words, "apply", self.file, program=[SERDESCTL], env=self.env) as terminal:
                terminal.read_to(b"? [y/N] ")
                terminal.type(answer)
                self.assertEqual(terminal.exit_status(), status)
            self.assertEqual(self.differences(save) == "", status != 0)

    def test_the_journal_has_the_values_before_and_after(self) -> None:
        self.must("apply", "--yes", self.file)
        entries = [json.loads(line) for line in self.must("journal", "--json").out.splitlines()]
        rate = next(entry for entry in entries if entry["command"] == "setRate 4G 2")
        self.assertEqual((rate["result"], rate["run"]), ("answered", self.last_run()))
        self.assertEqual([rate["changes"][0][name] for name in ("before", "after")], ["8G", "4G"])

    def test_restoring_some_ports(self) -> None:
        save = self.save()
        self.must("apply", "--yes", self.file)
        self.must("restore", "--yes", "--ports", "0,4", save)
        text = self.differences(save)
        self.assertNotIn("ASIC 0 port 0 ", text)
        self.assertNotIn("ASIC 0 port 4 ", text)
        self.assertIn("ASIC 0 port 1 ", text)
        self.must("restore", "--yes", "--asic", "1", save)
        self.assertNotIn("ASIC 1", self.differences(save))
        self.must("restore", "--yes", save)
        self.assertEqual(self.differences(save), "")

    def test_what_is_restored_must_be_in_the_save(self) -> None:
        part = str(self.folder / "part.json")
        self.must("save", "--ports", "0-3", "-o", part)
        for words, what in ((("--asic", "1"), "has no ASIC 1"), (("--ports", "3-4"), "has no port 4 of ASIC 0")):
            status, out, err = self.do("restore", "--yes", *words, part)
            self.assertEqual((status, out, err), (2, "", f"serdesctl: {part} {what}\n"))

    def test_a_type_name_that_is_no_utf8(self) -> None:
        latin = self.folder / "latin"
        latin.write_text(
            f"#!{sys.executable}\nimport os, subprocess\n"
            f"tool = subprocess.Popen([{self.env['SERDES']!r}], stdout=subprocess.PIPE)\n"
            "while block := os.read(tool.stdout.fileno(), 65536):\n"
            "    os.write(1, block.replace(b'SERDES_11G', b'SERDES_\\xe9\\xffG'))\n"
        )
        latin.chmod(0o755)
        self.env["SERDESCTL_TOOL"] = str(latin)
        save = self.save()
        self.assertIn("SERDES_\ufffd\ufffdG", Path(save).read_text())
        self.assertEqual(self.differences(save), "")
        self.assertEqual(self.must("restore", "--yes", save).out, "nothing to do\n")

    def test_no_room_for_the_journal(self) -> None:
        save = self.save()
        self.env["SERDESCTL_JOURNAL"] = "/dev/null/journal"
        result, calls = self.traced("apply", "--yes", self.file)
        self.assertEqual((result.status, calls), (2, []), result.err)
        del self.env["SERDESCTL_JOURNAL"]
        self.assertEqual(self.differences(save), "")

    @unittest.skipIf(EMULATED, "the limit is the emulator's too")
    def test_a_disk_that_is_full_does_not_stop_the_way_back(self) -> None:
        save = self.save()
        journal = self.folder / "journal" / "journal.jsonl"
        words = ("apply", "--yes", "--confirm", "0.1", self.file)
        self.assertEqual(self.do(*words).status, 1)
        lines = journal.read_text().splitlines(keepends=True)
        answers = [number for number, line in enumerate(lines) if '"answered"' in line]
        for kept, sent in ((answers[-3], True), (0, False)):  # an answer to the way back; the first command
            room = 1000000 + sum(map(len, lines[:kept])) + 20
            journal.write_text("-" * 999999 + "\n")
            limit = functools.partial(resource.setrlimit, resource.RLIMIT_FSIZE, (room, room))
            status, _, err = self.do(*words, preexec_fn=limit, restore_signals=False)
            said = "not confirmed: rolled back, the switch is as before" if sent else "File too large: nothing was sent"
            self.assertEqual((status, said in err), (1 if sent else 2, True), err)
            self.assertEqual(self.differences(save), "")
        self.assertEqual([run["state"] for run in self.history()], ["rolled back"] * 2)


class Failing(ChangingTest):
    """Platform calls that fail, once and for ever."""

    def setUp(self) -> None:
        super().setUp()
        self.file = self.script(SETTINGS, "lab.toml")
        self.on_description(SMALL)
        self.before = self.save("before.json")
        trace = self.folder / "trace"
        self.env["SERDES_SIMULATOR_TRACE"] = str(trace)
        self.must("apply", "--yes", self.file)
        del self.env["SERDES_SIMULATOR_TRACE"]
        self.calls = trace.read_text().splitlines()
        head = re.search(r'^switch = ".*"$', self.state.read_text(), re.MULTILINE)
        assert head
        self.head = head.group()

    def faults(self) -> list[tuple[str, int]]:
        """Operations with the ordinals at which they were called."""
        counts: dict[str, int] = {}
        found = []
        for call in self.calls:
            name = operation_of(call)
            counts[name] = counts.get(name, 0) + 1
            found.append((name, counts[name]))
        return found

    def apply_with(self, operation: str, ordinal: int, always: bool) -> Result:
        self.state.unlink(missing_ok=True)
        fault = f'[[faults]]\noperation = "{operation}"\nordinal = {ordinal}\nalways = {str(always).lower()}\n'
        self.on_description(SMALL + fault)
        return self.do("apply", "--yes", self.file)

    def mend(self) -> None:
        """The fault is gone: the switch's state goes on without it."""
        self.on_description(SMALL)
        if not self.state.exists():
            return
        text = self.state.read_text()
        text = re.sub(r'^switch = ".*"$', self.head, text, flags=re.MULTILINE)
        text = re.sub(r'^"switch" = \[(\d+), (\d+).*\]$', r'"switch" = [\1, \2]', text, flags=re.MULTILINE)
        text = text[: text.rindex("# whole ")]
        self.state.write_text(text + f"# whole {fnv(text):016x}\n")

    def test_whatever_fails_everything_goes_back_or_is_named(self) -> None:
        faults = self.faults()
        sets = [fault for fault in faults if re.match(r"Set|TxStreamEnable", fault[0])]
        chosen = sets[:: max(1, STRIDE // 50)] + faults[::STRIDE]
        ends = set()
        for operation, ordinal in chosen:
            for always in (False, True):
                with self.subTest(operation=operation, ordinal=ordinal, always=always):
                    ends.add(self.check(operation, ordinal, always))
        self.assertLessEqual({"verified", "rolled back"}, ends)

    def check(self, operation: str, ordinal: int, always: bool) -> str:
        result = self.apply_with(operation, ordinal, always)
        self.mend()
        self.assertNotEqual(result.status, 130)
        if "verified" in result.out:
            self.assertEqual(result.status, 3 if operation.endswith("Close") else 0, result)
            self.must("plan", self.file)
            return "verified"
        self.assertNotEqual(result.status, 0)
        left = self.differences(self.before)
        if left == "":
            return "rolled back"
        self.assertRegex(result.err, "serdesctl -t .* undo ")
        undone = self.do("undo", "--yes")
        self.assertEqual(undone.status, 0, (result, undone))
        self.assertEqual(self.differences(self.before), "", (result, undone))
        return "undone"


def operation_of(call: str) -> str:
    name, arguments = call.split("(", 1)
    if name != "GetSerDesInfo":
        return name
    count = len(arguments.split(")")[0].split(","))
    return f"GetSerDesInfo/{('asic', 'core', 'port')[count - 1]}"


def fnv(text: str) -> int:
    number = 0xCBF29CE484222325
    for byte in text.encode():
        number = (number ^ byte) * 0x100000001B3 % 2**64
    return number


class Interrupting(ChangingTest):
    def setUp(self) -> None:
        super().setUp()
        self.on_description(SMALL)
        self.file = self.script(SETTINGS, "lab.toml")

    def test_interrupt_rolls_back(self) -> None:
        save = self.save()
        process = self.start(*self.words, "apply", "--yes", "--confirm", "60", self.file)
        assert process.stderr
        while "waiting until" not in (line := process.stderr.readline()):
            self.assertTrue(line)
        process.send_signal(signal.SIGINT)
        _, err = process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 130, err)
        self.assertIn("rolled back, the switch is as before", err)
        self.assertEqual(self.differences(save), "")
        self.assertEqual(self.history()[-1]["state"], "rolled back")

    def test_a_second_interrupt_does_not_stop_the_way_back(self) -> None:
        save = self.save()
        self.before_each_line("time.sleep(0.02)")
        process = self.start(*self.words, "apply", "--yes", "--confirm", "60", self.file)
        assert process.stderr
        for told in ("waiting until", "rolling back"):
            while told not in (line := process.stderr.readline()):
                self.assertTrue(line)
            time.sleep(0.1)
            process.send_signal(signal.SIGINT)
        _, err = process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual((process.returncode, "the switch is as before" in err), (130, True), err)
        self.env["SERDESCTL_TOOL"] = self.env["SERDES"]
        self.assertEqual(self.differences(save), "")

    def test_a_tool_that_dies_leaves_a_way_back(self) -> None:
        for way in ("forth", "back"):
            with self.subTest(way):
                self.check_that_it_leaves_a_way_back(way)

    def check_that_it_leaves_a_way_back(self, way: str) -> None:
        save = self.save()
        self.before_each_line(
            "sent += line.startswith('setRate')\n"
            f"    if sent > {way == 'back':d}: tool.stdin.close(); tool.wait(); os._exit(1)"
        )
        status, _, err = self.do("apply", "--yes", "--confirm", "0.1", self.file)
        self.env["SERDESCTL_TOOL"] = self.env["SERDES"]
        run = self.last_run()
        self.assertEqual(status, 3, err)
        self.assertIn(f"serdesctl {' '.join(self.words)} undo {run}", err)
        self.assertNotEqual(self.differences_quietly(save), "")
        self.assertIn(f"run {run} ", self.do("diff", save).err)
        self.must("undo", "--yes")
        self.assertEqual(self.do("diff", save), (0, "", ""))

    def test_ports_that_turn_into_others(self) -> None:
        save = self.save()
        turned, real = self.folder / "turned", self.env["SERDES"]
        self.env["SERDES"] = str(strange := self.folder / "strange")
        strange.write_text(
            f"#!{sys.executable}\nimport os, subprocess\n"
            f"tool = subprocess.Popen([{real!r}], stdout=subprocess.PIPE)\n"
            "while block := os.read(tool.stdout.fileno(), 65536):\n"
            f"    if os.path.exists({str(turned)!r}): block = block.replace(b'SERDES_11G', b'SERDES_12G')\n"
            "    os.write(1, block)\n"
        )
        strange.chmod(0o755)
        self.before_each_line(f"if line.startswith('setRate'): open({str(turned)!r}, 'w')")
        status, _, err = self.do("apply", "--yes", self.file)
        self.assertEqual(status, 1, err)
        self.assertIn("it was SERDES_11G and reads as SERDES_12G: not all could be rolled back", err)
        self.env["SERDES"] = self.env["SERDESCTL_TOOL"] = real
        self.do("undo", "--yes")
        self.assertEqual(self.do("diff", save), (0, "", ""))

    def test_what_the_switch_does_not_take_is_named(self) -> None:
        save = self.save()
        self.before_each_line("line = line.replace('setSlew 50', 'setSlew 60')")
        file = self.script('[[settings]]\nports = "4"\ntransmit = { slew = 50 }\n', "lab.toml")
        status, out, _ = self.do("apply", "--yes", file)
        self.assertEqual(status, 1)
        self.assertRegex(
            out, rf"not as wanted after run {self.last_run()}, which serdesctl .* takes back:\n(.*\n)*.*60 -> 50\n"
        )
        self.must("undo", "--yes")
        self.assertEqual(self.differences(save), "")

    def differences_quietly(self, save: str) -> str:
        return self.do("diff", save).out


class GuardAndConfirmation(ChangingTest):
    def test_a_change_that_makes_a_link_worse_rolls_back_by_itself(self) -> None:
        save = self.save()
        self.env["SERDES_SIMULATOR_CLOCK"] = "monotonic"
        worse = self.script('[[settings]]\nports = "4"\ntransmit = { k = 20 }\n', "worse.toml")
        status, _, err = self.do("apply", "--yes", "--guard", "1", worse)
        self.assertEqual(status, 1, err)
        self.assertRegex(err, r"ASIC 0 port 4: (dead|bad), it was good: .*: rolled back")
        self.assertEqual(self.differences(save), "")

    def test_a_change_that_does_no_harm_stays(self) -> None:
        self.env["SERDES_SIMULATOR_CLOCK"] = "monotonic"
        better = self.script('[[settings]]\nports = "14"\nreceive = { amax = 80 }\n', "fine.toml")
        self.assertIn("verified", self.must("apply", "--yes", "--guard", "1", better).out)

    def waiting(self, seconds: str) -> tuple[subprocess.Popen[str], str]:
        file = self.script('[[settings]]\nports = "4"\ntransmit = { k = 110 }\n', "lab.toml")
        process = self.start(*self.words, "apply", "--yes", "--confirm", seconds, file)
        self.wait_until(lambda: '"waiting"' in self.ctl("pending", "--json").out, "it does not wait")
        return process, json.loads(self.ctl("pending", "--json").out)["run"]

    def test_confirmed_in_time(self) -> None:
        process, run = self.waiting("60")
        self.assertRegex(self.ctl("pending").out, rf"\A{run}  .*  waiting until 20\d\d-.*Z")
        self.assertEqual(self.ctl("confirm", run), (0, "", ""))
        out, err = process.communicate(timeout=LIMIT_SECONDS)
        self.assertIn("verified", out, err)
        self.assertEqual(self.ctl("confirm", run).status, 2)
        self.assertEqual(self.ctl("pending").out, "")

    def test_not_confirmed_in_time(self) -> None:
        save = self.save()
        file = self.script('[[settings]]\nports = "4"\ntransmit = { k = 110 }\n', "lab.toml")
        status, _, err = self.do("apply", "--yes", "--confirm", "0.5", file)
        self.assertEqual(status, 1)
        self.assertIn("not confirmed: rolled back, the switch is as before", err)
        self.assertEqual(self.differences(save), "")

    def test_a_key_at_the_terminal_confirms(self) -> None:
        file = self.script('[[settings]]\nports = "4"\ntransmit = { k = 110 }\n', "lab.toml")
        words = [*self.words, "apply", "--yes", "--confirm", "60", file]
        for key, status in (("n\n", 1), ("\n", 0)):
            with Terminal(*words, program=[SERDESCTL], env=self.env) as terminal:
                terminal.read_to(b"waiting until")
                terminal.type(key)
                self.assertEqual(terminal.exit_status(), status)

    def test_what_is_typed_before_or_for_others_does_not_confirm(self) -> None:
        file = self.script('[[settings]]\nports = "4"\ntransmit = { k = 110 }\n', "lab.toml")
        words = ["apply", "--confirm", "1", file]
        with Terminal(*self.words, *words, program=[SERDESCTL], env=self.env) as terminal:
            terminal.read_to(b"? [y/N] ")
            terminal.type("y\n\n")
            self.assertEqual(terminal.exit_status(), 1)
        background = ["sh", "-mc", '"$0" "$@" & wait $!', SERDESCTL]
        with Terminal(*self.words, *words, "--yes", program=background, env=self.env) as terminal:
            terminal.read_to(b"waiting until")
            terminal.type("\n")
            self.assertEqual(terminal.exit_status(), 1)

    def test_confirmed_too_late(self) -> None:
        go = self.folder / "go"
        late = f"sent > 1 and not os.path.exists({str(go)!r})"
        self.before_each_line(f"sent += line.startswith('setFFE')\n    while {late}: time.sleep(0.02)")
        file = self.script('[[settings]]\nports = "4"\ntransmit = { k = 110 }\n', "lab.toml")
        process = self.start(*self.words, "apply", "--yes", "--confirm", "0.1", file)
        assert process.stderr
        while "rolling back" not in (line := process.stderr.readline()):
            self.assertTrue(line)
        status, _, err = self.ctl("confirm", self.last_run())
        self.assertEqual((status, "does not wait" in err), (2, True), err)
        go.touch()
        process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 1)

    def test_confirmed_while_it_is_killed(self) -> None:
        process, run = self.waiting("60")
        process.send_signal(signal.SIGSTOP)
        confirming = self.start("confirm", run)
        self.wait_until(lambda: any(self.folder.glob("**/confirmed")), "it does not confirm")
        process.kill()
        process.wait()
        _, err = confirming.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(confirming.returncode, 2, err)
        self.assertIn(f"run {run} ended meanwhile: interrupted; confirm it again to keep it, or undo", err)

    def test_killed_it_counts_as_not_confirmed(self) -> None:
        save = self.save()
        process, run = self.waiting("60")
        process.kill()
        process.wait()
        self.assertIn(f"run {run} (apply ", self.do("health").err)
        self.assertEqual(json.loads(self.ctl("pending", "--json").out)["state"], "interrupted")
        self.must("undo", "--yes", run)
        self.assertEqual(self.do("diff", save), (0, "", ""))
        self.assertEqual(self.ctl("pending").out, "")

    def test_killed_and_then_kept(self) -> None:
        process, run = self.waiting("60")
        process.kill()
        process.wait()
        self.assertEqual(self.ctl("confirm", run).status, 0)
        self.assertEqual(self.do("health").err, "")
        self.assertEqual(self.history()[-1]["state"], "kept")


if __name__ == "__main__":
    unittest.main()
