#!/usr/bin/env python3
"""json_schema.py SCHEMA: checks JSON Lines on standard input against a JSON Schema."""
import json
import sys

import jsonschema

with open(sys.argv[1], encoding="utf-8") as schema_file:
    schema = json.load(schema_file)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
documents = 0
for line in sys.stdin:
    document = json.loads(line)
    for error in validator.iter_errors(document):
        sys.exit(f"{document.get('source')}: {error.json_path}: {error.message}")
    documents += 1
print(f"{documents} documents")
sys.exit(0 if documents else 1)
