#!/usr/bin/env python3
"""An engineer's day in short, as docs/changing-settings.md tells it: for builds that run elsewhere, too."""

from __future__ import annotations

import unittest

from changing import SMALL, ChangingTest


class Day(ChangingTest):
    def test_it(self) -> None:
        self.on_description(SMALL)
        save = self.save()
        lab = self.folder / "lab.toml"
        self.must("save", "--as-settings", "-o", lab)

        self.must("run", self.script("setRxParams NONE 6 0 0x4e 1\n", "noon.serdes"))
        self.assertIn("- dfe_mode DFE3\n+ dfe_mode NONE\n", self.differences(save))
        self.assertEqual(self.must("plan", "--script", lab, status=1).out, "setRxParams DFE3 6 4 78 1\n")
        self.assertIn("\nverified: ", self.must("apply", "--yes", "--guard", "1", lab).out)
        self.assertEqual(self.differences(save), "")

        weak = self.script("[[settings]]\nports = 0\ntransmit = { k = 20 }\n", "weak.toml")
        self.assertRegex(self.must("rehearse", weak, status=1).out, r"\nworse: ASIC 0 port 0: good -> ")
        self.assertIn("nothing was sent", self.must("apply", "--yes", "--rehearse", weak, status=1).err)
        result = self.must("apply", "--yes", "--guard", "1", weak, status=1)
        self.assertTrue(result.err.endswith(": rolled back, the switch is as before\n"), result.err)
        self.assertEqual(self.differences(save), "")

        self.must("undo", "--yes")
        self.assertEqual(self.must("plan", "--script", lab, status=1).out, "setRxParams DFE3 6 4 78 1\n")


if __name__ == "__main__":
    unittest.main()
