// The exponential smoothing element of the native document, and its reduced
// form inside a Croston model.
#ifndef TSXML_NATIVE_ES_ELEMENT_H
#define TSXML_NATIVE_ES_ELEMENT_H

#include <string>
#include <valarray>

#include "tsxml/xml/xml_node.h"

class ESForecastState;
class ESModelSpec;
class EstimationInfo;
class TSXDictionaryRefs;

namespace tsxml {

using OstraTimeXML::XMLElement;

// The "ExpSmoothingModel" element, or null when the model can't be written:
// a type outside 0..6, a parameter position past the estimates, a missing
// estimate, or a missing level, trend or seasonal value. Caller owns the
// result.
XMLElement* MakeExpSmoothingElement(const ESModelSpec& spec,
                                    const TSXDictionaryRefs& refs,
                                    const std::valarray<double>& parameters,
                                    const std::valarray<double>& stdErrors,
                                    const ESForecastState& state,
                                    const EstimationInfo& info);

// Adds "StateLevel", "StateTrend" and "StateSeason" as the model type has
// them. Adds nothing and gives false when one of them is missing.
bool AddESStates(XMLElement& parent, const ESModelSpec& spec,
                 const ESForecastState& state);

// Adds element `name` holding "ESSimple" with the level parameter and the
// states that are sound. Never fails.
void AddESSubmodel(XMLElement& parent, const std::string& name,
                   const ESForecastState& state);

}  // namespace tsxml

#endif  // TSXML_NATIVE_ES_ELEMENT_H
