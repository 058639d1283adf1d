#include "tsxml/pmml/pmml_elements.h"

#include <cmath>
#include <memory>
#include <utility>

#include "tsxml/base/missing_value.h"
#include "tsxml/base/vendor.h"
#include "tsxml/modelapi/outlier_spec.h"
#include "tsxml/native/model_elements.h"
#include "tsxml/xml/number_text.h"

namespace tsxml {

using OstraTimeXML::Format;
using OstraTimeXML::XMLString;

namespace {

XMLElement* AddRealArray(XMLElement& parent, const double* values,
                         size_t count) {
  std::unique_ptr<XMLElement> array(XMLElement::Create("Array"));
  array->AddAttribute("n", static_cast<double>(count));
  array->AddAttribute("type", "real");
  AddDoubleListText(*array, values, count);
  XMLElement* result = array.get();
  parent.AddElement(array.release());
  return result;
}

XMLElement* AddArrayElement(XMLElement& parent, std::string elementName,
                            const double* values, size_t count) {
  XMLElement* wrapper = AddChildElement(parent, std::move(elementName));
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

void AddOptionalAttribute(XMLElement& element, std::string name,
                          std::string value) {
  if (name.empty() || value.empty()) return;
  element.AddAttribute(name, value);
}

void AddIntegerAttribute(XMLElement& element, std::string name, int value) {
  AddOptionalAttribute(element, std::move(name),
                       PMMLNumberText(static_cast<double>(value)));
}

void AddDoubleAttribute(XMLElement& element, std::string name, double value) {
  AddOptionalAttribute(element, std::move(name), PMMLNumberText(value));
}

XMLElement* AddChildElement(XMLElement& parent, std::string elementName,
                            std::string name1, std::string value1,
                            std::string name2, std::string value2,
                            std::string name3, std::string value3,
                            std::string name4, std::string value4,
                            std::string name5, std::string value5) {
  std::unique_ptr<XMLElement> child(XMLElement::Create(elementName));
  AddOptionalAttribute(*child, std::move(name1), std::move(value1));
  AddOptionalAttribute(*child, std::move(name2), std::move(value2));
  AddOptionalAttribute(*child, std::move(name3), std::move(value3));
  AddOptionalAttribute(*child, std::move(name4), std::move(value4));
  AddOptionalAttribute(*child, std::move(name5), std::move(value5));
  XMLElement* result = child.get();
  parent.AddElement(child.release());
  return result;
}

void AddMiningField(XMLElement& parent, std::string name,
                    std::string usageType) {
  XMLElement* field = AddChildElement(parent, "MiningField");
  AddOptionalAttribute(*field, "name", std::move(name));
  AddOptionalAttribute(*field, "usageType", std::move(usageType));
}

void AddDataField(XMLElement& parent, std::string name) {
  AddChildElement(parent, "DataField", "dataType", "double", "optype",
                  "continuous", "name", name, "displayName", name);
}

void AddValueExtension(XMLElement& parent, std::string name, double value) {
  std::unique_ptr<XMLElement> extension(XMLElement::Create("Extension"));
  extension->AddAttribute("extender", kExtenderText);
  extension->AddAttribute("name", name);
  extension->AddAttribute("value", value);
  parent.AddElement(extension.release());
}

XMLElement* AddContainerExtension(XMLElement& parent, std::string name) {
  return AddChildElement(parent, "Extension", "extender", kExtenderText, "name",
                         std::move(name));
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

XMLElement* AddArrayElement(XMLElement& parent, std::string elementName,
                            const std::valarray<double>& values) {
  return AddArrayElement(parent, std::move(elementName), Data(values),
                         values.size());
}

XMLElement* AddArrayElement(XMLElement& parent, std::string elementName,
                            const std::vector<double>& values) {
  return AddArrayElement(parent, std::move(elementName), values.data(),
                         values.size());
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
