#!/usr/bin/env python3
"""The state that the simulated switch keeps between runs, through the real binary, also when it is killed.

Nothing here waits for a fixed time but the killers, for whom any time will do.
"""
import os
import random
import re
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from serdes_runs import LIMIT_SECONDS, PROMPT, SERDES, Dialogue, environment, start

EMULATED = SERDES.endswith("-emulated")  # where everything takes ten times as long
KILLS = 24 if EMULATED else 240
SETS = 250
END = re.compile(rb"# whole [0-9a-f]{16}\n\Z")

# Small, so that a run starts quickly.
SWITCH = """
[[asics]]
[[asics.cores]]
cores = 0
type = 2
[[asics.ports]]
ports = "0-3"
kind = "GL"
far_end = "loop"
speed = "8G"
"""


class Bench(unittest.TestCase):
    """A folder with a switch, its state and its trace."""

    def setUp(self) -> None:
        # The disk of the machine is not what is tested here: memory is faster, and so more sets fall between two kills.
        memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        self.folder = tempfile.TemporaryDirectory(dir=memory)
        self.addCleanup(self.folder.cleanup)
        self.home = Path(self.folder.name)
        self.state = self.home / "state"
        self.trace = self.home / "trace"
        (self.home / "switch.toml").write_text(SWITCH)

    def environment(self, **more: str) -> dict[str, str]:
        return environment(switch="switch.toml", state="state", trace="trace") | more

    def start(self, script: str, **more: str) -> subprocess.Popen[bytes]:
        """A run of the lines of a script, which is not waited for."""
        (self.home / "script").write_text(script)
        return start("script", folder=self.home, env=self.environment(**more), stderr=subprocess.PIPE)

    def run_script(self, script: str, **more: str) -> tuple[int, bytes, bytes]:
        process = self.start(script, **more)
        out, err = process.communicate(timeout=LIMIT_SECONDS)
        return process.returncode, out, err

    def dialogue(self) -> Dialogue:
        return self.enterContext(Dialogue(folder=self.home, env=self.environment()))

    def succeed(self, script: str, **more: str) -> bytes:
        status, out, err = self.run_script(script, **more)
        self.assertEqual((status, err), (0, b""), out)
        return out


class BetweenRuns(Bench):
    def test_settings_of_every_kind_survive(self) -> None:
        self.succeed(
            "setTxParams FFE3 99 -4 50 -20 0 60 0\nsetRxParams DFE1 3 2 0x33 1\nsetRate 4G 2\n"
            "setTxParamsCache 2G FFE2 77 0 60 -9 0 75 3\nsetTxEnable 0 3\nwriteRx 1 0 0x14 0x1234\n"
            "writePLL 0 0x05 0x4321\nrunTest 2 0 1 2\n"
        )
        show = (
            "showTxParams all\nshowRxParams all\nshowRate all\nshowTxParamsCache 2G all\nreadRx 1 0 0x14\n"
            "readPLL 0 5\ngetTest 2 0 1\n"
        )
        first = self.succeed(show)
        self.assertEqual(self.succeed(show), first)
        for kept in (
            rb"FFE3 FFENone FFENone",
            rb"99  115  115  115",
            rb"DFE3 DFE1 DFE3 DFE3",
            rb"8G   8G   4G   8G",
            rb"0x1234",
            rb"0x4321",
        ):
            self.assertRegex(first, kept)
        self.state.unlink()
        self.assertNotEqual(self.succeed(show), first)

    def test_each_set_is_kept_before_the_next(self) -> None:
        with self.dialogue() as dialogue:
            for k in (11, 12):
                dialogue.type(b"setFFE FFE3 %d -4 55 -25 0 0\nreadTx 0 0 4\n" % k)
                dialogue.read_to(b"= 0x%04x" % k)
                self.assertIn(b"0x%04x" % k, self.state.read_bytes())
        self.assertIn(b"0x000c", self.succeed("readTx 0 0 4\n"))

    def test_a_run_that_only_looks_writes_when_it_closes(self) -> None:
        self.succeed("setFFE FFE3 11 -4 55 -25 0 0\n")
        before = self.state.stat()
        dialogue = self.dialogue()
        dialogue.type(b"showFFE all\nshowRate all\nshowDFEStats all\nreadRx 0 0 0x0c\nreadTx 0 0 4\n")
        dialogue.read_to(b"= 0x000b")
        self.assertEqual(self.state.stat().st_ino, before.st_ino)
        self.assertEqual(dialogue.exit_status(), 0)
        self.assertNotEqual(self.state.stat().st_ino, before.st_ino)

    def test_no_file_is_kept_unless_one_is_named(self) -> None:
        self.succeed("setFFE FFE3 11 -4 55 -25 0 0\n", SERDES_SIMULATOR_STATE="")
        self.assertEqual(sorted(p.name for p in self.home.iterdir()), ["script", "switch.toml", "trace"])


class AnotherSession(Bench):
    REFUSAL = b"simulated switch: state: another session uses it\n"

    def test_is_refused_while_one_runs_and_let_in_afterwards(self) -> None:
        first = self.dialogue()
        first.read_to(PROMPT)
        status, out, err = self.run_script("setFFE FFE3 11 -4 55 -25 0 0\n")
        self.assertEqual(err, self.REFUSAL)
        self.assertTrue(out.startswith(b"openSerdes: serdes err -14\n"), out)
        self.assertEqual(status, 255)
        self.assertFalse(self.state.exists())
        self.assertEqual(first.exit_status(), 0)
        self.succeed("setFFE FFE3 11 -4 55 -25 0 0\n")

    def test_of_two_that_start_at_once_one_gets_the_file(self) -> None:
        script = "".join(f"setFFE FFE3 {k} -4 55 -25 0 0\n" for k in range(1, SETS))
        for _ in range(10):
            runs = [self.start(script) for _ in range(2)]
            ends = [run.communicate(timeout=LIMIT_SECONDS)[1] for run in runs]
            self.assertIn(b"", ends)
            self.assertTrue(set(ends) <= {b"", self.REFUSAL}, ends)
            self.assertRegex(self.state.read_bytes(), END)


class UnusableFile(Bench):
    def refused(self, content: bytes, reason: bytes) -> None:
        self.state.write_bytes(content)
        status, out, err = self.run_script("setFFE FFE3 22 -4 55 -25 0 0\nshowFFE 0\n")
        self.assertEqual(err, b"simulated switch: state: " + reason + b"\n")
        self.assertTrue(out.startswith(b"openSerdes: serdes err -15\n"), out)
        self.assertEqual(status, 255)
        self.assertEqual(self.state.read_bytes(), content)
        self.assertEqual(
            sorted(p.name for p in self.home.iterdir()), ["script", "state", "state.lock", "switch.toml", "trace"]
        )

    def test_is_refused_and_left_as_it_is(self) -> None:
        self.succeed("setFFE FFE3 11 -4 55 -25 0 0\n")
        good = self.state.read_bytes()
        cut_off = b"is cut off, or no state of a simulated switch"
        for length in (0, 1, len(good) // 2, len(good) - 1):
            self.refused(good[:length], cut_off)
        self.refused(good + b"more\n", cut_off)
        self.refused(b"\0" * 4096, cut_off)
        self.refused(b"\x7fELF" + bytes(range(256)) * 16, cut_off)
        self.refused(good.replace(b"0x000b", b"0x000c", 1), b"is damaged")
        self.refused(good.replace(b"format = 2", b"format = 3", 1), b"is damaged")
        self.state.write_bytes(good)
        self.succeed("showFFE 0\n")

    def test_of_another_switch_is_refused(self) -> None:
        self.succeed("setFFE FFE3 11 -4 55 -25 0 0\n")
        (self.home / "switch.toml").write_text(SWITCH + "load = 50\n")
        self.refused(self.state.read_bytes(), b"is of another switch, or its description has changed since")
        (self.home / "switch.toml").write_text(SWITCH)
        self.succeed("showFFE 0\n")

    def test_that_cannot_be_written_fails_the_set_that_it_should_keep(self) -> None:
        self.succeed("setFFE FFE3 11 -4 55 -25 0 0\n")
        before = self.state.read_bytes()
        (self.home / "state.new").mkdir()
        status, out, err = self.run_script("setFFE FFE3 22 -4 55 -25 0 0\n")
        self.assertIn(b"setFFECmdHandler: serdes err -15\n", out)
        self.assertTrue(err.startswith(b"simulated switch: state: cannot be written: "), err)
        self.assertEqual(status, 255)
        self.assertEqual(self.state.read_bytes(), before)


class Killed(Bench):
    """A script sets k of port 0 to 1, 2, 3 ... and is killed somewhere on its way."""

    def acknowledged(self) -> int | None:
        """The k of the last set whose success was reported, or None."""
        text = self.trace.read_bytes() if self.trace.exists() else b""
        found = re.findall(rb"SetSerDesTxFFE\(0, 0, -1, 2, (\d+), .*\) = 0\n", text)
        return int(found[-1]) if found else None

    def kept(self) -> int | None:
        if not self.state.exists():
            return None
        text = self.state.read_bytes()
        self.assertRegex(text, END)
        self.trace.unlink(missing_ok=True)
        out = self.succeed("readTx 0 0 4\n")  # a run that finds the file whole and in order
        return int(re.search(rb"address 0x04= 0x([0-9a-f]{4})", out).group(1), 16)

    def kill_often(self, kills: int, longest: float) -> int:
        script = "".join(f"setFFE FFE3 {k} -4 55 -25 0 0\n" for k in range(1, SETS + 1))
        random_times = random.Random(4711)
        middles = 0
        before = self.kept()
        for kill in range(kills):
            self.trace.unlink(missing_ok=True)
            # Where leaks are searched for at the end, the search complains when it is killed.
            process = self.start(script, ASAN_OPTIONS="detect_leaks=0")
            time.sleep(random_times.uniform(0, longest))
            process.kill()
            _, err = process.communicate(timeout=LIMIT_SECONDS)
            self.assertEqual(err, b"")
            last = self.acknowledged()
            now = self.kept()
            # What was reported is kept. At most the one that was under way may have been kept unreported.
            expected = (before, 1) if last is None else (last, last + 1)
            self.assertIn(now, expected, f"kill {kill}")
            middles += process.returncode != 0 and last is not None
            before = now
        return middles

    def test_at_any_moment_it_leaves_the_last_state_or_the_next(self) -> None:
        # On a slow machine a run takes longer to get to its sets.
        begun = time.monotonic()
        self.succeed("exit\n")
        start = time.monotonic() - begun
        middles = self.kill_often(KILLS, 3 * start + 0.01)
        self.assertGreater(middles, KILLS // 10, "too few of the kills fell among the sets")

    def test_on_a_disk_too(self) -> None:
        self.folder.cleanup()
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.home = Path(self.folder.name)
        self.state, self.trace = self.home / "state", self.home / "trace"
        (self.home / "switch.toml").write_text(SWITCH)
        self.kill_often(30, 0.1)


if __name__ == "__main__":
    unittest.main()
