"""The schema of the model description: a valid JSON Schema 2020-12 that
every shipped description meets, and that refuses what the reader refuses
for the fields a schema can tell.

Run as: python3 schema_test.py SOURCE_DIR TSXML_PROGRAM
"""
import copy
import json
import os
import subprocess
import sys
import unittest

SOURCE = sys.argv[1] if len(sys.argv) > 1 else "."
PROGRAM = sys.argv[2] if len(sys.argv) > 2 else "tsxml"
EXAMPLES = os.path.join(SOURCE, "examples", "models")

try:
    import jsonschema
except ImportError:  # CI installs it; elsewhere the test is skipped.
    jsonschema = None


def load(path):
    with open(path, encoding="utf-8") as f:
        return json.load(f)


@unittest.skipIf(jsonschema is None and os.environ.get("CI") != "true",
                 "python3-jsonschema is not installed")
class SchemaTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.schema = load(os.path.join(SOURCE, "docs",
                                       "model-description.schema.json"))
        cls.validator = jsonschema.Draft202012Validator(cls.schema)

    def test_is_a_valid_2020_12_schema(self):
        jsonschema.Draft202012Validator.check_schema(self.schema)

    def test_every_example_validates(self):
        names = sorted(n for n in os.listdir(EXAMPLES) if n.endswith(".json"))
        self.assertGreaterEqual(len(names), 9)
        for name in names:
            with self.subTest(name):
                self.validator.validate(load(os.path.join(EXAMPLES, name)))

    def test_every_example_is_read_by_the_program(self):
        # The schema and the reader agree on what is valid: the native
        # document of every example is written.
        for name in sorted(os.listdir(EXAMPLES)):
            with self.subTest(name):
                result = subprocess.run(
                    [PROGRAM, "write", "--format", "native",
                     os.path.join(EXAMPLES, name)],
                    capture_output=True, check=False)
                self.assertEqual(result.returncode, 0, result.stderr)

    def test_refuses_what_the_reader_refuses(self):
        base = load(os.path.join(EXAMPLES, "write_models.json"))
        changes = {
            "unknown top field": lambda d: d.update(modles=[]),
            "no models": lambda d: d.pop("models"),
            "unknown smoothing type": lambda d: d["models"][0][
                "exponentialSmoothing"].update(type="winters"),
            "estimate word": lambda d: d["models"][0][
                "exponentialSmoothing"].update(estimates=["Inf"]),
            "negative lag": lambda d: d["models"][2]["arima"].update(
                ar=[-1]),
            "unknown outlier": lambda d: d["models"][2]["arima"][
                "outliers"][0].update(type="spike"),
            "omega in a least squares state": lambda d: d["models"][2][
                "arima"]["state"].update(method="conditionalLeastSquares"),
            "two kinds": lambda d: d["models"][3].update(
                arima=d["models"][2]["arima"]),
            "Croston with a history": lambda d: d["models"][3].update(
                history=[1.0]),
            "lag beyond 32 bits": lambda d: d["models"][2]["arima"].update(
                ma=[4294967296]),
            "unknown fit statistic": lambda d: d["models"][0][
                "estimation"]["fit"].update(R2=0.5),
        }
        for name, change in changes.items():
            with self.subTest(name):
                description = copy.deepcopy(base)
                change(description)
                self.assertFalse(self.validator.is_valid(description))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
