#include "tsxml/pmml/es_model.h"

#include <memory>
#include <vector>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/estimation_info.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/pmml/pmml_elements.h"
#include "tsxml/xml/internal/node_writer.h"

namespace tsxml {

namespace {

// Below this smoothing weight the Brown trend has no "Array".
constexpr double kMinBrownAlpha = 1e-7;

// What the final smoothing state can give; a missing value drops the parts
// that depend on it.
struct StatePresence {
  StatePresence(const WIESSmState& state, int type) {
    level = !MV::IsMissing(state.level);
    trend = level && ESModelSpec::HasTrendState(type) &&
            !MV::IsMissing(state.trend);
    const bool complete = level && (!ESModelSpec::HasTrendState(type) ||
                                    !MV::IsMissing(state.trend));
    season = complete && state.CycleLength() >= 2;
    for (const double value : state.seasonal) {
      if (MV::IsMissing(value)) season = false;
    }
  }

  bool level;
  bool trend;
  bool season;
};

// The estimate of the damping parameter; missing without a valid position.
double Phi(const ESModelSpec& spec, const std::valarray<double>& estimates) {
  const int index = spec.GetESParameterIndex(ESModelSpec::DampingTrend);
  return index >= 0 && static_cast<size_t>(index) < estimates.size()
             ? estimates[static_cast<size_t>(index)]
             : MV::gMissingValue;
}

// The "trend" attribute of each model type and what follows it.
void AddTrendForm(XMLElement& trend, int type, double phi, double alpha,
                  const WIESSmState& state, PMMLMode mode) {
  switch (type) {
    case ESModelSpec::ESAdditiveWinters:
    case ESModelSpec::ESHolt:
    case ESModelSpec::ESMultiplicativeWinters:
      trend.AddAttribute("trend", "additive");
      break;
    case ESModelSpec::ESDampedTrend:
      trend.AddAttribute("trend", "damped_additive");
      AddNumberAttribute(trend, "phi", phi, mode);
      break;
    case ESModelSpec::ESBrown:
      trend.AddAttribute("trend", "polynomial_exponential");
      if (alpha > kMinBrownAlpha) {
        AddRealArray(
            trend,
            std::vector<double>{state.trend / alpha + state.level - state.trend,
                                state.trend},
            mode);
      }
      break;
    default:
      break;
  }
}

// The seasonality "type" of each seasonal model type; empty for the others.
const char* SeasonalityType(int type) {
  switch (type) {
    case ESModelSpec::ESAdditiveWinters:
    case ESModelSpec::ESSimpleSeasonal:
      return "additive";
    case ESModelSpec::ESMultiplicativeWinters:
      return "multiplicative";
    default:
      return "";
  }
}

void AddTimeSeries(XMLElement& model, const std::valarray<double>& history,
                   PMMLMode mode) {
  XMLElement* series = AddChildElement(model, "TimeSeries", "usage", "logical",
                                       "startTime", "1");
  XMLNodeAccess::AddNumberAttribute(*series, "endTime",
                                    static_cast<double>(history.size()));
  XMLNodeAccess::AddTextAttribute(*series, "interpolationMethod", "none");
  AddChildElement(*series, "TimeAnchor");
  // Room for every value first, so that adding one cannot fail. Each
  // element's attributes grow its block in place, as the last one made.
  XMLNodeAccess::ReserveChildren(*series, history.size());
  for (size_t i = 0; i < history.size(); ++i) {
    std::unique_ptr<XMLElement> value(
        XMLNodeAccess::CreateElement("TimeValue"));
    XMLNodeAccess::AddNumberAttribute(*value, "index",
                                      static_cast<double>(i + 1));
    if (mode == PMMLMode::kConsistent) {
      XMLNodeAccess::AddTextAttribute(*value, "value",
                                      XsDoubleText(history[i]));
    } else {
      XMLNodeAccess::AddNumberAttribute(*value, "value", history[i]);
    }
    XMLNodeAccess::AddChild(*series, value.release());
  }
}

}  // namespace

XMLElement* BuildESModel(const TSXModelSummary& summary,
                         const std::string& timeFieldName, bool timeSeries,
                         const TSXDictionaryRefs& refs,
                         const ESForecastState& forecastState,
                         const EstimationInfo& estimationInfo,
                         const std::valarray<double>& history, PMMLMode mode) {
  const ESModelSpec& spec = forecastState.GetESModelSpec();
  const std::valarray<double>& parameterEstimates =
      forecastState.GetParameters();
  const WIESSmState& state = forecastState.GetSmState();
  const int type = spec.GetESModelType();
  const StatePresence present(state, type);

  std::unique_ptr<XMLElement> model(XMLElement::Create("TimeSeriesModel"));
  AddOptionalAttribute(*model, "modelName", refs.GetModelName());
  model->AddAttribute("functionName", "timeSeries");
  model->AddAttribute("algorithmName", "exponential smoothing");
  model->AddAttribute("bestFit", "ExponentialSmoothing");

  XMLElement* schema = AddChildElement(*model, "MiningSchema");
  XMLElement* target = AddChildElement(*schema, "MiningField");
  target->AddAttribute("name", summary.dependentVarID);  // even if empty
  target->AddAttribute("usageType", "predicted");
  AddMiningField(*schema, timeFieldName, "order");

  if (timeSeries && history.size() != 0) {
    AddTimeSeries(*model, history, mode);
  }

  XMLElement* smoothing = AddChildElement(*model, "ExponentialSmoothing");
  AddNumberAttribute(*smoothing, "RMSE", summary.rmse, mode);
  smoothing->AddAttribute(
      "transformation", TransformationName(spec.GetYTransformSpec().function));
  double alpha = 0.0;
  bool trendWritten = false;
  for (size_t i = 0; i < summary.esParameterKinds.size(); ++i) {
    const std::vector<double>* row = i < summary.esParameterRows.size()
                                         ? &summary.esParameterRows[i]
                                         : nullptr;
    const double estimate = row && !row->empty()
                                ? (*row)[TSXModelSummary::kEstimate]
                                : MV::gMissingValue;
    switch (summary.esParameterKinds[i]) {
      case ESModelSpec::Level: {
        XMLElement* level = AddChildElement(*smoothing, "Level");
        AddNumberAttribute(*level, "alpha", estimate, mode);
        if (present.level) {
          AddNumberAttribute(*level, "smoothedValue", state.level, mode);
        }
        alpha = estimate;
        break;
      }
      case ESModelSpec::Trend: {
        XMLElement* trend = AddChildElement(*smoothing, "Trend_ExpoSmooth");
        AddNumberAttribute(*trend, "gamma", estimate, mode);
        if (present.trend) {
          AddNumberAttribute(*trend, "smoothedValue", state.trend, mode);
        }
        AddTrendForm(*trend, type, Phi(spec, parameterEstimates), alpha, state,
                     mode);
        trendWritten = true;
        break;
      }
      case ESModelSpec::Season: {
        XMLElement* season =
            AddChildElement(*smoothing, "Seasonality_ExpoSmooth");
        AddNumberAttribute(*season, "delta", estimate, mode);
        season->AddAttribute("period",
                             static_cast<double>(state.CycleLength()));
        season->AddAttribute("unit", "month");
        if (present.season) {
          season->AddAttribute("phase", static_cast<double>(state.phase));
        }
        AddOptionalAttribute(*season, "type", SeasonalityType(type));
        if (present.season) {
          AddRealArray(*season, state.seasonal, mode);
        } else if (mode == PMMLMode::kConsistent) {
          AddRealArray(
              *season,
              std::vector<double>(state.seasonal.size(), MV::gMissingValue),
              mode);
        }
        break;
      }
      default:  // the damping parameter is written as "phi" only
        break;
    }
  }
  if (!trendWritten && present.trend) {
    XMLElement* trend = AddChildElement(*smoothing, "Trend_ExpoSmooth");
    AddNumberAttribute(*trend, "smoothedValue", state.trend, mode);
    AddTrendForm(*trend, type, Phi(spec, parameterEstimates), alpha, state,
                 mode);
  }

  const TSSpan& span = estimationInfo.GetSpan();
  const WIESSmState& initial = forecastState.GetSmInitState();
  AddValueExtension(*model, "errVariance", estimationInfo.GetErrorVariance(),
                    mode);
  AddValueExtension(*model, "degreesOfFreedom",
                    static_cast<double>(estimationInfo.GetDegreesOfFreedom()),
                    mode);
  AddValueExtension(*model, "periodStartIndex",
                    static_cast<double>(span.Begin()), mode);
  AddValueExtension(*model, "periodLength", static_cast<double>(span.Length()),
                    mode);
  AddValueExtension(*model, "initLevel", initial.Level(), mode);
  if (ESModelSpec::HasTrendState(type)) {
    AddValueExtension(*model, "initTrend", initial.Trend(), mode);
  }
  if (present.season) {
    AddRealArray(*AddContainerExtension(*model, "initSeason"), initial.Season(),
                 mode);
  }
  return model.release();
}

}  // namespace tsxml
