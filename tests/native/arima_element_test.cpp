#include "tsxml/native/arima_element.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/arima_fixtures.h"
#include "support/model_fixtures.h"
#include "tsxml/base/dictionary_refs.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::EstimateElement;
using testing_support::Lines;
using testing_support::Sequence;
using testing_support::Text;

constexpr double kMissing = MV::gMissingValue;

// The text of the element for `spec`, or "null".
std::string Build(const AMModelSpec& spec, const std::valarray<double>& params,
                  const std::valarray<double>& stdErrors,
                  const TSXDictionaryRefs& refs = TSXDictionaryRefs("M", "",
                                                                    "y")) {
  std::unique_ptr<XMLElement> element(
      tsxml::MakeARIMAElement(spec, refs, params, stdErrors));
  return element ? Text(*element) : "null";
}

// A "LagTerm" ("ZeroLagTerm" for lag 0), empty without an estimate.
std::string LagTerm(size_t tabs, unsigned lag,
                    const std::string& estimate = "") {
  std::vector<std::string> estimates;
  if (!estimate.empty()) estimates.push_back(estimate);
  if (lag == 0) return EstimateElement(tabs, "ZeroLagTerm", {}, estimates);
  return EstimateElement(tabs, "LagTerm",
                         {"lag=\"" + std::to_string(lag) + "\""}, estimates);
}

std::string OutlierEffect(size_t tabs, const std::string& type, uint64_t start,
                          const std::vector<std::string>& estimates) {
  return EstimateElement(
      tabs, "OutlierEffect",
      {"type=\"" + type + "\"", "startIndex=\"" + std::to_string(start) + "\""},
      estimates);
}

// The start tag with the default references and no season.
const std::string kHead =
    Lines({"<ARIMAModel", "\tmodelName=\"M\"", "\tvariableID=\"y\">"});

TEST(ARIMAElementTest, ModelWithoutTermsHasAttributesOnly) {
  EXPECT_EQ(
      Build(AMModelSpec(), {}, {}),
      Lines({"<ARIMAModel", "\tmodelName=\"M\"", "\tvariableID=\"y\"/>"}));

  // All attributes in their order, and the transformation of the series.
  AMModelSpec differenced;
  differenced.SetSeasonLength(12);
  differenced.SetYDiff(1, 0);
  differenced.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  TSXDictionaryRefs refs("M", "D", "y");
  refs.SetDateSpecID(3);
  EXPECT_EQ(Build(differenced, {}, {}, refs),
            Lines({"<ARIMAModel", "\tmodelName=\"M\"",
                   "\tmodelDescriptor=\"D\"", "\tvariableID=\"y\"",
                   "\tdateSpecID=\"3\"", "\tseasonLength=\"12\">",
                   "\t<Transformation", "\t\tfunction=\"logarithm\"",
                   "\t\tnonSeasonalDiff=\"1\"/>", "</ARIMAModel>"}));
}

TEST(ARIMAElementTest, SeasonalModelWithARLagsOneAndThree) {
  AMModelSpec spec;
  spec.SetSeasonLength(4);
  spec.SetYDiff(0, 1);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({3, 1}, {1});
  spec.SetMAStruct({}, {2});
  EXPECT_EQ(
      Build(spec, {10.5, 0.5, -0.25, 0.75, 0.125}, {1.5, 0.1, 0.05, 0.2, 0.03}),
      Lines({"<ARIMAModel", "\tmodelName=\"M\"", "\tvariableID=\"y\"",
             "\tseasonLength=\"4\">", "\t<Transformation",
             "\t\tseasonalDiff=\"1\"/>",
             EstimateElement(1, "ConstantTerm", {}, {"10.5 1.5"})}) +
          Lines({"\t<Autoregression>", "\t\t<NonSeasonalFactor>",
                 LagTerm(3, 1, "0.5 0.1"), LagTerm(3, 3, "-0.25 0.05"),
                 "\t\t</NonSeasonalFactor>", "\t\t<SeasonalFactor>",
                 LagTerm(3, 1, "0.75 0.2"), "\t\t</SeasonalFactor>",
                 "\t</Autoregression>"}) +
          Lines({"\t<MovingAverage>", "\t\t<SeasonalFactor>",
                 LagTerm(3, 2, "0.125 0.03"), "\t\t</SeasonalFactor>",
                 "\t</MovingAverage>", "</ARIMAModel>"}));
}

TEST(ARIMAElementTest, PredictorsWithTransferFunctions) {
  AMModelSpec spec;
  spec.SetSeasonLength(12);
  AMPredictorSpec x1;
  x1.transform = TSTransformSpec(BFSharedConst::SquareRoot);
  x1.nonSeasonalDiff = 1;
  x1.seasonalDiff = 1;
  x1.delay = 2;
  x1.numeratorNonSeasonal = {1, 2};
  x1.numeratorSeasonal = {1};
  x1.denominatorNonSeasonal = {1};
  spec.AddPredictor(x1);
  spec.AddPredictor(AMPredictorSpec());  // a plain regression
  EXPECT_EQ(
      Build(spec, {2.5, -0.5, 0.25, 0.1, 0.6, 1.75},
            {0.5, 0.05, 0.025, 0.01, 0.06, 0.2},
            TSXDictionaryRefs("M", "", "y", {"x1", "x2"})),
      Lines({"<ARIMAModel", "\tmodelName=\"M\"", "\tvariableID=\"y\"",
             "\tseasonLength=\"12\">", "\t<PredictorEffect",
             "\t\tvariableID=\"x1\">", "\t\t<Transformation",
             "\t\t\tfunction=\"squareRoot\"", "\t\t\tnonSeasonalDiff=\"1\"",
             "\t\t\tseasonalDiff=\"1\"", "\t\t\tdelay=\"2\"/>"}) +
          Lines({"\t\t<Numerator>", "\t\t\t<NonSeasonalFactor>",
                 LagTerm(4, 0, "2.5 0.5"), LagTerm(4, 1, "-0.5 0.05"),
                 LagTerm(4, 2, "0.25 0.025"), "\t\t\t</NonSeasonalFactor>",
                 "\t\t\t<SeasonalFactor>", LagTerm(4, 1, "0.1 0.01"),
                 "\t\t\t</SeasonalFactor>", "\t\t</Numerator>"}) +
          Lines({"\t\t<Denominator>", "\t\t\t<NonSeasonalFactor>",
                 LagTerm(4, 1, "0.6 0.06"), "\t\t\t</NonSeasonalFactor>",
                 "\t\t</Denominator>", "\t</PredictorEffect>"}) +
          Lines({"\t<PredictorEffect", "\t\tvariableID=\"x2\">",
                 "\t\t<Numerator>", "\t\t\t<NonSeasonalFactor>",
                 LagTerm(4, 0, "1.75 0.2"), "\t\t\t</NonSeasonalFactor>",
                 "\t\t</Numerator>", "\t</PredictorEffect>", "</ARIMAModel>"}));
}

TEST(ARIMAElementTest, EveryOutlierTypeAndSkippedTypes) {
  AMModelSpec spec;
  spec.SetOutliers({
      TSOutlierSpec(TSOutlierSpec::Additive, 5),
      TSOutlierSpec(TSOutlierSpec::None, 6),  // no parameter, no element
      TSOutlierSpec(TSOutlierSpec::LevelShift, 7),
      TSOutlierSpec(TSOutlierSpec::Transient, 8),
      TSOutlierSpec(9, 9),  // unknown: its parameter is passed over
      TSOutlierSpec(TSOutlierSpec::SeasonalAdditive, 10),
      TSOutlierSpec(TSOutlierSpec::LocalTrend, 11),
      TSOutlierSpec(TSOutlierSpec::Innovational, 12),
      TSOutlierSpec(TSOutlierSpec::VarianceChange, 5000000000),
  });
  ASSERT_EQ(spec.GetParameterCount(true), 9u);
  EXPECT_EQ(
      Build(spec, Sequence(9, 1, 1), Sequence(9, 0.1, 0.1)),
      kHead + Lines({OutlierEffect(1, "additive", 5, {"1 0.1"}),
                     OutlierEffect(1, "level", 7, {"2 0.2"}),
                     OutlierEffect(1, "transient", 8, {"3 0.3", "4 0.4"}),
                     OutlierEffect(1, "seasonalAdditive", 10, {"6 0.6"}),
                     OutlierEffect(1, "trend", 11, {"7 0.7"}),
                     OutlierEffect(1, "innovational", 12, {"8 0.8"}),
                     OutlierEffect(1, "varianceChange", 5000000000, {"9 0.9"}),
                     "</ARIMAModel>"}));
}

// Constant at 0, AR lag 1 at 1, MA lags 1 and 2 at 2 and 3, and a transient
// outlier at 4 and 5.
AMModelSpec ShortVectorSpec() {
  AMModelSpec spec;
  spec.SetMeanYPresent(true);
  spec.SetARStruct({1}, {});
  spec.SetMAStruct({1, 2}, {});
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Transient, 3)});
  return spec;
}

TEST(ARIMAElementTest, ShortErrorsGiveOneNumberPerEstimateOfTheGroup) {
  // The errors end inside the MA group and before the constant's count:
  // the constant, both MA terms and the outlier get the estimate alone,
  // though the first MA position lies within the errors.
  EXPECT_EQ(
      Build(ShortVectorSpec(), {5, 0.5, 0.25, -0.125, 2, 0.5}, {1, 0.1, 0.2}),
      kHead + Lines({EstimateElement(1, "ConstantTerm", {}, {"5"}),
                     "\t<Autoregression>", "\t\t<NonSeasonalFactor>",
                     LagTerm(3, 1, "0.5 0.1"), "\t\t</NonSeasonalFactor>",
                     "\t</Autoregression>", "\t<MovingAverage>",
                     "\t\t<NonSeasonalFactor>", LagTerm(3, 1, "0.25"),
                     LagTerm(3, 2, "-0.125"), "\t\t</NonSeasonalFactor>",
                     "\t</MovingAverage>",
                     OutlierEffect(1, "transient", 3, {"2", "0.5"}),
                     "</ARIMAModel>"}));
}

TEST(ARIMAElementTest, ShortEstimatesKeepTheTermsEmpty) {
  // The estimates end inside the MA group: the constant and the MA terms
  // keep their elements without estimates, and so does the outlier; the
  // AR group ends in time. A missing estimate empties its term alone.
  EXPECT_EQ(
      Build(ShortVectorSpec(), {5, kMissing, 0.25},
            {1, 0.1, 0.2, 0.3, 0.4, 0.5}),
      kHead + Lines({"\t<ConstantTerm/>", "\t<Autoregression>",
                     "\t\t<NonSeasonalFactor>", LagTerm(3, 1),
                     "\t\t</NonSeasonalFactor>", "\t</Autoregression>",
                     "\t<MovingAverage>", "\t\t<NonSeasonalFactor>",
                     LagTerm(3, 1), LagTerm(3, 2), "\t\t</NonSeasonalFactor>",
                     "\t</MovingAverage>", OutlierEffect(1, "transient", 3, {}),
                     "</ARIMAModel>"}));
}

TEST(ARIMAElementTest, PositionsWrapInThirtyTwoBits) {
  // A group that starts at the last 32-bit position ends, wrapped, at 1: its
  // first term lies outside the vector and stays empty, the next one reads
  // position 0. An outlier with a huge parameter count reads what lies in
  // the vector and stops.
  AMModelSpec spec;
  spec.SetARStruct({1, 2}, {});
  TSOutlierSpec huge(TSOutlierSpec::Additive, 2);
  huge.SetParameterCount(UINT_MAX);
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Transient, 1), huge});
  spec.SetARPosition(UINT_MAX);
  spec.SetOutlierParmIndex(UINT_MAX);
  spec.SetParameterCount(2);
  EXPECT_EQ(Build(spec, {0.5, 0.75}, {0.1, 0.2}),
            kHead + Lines({"\t<Autoregression>", "\t\t<NonSeasonalFactor>",
                           LagTerm(3, 1), LagTerm(3, 2, "0.5 0.1"),
                           "\t\t</NonSeasonalFactor>", "\t</Autoregression>",
                           OutlierEffect(1, "transient", 1, {"0.5 0.1"}),
                           OutlierEffect(1, "additive", 2, {"0.75 0.2"}),
                           "</ARIMAModel>"}));
}

// The texts of the "EstimatedParameter" elements, in document order.
std::vector<std::string> EstimateTexts(const std::string& text) {
  static const std::string kOpen = "<EstimatedParameter>";
  std::vector<std::string> found;
  for (size_t at = text.find(kOpen); at != std::string::npos;
       at = text.find(kOpen, at)) {
    at += kOpen.size();
    found.push_back(text.substr(at, text.find('<', at) - at));
  }
  return found;
}

TEST(ARIMAElementTest, LaidOutParametersAppearInVectorOrder) {
  // With the layout of AMModelSpec and the estimates 1..n (errors -1..-n), the
  // document reads every parameter once, in vector order: the element order
  // follows the layout order.
  std::minstd_rand random(7);
  auto below = [&](unsigned n) { return unsigned(random() % n); };
  auto lags = [&](unsigned max) {  // some of the lags 1..max
    std::vector<unsigned> chosen;
    for (unsigned lag = 1; lag <= max; ++lag) {
      if (below(2)) chosen.push_back(lag);
    }
    return AMPowers(chosen);
  };
  for (int round = 0; round < 300; ++round) {
    AMModelSpec spec;
    spec.SetMeanYPresent(below(2));
    spec.SetARStruct(lags(4), lags(2));
    spec.SetMAStruct(lags(4), lags(2));
    std::vector<std::string> names;
    for (unsigned i = below(4); i > 0; --i) {
      AMPredictorSpec x;
      x.numeratorNonSeasonal = lags(3);
      x.numeratorSeasonal = lags(2);
      x.denominatorNonSeasonal = lags(3);
      x.denominatorSeasonal = lags(2);
      spec.AddPredictor(x);
      names.push_back("x" + std::to_string(i));
    }
    TSOutlierSpecList outliers;
    for (unsigned i = below(5); i > 0; --i) {
      outliers.Add(TSOutlierSpec(below(8), i));
    }
    spec.SetOutliers(outliers);

    const unsigned n = spec.GetParameterCount(true);
    const std::vector<std::string> texts =
        EstimateTexts(Build(spec, Sequence(n, 1, 1), Sequence(n, -1, -1),
                            TSXDictionaryRefs("M", "", "y", names)));
    ASSERT_EQ(texts.size(), n) << "round " << round;
    for (unsigned k = 0; k < n; ++k) {
      ASSERT_EQ(texts[k], std::to_string(k + 1) + " -" + std::to_string(k + 1))
          << "round " << round;
    }
  }
}

}  // namespace
