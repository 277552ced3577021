"""The installed schemas, and objects held against them."""
import functools
import json
import pathlib
from typing import Any

import jsonschema

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "serdesctl" / "schemas"


@functools.cache
def validator(kind: str) -> jsonschema.Draft202012Validator:
    schema = json.loads((FOLDER / f"{kind}.json").read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


def load(line: str) -> dict[str, Any]:
    """An object of the program's, which keeps to the schema of its kind."""
    answer: dict[str, Any] = json.loads(line)
    validator(answer["kind"]).validate(answer)
    return answer
