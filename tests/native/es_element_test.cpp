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

using Spec = ESModelSpec;

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

TEST(ExpSmoothingElementTest, WholeElementsAndSubmodels) {
  WIESSmState longCycle(1, 0, 2, {4, 5});
  longCycle.SetCycleLength(6);
  const ESForecastState states[] = {
      // Level, trend and damping; no season.
      ESForecastState(Spec(Spec::ESDampedTrend, 1), {0.3, 0.1, 0.9}, {},
                      WIESSmState(5, -1)),
      // Fewer estimates than the model has: the states alone.
      ESForecastState(Spec(Spec::ESHolt, 0), {0.3}, {}, WIESSmState(5, 1)),
      // A season but no trend state: the missing trend is never looked at.
      ESForecastState(Spec(Spec::ESSimpleSeasonal, 2), {0.4, 0.2}, {0.1, 0.05},
                      WIESSmState(3, kMissing, 0, {1, -1})),
      // A cycle longer than the stored values reads only those.
      ESForecastState(Spec(Spec::ESSimple), {0.5}, {}, longCycle),
  };
  std::string text;
  for (const ESForecastState& state : states) text += Text(*Build(state));
  EXPECT_EQ(text, "\n" + ReadTestData("native/es_elements.xml"));

  // Submodels are "ESSimple" whatever the type, with the level parameter
  // alone; they never fail: a missing seasonal value empties the states, a
  // missing estimate drops "ParmLevel".
  auto parent = testing_support::Element();
  tsxml::AddESSubmodel(*parent, "A",
                       ESForecastState(Spec(Spec::ESHolt), {0.2, 0.1}, {0.05},
                                       WIESSmState(4, 1)));
  tsxml::AddESSubmodel(*parent, "C",
                       ESForecastState(Spec(Spec::ESSimple), {kMissing}, {},
                                       WIESSmState(1, 0, 0, {kMissing, 1})));
  EXPECT_EQ(Text(*parent), "\n" + ReadTestData("native/es_submodels.xml"));
}

TEST(ExpSmoothingElementTest, ModelsThatCannotBeWrittenGiveNull) {
  const WIESSmState sound(1, 1, 0, {1, 2});
  Spec pastEnd(Spec::ESSimple);
  pastEnd.SetESParameterIndex(Spec::Level, 3);
  pastEnd.SetParameterCount(1);
  const ESForecastState cases[] = {
      ESForecastState(Spec(9), {0.5}, {}, sound),  // type outside the table
      ESForecastState(pastEnd, {0.5}, {},
                      sound),  // position past the estimates
      ESForecastState(Spec(Spec::ESHolt), {0.5, kMissing}, {}, sound),
      ESForecastState(Spec(Spec::ESSimple), {0.5}, {}, {kMissing, 0}),
      ESForecastState(Spec(Spec::ESBrown), {0.5}, {}, {1, kMissing}),
      ESForecastState(Spec(Spec::ESSimple), {0.5}, {},
                      {1, 0, 0, {1, kMissing}}),
  };
  for (const ESForecastState& state : cases) {
    EXPECT_EQ(Build(state), nullptr) << "case " << &state - cases;
  }
}

}  // namespace
