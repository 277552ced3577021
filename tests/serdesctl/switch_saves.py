"""What the tests of saves share: switches, the commands that change one, and what a trace may hold."""

from __future__ import annotations

import json
import re
from pathlib import Path
from typing import Any

from program import ProgramTest, Result
from schemas import validator
from serdes_runs import StrPath, shipped_switch

SWITCHES = ["default", "awkward", "faulty", "all-gl", "bench"]

# Platform calls that change nothing. The others all change the switch.
READING = re.compile(r"(Get|Read|ToString|TxStreamState|AsicCtl(Open|Close)|PortCtl(Open|Close))")


class SaveTest(ProgramTest):
    """The simulated switch, kept in a file, so that several runs are of one switch."""

    def setUp(self) -> None:
        super().setUp()
        self.state = self.folder / "state"
        self.trace = self.folder / "trace"

    def on(self, switch: StrPath, *words: StrPath) -> Result:
        """Runs the program on a shipped switch, or one of a file."""
        return self.ctl(*self.target(switch), *words)

    def target(self, switch: StrPath) -> list[StrPath]:
        file = shipped_switch(str(switch)) if switch in SWITCHES else switch
        # What the faulty switch says of itself differs from look to look: a new one each time.
        state: list[StrPath] = [] if switch == "faulty" else ["--state", self.state]
        return ["-t", f"sim:{file}", *state]

    def save(self, switch: StrPath = "default", *words: StrPath, name: str = "lab.json", status: int = 0) -> Path:
        path = self.folder / name
        done = self.on(switch, "save", "-o", path, *words)
        self.assertEqual((done.status, done.out), (status, ""), done.err)
        return path

    def change(self, commands: str, switch: StrPath = "default") -> None:
        done = self.run_script(commands, *self.target(switch))
        self.assertEqual(done.status, 0, done.err)

    def calls(self) -> list[str]:
        """The platform calls since the trace began."""
        return self.trace.read_text().splitlines()

    def assert_sets_nothing(self) -> None:
        changes = [call for call in self.calls() if not READING.match(call)]
        self.assertEqual(changes, [])


def loaded(text: str) -> dict[str, Any]:
    save: dict[str, Any] = json.loads(text)
    validator("save").validate(save)
    return save


def settings_part(path: Path) -> str:
    """A save's bytes in front of the observations."""
    settings, found, _ = path.read_text().partition('\n  "observations": ')
    assert found
    return settings
