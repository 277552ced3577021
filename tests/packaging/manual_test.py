#!/usr/bin/env python3
"""The manual, the word list and the table as data against the binary that they describe.

SERDES is the binary, TEXTS the folder of what was made from its table, BUILD and SOURCE are the trees and READELF is the
program of that name.
"""
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from serdes_runs import LIMIT_SECONDS, SERDES, run

TEXTS = Path(os.environ["TEXTS"])
SOURCE = Path(os.environ["SOURCE"])
MANUAL_SOURCE = SOURCE / "packaging/manual"

TABLE = json.loads((TEXTS / "commands.json").read_text(encoding="ascii"))
MANUAL = (TEXTS / "serdes.8").read_text(encoding="ascii")
FAILURES = ("command", "too few", "too many", "unknown", "invalid", "error during")


def run_commands(*lines: str) -> str:
    """What the commands print, after the start."""
    done = run("/dev/stdin", typed="".join(f"{line}\n" for line in lines).encode())
    if done.returncode != 0:
        raise AssertionError(done)
    return re.split(r"current asicNum:.*\n\n", done.stdout.decode(), maxsplit=1)[1]


def section(name: str) -> str:
    return re.search(rf"^\.Sh {name}\n(.*?)(?=^\.Sh |\Z)", MANUAL, re.MULTILINE | re.DOTALL).group(1)


def plain(line: str) -> str:
    return line.replace("\\&", "").replace("\\-", "-").replace("\\e", "\\")


class Command:
    def __init__(self, text: str) -> None:
        title, self.text = text.split("\n", 1)
        self.name, _, arguments = plain(title).removeprefix(".It Ic ").partition(" ")
        self.synopsis = arguments.replace("Ar ", "")
        self.words = 1 + len(self.synopsis.split(" Op ")[0].split())
        self.shortcut = plain(re.match(r"Shortcut\n\.Ic (\S+) ;\n", self.text).group(1))
        least, most = re.search(r"^(?:(\d+) to )?(\d+) words?[.;]", self.text, re.MULTILINE).groups()
        self.least, self.most = int(least or most), int(most)
        shown = re.search(r"^\.Bd -ragged.*?\n(.*?)^\.Ed$", self.text, re.MULTILINE | re.DOTALL).group(1)
        self.help = [plain(line) for line in shown.splitlines() if line != ".br"]


def manual_commands() -> list[Command]:
    return [Command(text) for text in re.split(r"^(?=\.It Ic )", section("COMMANDS"), flags=re.MULTILINE)[1:]]


def listed_commands() -> list[tuple[str, str]]:
    """Name and shortcut of each row of the command list."""
    rows = run_commands("help").split("=" * 20 + " \n")[-1].split("\nNOTES:")[0].splitlines()
    return [(row[:20].strip(), row[72:].strip()) for row in rows if not row.startswith(("command ", "="))]


class Commands(unittest.TestCase):
    def test_every_listed_command_is_described_in_the_order_of_the_list(self) -> None:
        listed = listed_commands()
        self.assertEqual(len(listed), len(TABLE["commands"]))
        self.assertEqual([(command.name, command.shortcut) for command in manual_commands()], listed)

    def test_shown_help_is_what_the_command_prints_by_either_name(self) -> None:
        for command in manual_commands():
            for word in (command.name, command.shortcut):
                with self.subTest(command=word):
                    printed = [line.rstrip() for line in run_commands(f"{word} ?").splitlines()]
                    self.assertEqual([line for line in printed if line], command.help)

    def test_word_bounds_are_those_that_are_checked(self) -> None:
        def status(command: Command, words: int) -> str:
            return run_commands(" ".join([command.name] + ["x"] * (words - 1))).splitlines()[0]

        for command in manual_commands():
            with self.subTest(command=command.name):
                self.assertEqual(status(command, command.most + 1), "too many command args")
                if command.least > 1:
                    self.assertEqual(status(command, command.least - 1), "too few command args")
                    self.assertNotEqual(status(command, command.least), "too few command args")

    def test_synopses_have_as_many_words_as_the_bounds_allow(self) -> None:
        for command in manual_commands():
            with self.subTest(command=command.name):
                self.assertLessEqual(command.least, command.words)
                self.assertLessEqual(command.words, command.most)

    # Where the command list leaves arguments out, abbreviates them or names them otherwise.
    DIFFERENT = {
        "setAsicNum": "asic",
        "setSlew": "slew portlist",
        "showTxParamsCache": "rate portlist",
        "showRxParamsCache": "rate portlist",
        "eshowTxParamsCache": "rate portlist",
        "eshowRxParamsCache": "rate portlist",
        "setTxParamsRaw": "interface rate power slew mode p0 p1 p2 p3 portlist",
        "setRxParamsCache": "rate mode pole peak amax portlist",
        "esetTxParamsCache": "rate power pre-emphasis portlist",
        "setDFEState": "port link mode H1ev H1odd H2ev H2odd H3ev H3odd H4ev H4odd H5ev H5odd",
        "writePLL": "core addr value",
        "readPLL": "core addr",
        "writeTx": "port link addr value",
        "readTx": "port link addr",
        "writeRx": "port link addr value",
        "readRx": "port link addr",
        "loop": "command Op argument ...",
        "help": "",
    }

    def test_synopses_are_those_of_the_command_list_but_where_it_is_not_complete(self) -> None:
        listed = {
            row["name"]: re.sub(r"[\[\]]", "", row["argHelp"]).replace("portList", "portlist")
            for row in TABLE["commands"]
        }
        self.assertEqual({command.name: command.synopsis for command in manual_commands()}, listed | self.DIFFERENT)
        self.assertFalse(self.DIFFERENT.items() & listed.items())


class Data(unittest.TestCase):
    """commands.json, where the manual does not tell it on."""

    def test_statuses(self) -> None:
        self.assertEqual([status["number"] for status in TABLE["statuses"]], list(range(11)))
        self.assertEqual(TABLE["statuses"][0], {"number": 0, "name": "CMD_OK", "message": ""})
        self.assertEqual(
            TABLE["statuses"][6], {"number": 6, "name": "CMD_BAD_PARAM", "message": "invalid command parameter"}
        )

    def test_set_commands_are_those_that_refuse_ports_of_two_types(self) -> None:
        for row in TABLE["commands"]:
            example = row["example"].removeprefix("Example: ")
            if example.endswith(("gl", "exg")) and "Raw" not in row["name"]:
                with self.subTest(command=row["name"]):
                    printed = run_commands(example.rpartition(" ")[0] + " 0 20")
                    self.assertEqual("no mixed types" in printed, row["isSetCmd"], printed)


class Version(unittest.TestCase):
    def test_there_is_one(self) -> None:
        cache = (Path(os.environ["BUILD"]) / "CMakeCache.txt").read_text(encoding="utf-8")
        version = re.search(r"^CMAKE_PROJECT_VERSION:STATIC=(.*)$", cache, re.MULTILINE).group(1)
        self.assertEqual(TABLE["version"], version)
        changelog = (SOURCE / "packaging/debian/changelog").read_text(encoding="utf-8")
        self.assertEqual(re.match(r"serdes \((.*?)\) ", changelog).group(1), version)
        for page in ("serdes.8", "serdes-prompt.8", "serdes-simulator.7"):
            self.assertIn(f'\n.Os "serdes {version}"\n', (TEXTS / page).read_text(encoding="ascii"))

    def test_the_binary_tells_it_by_the_command_that_the_manual_names(self) -> None:
        (command,) = re.findall(r"^\.Dl \$ (readelf .*)$", MANUAL, re.MULTILINE)
        _, *options, binary = shlex.split(plain(command))
        self.assertTrue(binary.endswith("/serdes"))
        printed = subprocess.run(
            [os.environ["READELF"], *options, SERDES], stdout=subprocess.PIPE, check=True, timeout=LIMIT_SECONDS
        ).stdout.decode("ascii", "replace")
        note = json.loads(re.search(r"\{.*\}", printed).group())
        self.assertEqual(note.keys(), {"type", "name", "version", "architecture"})
        self.assertEqual((note["name"], note["version"]), ("serdes", TABLE["version"]))
        self.assertTrue(note["type"] and note["architecture"])


class Limits(unittest.TestCase):
    def test_line_length(self) -> None:
        length = int(re.search(r"A line has at most (\d+) characters", MANUAL).group(1))
        self.assertEqual(run_commands("#" * length), "\n\n\n\n")
        self.assertEqual(run_commands("#" * (length + 1)), "command too long\n\n\n\n")

    def test_number_of_words(self) -> None:
        words = int(re.search(r"A line has at most (\d+) words", MANUAL).group(1))
        self.assertNotIn("too many", run_commands("showRate " + "0 " * (words - 1)))
        self.assertIn("too many command args", run_commands("showRate " + "0 " * words))


class Examples(unittest.TestCase):
    def blocks(self) -> list[str]:
        return re.findall(r"^\.Bd -literal.*?\n(.*?)^\.Ed$", section("EXAMPLES"), re.MULTILINE | re.DOTALL)

    def test_every_example_runs_without_a_complaint(self) -> None:
        blocks = self.blocks()
        self.assertEqual(len(blocks), 2)
        for block in blocks:
            # A loop would take its time: what it repeats is enough.
            lines = [plain(line).removeprefix("serdes: ").removeprefix("loop ") for line in block.splitlines()]
            printed = run_commands(*lines)
            self.assertIn("=====", printed)
            self.assertFalse(
                [line for line in printed.splitlines() if line.startswith(FAILURES) or "serdes err" in line]
            )


class Words(unittest.TestCase):
    KEYWORDS = """all gl xg exg AUTO 1G 2G 4G 8G 10G 20G asic system network FFE2 FFE3 FFE4
                  24ps 30ps 36ps 50ps 60ps 75ps 100ps DFE1 DFE3 DFE5 NONE"""

    def test_every_command_word_and_keyword_can_be_completed_and_nothing_else(self) -> None:
        words = (TEXTS / "words").read_text(encoding="ascii").splitlines()
        commands = {word for row in listed_commands() for word in row} - {"?"}
        self.assertEqual(words, sorted(commands | set(self.KEYWORDS.split())))


class Simulator(unittest.TestCase):
    def test_every_error_code_is_explained(self) -> None:
        codes = re.findall(r"= (-\d+)", (SOURCE / "simulator/error_codes.h").read_text(encoding="ascii"))
        page = (TEXTS / "serdes-simulator.7").read_text(encoding="ascii")
        self.assertEqual(re.findall(r"^\.It \\(-\d+)\n[^.\n]", page, re.MULTILINE), codes)
        self.assertGreater(len(codes), 5)

    def test_every_variable_is_explained(self) -> None:
        sources = "".join(path.read_text(encoding="utf-8") for path in (SOURCE / "simulator").rglob("*.cc"))
        page = (TEXTS / "serdes-simulator.7").read_text(encoding="ascii")
        self.assertEqual(
            set(re.findall(r"^\.It Ev (\w+)", page, re.MULTILINE)),
            set(re.findall(r'"(SERDES_SIMULATOR_\w+)"', sources)),
        )


class Drift(unittest.TestCase):
    """What stands in the table and not in the hand-written files, or the other way about, stops the build."""

    def make(self, commands: str = "", statuses: str = "") -> tuple[int, str]:
        with tempfile.TemporaryDirectory() as folder:
            arguments: list[str | Path] = [
                sys.executable,
                SOURCE / "packaging/texts/command_texts.py",
                TEXTS / "commands.json",
                "manual",
                MANUAL_SOURCE / "serdes.8.in",
            ]
            for name, text in (("commands.mdoc", commands), ("statuses.mdoc", statuses)):
                file = Path(folder) / name
                file.write_text(text or (MANUAL_SOURCE / name).read_text(encoding="ascii"), encoding="ascii")
                arguments.append(file)
            done = subprocess.run(
                [*arguments, "BINDIR=/", "DATADIR=/"],
                capture_output=True,
                text=True,
                check=False,
                timeout=LIMIT_SECONDS,
            )
        return done.returncode, done.stderr.rpartition("/")[2]

    def commands(self) -> str:
        return (MANUAL_SOURCE / "commands.mdoc").read_text(encoding="ascii")

    def test_files_as_they_are_make_a_manual(self) -> None:
        self.assertEqual(self.make(), (0, ""))

    def test_command_without_entry(self) -> None:
        without = re.sub(r"^% setSlew .*?(?=^% )", "", self.commands(), flags=re.MULTILINE | re.DOTALL)
        self.assertEqual(self.make(commands=without), (1, 'commands.mdoc: no entry for "setSlew"\n'))

    def test_entry_without_command(self) -> None:
        self.assertEqual(
            self.make(commands=self.commands() + "% setMood | Ar mood\nSets it.\n"),
            (1, 'commands.mdoc: nothing is called "setMood"\n'),
        )

    def test_entry_without_text(self) -> None:
        bare = re.sub(r"(^% setSlew .*?\n).*?(?=^% )", r"\1", self.commands(), flags=re.MULTILINE | re.DOTALL)
        self.assertEqual(self.make(commands=bare), (1, 'commands.mdoc: the entry for "setSlew" is empty\n'))

    def test_two_entries_for_a_command(self) -> None:
        self.assertEqual(
            self.make(commands=self.commands() + "% help\nAgain.\n"), (1, 'commands.mdoc: two entries for "help"\n')
        )

    def test_status_without_entry(self) -> None:
        self.assertEqual(
            self.make(statuses="% command too long\nIs too long.\n"),
            (1, 'statuses.mdoc: no entry for "too few command args"\n'),
        )


if __name__ == "__main__":
    unittest.main()
