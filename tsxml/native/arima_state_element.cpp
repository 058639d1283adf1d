#include "tsxml/native/arima_state_element.h"

#include <memory>
#include <vector>

#include "tsxml/modelapi/arima_state.h"
#include "tsxml/native/model_elements.h"

namespace tsxml {

namespace {

// The state element `name` with "periodDeficit" from the state's span.
std::unique_ptr<XMLElement> MakeStateElement(const char* name,
                                             const ForecastState& state) {
  std::unique_ptr<XMLElement> element(XMLElement::Create(name));
  element->AddAttribute("periodDeficit",
                        static_cast<double>(state.GetStateSpan().Horizon()));
  return element;
}

// A value list element of a list that may be given as a vector.
void AddVectorElement(XMLElement& parent, const char* name,
                      const std::vector<double>& values) {
  std::unique_ptr<XMLElement> element(XMLElement::Create(name));
  AddValueText(*element, values.data(), values.size());
  parent.AddElement(element.release());
}

}  // namespace

void AddARIMACLSState(XMLElement& parent, const ARMACLSForecastState& state) {
  std::unique_ptr<XMLElement> element =
      MakeStateElement("ARIMACLSState", state);
  AddPredictorStates(*element, state);
  AddZState(*element, state);
  AddNoiseState(*element, state.GetActualN(), state.GetPredN());
  parent.AddElement(element.release());
}

void AddARIMAMLState(XMLElement& parent, const ARMAMLForecastState& state) {
  std::unique_ptr<XMLElement> element = MakeStateElement("ARIMAMLState", state);
  AddPredictorStates(*element, state);
  AddZState(*element, state);
  AddKalmanState(*element, state);
  parent.AddElement(element.release());
}

void AddARIMAMLSpState(XMLElement& parent, const ARMAMLSpForecastState& state) {
  std::unique_ptr<XMLElement> element =
      MakeStateElement("ARIMAMLSpState", state);
  AddPredictorStates(*element, state);
  AddZState(*element, state);
  AddNoiseState(*element, state.GetActualN(), state.GetPredN());
  AddThetaRecursionState(*element, state);
  parent.AddElement(element.release());
}

void AddPredictorStates(XMLElement& parent, const ARMAForecastState& state) {
  const unsigned count = state.GetAMModelSpec().GetXCount();
  for (unsigned i = 0; i < count; ++i) {
    const std::valarray<double>* predictor = nullptr;
    const std::valarray<double>* transferFunction = nullptr;
    state.GetXHistory(i, predictor, transferFunction);
    std::unique_ptr<XMLElement> element(XMLElement::Create("PredictorState"));
    if (predictor) {
      AddValueListElement(*element, "FinalPredictor", *predictor, false);
    }
    if (transferFunction) {
      AddValueListElement(*element, "FinalTransferFunc", *transferFunction,
                          false);
    }
    parent.AddElement(element.release());
  }
}

void AddZState(XMLElement& parent, const ARMAForecastState& state) {
  const std::valarray<double>& actual = state.GetActualZ();
  const std::valarray<double>& predicted = state.GetPredZ();
  if (actual.size() == 0 && predicted.size() == 0) return;
  std::unique_ptr<XMLElement> element(XMLElement::Create("ZState"));
  AddValueListElement(*element, "FinalZ", actual, false);
  AddValueListElement(*element, "FinalPredictedZ", predicted, false);
  parent.AddElement(element.release());
}

void AddNoiseState(XMLElement& parent, const std::valarray<double>& actual,
                   const std::valarray<double>& predicted) {
  std::unique_ptr<XMLElement> element(XMLElement::Create("NoiseState"));
  AddValueListElement(*element, "FinalNoise", actual, false);
  AddValueListElement(*element, "FinalPredictedNoise", predicted, false);
  parent.AddElement(element.release());
}

void AddKalmanState(XMLElement& parent, const ARMAMLForecastState& state) {
  std::unique_ptr<XMLElement> element(XMLElement::Create("KalmanState"));
  AddValueListElement(*element, "FinalOmega", state.GetFinalOmega().AsArray(),
                      false);
  AddValueListElement(*element, "FinalStateVector", state.GetFinalStateV(),
                      false);
  parent.AddElement(element.release());
}

void AddThetaRecursionState(XMLElement& parent,
                            const ARMAMLSpForecastState& state) {
  std::unique_ptr<XMLElement> element(
      XMLElement::Create("ThetaRecursionState"));
  element->AddAttribute("finalIterationNumber",
                        static_cast<double>(state.GetFinalIterCount()));
  std::unique_ptr<XMLElement> thetas(XMLElement::Create("FinalThetas"));
  for (const std::vector<double>& theta : state.GetFinalThetas()) {
    AddVectorElement(*thetas, "ThetaVec", theta);
  }
  element->AddElement(thetas.release());
  AddVectorElement(*element, "FinalNu", state.GetFinalNu());
  parent.AddElement(element.release());
}

}  // namespace tsxml
