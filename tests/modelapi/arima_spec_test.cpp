// What no document shows: the native elements show the layout and the
// lists of lags themselves.
#include "tsxml/modelapi/arima_spec.h"

#include <gtest/gtest.h>

#include <valarray>
#include <vector>

#include "support/arima_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

// The highest lag; the numerator's first lag; a predictor or outlier past
// the end reads as empty; a position override lasts until the next
// structural change.
TEST(AMModelSpecTest, ReadsPastTheEndAndOverrides) {
  EXPECT_EQ(AMPowers({12, 0, 3}).MaxPower(), 12u);
  EXPECT_EQ(AMPowers().MaxPower(), 0u);
  AMModelSpec spec = testing_support::MakeFullARIMASpec();
  const AMPowers *nonSeasonal = nullptr, *seasonal = nullptr;
  // No element reads this position: the numerator starts at the coefficient.
  EXPECT_EQ(spec.GetXNumerator(0, nonSeasonal, seasonal), 6u);
  EXPECT_EQ(spec.GetXDenominator(1, nonSeasonal, seasonal), 0u);
  EXPECT_EQ(nonSeasonal->PowerCount() + seasonal->PowerCount(), 0u);
  EXPECT_EQ(spec.GetOutliers().GetOutlierSpec(2).type, TSOutlierSpec::None);
  spec.SetXRegressionCoeffPosition(0, 40);
  EXPECT_EQ(spec.GetXRegressionCoeff(0), 40u);
  spec.SetXCount(2);
  EXPECT_EQ(spec.GetXRegressionCoeff(0), 5u);
  EXPECT_EQ(spec.GetXRegressionCoeff(1), 8u);
}

TEST(DSymMatTest, PackedLowerTriangleRowByRow) {
  DSymMat matrix(3, {1, 2, 3, 4, 5, 6, 7});
  matrix.Set(0, 2, 9);
  matrix.Set(3, 3, 9);  // outside: ignored
  EXPECT_EQ(matrix(1, 2), 5);
  EXPECT_EQ(matrix(3, 0), 0);
  const std::valarray<double>& packed = matrix.AsArray();
  EXPECT_EQ(std::vector<double>(std::begin(packed), std::end(packed)),
            std::vector<double>({1, 2, 3, 9, 5, 6}));
  EXPECT_EQ(DSymMat(2, {1}).AsArray()[2], 0);
}

}  // namespace
