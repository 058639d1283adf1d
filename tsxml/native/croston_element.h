// The Croston element of the native document: three simple exponential
// smoothing sub-models that share a transformation and fit statistics.
#ifndef TSXML_NATIVE_CROSTON_ELEMENT_H
#define TSXML_NATIVE_CROSTON_ELEMENT_H

#include "tsxml/xml/xml_node.h"

class ESForecastState;
class EstimationInfo;
class TSXDictionaryRefs;

namespace tsxml {

using OstraTimeXML::XMLElement;

// The "CrostonModel" element: "Transformation" unless `function` is 0, the
// three sub-models in fixed order, "EstimationInfo". A sub-model with missing
// values is written with what it has. Never null; caller owns the result.
XMLElement* MakeCrostonElement(const ESForecastState& actualDemand,
                               const ESForecastState& elapsedTime,
                               const ESForecastState& absoluteError,
                               const TSXDictionaryRefs& refs, unsigned function,
                               const EstimationInfo& info);

}  // namespace tsxml

#endif  // TSXML_NATIVE_CROSTON_ELEMENT_H
