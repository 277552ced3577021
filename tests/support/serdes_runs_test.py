#!/usr/bin/env python3
"""What the other tests see of a program at a terminal is what a person would see."""

import unittest

from serdes_runs import Terminal


class WrittenInPieces(unittest.TestCase):
    def shown(self, beginning: str, rest: str, seen: bytes) -> str:
        """The screen where a program writes the rest only after the beginning has been read."""
        script = f"stty -echo; printf '{beginning}'; read -r line; printf '{rest}'"
        with Terminal("-c", script, program=["/bin/sh"]) as terminal:
            terminal.read_to(seen)
            terminal.type(b"\n")
            self.assertEqual(terminal.exit_status(), 0)
            return terminal.text()

    def test_an_escape_sequence_is_one(self) -> None:
        self.assertEqual(self.shown(r"abc\r\033", "[Kd", b"\r\x1b"), "d")
        self.assertEqual(self.shown(r"abc\r\033[", "Kd", b"\r\x1b["), "d")
        self.assertEqual(self.shown(r"abc\r\033[2", "Cd", b"\r\x1b[2"), "abd")

    def test_a_character_is_one(self) -> None:
        self.assertEqual(self.shown(r"a\303", r"\251b", b"a\xc3"), "aéb")


class Redrawn(unittest.TestCase):
    def test_the_screen_has_what_was_written_last(self) -> None:
        script = r"printf 'one\ntwo\033[A\rO\033[B\r\033[2Cx\b\033[K\n\nend  '"
        with Terminal("-c", script, program=["/bin/sh"]) as terminal:
            terminal.wait_for("end")
            self.assertEqual(terminal.text(), "One\ntw\n\nend")

    def test_a_text_that_does_not_come_is_missed(self) -> None:
        with Terminal("-c", "echo shown", program=["/bin/sh"]) as terminal:
            with self.assertRaisesRegex(AssertionError, "no 'awaited' at the end of:\nshown"):
                terminal.wait_for("awaited")


if __name__ == "__main__":
    unittest.main()
