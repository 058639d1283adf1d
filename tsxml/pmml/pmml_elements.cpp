#include "tsxml/pmml/pmml_elements.h"

#include <cmath>
#include <memory>
#include <utility>

#include "tsxml/base/missing_value.h"
#include "tsxml/base/vendor.h"
#include "tsxml/modelapi/outlier_spec.h"
#include "tsxml/native/model_elements.h"
#include "tsxml/xml/internal/node_writer.h"
#include "tsxml/xml/number_text.h"

namespace tsxml {

using OstraTimeXML::Format;
using OstraTimeXML::XMLString;

// The size of the records of those of the five pairs that are written.
std::size_t PairBytes(std::string_view name, std::string_view value) {
  return name.empty() || value.empty()
             ? 0
             : XMLNodeAccess::AttributeRecordSize(name.size(), value.size());
}

namespace {

XMLElement* AddRealArray(XMLElement& parent, const double* values,
                         size_t count) {
  std::unique_ptr<XMLElement> array(XMLNodeAccess::CreateElement(
      "Array", XMLNodeAccess::AttributeRecordSize(1, 20) +
                   XMLNodeAccess::AttributeRecordSize(4, 4)));
  XMLNodeAccess::AddNumberAttribute(*array, "n", static_cast<double>(count));
  XMLNodeAccess::AddTextAttribute(*array, "type", "real");
  AddDoubleListText(*array, values, count);
  XMLElement* result = array.get();
  XMLNodeAccess::AddChild(parent, array.release());
  return result;
}

XMLElement* AddArrayElement(XMLElement& parent, std::string_view elementName,
                            const double* values, size_t count) {
  XMLElement* wrapper = AddChildElement(parent, elementName);
  AddRealArray(*wrapper, values, count);
  return wrapper;
}

const double* Data(const std::valarray<double>& values) {
  return values.size() ? &values[0] : nullptr;
}

}  // namespace

std::string PMMLNumberText(double value) {
  return MV::IsMissing(value) ? std::string() : Format(value, false, nullptr);
}

void AddOptionalAttribute(XMLElement& element, std::string_view name,
                          std::string_view value) {
  if (name.empty() || value.empty()) return;
  XMLNodeAccess::AddTextAttribute(element, name, value);
}

void AddIntegerAttribute(XMLElement& element, std::string_view name,
                         int value) {
  AddDoubleAttribute(element, name, static_cast<double>(value));
}

void AddDoubleAttribute(XMLElement& element, std::string_view name,
                        double value) {
  if (name.empty() || MV::IsMissing(value)) return;
  XMLNodeAccess::AddNumberAttribute(element, name, value);
}

XMLElement* AddChildElement(XMLElement& parent, std::string_view elementName,
                            std::string_view name1, std::string_view value1,
                            std::string_view name2, std::string_view value2,
                            std::string_view name3, std::string_view value3,
                            std::string_view name4, std::string_view value4,
                            std::string_view name5, std::string_view value5) {
  std::unique_ptr<XMLElement> child(XMLNodeAccess::CreateElement(
      elementName, PairBytes(name1, value1) + PairBytes(name2, value2) +
                       PairBytes(name3, value3) + PairBytes(name4, value4) +
                       PairBytes(name5, value5)));
  AddOptionalAttribute(*child, name1, value1);
  AddOptionalAttribute(*child, name2, value2);
  AddOptionalAttribute(*child, name3, value3);
  AddOptionalAttribute(*child, name4, value4);
  AddOptionalAttribute(*child, name5, value5);
  XMLElement* result = child.get();
  XMLNodeAccess::AddChild(parent, child.release());
  return result;
}

void AddMiningField(XMLElement& parent, std::string_view name,
                    std::string_view usageType) {
  AddChildElement(parent, "MiningField", "name", name, "usageType", usageType);
}

void AddDataField(XMLElement& parent, std::string_view name) {
  AddChildElement(parent, "DataField", "dataType", "double", "optype",
                  "continuous", "name", name, "displayName", name);
}

void AddValueExtension(XMLElement& parent, std::string_view name,
                       double value) {
  std::unique_ptr<XMLElement> extension(XMLNodeAccess::CreateElement(
      "Extension",
      XMLNodeAccess::AttributeRecordSize(8, sizeof kExtenderText - 1) +
          XMLNodeAccess::AttributeRecordSize(4, name.size()) +
          XMLNodeAccess::AttributeRecordSize(5, 20)));
  XMLNodeAccess::AddTextAttribute(*extension, "extender", kExtenderText);
  XMLNodeAccess::AddTextAttribute(*extension, "name", name);
  XMLNodeAccess::AddNumberAttribute(*extension, "value", value);
  XMLNodeAccess::AddChild(parent, extension.release());
}

XMLElement* AddContainerExtension(XMLElement& parent, std::string_view name) {
  return AddChildElement(parent, "Extension", "extender", kExtenderText, "name",
                         name);
}

void AddDoubleListText(XMLElement& element, const double* values,
                       size_t count) {
  if (values == nullptr || count == 0) return;
  std::unique_ptr<XMLString> node(
      XMLString::Create(ValueText(values, count, InfinityText::kNumberText)));
  element.AddElement(node.release());
}

XMLElement* AddRealArray(XMLElement& parent,
                         const std::valarray<double>& values) {
  return AddRealArray(parent, Data(values), values.size());
}

XMLElement* AddRealArray(XMLElement& parent,
                         const std::vector<double>& values) {
  return AddRealArray(parent, values.data(), values.size());
}

XMLElement* AddArrayElement(XMLElement& parent, std::string_view elementName,
                            const std::valarray<double>& values) {
  return AddArrayElement(parent, elementName, Data(values), values.size());
}

XMLElement* AddArrayElement(XMLElement& parent, std::string_view elementName,
                            const std::vector<double>& values) {
  return AddArrayElement(parent, elementName, values.data(), values.size());
}

std::string TransformationName(unsigned kind) {
  switch (kind) {
    case 1:
      return "logarithmic";
    case 2:
      return "squareroot";
    default:
      return "none";
  }
}

std::string OutlierTypeName(unsigned type) {
  const char* name = TSOutlierSpec::TypeName(type);
  return name ? name : "";
}

namespace {

// The text of the largest doubles, whose 15 digits round past the range, and
// the 15 digits below it.
constexpr char kRoundedPastMax[] = "1.79769313486232e+308";
constexpr char kLargestInRange[] = "1.79769313486231e+308";

std::string ModeText(double value, PMMLMode mode) {
  return mode == PMMLMode::kConsistent ? XsDoubleText(value)
                                       : Format(value, false, nullptr);
}

XMLElement* AddRealArray(XMLElement& parent, const double* values, size_t count,
                         PMMLMode mode) {
  if (mode == PMMLMode::kDefault) {
    return AddRealArray(parent, values, count);
  }
  std::unique_ptr<XMLElement> array(XMLElement::Create("Array"));
  array->AddAttribute("n", static_cast<double>(count));
  array->AddAttribute("type", "real");
  AddDoubleListText(*array, values, count, mode);
  XMLElement* result = array.get();
  parent.AddElement(array.release());
  return result;
}

XMLElement* AddArrayElement(XMLElement& parent, std::string elementName,
                            const double* values, size_t count, PMMLMode mode) {
  XMLElement* wrapper = AddChildElement(parent, std::move(elementName));
  AddRealArray(*wrapper, values, count, mode);
  return wrapper;
}

}  // namespace

std::string XsDoubleText(double value) {
  if (MV::IsMissing(value) || std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "INF" : "-INF";
  std::string text = Format(value, false, nullptr);
  const size_t digits = text[0] == '-' ? 1 : 0;
  if (text.compare(digits, std::string::npos, kRoundedPastMax) == 0) {
    text.replace(digits, std::string::npos, kLargestInRange);
  }
  return text;
}

std::string PMMLNumberText(double value, PMMLMode mode) {
  return MV::IsMissing(value) ? std::string() : ModeText(value, mode);
}

void AddDoubleAttribute(XMLElement& element, std::string name, double value,
                        PMMLMode mode) {
  AddOptionalAttribute(element, std::move(name), PMMLNumberText(value, mode));
}

void AddNumberAttribute(XMLElement& element, std::string name, double value,
                        PMMLMode mode) {
  if (mode == PMMLMode::kConsistent) {
    AddDoubleAttribute(element, std::move(name), value, mode);
  } else {
    element.AddAttribute(name, value);
  }
}

void AddRequiredNumberAttribute(XMLElement& element, std::string name,
                                double value, PMMLMode mode) {
  element.AddAttribute(name, ModeText(value, mode));
}

void AddValueExtension(XMLElement& parent, std::string name, double value,
                       PMMLMode mode) {
  if (mode == PMMLMode::kDefault) {
    AddValueExtension(parent, std::move(name), value);
    return;
  }
  std::unique_ptr<XMLElement> extension(XMLElement::Create("Extension"));
  extension->AddAttribute("extender", kExtenderText);
  extension->AddAttribute("name", name);
  extension->AddAttribute("value", XsDoubleText(value));
  parent.AddElement(extension.release());
}

void AddDoubleListText(XMLElement& element, const double* values, size_t count,
                       PMMLMode mode) {
  if (mode == PMMLMode::kDefault) {
    AddDoubleListText(element, values, count);
    return;
  }
  if (values == nullptr || count == 0) return;
  std::string text;
  for (size_t i = 0; i < count; ++i) {
    if (i != 0) text += ' ';
    text += XsDoubleText(values[i]);
  }
  std::unique_ptr<XMLString> node(XMLString::Create(text));
  element.AddElement(node.release());
}

XMLElement* AddRealArray(XMLElement& parent,
                         const std::valarray<double>& values, PMMLMode mode) {
  return AddRealArray(parent, Data(values), values.size(), mode);
}

XMLElement* AddRealArray(XMLElement& parent, const std::vector<double>& values,
                         PMMLMode mode) {
  return AddRealArray(parent, values.data(), values.size(), mode);
}

XMLElement* AddArrayElement(XMLElement& parent, std::string elementName,
                            const std::valarray<double>& values,
                            PMMLMode mode) {
  return AddArrayElement(parent, std::move(elementName), Data(values),
                         values.size(), mode);
}

XMLElement* AddArrayElement(XMLElement& parent, std::string elementName,
                            const std::vector<double>& values, PMMLMode mode) {
  return AddArrayElement(parent, std::move(elementName), values.data(),
                         values.size(), mode);
}

}  // namespace tsxml
