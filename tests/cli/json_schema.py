"""The part of JSON Schema that docs/schemas uses, checked without any package."""

import json
import pathlib

SCHEMAS = pathlib.Path(__file__).resolve().parents[2] / "docs" / "schemas"

TYPES = {
    "object": lambda value: isinstance(value, dict),
    "array": lambda value: isinstance(value, list),
    "string": lambda value: isinstance(value, str),
    "boolean": lambda value: isinstance(value, bool),
    "integer": lambda value: isinstance(value, int) and not isinstance(value, bool),
    "null": lambda value: value is None,
}

KEYWORDS = {"$schema", "title", "definitions", "$ref", "anyOf", "enum", "type", "properties",
            "required", "additionalProperties", "items"}


def load(name):
    return json.loads((SCHEMAS / f"{name}.schema.json").read_text(encoding="utf-8"))


def problems(value, schema, root=None, where="$"):
    """What is wrong with the value, as a list of sentences."""
    root = root or schema
    unknown = set(schema) - KEYWORDS
    assert not unknown, f"this checker does not know {unknown}"
    if "$ref" in schema:
        name = schema["$ref"].removeprefix("#/definitions/")
        return problems(value, root["definitions"][name], root, where)
    if "anyOf" in schema:
        found = [problems(value, choice, root, where) for choice in schema["anyOf"]]
        return [] if any(not each for each in found) else [f"{where}: fits no choice: {found}"]
    if "enum" in schema and value not in schema["enum"]:
        return [f"{where}: {value!r} is none of {schema['enum']}"]
    types = schema.get("type", [])
    types = [types] if isinstance(types, str) else types
    if types and not any(TYPES[name](value) for name in types):
        return [f"{where}: {value!r} is not of type {types}"]
    return _problems_inside(value, schema, root, where)


def _problems_inside(value, schema, root, where):
    found = []
    if isinstance(value, dict):
        properties = schema.get("properties", {})
        found += [f"{where}: lacks {key}" for key in schema.get("required", []) if key not in value]
        if schema.get("additionalProperties", True) is False:
            found += [f"{where}: has {key}" for key in value if key not in properties]
        for key, part in value.items():
            if key in properties:
                found += problems(part, properties[key], root, f"{where}.{key}")
    if isinstance(value, list) and "items" in schema:
        for index, part in enumerate(value):
            found += problems(part, schema["items"], root, f"{where}[{index}]")
    return found
