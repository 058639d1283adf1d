// The parameter table: rows and their statistics, the structure laid out by
// lag, and its edges (sparse lags, short vectors, few degrees of freedom).
// The state lists and the outliers' statistics are pinned by the PMML and
// StatXML documents' byte tests.
#include "tsxml/pmml/parameter_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <valarray>
#include <vector>

#include "support/arima_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using testing_support::BasicInfo;
using testing_support::MakeARIMAModel;
using testing_support::Sequence;
using tsxml::TSXParameterRow;
using tsxml::TSXParameterTable;
using Doubles = std::vector<double>;
using Strings = std::vector<std::string>;

constexpr double kMissing = MV::gMissingValue;
// Student's t quantile at 0.975 with 23 degrees of freedom and the normal
// quantile at 0.975, from scipy; the t quantile at 0.975 with 1 degree of
// freedom, tan(0.475 pi), to 40 digits by Python's decimal.
constexpr double kT23 = 2.0686576104190406;
constexpr double kZ = 1.959963984540054;
constexpr double kT1 = 12.706204736174705;

Strings Names(const TSXParameterTable& table) {
  Strings names;
  for (const TSXParameterRow& row : table.rows) names.push_back(row.paramName);
  return names;
}

Doubles Estimates(const TSXParameterTable& table) {
  Doubles estimates;
  for (const TSXParameterRow& r : table.rows) estimates.push_back(r.estimate);
  return estimates;
}

void ExpectFactor(const tsxml::TSXLagFactor& factor, int difference,
                  const Doubles& coefficients) {
  EXPECT_EQ(factor.difference, difference);
  EXPECT_EQ(factor.maximumOrder, static_cast<int>(coefficients.size()));
  EXPECT_EQ(factor.coefficients, coefficients);
}

// The standard error, t, significance and limits of `row` against values
// computed elsewhere; missing ones exactly.
void ExpectStatistics(const TSXParameterRow& row, double stdError, double t,
                      double sig, double lower = kMissing,
                      double upper = kMissing) {
  EXPECT_DOUBLE_EQ(row.stdError, stdError) << row.paramName;
  EXPECT_DOUBLE_EQ(row.tTest, t) << row.paramName;
  EXPECT_NEAR(row.sig, sig, 1e-12 + 1e-9 * std::fabs(sig)) << row.paramName;
  EXPECT_NEAR(row.confIntervalLower, lower, 1e-12) << row.paramName;
  EXPECT_NEAR(row.confIntervalUpper, upper, 1e-12) << row.paramName;
}

// The PMML and StatXML documents show the other fields.
TEST(ParameterTableTest, SmoothingRowsWithTheirStatistics) {
  ESModelSpec spec(ESModelSpec::ESAdditiveWinters, 4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::SquareRoot));
  const TSXParameterTable table(
      "y",
      testing_support::MakeESModel(spec, {0.5, 0.25, 0.125}, {0.1, 0.2, 0.3},
                                   WIESSmState(1, 2, 0, {1, 2, 3, 4}),
                                   BasicInfo(3, 30)),
      {}, 0.95);
  EXPECT_TRUE(table.isExponentialSmoothing);
  ASSERT_EQ(Names(table), (Strings{"alpha", "gamma", "delta"}));
  // scipy: t, 2 * sf(|t|, 23), estimate -+ t.ppf(0.975, 23) * stdError; the
  // level 0.95 takes the quantile at 0.975.
  ExpectStatistics(table.rows[2], 0.3, 0.125 / 0.3, 0.6807852251876894,
                   -0.49559728312571216, 0.7455972831257122);
  EXPECT_NEAR(table.rows[2].confIntervalUpper - 0.125, kT23 * 0.3, 1e-12);
  EXPECT_EQ(table.transformationType, 2);
}

// Coefficients are dense by lag (AR lags 1 and 3, seasonal AR lag 2), the
// AR and MA ones negated; rows follow the parameters.
TEST(ParameterTableTest, LagsLaidOutDense) {
  AMModelSpec spec;
  spec.SetMeanYPresent(true);
  spec.SetARStruct({1, 3}, {2});
  spec.SetMAStruct({}, {1});
  const TSXParameterTable table(
      "y", MakeARIMAModel(spec, {4, 0.5, -0.25, 0.125, 0.375}), {}, 0.95);
  EXPECT_FALSE(table.isExponentialSmoothing);
  EXPECT_EQ(Names(table),
            (Strings{"y Constant", "y AR Lag 1", "y AR Lag 3",
                     "y AR, Seasonal Lag 2", "y MA, Seasonal Lag 1"}));
  EXPECT_EQ(Estimates(table), (Doubles{4, -0.5, 0.25, -0.125, -0.375}));
  EXPECT_EQ(table.constantTerm, 4.0);
  EXPECT_EQ(table.arCoefficients, (Doubles{-0.5, 0.0, 0.25}));
  EXPECT_EQ(table.seasonalARCoefficients, (Doubles{0.0, -0.125}));
  EXPECT_TRUE(table.maCoefficients.empty());
  EXPECT_EQ(table.seasonalMACoefficients, (Doubles{-0.375}));
  // Maximum lags AR, seasonal AR, MA, seasonal MA.
  EXPECT_EQ((std::vector<int>{table.maxARLag, table.maxSeasonalARLag,
                              table.maxMALag, table.maxSeasonalMALag}),
            (std::vector<int>{3, 2, 0, 1}));
}

TEST(ParameterTableTest, ShortVectors) {
  const AMModelSpec spec = testing_support::MakeFullARIMASpec();
  // 3 estimates for 11 parameters: no rows, missing coefficients, and the
  // outliers' fields, whose parameters lie past the end, stay 0.
  const TSXParameterTable few(
      "y", MakeARIMAModel(spec, {1, 2, 3}, Sequence(11, 0.01, 0.01)), {"x"},
      0.95);
  EXPECT_TRUE(few.rows.empty());
  EXPECT_EQ(few.constantTerm, 0.0);
  EXPECT_EQ(few.arCoefficients, (Doubles{kMissing, kMissing}));
  EXPECT_EQ(few.seasonalMACoefficients, (Doubles{kMissing}));
  ExpectFactor(few.predictorEffects[0].numeratorNonSeasonal, 1,
               {kMissing, kMissing});
  ExpectFactor(few.predictorEffects[0].denominatorNonSeasonal, 1, {kMissing});
  ASSERT_EQ(few.outlierRows.size(), 2u);
  EXPECT_EQ(few.outlierRows[1].startTime, 41.0);
  EXPECT_EQ(few.outlierRows[1].magnitude, 0.0);
  EXPECT_EQ(few.outlierRows[1].magnitudeSig, 0.0);
  EXPECT_EQ(few.outlierRows[1].dampingCoefficient, 0.0);

  // 10 standard errors for 11 parameters: the ARMA rows lose theirs; the
  // transfer function's (positions 5 to 7) are within the vector and stay;
  // the transient's damping standard error would be at position 10.
  const TSXParameterTable table(
      "y",
      MakeARIMAModel(spec, Sequence(11, 0.5, 0.25), Sequence(10, 0.01, 0.01)),
      {"x"}, 0.95);
  ASSERT_EQ(table.rows.size(), 8u);
  for (size_t i = 0; i < 5; ++i) {
    ExpectStatistics(table.rows[i], kMissing, kMissing, kMissing);
  }
  EXPECT_DOUBLE_EQ(table.rows[5].stdError, 0.06);
  EXPECT_NE(table.rows[5].confIntervalUpper, kMissing);
  EXPECT_EQ(table.outlierRows[1].dampingCoefficient, 3.0);
  EXPECT_EQ(table.outlierRows[1].dampingStdError, kMissing);
  EXPECT_EQ(table.outlierRows[1].dampingSig, kMissing);
}

TEST(ParameterTableTest, TransferFunctionShapes) {
  // "a" a regression (numerator term 0 alone) at position 0; "b" with a
  // seasonal difference, numerator 1, 2 (seasonal lag 2), denominator 3 (lag
  // 2) and 4 (seasonal lag 1).
  AMModelSpec spec;
  spec.AddPredictor({});
  spec.AddPredictor({{}, 0, 1, 0, {}, {2}, {2}, {1}});
  const TSXParameterTable table(
      "y", MakeARIMAModel(spec, {0.5, 1.5, 0.25, 0.75, 0.125}),
      {"a", "b", "ignored"}, 0.95);
  EXPECT_EQ(Names(table),
            (Strings{"a Numerator Lag 0", "b Numerator Lag 0",
                     "b Numerator, Seasonal Lag 2", "b Denominator Lag 2",
                     "b Denominator, Seasonal Lag 1"}));
  EXPECT_EQ(Estimates(table), (Doubles{0.5, 1.5, -0.25, -0.75, -0.125}));
  const auto& a = table.predictorEffects[0];
  ExpectFactor(a.numeratorNonSeasonal, 0, {0.5});
  ExpectFactor(a.denominatorNonSeasonal, 0, {});  // no factor, no row
  const auto& b = table.predictorEffects[1];
  ExpectFactor(b.numeratorNonSeasonal, 0, {1.5});
  ExpectFactor(b.numeratorSeasonal, 1, {0.0, -0.25});
  ExpectFactor(b.denominatorNonSeasonal, 0, {0.0, -0.75});
  ExpectFactor(b.denominatorSeasonal, 1, {-0.125});
  // The names follow the model's predictor count.
  EXPECT_EQ(table.predictorNames, (Strings{"a", "b"}));
  EXPECT_TRUE(table.outlierRows.empty());
}

TEST(ParameterTableTest, DegreesOfFreedomDecideTheStatistics) {
  AMModelSpec spec, ar;
  spec.SetMeanYPresent(true);
  ar.SetARStruct({1}, {});
  const auto row = [](const AMModelSpec& s, double estimate, double stdError,
                      uint64_t df) {
    return TSXParameterTable(
               "y",
               MakeARIMAModel(s, {estimate}, {stdError}, BasicInfo(0, 24, df)),
               {}, 0.95)
        .rows[0];
  };
  // None: t alone. One: the Cauchy distribution, 1 - 2 atan(5) / pi.
  ExpectStatistics(row(spec, 5, 1, 0), 1, 5.0, kMissing);
  ExpectStatistics(row(spec, 5, 1, 1), 1, 5.0, 0.12566591637800228, 5.0 - kT1,
                   5.0 + kT1);
  // A standard error of 0: no t, and limits at the estimate.
  ExpectStatistics(row(spec, 5, 0, 23), 0, kMissing, kMissing, 5.0, 5.0);
  // A missing estimate stays missing, also negated (an AR term).
  const TSXParameterRow lost = row(ar, kMissing, 0.5, 23);
  EXPECT_EQ(lost.estimate, kMissing);
  ExpectStatistics(lost, 0.5, kMissing, kMissing);
}

TEST(ParameterTableTest, OutlierRowsSkipTypeZero) {
  AMModelSpec spec;
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::None, 3),
                    TSOutlierSpec(TSOutlierSpec::LevelShift, 9)});
  // The value after the level shift's one parameter is not its damping.
  const TSXParameterTable table(
      "y", MakeARIMAModel(spec, {-0.5, 7.0}, {0.25, 1.0}), {}, 0.95);
  ASSERT_EQ(table.outlierRows.size(), 1u);
  const tsxml::TSXOutlierRow& shift = table.outlierRows[0];
  EXPECT_EQ((Doubles{static_cast<double>(shift.type), shift.magnitude,
                     shift.magnitudeTTest, shift.dampingCoefficient}),
            (Doubles{2, -0.5, -2, 0}));
  // scipy: 2 * t.sf(2, 23).
  EXPECT_NEAR(shift.magnitudeSig, 0.05744454899208271, 1e-12);
  EXPECT_TRUE(table.rows.empty());
}

TEST(ParameterTableTest, ZeroCentredBounds) {
  Doubles lower, upper;
  tsxml::FillZeroCentredBounds({0.5, 0.25, 0.125}, {0.5, kMissing}, lower,
                               upper, 0.95);
  EXPECT_DOUBLE_EQ(upper[0], 0.5 * kZ);
  EXPECT_EQ(lower[0], -upper[0]);
  EXPECT_EQ(upper[1], kMissing);  // missing standard error
  EXPECT_EQ(lower[2], kMissing);  // past the end of the standard errors
  // Level 0: z = 0; level 1 and beyond: z undefined.
  tsxml::FillZeroCentredBounds({0.5}, {0.5}, lower, upper, 0.0);
  EXPECT_EQ(upper, (Doubles{0.0}));
  for (double level : {1.0, -1.0, 3.0}) {
    tsxml::FillZeroCentredBounds({0.5}, {0.5}, lower, upper, level);
    EXPECT_EQ(lower, (Doubles{kMissing}));
    EXPECT_EQ(upper, (Doubles{kMissing}));
  }
}

}  // namespace
