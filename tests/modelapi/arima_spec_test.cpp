#include "tsxml/modelapi/arima_spec.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/arima_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using Lags = std::vector<unsigned>;

TEST(AMPowersTest, ListIsAscendingWithoutRepeatsOrZero) {
  const AMPowers powers{12, 0, 3, 1, 3};
  EXPECT_EQ(powers.PowerList(), (Lags{1, 3, 12}));
  EXPECT_EQ(powers.MaxPower(), 12u);
  EXPECT_EQ(AMPowers().MaxPower(), 0u);
}

TEST(AMModelSpecTest, LayoutFollowsTheStructure) {
  const AMModelSpec spec = testing_support::MakeFullARIMASpec();
  bool present = false;
  EXPECT_EQ(spec.GetMeanYPresent(present), 0u);
  EXPECT_TRUE(present);
  const AMPowers* nonSeasonal = nullptr;
  const AMPowers* seasonal = nullptr;
  EXPECT_EQ(spec.GetARStruct(nonSeasonal, seasonal), 1u);
  EXPECT_EQ(spec.GetMAStruct(nonSeasonal, seasonal), 4u);
  EXPECT_EQ(spec.GetXRegressionCoeff(0), 5u);
  EXPECT_EQ(spec.GetXNumerator(0, nonSeasonal, seasonal), 6u);
  EXPECT_EQ(spec.GetXDenominator(0, nonSeasonal, seasonal), 7u);
  EXPECT_EQ(spec.GetOutlierParmIndex(), 8u);
  EXPECT_EQ(spec.GetOutliers().ParameterVectorIndex(1, 1), 2u);
  EXPECT_EQ(spec.GetParameterCount(true), 11u);

  // A predictor past the end reads as a plain regression at 0, with lists.
  unsigned d = 9, s = 9, delay = 9;
  EXPECT_EQ(spec.GetXDenominator(5, nonSeasonal, seasonal), 0u);
  ASSERT_NE(nonSeasonal, nullptr);
  EXPECT_EQ(nonSeasonal->PowerCount(), 0u);
  spec.GetXDiffNDelay(5, d, s, delay);
  EXPECT_EQ(d + s + delay, 0u);

  // A position override lasts until the next structural change.
  AMModelSpec moved = spec;
  moved.SetXRegressionCoeffPosition(0, 40);
  EXPECT_EQ(moved.GetXRegressionCoeff(0), 40u);
  moved.SetXCount(2);
  EXPECT_EQ(moved.GetXRegressionCoeff(0), 5u);
  EXPECT_EQ(moved.GetXRegressionCoeff(1), 8u);
  EXPECT_EQ(moved.GetParameterCount(true), 12u);
}

TEST(TSOutlierSpecTest, ParameterCountsAndIndexes) {
  // The counts of the types are in the native outlier test; here an override.
  TSOutlierSpec overridden(TSOutlierSpec::Additive, 1);
  overridden.SetParameterCount(3);
  const TSOutlierSpecList list{TSOutlierSpec(TSOutlierSpec::Transient, 4),
                               TSOutlierSpec(TSOutlierSpec::None, 5),
                               TSOutlierSpec(8, 6), overridden};
  EXPECT_EQ(list.GetOutlierSpec(9).type, 0u);
  EXPECT_EQ(list.ParameterVectorIndex(3, 0), 3u);
  EXPECT_EQ(list.GetParameterCount(), 6u);
}

TEST(DSymMatTest, PackedLowerTriangleRowByRow) {
  DSymMat matrix(3, {1, 2, 3, 4, 5, 6, 7});
  ASSERT_EQ(matrix.AsArray().size(), 6u);
  EXPECT_EQ(matrix(1, 0), 2);
  EXPECT_EQ(matrix(1, 2), 5);
  EXPECT_EQ(matrix(3, 0), 0);
  matrix.Set(0, 2, 9);
  matrix.Set(3, 3, 9);  // ignored
  EXPECT_EQ(matrix.AsArray()[3], 9);
  EXPECT_EQ(DSymMat(2, {1}).AsArray()[2], 0);
}

}  // namespace
