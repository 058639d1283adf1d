"""Validation of a document against a schema of schemas/ with xmllint."""
import os
import shutil
import subprocess

import pytest

SOURCE = os.environ.get("TSXML_SOURCE_DIR",
                        os.path.join(os.path.dirname(__file__), "..", ".."))
SCHEMAS = os.path.join(SOURCE, "schemas")


def validate(document, schema, tmp_path):
    """Fails unless `document` meets schemas/`schema`; skips without
    xmllint, except in CI (CI=true), which has it."""
    xmllint = shutil.which("xmllint")
    if xmllint is None:
        if os.environ.get("CI") == "true":
            pytest.fail("xmllint is missing (Debian's libxml2-utils)")
        pytest.skip("xmllint is not installed (Debian's libxml2-utils)")
    path = tmp_path / "document.xml"
    path.write_text(document, encoding="utf-8")
    result = subprocess.run([xmllint, "--noout", "--schema",
                             os.path.join(SCHEMAS, schema), str(path)],
                            capture_output=True, text=True, check=False)
    assert result.returncode == 0, result.stderr


def statxml_schema():
    """The StatXML schema's name in schemas/; skips when there is none."""
    names = sorted(name for name in os.listdir(SCHEMAS)
                   if name.lower().startswith("statxml")
                   and name.endswith(".xsd"))
    if not names:
        pytest.skip("no StatXML schema in schemas/")
    return names[-1]
