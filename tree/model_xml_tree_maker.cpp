#include "tree/model_xml_tree_maker.h"

#include "modelapi/arima_state.h"
#include "modelapi/forecast_state.h"
#include "native/es_element.h"
#include "xml/xml_node.h"

ForecastStateVisitor::~ForecastStateVisitor() = default;

ModelXMLTreeMaker::ModelXMLTreeMaker(const TSXDictionaryRefs& refs,
                                     const EstimationInfo& info)
    : refs_(refs), info_(info) {}

ModelXMLTreeMaker::~ModelXMLTreeMaker() { delete element_; }

// ARIMA models are not written to the native document yet: their visits build
// no element, so adding one answers false.
void ModelXMLTreeMaker::Visit(const ARMAMLSpForecastState&) {}
void ModelXMLTreeMaker::Visit(const ARMAMLForecastState&) {}
void ModelXMLTreeMaker::Visit(const ARMACLSForecastState&) {}

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
