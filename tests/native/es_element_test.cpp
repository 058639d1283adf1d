#include "tsxml/native/es_element.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/model_fixtures.h"
#include "tsxml/base/dictionary_refs.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::EstimateElement;
using testing_support::Lines;
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
  // The seasonal types are in the tree's whole documents.
  const struct {
    ESForecastState state;
    std::string body;
  } cases[] = {
      // Level, trend and damping; no season.
      {ESForecastState(ESModelSpec(ESModelSpec::ESDampedTrend, 1),
                       {0.3, 0.1, 0.9}, {}, WIESSmState(5, -1)),
       Lines({"\t<ESDampedTrend>", EstimateElement(2, "ParmLevel", {}, {"0.3"}),
              EstimateElement(2, "ParmTrend", {}, {"0.1"}),
              EstimateElement(2, "ParmDampingTrend", {}, {"0.9"}),
              "\t\t<StateLevel>5</StateLevel>",
              "\t\t<StateTrend>-1</StateTrend>", "\t</ESDampedTrend>"})},
      // Fewer estimates than the model has: the states alone.
      {ESForecastState(ESModelSpec(ESModelSpec::ESHolt, 0), {0.3}, {},
                       WIESSmState(5, 1)),
       Lines({"\t<ESHolt>", "\t\t<StateLevel>5</StateLevel>",
              "\t\t<StateTrend>1</StateTrend>", "\t</ESHolt>"})},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(
        Text(*Build(c.state)),
        Lines({"<ExpSmoothingModel", "\tmodelName=\"M\"",
               "\tvariableID=\"y\">"}) +
            c.body +
            Lines({"\t<EstimationInfo", "\t\tperiodStartIndex=\"0\"",
                   "\t\tperiodLength=\"12\"", "\t\tdegreesOfFreedom=\"10\"/>",
                   "</ExpSmoothingModel>"}));
  }
}

TEST(ExpSmoothingElementTest, SimpleSeasonalHasSeasonButNoTrendState) {
  // The trend is missing but never looked at for this type.
  ESForecastState state(ESModelSpec(ESModelSpec::ESSimpleSeasonal, 2),
                        {0.4, 0.2}, {0.1, 0.05},
                        WIESSmState(3, kMissing, 0, {1, -1}));
  const std::string text = Text(*Build(state));
  EXPECT_NE(text.find("\t\t<StateSeason\n\t\t\tphase=\"0\">1 -1</StateSeason>"),
            std::string::npos);
  EXPECT_EQ(text.find("StateTrend"), std::string::npos);
  EXPECT_NE(text.find("seasonLength=\"2\""), std::string::npos);
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

TEST(ExpSmoothingElementTest, CycleLongerThanStoredValuesReadsOnlyThose) {
  WIESSmState sm(1, 0, 2, {4, 5});
  sm.SetCycleLength(6);
  ESForecastState state(ESModelSpec(ESModelSpec::ESSimple), {0.5}, {}, sm);
  EXPECT_NE(Text(*Build(state)).find("phase=\"2\">4 5</StateSeason>"),
            std::string::npos);
}

TEST(ESSubmodelTest, ReducedFormNeverFails) {
  auto parent = std::unique_ptr<XMLElement>(XMLElement::Create("p"));
  // "ESSimple" whatever the type, with the level parameter alone.
  ESForecastState holt(ESModelSpec(ESModelSpec::ESHolt), {0.2, 0.1}, {0.05},
                       WIESSmState(4, 1));
  tsxml::AddESSubmodel(*parent, "A", holt);
  // A missing seasonal value empties the states; a missing estimate drops
  // "ParmLevel". (A missing level is in the Croston document.)
  ESForecastState badSeason(ESModelSpec(ESModelSpec::ESSimple), {kMissing}, {},
                            WIESSmState(1, 0, 0, {kMissing, 1}));
  tsxml::AddESSubmodel(*parent, "C", badSeason);
  EXPECT_EQ(Text(*parent),
            Lines({"<p>", "\t<A>", "\t\t<ESSimple>",
                   EstimateElement(3, "ParmLevel", {}, {"0.2 0.05"}),
                   "\t\t\t<StateLevel>4</StateLevel>",
                   "\t\t\t<StateTrend>1</StateTrend>", "\t\t</ESSimple>",
                   "\t</A>", "\t<C>", "\t\t<ESSimple/>", "\t</C>", "</p>"}));
}

}  // namespace
