#!/usr/bin/env python3
"""Switches that ssh reaches: a real sshd on the loopback with keys of its own."""

from __future__ import annotations

import contextlib
import getpass
import os
import shutil
import signal
import socket
import subprocess
import unittest
from pathlib import Path

from program import ProgramTest, children, plain_tool
from serdes_runs import LIMIT_SECONDS, SERDES, shipped_switch

SSHD = shutil.which("sshd", path=os.environ.get("PATH", "") + ":/usr/sbin:/sbin")
SSH = shutil.which("ssh")


def free_port() -> int:
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return int(probe.getsockname()[1])


def key(path: Path) -> None:
    subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", path], check=True)


@unittest.skipUnless(SSHD and SSH, "no sshd here: scripts/install-dependencies openssh-server")
class Ssh(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.port = free_port()
        self.folder.chmod(0o755)
        for name in ("host", "user"):
            key(self.folder / name)
        shutil.copy(self.folder / "user.pub", self.folder / "authorized")
        tools = self.folder / "tools"
        tools.mkdir()
        tool = tools / "serdes"
        tool.write_text(f'#!/bin/sh\necho $$ >{self.folder}/tool.pid\nexec {SERDES} "$@"\n')
        tool.chmod(0o755)
        self.start_sshd(f"{tools}:{os.environ['PATH']}")
        config = self.folder / "ssh_config"
        config.write_text(
            f"Host lab\n HostName 127.0.0.1\n Port {self.port}\n User {getpass.getuser()}\n"
            f" IdentityFile {self.folder}/user\n IdentitiesOnly yes\n IdentityAgent none\n LogLevel ERROR\n"
            f" StrictHostKeyChecking no\n UserKnownHostsFile {self.folder}/known\n"
        )
        programs = self.folder / "bin"
        programs.mkdir()
        (programs / "ssh").write_text(f'#!/bin/sh\nexec {SSH} -F {config} "$@"\n')
        (programs / "ssh").chmod(0o755)
        self.env["PATH"] = f"{programs}:{os.environ['PATH']}"
        targets = self.folder / ".config" / "serdesctl" / "targets.toml"
        targets.parent.mkdir(parents=True)
        targets.write_text(
            f'[lab]\nssh = "lab"\nlock = "{self.folder}/remote.lock"\n'
            f'[awkward]\nssh = "lab"\nlock = "{self.folder}/re$(id)mote\'s `lock`"\n'
            f'command = ["{tool}"]\nenvironment = {{ SERDES_SIMULATOR_SWITCH = "{shipped_switch("awkward")}" }}\n'
            f'[trap]\nssh = "lab"\nlock = "{self.folder}/remote.lock"\ncommand = ["serdes", "$(touch {self.folder}/trapped)"]\n'
        )

    def start_sshd(self, path: str) -> None:
        if os.geteuid() == 0:
            os.makedirs("/run/sshd", exist_ok=True)
        config = self.folder / "sshd_config"
        config.write_text(
            f"Port {self.port}\nListenAddress 127.0.0.1\nHostKey {self.folder}/host\nPidFile none\nUsePAM no\n"
            f"AuthorizedKeysFile {self.folder}/authorized\nStrictModes no\nPermitRootLogin yes\n"
            f"PasswordAuthentication no\nSetEnv PATH={path} SERDES_SIMULATOR_CLOCK=virtual\n"
        )
        sshd = subprocess.Popen([SSHD, "-D", "-e", "-f", config], stderr=subprocess.DEVNULL)
        self.addCleanup(sshd.wait)
        self.addCleanup(sshd.kill)
        self.wait_until(self.answers, "sshd does not start")

    def answers(self) -> bool:
        with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", self.port), timeout=1):
            return True
        return False

    def assert_lock_is_free(self) -> None:
        self.assertEqual(
            subprocess.run(["flock", "-n", self.folder / "remote.lock", "true"], check=False).returncode, 0
        )

    def test_answers_are_the_tools(self) -> None:
        script = "setFFE FFE3 115 -4 55 -25 0 gl\nshowRx all\nshowFFE 0-3\n"
        for target in ("lab", "ssh:lab"):
            with self.subTest(target):
                status, out, err = self.run_script(script, "-t", target)
                self.assertEqual((status, err), (0, ""))
                self.assertEqual(out, plain_tool(script, self.env))

    def test_words_are_taken_as_they_are(self) -> None:
        status, out, err = self.run_script("showConfig\n", "-t", "awkward")
        self.assertEqual((status, err), (0, ""))
        self.assertIn("%s%n%d", out)
        self.assertTrue((self.folder / "re$(id)mote's `lock`").exists())
        status, _, err = self.run_script("showConfig\n", "-t", "trap")
        self.assertEqual(status, 3)
        self.assertIn("Error openning file", err)  # the tool got the word and took it for a script
        self.assertFalse((self.folder / "trapped").exists())

    def in_loop(self) -> subprocess.Popen[str]:
        process = self.start("-t", "lab", "run", self.script("loop readRx 0 0 1\n"))
        self.wait_until(lambda: "0x01" in process.stdout.readline(), "no answer")
        return process

    def test_the_lock_is_on_the_other_machine(self) -> None:
        first = self.in_loop()
        status, _, err = self.run_script("readRx 0 0 1\n", "-t", "lab")
        self.assertEqual(status, 5)
        self.assertRegex(err, rf"\Aserdesctl: lab: locked by \S+@\S+, process {first.pid}, since .*remote.lock\)\n\Z")
        second = self.start("-t", "lab", "--wait-lock", "60", "run", self.script("readRx 0 0 1\n"))
        first.kill()
        _, err = second.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual((second.returncode, err), (0, ""))

    def test_kill_leaves_no_tool_and_no_lock(self) -> None:
        process = self.in_loop()
        pids = self.tool_pids()
        process.kill()
        self.assert_ended(pids)
        self.assert_lock_is_free()

    def test_a_dropped_connection_leaves_no_tool_and_no_lock(self) -> None:
        process = self.in_loop()
        pids = self.tool_pids()
        (client,) = children(process.pid)
        os.kill(client, signal.SIGKILL)
        _, err = process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 3)
        self.assertRegex(err, r"\Aserdesctl: \S*script:1: lab: the tool ended by signal 9 between commands\n\Z")
        self.assert_ended(pids)
        self.assert_lock_is_free()

    def test_a_tool_that_ends(self) -> None:
        process = self.in_loop()
        os.kill(self.tool_pids()[0], signal.SIGKILL)
        _, err = process.communicate(timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 3, err)
        self.assertIn("between commands", err)

    def test_switches_that_cannot_be_reached(self) -> None:
        (self.folder / "authorized").write_text("")
        status, _, err = self.run_script("readRx 0 0 1\n", "-t", "lab")
        self.assertEqual(status, 3)
        self.assertRegex(err, r"lab: the tool ended with status 255 in the start: .*Permission denied")
        config = self.folder / "ssh_config"
        config.write_text(config.read_text().replace(f"Port {self.port}", f"Port {free_port()}"))
        status, _, err = self.run_script("readRx 0 0 1\n", "-t", "lab")
        self.assertEqual(status, 3)
        self.assertIn("Connection refused", err)

    def test_a_switch_without_the_tool(self) -> None:
        (self.folder / "tools" / "serdes").unlink()
        status, _, err = self.run_script("readRx 0 0 1\n", "-t", "lab")
        self.assertEqual(status, 3)
        self.assertRegex(err, "ended with status 127 in the start: .*serdes.*not found")

    def test_a_lock_that_cannot_be_opened(self) -> None:
        targets = Path(self.env["HOME"]) / ".config" / "serdesctl" / "targets.toml"
        targets.write_text('[lab]\nssh = "lab"\nlock = "/dev/null/lock"\n')
        status, _, err = self.run_script("readRx 0 0 1\n", "-t", "lab")
        self.assertEqual(status, 3)
        self.assertRegex(err, "ended with status 74 in the start: .*/dev/null/lock")


if __name__ == "__main__":
    unittest.main()
