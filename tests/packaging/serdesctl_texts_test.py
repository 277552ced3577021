#!/usr/bin/env python3
"""serdesctl's manual and completion against the binary that they describe.

SERDESCTL is the binary, TEXTS the folder of what was made from its options, SOURCE the tree.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from typing import Any

TEXTS, SOURCE = Path(os.environ["TEXTS"]), Path(os.environ["SOURCE"])
MANUAL = (TEXTS / "serdesctl.1").read_text(encoding="ascii")
LIMIT_SECONDS = 60


def output(*command: str | Path, **how: Any) -> str:
    done: subprocess.CompletedProcess[str] = subprocess.run(
        command, text=True, capture_output=True, timeout=LIMIT_SECONDS, check=True, **how
    )
    return done.stdout


def help_of(*subcommand: str) -> str:
    return output(os.environ["SERDESCTL"], *subcommand, "--help")


def subcommands(*of: str) -> list[str]:
    _, _, listed = help_of(*of).partition("\nSubcommands:\n")
    return re.findall(r"^  (\w\S*)", listed.partition("\n\n")[0], re.MULTILINE)


def options(text: str) -> set[str]:
    return set(re.findall(r"^  (?:-\w,)?(--\S+)", text, re.MULTILINE))


def plain(text: str) -> str:
    return text.replace("\\&", "").replace("\\-", "-").replace("\\e", "\\")


class Manual(unittest.TestCase):
    def items(self, text: str) -> set[str]:
        lines = re.findall(r"^\.It Fl (.*)", text, re.MULTILINE)
        return {"-" + name for line in lines for name in re.findall(r"-[\w-]{2,}", plain(line))}

    def test_every_subcommand_and_option_is_described(self) -> None:
        common, _, rest = MANUAL.partition(".Sh SUBCOMMANDS\n")
        self.assertEqual(self.items(common), options(help_of()))
        chapters = re.split(r"^\.It Ic ", rest.partition(".Sh SCRIPTS\n")[0], flags=re.MULTILINE)[1:]
        names = [plain(re.match(r"(.*?)(?: Oo| Ar|\n)", chapter).group(1)) for chapter in chapters]
        self.assertEqual([name for name in names if " " not in name], subcommands())
        self.assertGreater(len(names), 4)
        for name, chapter in zip(names, chapters):
            with self.subTest(name):
                self.assertEqual(self.items(chapter), options(help_of(*name.split())) - {"--help"})

    def test_exit_statuses_are_those_of_the_help(self) -> None:
        _, _, chapter = MANUAL.partition(".Sh EXIT STATUS\n")
        told = re.findall(r"^\.It (\d+)\n(.*)\.$", chapter.partition(".Sh ")[0], re.MULTILINE)
        listed = re.findall(r"^  (\d+) +(.*)$", help_of(), re.MULTILINE)
        self.assertEqual([(number, plain(text)) for number, text in told], listed)
        self.assertGreater(len(told), 5)

    def test_every_variable_that_is_read_is_explained(self) -> None:
        sources = "".join(path.read_text(encoding="utf-8") for path in (SOURCE / "serdesctl").rglob("*.cc"))
        read = set(re.findall(r'environmentVariable\("(\w+)"\)', sources))
        self.assertGreater(len(read), 6)
        self.assertLessEqual(read, set(re.findall(r"[A-Z_]{4,}", " ".join(re.findall(r"^\.It Ev (.*)", MANUAL, re.M)))))

    def test_prose_without_its_subcommand_stops_the_build(self) -> None:
        with tempfile.NamedTemporaryFile("w", suffix=".mdoc") as prose:
            prose.write("% dance\nIt dances.\n")
            prose.flush()
            maker = SOURCE / "packaging/texts/option_texts.py"
            words: list[str | Path] = [
                TEXTS / "options.json",
                "manual",
                SOURCE / "packaging/manual/serdesctl.1.in",
                prose.name,
            ]
            done = subprocess.run([sys.executable, "-B", maker, *words], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r'^option_texts: .*: nothing is called "dance"\n$')


@unittest.skipUnless(shutil.which("bash"), "no bash here")
class Completion(unittest.TestCase):
    """What bash is told where the cursor stands at the end of the line."""

    def setUp(self) -> None:
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        (self.folder / "tune.serdes").touch()
        (self.folder / "lab.toml").touch()
        targets = self.folder / "config/serdesctl/targets.toml"
        targets.parent.mkdir(parents=True)
        targets.write_text('[rack7]\nssh = "switch7"\n[rack8]\nssh = "switch8"\n[rack8.environment]\nA = "b"\n')

    def completed(self, line: str) -> list[str]:
        script = f'. "{TEXTS}/serdesctl.bash"; COMP_LINE=$1 COMP_POINT=${{#1}}; _serdesctl; printf "%s\\n" "${{COMPREPLY[@]}}"'
        env = {"PATH": os.environ["PATH"], "HOME": str(self.folder), "XDG_CONFIG_HOME": str(self.folder / "config")}
        return output("bash", "-uc", script, "bash", line, cwd=self.folder, env=env).split()

    def test_subcommands(self) -> None:
        self.assertEqual(self.completed("serdesctl "), subcommands())
        self.assertEqual(self.completed("serdesctl -t sim hea"), ["health"])
        self.assertEqual(self.completed("serdesctl --timeout=3 --wait-lock 3 jou"), ["journal"])

    def test_options_are_those_of_the_subcommand_and_of_all(self) -> None:
        for subcommand in subcommands():
            with self.subTest(subcommand):
                shown = self.completed(f"serdesctl {subcommand} --")
                self.assertEqual(sorted(shown), sorted((options(help_of(subcommand)) | options(help_of()))))
        self.assertEqual(self.completed("serdesctl run --che"), ["--check"])

    def test_files(self) -> None:
        self.assertEqual(self.completed("serdesctl run tu"), ["tune.serdes"])
        self.assertEqual(self.completed("serdesctl run --check tune.serdes la"), ["lab.toml"])
        self.assertEqual(self.completed("serdesctl -t sim --state=l"), ["lab.toml"])
        self.assertEqual(self.completed("serdesctl -t sim:la"), ["lab.toml"])

    def test_targets(self) -> None:
        self.assertEqual(self.completed("serdesctl -t "), ["sim", "rack7", "rack8"])
        self.assertEqual(self.completed("serdesctl health --target=rack7"), ["rack7"])

    def test_commands_and_ports_of_the_tool(self) -> None:
        self.assertEqual(self.completed("serdesctl show showDFES"), ["showDFEStats"])
        self.assertEqual(self.completed("serdesctl show setF"), [])
        self.assertEqual(self.completed("serdesctl health 3 e"), ["exg"])

    def test_choices(self) -> None:
        choices = re.findall(r"^  (?:-\w,)?(--\S+) ([\w-]+(?:\|[\w-]+)+) ", help_of("save"), re.MULTILINE)
        self.assertTrue(choices)
        for option, words in choices:
            self.assertEqual(self.completed(f"serdesctl save {option} "), words.split("|"))

    def test_values_of_which_nothing_is_known(self) -> None:
        for line in ("serdesctl --timeout ", "serdesctl journal --since=", "serdesctl health --interval "):
            self.assertEqual(self.completed(line), [], line)


if __name__ == "__main__":
    unittest.main()
