#!/usr/bin/env python3
"""serdesctl settings, and saves as settings."""

from __future__ import annotations

import tomllib
import unittest

from switch_saves import SWITCHES, SaveTest


class Settings(SaveTest):
    def test_alone(self) -> None:
        file = self.script('[[settings]]\nports = "0-3"\nspeed = "8G"\n', "lab.toml")
        self.env["SERDESCTL_TOOL"] = "/bin/false"
        self.assertEqual(self.ctl("settings", file), (0, f"{file}: 1 entry\n", ""))

    def test_against_a_switch(self) -> None:
        file = self.script(
            '[[settings]]\nkind = "exg"\nspeed = "10G"\n\n[[settings]]\nmedia = "N/A"\nstream = true\noptional = true\n',
            "lab.toml",
        )
        self.env["SERDES_SIMULATOR_TRACE"] = str(self.trace)
        done = self.on("default", "settings", file)
        self.assertEqual(done, (0, f"{file}:1: ports 20-23 of ASIC 0, ports 8-10 of ASIC 1\n{file}:5: no port\n", ""))
        self.assert_sets_nothing()

    def test_all_that_is_wrong_is_said(self) -> None:
        file = self.script('[[settings]]\nports = "0-3"\nspeed = "9G"\ntransmit = { k = 300 }\n', "lab.toml")
        self.env["SERDES_SIMULATOR_TRACE"] = str(self.trace)
        done = self.on("default", "settings", file)
        self.assertEqual((done.status, done.out), (2, ""))
        self.assertEqual(
            done.err,
            f"serdesctl: {file}:3: speed: '9G' is none of AUTO, 1G, 2G, 4G, 8G, 10G, 20G\n"
            f"serdesctl: {file}:4: transmit.k: 300 is no number from 0 to 255\n",
        )
        self.assertFalse(self.trace.exists(), "the switch was asked")

    def test_what_a_switch_does_not_have(self) -> None:
        file = self.script('[[settings]]\nasic = 1\nports = "11-12"\nspeed = "8G"\n', "lab.toml")
        self.assertEqual(self.ctl("settings", file).status, 0)
        done = self.on("default", "settings", file)
        self.assertEqual((done.status, done.err), (2, f"serdesctl: {file}:1: ports: no port 12 of ASIC 1\n"))

    def test_unreadable(self) -> None:
        done = self.ctl("settings", self.folder / "none.toml")
        self.assertEqual(
            (done.status, done.err), (2, f"serdesctl: {self.folder}/none.toml: No such file or directory\n")
        )
        self.assertEqual(self.ctl("settings", self.folder).status, 2)

    def test_a_save_is_no_settings_file(self) -> None:
        file = self.save("bench")
        done = self.ctl("settings", file)
        self.assertEqual((done.status, done.out), (2, ""))
        self.assertEqual(done.err, f"serdesctl: {file}: JSON, as saves and plans are; settings are TOML\n")

    def test_a_switch_as_settings(self) -> None:
        for switch in SWITCHES:
            self.state.unlink(missing_ok=True)
            file = self.save(switch, "--as-settings", name="lab.toml", status=1 if switch == "faulty" else 0)
            entries = tomllib.loads(file.read_text())["settings"]
            done = self.ctl("settings", file)
            self.assertEqual((done.status, done.out), (0, f"{file}: {len(entries)} entries\n"), done.err)
            done = self.on(switch, "settings", file)
            self.assertEqual(done.status, 0, done.err)
            self.assertEqual(len(done.out.splitlines()), len(entries))

    def test_ports_that_share_everything_are_one_entry(self) -> None:
        file = self.save("bench", "--as-settings", name="lab.toml")
        entries = tomllib.loads(file.read_text())["settings"]
        self.assertEqual([entry["ports"] for entry in entries], ["0-23", "0-23"])
        self.assertEqual(entries[0]["transmit"]["k"], 115)
        self.assertEqual(entries[1]["to"], "caches")


if __name__ == "__main__":
    unittest.main()
