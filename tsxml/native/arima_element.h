// The structure of an ARIMA model in the native document: "ARIMAModel" with
// its constant, AR and MA factors, one "PredictorEffect" per predictor and
// one "OutlierEffect" per outlier, each estimate read from the model's flat
// parameter vector at the position that the AMModelSpec gives.
//
// Positions are 32-bit: the end of a group is computed in unsigned 32-bit
// arithmetic and wraps. A value at a position outside a vector is never
// read; it counts as missing.
#ifndef TSXML_NATIVE_ARIMA_ELEMENT_H
#define TSXML_NATIVE_ARIMA_ELEMENT_H

#include <valarray>

#include "tsxml/xml/xml_node.h"

class AMModelSpec;
class AMPowers;
class TSOutlierSpec;
class TSXDictionaryRefs;

namespace tsxml {

using OstraTimeXML::XMLElement;

// The "ARIMAModel" element without its state and "EstimationInfo", or null
// when `refs` names a different number of predictors than `spec` has.
// Caller owns the result.
XMLElement* MakeARIMAElement(const AMModelSpec& spec,
                             const TSXDictionaryRefs& refs,
                             const std::valarray<double>& parameters,
                             const std::valarray<double>& stdErrors);

// Adds "NonSeasonalFactor" (when `includeZeroLag` or non-seasonal lags) and
// "SeasonalFactor" (when seasonal lags), their terms taking consecutive
// parameters from `firstParameter`. The terms are empty when the estimates
// end before the group does; the errors are left out of the whole group when
// they end before it. True if a factor was added.
bool AddLagFactors(XMLElement& parent, const AMPowers& nonSeasonal,
                   const AMPowers& seasonal, bool includeZeroLag,
                   unsigned firstParameter,
                   const std::valarray<double>& parameters,
                   const std::valarray<double>& stdErrors);

// Adds "ZeroLagTerm" for lag 0, else "LagTerm" with "lag", holding the
// estimate unless it is missing.
void AddLagTerm(XMLElement& parent, unsigned lag, double estimate,
                double stdError);

// Adds "OutlierEffect" with the outlier's parameters from `firstParameter`
// (none when the estimates end before them); nothing for a type outside
// 1..7.
void AddOutlierEffect(XMLElement& parent, const TSOutlierSpec& outlier,
                      unsigned firstParameter,
                      const std::valarray<double>& parameters,
                      const std::valarray<double>& stdErrors);

}  // namespace tsxml

#endif  // TSXML_NATIVE_ARIMA_ELEMENT_H
