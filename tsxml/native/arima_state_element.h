// The final state of an ARIMA model's forecast recursion in the native
// document: "ARIMACLSState", "ARIMAMLState" or "ARIMAMLSpState", by the class
// of the state. Each builder adds what it makes to `parent` and never fails.
#ifndef TSXML_NATIVE_ARIMA_STATE_ELEMENT_H
#define TSXML_NATIVE_ARIMA_STATE_ELEMENT_H

#include <valarray>

#include "tsxml/xml/xml_node.h"

class ARMACLSForecastState;
class ARMAForecastState;
class ARMAMLForecastState;
class ARMAMLSpForecastState;

namespace tsxml {

using OstraTimeXML::XMLElement;

// "ARIMACLSState": predictor states, "ZState", "NoiseState".
void AddARIMACLSState(XMLElement& parent, const ARMACLSForecastState& state);
// "ARIMAMLState": predictor states, "ZState", "KalmanState".
void AddARIMAMLState(XMLElement& parent, const ARMAMLForecastState& state);
// "ARIMAMLSpState": predictor states, "ZState", "NoiseState",
// "ThetaRecursionState".
void AddARIMAMLSpState(XMLElement& parent, const ARMAMLSpForecastState& state);

// One "PredictorState" per predictor of the model, empty without history.
void AddPredictorStates(XMLElement& parent, const ARMAForecastState& state);
// "ZState", left out when both of its lists are empty.
void AddZState(XMLElement& parent, const ARMAForecastState& state);
// "NoiseState", empty when both lists are.
void AddNoiseState(XMLElement& parent, const std::valarray<double>& actual,
                   const std::valarray<double>& predicted);
// "KalmanState", empty when both of its lists are.
void AddKalmanState(XMLElement& parent, const ARMAMLForecastState& state);
// "ThetaRecursionState" with one "ThetaVec" per theta vector, even an empty
// one, and "FinalNu".
void AddThetaRecursionState(XMLElement& parent,
                            const ARMAMLSpForecastState& state);

}  // namespace tsxml

#endif  // TSXML_NATIVE_ARIMA_STATE_ELEMENT_H
