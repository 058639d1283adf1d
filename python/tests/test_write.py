"""tsxml.write gives the tool's documents and the tool's errors."""
import copy
import json
import os
import subprocess

import pytest

import tsxml

SOURCE = os.environ.get("TSXML_SOURCE_DIR",
                        os.path.join(os.path.dirname(__file__), "..", ".."))
PROGRAM = os.environ.get("TSXML_PROGRAM")
EXAMPLES = os.path.join(SOURCE, "examples", "models")
FORMATS = ("native", "pmml", "statxml")


def examples():
    return sorted(name for name in os.listdir(EXAMPLES)
                  if name.endswith(".json"))


def load(name):
    with open(os.path.join(EXAMPLES, name), encoding="utf-8") as f:
        return f.read()


def tool(text, *options):
    """The tool's (status, standard output, standard error) for `text` on
    standard input."""
    if PROGRAM is None:
        pytest.skip("TSXML_PROGRAM names no tsxml program")
    # Under the sanitizers the interpreter runs with the sanitizer's runtime
    # preloaded, which the instrumented program links in by itself.
    env = {key: value for key, value in os.environ.items()
           if key != "LD_PRELOAD"}
    result = subprocess.run([PROGRAM, "write", *options, "-"],
                            input=text.encode("utf-8"), capture_output=True,
                            check=False, env=env)
    return (result.returncode, result.stdout.decode("utf-8"),
            result.stderr.decode("utf-8"))


def tool_error(stderr):
    """The tool's message without "tsxml: <stdin>: " (or ":" before a
    line:column), which is the text of the ValueError."""
    prefix = "tsxml: <stdin>"
    assert stderr.startswith(prefix), stderr
    rest = stderr[len(prefix):].rstrip("\n")
    return rest[2:] if rest.startswith(": ") else rest[1:]


class TestDocuments:
    @pytest.mark.parametrize("name", examples())
    def test_every_example_in_every_format_as_the_tool_writes_it(self, name):
        text = load(name)
        for fmt in FORMATS:
            for options, kwargs in ((["--format", fmt], {}),
                                    (["--format", fmt, "--no-time-series"],
                                     {"time_series": False})):
                status, stdout, stderr = tool(text, *options)
                if status == 0:
                    # The tool adds one line feed after the document.
                    assert tsxml.write(text, format=fmt, **kwargs) + "\n" == (
                        stdout)
                    assert tsxml.write(json.loads(text), format=fmt,
                                       **kwargs) + "\n" == stdout
                else:
                    with pytest.raises(ValueError) as raised:
                        tsxml.write(text, format=fmt, **kwargs)
                    if "--format" in stderr:  # the tool's own wording
                        assert "not available" in str(raised.value)
                    else:
                        assert str(raised.value) == tool_error(stderr)

    def test_numpy_values_and_non_finite_numbers(self):
        np = pytest.importorskip("numpy")
        text = load("calls.json")
        description = json.loads(text)
        model = description["models"][0]
        history = [float(v) for v in range(1, 11)]
        history[3] = float("nan")
        history[4] = float("inf")
        model["history"] = np.array(history)
        model["estimation"]["degreesOfFreedom"] = np.int64(7)
        as_strings = json.loads(text)
        as_strings["models"][0]["history"] = (
            history[:3] + ["NaN", "INF"] + history[5:])
        as_strings["models"][0]["estimation"]["degreesOfFreedom"] = 7
        assert tsxml.write(description) == tsxml.write(as_strings)

    def test_bytes_and_str(self):
        text = load("calls.json")
        assert tsxml.write(text.encode("utf-8")) == tsxml.write(text)

    def test_availability(self):
        assert tsxml.available("native") and tsxml.available("pmml")
        with pytest.raises(ValueError):
            tsxml.available("xml")


def bad(name, edit):
    description = json.loads(load(name))
    edit(description)
    return description


def set_path(path, value):
    def edit(description):
        node = description
        for key in path[:-1]:
            node = node[key]
        node[path[-1]] = value
    return edit


BAD_DESCRIPTIONS = {
    "unknown field": ("calls.json", set_path(["models", 0, "colour"], 1),
                      "/models/0/colour"),
    "wrong type": ("calls.json", set_path(["models", 0, "name"], 3),
                   "/models/0/name"),
    "lags out of order": ("sales.json",
                          set_path(["models", 0, "arima", "ar"], [3, 1]),
                          "/models/0/arima/ar/1"),
    "estimates short": ("sales.json",
                        set_path(["models", 0, "arima", "estimates"], [0.1]),
                        "/models/0/arima/estimates"),
    "unknown date specification": ("sales.json",
                                   set_path(["models", 0, "dateSpec"], "x"),
                                   "/models/0/dateSpec"),
}


class TestErrors:
    @pytest.mark.parametrize("case", sorted(BAD_DESCRIPTIONS))
    def test_malformed_dict_raises_with_its_pointer(self, case):
        name, edit, pointer = BAD_DESCRIPTIONS[case]
        description = bad(name, edit)
        with pytest.raises(tsxml.DescriptionError) as raised:
            tsxml.write(description, format="native")
        error = raised.value
        assert isinstance(error, ValueError)
        assert error.pointer == pointer
        assert (error.line, error.column) == (0, 0)
        assert str(error) == pointer + ": " + error.message
        status, _, stderr = tool(json.dumps(description), "--format",
                                 "native")
        assert status == 2
        assert str(error) == tool_error(stderr)

    def test_syntax_error_has_line_and_column(self):
        text = '{\n  "models": [,]\n}'
        with pytest.raises(tsxml.DescriptionError) as raised:
            tsxml.write(text)
        error = raised.value
        assert (error.line, error.column, error.pointer) == (2, 14,
                                                             "/models")
        status, _, stderr = tool(text)
        assert status == 2 and str(error) == tool_error(stderr)

    def test_options(self):
        text = load("calls.json")
        with pytest.raises(ValueError, match="format must be one of"):
            tsxml.write(text, format="xml")
        with pytest.raises(TypeError):
            tsxml.write(["models"])
        if not tsxml.available("pmml_consistent"):
            with pytest.raises(ValueError, match="not available"):
                tsxml.write(text, pmml_consistent=True)

    def test_description_is_not_changed(self):
        description = json.loads(load("calls.json"))
        kept = copy.deepcopy(description)
        tsxml.write(description)
        assert description == kept
