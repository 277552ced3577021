#!/usr/bin/env python3
"""The binary in its surroundings: at a terminal, behind pipes, before full disks and closed descriptors.

The binary's path is in SERDES. Nothing here waits for a fixed time: everything waits for text, or for the end of the
process, with a limit that only a failure reaches.
"""
import contextlib
import fcntl
import os
import pathlib
import pty
import select
import signal
import struct
import subprocess
import tempfile
import termios
import time
import unittest

SERDES = os.path.abspath(os.environ["SERDES"])
FAULTY = str(pathlib.Path(__file__).resolve().parents[2] / "simulator" / "switches" / "faulty.toml")  # does not close
LIMIT_SECONDS = 30
PROMPT = b"serdes: "
PIPE_BYTES = 16384
START = b"switchHwConfig.NumSlots:"


def environment(**more):
    env = {name: value for name, value in os.environ.items() if not name.startswith("SERDES")}
    return dict(env, LC_ALL="C", SERDES_SIMULATOR_CLOCK="virtual", **more)


class Terminal:
    """The binary on a pseudo-terminal."""

    def __init__(self):
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.execve(SERDES, [SERDES], environment())
        self.seen = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.fd)
        with contextlib.suppress(ProcessLookupError):
            os.kill(self.pid, signal.SIGKILL)
        with contextlib.suppress(ChildProcessError):
            os.waitpid(self.pid, 0)

    def type(self, text):
        os.write(self.fd, text)

    def read_to(self, text, times=1):
        """Reads until `text` has come `times` times since the last call, and returns all up to there."""
        end = time.monotonic() + LIMIT_SECONDS
        while self.seen.count(text) < times:
            ready, _, _ = select.select([self.fd], [], [], max(0, end - time.monotonic()))
            if not ready:
                raise AssertionError(f"no {text!r} in {self.seen!r}")
            try:
                chunk = os.read(self.fd, 65536)
            except OSError:
                chunk = b""
            if not chunk:
                raise AssertionError(f"ended without {text!r}: {self.seen!r}")
            self.seen += chunk
        at = -1
        for _ in range(times):
            at = self.seen.index(text, at + 1)
        got, self.seen = self.seen[: at + len(text)], self.seen[at + len(text):]
        return got.replace(b"\r\n", b"\n")

    def exit_status(self):
        """Reads to the end and gives the exit status."""
        end = time.monotonic() + LIMIT_SECONDS
        with contextlib.suppress(OSError):
            while time.monotonic() < end and os.read(self.fd, 65536):
                pass
        _, status = os.waitpid(self.pid, 0)
        return os.waitstatus_to_exitcode(status)


class AtATerminal(unittest.TestCase):
    def test_start_shows_configuration_command_list_and_prompt(self):
        with Terminal() as terminal:
            got = terminal.read_to(PROMPT)
        self.assertTrue(got.startswith(START), got[:80])
        self.assertRegex(got, rb"current asicNum:0, coreCount:\d+, portCount:24\n\ncommand {13} ")
        self.assertTrue(got.endswith(b"(e.g. eset...)\n\n\nserdes: "), got[-80:])

    def test_prompt_comes_again_after_each_command(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"bogus\n")
            self.assertEqual(terminal.read_to(PROMPT), b"bogus\nunknown command\n\nserdes: ")
            terminal.type(b"\n")
            self.assertEqual(terminal.read_to(PROMPT), b"\n\n\nserdes: ")

    def test_control_d_at_the_prompt_ends_the_session_as_end_of_input_does(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"\x04")
            self.assertEqual(terminal.read_to(b"\r\n\r\n"), b"\n\n")
            self.assertEqual(terminal.exit_status(), 0)

    def test_exit_ends_the_session(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"quit\n")
            self.assertEqual(terminal.exit_status(), 0)

    def test_enter_stops_loop(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"loop readRx 4 0 3\n")
            terminal.read_to(b"That is 1 passes. To stop looping, enter <cr>.\r\n")
            second = terminal.read_to(b"That is 2 passes. To stop looping, enter <cr>.\r\n")
            self.assertRegex(second, rb"\A\nPort 4 \(user port \d+\), link 0 at Rx address 0x03= 0x[0-9a-f]{4} \n")
            terminal.type(b"\n")
            self.assertEqual(terminal.read_to(PROMPT), b"\n\n\nserdes: ")

    def test_a_pasted_burst_runs_line_by_line_and_its_next_line_stops_loop(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"loop readRx 4 0 3\nthis line stops it\nbogus\n")
            got = terminal.read_to(PROMPT, times=2)
        self.assertEqual(got.count(b"That is 1 passes."), 1)
        self.assertNotIn(b"That is 2 passes.", got)
        self.assertEqual(got.count(b"unknown command\n\n"), 1)

    def test_control_d_in_loop_does_not_end_the_discarding_and_a_later_line_does(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"loop readRx 4 0 3\n")
            terminal.read_to(b"That is 1 passes. To stop looping, enter <cr>.\r\n")
            terminal.type(b"\x04")
            terminal.type(b"\n")
            self.assertIn(b"\n\n\nserdes: ", terminal.read_to(PROMPT))

    def test_stop_and_continue_leave_the_prompt_working(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            stop_and_continue(terminal.pid)
            terminal.type(b"bogus\n")
            self.assertIn(b"unknown command\n\nserdes: ", terminal.read_to(PROMPT))

    def test_control_c_ends_the_process(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"\x03")
            self.assertEqual(terminal.exit_status(), -signal.SIGINT)


class SignalsInLoop(unittest.TestCase):
    def setUp(self):
        self.terminal = Terminal()
        self.addCleanup(self.terminal.__exit__)
        self.terminal.read_to(PROMPT)
        self.terminal.type(b"loop readRx 4 0 3\n")
        self.terminal.read_to(b"That is 1 passes. To stop looping, enter <cr>.\r\n")

    def check_it_goes_on(self):
        self.terminal.read_to(b"That is 2 passes. To stop looping, enter <cr>.\r\n")
        self.terminal.type(b"\n")
        self.assertEqual(self.terminal.read_to(PROMPT), b"\n\n\nserdes: ")

    def test_control_c_ends_the_process(self):
        self.terminal.type(b"\x03")
        self.assertEqual(self.terminal.exit_status(), -signal.SIGINT)

    def test_termination_ends_the_process(self):
        os.kill(self.terminal.pid, signal.SIGTERM)
        self.assertEqual(self.terminal.exit_status(), -signal.SIGTERM)

    def test_stop_and_continue_leave_it_looping_until_a_line_comes(self):
        stop_and_continue(self.terminal.pid)
        self.check_it_goes_on()

    def test_a_new_window_size_leaves_it_looping_until_a_line_comes(self):
        fcntl.ioctl(self.terminal.fd, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 100, 0, 0))
        self.check_it_goes_on()

    def test_a_terminal_that_goes_away_ends_the_process(self):
        os.close(self.terminal.fd)
        self.terminal.fd = os.open(os.devnull, os.O_RDONLY)
        self.assertEqual(self.terminal.exit_status(), -signal.SIGHUP)


def stop_and_continue(pid):
    os.kill(pid, signal.SIGSTOP)
    os.waitpid(pid, os.WUNTRACED)
    os.kill(pid, signal.SIGCONT)


def cpu_seconds(pid):
    with open(f"/proc/{pid}/stat", encoding="ascii") as stat:
        fields = stat.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


class BehindAPipe(unittest.TestCase):
    def test_prompts_and_commands_through_a_pipe(self):
        done = subprocess.run([SERDES], input=b"bogus\nshowConfig x\n", capture_output=True, env=environment(),
                              timeout=LIMIT_SECONDS, check=False)
        self.assertTrue(done.stdout.endswith(
            b"serdes: unknown command\n\nserdes: too many command args\n\nserdes: \n\n"), done.stdout[-120:])
        self.assertEqual((done.stderr, done.returncode), (b"", 0))

    def test_a_line_already_sent_stops_loop_and_the_rest_still_runs(self):
        done = subprocess.run([SERDES], input=b"loop readRx 4 0 3\n\nbogus\n", capture_output=True, env=environment(),
                              timeout=LIMIT_SECONDS, check=False)
        self.assertEqual(done.stdout.count(b"passes. To stop looping"), 1)
        self.assertTrue(done.stdout.endswith(b"serdes: unknown command\n\nserdes: \n\n"), done.stdout[-120:])

    def test_when_input_ends_in_loop_the_command_waits_without_using_the_processor(self):
        with subprocess.Popen([SERDES], stdin=subprocess.PIPE, stdout=subprocess.PIPE, env=environment()) as process:
            try:
                process.stdin.write(b"loop readRx 4 0 3\n")
                process.stdin.close()
                seen = b""
                while b"That is 1 passes." not in seen:
                    chunk = os.read(process.stdout.fileno(), 65536)
                    self.assertTrue(chunk, seen)
                    seen += chunk
                before = cpu_seconds(process.pid)
                with self.assertRaises(subprocess.TimeoutExpired):
                    process.wait(timeout=3)
                self.assertLess(cpu_seconds(process.pid) - before, 0.1)
            finally:
                process.kill()

    def test_empty_input_ends_the_session(self):
        done = subprocess.run([SERDES], stdin=subprocess.DEVNULL, capture_output=True, env=environment(),
                              timeout=LIMIT_SECONDS, check=False)
        self.assertTrue(done.stdout.endswith(b"\n\n\nserdes: \n\n"))
        self.assertEqual((done.stderr, done.returncode), (b"", 0))

    def test_closed_input_ends_the_session(self):
        done = subprocess.run(["sh", "-c", 'exec "$0" <&-', SERDES], capture_output=True, env=environment(),
                              timeout=LIMIT_SECONDS, check=False)
        self.assertTrue(done.stdout.endswith(b"\n\n\nserdes: \n\n"))
        self.assertEqual(done.returncode, 0)

    def test_closed_input_is_not_taken_by_a_file_of_the_platform(self):
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run(["sh", "-c", 'exec "$0" <&-', SERDES], capture_output=True, check=False,
                                  env=environment(SERDES_SIMULATOR_STATE=os.path.join(folder, "state")),
                                  timeout=LIMIT_SECONDS)
        self.assertEqual(done.stderr, b"Error reading commands: Bad file descriptor\n")


class InTheMiddleOfATable(unittest.TestCase):
    """Tables that are longer than a pipe holds: the process waits in the middle of one for its reader."""

    @contextlib.contextmanager
    def waiting(self):
        with tempfile.NamedTemporaryFile("w") as script:
            script.write("showRx all\n" * 20)
            script.flush()
            command = [SERDES, script.name]
            self.undisturbed = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, env=environment(),
                                              timeout=LIMIT_SECONDS, check=True).stdout
            with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, env=environment(),
                                  pipesize=PIPE_BYTES) as process:
                try:
                    self.assertGreater(len(self.undisturbed), 4 * PIPE_BYTES)
                    self.wait_until_full(process)
                    yield process
                finally:
                    process.kill()

    def wait_until_full(self, process):
        end = time.monotonic() + LIMIT_SECONDS
        while struct.unpack("i", fcntl.ioctl(process.stdout, termios.FIONREAD, bytes(4)))[0] < PIPE_BYTES - 4096:
            self.assertLess(time.monotonic(), end, "the pipe does not fill")
            self.assertIsNone(process.poll(), "the process has ended")
            time.sleep(0.01)

    def test_waiting_for_the_reader_uses_no_processor(self):
        with self.waiting() as process:
            before = cpu_seconds(process.pid)
            with self.assertRaises(subprocess.TimeoutExpired):
                process.wait(timeout=2)
            self.assertLess(cpu_seconds(process.pid) - before, 0.1)

    def test_stop_and_continue_lose_and_repeat_nothing(self):
        with self.waiting() as process:
            got = b""
            for _ in range(4):
                stop_and_continue(process.pid)
                got += os.read(process.stdout.fileno(), PIPE_BYTES // 2)
            got += process.stdout.read()
            self.assertEqual(process.wait(timeout=LIMIT_SECONDS), 0)
            self.assertEqual(got, self.undisturbed)

    def test_interrupt_ends_the_process_at_once(self):
        with self.waiting() as process:
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(timeout=LIMIT_SECONDS), -signal.SIGINT)
            got = process.stdout.read()
            self.assertTrue(got and self.undisturbed.startswith(got), got[-80:])

    def test_control_c_at_a_terminal_ends_the_process(self):
        with Terminal() as terminal:
            terminal.read_to(PROMPT)
            terminal.type(b"showRx all\n" * 20)  # more than a terminal holds unread
            terminal.read_to(b"0x00")
            terminal.type(b"\x03")
            self.assertEqual(terminal.exit_status(), -signal.SIGINT)


class LostOutput(unittest.TestCase):
    def run_script(self, redirection, text, **more):
        """Runs a script under a shell redirection; gives the process, the script's text after it, and the calls."""
        with tempfile.TemporaryDirectory() as folder:
            script, trace = os.path.join(folder, "script"), os.path.join(folder, "trace")
            with open(script, "w", encoding="ascii") as file:
                file.write(text)
            done = subprocess.run(["sh", "-c", f'exec "$0" "$1" {redirection}', SERDES, script], stdin=subprocess.DEVNULL,
                                  capture_output=True, env=environment(SERDES_SIMULATOR_TRACE=trace, **more),
                                  timeout=LIMIT_SECONDS, check=False)
            with open(script, encoding="ascii") as file:
                after = file.read()
            with open(trace, encoding="ascii") as file:
                return done, after, file.read()

    def check_lost(self, redirection, reason):
        # Many lines, so that output is lost in the middle and not only at the end.
        text = "showConfig\n" * 50 + "setVGA 6 4 0x4e 4\n"
        done, after, calls = self.run_script(redirection, text)
        self.assertEqual(done.stderr, b"Error writing output: " + reason + b"\n")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(after, text)
        self.assertIn("SetSerDesRxVGA(0, 4, -1, 6, 4, 78)", calls)

    def test_full_disk_is_reported_once_and_the_commands_run_to_the_end(self):
        self.check_lost(">/dev/full", b"No space left on device")

    def test_closed_descriptor_is_reported_once_and_the_commands_run_to_the_end(self):
        self.check_lost(">&-", b"Bad file descriptor")

    def test_closed_error_output_is_not_taken_by_a_file_of_the_platform(self):
        done, after, calls = self.run_script(">/dev/full 2>&-", "showConfig\n")
        self.assertEqual((done.returncode, after), (1, "showConfig\n"))
        for call in calls.splitlines():
            self.assertRegex(call, r"^\w+\(.*\) (-> .*|= -?\d+)$")

    def test_failure_to_close_goes_before_lost_output_in_the_exit_status(self):
        done, _, _ = self.run_script(">/dev/full", "showConfig\n", SERDES_SIMULATOR_SWITCH=FAULTY)
        self.assertEqual(done.returncode, 255)

    def test_a_reader_that_leaves_ends_the_process(self):
        command = f"yes showConfig | head -n 100000 | '{SERDES}' /dev/stdin | head -n 1 >/dev/null; echo ${{PIPESTATUS[2]}}"
        done = subprocess.run(["bash", "-c", command], capture_output=True, env=environment(), timeout=LIMIT_SECONDS,
                              check=False)
        self.assertEqual(done.stdout, b"%d\n" % (128 + signal.SIGPIPE))
        self.assertEqual(done.stderr, b"")


if __name__ == "__main__":
    unittest.main()
