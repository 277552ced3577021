#!/usr/bin/env python3
"""docs/switch-descriptions.md explains every key and word that the reader knows, and its example is a description.

The binary's path is in SERDES.
"""
import os
import pathlib
import re
import subprocess
import tempfile
import tomllib
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SERDES = os.path.abspath(os.environ["SERDES"])
PAGE = (ROOT / "docs" / "switch-descriptions.md").read_text()
# The page's examples, one after another.
EXAMPLE = "\n".join(re.findall(r"^```toml\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE))
TABLES = "\n".join(line for line in PAGE.splitlines() if line.startswith("|"))


def keys_of_the_reader():
    source = "".join((ROOT / "simulator" / "description" / name).read_text()
                     for name in ("reader.cc", "ports.cc"))
    asked = r'(?:\.|->)(?:integers?|number|boolean|texts?|choice|choiceSet|indexes|tables?)\("(\w+)"'
    return set(re.findall(asked, source)) | set(re.findall(r'store32\([^;]*?"(\w+)"\)', source))


def keys_in(node):
    if isinstance(node, list):
        return set().union(*map(keys_in, node)) if node else set()
    if not isinstance(node, dict):
        return set()
    return set(node) | set().union(*map(keys_in, node.values()))


def words_of_the_reader():
    words = (ROOT / "simulator" / "description" / "words.h").read_text()
    return set(re.findall(r'\{"([^"]+)", (?:SPEED|FFE|DFE|MEDIA|kPort)', words))


class Page(unittest.TestCase):
    def test_the_reader_s_keys_are_found(self):
        keys = keys_of_the_reader()
        self.assertGreater(len(keys), 75)
        self.assertLessEqual({"slots", "taps", "a4", "delay_ns", "rx_core", "port_type", "pattern", "answer"}, keys)
        self.assertGreater(len(words_of_the_reader()), 25)

    def test_every_key_is_explained(self):
        # Sections are explained by their headings and examples.
        explained = set(re.findall(r"`(\w+)`", TABLES)) | {"asics", "channels", "faults", "settings"}
        self.assertEqual(keys_of_the_reader() - explained, set())

    def test_every_key_has_an_example(self):
        self.assertEqual(keys_of_the_reader() - keys_in(tomllib.loads(EXAMPLE)), set())

    def test_every_word_is_named(self):
        named = set(re.findall(r'"([^"\n]+)"', PAGE))
        self.assertEqual(words_of_the_reader() - named, set())

    def test_the_example_is_a_description(self):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "lab.toml").write_text(EXAMPLE)
            (pathlib.Path(folder) / "script").write_text("showConfig\nshowRate all\n")
            env = dict(os.environ, SERDES_SIMULATOR_SWITCH="lab.toml")
            env.pop("SERDES_SIMULATOR_STATE", None)
            done = subprocess.run([SERDES, "script"], cwd=folder, env=env, capture_output=True, check=False, timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertIn(b"\ncurrent asicNum:0, coreCount:6, portCount:8\n", done.stdout)
        # As the page's remarks say: 2 and 3 wait for a stream, 4 hears a pattern, 6 has two columns and 7 a fault.
        self.assertIn(b"running rate          8G   8G  INV  INV  INV  20G  20G  INV\n", done.stdout)

    def test_the_mistake_that_it_shows_is_worded_so(self):
        with tempfile.TemporaryDirectory() as folder:
            text = EXAMPLE.replace('channel = "module"', 'channel = "air"')
            (pathlib.Path(folder) / "lab.toml").write_text(text)
            (pathlib.Path(folder) / "script").write_text("")
            env = dict(os.environ, SERDES_SIMULATOR_SWITCH="lab.toml")
            env.pop("SERDES_SIMULATOR_STATE", None)
            done = subprocess.run([SERDES, "script"], cwd=folder, env=env, capture_output=True, check=False, timeout=60)
        shown = re.search(r"^    (simulated switch: lab.toml:)\d+(: asics\[0\].ports\[)\d(\].channel: .*)$", PAGE,
                          re.MULTILINE)
        pattern = r"\d+".join(re.escape(part) for part in shown.groups()) + "\n"
        self.assertRegex(done.stderr.decode(), "^" + pattern + "$")


if __name__ == "__main__":
    unittest.main()
