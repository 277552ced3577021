#!/usr/bin/env python3
"""Undo and history: the way back after whatever happened."""

from __future__ import annotations

import json
import os
import random
import time
import unittest

from changing import SMALL, ChangingTest, random_lines, topology
from schemas import load

# 200 for all of it.
KILLS = int(os.environ.get("CHANGING_KILLS", "12"))

FIRST = '[[settings]]\nports = "0"\ntransmit = { k = 100 }\nspeed = "4G"\n[[settings]]\nports = "2"\nspeed = "4G"\n'
SECOND = '[[settings]]\nports = "0"\ntransmit = { k = 90 }\n[[settings]]\nports = "4"\nreceive = { amax = 60 }\n'


class Undoing(ChangingTest):
    def setUp(self) -> None:
        super().setUp()
        self.on_description(SMALL)

    def apply(self, settings: str) -> str:
        self.must("apply", "--yes", self.script(settings, "lab.toml"))
        return self.last_run()

    def test_step_by_step(self) -> None:
        start = self.save("start.json")
        self.apply(FIRST)
        middle = self.save("middle.json")
        self.apply(SECOND)
        self.must("undo", "--yes")
        self.assertEqual(self.differences(middle), "")
        self.must("undo", "--yes")
        self.assertEqual(self.differences(start), "")
        status, _, err = self.do("undo", "--yes")
        self.assertEqual((status, "nothing that could be undone" in err), (2, True), err)

    def test_nothing_left_to_undo(self) -> None:
        before = self.save("before.json")
        run = self.apply(FIRST)
        self.must("restore", "--yes", before)
        self.must("undo", "--yes", "--force", run)
        self.assertIn(f"{run}  ", self.must("history").out)
        self.assertRegex(self.must("history").out, rf"(?m)^{run} .*  done, nothing of it was left to undo$")
        done = self.do("undo", "--yes", run)
        self.assertEqual((done.status, done.err), (2, f"serdesctl: run {run} has nothing left to undo\n"))

    @unittest.skipUnless(os.geteuid() == 0, "a second user is needed")
    def test_a_run_of_another_user(self) -> None:
        run = self.apply(FIRST)
        done = self.save("done.json")
        os.chmod(self.folder, 0o777)
        os.chmod(self.history()[-1]["folder"], 0o755)
        for file in self.folder.glob("switch*"):
            os.chmod(file, 0o666)
        result = self.do("undo", "--yes", run, user="nobody")
        self.assertEqual(result.status, 2, result)
        self.assertIn("run.json: Permission denied", result.err)
        self.assertEqual(self.differences(done), "")

    def test_an_undoing_can_be_undone_by_its_name(self) -> None:
        run = self.apply(FIRST)
        done = self.save("done.json")
        self.must("undo", "--yes")
        again = self.last_run()
        self.assertEqual(self.do("undo", "--yes", run).status, 2)
        self.must("undo", "--yes", again)
        self.assertEqual(self.differences(done), "")
        self.must("undo", "--yes", run)

    def test_the_named_run_alone(self) -> None:
        run = self.apply(FIRST.replace("k = 100", "c2 = -3"))
        self.apply('[[settings]]\nports = "4"\nreceive = { amax = 60 }\n')
        self.must("undo", "--yes", run)
        rates = self.must("show", "showRate", "0-3", "--json").out
        self.assertEqual([r["config_rate"] for r in json.loads(rates)["records"]][::2], ["8G", "8G"])
        amax = self.must("show", "showVGA", "4", "--json").out
        self.assertEqual({r["amax"] for r in json.loads(amax)["records"]}, {60})

    def test_it_refuses_where_somebody_else_has_changed_the_same(self) -> None:
        start = self.save("start.json")
        run = self.apply(FIRST)
        self.tool("setSlew 24 4")  # not the same
        self.tool("setFFE FFE2 77 0 50 -3 0 0")
        result, calls = self.traced("undo", "--yes")
        self.assertEqual((result.status, calls), (2, []))
        self.assertRegex(result.err, r"port 0 \(user 8\) tx link 0 k is 77, the run left 100")
        self.must("undo", "--yes", "--force", run)
        self.assertRegex(self.differences(start), r"\A(?!.*port [01235] )(?s:.*)slew_ps")

    def test_what_somebody_has_already_put_back_is_no_conflict(self) -> None:
        start = self.save("start.json")
        self.apply(SECOND)
        self.must("restore", "--yes", "--ports", "0", start)
        self.must("undo", "--yes", self.history()[0]["run"])
        self.assertEqual(self.differences(start), "")

    def test_a_state_file_that_was_not_there_before_the_run(self) -> None:
        words = [*self.words[:2], "--state", "fresh.state"]
        for done in (("apply", "--yes", self.script(FIRST, "lab.toml")), ("undo", "--yes")):
            self.assertEqual(self.ctl(*words, *done, cwd=self.folder).status, 0, done)

    def test_unknown_runs(self) -> None:
        self.assertEqual(self.do("undo", "nothing").status, 2)
        self.assertEqual(self.ctl("confirm", "nothing").status, 2)

    def test_a_run_that_has_been_rolled_back(self) -> None:
        self.env["SSH_CLIENT"] = "192.0.2.7 4711 22"
        self.assertEqual(self.do("apply", "--yes", "--confirm", "0.1", self.script(FIRST, "lab.toml")).status, 1)
        run = self.last_run()
        status, _, err = self.do("undo", "--yes", run)
        self.assertEqual((status, err), (2, f"serdesctl: run {run} has been rolled back\n"))
        self.assertRegex(self.ctl("history").out, r" from 192\.0\.2\.7  .*  rolled back: not confirmed\n\Z")

    def test_history(self) -> None:
        run = self.apply(FIRST)
        self.must("undo", "--yes")
        first, second = self.history()
        told = [first[name] for name in ("run", "state", "undone_by", "can_be_undone")]
        self.assertEqual(told, [run, "done", second["run"], False])
        self.assertEqual([second[name] for name in ("what", "undoes")], [f"undo {run}", run])
        self.assertEqual(first["sent"], first["steps"])
        lines = self.ctl("history").out.splitlines()
        self.assertRegex(lines[0], rf"\A{run}  .*Z  .*  apply .*lab.toml  .*  done, undone by {second['run']}\Z")
        self.assertTrue(lines[1].endswith("  done  (can be undone)"))
        self.assertEqual(self.ctl("-t", "other", "history").out, "")
        self.assertEqual(self.ctl(*self.words[:2], "--state", "other", "history"), (0, "", ""))

    def test_runs_that_cannot_be_read_are_said_and_left_out(self) -> None:
        self.apply(FIRST)
        run = self.history()[0]
        (self.folder / "journal" / "runs" / "broken" / "run").mkdir(parents=True)
        (self.folder / "journal" / "runs" / "broken" / "run" / "run.json").write_text('{"schema":1')
        status, out, err = self.ctl("history", "--json")
        self.assertEqual((status, load(out)), (0, run))
        self.assertIn("broken/run/run.json", err)


class Killed(ChangingTest):
    def test_undo_leads_back_from_every_moment(self) -> None:
        self.without_profile()
        rng = random.Random(os.environ.get("CHANGING_SEED", "1"))
        self.on_description(SMALL)
        start = self.save("start.json")
        ports = topology(start)
        began = time.monotonic()
        self.tool(*random_lines(rng, ports, 15))
        wanted = self.save("wanted.json")
        self.must("restore", "--yes", "--through-cache", "--partial", start)
        start = self.save("start.json")
        self.must("restore", "--yes", "--through-cache", "--partial", wanted)
        whole = time.monotonic() - began
        self.must("undo", "--yes")
        self.assertEqual(self.differences(start), "")
        killed = 0
        for _ in range(KILLS):
            process = self.start(*self.words, "restore", "--yes", "--through-cache", "--partial", wanted)
            time.sleep(rng.uniform(0, whole / 3))
            process.kill()
            process.wait()
            self.wait_until(lambda: self.do("history").status == 0, "locked")
            if self.do("diff", start).status != 0:
                killed += 1
                result = self.do("undo", "--yes", "--wait-lock", "20")
                self.assertEqual(result.status, 0, result)
            self.assertEqual(self.do("diff", start).out, "")
        self.assertGreater(killed, 0)


if __name__ == "__main__":
    unittest.main()
