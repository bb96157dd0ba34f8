"""The schemas of the documents refuse what is no such document."""

import copy

import jsonschema

from fixture import COMMANDS, HostProgramTest, problems, schema_of


# What stands only where it applies: under filters, in a list, beside a keep list.
OPTIONAL = {"unseen", "entries", "keepList"}


def objects_of(schema):
    """Every schema inside a schema that describes an object."""
    if isinstance(schema, dict):
        if schema.get("type") == "object" or "properties" in schema:
            yield schema
        for key, part in schema.items():
            yield from objects_of(part)
    elif isinstance(schema, list):
        for part in schema:
            yield from objects_of(part)


def places(document):
    """Every object inside a document."""
    if isinstance(document, dict):
        yield document
    for part in document.values() if isinstance(document, dict) else document:
        if isinstance(part, (dict, list)):
            yield from places(part)


class Schemas(HostProgramTest):
    def documents(self):
        for command in COMMANDS:
            extra = {"clean": ["--dry-run"], "forget": ["--all", "--dry-run"]}.get(command, [])
            yield command, self.document(command, "--browser=chromium", *extra)

    def test_every_schema_is_one(self):
        for command in COMMANDS:
            with self.subTest(command=command):
                jsonschema.Draft7Validator.check_schema(schema_of(command))

    def test_every_object_has_exactly_the_keys_of_the_contract(self):
        for command in COMMANDS:
            for part in objects_of(schema_of(command)):
                with self.subTest(command=command, part=part):
                    self.assertIs(part["additionalProperties"], False)
                    self.assertEqual(set(part["required"]), set(part["properties"]) - OPTIONAL)

    def test_a_key_too_many_or_missing_or_of_a_wrong_type_is_refused_anywhere(self):
        for command, document in self.documents():
            for index, part in enumerate(places(document)):
                for key in list(part):
                    for change in ("drop", "rename", "retype"):
                        broken = copy.deepcopy(document)
                        place = list(places(broken))[index]
                        value = place.pop(key)
                        if change == "rename":
                            place[key + "x"] = value
                        elif change == "retype":
                            place[key] = 1.5
                        with self.subTest(command=command, key=key, change=change):
                            self.assertNotEqual(problems(broken, command), [])

    def test_only_known_browsers_and_categories_are_taken(self):
        for command, document in self.documents():
            if "browsers" not in document:
                continue
            document["browsers"][0]["browser"] = "lynx"
            self.assertNotEqual(problems(document, command), [], command)
        for command in ("size", "clean"):
            document = dict(self.documents())[command]
            document["browsers"][0]["categories"][0]["category"] = "everything"
            self.assertNotEqual(problems(document, command), [], command)
