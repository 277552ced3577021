"""The installed schemas, and objects held against them."""

from __future__ import annotations

import functools
import json
from typing import Any

import jsonschema
from serdes_runs import ROOT

FOLDER = ROOT / "serdesctl" / "schemas"


@functools.cache
def validator(kind: str) -> Any:
    schema = json.loads((FOLDER / f"{kind}.json").read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


def load(line: str, kind: str | None = None) -> dict[str, Any]:
    """An object of the program's, which keeps to the schema of its kind."""
    answer: dict[str, Any] = json.loads(line)
    validator(kind or answer["kind"]).validate(answer)
    return answer
