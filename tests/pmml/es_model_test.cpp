// The TimeSeriesModel element of exponential smoothing models, compared as
// whole text.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "modelapi/forecast_model.h"
#include "pmml/pmml_document.h"
#include "pmml_test_util.h"
#include "support/model_fixtures.h"
#include "xml/number_text.h"

namespace {

using pmml_test::MakeTypeModel;
using pmml_test::ModelOptions;
using testing_support::BasicInfo;
using testing_support::Lines;
using testing_support::MakeESModel;
using testing_support::Text;
using tsxml::TSXPMMLDocument;

constexpr double kMissing = MV::gMissingValue;
const char kMissingText[] = "-1.79769313486232e+308";

// The text of the element that `model` adds to a fresh document.
std::string ModelText(const TSFModel& model,
                      const TSXDictionaryRefs& refs = TSXDictionaryRefs("M", "",
                                                                        "y"),
                      bool timeValues = true) {
  TSXPMMLDocument document;
  document.SetESPMMLOutputTimeValue(timeValues);
  const TSFModelImp* imp = model.GetImp();
  document.AddModel(model, refs, imp->GetHistoryData());
  const OstraTimeXML::XMLElement* element = document.GetModelElement(0);
  return element ? Text(*element) : "(no element)";
}

// The start of a model named "M" on "y", with its mining schema.
std::string Head(const char* timeField = "Month") {
  return Lines({"<TimeSeriesModel", "\tmodelName=\"M\"",
                "\tfunctionName=\"timeSeries\"",
                "\talgorithmName=\"exponential smoothing\"",
                "\tbestFit=\"ExponentialSmoothing\">", "\t<MiningSchema>",
                "\t\t<MiningField", "\t\t\tname=\"y\"",
                "\t\t\tusageType=\"predicted\"/>", "\t\t<MiningField"}) +
         "\n\t\t\tname=\"" + timeField + "\"" +
         Lines({"\t\t\tusageType=\"order\"/>", "\t</MiningSchema>"});
}

std::string ValueExtension(const std::string& name, const std::string& value) {
  return "\n\t<Extension\n\t\textender=\"tsxml.example\"\n\t\tname=\"" + name +
         "\"\n\t\tvalue=\"" + value + "\"/>";
}

// The closing extensions of a model made by MakeTypeModel; `initSeason` is
// the text of its array, or empty for none.
std::string Tail(bool initTrend, const std::string& initSeason = "") {
  std::string text = ValueExtension("errVariance", "0.75") +
                     ValueExtension("degreesOfFreedom", "37") +
                     ValueExtension("periodStartIndex", "2") +
                     ValueExtension("periodLength", "40") +
                     ValueExtension("initLevel", "9");
  if (initTrend) text += ValueExtension("initTrend", "1.5");
  if (!initSeason.empty()) {
    text += Lines({"\t<Extension", "\t\textender=\"tsxml.example\"",
                   "\t\tname=\"initSeason\">"}) +
            initSeason + "\n\t</Extension>";
  }
  return text + "\n</TimeSeriesModel>";
}

const std::string kSmoothingStart =
    Lines({"\t<ExponentialSmoothing", "\t\tRMSE=\"1.25\"",
           "\t\ttransformation=\"none\">"});
const std::string kSmoothingEnd = "\n\t</ExponentialSmoothing>";

TEST(ESModelTest, SimpleHasOneLevelAndNoTrendOrSeasonExtensions) {
  // Without a model name there is no "modelName"; an empty dependent variable
  // is still written as the predicted field.
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESSimple), TSXDictionaryRefs()),
      Lines({"<TimeSeriesModel", "\tfunctionName=\"timeSeries\"",
             "\talgorithmName=\"exponential smoothing\"",
             "\tbestFit=\"ExponentialSmoothing\">", "\t<MiningSchema>",
             "\t\t<MiningField", "\t\t\tname=\"\"",
             "\t\t\tusageType=\"predicted\"/>", "\t\t<MiningField",
             "\t\t\tname=\"Month\"", "\t\t\tusageType=\"order\"/>",
             "\t</MiningSchema>"}) +
          kSmoothingStart +
          Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"",
                 "\t\t\tsmoothedValue=\"10\"/>"}) +
          kSmoothingEnd + Tail(false));
}

TEST(ESModelTest, AdditiveWintersWithTimeSeries) {
  ModelOptions options;
  options.history = {3, kMissing, 4.5};
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESAdditiveWinters, options)),
      Head() +
          Lines({"\t<TimeSeries", "\t\tusage=\"logical\"",
                 "\t\tstartTime=\"1\"", "\t\tendTime=\"3\"",
                 "\t\tinterpolationMethod=\"none\">", "\t\t<TimeAnchor/>",
                 "\t\t<TimeValue", "\t\t\tindex=\"1\"", "\t\t\tvalue=\"3\"/>",
                 "\t\t<TimeValue", "\t\t\tindex=\"2\""}) +
          "\n\t\t\tvalue=\"" + kMissingText + "\"/>" +
          Lines({"\t\t<TimeValue", "\t\t\tindex=\"3\"", "\t\t\tvalue=\"4.5\"/>",
                 "\t</TimeSeries>"}) +
          kSmoothingStart +
          Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"",
                 "\t\t\tsmoothedValue=\"10\"/>", "\t\t<Trend_ExpoSmooth",
                 "\t\t\tgamma=\"0.25\"", "\t\t\tsmoothedValue=\"2\"",
                 "\t\t\ttrend=\"additive\"/>", "\t\t<Seasonality_ExpoSmooth",
                 "\t\t\tdelta=\"0.125\"", "\t\t\tperiod=\"4\"",
                 "\t\t\tunit=\"month\"", "\t\t\tphase=\"1\"",
                 "\t\t\ttype=\"additive\">", "\t\t\t<Array", "\t\t\t\tn=\"4\"",
                 "\t\t\t\ttype=\"real\">1 2 3 4</Array>",
                 "\t\t</Seasonality_ExpoSmooth>"}) +
          kSmoothingEnd +
          Tail(true, Lines({"\t\t<Array", "\t\t\tn=\"4\"",
                            "\t\t\ttype=\"real\">0.5 1 1.5 2</Array>"})));
}

TEST(ESModelTest, TimeSeriesNeedsTheFlagAndAHistory) {
  ModelOptions options;
  options.history = {3, 4};
  const std::string without = Head() + kSmoothingStart +
                              Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"",
                                     "\t\t\tsmoothedValue=\"10\"/>"}) +
                              kSmoothingEnd + Tail(false);
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESSimple, options),
                      TSXDictionaryRefs("M", "", "y"), false),
            without);
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESSimple)), without);
  EXPECT_NE(ModelText(MakeTypeModel(ESModelSpec::ESSimple, options)), without);
}

TEST(ESModelTest, BrownTrendArrayFollowsAlpha) {
  // Level 10, trend 2, alpha 0.5: 2 / 0.5 + 10 - 2 = 12, then the trend.
  const std::string level = Lines(
      {"\t\t<Level", "\t\t\talpha=\"0.5\"", "\t\t\tsmoothedValue=\"10\"/>"});
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESBrown)),
      Head() + kSmoothingStart + level +
          Lines({"\t\t<Trend_ExpoSmooth", "\t\t\tsmoothedValue=\"2\"",
                 "\t\t\ttrend=\"polynomial_exponential\">", "\t\t\t<Array",
                 "\t\t\t\tn=\"2\"", "\t\t\t\ttype=\"real\">12 2</Array>",
                 "\t\t</Trend_ExpoSmooth>"}) +
          kSmoothingEnd + Tail(true));

  // An alpha of 1e-7 or below gives no array.
  for (const double alpha : {1e-8, 1e-7}) {
    const std::string text = ModelText(MakeESModel(
        ESModelSpec(ESModelSpec::ESBrown), {alpha}, {}, WIESSmState(10, 2)));
    const std::string trend =
        Lines({"\t\t<Trend_ExpoSmooth", "\t\t\tsmoothedValue=\"2\"",
               "\t\t\ttrend=\"polynomial_exponential\"/>",
               "\t</ExponentialSmoothing>"});
    EXPECT_NE(text.find(trend), std::string::npos) << alpha << text;
  }
  // Just above the bound the array is there: 2 / 2e-7 + 10 - 2.
  EXPECT_NE(ModelText(MakeESModel(ESModelSpec(ESModelSpec::ESBrown), {2e-7}, {},
                                  WIESSmState(10, 2)))
                .find("type=\"real\">10000008 2</Array>"),
            std::string::npos);
}

TEST(ESModelTest, DampedTrendWritesPhiAndNoElementForKindThree) {
  const std::string trend =
      Lines({"\t\t<Trend_ExpoSmooth", "\t\t\tgamma=\"0.25\"",
             "\t\t\tsmoothedValue=\"2\"", "\t\t\ttrend=\"damped_additive\""});
  const std::string level = Lines(
      {"\t\t<Level", "\t\t\talpha=\"0.5\"", "\t\t\tsmoothedValue=\"10\"/>"});
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESDampedTrend)),
            Head() + kSmoothingStart + level + trend +
                "\n\t\t\tphi=\"0.125\"/>" + kSmoothingEnd + Tail(true));

  // Without a position for the damping parameter, phi is missing and written
  // as the number text of the missing value.
  ESModelSpec spec(ESModelSpec::ESDampedTrend);
  spec.SetESParameterIndex(ESModelSpec::DampingTrend, -1);
  const std::string text =
      ModelText(MakeESModel(spec, {0.5, 0.25, 0.125}, {}, WIESSmState(10, 2)));
  EXPECT_NE(text.find(trend + "\n\t\t\tphi=\"" + kMissingText + "\"/>"),
            std::string::npos)
      << text;
}

TEST(ESModelTest, MissingFinalLevelDropsSmoothedValuesPhaseAndArrays) {
  ModelOptions options;
  options.missingLevel = true;
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESAdditiveWinters, options)),
      Head() + kSmoothingStart +
          Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"/>", "\t\t<Trend_ExpoSmooth",
                 "\t\t\tgamma=\"0.25\"", "\t\t\ttrend=\"additive\"/>",
                 "\t\t<Seasonality_ExpoSmooth", "\t\t\tdelta=\"0.125\"",
                 "\t\t\tperiod=\"4\"", "\t\t\tunit=\"month\"",
                 "\t\t\ttype=\"additive\"/>"}) +
          kSmoothingEnd + Tail(true));
}

TEST(ESModelTest, MissingSeasonalValueDropsPhaseArrayAndInitSeasonOnly) {
  ModelOptions options;
  options.missingSeasonal = true;
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESMultiplicativeWinters, options)),
      Head() + kSmoothingStart +
          Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"",
                 "\t\t\tsmoothedValue=\"10\"/>", "\t\t<Trend_ExpoSmooth",
                 "\t\t\tgamma=\"0.25\"", "\t\t\tsmoothedValue=\"2\"",
                 "\t\t\ttrend=\"additive\"/>", "\t\t<Seasonality_ExpoSmooth",
                 "\t\t\tdelta=\"0.125\"", "\t\t\tperiod=\"4\"",
                 "\t\t\tunit=\"month\"", "\t\t\ttype=\"multiplicative\"/>"}) +
          kSmoothingEnd + Tail(true));
}

TEST(ESModelTest, MissingTrendDropsTheTrendStateAndTheSeason) {
  ModelOptions options;
  options.missingTrend = true;
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESHolt, options)),
            Head() + kSmoothingStart +
                Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"",
                       "\t\t\tsmoothedValue=\"10\"/>", "\t\t<Trend_ExpoSmooth",
                       "\t\t\tgamma=\"0.25\"", "\t\t\ttrend=\"additive\"/>"}) +
                kSmoothingEnd + Tail(true));
  // A seasonal model whose trend is missing loses its season state as well.
  const std::string winters =
      ModelText(MakeTypeModel(ESModelSpec::ESAdditiveWinters, options));
  EXPECT_NE(winters.find("\t\t\tunit=\"month\"\n\t\t\ttype=\"additive\"/>"),
            std::string::npos)
      << winters;
  EXPECT_EQ(winters.find("initSeason"), std::string::npos);
}

TEST(ESModelTest, SimpleSeasonalHasNoTrendAndPeriodIsTheCycleLength) {
  // The trend of the final state is 2, but the type has none; a cycle of 7
  // (a daily series) still reads "month".
  ModelOptions options;
  options.seasonLength = 7;
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESSimpleSeasonal, options)),
      Head() + kSmoothingStart +
          Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"",
                 "\t\t\tsmoothedValue=\"10\"/>", "\t\t<Seasonality_ExpoSmooth",
                 "\t\t\tdelta=\"0.25\"", "\t\t\tperiod=\"7\"",
                 "\t\t\tunit=\"month\"", "\t\t\tphase=\"1\"",
                 "\t\t\ttype=\"additive\">", "\t\t\t<Array", "\t\t\t\tn=\"7\"",
                 "\t\t\t\ttype=\"real\">1 2 3 4 5 6 7</Array>",
                 "\t\t</Seasonality_ExpoSmooth>"}) +
          kSmoothingEnd +
          Tail(false,
               Lines({"\t\t<Array", "\t\t\tn=\"7\"",
                      "\t\t\ttype=\"real\">0.5 1 1.5 2 2.5 3 3.5</Array>"})));
}

TEST(ESModelTest, TransformationMissingRMSEAndInfinityAsTheyPrint) {
  ESModelSpec spec(ESModelSpec::ESSimpleSeasonal, 2);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::SquareRoot));
  const double inf = std::numeric_limits<double>::infinity();
  const std::string infText = OstraTimeXML::Format(inf, false, nullptr);
  EstimationInfo info = BasicInfo();
  info.SetErrorVariance(kMissing);
  const std::string text = ModelText(
      MakeESModel(spec, {0.5, 0.25}, {}, WIESSmState(1, 0, 0, {inf, 2}), info,
                  {}, WIESSmState(1, 0, 0, {1, -inf})));
  EXPECT_NE(text.find(Lines({"\t<ExponentialSmoothing"}) + "\n\t\tRMSE=\"" +
                      kMissingText + "\"\n\t\ttransformation=\"squareroot\">"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("type=\"real\">" + infText + " 2</Array>"),
            std::string::npos);
  EXPECT_NE(text.find("type=\"real\">1 -" + infText + "</Array>"),
            std::string::npos);
  EXPECT_NE(text.find(ValueExtension("errVariance", kMissingText)),
            std::string::npos);
}

TEST(ESModelTest, TimeFieldOfTheMiningSchemaIsReadWhenTheModelIsAdded) {
  TSXPMMLDocument document;
  document.SetDateField("Day", "date");
  const TSFModel model = MakeTypeModel(ESModelSpec::ESSimple);
  document.AddModel(model, TSXDictionaryRefs("M", "", "y"), {});
  document.SetDateField("Hour", "time");
  document.AddModel(model, TSXDictionaryRefs("M", "", "y"), {});
  ASSERT_EQ(document.GetModelElementCount(), 2u);
  EXPECT_EQ(Text(*document.GetModelElement(0)).substr(0, Head("Day").size()),
            Head("Day"));
  EXPECT_EQ(Text(*document.GetModelElement(1)).substr(0, Head("Hour").size()),
            Head("Hour"));
  EXPECT_EQ(document.GetModelElement(2), nullptr);
}

}  // namespace
