// Small builders of the PMML document: number text for optional attributes,
// the PMML "Array", the two forms of "Extension", the field elements, and the
// tables that turn the model library's enumerations into PMML words. Each
// hangs what it makes under the element it is given, which owns it from then
// on; none keeps state. Names and values are read during the call only, so
// std::string, literals and views serve alike.
#ifndef TSXML_PMML_PMML_ELEMENTS_H
#define TSXML_PMML_PMML_ELEMENTS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <valarray>
#include <vector>

#include "tsxml/xml/xml_node.h"

namespace tsxml {

using OstraTimeXML::XMLElement;

// The text of `value` for an optional attribute: empty for the missing value,
// else the number text (infinities and NaN as the standard library prints
// them).
std::string PMMLNumberText(double value);

// Adds name="value" unless `name` or `value` is empty.
void AddOptionalAttribute(XMLElement& element, std::string_view name,
                          std::string_view value);

// Adds the number text of `value`; 0 is written as "0".
void AddIntegerAttribute(XMLElement& element, std::string_view name, int value);

// Adds the number text of `value`; nothing for the missing value.
void AddDoubleAttribute(XMLElement& element, std::string_view name,
                        double value);

// Adds element `elementName` to `parent` with those of the five pairs whose
// name and value are both not empty, in order. Returns the new element, which
// `parent` owns.
XMLElement* AddChildElement(
    XMLElement& parent, std::string_view elementName,
    std::string_view name1 = {}, std::string_view value1 = {},
    std::string_view name2 = {}, std::string_view value2 = {},
    std::string_view name3 = {}, std::string_view value3 = {},
    std::string_view name4 = {}, std::string_view value4 = {},
    std::string_view name5 = {}, std::string_view value5 = {});

// Adds "MiningField" with "name" and "usageType", each unless empty.
void AddMiningField(XMLElement& parent, std::string_view name,
                    std::string_view usageType);

// Adds a continuous "DataField" of type double; "name" and "displayName" are
// left out when `name` is empty.
void AddDataField(XMLElement& parent, std::string_view name);

// Adds "Extension" with "extender", "name" (even if empty) and "value", the
// number text of `value` (also for the missing value).
void AddValueExtension(XMLElement& parent, std::string_view name, double value);

// Adds "Extension" with "extender" and, unless empty, "name". Returns it for
// the caller to fill; `parent` owns it.
XMLElement* AddContainerExtension(XMLElement& parent, std::string_view name);

// Adds one text node with the blank-separated values: "NaN" for a missing
// value, the number text otherwise (infinities are not replaced). Nothing for
// a null pointer or a count of 0.
void AddDoubleListText(XMLElement& element, const double* values, size_t count);

// Adds "Array" with "n" and type "real" holding `values` (no text when there
// are none). Returns it; `parent` owns it.
XMLElement* AddRealArray(XMLElement& parent,
                         const std::valarray<double>& values);
XMLElement* AddRealArray(XMLElement& parent, const std::vector<double>& values);

// Adds element `elementName` holding one AddRealArray of `values`. Returns
// the wrapper; `parent` owns it.
XMLElement* AddArrayElement(XMLElement& parent, std::string_view elementName,
                            const std::valarray<double>& values);
XMLElement* AddArrayElement(XMLElement& parent, std::string_view elementName,
                            const std::vector<double>& values);

// "logarithmic" for 1, "squareroot" for 2, "none" for any other kind.
std::string TransformationName(unsigned kind);

// The word of outlier types 0 to 7; empty for any other type, so that the
// attribute is left out.
std::string OutlierTypeName(unsigned type);

// The two forms of a PMML document. Default: the number text everywhere
// (infinities and NaN as the standard library prints them, and the missing
// value as its number text wherever an attribute is always written), names
// left out when empty. Consistent, a document that other PMML tools accept:
// numbers as the schema's xs:double spells them ("NaN", "INF", "-INF"), the
// missing value never as a number (an optional attribute is left out; a
// required attribute, an extension value or an array entry is "NaN"), and
// every field element with its name, also an empty one.
enum class PMMLMode { kDefault, kConsistent };

// The xs:double text of `value`: "NaN" for the missing value and NaN, "INF"
// and "-INF", else the number text (the largest doubles, whose 15 digits
// round past the range, rounded down into it).
std::string XsDoubleText(double value);

// The text of `value` for an optional attribute: empty for the missing value,
// else its text in `mode`.
std::string PMMLNumberText(double value, PMMLMode mode);

// Adds the text of `value` in `mode`; nothing for the missing value.
void AddDoubleAttribute(XMLElement& element, std::string name, double value,
                        PMMLMode mode);

// An attribute that the schema makes optional and the default form always
// writes: the number text (the missing value's too) in the default form, as
// AddDoubleAttribute in the consistent form.
void AddNumberAttribute(XMLElement& element, std::string name, double value,
                        PMMLMode mode);

// An attribute that the schema requires: the number text in the default
// form, XsDoubleText in the consistent form.
void AddRequiredNumberAttribute(XMLElement& element, std::string name,
                                double value, PMMLMode mode);

// AddValueExtension with "value" in `mode`: the consistent form writes
// XsDoubleText.
void AddValueExtension(XMLElement& parent, std::string name, double value,
                       PMMLMode mode);

// AddDoubleListText, AddRealArray and AddArrayElement with the values in
// `mode`: the consistent form writes each value as XsDoubleText.
void AddDoubleListText(XMLElement& element, const double* values, size_t count,
                       PMMLMode mode);
XMLElement* AddRealArray(XMLElement& parent,
                         const std::valarray<double>& values, PMMLMode mode);
XMLElement* AddRealArray(XMLElement& parent, const std::vector<double>& values,
                         PMMLMode mode);
XMLElement* AddArrayElement(XMLElement& parent, std::string elementName,
                            const std::valarray<double>& values, PMMLMode mode);
XMLElement* AddArrayElement(XMLElement& parent, std::string elementName,
                            const std::vector<double>& values, PMMLMode mode);

}  // namespace tsxml

#endif  // TSXML_PMML_PMML_ELEMENTS_H
