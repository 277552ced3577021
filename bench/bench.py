#!/usr/bin/env python3
"""Measures the tool beside other programs that do the same work. Run by scripts/bench.

Contestants run in turns, A B C A B C ..., so that a busy machine is busy for all of them, and what they put out is
compared before anything is measured. The cost of a run is its user and system time; a contestant's cost is the least of
its runs, and the ratio of two that of their least costs. Beside it stands the median of the ratios of the single rounds:
where the two differ much, the machine was too busy.
"""
import array
import hashlib
import json
import os
import pathlib
import pty
import re
import signal
import statistics
import subprocess
import sys
import tempfile
from collections.abc import Iterable, Mapping, Sequence

BUILD = pathlib.Path(sys.argv[1])
TOOL = BUILD / "tool/serdes"
STATIC = BUILD / "serdes_static"
LAST_ROW = BUILD / "serdes_setFFE_last"
FLOOR = BUILD / "floor"
AUTOMATION = BUILD / "automation"  # serdesctl, the tool and the simulated switch, as installed
CTL_STATIC = BUILD / "automation-static/serdesctl"

PORTS, LINKS, REGISTERS = 24, 4, 32
DUMPS = 1303  # the first number of dumps with more than four million cells
LINES = 200_000
CTL_LINES = 10_000  # one by one at the prompt
PROMPT = b"serdes: "

missed: list[str] = []  # aims

Command = Sequence[str | os.PathLike[str]]


def environment(**more: str) -> dict[str, str]:
    """What every contestant gets: nothing of the caller's, whose size would be part of every start."""
    return {"PATH": os.environ["PATH"], "LC_ALL": "C", "LD_LIBRARY_PATH": str(BUILD / "platform"), **more}


def words_of(command: Command) -> list[str]:
    return [str(word) for word in command]


def output(*command: str | os.PathLike[str], **env: str) -> bytes:
    """What a command puts out. It may neither fail nor complain."""
    done = subprocess.run(command, env=environment(**env), stdin=subprocess.DEVNULL, capture_output=True, check=False)
    if done.returncode != 0 or done.stderr:
        sys.exit(f"{words_of(command)}: status {done.returncode}, {done.stderr.decode()}")
    return done.stdout


def agree(what: str, results: Mapping[str, object]) -> None:
    """Ends everything when the contestants did not do the same work."""
    for name, result in results.items():
        if result != next(iter(results.values())):
            sys.exit(f"{what}: {name} puts out something else")
    print(f"{what}: {', '.join(results)} put out the same", file=sys.stderr)


def cost(command: Command, env: Mapping[str, str], buffer: bytearray = bytearray(1 << 20)) -> float:
    """Seconds of user and system time of one run into a pipe, its child processes included."""
    reading, writing = os.pipe()
    actions = [(os.POSIX_SPAWN_DUP2, writing, 1), (os.POSIX_SPAWN_CLOSE, writing), (os.POSIX_SPAWN_CLOSE, reading)]
    pid = os.posix_spawnp(command[0], words_of(command), env, file_actions=actions)
    os.close(writing)
    while os.readv(reading, [buffer]):
        pass
    os.close(reading)
    _, status, usage = os.wait4(pid, 0)
    if status != 0:
        sys.exit(f"{words_of(command)}: status {status}")
    return float(usage.ru_utime + usage.ru_stime)


def compare(
    title: str,
    contestants: Mapping[str, Command],
    rounds: int,
    base: str,
    aims: Mapping[str, float],
    env: Mapping[str, str] | None = None,
) -> None:
    """Prints the contestants' costs, each beside that of `base`. `aims` are the greatest ratios wanted."""
    env = env or environment()
    costs: dict[str, list[float]] = {name: [] for name in contestants}
    for _ in range(rounds):
        for name, command in contestants.items():
            costs[name].append(cost(command, env))
    print(f"\n### {title}\n")
    print(f"| least of {rounds} rounds | ms | of {base} | median of rounds | aim |\n|---|---|---|---|---|")
    for name, runs in costs.items():
        ratio = min(runs) / min(costs[base])
        median = statistics.median(run / other for run, other in zip(runs, costs[base]))
        aim = verdict(f"{title}: {name}", ratio, aims.get(name))
        print(f"| {name} | {min(runs) * 1e3:.2f} | {ratio:.3f} | {median:.3f} | {aim} |")


def verdict(name: str, ratio: float, aim: float | None) -> str:
    if aim is None:
        return ""
    if ratio > aim:
        missed.append(name)
    return f"{aim}: {'met' if ratio <= aim else 'MISSED'}"


def register_rows(text: bytes) -> list[bytes]:
    """The rows of register tables without their labels."""
    return [line[20:] for line in text.splitlines() if line.startswith(b"Rx Register")]


def digest(lines: Iterable[bytes]) -> str:
    """A digest of lines of hexadecimal words, however they are spaced and broken."""
    total = hashlib.sha256()
    for line in lines:
        total.update(b"".join(line.split()))
    return total.hexdigest()


def xxd_words(line: bytes) -> bytes:
    """The words of a line of xxd, which shows bytes in the order of the file, as this processor reads them."""
    pairs = line[10:49].split()
    return b"".join(pair[2:] + pair[:2] for pair in pairs) if sys.byteorder == "little" else b"".join(pairs)


def dump(work: pathlib.Path) -> None:
    """A register dump beside dump programs, which find the tables' words in a file, row by row."""
    (work / "dump").write_text("showRx all\n" * DUMPS)
    (work / "once").write_text("showRx all\n")
    (work / "empty").write_text("")
    start = output(TOOL, work / "empty").removesuffix(b"\n\n")
    table = output(TOOL, work / "once").removeprefix(start).removesuffix(b"\n\n")
    # As the instant switch fills its registers, but in rows of one register of all links.
    cells = [
        (link * REGISTERS + register + 1) * 40503 & 0xFFFF
        for register in range(REGISTERS)
        for link in range(PORTS * LINKS)
    ]
    (work / "table").write_bytes(table)
    (work / "words").write_bytes(array.array("H", cells).tobytes() * DUMPS)

    serdes: Command = [TOOL, work / "dump"]
    static: Command = [STATIC, work / "dump"]
    od: Command = ["od", "-An", "-v", "-tx2", f"-w{2 * PORTS * LINKS}", work / "words"]
    hexdump: Command = ["hexdump", "-v", work / "words"]
    xxd: Command = ["xxd", work / "words"]
    floor: Command = [FLOOR, work / "table", str(DUMPS)]
    agree(
        "dump",
        {
            "od": digest(output(*od).splitlines()),
            "serdes": digest(register_rows(output(*serdes))),
            "static serdes": digest(register_rows(output(*static))),
            "hexdump": digest(line[7:] for line in output(*hexdump).splitlines()),
            "xxd": digest(map(xxd_words, output(*xxd).splitlines())),
            "memcpy and write": digest(register_rows(output(*floor))),
        },
    )
    compare(
        f"Register dump: {DUMPS * len(cells)} cells by {DUMPS} `showRx all`",
        {
            "serdes": serdes,
            "static serdes": static,
            "od": od,
            "hexdump": hexdump,
            "xxd": xxd,
            "memcpy and write": floor,
        },
        15,
        "od",
        {"serdes": 0.10},
    )


def commands(work: pathlib.Path) -> None:
    """Command lines beside calls of a shell function and of a Tcl procedure with the same words."""
    lines = "".join(
        f"setFFE FFE{2 + i % 3} {i % 256} {-(i % 60)} {i % 64} {-(i % 32)} {i % 7} gl\n" for i in range(LINES)
    )
    (work / "lines").write_text(lines)
    for name, function in {
        "saying.sh": 'setFFE() { echo "port 0: $1 $2 $3 $4 $5 $6"; }',
        "answering.sh": r"setFFE() { echo '\n'; }",
        "empty.sh": "setFFE() { :; }",
        "saying.tcl": 'proc setFFE {mode k c0 c1 c2 c3 ports} { puts "port 0: $mode $k $c0 $c1 $c2 $c3" }',
        "empty.tcl": "proc setFFE {mode k c0 c1 c2 c3 ports} {}",
    }.items():
        (work / name).write_text(function + "\n" + lines)

    def calls(*command: str | os.PathLike[str]) -> list[bytes]:
        text = output(*command, SERDES_BENCH_PORTS="1", SERDES_BENCH_REPORTS="1")
        return [line for line in text.splitlines() if line.startswith(b"port ")]

    agree(
        "commands",
        {
            "serdes": calls(TOOL, work / "lines"),
            "serdes, last row": calls(LAST_ROW, work / "lines"),
            "static serdes": calls(STATIC, work / "lines"),
            "dash": calls("dash", work / "saying.sh"),
            "tclsh": calls("tclsh", work / "saying.tcl"),
        },
    )
    compare(
        f"Commands: {LINES} lines of `setFFE` for all ports",
        {
            "serdes": [TOOL, work / "lines"],
            "serdes, last row": [LAST_ROW, work / "lines"],
            "static serdes": [STATIC, work / "lines"],
            "dash": ["dash", work / "empty.sh"],
            "dash, answering": ["dash", work / "answering.sh"],
            "tclsh": ["tclsh", work / "empty.tcl"],
        },
        15,
        "dash",
        {"serdes": 0.50, "serdes, last row": 0.50},
    )


def start(work: pathlib.Path) -> None:
    """Start to exit."""
    (work / "empty").write_text("")
    agree("start", {"serdes": output(TOOL, work / "empty"), "static serdes": output(STATIC, work / "empty")})
    compare(
        "Start to exit, with an empty script",
        {
            "static serdes": [STATIC, work / "empty"],
            "serdes": [TOOL, work / "empty"],
            "busybox true": ["busybox", "true"],
            "dash": ["dash", work / "empty"],
        },
        1000,
        "busybox true",
        {"static serdes": 1.5},
    )


def memory_at_prompt(command: Command) -> tuple[int, int]:
    """Kilobytes at the prompt on a terminal: the greatest resident set so far, and the proportional one now."""
    pid, terminal = pty.fork()
    if pid == 0:
        try:
            os.execvpe(command[0], words_of(command), environment(PS1=PROMPT.decode()))
        finally:
            os._exit(127)
    seen = b""
    while PROMPT not in seen:
        seen += os.read(terminal, 65536)
    # It waits for a line when it sleeps.
    while pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] != "S":
        pass
    peak = re.search(r"VmHWM:\s+(\d+)", pathlib.Path(f"/proc/{pid}/status").read_text())
    proportional = re.search(r"Pss:\s+(\d+)", pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text())
    os.kill(pid, signal.SIGKILL)
    os.waitpid(pid, 0)
    os.close(terminal)
    return int(peak[1]), int(proportional[1])


def memory(_work: pathlib.Path) -> None:
    """Memory at the prompt."""
    contestants: dict[str, Command] = {
        "serdes": [TOOL],
        "static serdes": [STATIC],
        "busybox sh": ["busybox", "sh"],
        "dash": ["dash", "-i"],
    }
    rounds = 15
    measured: dict[str, list[tuple[int, int]]] = {name: [] for name in contestants}
    for _ in range(rounds):
        for name, command in contestants.items():
            measured[name].append(memory_at_prompt(command))
    medians = {name: [statistics.median(column) for column in zip(*runs)] for name, runs in measured.items()}
    print("\n### Memory at the prompt\n")
    print(f"| median of {rounds} rounds | peak resident KiB | of busybox sh | proportional KiB | of busybox sh | aim |")
    print("|---|---|---|---|---|---|")
    for name, sizes in medians.items():
        ratios = [size / base for size, base in zip(sizes, medians["busybox sh"])]
        # A static binary shares no pages with other processes, so that its proportional set is all of it.
        aim = verdict("Memory at the prompt", max(ratios), 1.0 if name == "serdes" else None)
        print(f"| {name} | {sizes[0]:.0f} | {ratios[0]:.2f} | {sizes[1]:.0f} | {ratios[1]:.2f} | {aim} |")


def instructions(script: pathlib.Path, **env: str) -> int:
    """Instructions of one run of the tool: the same ones every time, however busy the machine is."""
    done = subprocess.run(
        ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", TOOL, script],
        env=environment(**env),
        stdin=subprocess.DEVNULL,
        capture_output=True,
        check=True,
    )
    return int(re.search(rb"Collected : (\d+)", done.stderr)[1])


def print_growth(title: str, unit: str, costs: Mapping[int, float]) -> None:
    """Prints costs by size, and how far each lies from the straight line through all of them."""
    slope, intercept = statistics.linear_regression(list(costs), list(costs.values()))
    print(f"\n### {title}\n\n| {unit} | instructions | off the straight line |\n|---|---|---|")
    for size, count in costs.items():
        line = slope * size + intercept
        print(f"| {size} | {count:.0f} | {(count - line) / line:+.2%} |")
    print(f"\nThe line: {intercept:.0f} and {slope:.0f} for each.")


def growth(work: pathlib.Path) -> None:
    """How cost grows with ports, links and lines."""
    dumps = 20
    (work / "empty").write_text("")
    (work / "dumps").write_text("showRx all\n" * dumps)

    def per_dump(**env: str) -> float:
        return (instructions(work / "dumps", **env) - instructions(work / "empty", **env)) / dumps

    print_growth(
        f"A dump of ports with {LINKS} links, {REGISTERS} registers each",
        "ports",
        {ports: per_dump(SERDES_BENCH_PORTS=str(ports)) for ports in (1, 2, 4, 8, 12, 16, 20, 24)},
    )
    print_growth(
        f"A dump of {PORTS} ports, {REGISTERS} registers a link",
        "links per port",
        {links: per_dump(SERDES_BENCH_LINKS=str(links)) for links in (1, 2, 3, 4)},
    )

    def lines(count: int) -> int:
        (work / "lines").write_text("setFFE FFE3 115 -4 55 -25 0 gl\n" * count)
        return instructions(work / "lines")

    print_growth(
        "A script of `setFFE` lines for all ports, with start and exit",
        "lines",
        {count: lines(count) for count in (1000, 2000, 4000, 8000, 16000, 32000)},
    )


def automation(work: pathlib.Path) -> None:
    """serdesctl beside the tool alone, on the simulated switch."""
    tool, ctl = AUTOMATION / "serdes", AUTOMATION / "serdesctl"
    # The libraries are found from the binaries; the journal is written where a user's would be.
    env = environment(LD_LIBRARY_PATH="", SERDESCTL_JOURNAL=str(work / "journal"), HOME=str(work))

    def printed(*command: str | os.PathLike[str]) -> bytes:
        return output(*command, **env)

    def answers(script: pathlib.Path) -> bytes:
        """What the tool alone answers, without its start and its end."""
        return printed(tool, script).partition(b"current asicNum:")[2].split(b"\n", 2)[2].removesuffix(b"\n\n")

    show = "showTxParams all"
    (work / "show").write_text(show + "\n")
    table = answers(work / "show")
    records = json.loads(printed(ctl, "-t", "sim", "show", "--json", *show.split()))["records"]
    columns = next(line for line in table.splitlines() if line.startswith(b"link num"))
    agree("show", {"links of the table": len(columns.split()) - 2, "links of the records": len(records)})
    compare(
        f"A table of {len({record['port'] for record in records})} ports: `{show}`",
        {"serdes": [tool, work / "show"], "serdesctl show --json": [ctl, "-t", "sim", "show", "--json", *show.split()]},
        100,
        "serdes",
        {"serdesctl show --json": 2.0},
        env,
    )

    (work / "set").write_text(
        "".join(f"setFFE FFE{2 + i % 3} 115 0 {i % 40} {-(i % 20)} 0 {i % 16}\n" for i in range(CTL_LINES))
    )
    (work / "read").write_text("".join(f"readRx {i % 16} 0 {i % 8}\n" for i in range(CTL_LINES)))
    aims = {"set": {"serdesctl run": 2.5}}
    for name in ("set", "read"):
        run: Command = [ctl, "-t", "sim", "run", work / name]
        agree(f"run, {name}", {"serdes": answers(work / name), "serdesctl run": printed(*run)})
        first = (work / name).read_text().split()[0]
        compare(
            f"A script of {CTL_LINES} lines of `{first}`",
            {"serdes": [tool, work / name], "serdesctl run": run},
            5,
            "serdes",
            aims.get(name, {}),
            env,
        )

    agree("version", {"serdesctl": printed(ctl, "--version"), "static serdesctl": printed(CTL_STATIC, "--version")})
    compare(
        "Start to exit of serdesctl, `--version`",
        {
            "static serdesctl": [CTL_STATIC, "--version"],
            "serdesctl": [ctl, "--version"],
            "busybox true": ["busybox", "true"],
        },
        300,
        "busybox true",
        {"static serdesctl": 3.0},
        env,
    )


BENCHMARKS = {
    "dump": dump,
    "commands": commands,
    "start": start,
    "memory": memory,
    "growth": growth,
    "automation": automation,
}

if __name__ == "__main__":
    names = sys.argv[2:] or BENCHMARKS
    if unknown := [name for name in names if name not in BENCHMARKS]:
        sys.exit(f"no benchmark is called {unknown[0]}; there are {', '.join(BENCHMARKS)}")
    with tempfile.TemporaryDirectory() as folder:
        for name in names:
            BENCHMARKS[name](pathlib.Path(folder))
            sys.stdout.flush()
    if missed:
        sys.exit("Aims missed:\n  " + "\n  ".join(missed))
