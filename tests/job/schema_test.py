"""Holds the JSON Schemas against the test files and examples: the good ones are valid, each bad one is not."""
import json
import sys
from pathlib import Path

from jsonschema import Draft202012Validator


def main(root):
    failures = []
    for form, folder in (("job", "jobs"), ("result", "results")):
        schema = json.loads((root / "src/job/schema" / f"{form}.json").read_text())
        Draft202012Validator.check_schema(schema)
        validator = Draft202012Validator(schema)
        for verdict in ("good", "bad"):
            files = sorted((root / "tests/data" / folder / verdict).glob("*.json"))
            if (form, verdict) == ("job", "good"):
                files += sorted((root / "examples/jobs").glob("*.json"))
            assert files, f"no {verdict} {folder}"
            for file in files:
                errors = [error.message for error in validator.iter_errors(json.loads(file.read_text()))]
                if bool(errors) == (verdict == "good"):
                    failures.append(f"{file}: {errors or 'is accepted'}")
    print("\n".join(failures))
    return 1 if failures else 0


sys.exit(main(Path(sys.argv[1])))
