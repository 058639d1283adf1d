// The model description: a JSON document that describes fitted models, their
// dictionary references and date specifications, read into the objects that a
// host hands to TSXMLTree. docs/model-description.md tells the format.
//
//   tsxml_tool::Description description = tsxml_tool::ReadDescription(bytes);
//   tsxml_tool::WriteDocument(description, options, std::cout);  // write.h
#ifndef TSXML_TOOLS_TSXML_DESCRIPTION_H
#define TSXML_TOOLS_TSXML_DESCRIPTION_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <valarray>
#include <vector>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/modelapi/croston_model.h"
#include "tsxml/modelapi/model.h"

namespace tsxml_tool {

// Bad input: where it is and what was expected. `pointer` is a JSON Pointer
// ("" for the whole document, "/models/2/arima/ar/1"); `line` and `column`
// (1-based, columns in bytes) are set for syntax errors and 0 otherwise.
class DescriptionError : public std::runtime_error {
 public:
  DescriptionError(std::string pointer, std::string message);
  DescriptionError(std::string pointer, std::size_t line, std::size_t column,
                   std::string message);

  const std::string& Pointer() const { return pointer_; }
  std::size_t Line() const { return line_; }
  std::size_t Column() const { return column_; }
  const std::string& Message() const { return message_; }

 private:
  std::string pointer_;
  std::size_t line_ = 0;
  std::size_t column_ = 0;
  std::string message_;
};

// A date specification of the description, built and checked.
struct DateSpecDescription {
  std::string id;          // the name models refer to, unique
  std::string descriptor;  // passed to TSXMLTree::AddDateSpec
  TSXDateSpec spec;
};

enum class ModelKind { kExponentialSmoothing, kArima, kCroston };

// One model with its references. `model` is set for exponential smoothing
// and ARIMA models, `croston` for Croston models.
struct ModelDescription {
  std::string pointer;  // "/models/<i>", for errors
  ModelKind kind = ModelKind::kExponentialSmoothing;
  TSXDictionaryRefs refs;  // date specification identifier left 0
  int dateSpec = -1;       // index into Description::dateSpecs, -1 for none
  TSFModel model;
  TSFCrModel croston;
};

struct ApplicationDescription {
  bool present = false;  // false: TSXMLTree::SetApplication is not called
  std::string name;
  std::string version;
  std::string copyright;
};

// The settings of the statistics document.
struct StatXMLDescription {
  bool present = false;
  bool hasResiduals = false;  // false: the residual series is null
  std::valarray<double> residuals;
  int lagCount = 0;
  double confidenceLevel = 0.0;
};

// A whole description. It owns every object it holds; copies share the
// model handles.
struct Description {
  ApplicationDescription application;
  std::vector<DateSpecDescription> dateSpecs;
  std::vector<ModelDescription> models;
  StatXMLDescription statXML;
};

// Reads a description from the bytes of a JSON document. Throws
// DescriptionError for anything that is not a valid description: a syntax
// error, invalid UTF-8, a missing or unknown field, a wrong type, a number out
// of range, a date specification the library refuses, estimates that don't
// fit the model's structure. Allocation failures pass through as
// std::bad_alloc.
Description ReadDescription(std::string_view bytes);

}  // namespace tsxml_tool

#endif  // TSXML_TOOLS_TSXML_DESCRIPTION_H
