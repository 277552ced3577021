#!/usr/bin/env python3
"""Makes serdesctl's manual and completion from the JSON that options_json prints."""
import argparse
import json
import sys
from collections.abc import Iterator
from pathlib import Path
from typing import Any

from command_texts import Entries, Mistake, filled, shown, shown_word

App = dict[str, Any]
Option = dict[str, Any]


def sentence(text: str) -> str:
    return shown(text if text.endswith(".") else text + ".") + "\n"


def option_item(option: Option) -> str:
    value = f" Ar {shown_word(option['value'])}" if option["value"] else ""
    if option["positional"]:
        names = f"Ar {shown_word(option['positional'])}"
    else:
        names = " , ".join(f"Fl {shown_word(name[1:])}" for name in option["names"]) + value
    return f".It {names}\n{sentence(option['description'])}"


def option_list(app: App) -> str:
    items = "".join(map(option_item, app["options"]))
    return f".Bl -tag -width Ds\n{items}.El\n" if items else ""


def usage(app: App) -> str:
    words = ["Oo Ar option ... Oc"] if any(not option["positional"] for option in app["options"]) else []
    for option in app["options"]:
        if option["positional"]:
            word = f"Ar {shown_word(option['positional'])}" + (" ..." if option["repeated"] else "")
            words.append(word if option["required"] else f"Oo {word} Oc")
    if app["subcommands"]:
        words.append("Ar subcommand ...")
    return " ".join(words)


def nested(app: App, before: str = "") -> Iterator[App]:
    """The subcommands, each before its own, with all the words that name it."""
    for subcommand in app["subcommands"]:
        words = f"{before}{subcommand['name']}"
        yield subcommand | {"words": words}
        yield from nested(subcommand, f"{words} ")


def subcommand_chapter(program: App, prose: Entries) -> str:
    text = ".Bl -tag -width Ds\n"
    for subcommand in nested(program):
        words = " ".join(map(shown_word, subcommand["words"].split()))
        text += f".It Ic {words} {usage(subcommand)}".rstrip() + "\n" + sentence(subcommand["description"])
        text += prose.take_if_any(subcommand["words"]) + option_list(subcommand)
    return text + ".El"


def exit_statuses(program: App) -> str:
    items = [line.split(maxsplit=1) for line in program["footer"].splitlines()[1:]]
    return ".Bl -tag -width Ds\n" + "".join(f".It {number}\n{sentence(text)}" for number, text in items) + ".El"


def manual(program: App, template: Path, prose: Entries, given: dict[str, str]) -> str:
    replacements = {
        "OPTIONS": option_list(program).rstrip("\n"),
        "SUBCOMMANDS": subcommand_chapter(program, prose),
        "STATUSES": exit_statuses(program),
        "VERSION": program["version"],
    }
    prose.none_left()
    return filled(template, replacements | given)


def table(rows: dict[str, str]) -> str:
    return "\n".join(f'    ["{key}"]="{value}"' for key, value in rows.items() if value)


def value_of(option: Option, commands: dict[str, Any]) -> str:
    """What the completion knows of an option's value or of a word: its name, or behind a blank the words to choose from."""
    known = {
        "COMMAND": [row["name"] for row in commands["commands"] if not row["isSetCmd"]],
        "PORTS": commands["keywords"]["ports"],
    }
    name: str = option["positional"] or option["value"]
    words = option["choices"] or known.get(name, [])
    if words:
        return " " + " ".join(words)
    return "FILE" if option["positional"] else name  # most words that are not of the tool are files


def completion(program: App, commands: dict[str, Any], template: Path) -> str:
    words, options, values = {}, {}, {}
    for app in [program | {"words": ""}, *nested(program)]:
        key = f"{program['name']} {app['words']}".rstrip()
        words[key] = " ".join(subcommand["name"] for subcommand in app["subcommands"])
        options[key] = " ".join(name for option in app["options"] for name in option["names"] if name.startswith("--"))
        positionals = [option for option in app["options"] if option["positional"]]
        for place, option in enumerate(positionals):
            values[f"{key} {'*' if option['repeated'] else place}"] = value_of(option, commands)
        values |= {f"{key} {name}": value_of(option, commands) for option in app["options"] for name in option["names"]}
    return filled(template, {"WORDS": table(words), "OPTIONS": table(options), "VALUES": table(values)})


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("options", type=Path, help="options.json")
    made = parser.add_subparsers(dest="made", required=True)
    page = made.add_parser("manual")
    page.add_argument("template", type=Path)
    page.add_argument("prose", type=Path, help="what the options do not tell of subcommands")
    page.add_argument("given", nargs="*", metavar="NAME=TEXT")
    script = made.add_parser("completion")
    script.add_argument("template", type=Path)
    script.add_argument("commands", type=Path, help="commands.json")
    arguments = parser.parse_args()

    program = json.loads(arguments.options.read_text(encoding="ascii"))
    try:
        if arguments.made == "manual":
            given = dict(pair.split("=", 1) for pair in arguments.given)
            sys.stdout.write(manual(program, arguments.template, Entries(arguments.prose), given))
        else:
            commands = json.loads(arguments.commands.read_text(encoding="ascii"))
            sys.stdout.write(completion(program, commands, arguments.template))
    except Mistake as mistake:
        sys.exit(f"option_texts: {mistake}")


if __name__ == "__main__":
    main()
