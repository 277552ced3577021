#!/usr/bin/env python3
"""The binary in its surroundings: at a terminal, behind pipes, before full disks and closed descriptors."""
import contextlib
import fcntl
import os
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest
from collections.abc import Iterator
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from serdes_runs import (
    LIMIT_SECONDS,
    PROMPT,
    SERDES,
    Dialogue,
    StrPath,
    Terminal,
    environment,
    run,
    shipped_switch,
    start,
)

PIPE_BYTES = 16384
START = b"switchHwConfig.NumSlots:"


class AtATerminal(unittest.TestCase):
    def test_start_shows_configuration_command_list_and_prompt(self) -> None:
        with Terminal() as terminal:
            got = terminal.read_to(PROMPT)
        self.assertTrue(got.startswith(START), got[:80])
        self.assertRegex(got, rb"current asicNum:0, coreCount:\d+, portCount:24\n\ncommand {13} ")
        self.assertTrue(got.endswith(b"(e.g. eset...)\n\n\nserdes: "), got[-80:])

    def test_prompt_comes_again_after_each_command(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"bogus\n")
            self.assertEqual(terminal.read_to(PROMPT), b"bogus\nunknown command\n\nserdes: ")
            terminal.type(b"\n")
            self.assertEqual(terminal.read_to(PROMPT), b"\n\n\nserdes: ")

    def test_control_d_at_the_prompt_ends_the_session_as_end_of_input_does(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"\x04")
            self.assertEqual(terminal.read_to(b"\r\n\r\n"), b"\n\n")
            self.assertEqual(terminal.exit_status(), 0)

    def test_exit_ends_the_session(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"quit\n")
            self.assertEqual(terminal.exit_status(), 0)

    def test_enter_stops_loop(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"loop readRx 4 0 3\n")
            terminal.read_to(b"That is 1 passes. To stop looping, enter <cr>.\r\n")
            second = terminal.read_to(b"That is 2 passes. To stop looping, enter <cr>.\r\n")
            self.assertRegex(second, rb"\A\nPort 4 \(user port \d+\), link 0 at Rx address 0x03= 0x[0-9a-f]{4} \n")
            terminal.type(b"\n")
            self.assertEqual(terminal.read_to(PROMPT), b"\n\n\nserdes: ")

    def test_a_pasted_burst_runs_line_by_line_and_its_next_line_stops_loop(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"loop readRx 4 0 3\nthis line stops it\nbogus\n")
            got = terminal.read_to(PROMPT, times=2)
        self.assertEqual(got.count(b"That is 1 passes."), 1)
        self.assertNotIn(b"That is 2 passes.", got)
        self.assertEqual(got.count(b"unknown command\n\n"), 1)

    def test_control_d_in_loop_does_not_end_the_discarding_and_a_later_line_does(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"loop readRx 4 0 3\n")
            terminal.read_to(b"That is 1 passes. To stop looping, enter <cr>.\r\n")
            terminal.type(b"\x04")
            terminal.type(b"\n")
            self.assertIn(b"\n\n\nserdes: ", terminal.read_to(PROMPT))

    def test_stop_and_continue_leave_the_prompt_working(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            stop_and_continue(terminal.process.pid)
            terminal.type(b"bogus\n")
            self.assertIn(b"unknown command\n\nserdes: ", terminal.read_to(PROMPT))

    def test_control_c_ends_the_process(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"\x03")
            self.assertEqual(terminal.exit_status(), -signal.SIGINT)


class SignalsInLoop(unittest.TestCase):
    def setUp(self) -> None:
        self.terminal = self.enterContext(Terminal())
        self.terminal.read_to(PROMPT)
        self.terminal.type(b"loop readRx 4 0 3\n")
        self.terminal.read_to(b"That is 1 passes. To stop looping, enter <cr>.\r\n")

    def check_it_goes_on(self) -> None:
        self.terminal.read_to(b"That is 2 passes. To stop looping, enter <cr>.\r\n")
        self.terminal.type(b"\n")
        self.assertEqual(self.terminal.read_to(PROMPT), b"\n\n\nserdes: ")

    def test_control_c_ends_the_process(self) -> None:
        self.terminal.type(b"\x03")
        self.assertEqual(self.terminal.exit_status(), -signal.SIGINT)

    def test_termination_ends_the_process(self) -> None:
        os.kill(self.terminal.process.pid, signal.SIGTERM)
        self.assertEqual(self.terminal.exit_status(), -signal.SIGTERM)

    def test_stop_and_continue_leave_it_looping_until_a_line_comes(self) -> None:
        stop_and_continue(self.terminal.process.pid)
        self.check_it_goes_on()

    def test_a_new_window_size_leaves_it_looping_until_a_line_comes(self) -> None:
        fcntl.ioctl(self.terminal.output, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 100, 0, 0))
        self.check_it_goes_on()

    def test_a_terminal_that_goes_away_ends_the_process(self) -> None:
        self.terminal.hang_up()
        self.assertEqual(self.terminal.exit_status(), -signal.SIGHUP)


def stop_and_continue(pid: int) -> None:
    os.kill(pid, signal.SIGSTOP)
    os.waitpid(pid, os.WUNTRACED)
    os.kill(pid, signal.SIGCONT)


def cpu_seconds(pid: int) -> float:
    with open(f"/proc/{pid}/stat", encoding="ascii") as stat:
        fields = stat.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def cpu_seconds_while_waiting(process: subprocess.Popen[bytes], seconds: float) -> float:
    before = cpu_seconds(process.pid)
    with contextlib.suppress(subprocess.TimeoutExpired):
        raise AssertionError(f"the process has ended with status {process.wait(seconds)}")
    return cpu_seconds(process.pid) - before


class BehindAPipe(unittest.TestCase):
    CLOSED_INPUT = ["sh", "-c", 'exec "$0" <&-', SERDES]

    def test_prompts_and_commands_through_a_pipe(self) -> None:
        done = run(typed=b"bogus\nshowConfig x\n")
        self.assertTrue(
            done.stdout.endswith(b"serdes: unknown command\n\nserdes: too many command args\n\nserdes: \n\n"),
            done.stdout[-120:],
        )
        self.assertEqual((done.stderr, done.returncode), (b"", 0))

    def test_a_line_already_sent_stops_loop_and_the_rest_still_runs(self) -> None:
        done = run(typed=b"loop readRx 4 0 3\n\nbogus\n")
        self.assertEqual(done.stdout.count(b"passes. To stop looping"), 1)
        self.assertTrue(done.stdout.endswith(b"serdes: unknown command\n\nserdes: \n\n"), done.stdout[-120:])

    def test_when_input_ends_in_loop_the_command_waits_without_using_the_processor(self) -> None:
        with Dialogue() as dialogue:
            dialogue.type(b"loop readRx 4 0 3\n")
            dialogue.input.close()
            dialogue.read_to(b"That is 1 passes.")
            self.assertLess(cpu_seconds_while_waiting(dialogue.process, 3), 0.1)

    def test_empty_input_ends_the_session(self) -> None:
        done = run()
        self.assertTrue(done.stdout.endswith(b"\n\n\nserdes: \n\n"))
        self.assertEqual((done.stderr, done.returncode), (b"", 0))

    def test_closed_input_ends_the_session(self) -> None:
        done = run(program=self.CLOSED_INPUT)
        self.assertTrue(done.stdout.endswith(b"\n\n\nserdes: \n\n"))
        self.assertEqual(done.returncode, 0)

    def test_closed_input_is_not_taken_by_a_file_of_the_platform(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            done = run(program=self.CLOSED_INPUT, env=environment(state=os.path.join(folder, "state")))
        self.assertEqual(done.stderr, b"Error reading commands: Bad file descriptor\n")


class InTheMiddleOfATable(unittest.TestCase):
    """Tables that are longer than a pipe holds: the process waits in the middle of one for its reader."""

    @contextlib.contextmanager
    def waiting(self) -> Iterator[subprocess.Popen[bytes]]:
        with tempfile.NamedTemporaryFile("w") as script:
            script.write("showRx all\n" * 20)
            script.flush()
            self.undisturbed = run(script.name).stdout
            with start(script.name, pipesize=PIPE_BYTES) as process:
                try:
                    self.assertGreater(len(self.undisturbed), 4 * PIPE_BYTES)
                    self.wait_until_full(process)
                    yield process
                finally:
                    process.kill()

    def wait_until_full(self, process: subprocess.Popen[bytes]) -> None:
        end = time.monotonic() + LIMIT_SECONDS
        while struct.unpack("i", fcntl.ioctl(process.stdout, termios.FIONREAD, bytes(4)))[0] < PIPE_BYTES - 4096:
            self.assertLess(time.monotonic(), end, "the pipe does not fill")
            self.assertIsNone(process.poll(), "the process has ended")
            time.sleep(0.01)

    def test_waiting_for_the_reader_uses_no_processor(self) -> None:
        with self.waiting() as process:
            self.assertLess(cpu_seconds_while_waiting(process, 2), 0.1)

    def test_stop_and_continue_lose_and_repeat_nothing(self) -> None:
        with self.waiting() as process:
            got = b""
            for _ in range(4):
                stop_and_continue(process.pid)
                got += os.read(process.stdout.fileno(), PIPE_BYTES // 2)
            got += process.stdout.read()
            self.assertEqual(process.wait(timeout=LIMIT_SECONDS), 0)
            self.assertEqual(got, self.undisturbed)

    def test_interrupt_ends_the_process_at_once(self) -> None:
        with self.waiting() as process:
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(timeout=LIMIT_SECONDS), -signal.SIGINT)
            got = process.stdout.read()
            self.assertTrue(got and self.undisturbed.startswith(got), got[-80:])

    def test_control_c_at_a_terminal_ends_the_process(self) -> None:
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"showRx all\n" * 20)  # more than a terminal holds unread
            terminal.read_to(b"0x00")
            terminal.type(b"\x03")
            self.assertEqual(terminal.exit_status(), -signal.SIGINT)


class LostOutput(unittest.TestCase):
    def run_script(
        self, redirection: str, text: str, first: str = "", switch: StrPath | None = None
    ) -> tuple[subprocess.CompletedProcess[bytes], str, str]:
        """Runs a script under a shell redirection; gives the process, the script's text after it, and the calls."""
        with tempfile.TemporaryDirectory() as folder:
            script, trace = Path(folder, "script"), Path(folder, "trace")
            script.write_text(text)
            shell = ["sh", "-c", f'{first} exec "$0" "$1" {redirection}', SERDES]
            done = run(script, program=shell, env=environment(trace=trace, switch=switch))
            return done, script.read_text(), trace.read_text()

    def check_lost(self, redirection: str, reason: bytes) -> None:
        # Many lines, so that output is lost in the middle and not only at the end.
        text = "showConfig\n" * 50 + "setVGA 6 4 0x4e 4\n"
        done, after, calls = self.run_script(redirection, text)
        self.assertEqual(done.stderr, b"Error writing output: " + reason + b"\n")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(after, text)
        self.assertIn("SetSerDesRxVGA(0, 4, -1, 6, 4, 78)", calls)

    def test_full_disk_is_reported_once_and_the_commands_run_to_the_end(self) -> None:
        self.check_lost(">/dev/full", b"No space left on device")

    def test_closed_descriptor_is_reported_once_and_the_commands_run_to_the_end(self) -> None:
        self.check_lost(">&-", b"Bad file descriptor")

    def test_the_end_of_the_output_is_reported_too(self) -> None:
        # A file that may grow by 3000 bytes: start and table are shorter, but not together, and neither fills a buffer.
        almost_full = 'truncate -s 1045576 "$1.out"; trap "" XFSZ; ulimit -f 2048;'
        done, _, _ = self.run_script('>>"$1.out"', "showConfig\n", first=almost_full)
        self.assertEqual((done.stderr, done.returncode), (b"Error writing output: File too large\n", 1))
        done, _, _ = self.run_script('>>"$1.out"', "", first=almost_full)
        self.assertEqual((done.stderr, done.returncode), (b"", 0))

    def test_closed_error_output_is_not_taken_by_a_file_of_the_platform(self) -> None:
        done, after, calls = self.run_script(">/dev/full 2>&-", "showConfig\n")
        self.assertEqual((done.returncode, after), (1, "showConfig\n"))
        for call in calls.splitlines():
            self.assertRegex(call, r"^\w+\(.*\) (-> .*|= -?\d+)$")

    def test_failure_to_close_goes_before_lost_output_in_the_exit_status(self) -> None:
        done, _, _ = self.run_script(">/dev/full", "showConfig\n", switch=shipped_switch("faulty"))  # does not close
        self.assertEqual(done.returncode, 255)

    def test_a_reader_that_leaves_ends_the_process(self) -> None:
        command = (
            f"yes showConfig | head -n 100000 | '{SERDES}' /dev/stdin | head -n 1 >/dev/null; echo ${{PIPESTATUS[2]}}"
        )
        done = run(program=["bash", "-c", command])
        self.assertEqual(done.stdout, b"%d\n" % (128 + signal.SIGPIPE))
        self.assertEqual(done.stderr, b"")


if __name__ == "__main__":
    unittest.main()
