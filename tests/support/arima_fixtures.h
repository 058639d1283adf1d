// ARIMA and Croston models for tests, among them those of the PMML documents
// tests/data/pmml/arima_*.xml.
#ifndef TSXML_TESTS_SUPPORT_ARIMA_FIXTURES_H
#define TSXML_TESTS_SUPPORT_ARIMA_FIXTURES_H

#include <functional>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <valarray>
#include <vector>

#include "support/model_fixtures.h"
#include "tsxml/base/dictionary_refs.h"
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

using ModelList = std::vector<std::pair<TSFModel, TSXDictionaryRefs>>;

// The seasonal model of the PMML tests, tests/data/pmml/arima_kalman.xml:
// ARIMA(2,1,1)(1,1,1) with season 12 on the log scale and a constant of 10.5;
// a predictor on the square-root scale, differenced once and once seasonally,
// delayed by 2, with numerator lags 0, 1 and seasonal 1 and denominator lag 1;
// outliers additive at 30, level shift at 38 and transient at 41. Kalman
// state with a horizon of 2, a predictor history, both Z series, a 3 by 3
// omega and a state vector; RMSE 1.75, error variance 0.0125, 44 degrees of
// freedom, span 2 to 59. The 14 estimates, in their order: constant, AR 1 and
// 2, seasonal AR 1, MA 1, seasonal MA 1, numerator 0, 1, seasonal 1,
// denominator 1, the three outliers' magnitudes and the damping; standard
// errors a tenth of them.
inline TSFModel MakeSeasonalKalmanModel() {
  AMModelSpec spec;
  spec.SetSeasonLength(12);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  spec.SetYDiff(1, 1);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({1, 2}, {1});
  spec.SetMAStruct({1}, {1});
  // Transformation, differences, delay, numerator and denominator lags.
  spec.AddPredictor(
      {TSTransformSpec(BFSharedConst::SquareRoot), 1, 1, 2, {1}, {1}, {1}, {}});
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Additive, 30),
                    TSOutlierSpec(TSOutlierSpec::LevelShift, 38),
                    TSOutlierSpec(TSOutlierSpec::Transient, 41)});
  EstimationInfo info = BasicInfo(2, 58, 44, 0.0125);
  info.SetGOFStat(BFSharedConst::RMSE, 1.75);
  const std::valarray<double> estimates = {10.5,  0.5,   -0.25, 0.125, 0.375,
                                           0.625, 2.5,   0.75,  0.25,  0.5,
                                           3.5,   -1.25, 4,     0.625};
  return MakeARIMAModel<ARMAMLForecastState>(
      spec, estimates, estimates / 10.0, info, [](ARMAMLForecastState& state) {
        state.SetStateSpan(TSSpan(0, 60, 2));
        state.SetXHistory(0, {3, 4}, {0.5, 0.75});
        state.SetActualZ({0.25, -0.5});
        state.SetPredZ({0.125, -0.25});
        state.SetFinalOmega(DSymMat(3, {1, 0.5, 2, 0.25, 0.125, 3}));
        state.SetFinalStateV({0.25, 0.125, -0.5});
      });
}

// The models of tests/data/pmml/arima_models.xml: five models, all named "TS"
// in the document. In order: conditional least squares (theta recursion without
// theta and nu, no Z state with one Z series), ARIMA(0,0,0) with a missing
// error variance, ARIMA(0,1,0) with the theta recursion state, an AR term at
// lag 3 only with a seasonal difference only, and two predictors of which the
// references name one: the first without a denominator, the second without a
// history.
inline ModelList MakeEdgeModels() {
  AMModelSpec ar1, walk, lag3, predictors;
  ar1.SetARStruct({1}, {});
  walk.SetYDiff(1, 0);
  lag3.SetSeasonLength(4);
  lag3.SetYDiff(0, 1);
  lag3.SetARStruct({3}, {});
  predictors.AddPredictor({});
  predictors.AddPredictor({{}, 0, 0, 0, {2}, {}, {2}, {}});
  const EstimationInfo info = BasicInfo();
  EstimationInfo noVariance = info;
  noVariance.SetErrorVariance(MV::gMissingValue);
  return {
      {MakeARIMAModel<ARMACLSForecastState>(ar1, {0.4}, {}, info,
                                            [](ARMACLSForecastState& state) {
                                              state.SetActualN({0.1, -0.2});
                                              state.SetPredN({0.05, 0.15});
                                              state.SetActualZ({1.5});
                                            }),
       TSXDictionaryRefs("C", "", "y")},
      {MakeARIMAModel(AMModelSpec(), {}, {}, noVariance),
       TSXDictionaryRefs("Z", "", "zero")},
      {MakeARIMAModel<ARMAMLSpForecastState>(
           walk, {}, {}, info,
           [](ARMAMLSpForecastState& state) {
             state.SetActualN({0.1});
             state.SetFinalThetas({{0.5, 0.25}, {0.125}});
             state.SetFinalNu({1.5, 1.25});
             state.SetFinalIterCount(7);
           }),
       TSXDictionaryRefs("W", "", "walk")},
      {MakeARIMAModel(lag3, {0.5}), TSXDictionaryRefs("L", "", "lag3")},
      {MakeARIMAModel<ARMAMLForecastState>(predictors, {1.5, 2.5, 0.5, 0.25},
                                           {}, info,
                                           [](ARMAMLForecastState& state) {
                                             state.SetXHistory(0, {7}, {0.7});
                                           }),
       TSXDictionaryRefs("F", "", "y", {"x0"})}};
}

// The model of tests/data/pmml/arima_odd_values*.xml: no dependent variable and
// an unnamed predictor, an infinite RMSE, a NaN constant, a missing and an
// infinite AR coefficient, a transient outlier whose damping is missing, an
// infinite magnitude, an outlier of no known type, a missing omega, a NaN state
// and a missing error variance.
inline std::pair<TSFModel, TSXDictionaryRefs> MakeOddValuesModel() {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const double missing = MV::gMissingValue;
  AMModelSpec spec;
  spec.SetSeasonLength(4);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({1, 2}, {});
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Transient, 5),
                    TSOutlierSpec(TSOutlierSpec::Additive, 7),
                    TSOutlierSpec(8, 9)});
  EstimationInfo info = BasicInfo();
  info.SetGOFStat(BFSharedConst::RMSE, inf);
  info.SetErrorVariance(missing);
  return {MakeARIMAModel<ARMAMLForecastState>(
              spec, {nan, missing, -inf, 2, missing, inf, 1}, {}, info,
              [=](ARMAMLForecastState& state) {
                state.SetFinalOmega(DSymMat(1, {missing}));
                state.SetFinalStateV({nan});
              }),
          TSXDictionaryRefs("O", "", "", {""})};
}

}  // namespace testing_support

#endif  // TSXML_TESTS_SUPPORT_ARIMA_FIXTURES_H
