// ARIMA and Croston models for tests.
#ifndef TSXML_TESTS_SUPPORT_ARIMA_FIXTURES_H
#define TSXML_TESTS_SUPPORT_ARIMA_FIXTURES_H

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <valarray>

#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"

namespace testing_support {

// n values: start, start + step, ...
inline std::valarray<double> Sequence(size_t n, double start, double step) {
  std::valarray<double> values(n);
  for (size_t i = 0; i < n; ++i) values[i] = start + step * i;
  return values;
}

// A model of `spec` with a forecast state of class `State` holding
// `estimates` and `stdErrors`, and `info`; `fill` may set the state's lists
// before the model takes it.
template <typename State = ARMAMLForecastState>
TSFModel MakeARIMAModel(const AMModelSpec& spec,
                        const std::valarray<double>& estimates,
                        const std::valarray<double>& stdErrors = {},
                        const EstimationInfo& info = BasicInfo(),
                        const std::function<void(State&)>& fill = nullptr) {
  auto state = std::make_unique<State>(spec, estimates, stdErrors);
  if (fill) fill(*state);
  return TSFModel(new TSFModelImp(std::move(state), info));
}

// Every part an ARIMA model can have: season 12, log and both differences,
// a constant, AR lags 1 and 2 with seasonal lag 1, seasonal MA lag 1, one
// predictor with numerator lag 1 and denominator lag 1, and two outliers
// (additive, transient). 11 parameters.
inline AMModelSpec MakeFullARIMASpec() {
  AMModelSpec spec;
  spec.SetSeasonLength(12);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  spec.SetYDiff(1, 1);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({1, 2}, {1});
  spec.SetMAStruct({}, {1});
  AMPredictorSpec x;
  x.nonSeasonalDiff = 1;
  x.delay = 1;
  x.numeratorNonSeasonal = {1};
  x.denominatorNonSeasonal = {1};
  spec.AddPredictor(x);
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Additive, 30),
                    TSOutlierSpec(TSOutlierSpec::Transient, 41)});
  return spec;
}

// A model of MakeFullARIMASpec() whose `State` has every list filled.
template <typename State>
TSFModel MakeFullARIMAModel() {
  const AMModelSpec spec = MakeFullARIMASpec();
  const unsigned count = spec.GetParameterCount(true);
  auto state = std::make_unique<State>(spec, Sequence(count, 0.5, 0.25),
                                       Sequence(count, 0.01, 0.01));
  state->SetStateSpan(TSSpan(0, 60, 2));
  state->SetActualZ({0.25, -0.5});
  state->SetPredZ({0.125, -0.25});
  state->SetXHistory(0, {3, 4}, {0.5, 0.75});
  if constexpr (std::is_same_v<State, ARMAMLForecastState>) {
    state->SetFinalOmega(DSymMat(2, {1, 0.5, 2}));
    state->SetFinalStateV({0.25, 0.125});
  } else {
    state->SetActualN({0.1, -0.2});
    state->SetPredN({0.05, 0.15});
  }
  if constexpr (std::is_same_v<State, ARMAMLSpForecastState>) {
    state->SetFinalThetas({{0.5, 0.25}, {0.125}});
    state->SetFinalNu({1.5, 1.25});
    state->SetFinalIterCount(7);
  }
  return TSFModel(new TSFModelImp(std::move(state), BasicInfo()));
}

// A Croston model of three simple smoothing sub-models with levels 12.5,
// `elapsedLevel` and 4, alphas 0.2, 0.1 and 0.3 (each 0.05).
inline TSFCrModel MakeCrostonModel(
    unsigned function = BFSharedConst::NoTransform,
    double elapsedLevel = 3.25) {
  const auto state = [](double level, double alpha) {
    return ESForecastState(ESModelSpec(ESModelSpec::ESSimple), {alpha}, {0.05},
                           WIESSmState(level, 0.0));
  };
  return TSFCrModel(new TSFCrModelImp(
      state(12.5, 0.2), state(elapsedLevel, 0.1), state(4, 0.3), BasicInfo(),
      static_cast<BFSharedConst::TSFunctionType>(function)));
}

}  // namespace testing_support

#endif  // TSXML_TESTS_SUPPORT_ARIMA_FIXTURES_H
