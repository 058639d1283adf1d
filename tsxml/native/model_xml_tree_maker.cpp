#include "tsxml/native/model_xml_tree_maker.h"

#include <memory>

#include "tsxml/modelapi/arima_state.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/native/arima_element.h"
#include "tsxml/native/arima_state_element.h"
#include "tsxml/native/es_element.h"
#include "tsxml/native/model_elements.h"
#include "tsxml/xml/xml_node.h"

ModelXMLTreeMaker::ModelXMLTreeMaker(const TSXDictionaryRefs& refs,
                                     const EstimationInfo& info)
    : refs_(refs), info_(info) {}

ModelXMLTreeMaker::~ModelXMLTreeMaker() { delete element_; }

namespace {

// The "ARIMAModel" element of `state` with the state element that `addState`
// adds and "EstimationInfo", or null when the structure can't be written.
template <typename State, typename AddState>
OstraTimeXML::XMLElement* MakeARIMAModel(const State& state,
                                         const TSXDictionaryRefs& refs,
                                         const EstimationInfo& info,
                                         AddState addState) {
  std::unique_ptr<OstraTimeXML::XMLElement> element(tsxml::MakeARIMAElement(
      state.GetAMModelSpec(), refs, state.GetParameters(),
      state.GetParameterStdErrors()));
  if (!element) return nullptr;
  addState(*element, state);
  tsxml::AddEstimationInfo(*element, info);
  return element.release();
}

}  // namespace

void ModelXMLTreeMaker::Visit(const ARMAMLSpForecastState& state) {
  element_ = MakeARIMAModel(state, refs_, info_, tsxml::AddARIMAMLSpState);
}
void ModelXMLTreeMaker::Visit(const ARMAMLForecastState& state) {
  element_ = MakeARIMAModel(state, refs_, info_, tsxml::AddARIMAMLState);
}
void ModelXMLTreeMaker::Visit(const ARMACLSForecastState& state) {
  element_ = MakeARIMAModel(state, refs_, info_, tsxml::AddARIMACLSState);
}

void ModelXMLTreeMaker::Visit(const ESForecastState& state) {
  element_ = tsxml::MakeExpSmoothingElement(
      state.GetESModelSpec(), refs_, state.GetParameters(),
      state.GetParameterStdErrors(), state, info_);
}

OstraTimeXML::XMLElement* ModelXMLTreeMaker::ReleaseTree() {
  OstraTimeXML::XMLElement* element = element_;
  element_ = nullptr;
  return element;
}
