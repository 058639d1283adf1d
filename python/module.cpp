// tsxml._tsxml: the model description reader and document writer of the
// tsxml tool (tools/tsxml) for Python. The pure-Python package tsxml wraps
// it; see docs/python.md.
#include <pybind11/pybind11.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <string_view>

#include "tools/tsxml/description.h"
#include "tools/tsxml/write.h"

namespace py = pybind11;

namespace {

// Raised for bad descriptions and options: a ValueError whose text is the
// tool's message ("[LINE:COLUMN: ][/pointer: ]message") and whose attributes
// `pointer`, `line` and `column` are those of the error.
py::handle g_description_error;

void RaiseDescriptionError(const tsxml_tool::DescriptionError& error) {
  py::object instance =
      py::reinterpret_borrow<py::object>(g_description_error)(error.what());
  instance.attr("pointer") = error.Pointer();
  instance.attr("line") = error.Line();
  instance.attr("column") = error.Column();
  instance.attr("message") = error.Message();
  PyErr_SetObject(g_description_error.ptr(), instance.ptr());
}

// The document of `description` (JSON text) in `format`, exactly as the
// library writes it (no line feed at the end).
std::string Write(std::string_view description, const std::string& format,
                  bool pmml_consistent, bool time_series) {
  tsxml_tool::WriteOptions options;
  if (!tsxml_tool::ParseFormat(format, options.format)) {
    throw tsxml_tool::DescriptionError(
        "", "unknown format \"" + format +
                "\": expected \"native\", \"pmml\" or \"statxml\"");
  }
  options.pmmlConsistent = pmml_consistent;
  options.timeSeries = time_series;
  const tsxml_tool::Description parsed =
      tsxml_tool::ReadDescription(description);
  std::ostringstream os;
  tsxml_tool::WriteDocument(parsed, options, os);
  return std::move(os).str();
}

bool Available(const std::string& feature) {
  tsxml_tool::Format format = tsxml_tool::Format::kPMML;
  if (tsxml_tool::ParseFormat(feature, format)) {
    return tsxml_tool::FormatAvailable(format);
  }
  if (feature == "pmml_consistent") {
    return tsxml_tool::PMMLConsistentAvailable();
  }
  throw py::value_error("unknown feature \"" + feature +
                        "\": expected \"native\", \"pmml\", \"statxml\" or "
                        "\"pmml_consistent\"");
}

}  // namespace

PYBIND11_MODULE(_tsxml, m) {
  m.doc() = "The tsxml model description reader and document writer.";
  static py::exception<tsxml_tool::DescriptionError> description_error(
      m, "DescriptionError", PyExc_ValueError);
  g_description_error = description_error;
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const tsxml_tool::DescriptionError& error) {
      RaiseDescriptionError(error);
    }
  });
  m.def(
      "write",
      [](py::bytes description, const std::string& format, bool pmml_consistent,
         bool time_series) {
        const std::string_view bytes(description);
        std::string document;
        {
          py::gil_scoped_release unlocked;
          document = Write(bytes, format, pmml_consistent, time_series);
        }
        return document;
      },
      py::arg("description"), py::arg("format"), py::arg("pmml_consistent"),
      py::arg("time_series"),
      "The document of a UTF-8 JSON description; DescriptionError (a "
      "ValueError) for bad input.");
  m.def("available", &Available, py::arg("feature"),
        "Whether this build writes the format (\"native\", \"pmml\", "
        "\"statxml\") or has the option \"pmml_consistent\".");
}
