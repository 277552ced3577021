#!/usr/bin/env python3
"""Makes the manual, and the words that a prompt can complete, from commands.json.

What the table has and the hand-written files lack, or the other way about, is an error that stops the build.
"""
import argparse
import json
import re
import sys
from pathlib import Path
from typing import Any

Table = dict[str, Any]


class Mistake(Exception):
    """Says what is wrong in which file."""


def words(table: Table) -> str:
    """Words that are worth completing, one a line."""
    found = {word for row in table["commands"] for word in (row["name"], row["shortcut"]) if word[0].isalpha()}
    found.update(*table["keywords"].values())
    return "".join(f"{word}\n" for word in sorted(found))


def shown(text: str) -> str:
    """Manual source that shows the text as it stands, without blanks at its end."""
    text = text.rstrip(" ").replace("\\", "\\e").replace("-", "\\-")
    return "\\&" + text if text.startswith((".", "'")) else text


def shown_word(word: str) -> str:
    """The same for one word after a macro, where punctuation and quotes have meanings of their own."""
    return shown(word) if re.fullmatch(r"[\w-]*", word) else "\\&" + shown(word)


class Entries:
    """A file of hand-written entries: a line "% KEY" or "% KEY | REST", and manual source behind it."""

    def __init__(self, path: Path):
        self.path = path
        self.entries: dict[str, tuple[str, str]] = {}
        for entry in re.split(r"^% ", path.read_text(encoding="ascii"), flags=re.MULTILINE)[1:]:
            header, _, text = entry.partition("\n")
            key, _, rest = header.partition(" | ")
            if key in self.entries:
                raise Mistake(f'{path}: two entries for "{key}"')
            if not text:
                raise Mistake(f'{path}: the entry for "{key}" is empty')
            self.entries[key] = rest, text

    def take(self, keys: list[str]) -> list[tuple[str, str, str]]:
        """Gives (key, REST, text) for each of the keys, which must be all that there are."""
        for key in keys:
            if key not in self.entries:
                raise Mistake(f'{self.path}: no entry for "{key}"')
        for key in self.entries:
            if key not in keys:
                raise Mistake(f'{self.path}: nothing is called "{key}"')
        return [(key, *self.entries[key]) for key in keys]

    def take_if_any(self, key: str) -> str:
        """The text of an entry that need not be there; what is left in the end was nobody's."""
        return self.entries.pop(key, ("", ""))[1]

    def none_left(self) -> None:
        self.take([])


def word_bounds(row: Table) -> str:
    least, most = row["minArgs"], row["maxArgs"]
    return ("" if least == most else f"{least} to ") + ("1 word" if most == 1 else f"{most} words")


def help_texts(row: Table) -> str:
    """Indented lines of their own, long ones folded."""
    lines = [line for part in ("description", "example", "exampleNote") for line in row[part].splitlines()]
    return ".Bd -ragged -offset indent -compact\n" + ".br\n".join(shown(line) + "\n" for line in lines) + ".Ed\n"


def command_chapter(table: Table, prose: Entries) -> str:
    rows = {row["name"]: row for row in table["commands"]}
    text = ".Bl -tag -width Ds\n"
    for name, synopsis, explained in prose.take(list(rows)):
        row = rows[name]
        text += f".It Ic {shown_word(name)} {synopsis}".rstrip() + f"\nShortcut\n.Ic {shown_word(row['shortcut'])} ;\n"
        text += word_bounds(row) + ("; set command.\n" if row["isSetCmd"] else ".\n")
        text += f".Pp\n{explained}.Pp\n{help_texts(row)}"
    return text + ".El"


def status_chapter(table: Table, prose: Entries) -> str:
    messages = [status["message"] for status in table["statuses"] if status["message"]]
    text = ".Bl -diag\n"
    for message, _, explained in prose.take(messages):
        text += f".It {' '.join(map(shown_word, message.split()))}\n{explained}"
    return text + ".El"


def keyword_list(keywords: list[str]) -> str:
    """ "a, b or c" as macro lines; what stands behind it in the text goes on in the last one."""
    macros = [f".Cm {shown_word(keyword)}" for keyword in keywords]
    return " ,\n".join(macros[:-1]) + "\nor\n" + macros[-1]


def filled(template: Path, replacements: dict[str, str]) -> str:
    """The template with each "@NAME@" replaced, lists and chapters on a line of their own."""
    text = template.read_text(encoding="ascii")
    for name, value in replacements.items():
        if f"@{name}@" not in text:
            raise Mistake(f"{template}: @{name}@ is missing")
        text = text.replace(f"@{name}@", value)
    if unknown := re.search(r"@[A-Z_]+@", text):
        raise Mistake(f"{template}: unknown: {unknown.group()}")
    return text


def manual(table: Table, template: Path, command_prose: Path, status_prose: Path, given: list[str]) -> str:
    keywords, limits = table["keywords"], table["limits"]
    replacements = {
        "COMMANDS": command_chapter(table, Entries(command_prose)),
        "STATUSES": status_chapter(table, Entries(status_prose)),
        "RATES": keyword_list(keywords["rates"]),
        "FFE_MODES": keyword_list(keywords["ffeModes"]),
        "SLEW_RATES": keyword_list(keywords["slewRates"]),
        "DFE_MODES": keyword_list(keywords["dfeModes"]),
        "MAX_WORDS": str(limits["words"]),
        "MAX_PORTS": str(limits["ports"]),
        "MAX_CORES": str(limits["cores"]),
        "COMMAND_COUNT": str(len(table["commands"])),
        "VERSION": table["version"],
        **dict(pair.split("=", 1) for pair in given),
    }
    return filled(template, replacements)


def main() -> None:
    parser = argparse.ArgumentParser(description="Makes what is made from the command table.")
    parser.add_argument("table", type=Path, help="commands.json")
    made = parser.add_subparsers(dest="made", required=True)
    made.add_parser("words")
    page = made.add_parser("manual")
    page.add_argument("template", type=Path)
    page.add_argument("commands", type=Path, help="the entries of the commands")
    page.add_argument("statuses", type=Path, help="the entries of the status messages")
    page.add_argument("given", nargs="*", metavar="NAME=TEXT")
    arguments = parser.parse_args()

    table = json.loads(arguments.table.read_text(encoding="ascii"))
    try:
        if arguments.made == "words":
            sys.stdout.write(words(table))
        else:
            sys.stdout.write(manual(table, arguments.template, arguments.commands, arguments.statuses, arguments.given))
    except Mistake as mistake:
        sys.exit(f"command_texts: {mistake}")


if __name__ == "__main__":
    main()
