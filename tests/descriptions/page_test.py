#!/usr/bin/env python3
"""docs/switch-descriptions.md explains every key and word that the reader knows, and its example is a description."""
import re
import subprocess
import sys
import tempfile
import tomllib
import unittest
from pathlib import Path
from typing import Any

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from serdes_runs import ROOT, environment, run_script

PAGE = (ROOT / "docs" / "switch-descriptions.md").read_text()
# The page's examples, one after another.
EXAMPLE = "\n".join(re.findall(r"^```toml\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE))
TABLES = "\n".join(line for line in PAGE.splitlines() if line.startswith("|"))


def rows_of_the_reader() -> set[str]:
    """Every key behind the name of the table that it stands in."""
    folder = ROOT / "simulator" / "description"
    source = "".join(path.read_text() for path in sorted(folder.glob("*.cc")))
    tables = re.findall(r"constexpr auto k(\w*)Keys = std::to_array<\w+(?:<\w+>)?>\(\{(.*?)\}\);", source, re.DOTALL)
    return {f"{table}/{key}" for table, rows in tables for key in re.findall(r'\{(?:\.name = )?"(\w+)"', rows)}


def keys_of_the_reader() -> set[str]:
    return {row.split("/")[1] for row in rows_of_the_reader()}


def keys_in(node: Any) -> set[str]:
    if isinstance(node, list):
        return set().union(*map(keys_in, node)) if node else set()
    if not isinstance(node, dict):
        return set()
    return set(node) | set().union(*map(keys_in, node.values()))


def words_of_the_reader() -> set[str]:
    folder = ROOT / "simulator" / "description"
    source = "".join(path.read_text() for path in (folder / "words.h", folder / "settings.cc"))
    return set(re.findall(r'\{"([^"]+)", (?:SPEED|FFE|DFE|MEDIA|kPort|[01]})', source))


def run_on(description: str, script: str) -> subprocess.CompletedProcess[bytes]:
    with tempfile.TemporaryDirectory() as folder:
        Path(folder, "lab.toml").write_text(description)
        return run_script(script, folder=folder, env=environment(switch="lab.toml"))


class Page(unittest.TestCase):
    def test_the_reader_s_keys_are_found(self) -> None:
        keys = keys_of_the_reader()
        self.assertGreater(len(keys), 75)
        self.assertLessEqual({"virtual", "EXG", "copper active", "FFE4", "DFE1", "20G"}, words_of_the_reader())
        self.assertLessEqual({"slots", "taps", "a4", "delay_ns", "rx_core", "port_type", "pattern", "answer"}, keys)
        self.assertGreater(len(words_of_the_reader()), 25)

    def test_every_key_is_explained(self) -> None:
        # Sections are explained by their headings and examples.
        explained = set(re.findall(r"`(\w+)`", TABLES)) | {"asics", "channels", "faults", "settings"}
        self.assertEqual(keys_of_the_reader() - explained, set())

    def test_every_key_has_an_example(self) -> None:
        self.assertEqual(keys_of_the_reader() - keys_in(tomllib.loads(EXAMPLE)), set())

    def test_every_key_is_seen_to_reach_the_switch(self) -> None:
        test = (ROOT / "tests" / "unit" / "simulator" / "description" / "every_key_test.cc").read_text()
        self.assertEqual(set(re.findall(r'\{"(\w*/\w+)"', test)), rows_of_the_reader())

    def test_every_word_is_named(self) -> None:
        named = set(re.findall(r'"([^"\n]+)"', PAGE))
        self.assertEqual(words_of_the_reader() - named, set())

    def test_the_example_is_a_description(self) -> None:
        done = run_on(EXAMPLE, "showConfig\nshowRate all\n")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertIn(b"\ncurrent asicNum:0, coreCount:6, portCount:8\n", done.stdout)
        # As the page's remarks say: 2 and 3 wait for a stream, 4 hears a pattern, 6 has two columns and 7 a fault.
        self.assertIn(b"running rate          8G   8G  INV  INV  INV  20G  20G  INV\n", done.stdout)

    def test_the_mistake_that_it_shows_is_worded_so(self) -> None:
        done = run_on(EXAMPLE.replace('channel = "module"', 'channel = "air"'), "")
        shown = re.search(
            r"^    (simulated switch: lab.toml:)\d+(: asics\[0\].ports\[)\d(\].channel: .*)$", PAGE, re.MULTILINE
        )
        pattern = r"\d+".join(re.escape(part) for part in shown.groups()) + "\n"
        self.assertRegex(done.stderr.decode(), "^" + pattern + "$")


if __name__ == "__main__":
    unittest.main()
