"""Validates the JSON that a command writes: check_schema.py SCHEMA COMMAND ARGUMENT..."""

import json
import subprocess
import sys

import jsonschema

with open(sys.argv[1], encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)

ended = subprocess.run(sys.argv[2:], stdout=subprocess.PIPE, check=False)
if ended.returncode not in (0, 70):
    sys.exit(f"exit status {ended.returncode}")
survey = json.loads(ended.stdout.decode("utf-8"))
jsonschema.Draft202012Validator(schema).validate(survey)
assert isinstance(survey["memory"]["physical_bytes"], int)
