// ARIMA models of the PMML tests: the seasonal model with every part, and a
// maker for models of a given structure and state.
#ifndef TSXML_TESTS_PMML_ARIMA_TEST_MODELS_H
#define TSXML_TESTS_PMML_ARIMA_TEST_MODELS_H

#include <memory>
#include <utility>
#include <valarray>

#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"

namespace pmml_test {

// A model of `spec` with a forecast state of class `State`, the estimates
// `estimates` (standard errors a tenth of them), and `info`. `fill` may set
// the state's lists before the model takes it.
template <typename State, typename Fill>
TSFModel MakeARIMAModel(const AMModelSpec& spec,
                        const std::valarray<double>& estimates,
                        const EstimationInfo& info, Fill fill) {
  auto state = std::make_unique<State>(spec, estimates, estimates / 10.0);
  fill(*state);
  return TSFModel(new TSFModelImp(std::move(state), info));
}

template <typename State>
TSFModel MakeARIMAModel(
    const AMModelSpec& spec, const std::valarray<double>& estimates,
    const EstimationInfo& info = testing_support::BasicInfo()) {
  return MakeARIMAModel<State>(spec, estimates, info, [](State&) {});
}

// ARIMA(2,1,1)(1,1,1) with season 12 on the log scale and a constant of 10.5;
// a predictor on the square-root scale, differenced once and once seasonally,
// delayed by 2, with numerator lags 0, 1 and seasonal 1 and denominator lag 1;
// outliers additive at 30, level shift at 38 and transient at 41. Kalman
// state with a horizon of 2, a predictor history, both Z series, a 3 by 3
// omega and a state vector; RMSE 1.75, error variance 0.0125, 44 degrees of
// freedom, span 2 to 59. The 14 estimates, in their order: constant, AR 1 and
// 2, seasonal AR 1, MA 1, seasonal MA 1, numerator 0, 1, seasonal 1,
// denominator 1, the three outliers' magnitudes and the damping.
inline TSFModel MakeSeasonalKalmanModel() {
  AMModelSpec spec;
  spec.SetSeasonLength(12);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  spec.SetYDiff(1, 1);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({1, 2}, {1});
  spec.SetMAStruct({1}, {1});
  AMPredictorSpec price;
  price.transform = TSTransformSpec(BFSharedConst::SquareRoot);
  price.nonSeasonalDiff = 1;
  price.seasonalDiff = 1;
  price.delay = 2;
  price.numeratorNonSeasonal = {1};
  price.numeratorSeasonal = {1};
  price.denominatorNonSeasonal = {1};
  spec.AddPredictor(price);
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Additive, 30),
                    TSOutlierSpec(TSOutlierSpec::LevelShift, 38),
                    TSOutlierSpec(TSOutlierSpec::Transient, 41)});
  EstimationInfo info = testing_support::BasicInfo(2, 58, 44, 0.0125);
  info.SetGOFStat(BFSharedConst::RMSE, 1.75);
  return MakeARIMAModel<ARMAMLForecastState>(
      spec,
      {10.5, 0.5, -0.25, 0.125, 0.375, 0.625, 2.5, 0.75, 0.25, 0.5, 3.5, -1.25,
       4, 0.625},
      info, [](ARMAMLForecastState& state) {
        state.SetStateSpan(TSSpan(0, 60, 2));
        state.SetXHistory(0, {3, 4}, {0.5, 0.75});
        state.SetActualZ({0.25, -0.5});
        state.SetPredZ({0.125, -0.25});
        state.SetFinalOmega(DSymMat(3, {1, 0.5, 2, 0.25, 0.125, 3}));
        state.SetFinalStateV({0.25, 0.125, -0.5});
      });
}

}  // namespace pmml_test

#endif  // TSXML_TESTS_PMML_ARIMA_TEST_MODELS_H
