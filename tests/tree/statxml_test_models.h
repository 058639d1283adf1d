// The fitted models and residual series of the StatXML documents under
// tests/data/statxml/. The numbers in those documents were computed apart
// from the library, with scipy and statsmodels (t = estimate / standard
// error, significance 2 * t.sf(|t|, df), limits estimate -+ t.ppf(0.975, df)
// * standard error, acf and pacf as in tests/modelapi). Where the library's
// text differs in the last digits it was checked to lie within the tested
// accuracy of its own distribution functions (the t quantile to about 3e-10
// relative) and of rounding (1e-14), and the library's digits were kept.
#ifndef TSXML_TESTS_TREE_STATXML_TEST_MODELS_H
#define TSXML_TESTS_TREE_STATXML_TEST_MODELS_H

#include <memory>
#include <valarray>

#include "support/model_fixtures.h"
#include "tsxml/base/dictionary_refs.h"
#include "tsxml/modelapi/forecast_model.h"

namespace statxml_test {

// es_model.xml: a Holt model of "visits" with every statistic that the
// document reports (and one that it does not), a Ljung-Box test, and
// kHoltResiduals at 3 lags.
inline TSFModel MakeHoltModel() {
  EstimationInfo info = testing_support::BasicInfo(0, 36, 34);
  const struct {
    BFSharedConst::GOFStatType type;
    double value;
  } statistics[] = {{BFSharedConst::MSE, 4.5},    {BFSharedConst::RMSE, 2.125},
                    {BFSharedConst::RMSPE, 4.75}, {BFSharedConst::MAPE, 3.25},
                    {BFSharedConst::MAXAPE, 9.5}, {BFSharedConst::MAE, 1.75},
                    {BFSharedConst::MAXAE, 5.25}, {BFSharedConst::AIC, 60.5},
                    {BFSharedConst::BIC, 64.25},  {BFSharedConst::RSQ, 0.875},
                    {BFSharedConst::SRSQ, 0.5},   {BFSharedConst::NRMBIC, 1.5}};
  for (const auto& statistic : statistics) {
    info.SetGOFStat(statistic.type, statistic.value);
  }
  info.SetLBStat(10.5, 18, 16, 0.881);
  return testing_support::MakeESModel(ESModelSpec(ESModelSpec::ESHolt),
                                      {0.4, 0.1}, {0.08, 0.05},
                                      WIESSmState(20, 0.5), info);
}
inline const std::valarray<double> kHoltResiduals = {
    0.5, -1.25, 0.75, 1.5, -0.5, -1.0, 0.25, 1.25, -0.75, 0.5};
inline const TSXDictionaryRefs kHoltRefs("Visits", "", "visits");

// arima_model.xml: ARIMA(1,1,1)(0,1,1) with season 12 of "sales", the
// predictor "advertising" with numerator and denominator lag 1, an additive
// outlier, a level shift and a transient; kSalesResiduals at 4 lags.
inline TSFModel MakeSalesModel() {
  AMModelSpec spec;
  spec.SetSeasonLength(12);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  spec.SetYDiff(1, 1);
  spec.SetARStruct({1}, {});
  spec.SetMAStruct({1}, {1});
  AMPredictorSpec advertising;
  advertising.nonSeasonalDiff = 1;
  advertising.seasonalDiff = 1;
  advertising.delay = 1;
  advertising.numeratorNonSeasonal = {1};
  advertising.denominatorNonSeasonal = {1};
  spec.AddPredictor(advertising);
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Additive, 17),
                    TSOutlierSpec(TSOutlierSpec::LevelShift, 38),
                    TSOutlierSpec(TSOutlierSpec::Transient, 45)});
  // AR 1, MA 1, seasonal MA 1, numerator lags 0 and 1, denominator lag 1,
  // the additive outlier, the level shift, the transient's magnitude and
  // damping.
  auto state = std::make_unique<ARMAMLForecastState>(
      spec,
      std::valarray<double>{0.3124, 0.5871, 0.6342, 0.0215, 0.0087, 0.4512,
                            0.1873, -0.0941, 0.2205, 0.6125},
      std::valarray<double>{0.1287, 0.1093, 0.0978, 0.0052, 0.0049, 0.1625,
                            0.0412, 0.0367, 0.0534, 0.1475});
  state->SetStateSpan(TSSpan(0, 60, 0));
  EstimationInfo info = testing_support::BasicInfo(0, 60, 38, 0.00184);
  info.SetGOFStat(BFSharedConst::MSE, 41.27);
  info.SetGOFStat(BFSharedConst::RMSE, 6.424);
  info.SetGOFStat(BFSharedConst::MAPE, 2.716);
  info.SetGOFStat(BFSharedConst::MAE, 5.083);
  info.SetGOFStat(BFSharedConst::BIC, 312.5);
  info.SetGOFStat(BFSharedConst::AIC, 301.25);
  info.SetGOFStat(BFSharedConst::RSQ, 0.9381);
  info.SetGOFStat(BFSharedConst::SRSQ, 0.4475);
  info.SetLBStat(14.62, 18, 15, 0.479);
  return TSFModel(new TSFModelImp(std::move(state), info));
}
inline const std::valarray<double> kSalesResiduals = {MV::gMissingValue,
                                                      MV::gMissingValue,
                                                      0.021,
                                                      -0.034,
                                                      0.012,
                                                      0.045,
                                                      -0.027,
                                                      -0.008,
                                                      0.031,
                                                      -0.042,
                                                      0.019,
                                                      0.006,
                                                      -0.015,
                                                      0.038,
                                                      -0.021,
                                                      -0.033,
                                                      0.027,
                                                      0.014,
                                                      -0.009,
                                                      0.041,
                                                      -0.036,
                                                      0.002,
                                                      0.017,
                                                      -0.024};
inline const TSXDictionaryRefs kSalesRefs("Sales", "Monthly sales", "sales",
                                          {"advertising"});

// missing_statistics.xml: AR(1) of "y" without fit statistics, with a
// Ljung-Box statistic whose significance is missing; no residuals.
inline TSFModel MakeBareARModel() {
  AMModelSpec spec;
  spec.SetARStruct({1}, {});
  EstimationInfo info = testing_support::BasicInfo();
  info.SetLBStat(7.5, 6, 4, MV::gMissingValue);
  return TSFModel(new TSFModelImp(
      std::make_unique<ARMACLSForecastState>(spec, std::valarray<double>{0.5},
                                             std::valarray<double>{0.1}),
      info));
}
inline const TSXDictionaryRefs kBareRefs("AR", "", "y");

}  // namespace statxml_test

#endif  // TSXML_TESTS_TREE_STATXML_TEST_MODELS_H
