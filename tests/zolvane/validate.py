#!/usr/bin/env python3
"""Holds each line of a file to a JSON Schema: validate.py SCHEMA FILE."""

import json
import sys

import jsonschema


def main() -> int:
    with open(sys.argv[1], encoding="utf-8") as file:
        schema = json.load(file)
    validator = jsonschema.Draft202012Validator(schema)
    validator.check_schema(schema)
    number_of_lines = 0
    is_valid = True
    with open(sys.argv[2], encoding="utf-8") as file:
        for number_of_lines, line in enumerate(file, 1):
            for error in validator.iter_errors(json.loads(line)):
                print(f"line {number_of_lines}: {error.json_path}: {error.message}", file=sys.stderr)
                is_valid = False
    return 0 if is_valid and number_of_lines > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
