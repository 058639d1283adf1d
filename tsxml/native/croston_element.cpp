#include "tsxml/native/croston_element.h"

#include <memory>

#include "tsxml/native/es_element.h"
#include "tsxml/native/model_elements.h"

namespace tsxml {

XMLElement* MakeCrostonElement(const ESForecastState& actualDemand,
                               const ESForecastState& elapsedTime,
                               const ESForecastState& absoluteError,
                               const TSXDictionaryRefs& refs, unsigned function,
                               const EstimationInfo& info) {
  std::unique_ptr<XMLElement> model(XMLElement::Create("CrostonModel"));
  AddModelAttributes(*model, refs);
  AddTransformationElement(*model, function, 0, 0, 0);
  AddESSubmodel(*model, "ActualDemandSubmodel", actualDemand);
  AddESSubmodel(*model, "ElapsedTimeSubmodel", elapsedTime);
  AddESSubmodel(*model, "AbsoluteErrorSubmodel", absoluteError);
  AddEstimationInfo(*model, info);
  return model.release();
}

}  // namespace tsxml
