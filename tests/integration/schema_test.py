#!/usr/bin/env python3
"""The schema for editors accepts every profile that is shipped, and refuses a mistake.

usage: schema_test.py SOURCE
"""
import glob
import json
import os
import sys

try:
    import jsonschema
except ImportError:
    print("SKIPPED: the Python package jsonschema is missing")
    sys.exit(77)


def load(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def main():
    source = sys.argv[1]
    schema = load(os.path.join(source, "share/vorn-input/profile.schema.json"))
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    profiles = glob.glob(os.path.join(source, "examples/profiles/*.json"))
    profiles += glob.glob(os.path.join(source, "tests/scenarios/profiles/*.json"))
    if len(profiles) < 2:
        sys.exit("FAILED: no profiles")
    for path in profiles:
        for error in validator.iter_errors(load(path)):
            sys.exit(f"FAILED: {path}: {error.message}")
    wrong = load(profiles[0])
    wrong["devices"][0]["handlers"][0]["keys"][0]["command"] = "VolumUp"
    if validator.is_valid(wrong):
        sys.exit("FAILED: a command that does not exist is accepted")
    print(f"PASSED: {len(profiles)} profiles")


if __name__ == "__main__":
    main()
