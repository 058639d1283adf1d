#include "tsxml/native/es_element.h"

#include <algorithm>
#include <memory>

#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/estimation_info.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/native/model_elements.h"

namespace tsxml {

namespace {

constexpr const char* kTypeElement[] = {
    "ESAdditiveWinters",       "ESBrown",          "ESDampedTrend", "ESHolt",
    "ESMultiplicativeWinters", "ESSimpleSeasonal", "ESSimple",
};
constexpr const char* kParameterElement[] = {"ParmLevel", "ParmTrend",
                                             "ParmSeason", "ParmDampingTrend"};

// The standard error at `index`, missing past the end of the vector.
double StdErrorAt(const std::valarray<double>& stdErrors, size_t index) {
  return index < stdErrors.size() ? stdErrors[index] : MV::gMissingValue;
}

std::unique_ptr<XMLElement> MakeValueElement(const char* name, double value) {
  std::unique_ptr<XMLElement> element(XMLElement::Create(name));
  AddValueText(*element, &value, 1);
  return element;
}

// Adds the "Parm" elements of the kinds the model has; false when a position
// lies past the estimates or an estimate is missing.
bool AddParameters(XMLElement& typeElement, const ESModelSpec& spec,
                   const std::valarray<double>& parameters,
                   const std::valarray<double>& stdErrors) {
  for (int kind = 0; kind < ESModelSpec::kParameterKindCount; ++kind) {
    const int index = spec.GetESParameterIndex(kind);
    if (index < 0) continue;
    const size_t position = static_cast<size_t>(index);
    if (position >= parameters.size()) return false;
    std::unique_ptr<XMLElement> kindElement(
        XMLElement::Create(kParameterElement[kind]));
    if (!AddEstimatedParameter(*kindElement, parameters[position],
                               StdErrorAt(stdErrors, position))) {
      return false;
    }
    typeElement.AddElement(kindElement.release());
  }
  return true;
}

}  // namespace

bool AddESStates(XMLElement& parent, const ESModelSpec& spec,
                 const ESForecastState& state) {
  const WIESSmState& sm = state.GetSmState();
  if (MV::IsMissing(sm.level)) return false;
  std::unique_ptr<XMLElement> level = MakeValueElement("StateLevel", sm.level);

  std::unique_ptr<XMLElement> trend;
  if (ESModelSpec::HasTrendState(spec.GetESModelType())) {
    if (MV::IsMissing(sm.trend)) return false;
    trend = MakeValueElement("StateTrend", sm.trend);
  }

  std::unique_ptr<XMLElement> season;
  const uint64_t cycle = sm.CycleLength();
  if (cycle > 1) {
    // Never read past the stored values, whatever the cycle length says.
    const size_t count =
        static_cast<size_t>(std::min<uint64_t>(cycle, sm.seasonal.size()));
    for (double value : sm.seasonal) {
      if (MV::IsMissing(value)) return false;
    }
    season.reset(XMLElement::Create("StateSeason"));
    season->AddAttribute("phase", static_cast<double>(sm.phase));
    if (count > 0) AddValueText(*season, &sm.seasonal[0], count);
  }

  parent.AddElement(level.release());
  if (trend) parent.AddElement(trend.release());
  if (season) parent.AddElement(season.release());
  return true;
}

XMLElement* MakeExpSmoothingElement(const ESModelSpec& spec,
                                    const TSXDictionaryRefs& refs,
                                    const std::valarray<double>& parameters,
                                    const std::valarray<double>& stdErrors,
                                    const ESForecastState& state,
                                    const EstimationInfo& info) {
  std::unique_ptr<XMLElement> model(XMLElement::Create("ExpSmoothingModel"));
  AddModelAttributes(*model, refs);
  AddTransformationElement(*model, spec.GetYTransformSpec().function, 0, 0, 0);

  const unsigned seasonLength = spec.GetSeasonLength(true);
  const int type = spec.GetESModelType();
  if (type < 0 || type > ESModelSpec::ESSimple) return nullptr;

  std::unique_ptr<XMLElement> typeElement(
      XMLElement::Create(kTypeElement[type]));
  if (seasonLength > 1) {
    typeElement->AddAttribute("seasonLength",
                              static_cast<double>(seasonLength));
  }
  if (parameters.size() >= spec.GetParameterCount(true) &&
      !AddParameters(*typeElement, spec, parameters, stdErrors)) {
    return nullptr;
  }
  if (!AddESStates(*typeElement, spec, state)) return nullptr;

  model->AddElement(typeElement.release());
  AddEstimationInfo(*model, info);
  return model.release();
}

void AddESSubmodel(XMLElement& parent, const std::string& name,
                   const ESForecastState& state) {
  std::unique_ptr<XMLElement> submodel(XMLElement::Create(name));
  std::unique_ptr<XMLElement> esSimple(XMLElement::Create("ESSimple"));

  const ESModelSpec& spec = state.GetESModelSpec();
  const std::valarray<double>& parameters = state.GetParameters();
  const int index = spec.GetESParameterIndex(ESModelSpec::Level);
  if (index >= 0 && static_cast<size_t>(index) < parameters.size()) {
    const size_t position = static_cast<size_t>(index);
    std::unique_ptr<XMLElement> parmLevel(XMLElement::Create("ParmLevel"));
    if (AddEstimatedParameter(
            *parmLevel, parameters[position],
            StdErrorAt(state.GetParameterStdErrors(), position))) {
      esSimple->AddElement(parmLevel.release());
    }
  }
  AddESStates(*esSimple, spec, state);

  submodel->AddElement(esSimple.release());
  parent.AddElement(submodel.release());
}

}  // namespace tsxml
