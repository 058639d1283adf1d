"""What the PMML schema cannot check, on every document of the schema test's
cases in the consistent form: numberOfFields counts the DataFields, which
have distinct names; every MiningField names a DataField; every Array's n
is its number of values; every number, in an attribute or an Array, is an
xs:double spelling within the range of a double. The default forms of some
cases show that the checks find what they look for.

Run as: python3 pmml_consistency_test.py TREE_TEST_PROGRAM
(the program's test PMMLSchemaTest.WriteCaseDocuments writes the documents).
"""
import math
import os
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ET

PROGRAM = sys.argv[1] if len(sys.argv) > 1 else "tsxml_tree_tests"
NS = "{http://www.dmg.org/PMML-4_2}"

# The lexical space of xs:double (XML Schema 1.0).
XS_DOUBLE = re.compile(
    r"[+-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([Ee][+-]?[0-9]+)?|-?INF|NaN")
# What a reader would take for a number: digits, or a word of infinity or NaN
# in any case and sign.
NUMBER_LIKE = re.compile(r"[+-]?([0-9.][0-9.Ee+-]*|inf(inity)?|nan)", re.I)
# Attributes that hold names, which may be any text.
NAME_ATTRIBUTES = {"name", "displayName", "modelName", "field"}


def number_problem(text):
    """Why `text` is not a number that the schema reads; None when it is."""
    if not XS_DOUBLE.fullmatch(text):
        return "not an xs:double"
    if text not in ("INF", "-INF", "NaN") and math.isinf(float(text)):
        return "beyond the range of a double"
    return None


def problems(path):
    """The ways in which the document at `path` does not hold together."""
    found = []
    root = ET.parse(path).getroot()
    dictionary = root.find(NS + "DataDictionary")
    names = [field.get("name") for field in dictionary.iter(NS + "DataField")]
    if dictionary.get("numberOfFields") != str(len(names)):
        found.append("numberOfFields %s for %d DataFields" %
                     (dictionary.get("numberOfFields"), len(names)))
    if None in names:
        found.append("a DataField without a name")
    if len(set(names)) != len(names):
        found.append("a DataField twice: %r" % names)
    for field in root.iter(NS + "MiningField"):
        if field.get("name") is None:
            found.append("a MiningField without a name")
        elif field.get("name") not in names:
            found.append("MiningField %r is no DataField" % field.get("name"))
    for element in root.iter():
        tag = element.tag.replace(NS, "")
        for name, value in element.attrib.items():
            if name in NAME_ATTRIBUTES:
                continue
            if NUMBER_LIKE.fullmatch(value) and number_problem(value):
                found.append("%s %s=%r: %s" %
                             (tag, name, value, number_problem(value)))
        if tag == "Array":
            values = (element.text or "").split()
            if element.get("n") != str(len(values)):
                found.append("Array n=%s with %d values" %
                             (element.get("n"), len(values)))
            for value in values:
                if number_problem(value):
                    found.append("Array value %r: %s" %
                                 (value, number_problem(value)))
    return found


class ConsistentDocumentsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.dir = cls.temporary.name
        for form in ("consistent", "default"):
            os.mkdir(os.path.join(cls.dir, form))
        subprocess.run(
            [PROGRAM, "--gtest_filter=PMMLSchemaTest.WriteCaseDocuments"],
            env=dict(os.environ, TSXML_PMML_CASE_DIR=cls.dir), check=True,
            stdout=subprocess.DEVNULL)

    @classmethod
    def tearDownClass(cls):
        cls.temporary.cleanup()

    def path(self, form, name):
        return os.path.join(self.dir, form, name + ".xml")

    def test_every_consistent_document_holds_together(self):
        names = sorted(os.listdir(os.path.join(self.dir, "consistent")))
        self.assertGreaterEqual(len(names), 85)
        for name in names:
            with self.subTest(name):
                self.assertEqual(
                    problems(os.path.join(self.dir, "consistent", name)), [])

    def test_the_checks_find_what_the_default_form_breaks(self):
        def found(name, text):
            return [p for p in problems(self.path("default", name))
                    if text in p]

        # The missing value's number text overflows a double.
        self.assertTrue(found("es_missing_values", "beyond the range"))
        # Infinities and NaN as the standard library prints them.
        self.assertTrue(found("es_infinite_values", "'inf': not an xs:double"))
        self.assertTrue(found("es_infinite_values", "'nan': not an xs:double"))
        # The ARIMA form lists the fields of the last model only.
        self.assertTrue(found("arima_then_es", "MiningField 'price'"))
        self.assertTrue(found("es_then_arima", "MiningField 'Hour'"))
        # A field without a name.
        self.assertTrue(found("arima_no_dependent", "MiningField without"))
        self.assertTrue(found("arima_no_dependent", "DataField without"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
