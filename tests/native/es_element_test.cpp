#include "native/es_element.h"

#include <gtest/gtest.h>

#include <memory>

#include "modelapi/forecast_model.h"
#include "support/model_fixtures.h"
#include "tree/dictionary_refs.h"

namespace {

using OstraTimeXML::XMLElement;
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

const char* const kInfoLines[] = {"\t<EstimationInfo",
                                  "\t\tperiodStartIndex=\"0\"",
                                  "\t\tperiodLength=\"12\"",
                                  "\t\tdegreesOfFreedom=\"10\"/>"};

TEST(ExpSmoothingElementTest, AdditiveWintersWholeElement) {
  ESModelSpec spec(ESModelSpec::ESAdditiveWinters, 4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::SquareRoot));
  ESForecastState state(spec, {0.5, 0.125, 0.25}, {0.01, 0.02},
                        WIESSmState(100, 2.5, 1, {-1, 0.5, 0.25, 0.25}));
  EXPECT_EQ(Text(*Build(state)),
            Lines({"<ExpSmoothingModel", "\tmodelName=\"M\"",
                   "\tvariableID=\"y\">", "\t<Transformation",
                   "\t\tfunction=\"squareRoot\"/>", "\t<ESAdditiveWinters",
                   "\t\tseasonLength=\"4\">", "\t\t<ParmLevel>",
                   "\t\t\t<EstimatedParameter>0.5 0.01</EstimatedParameter>",
                   "\t\t</ParmLevel>", "\t\t<ParmTrend>",
                   "\t\t\t<EstimatedParameter>0.125 0.02</EstimatedParameter>",
                   "\t\t</ParmTrend>", "\t\t<ParmSeason>",
                   "\t\t\t<EstimatedParameter>0.25</EstimatedParameter>",
                   "\t\t</ParmSeason>", "\t\t<StateLevel>100</StateLevel>",
                   "\t\t<StateTrend>2.5</StateTrend>", "\t\t<StateSeason",
                   "\t\t\tphase=\"1\">-1 0.5 0.25 0.25</StateSeason>",
                   "\t</ESAdditiveWinters>", kInfoLines[0], kInfoLines[1],
                   kInfoLines[2], kInfoLines[3], "</ExpSmoothingModel>"}));
}

TEST(ExpSmoothingElementTest, DampedTrendSkipsKindsItLacks) {
  // Level, trend and damping; the season kind is absent and left out.
  ESModelSpec spec(ESModelSpec::ESDampedTrend, 1);
  ESForecastState state(spec, {0.3, 0.1, 0.9}, {}, WIESSmState(5, -1));
  EXPECT_EQ(Text(*Build(state)),
            Lines({"<ExpSmoothingModel", "\tmodelName=\"M\"",
                   "\tvariableID=\"y\">", "\t<ESDampedTrend>",
                   "\t\t<ParmLevel>",
                   "\t\t\t<EstimatedParameter>0.3</EstimatedParameter>",
                   "\t\t</ParmLevel>", "\t\t<ParmTrend>",
                   "\t\t\t<EstimatedParameter>0.1</EstimatedParameter>",
                   "\t\t</ParmTrend>", "\t\t<ParmDampingTrend>",
                   "\t\t\t<EstimatedParameter>0.9</EstimatedParameter>",
                   "\t\t</ParmDampingTrend>", "\t\t<StateLevel>5</StateLevel>",
                   "\t\t<StateTrend>-1</StateTrend>", "\t</ESDampedTrend>",
                   kInfoLines[0], kInfoLines[1], kInfoLines[2], kInfoLines[3],
                   "</ExpSmoothingModel>"}));
}

TEST(ExpSmoothingElementTest, ShortParameterVectorWritesStatesOnly) {
  ESModelSpec spec(ESModelSpec::ESHolt, 0);
  ESForecastState state(spec, {0.3}, {}, WIESSmState(5, 1));
  EXPECT_EQ(Text(*Build(state)),
            Lines({"<ExpSmoothingModel", "\tmodelName=\"M\"",
                   "\tvariableID=\"y\">", "\t<ESHolt>",
                   "\t\t<StateLevel>5</StateLevel>",
                   "\t\t<StateTrend>1</StateTrend>", "\t</ESHolt>",
                   kInfoLines[0], kInfoLines[1], kInfoLines[2], kInfoLines[3],
                   "</ExpSmoothingModel>"}));
}

TEST(ExpSmoothingElementTest, SimpleSeasonalHasSeasonButNoTrendState) {
  ESModelSpec spec(ESModelSpec::ESSimpleSeasonal, 2);
  // The trend is missing but never looked at for this type.
  ESForecastState state(spec, {0.4, 0.2}, {0.1, 0.05},
                        WIESSmState(3, kMissing, 0, {1, -1}));
  const std::string text = Text(*Build(state));
  EXPECT_NE(text.find("\t\t<StateSeason\n\t\t\tphase=\"0\">1 -1</StateSeason>"),
            std::string::npos);
  EXPECT_EQ(text.find("StateTrend"), std::string::npos);
  EXPECT_NE(text.find("seasonLength=\"2\""), std::string::npos);
}

TEST(ExpSmoothingElementTest, ModelsThatCannotBeWrittenGiveNull) {
  const WIESSmState sound(1, 1, 0, {1, 2});
  struct Case {
    const char* what;
    ESModelSpec spec;
    std::valarray<double> parameters;
    WIESSmState state;
  };
  ESModelSpec badType(9);
  ESModelSpec pastEnd(ESModelSpec::ESSimple);
  pastEnd.SetESParameterIndex(ESModelSpec::Level, 3);
  pastEnd.SetParameterCount(1);
  const Case cases[] = {
      {"type outside the table", badType, {0.5}, sound},
      {"position past the estimates", pastEnd, {0.5}, sound},
      {"missing estimate", ESModelSpec(ESModelSpec::ESHolt), {0.5, kMissing},
       sound},
      {"missing level", ESModelSpec(ESModelSpec::ESSimple), {0.5},
       WIESSmState(kMissing, 0)},
      {"missing trend", ESModelSpec(ESModelSpec::ESBrown), {0.5},
       WIESSmState(1, kMissing)},
      {"missing seasonal value", ESModelSpec(ESModelSpec::ESSimple), {0.5},
       WIESSmState(1, 0, 0, {1, kMissing})},
  };
  for (const Case& c : cases) {
    ESForecastState state(c.spec, c.parameters, {}, c.state);
    EXPECT_EQ(Build(state), nullptr) << c.what;
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
  // The word is "ESSimple" whatever the type; only the level parameter.
  ESForecastState holt(ESModelSpec(ESModelSpec::ESHolt), {0.2, 0.1}, {0.05},
                       WIESSmState(4, 1));
  tsxml::AddESSubmodel(*parent, "A", holt);
  // A missing level leaves "ESSimple" without states.
  ESForecastState noLevel(ESModelSpec(ESModelSpec::ESSimple), {0.3}, {},
                          WIESSmState(kMissing, 0));
  tsxml::AddESSubmodel(*parent, "B", noLevel);
  // A missing seasonal value empties the states; a missing estimate drops
  // "ParmLevel".
  ESForecastState badSeason(ESModelSpec(ESModelSpec::ESSimple), {kMissing},
                            {}, WIESSmState(1, 0, 0, {kMissing, 1}));
  tsxml::AddESSubmodel(*parent, "C", badSeason);
  EXPECT_EQ(Text(*parent),
            Lines({"<p>", "\t<A>", "\t\t<ESSimple>", "\t\t\t<ParmLevel>",
                   "\t\t\t\t<EstimatedParameter>0.2 0.05</EstimatedParameter>",
                   "\t\t\t</ParmLevel>", "\t\t\t<StateLevel>4</StateLevel>",
                   "\t\t\t<StateTrend>1</StateTrend>", "\t\t</ESSimple>",
                   "\t</A>", "\t<B>", "\t\t<ESSimple>", "\t\t\t<ParmLevel>",
                   "\t\t\t\t<EstimatedParameter>0.3</EstimatedParameter>",
                   "\t\t\t</ParmLevel>", "\t\t</ESSimple>", "\t</B>", "\t<C>",
                   "\t\t<ESSimple/>", "\t</C>", "</p>"}));
}

}  // namespace
