#include "tsxml/native/model_elements.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "support/model_fixtures.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/estimation_info.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::Element;
using testing_support::Lines;
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
}

TEST(ValueTextTest, CountZeroAddsNoTextNode) {
  auto p = Element();
  tsxml::AddValueText(*p, nullptr, 0);
  EXPECT_EQ(Text(*p), "\n<p/>");
  const double one = 7;
  tsxml::AddValueText(*p, &one, 1);
  EXPECT_EQ(Text(*p), "\n<p>7</p>");
}

TEST(TransformationElementTest, AttributesOnlyWhereTheyApply) {
  auto p = Element();
  EXPECT_FALSE(tsxml::AddTransformationElement(*p, 0, 0, 0, 0));
  EXPECT_TRUE(tsxml::AddTransformationElement(*p, 1, 0, 0, 0));
  EXPECT_TRUE(tsxml::AddTransformationElement(*p, 0, 1, 0, 0));
  EXPECT_TRUE(tsxml::AddTransformationElement(*p, 2, 1, 1, 3));
  EXPECT_TRUE(tsxml::AddTransformationElement(*p, 7, 0, 12, 0));
  EXPECT_EQ(Text(*p),
            Lines({"<p>", "\t<Transformation", "\t\tfunction=\"logarithm\"/>",
                   "\t<Transformation", "\t\tnonSeasonalDiff=\"1\"/>",
                   "\t<Transformation", "\t\tfunction=\"squareRoot\"",
                   "\t\tnonSeasonalDiff=\"1\"", "\t\tseasonalDiff=\"1\"",
                   "\t\tdelay=\"3\"/>", "\t<Transformation",
                   "\t\tfunction=\"squareRoot\"", "\t\tseasonalDiff=\"12\"/>",
                   "</p>"}));
}

TEST(EstimatedParameterTest, EstimateErrorAndRefusal) {
  auto p = Element();
  EXPECT_FALSE(tsxml::AddEstimatedParameter(*p, kMissing, 1));
  EXPECT_TRUE(tsxml::AddEstimatedParameter(*p, 0.5, 0.125));
  EXPECT_TRUE(tsxml::AddEstimatedParameter(*p, -2, kMissing));
  // Infinities keep the number text here, unlike in value lists.
  EXPECT_TRUE(tsxml::AddEstimatedParameter(*p, -kInf, kInf));
  EXPECT_EQ(
      Text(*p),
      Lines({"<p>", "\t<EstimatedParameter>0.5 0.125</EstimatedParameter>",
             "\t<EstimatedParameter>-2</EstimatedParameter>",
             "\t<EstimatedParameter>-inf inf</EstimatedParameter>", "</p>"}));
}

TEST(StatisticTest, MissingLeavesNoTraceAndInfinityReadsINF) {
  auto p = Element();
  tsxml::AddStatistic(*p, "rSqr", kMissing);
  tsxml::AddStatistic(*p, "maxAbsErr", -kInf);
  EXPECT_EQ(Text(*p),
            Lines({"<p>", "\t<Statistic",
                   "\t\ttype=\"maxAbsErr\">-INF</Statistic>", "</p>"}));
}

TEST(EstimationInfoTest, AllMissingGivesThreeAttributesOnly) {
  EstimationInfo info;
  info.SetSpan(TSSpan(-3, 40));
  info.SetDegreesOfFreedom(37);
  auto p = Element();
  tsxml::AddEstimationInfo(*p, info);
  EXPECT_EQ(Text(*p),
            Lines({"<p>", "\t<EstimationInfo", "\t\tperiodStartIndex=\"-3\"",
                   "\t\tperiodLength=\"40\"", "\t\tdegreesOfFreedom=\"37\"/>",
                   "</p>"}));
}

TEST(EstimationInfoTest, StatisticsInTableOrderThenLjungBox) {
  EstimationInfo info;
  info.SetSpan(TSSpan(0, 60));
  info.SetDegreesOfFreedom(57);
  info.SetErrorVariance(4);
  // Set in reverse order: the output follows the table, not the calls.
  info.SetGOFStat(BFSharedConst::SRSQ, 0.25);
  info.SetGOFStat(BFSharedConst::BIC, 101);
  info.SetGOFStat(BFSharedConst::AIC, 99.5);
  info.SetGOFStat(BFSharedConst::LOGLK, -45);
  info.SetGOFStat(BFSharedConst::MSE, 4);
  info.SetLBStat(12.5, 18, 16, 0.75);
  auto p = Element();
  tsxml::AddEstimationInfo(*p, info);
  EXPECT_EQ(Text(*p), Lines({"<p>",
                             "\t<EstimationInfo",
                             "\t\tperiodStartIndex=\"0\"",
                             "\t\tperiodLength=\"60\"",
                             "\t\tdegreesOfFreedom=\"57\">",
                             "\t\t<Statistic",
                             "\t\t\ttype=\"errVariance\">4</Statistic>",
                             "\t\t<Statistic",
                             "\t\t\ttype=\"meanSqrErr\">4</Statistic>",
                             "\t\t<Statistic",
                             "\t\t\ttype=\"logLikelihood\">-45</Statistic>",
                             "\t\t<Statistic",
                             "\t\t\ttype=\"akaikeIC\">99.5</Statistic>",
                             "\t\t<Statistic",
                             "\t\t\ttype=\"bayesIC\">101</Statistic>",
                             "\t\t<Statistic",
                             "\t\t\ttype=\"stationaryRSqr\">0.25</Statistic>",
                             "\t\t<LjungBoxStatistic",
                             "\t\t\tk=\"18\"",
                             "\t\t\tdegreesOfFreedom=\"16\"",
                             "\t\t\tpValue=\"0.75\">12.5</LjungBoxStatistic>",
                             "\t</EstimationInfo>",
                             "</p>"}));
}

}  // namespace
