#!/usr/bin/env python3
"""The schema for editors accepts every profile that is shipped or documented, and rejects mistakes.

usage: schema_test.py SOURCE
"""
import copy
import glob
import json
import os
import re
import sys

try:
    import jsonschema
    import tomllib
except ImportError as error:
    print(f"SKIPPED: {error}")
    sys.exit(77)


def load(path):
    with open(path, "rb") as file:
        return tomllib.load(file)


def documented(source):
    """The complete profiles in the documents, with where they are."""
    for name in "README.md", "docs/profile.md":
        with open(os.path.join(source, name), encoding="utf-8") as file:
            for block in re.findall(r"```toml\n(.*?)```", file.read(), re.DOTALL):
                if "[[device]]\n" in block:
                    yield name, tomllib.loads(block)


# Each is a change of the player's profile that the schema has to reject.
def wrong_command(profile):
    profile["device"][0]["handler"]["keys"]["KEY_STOP"] = "Stopp"


def wrong_key(profile):
    profile["device"][0]["handler"]["keys"]["SW_LID"] = "Stop"


def wrong_member(profile):
    profile["device"][0]["handler"]["keys"]["KEY_STOP"] = {"command": "Stop", "imediate": True}


def repeat_alone(profile):
    profile["device"][0]["handler"]["keys"]["KEY_STOP"] = {"command": "Stop", "repeat": True}


def no_timeout(profile):
    profile["device"][0]["handler"]["keys"]["KEY_STOP"] = {"command": "Stop", "long-press": []}


def chord_of_one(profile):
    profile["device"][0]["handler"]["chords"] = {"KEY_STOP": "FactoryReset"}


def listed_without_code(profile):
    profile["device"][0]["handler"]["keys"] = [{"command": "Stop"}]


def no_device(profile):
    del profile["device"]


MISTAKES = [wrong_command, wrong_key, wrong_member, repeat_alone, no_timeout, chord_of_one,
            listed_without_code, no_device]


def main():
    source = sys.argv[1]
    with open(os.path.join(source, "share/vorn-input/profile.schema.json"),
              encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    profiles = glob.glob(os.path.join(source, "examples/profiles/*.toml"))
    profiles += glob.glob(os.path.join(source, "tests/scenarios/profiles/*.toml"))
    profiles = [(path, load(path)) for path in profiles] + list(documented(source))
    if len(profiles) < 7:
        sys.exit("FAILED: profiles are missing")
    for path, profile in profiles:
        for error in validator.iter_errors(profile):
            sys.exit(f"FAILED: {path}: {error.message}")
    player = load(os.path.join(source, "examples/profiles/player.toml"))
    for mistake in MISTAKES:
        wrong = copy.deepcopy(player)
        mistake(wrong)
        if validator.is_valid(wrong):
            sys.exit(f"FAILED: {mistake.__name__} is accepted")
    print(f"PASSED: {len(profiles)} profiles, {len(MISTAKES)} mistakes")


if __name__ == "__main__":
    main()
