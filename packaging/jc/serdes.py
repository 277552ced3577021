"""jc - JSON Convert parser of what `serdes` prints

The text is what serdes printed, or a log of it: tables, dumps, values, the topology, with prompts and commands around
them or not. `serdesctl parse` reads it, and must be in the PATH, or be named by the environment variable SERDESCTL.
Receive tables need the topology: the answer to showConfig in the same text, or in the file that the environment
variable SERDESCTL_CONFIG names.

Usage (cli):

    $ serdes script | jc --serdes

or

    $ jc serdes script

Usage (module):

    import jc
    result = jc.parse('serdes', output)

Schema: an object per answer; those that serdesctl installs say what each kind holds.

    [
      {
        "schema":     integer,
        "kind":       string,      # tx_params, rx_params, rate, dfe_stats, ...
        "command":    string,      # null if unknown
        "target":     null,
        "time":       null,
        "asic":       integer,     # null if unknown
        "records":    [ {} ]
      }
    ]
"""
import json
import os
import subprocess
from typing import Any

import jc.exceptions
import jc.utils


class info:
    """What jc lists."""

    version = "1.0"
    description = "`serdes` output parser"
    author = "the serdes project"
    author_email = ""
    compatible = ["linux"]
    tags = ["command"]
    magic_commands = ["serdes"]


__version__ = info.version

# A command in the text that failed is an answer too.
_READ = (0, 1)


def parse(data: str, raw: bool = False, quiet: bool = False) -> list[dict[str, Any]]:
    """Returns an object per answer; `raw` changes nothing, as serdesctl gives numbers as numbers."""
    jc.utils.compatibility(__name__, info.compatible, quiet)
    jc.utils.input_type_check(data)
    if not jc.utils.has_data(data):
        return []
    config = os.environ.get("SERDESCTL_CONFIG")
    done = subprocess.run(
        [os.environ.get("SERDESCTL", "serdesctl"), "parse", *(["--config", config] if config else [])],
        input=data.encode(errors="surrogateescape"),
        capture_output=True,
    )
    if done.returncode not in _READ:
        raise jc.exceptions.ParseError(done.stderr.decode(errors="replace").strip())
    return [json.loads(line) for line in done.stdout.splitlines()]
