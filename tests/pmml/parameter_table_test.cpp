#include "tsxml/pmml/parameter_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <memory>
#include <string>
#include <valarray>
#include <vector>

#include "support/arima_fixtures.h"
#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using testing_support::BasicInfo;
using testing_support::MakeFullARIMAModel;
using testing_support::Sequence;
using tsxml::TSXLagFactor;
using tsxml::TSXParameterRow;
using tsxml::TSXParameterTable;

constexpr double kMissing = MV::gMissingValue;
// Student's t quantile at 0.975 with 23 degrees of freedom and the normal
// quantile at 0.975, from scipy; the t quantile at 0.975 with 1 degree of
// freedom, tan(0.475 pi), to 40 digits by Python's decimal.
constexpr double kT23 = 2.0686576104190406;
constexpr double kZ = 1.959963984540054;
constexpr double kT1 = 12.706204736174705;

TSFModel MakeARIMAModel(const AMModelSpec& spec,
                        const std::valarray<double>& estimates,
                        const std::valarray<double>& stdErrors,
                        const EstimationInfo& info = BasicInfo()) {
  return TSFModel(new TSFModelImp(
      std::make_unique<ARMAMLForecastState>(spec, estimates, stdErrors), info));
}

std::vector<std::string> Names(const TSXParameterTable& table) {
  std::vector<std::string> names;
  for (const TSXParameterRow& row : table.rows) names.push_back(row.paramName);
  return names;
}

std::vector<double> Estimates(const TSXParameterTable& table) {
  std::vector<double> estimates;
  for (const TSXParameterRow& row : table.rows) {
    estimates.push_back(row.estimate);
  }
  return estimates;
}

std::vector<double> Values(const std::valarray<double>& values) {
  return std::vector<double>(std::begin(values), std::end(values));
}

void ExpectFactor(const TSXLagFactor& factor, int difference,
                  const std::vector<double>& coefficients) {
  EXPECT_EQ(factor.difference, difference);
  EXPECT_EQ(factor.maximumOrder, static_cast<int>(coefficients.size()));
  EXPECT_EQ(factor.coefficients, coefficients);
}

// t, significance and limits of a row against values computed elsewhere.
void ExpectStatistics(const TSXParameterRow& row, double t, double sig,
                      double lower, double upper) {
  EXPECT_DOUBLE_EQ(row.tTest, t);
  EXPECT_NEAR(row.sig, sig, 1e-12 + 1e-9 * sig) << row.paramName;
  EXPECT_NEAR(row.confIntervalLower, lower, 1e-12) << row.paramName;
  EXPECT_NEAR(row.confIntervalUpper, upper, 1e-12) << row.paramName;
}

void ExpectOnlyEstimate(const TSXParameterRow& row, double stdError) {
  EXPECT_EQ(row.stdError, stdError) << row.paramName;
  EXPECT_EQ(row.tTest, kMissing) << row.paramName;
  EXPECT_EQ(row.sig, kMissing) << row.paramName;
  EXPECT_EQ(row.confIntervalLower, kMissing) << row.paramName;
  EXPECT_EQ(row.confIntervalUpper, kMissing) << row.paramName;
}

TEST(ParameterTableTest, SmoothingRowsWithTheirStatistics) {
  ESModelSpec spec(ESModelSpec::ESAdditiveWinters, 4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::SquareRoot));
  const TSXParameterTable table(
      "y",
      testing_support::MakeESModel(spec, {0.5, 0.25, 0.125}, {0.1, 0.2, 0.3},
                                   WIESSmState(1, 2, 0, {1, 2, 3, 4}),
                                   BasicInfo(3, 30)),
      {}, 0.95);

  // The document tests hold the statistics of alpha and gamma.
  EXPECT_TRUE(table.isExponentialSmoothing);
  ASSERT_EQ(Names(table),
            (std::vector<std::string>{"alpha", "gamma", "delta"}));
  // scipy: t, 2 * sf(|t|, 23), estimate -+ t.ppf(0.975, 23) * stdError.
  ExpectStatistics(table.rows[2], 0.125 / 0.3, 0.6807852251876894,
                   -0.49559728312571216, 0.7455972831257122);
  // The level 0.95 takes the quantile at 0.975.
  EXPECT_NEAR(table.rows[2].confIntervalUpper - 0.125, kT23 * 0.3, 1e-12);
  EXPECT_EQ(table.transformationType, 2);
  EXPECT_EQ(table.ljungBoxQ, kMissing);
  EXPECT_EQ(table.degreesOfFreedom, 23);
  EXPECT_EQ(table.periodStartIndex, 3);
  EXPECT_EQ(table.periodLength, 30);
  EXPECT_EQ(table.errVariance, 2.5);
  // Structure fields belong to ARIMA models.
  EXPECT_EQ(table.seasonLength, 0);
  EXPECT_EQ(table.stateMethod, 0);
}

TEST(ParameterTableTest, FullARIMAModelLaidOutByLag) {
  // Parameters 0.5, 0.75, ..., 3.0 and standard errors 0.01 ... 0.11 at
  // positions 0 to 10 (see MakeFullARIMASpec).
  const TSXParameterTable table("y", MakeFullARIMAModel<ARMAMLForecastState>(),
                                {"x"}, 0.95);

  EXPECT_FALSE(table.isExponentialSmoothing);
  EXPECT_EQ(Names(table), (std::vector<std::string>{
                              "y Constant", "y AR Lag 1", "y AR Lag 2",
                              "y AR, Seasonal Lag 1", "y MA, Seasonal Lag 1",
                              "x Numerator Lag 0", "x Numerator Lag 1",
                              "x Denominator Lag 1"}));
  EXPECT_EQ(Estimates(table), (std::vector<double>{0.5, -0.75, -1.0, -1.25,
                                                   -1.5, 1.75, -2.0, -2.25}));
  EXPECT_DOUBLE_EQ(table.rows[1].stdError, 0.02);
  EXPECT_DOUBLE_EQ(table.rows[7].stdError, 0.08);
  EXPECT_EQ(table.constantTerm, 0.5);
  EXPECT_EQ(table.arCoefficients, (std::vector<double>{-0.75, -1.0}));
  EXPECT_EQ(table.seasonalARCoefficients, (std::vector<double>{-1.25}));
  EXPECT_TRUE(table.maCoefficients.empty());
  EXPECT_EQ(table.seasonalMACoefficients, (std::vector<double>{-1.5}));
  EXPECT_EQ(table.maxARLag, 2);
  EXPECT_EQ(table.maxSeasonalARLag, 1);
  EXPECT_EQ(table.maxMALag, 0);
  EXPECT_EQ(table.maxSeasonalMALag, 1);
  EXPECT_EQ(table.seasonLength, 12);
  EXPECT_EQ(table.nonSeasonalDiff, 1);
  EXPECT_EQ(table.seasonalDiff, 1);
  EXPECT_EQ(table.transformationType, 1);

  ASSERT_EQ(table.predictorEffects.size(), 1u);
  const tsxml::TSXPredictorEffect& x = table.predictorEffects[0];
  EXPECT_EQ(x.field, "x");
  EXPECT_EQ(x.delay, 1);
  ExpectFactor(x.numeratorNonSeasonal, 1, {1.75, -2.0});
  ExpectFactor(x.numeratorSeasonal, 0, {});
  ExpectFactor(x.denominatorNonSeasonal, 1, {-2.25});
  ExpectFactor(x.denominatorSeasonal, 0, {});

  ASSERT_EQ(table.outlierRows.size(), 2u);
  EXPECT_EQ(table.outlierRows[0].type, 1);
  EXPECT_EQ(table.outlierRows[0].startTime, 30.0);
  EXPECT_EQ(table.outlierRows[0].magnitude, 2.5);
  EXPECT_DOUBLE_EQ(table.outlierRows[0].magnitudeStdError, 0.09);
  EXPECT_DOUBLE_EQ(table.outlierRows[0].magnitudeTTest, 2.5 / 0.09);
  const tsxml::TSXOutlierRow& transient = table.outlierRows[1];
  EXPECT_EQ(transient.type, 3);
  EXPECT_EQ(transient.magnitude, 2.75);
  EXPECT_EQ(transient.dampingCoefficient, 3.0);
  EXPECT_DOUBLE_EQ(transient.dampingStdError, 0.11);
  EXPECT_DOUBLE_EQ(transient.dampingTTest, 3.0 / 0.11);
  EXPECT_GE(transient.dampingSig, 0.0);
  EXPECT_LT(transient.dampingSig, 1e-12);

  EXPECT_EQ(table.periodDeficit, 2);
  EXPECT_EQ(table.stateMethod, 1);
  ASSERT_EQ(table.finalPredictorValues.size(), 1u);
  EXPECT_EQ(Values(table.finalPredictorValues[0]), (std::vector<double>{3, 4}));
  ASSERT_EQ(table.finalTransferFunctionValues.size(), 1u);
  EXPECT_EQ(Values(table.finalTransferFunctionValues[0]),
            (std::vector<double>{0.5, 0.75}));
  EXPECT_EQ(table.zStateField, "y");
  EXPECT_EQ(Values(table.finalZ), (std::vector<double>{0.25, -0.5}));
  EXPECT_EQ(Values(table.finalPredictedZ), (std::vector<double>{0.125, -0.25}));
  EXPECT_EQ(Values(table.finalOmega.AsArray()),
            (std::vector<double>{1, 0.5, 2}));
  EXPECT_EQ(Values(table.finalStateVector), (std::vector<double>{0.25, 0.125}));
  EXPECT_EQ(table.finalNoise.size(), 0u);
}

TEST(ParameterTableTest, StateOfEachEstimationMethod) {
  const TSXParameterTable cls("y", MakeFullARIMAModel<ARMACLSForecastState>(),
                              {"x"}, 0.95);
  EXPECT_EQ(cls.stateMethod, 2);
  EXPECT_EQ(Values(cls.finalNoise), (std::vector<double>{0.1, -0.2}));
  EXPECT_EQ(Values(cls.finalPredictedNoise), (std::vector<double>{0.05, 0.15}));
  EXPECT_TRUE(cls.finalTheta.empty());
  EXPECT_EQ(cls.finalOmega.NRows(), 0u);

  const TSXParameterTable theta(
      "y", MakeFullARIMAModel<ARMAMLSpForecastState>(), {"x"}, 0.95);
  EXPECT_EQ(theta.stateMethod, 2);
  EXPECT_EQ(Values(theta.finalNoise), (std::vector<double>{0.1, -0.2}));
  EXPECT_EQ(theta.finalTheta,
            (std::vector<std::vector<double>>{{0.5, 0.25}, {0.125}}));
  EXPECT_EQ(theta.finalNu, (std::vector<double>{1.5, 1.25}));
  EXPECT_EQ(theta.finalIterationNumber, 7);
}

TEST(ParameterTableTest, ARLagsOneAndThreeAreDense) {
  AMModelSpec spec;
  spec.SetARStruct({1, 3}, {});
  const TSXParameterTable table("y", MakeARIMAModel(spec, {0.5, -0.25}, {}), {},
                                0.95);
  EXPECT_EQ(table.arCoefficients, (std::vector<double>{-0.5, 0.0, 0.25}));
  EXPECT_EQ(table.maxARLag, 3);
  EXPECT_EQ(Names(table),
            (std::vector<std::string>{"y AR Lag 1", "y AR Lag 3"}));
  EXPECT_EQ(Estimates(table), (std::vector<double>{-0.5, 0.25}));
  EXPECT_EQ(table.constantTerm, 0.0);  // no constant, no "Constant" row
}

TEST(ParameterTableTest, ShortEstimateVectorDropsRows) {
  const AMModelSpec spec = testing_support::MakeFullARIMASpec();
  const TSXParameterTable table(
      "y", MakeARIMAModel(spec, {1, 2, 3}, Sequence(11, 0.01, 0.01)), {"x"},
      0.95);
  EXPECT_TRUE(table.rows.empty());
  EXPECT_EQ(table.constantTerm, 0.0);
  EXPECT_EQ(table.arCoefficients, (std::vector<double>{kMissing, kMissing}));
  EXPECT_EQ(table.seasonalMACoefficients, (std::vector<double>{kMissing}));
  ExpectFactor(table.predictorEffects[0].numeratorNonSeasonal, 1,
               {kMissing, kMissing});
  ExpectFactor(table.predictorEffects[0].denominatorNonSeasonal, 1, {kMissing});
  // The outliers' parameters lie past the end: their fields stay 0.
  ASSERT_EQ(table.outlierRows.size(), 2u);
  EXPECT_EQ(table.outlierRows[1].startTime, 41.0);
  EXPECT_EQ(table.outlierRows[1].magnitude, 0.0);
  EXPECT_EQ(table.outlierRows[1].magnitudeSig, 0.0);
  EXPECT_EQ(table.outlierRows[1].dampingCoefficient, 0.0);
}

TEST(ParameterTableTest, ShortStandardErrorVector) {
  // 10 standard errors for 11 parameters: the ARMA rows lose theirs; the
  // transfer function's (positions 5 to 7) are within the vector and stay.
  const AMModelSpec spec = testing_support::MakeFullARIMASpec();
  const TSXParameterTable table(
      "y",
      MakeARIMAModel(spec, Sequence(11, 0.5, 0.25), Sequence(10, 0.01, 0.01)),
      {"x"}, 0.95);
  ASSERT_EQ(table.rows.size(), 8u);
  for (size_t i = 0; i < 5; ++i) ExpectOnlyEstimate(table.rows[i], kMissing);
  EXPECT_DOUBLE_EQ(table.rows[5].stdError, 0.06);
  EXPECT_NE(table.rows[5].confIntervalUpper, kMissing);
  // The transient's damping standard error would be at position 10.
  EXPECT_EQ(table.outlierRows[1].dampingCoefficient, 3.0);
  EXPECT_EQ(table.outlierRows[1].dampingStdError, kMissing);
  EXPECT_EQ(table.outlierRows[1].dampingSig, kMissing);
}

TEST(ParameterTableTest, TransferFunctionShapes) {
  AMModelSpec spec;
  AMPredictorSpec plain;  // a regression: numerator term 0 alone
  AMPredictorSpec seasonal;
  seasonal.seasonalDiff = 1;
  seasonal.numeratorSeasonal = {2};
  seasonal.denominatorNonSeasonal = {2};
  seasonal.denominatorSeasonal = {1};
  spec.AddPredictor(plain);
  spec.AddPredictor(seasonal);
  // Positions: plain 0; seasonal numerator 1, 2 (seasonal lag 2),
  // denominator 3 (lag 2), 4 (seasonal lag 1).
  const TSXParameterTable table(
      "y", MakeARIMAModel(spec, {0.5, 1.5, 0.25, 0.75, 0.125}, {}),
      {"a", "b", "ignored"}, 0.95);
  EXPECT_EQ(Names(table),
            (std::vector<std::string>{"a Numerator Lag 0", "b Numerator Lag 0",
                                      "b Numerator, Seasonal Lag 2",
                                      "b Denominator Lag 2",
                                      "b Denominator, Seasonal Lag 1"}));
  EXPECT_EQ(Estimates(table),
            (std::vector<double>{0.5, 1.5, -0.25, -0.75, -0.125}));
  const auto& a = table.predictorEffects[0];
  ExpectFactor(a.numeratorNonSeasonal, 0, {0.5});
  ExpectFactor(a.denominatorNonSeasonal, 0, {});  // no factor, no row
  const auto& b = table.predictorEffects[1];
  ExpectFactor(b.numeratorNonSeasonal, 0, {1.5});
  ExpectFactor(b.numeratorSeasonal, 1, {0.0, -0.25});
  ExpectFactor(b.denominatorNonSeasonal, 0, {0.0, -0.75});
  ExpectFactor(b.denominatorSeasonal, 1, {-0.125});
  // The names follow the model's predictor count.
  EXPECT_EQ(table.predictorNames, (std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(table.outlierRows.empty());
}

TEST(ParameterTableTest, DegreesOfFreedomDecideTheStatistics) {
  AMModelSpec spec;
  spec.SetMeanYPresent(true);
  // None: t alone.
  const TSXParameterTable none(
      "y", MakeARIMAModel(spec, {5}, {1}, BasicInfo(0, 24, 0)), {}, 0.95);
  EXPECT_EQ(none.rows[0].tTest, 5.0);
  EXPECT_EQ(none.rows[0].sig, kMissing);
  EXPECT_EQ(none.rows[0].confIntervalLower, kMissing);
  EXPECT_EQ(none.rows[0].confIntervalUpper, kMissing);
  // One: the Cauchy distribution, 1 - 2 atan(5) / pi.
  const TSXParameterTable one(
      "y", MakeARIMAModel(spec, {5}, {1}, BasicInfo(0, 24, 1)), {}, 0.95);
  ExpectStatistics(one.rows[0], 5.0, 0.12566591637800228, 5.0 - kT1, 5.0 + kT1);
  // A standard error of 0: no t, and limits at the estimate.
  const TSXParameterTable fixed("y", MakeARIMAModel(spec, {5}, {0}), {}, 0.95);
  EXPECT_EQ(fixed.rows[0].stdError, 0.0);
  EXPECT_EQ(fixed.rows[0].tTest, kMissing);
  EXPECT_EQ(fixed.rows[0].sig, kMissing);
  EXPECT_EQ(fixed.rows[0].confIntervalLower, 5.0);
  EXPECT_EQ(fixed.rows[0].confIntervalUpper, 5.0);
  // A missing estimate stays missing, also negated.
  AMModelSpec ar;
  ar.SetARStruct({1}, {});
  const TSXParameterTable lost("y", MakeARIMAModel(ar, {kMissing}, {0.5}), {},
                               0.95);
  EXPECT_EQ(lost.arCoefficients, (std::vector<double>{kMissing}));
  EXPECT_EQ(lost.rows[0].estimate, kMissing);
  ExpectOnlyEstimate(lost.rows[0], 0.5);
}

TEST(ParameterTableTest, OutlierRowsSkipTypeZero) {
  AMModelSpec spec;
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::None, 3),
                    TSOutlierSpec(TSOutlierSpec::LevelShift, 9)});
  // The value after the level shift's one parameter is not its damping.
  const TSXParameterTable table(
      "y", MakeARIMAModel(spec, {-0.5, 7.0}, {0.25, 1.0}), {}, 0.95);
  ASSERT_EQ(table.outlierRows.size(), 1u);
  EXPECT_EQ(table.outlierRows[0].dampingCoefficient, 0.0);
  EXPECT_EQ(table.outlierRows[0].type, 2);
  EXPECT_EQ(table.outlierRows[0].magnitude, -0.5);
  EXPECT_EQ(table.outlierRows[0].magnitudeTTest, -2.0);
  // scipy: 2 * t.sf(2, 23).
  EXPECT_NEAR(table.outlierRows[0].magnitudeSig, 0.05744454899208271, 1e-12);
  EXPECT_TRUE(table.rows.empty());
}

TEST(ParameterTableTest, ZeroCentredBounds) {
  std::vector<double> lower, upper;
  tsxml::FillZeroCentredBounds({0.5, 0.25, 0.125}, {0.5, kMissing}, lower,
                               upper, 0.95);
  EXPECT_DOUBLE_EQ(upper[0], 0.5 * kZ);
  EXPECT_EQ(lower[0], -upper[0]);
  EXPECT_EQ(upper[1], kMissing);  // missing standard error
  EXPECT_EQ(lower[2], kMissing);  // past the end of the standard errors
  // Level 0: z = 0; level 1 and beyond: z undefined.
  tsxml::FillZeroCentredBounds({0.5}, {0.5}, lower, upper, 0.0);
  EXPECT_EQ(upper, (std::vector<double>{0.0}));
  for (double level : {1.0, -1.0, 3.0}) {
    tsxml::FillZeroCentredBounds({0.5}, {0.5}, lower, upper, level);
    EXPECT_EQ(lower, (std::vector<double>{kMissing}));
    EXPECT_EQ(upper, (std::vector<double>{kMissing}));
  }
}

TEST(ParameterTableTest, EmptyModelKeepsTheInitialValues) {
  const TSXParameterTable table("y", TSFModel(), {"x"}, 0.9);
  EXPECT_EQ(table.confidenceLevel, 0.9);
  EXPECT_TRUE(table.isExponentialSmoothing);
  EXPECT_EQ(table.degreesOfFreedom, -1);
  EXPECT_EQ(table.periodLength, -1);
  EXPECT_EQ(table.ljungBoxQ, kMissing);
  EXPECT_EQ(table.predictorNames, (std::vector<std::string>{"x"}));
  EXPECT_EQ(table.GetRowCount(), 0u);
  EXPECT_EQ(table.GetRow(0), nullptr);
}

}  // namespace
