#include "tsxml/native/arima_element.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <memory>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "support/arima_fixtures.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/base/dictionary_refs.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::ReadTestData;
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

std::string Expected(const std::string& file) {
  return "\n" + ReadTestData("native/" + file + ".xml");
}

// Log and both differences, a constant, AR lags 1 and 3 (given out of
// order, repeated and with 0) with a seasonal lag, a seasonal MA lag, a
// predictor with a transformation and every factor, a plain regression, and the
// outlier types 0 (None) to 8 (unknown, its parameter passed over), both
// written nowhere, and a start index past 32 bits. 21 parameters.
AMModelSpec EveryTerm() {
  AMModelSpec spec;
  spec.SetSeasonLength(4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  spec.SetYDiff(1, 1);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({3, 0, 1, 3}, {1});  // read as lags 1 and 3
  spec.SetMAStruct({}, {2});
  // Square root, both differences, delay 2; numerator lags 1 and 2 and
  // seasonal 1, denominator lag 1.
  spec.AddPredictor({TSTransformSpec(BFSharedConst::SquareRoot), 1, 1, 2,
                     AMPowers({1, 2}), AMPowers({1}), AMPowers({1}),
                     AMPowers()});
  spec.AddPredictor(AMPredictorSpec());
  TSOutlierSpecList outliers;
  for (uint32_t type = 0; type <= 8; ++type) {
    outliers.Add(TSOutlierSpec(type, 5 + type));
  }
  outliers.Add(TSOutlierSpec(TSOutlierSpec::VarianceChange, 5000000000));
  spec.SetOutliers(outliers);
  return spec;
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

// An AR group that starts at the last 32-bit position and ends, wrapped, at
// 1, and outliers at the same position, the second with a huge parameter
// count.
AMModelSpec WrappingSpec() {
  AMModelSpec spec;
  spec.SetARStruct({1, 2}, {});
  TSOutlierSpec huge(TSOutlierSpec::Additive, 2);
  huge.SetParameterCount(UINT_MAX);
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Transient, 1), huge});
  spec.SetARPosition(UINT_MAX);
  spec.SetOutlierParmIndex(UINT_MAX);
  spec.SetParameterCount(2);
  return spec;
}

TEST(ARIMAElementTest, WholeElements) {
  EXPECT_EQ(Build(AMModelSpec(), {}, {}),
            "\n<ARIMAModel\n\tmodelName=\"M\"\n\tvariableID=\"y\"/>");
  // Predictor names that do not match the predictors: no element.
  EXPECT_EQ(Build(EveryTerm(), {}, {}), "null");

  TSXDictionaryRefs refs("M", "D", "y", {"x1", "x2"});
  refs.SetDateSpecID(3);
  EXPECT_EQ(
      Build(EveryTerm(), Sequence(21, 0.5, 1), Sequence(21, 0.25, 0.25), refs),
      Expected("arima_every_term"));
  // The errors end inside the MA group and before the constant's count: the
  // constant, both MA terms and the outlier get the estimate alone, though
  // the first MA position lies within the errors.
  EXPECT_EQ(
      Build(ShortVectorSpec(), {5, 0.5, 0.25, -0.125, 2, 0.5}, {1, 0.1, 0.2}),
      Expected("arima_short_errors"));
  // The estimates end inside the MA group: the constant, the MA terms and the
  // outlier keep their elements without estimates; the AR group ends in
  // time, and its missing estimate empties its term alone.
  EXPECT_EQ(Build(ShortVectorSpec(), {5, kMissing, 0.25},
                  {1, 0.1, 0.2, 0.3, 0.4, 0.5}),
            Expected("arima_short_estimates"));
  // The first AR term lies outside the vector and stays empty, the next
  // reads position 0; the huge outlier reads what lies in the vector and
  // stops.
  EXPECT_EQ(Build(WrappingSpec(), {0.5, 0.75}, {0.1, 0.2}),
            Expected("arima_wrapped_positions"));
}

TEST(ARIMAElementTest, LaidOutParametersAppearInVectorOrder) {
  // With the layout of AMModelSpec and the estimates 1..n (errors -1..-n), the
  // document reads every parameter once, in vector order: the element order
  // follows the layout order.
  const std::regex estimate("<EstimatedParameter>([^<]*)<");
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
      spec.AddPredictor({{}, 0, 0, 0, lags(3), lags(2), lags(3), lags(2)});
      names.push_back("x" + std::to_string(i));
    }
    TSOutlierSpecList outliers;
    for (unsigned i = below(5); i > 0; --i) {
      outliers.Add(TSOutlierSpec(below(8), i));
    }
    spec.SetOutliers(outliers);

    const unsigned n = spec.GetParameterCount(true);
    std::vector<std::string> expected;
    for (unsigned k = 1; k <= n; ++k) {
      expected.push_back(std::to_string(k) + " -" + std::to_string(k));
    }
    const std::string text = Build(spec, Sequence(n, 1, 1), Sequence(n, -1, -1),
                                   TSXDictionaryRefs("M", "", "y", names));
    std::vector<std::string> texts;
    for (std::sregex_iterator at(text.begin(), text.end(), estimate), end;
         at != end; ++at) {
      texts.push_back((*at)[1]);
    }
    ASSERT_EQ(texts, expected) << "round " << round;
  }
}

}  // namespace
