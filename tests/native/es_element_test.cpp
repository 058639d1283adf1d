#include "tsxml/native/es_element.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/base/dictionary_refs.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::ReadTestData;
using testing_support::Text;

constexpr double kMissing = MV::gMissingValue;

// The element for `state`, with no statistics in its EstimationInfo.
std::unique_ptr<XMLElement> Build(const ESForecastState& state) {
  EstimationInfo info;
  info.SetSpan(TSSpan(0, 12));
  info.SetDegreesOfFreedom(10);
  return std::unique_ptr<XMLElement>(tsxml::MakeExpSmoothingElement(
      state.GetESModelSpec(), TSXDictionaryRefs("M", "", "y"),
      state.GetParameters(), state.GetParameterStdErrors(), state, info));
}

TEST(ExpSmoothingElementTest, WholeElements) {
  WIESSmState longCycle(1, 0, 2, {4, 5});
  longCycle.SetCycleLength(6);
  const ESForecastState states[] = {
      // Level, trend and damping; no season.
      {ESModelSpec(ESModelSpec::ESDampedTrend, 1),
       {0.3, 0.1, 0.9},
       {},
       WIESSmState(5, -1)},
      // Fewer estimates than the model has: the states alone.
      {ESModelSpec(ESModelSpec::ESHolt, 0), {0.3}, {}, WIESSmState(5, 1)},
      // A season but no trend state: the missing trend is never looked at.
      {ESModelSpec(ESModelSpec::ESSimpleSeasonal, 2),
       {0.4, 0.2},
       {0.1, 0.05},
       WIESSmState(3, kMissing, 0, {1, -1})},
      // A cycle longer than the stored values reads only those.
      {ESModelSpec(ESModelSpec::ESSimple), {0.5}, {}, longCycle},
  };
  std::string text;
  for (const ESForecastState& state : states) text += Text(*Build(state));
  EXPECT_EQ(text, "\n" + ReadTestData("native/es_elements.xml"));
}

TEST(ExpSmoothingElementTest, ModelsThatCannotBeWrittenGiveNull) {
  using Spec = ESModelSpec;
  const WIESSmState sound(1, 1, 0, {1, 2});
  Spec pastEnd(Spec::ESSimple);
  pastEnd.SetESParameterIndex(Spec::Level, 3);
  pastEnd.SetParameterCount(1);
  const struct {
    const char* what;
    Spec spec;
    std::valarray<double> parameters;
    WIESSmState state;
  } cases[] = {
      {"type outside the table", Spec(9), {0.5}, sound},
      {"position past the estimates", pastEnd, {0.5}, sound},
      {"missing estimate", Spec(Spec::ESHolt), {0.5, kMissing}, sound},
      {"missing level", Spec(Spec::ESSimple), {0.5}, {kMissing, 0}},
      {"missing trend", Spec(Spec::ESBrown), {0.5}, {1, kMissing}},
      {"missing season", Spec(Spec::ESSimple), {0.5}, {1, 0, 0, {1, kMissing}}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Build(ESForecastState(c.spec, c.parameters, {}, c.state)),
              nullptr)
        << c.what;
  }
}

TEST(ESSubmodelTest, ReducedFormNeverFails) {
  auto parent = testing_support::Element();
  // "ESSimple" whatever the type, with the level parameter alone.
  ESForecastState holt(ESModelSpec(ESModelSpec::ESHolt), {0.2, 0.1}, {0.05},
                       WIESSmState(4, 1));
  tsxml::AddESSubmodel(*parent, "A", holt);
  // A missing seasonal value empties the states; a missing estimate drops
  // "ParmLevel".
  ESForecastState badSeason(ESModelSpec(ESModelSpec::ESSimple), {kMissing}, {},
                            WIESSmState(1, 0, 0, {kMissing, 1}));
  tsxml::AddESSubmodel(*parent, "C", badSeason);
  EXPECT_EQ(Text(*parent), "\n" + ReadTestData("native/es_submodels.xml"));
}

}  // namespace
