#!/usr/bin/env python3
"""Sessions with tools that die, hang, flood, are slow, print garbage or a false prompt; nothing is left behind."""

from __future__ import annotations

import contextlib
import fcntl
import os
import re
import signal
import subprocess
import time
import unittest
from pathlib import Path
from typing import IO

from program import SERDESCTL, ProgramTest, Result, alive, children, plain_tool, state_of
from serdes_runs import LIMIT_SECONDS

SCRIPT = "readRx 0 0 1\nreadRx 0 0 7\nreadRx 0 0 2\n"


class Misbehaving(ProgramTest):
    def run_on(self, how: str, *words: str, script: str = SCRIPT) -> Result:
        self.misbehaving(how)
        result = self.run_script(script, "--timeout", "20", *words)
        self.assert_ended(self.tool_pids())
        return result

    def assert_error(self, result: Result, status: int, text: str) -> None:
        self.assertEqual(result[0], status, result)
        self.assertRegex(result[2], text)
        self.assertEqual(result[2].count("\n"), 1, result[2])
        # What was answered before stands, and nothing that came after.
        self.assertRegex(result[1], r"\APort 0 .*Rx address 0x01=")
        self.assertNotIn("0x02", result[1])

    def test_one_that_ends(self) -> None:
        for how, text in (
            ("dies", "ended with status 7 in the answer to 'readRx 0 0 7'"),
            ("is_killed", "ended by signal 9 in the answer to 'readRx 0 0 7'"),
            ("dies_in_answer", "ended with status 0 in the answer to 'readRx 0 0 7'"),
            ("complains", "ended with status 1 in the answer to 'readRx 0 0 7': something is broken"),
        ):
            with self.subTest(how):
                self.assert_error(self.run_on(how), 3, text)

    def test_one_that_does_not_answer(self) -> None:
        for how in ("hangs", "hangs_in_answer", "trickles", "garbage_and_hangs", "extra_prompt"):
            with self.subTest(how):
                start = time.monotonic()
                self.assert_error(self.run_on(how, "--timeout", "3"), 4, "no answer to 'readRx 0 0 7' in 3 s")
                self.assertLess(time.monotonic() - start, 20)

    def test_one_that_closes_its_output_and_lives_on(self) -> None:
        self.assert_error(self.run_on("closes_output"), 3, "ended in the answer to 'readRx 0 0 7'")

    def test_one_that_floods(self) -> None:
        self.assert_error(self.run_on("floods"), 3, "endless output in the answer to 'readRx 0 0 7'")

    def test_one_that_answers_otherwise(self) -> None:
        for how in ("garbage", "no_message", "late_prompt"):
            with self.subTest(how):
                self.assert_error(self.run_on(how), 3, "the answer to 'readRx 0 0 [27]' is not as the tool answers")

    def test_a_prompt_too_many_never_shifts_answers(self) -> None:
        status, out, err = self.run_on(
            "extra_prompt_later", script=SCRIPT.replace("readRx 0 0 2", "#: wait 1s\nreadRx 0 0 2")
        )
        self.assertEqual(status, 3)
        # Where the tool is slow the second prompt comes with the answer, and is then no part of it.
        self.assertRegex(err, "printed without a command|is not as the tool answers")
        self.assertNotIn("0x02", out)

    def test_a_table_that_looks_like_the_prompt(self) -> None:
        status, _, err = self.run_on("false_prompt")
        self.assertEqual(status, 3)
        self.assertIn("not as the tool answers", err)

    def test_text_like_a_message_inside_an_answer_is_none(self) -> None:
        status, out, err = self.run_on("message_in_output")
        self.assertEqual((status, err), (0, ""))
        self.assertIn("unknown command\n\n\nmore\n", out)

    def test_slow_ones_are_waited_for(self) -> None:
        for how in ("is_slow", "byte_by_byte"):
            with self.subTest(how):
                status, out, err = self.run_on(how)
                self.assertEqual((status, err), (0, ""))
                self.assertEqual(out, plain_tool(SCRIPT, self.env))

    def test_one_that_does_not_end_is_ended(self) -> None:
        status, _, err = self.run_on("ignores_its_end", "--timeout", "3", script="readRx 0 0 1\nreadRx 0 0 7\n")
        self.assertEqual((status, err), (4, "serdesctl: local: no end in 3 s\n"))

    def test_bad_starts(self) -> None:
        for how, status, text in (
            ("dies", 3, "the tool ended with status 7 in the start"),
            ("hangs", 4, "no start in 3 s"),
            ("floods", 3, "endless output in the start"),
            ("garbage", 3, "the switch could not be opened"),
            ("complains", 3, "in the start: something is broken"),
        ):
            with self.subTest(how):
                self.misbehaving("start", how)
                result = self.run_script("showRate all\n", "--timeout", "3")
                self.assertEqual((result[0], result[1]), (status, ""))
                self.assertRegex(result[2], text)
                self.assert_ended(self.tool_pids())

    def test_a_tool_that_cannot_be_run(self) -> None:
        self.env["SERDESCTL_TOOL"] = str(self.folder / "nothing")
        status, out, err = self.run_script("showRate all\n")
        self.assertEqual((status, out), (3, ""))
        self.assertEqual(err, f"serdesctl: cannot run {self.folder}/nothing: No such file or directory\n")

    def test_what_is_no_program_is_not_given_to_a_shell(self) -> None:
        tool = self.folder / "tool"
        tool.write_text(f"touch {self.folder}/ran\n")
        tool.chmod(0o755)
        self.env["SERDESCTL_TOOL"] = str(tool)
        self.assertEqual(self.run_script("showRate all\n")[0], 3)
        self.assertFalse((self.folder / "ran").exists())

    def test_a_tool_that_is_not_in_the_path(self) -> None:
        self.env["SERDESCTL_TOOL"] = "no-such-tool"
        status, _, err = self.run_script("showRate all\n")
        self.assertEqual((status, err), (3, "serdesctl: cannot run no-such-tool: not found in PATH\n"))

    def test_a_switch_that_cannot_be_opened(self) -> None:
        self.env["SERDES_SIMULATOR_SWITCH"] = self.script("slots = 'many'\n")
        status, out, err = self.run_script("showRate all\n")
        self.assertEqual((status, out), (3, ""))
        self.assertRegex(err, r"could not be opened: openSerdes: serdes err -\d+: simulated switch: .*script:1")


class LeftBehind(ProgramTest):
    def started(self, how: str = "hangs") -> subprocess.Popen[str]:
        self.misbehaving(how)
        process = self.start("run", self.script(SCRIPT))
        self.assertIn("0x01", process.stdout.readline())
        return process

    def lock_is_free(self) -> bool:
        with open(self.env["SERDESCTL_LOCK"]) as lock, contextlib.suppress(BlockingIOError):
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
            return True
        return False

    def assert_lock_is_free(self) -> None:
        """An emulator's threads may outlive the first of them for a moment."""
        self.wait_until(self.lock_is_free, "the lock is held")

    def test_kill_leaves_no_tool_and_no_lock(self) -> None:
        process = self.started()
        pids = self.tool_pids()
        self.assertTrue(all(alive(pid) for pid in pids))
        process.kill()
        process.wait()
        self.assert_ended(pids)
        self.assert_lock_is_free()

    def test_kill_in_loop_leaves_no_tool_and_no_lock(self) -> None:
        process = self.start("run", self.script("loop readRx 0 0 1\n"))
        self.assertIn("0x01", process.stdout.readline())
        pids = children(process.pid)
        self.assertEqual(len(pids), 1)
        process.kill()
        process.wait()
        self.assert_ended(pids)
        self.assert_lock_is_free()

    def test_interrupt_ends_the_session(self) -> None:
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number.name):
                process = self.started()
                process.send_signal(number)
                _, err = process.communicate(timeout=LIMIT_SECONDS)
                self.assertEqual((process.returncode, err), (128 + number, "serdesctl: interrupted\n"))
                self.assert_ended(self.tool_pids())

    def test_interrupt_ends_a_start(self) -> None:
        self.misbehaving("start", "hangs")
        process = self.start("run", self.script(SCRIPT))
        self.wait_until((self.folder / "tool.pid").exists, "it does not start")
        self.wait_until(lambda: handles(process.pid, signal.SIGINT), "it does not start")
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 130)

    def test_interrupt_ends_an_answer_without_an_end(self) -> None:
        process = self.started("trickles")
        self.wait_until((self.folder / "triggered").exists, "not sent")
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 130)

    def test_interrupt_ends_a_pause(self) -> None:
        process = self.start("run", self.script("readRx 0 0 1\n#: wait 1000s\nreadRx 0 0 2\n"))
        self.assertIn("0x01", process.stdout.readline())
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 130)

    def test_interrupt_ends_the_wait_for_a_script(self) -> None:
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        for word, stdin in (("-", subprocess.PIPE), (str(pipe), subprocess.DEVNULL)):
            process = self.start("run", word, stdin=stdin)
            self.wait_until(lambda: handles(process.pid, signal.SIGINT), "it does not start")
            time.sleep(0.2)
            process.send_signal(signal.SIGINT)
            self.wait_until(lambda: process.poll() is not None, "it does not end")
            self.assertEqual(process.returncode, 130)

    def test_interrupt_ends_a_write_that_nobody_reads(self) -> None:
        process = self.start("run", self.script("showRx all\n" * 100))
        self.assertIn("\n", process.stdout.readline())
        self.wait_until(lambda: sleeps(process.pid), "it goes on writing")
        process.send_signal(signal.SIGINT)
        self.wait_until(lambda: process.poll() is not None, "it does not end")
        self.assertEqual(process.returncode, 130)

    def test_an_ignored_interrupt_stays_ignored(self) -> None:
        process = self.start(
            "run", self.script("readRx 0 0 1\n#: wait 1s\nreadRx 0 0 2\n"),
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN),
        )  # fmt: skip
        self.assertIn("0x01", process.stdout.readline())
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 0)

    def test_a_reader_that_leaves_ends_it_as_any_filter(self) -> None:
        process = self.start("run", self.script("showRx all\n" * 100))
        process.stdout.readline()
        process.stdout.close()
        process.wait(timeout=LIMIT_SECONDS)
        self.assertEqual((process.returncode, process.stderr.read()), (-signal.SIGPIPE, ""))

    def test_output_that_cannot_be_written_is_an_error(self) -> None:
        with open("/dev/full", "w") as full:
            status, _, err = self.ctl("run", self.script("showRate all\n"), stdout=full)
        self.assertEqual((status, err), (1, "serdesctl: standard output: No space left on device\n"))

    def test_closed_standard_streams(self) -> None:
        for closed in ("<&-", ">&-", "2>&-", "<&- >&- 2>&-"):
            with self.subTest(closed):
                words = f'"$0" run "$1" {closed}'
                done = subprocess.run(
                    ["sh", "-c", words, SERDESCTL, self.script("readRx 0 0 1\n")],
                    env=self.env, capture_output=True, text=True, timeout=LIMIT_SECONDS, check=False,
                )  # fmt: skip
                self.assertEqual(done.returncode, 1 if ">&-" in closed.replace("2>&-", "") else 0)


def handles(pid: int, number: int) -> bool:
    caught = re.search(r"SigCgt:\s*(\w+)", Path(f"/proc/{pid}/status").read_text())
    return bool(caught) and int(caught[1], 16) >> (number - 1) & 1 == 1


def sleeps(pid: int) -> bool:
    return state_of(pid) == "S" and "poll" in (Path(f"/proc/{pid}/wchan").read_text() or "poll")


class Locks(ProgramTest):
    def hold(self, holder: str = "alice@lab, process 1") -> IO[str]:
        lock = open(self.env["SERDESCTL_LOCK"], "w")
        self.addCleanup(lock.close)
        lock.write(holder)
        lock.flush()
        fcntl.flock(lock, fcntl.LOCK_EX)
        return lock

    def test_a_taken_lock_is_refused_with_its_holder(self) -> None:
        self.hold()
        status, out, err = self.run_script("readRx 0 0 1\n")
        self.assertEqual((status, out), (5, ""))
        self.assertEqual(err, f"serdesctl: locked by alice@lab, process 1 ({self.env['SERDESCTL_LOCK']})\n")

    def test_a_second_one_is_told_of_the_first(self) -> None:
        first = self.start("run", self.script("readRx 0 0 1\n#: wait 1000s\n"))
        self.assertIn("0x01", first.stdout.readline())
        status, _, err = self.run_script("readRx 0 0 2\n")
        self.assertEqual(status, 5)
        self.assertRegex(err, rf"locked by \S+@\S+, process {first.pid}, since \d{{4}}-")

    def test_waiting_for_the_lock(self) -> None:
        lock = self.hold()
        process = self.start("--wait-lock", "60", "run", self.script("readRx 0 0 1\n"))
        time.sleep(0.3)
        self.assertIsNone(process.poll())
        lock.close()
        out, err = process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual((process.returncode, err), (0, ""))
        self.assertIn("0x01", out)

    def test_an_interrupt_ends_the_waiting(self) -> None:
        self.hold()
        process = self.start("--wait-lock", "1000", "run", self.script("readRx 0 0 1\n"))
        time.sleep(0.3)
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 130)

    def test_a_lock_that_nobody_signed(self) -> None:
        self.hold("")
        self.assertIn("locked by somebody (", self.run_script("readRx 0 0 1\n").err)

    def test_a_lock_that_cannot_be_made(self) -> None:
        self.env["SERDESCTL_LOCK"] = str(self.folder / "none" / "lock")
        status, out, err = self.run_script("readRx 0 0 1\n")
        self.assertEqual((status, out), (3, ""))
        self.assertIn("No such file or directory", err)

    def test_a_lock_file_that_is_none(self) -> None:
        os.mkfifo(self.env["SERDESCTL_LOCK"])
        status, _, err = self.run_script("readRx 0 0 1\n")
        self.assertEqual(status, 3)
        self.assertIn("not a file", err)

    def test_a_link_in_the_place_of_the_lock_is_not_followed(self) -> None:
        victim = self.folder / "victim"
        victim.write_text("precious")
        os.symlink(victim, self.env["SERDESCTL_LOCK"])
        status, _, _ = self.run_script("readRx 0 0 1\n")
        self.assertEqual((status, victim.read_text()), (3, "precious"))


if __name__ == "__main__":
    unittest.main()
