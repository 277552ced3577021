#!/usr/bin/env python3
"""The journal: on the disk before anything is sent, whole whatever happens, and bounded."""

from __future__ import annotations

import contextlib
import getpass
import json
import os
import pty
import resource
import signal
import socket
import unittest
from pathlib import Path
from typing import Any

from program import ProgramTest
from schemas import load
from serdes_runs import LIMIT_SECONDS

CHANGES = (
    "setFFE FFE3 115 -4 55 -25 0 0\nreadRx 0 0 1\nclearErrors 1\nrunTest 1 0 0 1\nwriteRx 0 0 99 1\nsetRate 8G 1\n"
)


class Journal(ProgramTest):
    def journal_file(self) -> Path:
        return self.folder / "journal" / "journal.jsonl"

    def records(self) -> list[dict[str, Any]]:
        return [json.loads(line) for line in self.journal_file().read_text().splitlines()]

    def entries(self, *words: str) -> list[dict[str, Any]]:
        status, out, err = self.ctl("journal", "--json", *words)
        self.assertEqual((status, err), (0, ""))
        return [load(line, "journal") for line in out.splitlines()]

    def test_changes_and_nothing_else_are_recorded_with_their_results(self) -> None:
        self.env.update(SUDO_USER="alice", SSH_CLIENT="192.0.2.1 5 22")
        self.assertEqual(self.run_script(CHANGES, "-t", "sim")[0], 1)
        entries = self.entries()
        told = [(e["n"], e["command"], e["result"], e["status_name"]) for e in entries]
        self.assertEqual(
            told,
            [
                (1, "setFFE FFE3 115 -4 55 -25 0 0", "answered", "CMD_OK"),
                (2, "clearErrors 1", "answered", "CMD_OK"),
                (3, "runTest 1 0 0 1", "answered", "CMD_OK"),
                (4, "writeRx 0 0 99 1", "answered", "CMD_EXEC_ERROR"),
            ],
        )
        first = entries[0]
        self.assertRegex(first["user"], r"\Aalice as \S+\Z")
        self.assertEqual((first["from"], first["target"], first["host"]), ("192.0.2.1", "sim", socket.gethostname()))
        self.assertRegex(first["time"], r"\A\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z\Z")
        self.assertEqual(len({e["run"] for e in entries}), 1)
        _, out, _ = self.ctl("journal")
        self.assertRegex(
            out.splitlines()[3], r"Z  \S+  alice as .* from 192.0.2.1  sim  writeRx 0 0 99 1  \(error during"
        )

    def test_scripts_that_change_nothing_leave_no_journal(self) -> None:
        self.assertEqual(self.run_script("readRx 0 0 1\nsetRate ?\nsetAsicNum 1\n")[0], 0)
        self.assertFalse(self.journal_file().exists())
        self.assertEqual(self.entries(), [])

    def test_changes_are_told_with_the_asic_that_was_selected_for_them(self) -> None:
        self.assertEqual(self.run_script("setRate 8G 1\nsan 1\nshowRate 0\nsetRate 10G 11\n")[0], 0)
        self.assertEqual([e["command"] for e in self.entries()], ["setRate 8G 1", "san 1", "setRate 10G 11"])

    def test_what_is_shown_can_be_chosen(self) -> None:
        self.run_script("setRate 8G 1\n", "-t", "sim")
        self.run_script("setRate 8G 2\n")
        first, second = self.entries()
        self.assertEqual(self.entries("--target", "sim"), [first])
        self.assertEqual(self.entries("--run", second["run"]), [second])
        self.assertEqual(self.entries("--since", second["time"]), [second])
        for since in ("600s", "90m", "1h", "7d", "2001-01-01", "2001-01-01T10:00", "2001-01-01 10:00:01"):
            self.assertEqual(self.entries("--since", since), [first, second])
        self.assertEqual(self.entries("--since", "2901-01-01"), [])
        for since in (
            "yesterday",
            "2000000s",
            "2001-01-01T10:00:00.0000000",
            "2001-01-01T10:00:00,5",
            "5w",
            "2001-1-1",
            "-1h",
            "2001-01-01T10",
            "2001-02-30",
            "2001-13-01",
            "2001-01-01T24:00",
            "2001-01-01T10:60",
            "2001-01-01T10:00:60",
        ):
            status, out, err = self.ctl("journal", f"--since={since}")
            self.assertEqual((status, out), (2, ""))
            self.assertIn(since, err)
        done = self.ctl("journal", "--run", "nope")
        self.assertEqual(done, (2, "", "serdesctl: the journal has no run 'nope'\n"))

    def test_a_journal_that_cannot_be_read(self) -> None:
        self.journal_file().parent.mkdir(exist_ok=True)
        self.journal_file().symlink_to("journal.jsonl")
        status, out, err = self.ctl("journal")
        self.assertEqual((status, out), (1, ""))
        self.assertIn(f"{self.journal_file()}: ", err)

    def test_what_is_recorded_stays_within_its_line(self) -> None:
        self.env["SUDO_USER"] = "alice\n\x1b[2J"
        self.assertEqual(self.run_script("setRate 8G 1\n", "-t", "sim")[0], 0)
        done = self.ctl("journal")
        self.assertEqual((done.status, len(done.out.splitlines())), (0, 1))
        self.assertIn("alice??[2J as ", done.out)

    def test_the_intent_is_there_before_the_command_is_answered(self) -> None:
        self.misbehaving("copies_the_journal", "setRate 8G 2")
        self.assertEqual(self.run_script("setRate 8G 1\nsetRate 8G 2\n")[0], 0)
        seen = [json.loads(line) for line in (self.folder / "seen").read_text().splitlines()]
        self.assertEqual([(r["n"], r["event"]) for r in seen], [(1, "intent"), (1, "answered"), (2, "intent")])

    def test_what_became_of_an_intent_that_is_gone(self) -> None:
        self.assertEqual(self.run_script("setRate 8G 1\nsetRate 8G 2\n")[0], 0)
        lines = self.journal_file().read_text().splitlines(keepends=True)
        self.journal_file().write_text("".join(lines[1:]))
        self.assertEqual([e["command"] for e in self.entries()], ["setRate 8G 2"])

    def test_kill_leaves_what_is_known(self) -> None:
        self.misbehaving("hangs", "setRate 8G 2")
        process = self.start("run", self.script("setRate 8G 1\nreadRx 0 0 1\nsetRate 8G 2\nsetRate 8G 3\n"))
        self.wait_until(lambda: process.stdout.readline().startswith("Port 0"), "no answer")
        self.wait_until(lambda: len(self.records()) == 3, "no intent")
        process.kill()
        process.wait()
        self.assertEqual([(e["result"], e["reason"]) for e in self.entries()], [("answered", ""), ("unknown", "")])

    def test_interrupt_leaves_a_whole_journal(self) -> None:
        self.misbehaving("hangs", "setRate 8G 2")
        process = self.start("run", self.script("readRx 0 0 1\nsetRate 8G 2\nsetRate 8G 3\n"))
        self.wait_until(lambda: process.stdout.readline().startswith("Port 0"), "no answer")
        self.wait_until((self.folder / "triggered").exists, "not sent")
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 130)
        self.assertEqual([(e["result"], e["reason"]) for e in self.entries()], [("unknown", "interrupted")])

    def test_an_answer_that_cannot_be_printed_is_known(self) -> None:
        with open("/dev/full", "w") as full:
            status, _, err = self.ctl("run", self.script("writeRx 0 0 99 1\n"), stdout=full)
        self.assertEqual((status, err), (1, "serdesctl: standard output: No space left on device\n"))
        self.assertEqual([(e["result"], e["status_name"]) for e in self.entries()], [("answered", "CMD_EXEC_ERROR")])

    def test_a_loop_that_cannot_print_is_not_known_to_its_end(self) -> None:
        with open("/dev/full", "w") as full:
            self.assertEqual(self.ctl("run", self.script("loop writeRx 0 0 99 1\n"), stdout=full).status, 1)
        self.assertEqual([e["reason"] for e in self.entries()], ["standard output: No space left on device"])

    def test_root_by_sudo_is_one_user(self) -> None:
        user = getpass.getuser()
        terminal, end = pty.openpty()
        self.addCleanup(os.close, terminal)
        self.env["SUDO_USER"] = user
        self.assertEqual(self.ctl("run", self.script("setRate 8G 1\n#: wait 0s\n"), stdin=end).status, 0)
        name = os.ttyname(end)
        os.close(end)
        self.assertEqual([(e["user"], e["from"]) for e in self.entries()], [(user, name)])

    def test_long_scripts_announce_many_at_once_and_drop_the_rest(self) -> None:
        """Five at once, of which the third fails."""
        self.assertEqual(self.run_script("setRate 8G 1\n" * 47 + "writeRx 0 0 99 1\n" + "setRate 8G 1\n" * 52)[0], 1)
        self.assertEqual([e["result"] for e in self.entries()], ["answered"] * 48 + ["not sent"] * 2)
        self.assertEqual(sum(r["event"] == "not sent" for r in self.records()), 1)
        self.assertTrue(self.ctl("journal").out.endswith("setRate 8G 1  (not sent)\n"))

    def test_a_torn_last_record_is_said_and_cut_off(self) -> None:
        self.run_script("setRate 8G 1\n")
        whole = self.journal_file().read_bytes()
        self.journal_file().write_bytes(whole + whole[:100])
        status, out, err = self.ctl("journal", "--json")
        self.assertEqual((status, out.count("\n")), (0, 1))
        self.assertIn("the last record was cut short and is left out", err)
        status, _, err = self.run_script("setRate 8G 1\n")
        self.assertEqual(status, 0)
        self.assertIn("a record that was cut short is removed (100 bytes)", err)
        self.assertEqual(len(self.entries()), 2)

    def test_a_journal_that_is_nothing_but_torn(self) -> None:
        self.journal_file().parent.mkdir()
        self.journal_file().write_bytes(b"x" * 10000)
        self.assertEqual(self.run_script("setRate 8G 1\n")[0], 0)
        self.assertEqual(len(self.entries()), 1)

    def test_lines_that_are_no_records_are_left_out(self) -> None:
        self.journal_file().parent.mkdir()
        self.journal_file().write_text('{"event":"intent"}\nnot json\n[1]\n' + "[" * 5000 + "\n")
        status, out, err = self.ctl("journal")
        self.assertEqual((status, out, err.count("no record")), (0, "", 4))

    def test_without_room_for_the_journal_nothing_is_changed(self) -> None:
        def no_room() -> None:
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (700, 700))

        self.without_profile()
        self.run_script("setRate 8G 1\n" * 2)
        before = self.journal_file().read_bytes()
        self.assertLess(len(before), 700)
        script = self.script("setRate 8G 1\nsetRate 8G 2\n")
        status, out, err = self.ctl("-t", "sim", "run", "--echo", script, preexec_fn=no_room)
        self.assertEqual(status, 2, err)
        self.assertEqual(out, "")
        self.assertRegex(err, r"journal .*journal.jsonl cannot be written: File too large")
        self.assertEqual(self.journal_file().read_bytes(), before)

    def test_without_room_in_the_middle_what_follows_is_not_sent(self) -> None:
        def little_room() -> None:
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1500, 1500))

        self.without_profile()
        script = self.script("setRate 8G 1\n" * 20)
        status, out, err = self.ctl("-t", "sim", "run", "--echo", script, preexec_fn=little_room)
        self.assertEqual(status, 1, err)
        self.assertIn("cannot be written: File too large", err)
        # What was answered, and at most one whose answer found no room.
        self.assertIn(len(self.entries()) - out.count("serdes: setRate"), (0, 1))
        self.assertIn(len(self.entries()), range(2, 10))

    def test_a_journal_that_cannot_be_opened(self) -> None:
        self.env["SERDESCTL_JOURNAL"] = "/dev/null/journal"
        status, out, err = self.run_script("readRx 0 0 1\nsetRate 8G 1\n")
        self.assertEqual((status, out), (2, ""))
        self.assertIn("/dev/null/journal/journal.jsonl cannot be opened: Not a directory", err)

    def test_the_users_own_folder(self) -> None:
        """The system's folder is root's, so root tries it as somebody else."""
        del self.env["SERDESCTL_JOURNAL"]
        journal = self.folder / ".local" / "state" / "serdesctl" / "journal.jsonl"
        how: dict[str, Any] = {}
        if os.geteuid() == 0:
            os.chown(self.folder, 65534, 65534)
            how = {"user": 65534}
        with contextlib.suppress(PermissionError):  # the checkout may be root's alone
            script = self.script("setRate 8G 1\n")
            self.assertEqual(self.ctl("run", script, **how), (0, "\n\n", ""))
            self.assertTrue(journal.exists())
            self.assertRegex(self.ctl("journal", **how).out, "setRate 8G 1  .done.\n$")
            for name in ("HOME", "XDG_STATE_HOME"):
                self.env.pop(name, None)
            status, _, err = self.ctl("run", script, **how)
            self.assertEqual(
                (status, err), (2, "serdesctl: no folder for the journal: neither XDG_STATE_HOME nor HOME is set\n")
            )
            self.assertEqual(self.ctl("run", self.script("readRx 0 0 1\n", "reading"), **how).status, 0)
            self.env["XDG_STATE_HOME"] = str(self.folder / "state")
            self.assertEqual(self.ctl("run", script, **how).status, 0)
            self.assertTrue((self.folder / "state" / "serdesctl" / "journal.jsonl").exists())

    def test_many_writers(self) -> None:
        count = 6
        processes = []
        for number in range(count):
            self.env["SERDESCTL_LOCK"] = str(self.folder / f"lock{number}")
            processes.append(self.start("run", self.script("setRate 8G 1\n" * 100, f"script{number}")))
        for process in processes:
            process.communicate(timeout=LIMIT_SECONDS)
            self.assertEqual(process.returncode, 0)
        entries = self.entries()
        self.assertEqual(len(entries), count * 100)
        self.assertEqual({e["result"] for e in entries}, {"answered"})

    @unittest.skipIf(os.geteuid() != 0 or os.path.exists("/dev/log"), "needs a place for a syslog of its own")
    def test_syslog_gets_a_copy(self) -> None:
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as syslog:
            syslog.bind("/dev/log")
            self.addCleanup(Path("/dev/log").unlink)
            syslog.settimeout(LIMIT_SECONDS)
            self.assertEqual(self.run_script("setRate 8G 1\n", "--syslog")[0], 0)
            for event in ("intent", "answered"):
                self.assertRegex(syslog.recv(4096).decode(), rf'serdesctl\[\d+\]: {{.*"event":"{event}"')


if __name__ == "__main__":
    unittest.main()
