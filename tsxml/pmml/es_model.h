// The "TimeSeriesModel" element of an exponential smoothing model in the PMML
// document.
#ifndef TSXML_PMML_ES_MODEL_H
#define TSXML_PMML_ES_MODEL_H

#include <string>
#include <valarray>

#include "tsxml/pmml/model_summary.h"
#include "tsxml/pmml/pmml_elements.h"
#include "tsxml/xml/xml_node.h"

class ESForecastState;
class EstimationInfo;
class TSXDictionaryRefs;

namespace tsxml {

using OstraTimeXML::XMLElement;

// The element of the model with `forecastState`, from `summary` (filled from
// that model), the document's time field and, when `timeSeries`, the observed
// series `history`, with numbers as `mode` spells them. A missing value in the
// final state drops what depends on it. Any other missing value is written as
// its number text in the default form, and so is "phi" of a damped trend
// model whose specification has no damping parameter; the consistent form
// leaves such an attribute out and writes "NaN" for a missing observation or
// extension value. A seasonal state that is not complete has no "Array" in
// the default form; the consistent form, whose schema requires one, gives it
// "NaN" for each seasonal value. Caller owns the result.
XMLElement* BuildESModel(const TSXModelSummary& summary,
                         const std::string& timeFieldName, bool timeSeries,
                         const TSXDictionaryRefs& refs,
                         const ESForecastState& forecastState,
                         const EstimationInfo& estimationInfo,
                         const std::valarray<double>& history, PMMLMode mode);

}  // namespace tsxml

#endif  // TSXML_PMML_ES_MODEL_H
