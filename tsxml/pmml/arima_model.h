// The "TimeSeriesModel" element of an ARIMA model in the PMML document. The
// schema has no vocabulary for ARIMA, so the "ARIMA" element stands in one of
// our "Extension" elements: structure, transfer functions, outliers and the
// final state (Kalman or theta recursion), read from the model's parameter
// table at the 0.95 level.
#ifndef TSXML_PMML_ARIMA_MODEL_H
#define TSXML_PMML_ARIMA_MODEL_H

#include "tsxml/modelapi/model.h"
#include "tsxml/pmml/pmml_elements.h"
#include "tsxml/xml/xml_node.h"

class TSXDictionaryRefs;

namespace tsxml {

using OstraTimeXML::XMLElement;

// The element of `model`, whose dependent variable and predictors `refs`
// names, with numbers as `mode` spells them. A missing statistic leaves its
// attribute out; a missing extension value is its number text in the default
// form and "NaN" in the consistent one. A field without a name gets a
// "MiningField" without "name" in the default form, with name="" in the
// consistent one. Caller owns the result.
// A PredictorState past the end of the history lists holds no arrays.
XMLElement* BuildARIMAModel(const TSFModel& model,
                            const TSXDictionaryRefs& refs, PMMLMode mode);

}  // namespace tsxml

#endif  // TSXML_PMML_ARIMA_MODEL_H
