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

// Log and seasonal differencing, a constant, AR lags 3 and 1 with a seasonal
// lag, a seasonal MA lag, a predictor with a transformation and every
// factor, a plain regression, and the outlier types 0 (None) to 8 (unknown,
// its parameter passed over), both written nowhere, and a start index past
// 32 bits. 21 parameters.
AMModelSpec EveryTerm() {
  AMModelSpec spec;
  spec.SetSeasonLength(4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  spec.SetYDiff(0, 1);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({3, 1}, {1});
  spec.SetMAStruct({}, {2});
  AMPredictorSpec x1;
  x1.transform = TSTransformSpec(BFSharedConst::SquareRoot);
  x1.nonSeasonalDiff = 1;
  x1.seasonalDiff = 1;
  x1.delay = 2;
  x1.numeratorNonSeasonal = {1, 2};
  x1.numeratorSeasonal = {1};
  x1.denominatorNonSeasonal = {1};
  spec.AddPredictor(x1);
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
  const struct {
    const char* file;
    AMModelSpec spec;
    std::valarray<double> estimates, stdErrors;
    TSXDictionaryRefs refs = TSXDictionaryRefs("M", "", "y");
  } cases[] = {
      {"arima_every_term", EveryTerm(), Sequence(21, 0.5, 1),
       Sequence(21, 0.25, 0.25), refs},
      // The errors end inside the MA group and before the constant's count:
      // the constant, both MA terms and the outlier get the estimate alone,
      // though the first MA position lies within the errors.
      {"arima_short_errors",
       ShortVectorSpec(),
       {5, 0.5, 0.25, -0.125, 2, 0.5},
       {1, 0.1, 0.2}},
      // The estimates end inside the MA group: the constant, the MA terms and
      // the outlier keep their elements without estimates; the AR group ends
      // in time, and its missing estimate empties its term alone.
      {"arima_short_estimates",
       ShortVectorSpec(),
       {5, kMissing, 0.25},
       {1, 0.1, 0.2, 0.3, 0.4, 0.5}},
      // The first AR term lies outside the vector and stays empty, the next
      // reads position 0; the huge outlier reads what lies in the vector and
      // stops.
      {"arima_wrapped_positions", WrappingSpec(), {0.5, 0.75}, {0.1, 0.2}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Build(c.spec, c.estimates, c.stdErrors, c.refs),
              "\n" + ReadTestData(std::string("native/") + c.file + ".xml"))
        << c.file;
  }
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
    std::vector<std::string> expected;
    for (unsigned k = 1; k <= n; ++k) {
      expected.push_back(std::to_string(k) + " -" + std::to_string(k));
    }
    ASSERT_EQ(EstimateTexts(Build(spec, Sequence(n, 1, 1), Sequence(n, -1, -1),
                                  TSXDictionaryRefs("M", "", "y", names))),
              expected)
        << "round " << round;
  }
}

}  // namespace
