#!/usr/bin/env python3
"""The Debian packages, installed, run and removed in a root of their own.

ROOT is the folder of that root, with rlwrap and what the packages depend on; PACKAGES is the folder of the packages, those
for ARCHITECTURE among them.
Runs as root, where mounts and processes are let go of afterwards: scripts/test-package sees to that.
"""
import gzip
import json
import os
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from serdes_runs import LIMIT_SECONDS, Terminal

ROOT = Path(os.environ["ROOT"])
PACKAGES = Path(os.environ["PACKAGES"])
ENVIRONMENT = {
    "PATH": "/usr/sbin:/usr/bin:/sbin:/bin",
    "LC_ALL": "C",
    "HOME": "/root",
    "SERDES_SIMULATOR_CLOCK": "virtual",
}
LIBRARIES = ("libasicApi.so", "libswbApi.so", "libswServerApi.so")
PROMPT = "serdes:"
SHELL = ("/bin/bash", "--noprofile", "--norc", "-i")
START = "switchHwConfig.NumSlots:"
IMAGES = ROOT / "norvex/conf/images"


def run(*arguments, stdin="", **more):
    """Runs a program in the root; `more` is set for it alone."""
    variables = [f"{name}={value}" for name, value in more.items()]
    return subprocess.run(
        ["chroot", ROOT, "env", *variables, *arguments],
        input=stdin,
        text=True,
        capture_output=True,
        env=ENVIRONMENT,
        timeout=LIMIT_SECONDS,
        check=False,
    )


def at_terminal(*command, folder="/", **more):
    """A program of the root, at a terminal."""
    return Terminal(program=command, env=ENVIRONMENT | more, root=ROOT, folder=folder)


def check(*arguments, **more):
    done = run(*arguments, **more)
    if done.returncode != 0:
        raise AssertionError(f"{arguments}: {done.stdout}{done.stderr}")
    return done.stdout


def deb(name):
    (file,) = PACKAGES.glob(f"{name}_[0-9]*_{os.environ['ARCHITECTURE']}.deb")
    return file


def install(name):
    shutil.copy(deb(name), ROOT / "tmp/package.deb")
    check("dpkg", "--install", "/tmp/package.deb")


def remove(name):
    check("dpkg", "--purge", name)


def simulator_folder():
    (folder,) = ROOT.glob("usr/lib/*/serdes-simulator")
    return folder


def loaded_libraries(**more):
    """Where the dynamic loader finds each of the platform libraries."""
    lines = check("serdes", LD_TRACE_LOADED_OBJECTS="1", **more).splitlines()
    found = {line.split()[0]: line.split()[2] for line in lines if "=> /" in line}
    return [os.path.normpath(found[name]) for name in LIBRARIES]


class ToolAlone(unittest.TestCase):
    """The package of the tool where the simulated switch is not installed."""

    @classmethod
    def setUpClass(cls):
        install("serdes")
        subprocess.run(["dpkg-deb", "--extract", deb("serdes-simulator"), ROOT / "tmp/platform"], check=True)
        (cls.libraries,) = ROOT.glob("tmp/platform/usr/lib/*/serdes-simulator")

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(ROOT / "tmp/platform")
        remove("serdes")

    def test_does_not_depend_on_the_simulated_switch(self):
        depends = subprocess.run(
            ["dpkg-deb", "--field", deb("serdes"), "Depends", "Recommends"], check=True, text=True, capture_output=True
        ).stdout
        self.assertNotIn("simulator", depends)

    def test_without_a_platform_the_loader_says_what_is_missing(self):
        done = run("serdes")
        self.assertEqual(done.returncode, 127)
        self.assertRegex(done.stderr, "error while loading shared libraries: lib.*Api.so")

    def test_a_platform_that_the_environment_names_is_used(self):
        folder = "/" + str(self.libraries.relative_to(ROOT))
        self.assertTrue(check("serdes", LD_LIBRARY_PATH=folder).startswith(START))

    def test_a_platform_in_the_system_library_directories_is_used(self):
        system = ROOT / "usr/local/lib"
        for name in LIBRARIES:
            shutil.copy(self.libraries / name, system)
        try:
            check("ldconfig")
            self.assertTrue(check("serdes").startswith(START))
        finally:
            for name in LIBRARIES:
                (system / name).unlink()
            check("ldconfig")


class Installed(unittest.TestCase):
    """A test of both packages together."""

    @classmethod
    def setUpClass(cls):
        install("serdes")
        install("serdes-simulator")
        (ROOT / "root/lab").mkdir()

    @classmethod
    def tearDownClass(cls):
        for name in ("lab", ".serdes_history"):
            shutil.rmtree(ROOT / "root" / name, ignore_errors=True)
            (ROOT / "root" / name).unlink(missing_ok=True)
        remove("serdes-simulator")
        remove("serdes")


class WithSimulator(Installed):
    def test_files_are_in_place(self):
        tool = check("dpkg", "--listfiles", "serdes").splitlines()
        simulator = check("dpkg", "--listfiles", "serdes-simulator").splitlines()
        for path in (
            "/usr/bin/serdes",
            "/usr/bin/serdes-prompt",
            "/usr/share/man/man8/serdes.8.gz",
            "/usr/share/man/man8/serdes-prompt.8.gz",
            "/usr/share/serdes/words",
            "/usr/share/bash-completion/completions/serdes",
        ):
            self.assertIn(path, tool)
        self.assertIn("/usr/share/man/man7/serdes-simulator.7.gz", simulator)
        self.assertIn("/usr/share/serdes/switches/default.toml", simulator)
        for page in ("simulated-switch.md", "switch-descriptions.md", "link-model.md", "tutorial.md"):
            self.assertIn(f"/usr/share/doc/serdes-simulator/{page}", simulator)
        self.assertTrue([path for path in tool if path.startswith("/usr/share/serdes/examples/")])
        self.assertTrue(set(LIBRARIES) <= {os.path.basename(path) for path in simulator})
        self.assertFalse([path for path in tool if path.endswith(".so")])

    def test_the_manuals_name_the_installed_paths(self):
        with gzip.open(ROOT / "usr/share/man/man8/serdes.8.gz", "rt", encoding="ascii") as file:
            manual = file.read()
        self.assertIn("\n.It Pa /usr/share/serdes/words\n", manual)
        with gzip.open(ROOT / "usr/share/man/man7/serdes-simulator.7.gz", "rt", encoding="ascii") as file:
            self.assertIn(f"\n.It Pa /{simulator_folder().relative_to(ROOT)}/\n", file.read())

    def test_every_example_script_runs(self):
        for script in sorted((ROOT / "usr/share/serdes/examples").iterdir()):
            with self.subTest(script=script.name):
                done = run("serdes", "/" + str(script.relative_to(ROOT)))
                self.assertEqual((done.returncode, done.stderr), (0, ""))
                self.assertTrue(done.stdout.startswith(START))
                self.assertNotRegex(done.stdout, "(?m)^(command|too|unknown|invalid|error) |serdes err")

    def test_every_switch_description_can_be_used(self):
        for description in sorted((ROOT / "usr/share/serdes/switches").iterdir()):
            with self.subTest(description=description.name):
                done = run("serdes", "/dev/null", SERDES_SIMULATOR_SWITCH="/" + str(description.relative_to(ROOT)))
                closed = 255 if description.name == "faulty.toml" else 0  # closing is one of its faults
                self.assertEqual((done.returncode, done.stderr), (closed, ""))
                self.assertTrue(done.stdout.startswith(START))

    def test_the_switch_can_be_kept_from_run_to_run(self):
        kept = {"SERDES_SIMULATOR_STATE": "/root/lab/state"}
        check("serdes", "/dev/stdin", stdin="writePLL 1 7 0x1234\n", **kept)
        self.assertIn("= 0x1234 \n", check("serdes", "/dev/stdin", stdin="readPLL 1 7\n", **kept))
        self.assertNotIn("= 0x1234 \n", check("serdes", "/dev/stdin", stdin="readPLL 1 7\n"))

    def test_a_script_is_found_in_the_script_directory(self):
        IMAGES.mkdir(parents=True)
        try:
            (IMAGES / "look.serdes").write_text("readPLL 1 7\n", encoding="ascii")
            done = run("serdes", "look.serdes", "no-such.serdes")
        finally:
            shutil.rmtree(ROOT / "norvex")
        self.assertEqual(done.returncode, 0)
        self.assertIn("\nCore ID 1 at PLL address 0x07= 0x", done.stdout)
        self.assertEqual(done.stderr, "Error openning file: No such file or directory\n")

    def test_commands_from_another_program_run_without_prompts(self):
        printed = check("serdes", "/dev/stdin", stdin="showRate 4\nbogus\n")
        self.assertNotIn("serdes:", printed)
        self.assertTrue(printed.endswith("unknown command\n\n\n\n"))

    def test_the_simulated_switch_is_found_from_the_binary(self):
        self.assertEqual(loaded_libraries(), [f"/{simulator_folder().relative_to(ROOT)}/{name}" for name in LIBRARIES])

    def test_the_environment_goes_before_the_simulated_switch(self):
        shutil.copytree(simulator_folder(), ROOT / "root/lab/platform")
        self.assertEqual(
            loaded_libraries(LD_LIBRARY_PATH="/root/lab/platform"), [f"/root/lab/platform/{name}" for name in LIBRARIES]
        )


class Prompt(Installed):
    COMMAND = "/usr/bin/serdes-prompt"

    def wait_for_prompt(self, terminal, number=1):
        """Waits for the prompt to stand at the end, for the time of that number."""

        def stands(text):
            prompts = [line for line in text.splitlines() if line.startswith(PROMPT)]
            return len(prompts) == number and text.endswith("\n" + PROMPT)

        return terminal.wait_until(stands, f"prompt {number}")

    def session(self, command):
        """What a session shows: a table, a complaint, an empty line, help, a loop that is stopped, the end of input."""
        with at_terminal(command) as terminal:
            self.wait_for_prompt(terminal)
            for number, line in enumerate(("showRate 4", "bogus", "", "setFFE ?"), start=2):
                terminal.type(line + "\r")
                self.wait_for_prompt(terminal, number)
            terminal.type("loop readRx 4 0 3\r")
            terminal.wait_for("That is 2 passes. To stop looping, enter <cr>.\n*")
            terminal.type("\r")
            self.wait_for_prompt(terminal, 6)
            terminal.type("\x04")
            status = terminal.exit_status()
            return status, terminal.text()

    def test_prompt_and_loop_are_as_without_it(self):
        status, shown = self.session(self.COMMAND)
        plain_status, plain = self.session("/usr/bin/serdes")
        self.assertEqual(status, plain_status)
        self.assertEqual(shown, plain)
        self.assertIn("\nunknown command\n", shown)
        self.assertEqual(shown.count("passes. To stop looping"), 2)

    def test_tab_completes_command_words_and_keywords(self):
        with at_terminal(self.COMMAND) as terminal:
            self.wait_for_prompt(terminal)
            terminal.type("CLEARe\t")
            terminal.wait_for(f"{PROMPT} clearErrors")
            terminal.type("EX\tg\r")
            self.assertTrue(self.wait_for_prompt(terminal, 2).endswith(f"{PROMPT} clearErrors exg\n\n\n{PROMPT}"))

    def test_tab_shows_what_there_is_to_choose_from(self):
        with at_terminal(self.COMMAND) as terminal:
            self.wait_for_prompt(terminal)
            terminal.type("showd\t\t\t")
            terminal.wait_for(f"\nshowDFE +showDFEStats *\n{PROMPT} showDFE")

    def test_lines_of_an_earlier_session_can_be_called_back(self):
        with at_terminal(self.COMMAND) as terminal:
            self.wait_for_prompt(terminal)
            terminal.type("readPLL 1 7\r")
            self.assertIn("\nCore ID 1 at PLL address 0x07= 0x", self.wait_for_prompt(terminal, 2))
            terminal.type("exit\r")
            self.assertEqual(terminal.exit_status(), 0)
        with at_terminal(self.COMMAND) as terminal:
            self.wait_for_prompt(terminal)
            terminal.type("\x1b[A\x1b[A")
            terminal.wait_for(f"{PROMPT} readPLL 1 7")

    def test_a_platform_that_is_missing_is_reported_and_ends_it(self):
        shutil.move(simulator_folder(), ROOT / "root/lab/moved")
        try:
            with at_terminal(self.COMMAND) as terminal:
                self.assertEqual(terminal.exit_status(), 127)
                self.assertIn("error while loading shared libraries", terminal.text())
        finally:
            (folder,) = ROOT.glob("usr/lib/*-linux-gnu*")
            shutil.move(ROOT / "root/lab/moved", folder / "serdes-simulator")

    def test_without_a_terminal_the_tool_runs_alone(self):
        done = run("serdes-prompt", stdin="bogus\n")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(done.stdout, check("serdes", stdin="bogus\n"))

    def test_without_the_line_editor_the_tool_runs_alone_and_that_is_said(self):
        editor = ROOT / "usr/bin/rlwrap"
        editor.rename(ROOT / "root/lab/rlwrap")
        try:
            done = run("serdes-prompt", "/dev/null")
        finally:
            (ROOT / "root/lab/rlwrap").rename(editor)
        self.assertEqual(done.stderr, "serdes-prompt: rlwrap is not installed: lines cannot be edited\n")
        self.assertTrue(done.stdout.startswith(START))
        self.assertEqual(done.returncode, 0)


class Completion(Installed):
    """Script names, completed by a shell that is typed into."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        work = ROOT / "root/lab"
        (IMAGES / "golden").mkdir(parents=True)
        for file in (
            work / "tune.serdes",
            work / "both.serdes",
            work / "with blank.serdes",
            IMAGES / "factory.serdes",
            IMAGES / "both.serdes",
            IMAGES / "golden/lab.serdes",
        ):
            file.write_text("exit\n", encoding="ascii")

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(ROOT / "norvex")
        super().tearDownClass()

    def completed(self, typed, pattern):
        """Types a line with tabs into a shell; the line must come to match the pattern and nothing more."""
        with at_terminal(*SHELL, folder="/root/lab", HISTFILE="") as terminal:
            terminal.type("PS1='%'; . /usr/share/bash-completion/completions/serdes\r")
            terminal.wait_for("\n%")
            # What follows the tab shows where it left the line.
            terminal.type(typed + "|")
            return terminal.wait_for(pattern)

    def test_a_file_as_named(self):
        self.completed("serdes tu\t", r"\n%serdes tune.serdes \|")

    def test_a_file_of_the_script_directory(self):
        self.completed("serdes fa\t", r"\n%serdes factory.serdes \|")

    def test_a_folder_of_the_script_directory_and_a_file_in_it(self):
        self.completed("serdes go\t", r"\n%serdes golden/\|")
        self.completed("serdes golden/\t", r"\n%serdes golden/lab.serdes \|")

    def test_a_name_in_both_places_is_offered_once(self):
        self.completed("serdes b\t", r"\n%serdes both.serdes \|")

    def test_a_path_from_the_root_is_taken_as_it_is(self):
        self.completed("serdes /root/lab/tu\t", r"\n%serdes /root/lab/tune.serdes \|")
        self.completed("serdes /fa\t", r"\n%serdes /fa\|")

    def test_a_name_with_a_blank(self):
        self.completed("serdes wi\t", r"\n%serdes with\\ blank.serdes \|")
        self.completed("serdes with\\ b\t", r"\n%serdes with\\ blank.serdes \|")

    def test_the_second_script_too(self):
        self.completed("serdes tune.serdes fa\t", r"\n%serdes tune.serdes factory.serdes \|")

    def test_all_that_there_is(self):
        self.completed(
            "serdes \t\t", r"\nboth.serdes +factory.serdes +golden/ +tune.serdes +with blank.serdes *\n%serdes \|"
        )

    def test_the_prompt_with_line_editing_completes_them_too(self):
        with at_terminal(*SHELL, folder="/root/lab", HISTFILE="") as terminal:
            terminal.type("PS1='%'; . /usr/share/bash-completion/completions/serdes-prompt\r")
            terminal.wait_for("\n%")
            terminal.type("serdes-prompt fa\t|")
            terminal.wait_for(r"\n%serdes-prompt factory.serdes \|")


class Serdesctl(Installed):
    """The companion program, as somebody who automates uses it."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        install("serdesctl")

    @classmethod
    def tearDownClass(cls):
        remove("serdesctl")
        super().tearDownClass()

    def ctl(self, *words, stdin=""):
        done = run("serdesctl", *words, stdin=stdin)
        return done.returncode, done.stdout, done.stderr

    def test_files_are_in_place(self):
        files = check("dpkg", "--listfiles", "serdesctl").splitlines()
        for path in (
            "bin/serdesctl",
            "share/man/man1/serdesctl.1.gz",
            "share/bash-completion/completions/serdesctl",
            "share/serdesctl/schemas/health.json",
            "share/serdesctl/jc/serdes.py",
            "share/serdesctl/examples/targets.toml",
            "share/doc/serdesctl/automation.md",
            "share/doc/serdesctl/changing-settings.md",
            "share/doc/serdesctl/records.md",
        ):
            self.assertIn(f"/usr/{path}", files)

    def test_health_of_every_switch(self):
        for switch, (expected, ports) in {"default": (1, 35), "awkward": (1, 20), "faulty": (0, 11)}.items():
            with self.subTest(switch):
                status, out, err = self.ctl("-t", f"sim:/usr/share/serdes/switches/{switch}.toml", "health", "--json")
                self.assertEqual(status, expected, err)
                self.assertEqual(len(json.loads(out)["records"]), ports)

    def test_show_gives_records(self):
        status, out, err = self.ctl("-t", "sim", "show", "showSlew", "0-3")
        self.assertEqual((status, err), (0, ""))
        answer = json.loads(out)
        self.assertEqual((answer["kind"], [record["port"] for record in answer["records"]]), ("slew", [0, 1, 2, 3]))

    def test_the_example_is_checked_run_and_in_the_journal(self):
        example = "/usr/share/serdesctl/examples/check-and-tune.serdes"
        self.assertEqual(self.ctl("run", "--check", "--offline", example), (0, "", ""))
        status, out, err = self.ctl("-t", "sim", "run", "--json", example)
        self.assertEqual((status, err), (0, ""))
        statuses = [json.loads(line)["status"] for line in out.splitlines()]
        self.assertEqual(statuses, [0, 6, 0, 0, 0])
        status, out, err = self.ctl("journal", "-t", "sim", "--json")
        self.assertEqual((status, err), (0, ""))
        entries = [json.loads(line) for line in out.splitlines()]
        self.assertEqual([entry["command"].split()[0] for entry in entries[-2:]], ["setTxParams", "clearErrors"])
        self.assertTrue((ROOT / "var/lib/serdesctl/journal.jsonl").is_file())

    def test_a_day_with_a_switch(self):
        words = ("-t", "sim", "--state", "/root/lab/day.state")
        save, lab, weak = (f"/root/lab/{name}" for name in ("save.json", "lab.toml", "weak.toml"))
        self.assertEqual(self.ctl(*words, "save", "-o", save), (0, "", ""))
        self.assertEqual(self.ctl(*words, "save", "--as-settings", "-o", lab), (0, "", ""))
        self.assertEqual(self.ctl(*words, "run", "-", stdin="setRxParams NONE 6 0 0x4e 0\n")[0], 0)
        self.assertEqual(self.ctl(*words, "plan", "--script", lab), (1, "setRxParams DFE3 6 4 78 0\n", ""))
        status, out, err = self.ctl(*words, "apply", "--yes", "--guard", "1", lab)
        self.assertEqual((status, out.count("verified")), (0, 1), err)
        self.assertEqual(self.ctl(*words, "diff", save), (0, "", ""))
        (ROOT / weak[1:]).write_text("[[settings]]\nports = 4\ntransmit = { k = 20 }\n", encoding="ascii")
        status, out, err = self.ctl(*words, "rehearse", weak)
        self.assertEqual((status, out.count("\nworse: ASIC 0 port 4: good -> ")), (1, 1), out + err)
        status, out, err = self.ctl(*words, "apply", "--yes", "--guard", "1", weak)
        self.assertEqual((status, err.count("rolled back, the switch is as before\n")), (1, 1), err)
        self.assertEqual(self.ctl(*words, "diff", save), (0, "", ""))
        self.assertEqual(self.ctl(*words, "undo", "--yes")[0], 0)
        self.assertEqual(self.ctl(*words, "plan", "--script", lab), (1, "setRxParams DFE3 6 4 78 0\n", ""))

    def test_what_is_wrong_is_said_in_a_line(self):
        self.assertEqual(self.ctl("-t", "sim", "run", "-", stdin="bogus\n"), (2, "", "-:1: unknown command 'bogus'\n"))
        status, out, err = self.ctl("-t", "sim", "run", "-", stdin="writeRx 0 0 99 1\n")
        self.assertEqual((status, err), (1, "-:1: writeRx 0 0 99 1: error during command execution\n"))
        status, out, err = self.ctl("-t", "rack7", "health")
        self.assertEqual((status, err.count("\n")), (2, 1))

    def test_without_the_tool_it_says_so(self):
        tool = ROOT / "usr/bin/serdes"
        tool.rename(ROOT / "root/lab/serdes")
        try:
            status, out, err = self.ctl("show", "showRate", "0")
        finally:
            (ROOT / "root/lab/serdes").rename(tool)
        self.assertEqual((status, out, err), (3, "", "serdesctl: cannot run serdes: not found in PATH\n"))

    def completed(self, typed, pattern):
        with at_terminal(*SHELL, folder="/usr/share/serdes", HISTFILE="") as terminal:
            terminal.type("PS1='%'; . /usr/share/bash-completion/completions/serdesctl\r")
            terminal.wait_for("\n%")
            terminal.type(typed + "|")
            terminal.wait_for(pattern)

    def test_completion(self):
        self.completed("serdesctl hea\t", r"\n%serdesctl health \|")
        self.completed("serdesctl run --ch\t", r"\n%serdesctl run --check \|")
        self.completed("serdesctl run exa\ttu\t", r"\n%serdesctl run examples/tune.serdes \|")
        self.completed("serdesctl -t sim:sw\taw\t", r"\n%serdesctl -t sim:switches/awkward.toml \|")
        self.completed("serdesctl --state=com\t", r"\n%serdesctl --state=commands.json \|")


class Removal(unittest.TestCase):
    def paths(self):
        """All paths of the root but what package tools keep for themselves."""
        ignored = {"dev", "proc", "sys", "tmp", "var"}
        return {path for top in ROOT.iterdir() if top.name not in ignored for path in [top, *top.rglob("*")]}

    def test_nothing_stays_behind(self):
        before = self.paths()
        for name in ("serdes", "serdes-simulator", "serdesctl"):
            install(name)
        self.assertGreater(len(self.paths()), len(before) + 10)
        check("serdes", "/dev/null")
        check("serdesctl", "-t", "sim", "run", "-", stdin="clearErrors 0\n")
        for name in ("serdesctl", "serdes", "serdes-simulator"):
            remove(name)
        self.assertEqual(self.paths() ^ before, set())
        self.assertFalse((ROOT / "var/lib/serdesctl").exists())

    def test_either_can_be_removed_alone(self):
        for name in ("serdes", "serdes-simulator"):
            install(name)
        remove("serdes-simulator")
        self.assertEqual(run("serdes").returncode, 127)
        remove("serdes")


del Installed  # its tests are those of the classes that build on it

if __name__ == "__main__":
    unittest.main()
