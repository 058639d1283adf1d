#include "tsxml/native/model_elements.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/estimation_info.h"

namespace {

using testing_support::Element;
using testing_support::Text;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMissing = MV::gMissingValue;

// The value lists of the ARIMA states show the list rules.
TEST(ValueTextTest, MissingInfinityAndNumbersInOrder) {
  const double values[] = {1.5, kMissing, kInf, 2, -kInf, 1.0 / 3};
  EXPECT_EQ(tsxml::ValueText(values, 6),
            "1.5 NaN INF 2 -INF 0.333333333333333");
  // A NaN is not the missing value: it keeps the runtime's text.
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE(tsxml::ValueText(&nan, 1), "NaN");

  // A count of 0 adds no text node.
  auto p = Element();
  tsxml::AddValueText(*p, nullptr, 0);
  EXPECT_EQ(Text(*p), "\n<p/>");
  tsxml::AddValueText(*p, values + 3, 1);
  EXPECT_EQ(Text(*p), "\n<p>2</p>");
}

// Transformations with the attributes that apply, estimated parameters (a
// missing estimate refused, infinities as number text), a missing statistic
// left out, and estimation infos bare and with every statistic set in
// reverse order: the output follows the table, then Ljung-Box.
TEST(ModelElementsTest, BuildersUnderOneParent) {
  auto p = Element();
  EXPECT_FALSE(tsxml::AddTransformationElement(*p, 0, 0, 0, 0));
  EXPECT_TRUE(tsxml::AddTransformationElement(*p, 1, 0, 0, 0));
  EXPECT_TRUE(tsxml::AddTransformationElement(*p, 0, 1, 0, 0));
  EXPECT_TRUE(tsxml::AddTransformationElement(*p, 2, 1, 1, 3));
  EXPECT_TRUE(tsxml::AddTransformationElement(*p, 7, 0, 12, 0));
  EXPECT_FALSE(tsxml::AddEstimatedParameter(*p, kMissing, 1));
  EXPECT_TRUE(tsxml::AddEstimatedParameter(*p, 0.5, 0.125));
  EXPECT_TRUE(tsxml::AddEstimatedParameter(*p, -2, kMissing));
  EXPECT_TRUE(tsxml::AddEstimatedParameter(*p, -kInf, kInf));
  tsxml::AddStatistic(*p, "rSqr", kMissing);
  tsxml::AddStatistic(*p, "maxAbsErr", -kInf);

  EstimationInfo info;
  info.SetSpan(TSSpan(-3, 40));
  info.SetDegreesOfFreedom(37);
  tsxml::AddEstimationInfo(*p, info);
  info.SetSpan(TSSpan(0, 60));
  info.SetDegreesOfFreedom(57);
  info.SetErrorVariance(4);
  info.SetGOFStat(BFSharedConst::SRSQ, 0.25);
  info.SetGOFStat(BFSharedConst::BIC, 101);
  info.SetGOFStat(BFSharedConst::AIC, 99.5);
  info.SetGOFStat(BFSharedConst::LOGLK, -45);
  info.SetGOFStat(BFSharedConst::MSE, 4);
  info.SetLBStat(12.5, 18, 16, 0.75);
  tsxml::AddEstimationInfo(*p, info);
  EXPECT_EQ(Text(*p),
            "\n" + testing_support::ReadTestData("native/model_elements.xml"));
}

}  // namespace
