// The TimeSeriesModel element of exponential smoothing models, compared as
// whole text.
#include "tsxml/pmml/es_model.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>

#include "pmml_test_util.h"
#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/pmml/pmml_document.h"
#include "tsxml/xml/number_text.h"

namespace {

using pmml_test::MakeTypeModel;
using pmml_test::ModelOptions;
using testing_support::BasicInfo;
using testing_support::Lines;
using testing_support::MakeESModel;
using testing_support::Text;
using tsxml::TSXPMMLDocument;

constexpr double kMissing = MV::gMissingValue;
const std::string kMissingText = "-1.79769313486232e+308";

// The text of the element that `model` adds to a fresh document.
std::string ModelText(const TSFModel& model,
                      const TSXDictionaryRefs& refs = TSXDictionaryRefs("M", "",
                                                                        "y"),
                      bool timeValues = true) {
  const TSFModelImp& imp = *model.GetImp();
  tsxml::TSXModelSummary summary;
  summary.Fill(model, refs, imp.GetHistoryData());
  std::unique_ptr<OstraTimeXML::XMLElement> element(tsxml::BuildESModel(
      summary, "Month", timeValues, refs,
      dynamic_cast<const ESForecastState&>(*imp.GetForecastState()),
      imp.GetEstimationInfo(), imp.GetHistoryData()));
  return Text(*element);
}

// The start of a model named `name` on `variable`, with its mining schema.
std::string Head(const std::string& timeField = "Month",
                 const std::string& name = "M",
                 const std::string& variable = "y") {
  return "\n<TimeSeriesModel" +
         (name.empty() ? "" : "\n\tmodelName=\"" + name + "\"") +
         Lines({"\tfunctionName=\"timeSeries\"",
                "\talgorithmName=\"exponential smoothing\"",
                "\tbestFit=\"ExponentialSmoothing\">", "\t<MiningSchema>",
                "\t\t<MiningField"}) +
         "\n\t\t\tname=\"" + variable + "\"" +
         Lines({"\t\t\tusageType=\"predicted\"/>", "\t\t<MiningField"}) +
         "\n\t\t\tname=\"" + timeField + "\"" +
         Lines({"\t\t\tusageType=\"order\"/>", "\t</MiningSchema>"});
}

// "ExponentialSmoothing" around the text of its children.
std::string Smoothing(const std::string& children) {
  return Lines({"\t<ExponentialSmoothing", "\t\tRMSE=\"1.25\"",
                "\t\ttransformation=\"none\">"}) +
         children + "\n\t</ExponentialSmoothing>";
}

// The Level of a model made by MakeTypeModel, with or without its value.
std::string Level(bool value = true) {
  return value ? Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"",
                        "\t\t\tsmoothedValue=\"10\"/>"})
               : Lines({"\t\t<Level", "\t\t\talpha=\"0.5\"/>"});
}

// An additive (or other `kind`) trend with gamma 0.25, open for more
// attributes.
std::string TrendStart(bool value, const std::string& kind = "additive") {
  return Lines({"\t\t<Trend_ExpoSmooth", "\t\t\tgamma=\"0.25\""}) +
         (value ? "\n\t\t\tsmoothedValue=\"2\"" : "") + "\n\t\t\ttrend=\"" +
         kind + "\"";
}

// A real "Array" of `n` values at `tabs` tabs.
std::string Array(int tabs, int n, const std::string& values) {
  const std::string t(static_cast<size_t>(tabs), '\t');
  return "\n" + t + "<Array\n" + t + "\tn=\"" + std::to_string(n) + "\"\n" + t +
         "\ttype=\"real\">" + values + "</Array>";
}

// A seasonality of period `n`; without `values`, no phase and no array.
std::string Season(const std::string& delta, int n, const std::string& type,
                   const std::string& values = "") {
  const std::string start = "\n\t\t<Seasonality_ExpoSmooth\n\t\t\tdelta=\"" +
                            delta + "\"\n\t\t\tperiod=\"" + std::to_string(n) +
                            "\"\n\t\t\tunit=\"month\"";
  if (values.empty()) return start + "\n\t\t\ttype=\"" + type + "\"/>";
  return start + "\n\t\t\tphase=\"1\"\n\t\t\ttype=\"" + type + "\">" +
         Array(3, n, values) + "\n\t\t</Seasonality_ExpoSmooth>";
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

TEST(ESModelTest, SimpleWithoutAModelNameOrDependentVariable) {
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESSimple), TSXDictionaryRefs()),
      Head("Month", "", "") + Smoothing(Level()) + Tail(false));
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
          Smoothing(Level() + TrendStart(true) + "/>" +
                    Season("0.125", 4, "additive", "1 2 3 4")) +
          Tail(true, Array(2, 4, "0.5 1 1.5 2")));
}

TEST(ESModelTest, TimeSeriesNeedsTheFlagAndAHistory) {
  ModelOptions options;
  options.history = {3, 4};
  const std::string without = Head() + Smoothing(Level()) + Tail(false);
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESSimple, options),
                      TSXDictionaryRefs("M", "", "y"), false),
            without);
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESSimple)), without);
  EXPECT_NE(ModelText(MakeTypeModel(ESModelSpec::ESSimple, options)), without);
}

TEST(ESModelTest, BrownTrendArrayFollowsAlpha) {
  // Level 10, trend 2, alpha 0.5: 2 / 0.5 + 10 - 2 = 12, then the trend.
  const std::string trend =
      Lines({"\t\t<Trend_ExpoSmooth", "\t\t\tsmoothedValue=\"2\"",
             "\t\t\ttrend=\"polynomial_exponential\""});
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESBrown)),
            Head() +
                Smoothing(Level() + trend + ">" + Array(3, 2, "12 2") +
                          "\n\t\t</Trend_ExpoSmooth>") +
                Tail(true));
  // An alpha of 1e-7 or below gives no array; just above it, 2 / 2e-7 + 8.
  for (const double alpha : {1e-8, 1e-7, 2e-7}) {
    const std::string text = ModelText(MakeESModel(
        ESModelSpec(ESModelSpec::ESBrown), {alpha}, {}, WIESSmState(10, 2)));
    const std::string end =
        alpha > 1e-7 ? ">" + Array(3, 2, "10000008 2") : "/>";
    EXPECT_NE(text.find(trend + end), std::string::npos) << alpha << text;
  }
}

TEST(ESModelTest, DampedTrendWritesPhiAndMissingPhiAsTheMissingValue) {
  const std::string trend = TrendStart(true, "damped_additive");
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESDampedTrend)),
            Head() + Smoothing(Level() + trend + "\n\t\t\tphi=\"0.125\"/>") +
                Tail(true));
  // Without a position for the damping parameter, phi is missing.
  ESModelSpec spec(ESModelSpec::ESDampedTrend);
  spec.SetESParameterIndex(ESModelSpec::DampingTrend, -1);
  const std::string text =
      ModelText(MakeESModel(spec, {0.5, 0.25, 0.125}, {}, WIESSmState(10, 2)));
  EXPECT_NE(text.find(trend + "\n\t\t\tphi=\"" + kMissingText + "\"/>"),
            std::string::npos)
      << text;
}

TEST(ESModelTest, MissingFinalStateDropsWhatDependsOnIt) {
  ModelOptions level, seasonal, trend;
  level.missingLevel = true;
  seasonal.missingSeasonal = true;
  trend.missingTrend = true;
  // No level: no smoothed values, phase or arrays.
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESAdditiveWinters, level)),
            Head() +
                Smoothing(Level(false) + TrendStart(false) + "/>" +
                          Season("0.125", 4, "additive")) +
                Tail(true));
  // A missing seasonal value drops the phase, the array and initSeason only.
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESMultiplicativeWinters, seasonal)),
      Head() +
          Smoothing(Level() + TrendStart(true) + "/>" +
                    Season("0.125", 4, "multiplicative")) +
          Tail(true));
  // No trend: no trend value, and in a seasonal model no season state.
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESHolt, trend)),
      Head() + Smoothing(Level() + TrendStart(false) + "/>") + Tail(true));
  EXPECT_EQ(ModelText(MakeTypeModel(ESModelSpec::ESAdditiveWinters, trend)),
            Head() +
                Smoothing(Level() + TrendStart(false) + "/>" +
                          Season("0.125", 4, "additive")) +
                Tail(true));
}

TEST(ESModelTest, SimpleSeasonalHasNoTrendAndPeriodIsTheCycleLength) {
  // The final trend is 2, but the type has none; a cycle of 7 (a daily
  // series) still reads "month".
  ModelOptions options;
  options.seasonLength = 7;
  EXPECT_EQ(
      ModelText(MakeTypeModel(ESModelSpec::ESSimpleSeasonal, options)),
      Head() +
          Smoothing(Level() + Season("0.25", 7, "additive", "1 2 3 4 5 6 7")) +
          Tail(false, Array(2, 7, "0.5 1 1.5 2 2.5 3 3.5")));
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
  for (const std::string& part :
       {"\n\t<ExponentialSmoothing\n\t\tRMSE=\"" + kMissingText +
            "\"\n\t\ttransformation=\"squareroot\">",
        "type=\"real\">" + infText + " 2</Array>",
        "type=\"real\">1 -" + infText + "</Array>",
        ValueExtension("errVariance", kMissingText)}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << text;
  }
}

TEST(ESModelTest, MiningSchemaNamesTheTimeFieldSetWhenTheModelIsAdded) {
  TSXPMMLDocument document;
  for (const char* field : {"Day", "Hour"}) {
    document.SetDateField(field, "date");
    document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                      TSXDictionaryRefs("M", "", "y"), {});
  }
  std::string models = pmml_test::WriteText(document, false);
  models = models.substr(models.find("</DataDictionary>") + 17);
  std::string expected = Head("Day") + Smoothing(Level()) + Tail(false) +
                         Head("Hour") + Smoothing(Level()) + Tail(false);
  for (size_t at = 0; (at = expected.find('\n', at)) != std::string::npos;) {
    expected.insert(++at, 1, '\t');  // one level down, under the root
  }
  EXPECT_EQ(models, expected + "\n</PMML>");
}

}  // namespace
