"""Fitted time-series models as XML documents.

``write`` turns a model description (docs/model-description.md: a dict of
that form, or its JSON text) into the native model document, PMML 4.2 or
the statistics document, through the same reader and writer as the
``tsxml`` program. ``tsxml.statsmodels`` builds descriptions from fitted
statsmodels results.

    >>> import tsxml
    >>> pmml = tsxml.write(description, format="pmml")
"""
import json
import math
import numbers

from . import _tsxml

__all__ = ["DescriptionError", "available", "write"]

#: Raised for a description or an option that can't be written: a
#: ValueError whose text is the tool's message, with the attributes
#: ``pointer`` (a JSON Pointer, "" for the whole document), ``line`` and
#: ``column`` (of a syntax error, else 0) and ``message``.
DescriptionError = _tsxml.DescriptionError

_FORMATS = ("native", "pmml", "statxml")


def available(feature):
    """Whether this build writes ``feature``: a format ("native", "pmml",
    "statxml") or the option "pmml_consistent"."""
    return _tsxml.available(feature)


def write(description, format="pmml", pmml_consistent=False, time_series=True):
    """The document of ``description`` in ``format`` ("native", "pmml" or
    "statxml"), as a string, exactly as the library writes it.

    ``description`` is a dict of the documented form or its JSON text (str or
    UTF-8 bytes). In a dict, numpy numbers and arrays may stand for numbers
    and lists, ``None`` for a missing value, and NaN and the infinities are
    written as the strings the description takes for them.

    ``pmml_consistent`` asks for a PMML document that holds together as one
    document; ``time_series=False`` leaves the observed series out of PMML
    smoothing models.

    Raises DescriptionError (a ValueError) for anything the ``tsxml`` program
    refuses, with the same message, and also when this build lacks the
    format or the option ("... not available in this build").
    """
    if format not in _FORMATS:
        raise ValueError("format must be one of %s, not %r"
                         % (", ".join(repr(f) for f in _FORMATS), format))
    if isinstance(description, str):
        text = description.encode("utf-8")
    elif isinstance(description, (bytes, bytearray)):
        text = bytes(description)
    elif isinstance(description, dict):
        text = json.dumps(_plain(description), allow_nan=False,
                          ensure_ascii=False).encode("utf-8")
    else:
        raise TypeError("description must be a dict or JSON text, not %s"
                        % type(description).__name__)
    return _tsxml.write(text, format, bool(pmml_consistent), bool(time_series))


def _plain(value):
    """``value`` with numpy scalars and arrays as Python numbers and lists,
    and non-finite numbers as the description's strings."""
    if isinstance(value, dict):
        return {key: _plain(item) for key, item in value.items()}
    if isinstance(value, (list, tuple)):
        return [_plain(item) for item in value]
    if hasattr(value, "tolist") and not isinstance(value, (str, bytes)):
        return _plain(value.tolist())  # numpy arrays and scalars
    if isinstance(value, bool) or value is None or isinstance(value, str):
        return value
    if isinstance(value, numbers.Integral):
        return int(value)
    if isinstance(value, numbers.Real):
        number = float(value)
        if math.isnan(number):
            return "NaN"
        if math.isinf(number):
            return "INF" if number > 0 else "-INF"
        return number
    return value
