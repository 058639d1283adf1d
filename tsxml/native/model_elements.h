// Builders shared by the elements of the native model document: value lists,
// "Transformation", "EstimatedParameter", "Statistic", "EstimationInfo" and
// the attributes of a model element. Each hangs what it makes under the
// parent it is given, which owns it from then on; none keeps state.
#ifndef TSXML_NATIVE_MODEL_ELEMENTS_H
#define TSXML_NATIVE_MODEL_ELEMENTS_H

#include <cstddef>
#include <string>
#include <valarray>

#include "tsxml/xml/xml_node.h"

class EstimationInfo;
class TSXDictionaryRefs;

namespace tsxml {

using OstraTimeXML::XMLElement;

// How a value list spells an infinity: "INF" and "-INF", or its number text
// ("inf" and "-inf").
enum class InfinityText { kUniform, kNumberText };

// The blank-separated text of `count` values: "NaN" for a missing value,
// infinities as `infinities` says, the number text otherwise.
std::string ValueText(const double* values, size_t count,
                      InfinityText infinities = InfinityText::kUniform);

// Adds one text node with ValueText; nothing for a count of 0.
void AddValueText(XMLElement& element, const double* values, size_t count);

// Adds element `name` holding the value text of `values`. An empty list adds
// nothing and gives false unless `emitEmpty`, which adds an empty element.
bool AddValueListElement(XMLElement& parent, const std::string& name,
                         const std::valarray<double>& values, bool emitEmpty);

// Adds "Transformation" with the attributes that are not 0; false (nothing
// added) when all four are 0.
bool AddTransformationElement(XMLElement& parent, unsigned function,
                              unsigned nonSeasonalDiff, unsigned seasonalDiff,
                              unsigned delay);

// Adds "EstimatedParameter" holding the estimate and, unless missing, the
// standard error; false (nothing added) when the estimate is missing.
bool AddEstimatedParameter(XMLElement& parent, double estimate,
                           double stdError);

// Adds "Statistic" of `type` unless `value` is missing.
void AddStatistic(XMLElement& parent, const std::string& type, double value);

// Adds "EstimationInfo" with the span, degrees of freedom, error variance,
// the goodness-of-fit statistics that are not missing and the Ljung-Box
// statistic.
void AddEstimationInfo(XMLElement& parent, const EstimationInfo& info);

// The attributes every native model element begins with: "modelName" and
// "modelDescriptor" when not empty, "variableID", "dateSpecID" when above 0.
void AddModelAttributes(XMLElement& model, const TSXDictionaryRefs& refs);

}  // namespace tsxml

#endif  // TSXML_NATIVE_MODEL_ELEMENTS_H
