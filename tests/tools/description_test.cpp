// The description reader and the document writer: bad inputs are refused
// where and why tests/data/tools/bad_inputs.tsv says, and a description gives
// the same documents as the models it describes built in code.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <valarray>
#include <vector>

#include "tests/tools/tools_test.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

using tsxml_tool::Format;
using tsxml_tool_test::DocumentOf;
using tsxml_tool_test::Options;

std::string Document(TSXMLTree& tree) {
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

// The reader's error, or the writer's in the input's format; nothing written.
TEST(BadInputs, EachIsRefusedWhereAndWhyTheTableSays) {
  for (const tsxml_tool_test::BadInput& bad :
       tsxml_tool_test::ReadBadInputs()) {
    SCOPED_TRACE(bad.file + " " + bad.format);
    const Format format = bad.format == "native"    ? Format::kNative
                          : bad.format == "statxml" ? Format::kStatXML
                                                    : Format::kPMML;
    const bool available = tsxml_tool::FormatAvailable(format);
    std::ostringstream out;
    try {
      tsxml_tool::WriteDocument(
          tsxml_tool::ReadDescription(bad.bytes),
          Options(format, bad.format == "pmml-consistent"), out);
      ADD_FAILURE() << "written";
    } catch (const tsxml_tool::DescriptionError& error) {
      EXPECT_EQ(error.Pointer(), available ? bad.pointer : "");
      EXPECT_EQ(error.Line(), bad.line);
      EXPECT_EQ(error.Column(), bad.column);
      EXPECT_EQ(error.Message(),
                available
                    ? bad.message
                    : "the statxml format is not available in this build");
    }
    EXPECT_EQ(out.str(), "");
  }
}

// The parser counts an array's elements up to 0xFFFFFF only.
TEST(Reader, ReadsAHistoryLongerThanTheParserCounts) {
  const std::size_t length = 0xFFFFFF + 2;
  std::string json =
      R"({"models": [{"name": "m", "dependentVariable": "y", "history": [)";
  json.reserve(json.size() + 2 * length + 100);
  for (std::size_t i = 0; i < length; ++i) json += i ? ",1" : "1";
  json += R"(], "exponentialSmoothing": {"type": "simple", "estimates": [0.5],
      "finalState": {"level": 1}}}]})";
  const tsxml_tool::Description description = tsxml_tool::ReadDescription(json);
  const std::valarray<double>& history =
      description.models[0].model.GetImp()->GetHistoryData();
  EXPECT_EQ(history.size(), length);
  EXPECT_EQ(history[length - 1], 1.0);
}

TEST(Writer, PMMLWithoutModelsIsTheLibrarysEmptyDocument) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  EXPECT_EQ(DocumentOf(R"({"models": []})", Options(Format::kPMML)),
            Document(tree));
}

// ---------------------------------------------------------------------------
// Descriptions and models built in code give the same documents.

// Values as the description writes them, special numbers included.
std::string Json(double value) {
  if (MV::IsMissing(value)) return "null";
  if (std::isnan(value)) return "\"NaN\"";
  if (std::isinf(value)) return value > 0 ? "\"INF\"" : "\"-INF\"";
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}
std::string Json(unsigned value) { return std::to_string(value); }
std::string Json(bool value) { return value ? "true" : "false"; }
std::string Json(const std::string& text) { return "\"" + text + "\""; }
std::string Array(const std::vector<std::string>& items) {
  std::string text = "[";
  for (const std::string& item : items) {
    text += (text.size() > 1 ? ", " : "") + item;
  }
  return text + "]";
}
template <typename Values>
std::string Json(const Values& values) {
  std::vector<std::string> items;
  for (const auto& value : values) items.push_back(Json(value));
  return Array(items);
}

// Draws the values of generated models, and writes those it is given a key
// for into a JSON object of the description; each returns what it drew, for
// the model built in code.
class Draw {
 public:
  explicit Draw(std::mt19937& random) : random_(random) {}
  Draw Object() const { return Draw(random_); }  // another, nested object

  unsigned Below(unsigned n) {
    return std::uniform_int_distribution<unsigned>(0, n - 1)(random_);
  }
  // Mostly ordinary numbers, sometimes a missing or non-finite one.
  double Number() {
    const double inf = std::numeric_limits<double>::infinity();
    const double special[] = {MV::gMissingValue, std::nan(""), inf, -inf};
    const unsigned pick = Below(20);
    return pick < 4
               ? special[pick]
               : std::uniform_real_distribution<double>(-1000, 1000)(random_);
  }
  template <typename Values = std::valarray<double>>
  Values Numbers(unsigned count) {
    Values values(count);
    for (double& value : values) value = Number();
    return values;
  }

  template <typename T>
  T Put(const char* key, T value) {
    return Raw(key, Json(value)), value;
  }
  unsigned Below(const char* key, unsigned n) { return Put(key, Below(n)); }
  double Number(const char* key) { return Put(key, Number()); }
  std::valarray<double> Numbers(const char* key, unsigned count) {
    return Put(key, Numbers(count));
  }
  // Up to four strictly ascending lags from 1 to 14.
  AMPowers Lags(const char* key) {
    std::vector<unsigned> lags;
    for (unsigned lag = 1; lag < 15 && lags.size() < 4; ++lag) {
      if (Below(5) == 0) lags.push_back(lag);
    }
    return AMPowers(Put(key, lags));
  }
  // The index of one of `words`, written as the word.
  template <std::size_t N>
  unsigned Word(const char* key, const char* const (&words)[N]) {
    const unsigned index = Below(static_cast<unsigned>(N));
    return Raw(key, Json(std::string(words[index]))), index;
  }
  Draw& Raw(const char* key, const std::string& json) {
    text_ +=
        (text_.size() > 1 ? ", \"" : "\"") + std::string(key) + "\": " + json;
    return *this;
  }
  std::string Close() const { return text_ + "}"; }

 private:
  std::mt19937& random_;
  std::string text_ = "{";
};

const char* const kTransformations[] = {"none", "log", "squareRoot"};

// A description of models and the same models added to a tree in code.
struct Generated {
  std::string json;
  std::function<bool(TSXMLTree&)> add;
  bool nativeOnly = false;  // Croston models have no other form
};

Generated GenerateArima(const Draw& draw) {
  static const char* const kOutliers[] = {
      "additive",   "levelShift",   "transient",     "seasonalAdditive",
      "localTrend", "innovational", "varianceChange"};
  static const char* const kMethods[] = {
      "kalmanFilter", "conditionalLeastSquares", "thetaRecursion"};
  Draw arima = draw.Object(), state = draw.Object(), span = draw.Object();
  AMModelSpec spec;
  spec.SetSeasonLength(arima.Put("seasonLength", 1 + arima.Below(12)));
  spec.SetYTransformSpec(
      TSTransformSpec(arima.Word("transformation", kTransformations)));
  spec.SetMeanYPresent(arima.Put("constant", arima.Below(2) == 1));
  const unsigned d = arima.Below("differencing", 3);
  spec.SetYDiff(d, arima.Below("seasonalDifferencing", 2));
  const AMPowers ar = arima.Lags("ar"), ma = arima.Lags("ma");
  spec.SetARStruct(ar, arima.Lags("seasonalAr"));
  spec.SetMAStruct(ma, arima.Lags("seasonalMa"));
  std::vector<std::string> functions, predictors, outliers, histories;
  for (unsigned i = 0, n = arima.Below(3); i < n; ++i) {
    Draw f = draw.Object();
    AMPredictorSpec x;
    x.transform = TSTransformSpec(f.Word("transformation", kTransformations));
    x.nonSeasonalDiff = f.Below("differencing", 2);
    x.seasonalDiff = f.Below("seasonalDifferencing", 2);
    x.delay = f.Below("delay", 4);
    x.numeratorNonSeasonal = f.Lags("numerator");
    x.numeratorSeasonal = f.Lags("seasonalNumerator");
    x.denominatorNonSeasonal = f.Lags("denominator");
    x.denominatorSeasonal = f.Lags("seasonalDenominator");
    spec.AddPredictor(x);
    functions.push_back(f.Close());
    predictors.push_back("x" + std::to_string(i));
  }
  TSOutlierSpecList outlierList;
  for (unsigned i = 0, n = arima.Below(4); i < n; ++i) {
    Draw outlier = draw.Object();
    const unsigned type = 1 + outlier.Word("type", kOutliers);
    outlierList.Add(TSOutlierSpec(type, outlier.Below("start", 100)));
    outliers.push_back(outlier.Close());
  }
  spec.SetOutliers(outlierList);
  const unsigned count = spec.GetParameterCount(true);
  const std::valarray<double> estimates = arima.Numbers("estimates", count);
  const std::valarray<double> errors =
      arima.Numbers("standardErrors", arima.Below(count + 1));
  const unsigned begin = span.Below("begin", 10),
                 length = span.Below("length", 200);
  const TSSpan stateSpan(begin, length, span.Below("horizon", 12));

  // The state, and the fields of its method.
  std::unique_ptr<ARMAForecastState> forecast;
  ARMANoiseHistory* noise = nullptr;
  const unsigned method = state.Word("method", kMethods);
  if (method == 0) {
    auto kalman = std::make_unique<ARMAMLForecastState>(spec);
    const unsigned n = state.Below(4);
    kalman->SetFinalOmega(DSymMat(n, state.Numbers("omega", n * (n + 1) / 2)));
    kalman->SetFinalStateV(state.Numbers("stateVector", n));
    forecast = std::move(kalman);
  } else if (method == 1) {
    auto cls = std::make_unique<ARMACLSForecastState>(spec);
    noise = cls.get();
    forecast = std::move(cls);
  } else {
    auto theta = std::make_unique<ARMAMLSpForecastState>(spec);
    std::vector<std::vector<double>> thetas(state.Below(3));
    for (std::vector<double>& row : thetas) {
      row = state.Numbers<std::vector<double>>(state.Below(4));
    }
    theta->SetFinalThetas(state.Put("thetas", thetas));
    theta->SetFinalNu(
        state.Put("nu", state.Numbers<std::vector<double>>(state.Below(3))));
    theta->SetFinalIterCount(state.Below("iterations", 50));
    noise = theta.get();
    forecast = std::move(theta);
  }
  if (noise) {
    noise->SetActualN(state.Numbers("finalNoise", state.Below(4)));
    noise->SetPredN(state.Numbers("predictedNoise", 3));
  }
  forecast->SetActualZ(state.Numbers("finalValues", state.Below(5)));
  forecast->SetPredZ(state.Numbers("predictedValues", state.Below(5)));
  for (unsigned i = 0; i < predictors.size(); ++i) {
    Draw history = draw.Object();
    histories.push_back("null");
    if (history.Below(2) == 1) {
      const std::valarray<double> x = history.Numbers("predictor", 3);
      forecast->SetXHistory(i, x, history.Numbers("transferFunction", 3));
      histories.back() = history.Close();
    }
  }
  forecast->SetParameters(estimates);
  forecast->SetParameterStdErrors(errors);
  forecast->SetStateSpan(stateSpan);
  state.Raw("predictorHistory", Array(histories));
  arima.Raw("transferFunctions", Array(functions))
      .Raw("outliers", Array(outliers))
      .Raw("stateSpan", span.Close())
      .Raw("state", state.Close());

  Draw estimation = draw.Object(), fit = draw.Object();
  EstimationInfo info;
  info.SetSpan(TSSpan(0, 120));
  info.SetDegreesOfFreedom(estimation.Put("degreesOfFreedom", 120 - count));
  info.SetErrorVariance(estimation.Number("errorVariance"));
  info.SetGOFStat(BFSharedConst::AIC, fit.Put("aic", 321.5));
  info.SetGOFStat(BFSharedConst::LOGLK, fit.Put("logLikelihood", -150.25));
  estimation.Raw("span", R"({"length": 120})").Raw("fit", fit.Close());
  const TSFModel model(new TSFModelImp(std::move(forecast), info));
  return {
      R"({"models": [{"name": "m", "dependentVariable": "y", "predictors": )" +
          Json(predictors) + R"(, "estimation": )" + estimation.Close() +
          R"(, "arima": )" + arima.Close() + "}]}",
      [model, predictors](TSXMLTree& tree) {
        return tree.AddModelTree(model,
                                 TSXDictionaryRefs("m", "", "y", predictors));
      }};
}

// A smoothing state of `season` seasonal values at most, written under `key`.
WIESSmState State(Draw& parent, const char* key, unsigned season,
                  unsigned phase) {
  Draw state = parent.Object();
  const double level = state.Number("level"), trend = state.Number("trend");
  const std::valarray<double> seasonal =
      state.Numbers("seasonal", state.Below(season + 1));
  parent.Raw(key, state.Raw("phase", Json(phase)).Close());
  return WIESSmState(level, trend, phase, seasonal);
}

Generated GenerateSmoothing(const Draw& draw) {
  static const char* const kTypes[] = {
      "additiveWinters",       "brown",          "dampedTrend", "holt",
      "multiplicativeWinters", "simpleSeasonal", "simple"};
  Draw smoothing = draw.Object(), estimation = draw.Object(),
       fit = draw.Object();
  const int type = static_cast<int>(smoothing.Word("type", kTypes));
  const unsigned season =
      smoothing.Put("seasonLength", 1 + smoothing.Below(12));
  ESModelSpec spec(type, season);
  spec.SetYTransformSpec(
      TSTransformSpec(smoothing.Word("transformation", kTransformations)));
  const unsigned count = spec.GetParameterCount(true);
  const std::valarray<double> estimates = smoothing.Numbers("estimates", count);
  const std::valarray<double> errors =
      smoothing.Numbers("standardErrors", smoothing.Below(count + 1));
  const WIESSmState final =
      State(smoothing, "finalState", season, smoothing.Below(season));
  const WIESSmState initial = State(smoothing, "initialState", season, 0);
  const std::valarray<double> history = smoothing.Numbers(smoothing.Below(30));
  EstimationInfo info;
  info.SetSpan(TSSpan(0, history.size()));
  info.SetDegreesOfFreedom(estimation.Below("degreesOfFreedom", 30));
  info.SetGOFStat(BFSharedConst::MSE, fit.Put("mse", 2.5));
  info.SetGOFStat(BFSharedConst::MAXAPE, fit.Number("maxAPE"));
  info.SetLBStat(12.5, 18, 16, 0.75);
  estimation.Raw("span", "{\"length\": " + std::to_string(history.size()) + "}")
      .Raw("fit", fit.Close())
      .Raw("ljungBox", R"({"statistic": 12.5, "lags": 18,
          "degreesOfFreedom": 16, "significance": 0.75})");
  return {R"({"application": {"name": "gen", "version": "2"}, "models": [{
          "name": "m", "descriptor": "d <&>", "dependentVariable": "y",
          "estimation": )" +
              estimation.Close() + R"(, "history": )" + Json(history) +
              R"(, "exponentialSmoothing": )" + smoothing.Close() + "}]}",
          [=](TSXMLTree& tree) {
            tree.SetApplication("gen", "2", "");
            return tree.AddModelTree(
                TSFModel(new TSFModelImp(
                    std::make_unique<ESForecastState>(spec, estimates, errors,
                                                      final, initial),
                    info, history)),
                TSXDictionaryRefs("m", "d <&>", "y"));
          }};
}

Generated Croston() {
  return {testing_support::ReadTestData("tools/croston_model.json"),
          [](TSXMLTree& tree) {
            const auto sub = [](double level, double alpha) {
              return ESForecastState(ESModelSpec(ESModelSpec::ESSimple),
                                     {alpha}, {}, WIESSmState(level, 0.0));
            };
            EstimationInfo info;
            info.SetSpan(TSSpan(3, 50));
            info.SetDegreesOfFreedom(48);
            info.SetGOFStat(BFSharedConst::MAE, 1.5);
            return tree.AddModelTree(TSFCrModel(new TSFCrModelImp(
                                         sub(5, 0.1), sub(2, 0.2), sub(1, 0.3),
                                         info, BFSharedConst::SquareRoot)),
                                     TSXDictionaryRefs("c", "", "demand"));
          },
          true};
}

// The models refer to the identifiers the tree gave the date specifications.
Generated DateSpecs() {
  return {testing_support::ReadTestData("tools/date_specs.json"),
          [](TSXMLTree& tree) {
            TSXDateSpec days(TSXDateSpec::Week);
            EXPECT_TRUE(days.AddPeriod(TSXDateSpec::Day, 7, 0, 5).IsOK());
            TSXDateSpec::TSXIndexTuple first(days), gap(days);
            EXPECT_TRUE(first.SetIndexes({1, 0}) && gap.SetIndexes({3, 4}));
            EXPECT_TRUE(days.SetFirstCaseIndex(first).IsOK() &&
                        days.AddGap(3).IsOK() && days.AddGap(gap).IsOK());
            EXPECT_TRUE(days.SetFirstCaseDay(1, 1, 2024));
            days.SetForcedSeasonLength(5);
            days.SetFiscalYearStart(4);
            TSXDateSpec hours(TSXDateSpec::Day);
            EXPECT_TRUE(hours.AddPeriod(TSXDateSpec::Hour, 24, 8, 10).IsOK() &&
                        hours.SetLowestIncrement(2).IsOK());
            tree.AddDateSpec(hours, "unused");
            TSXDictionaryRefs refs("m", "", "y");
            refs.SetDateSpecID(tree.AddDateSpec(days, "working days"));
            return tree.AddModelTree(
                TSFModel(new TSFModelImp(
                    std::make_unique<ESForecastState>(
                        ESModelSpec(), std::valarray<double>{0.5},
                        std::valarray<double>{}, WIESSmState(1, 0)),
                    EstimationInfo())),
                refs);
          }};
}

// The documents of `generated` in every format are those of its tree: native,
// PMML in its four forms and StatXML on a residual series of its own. What
// the library refuses, the description refuses with the model's pointer.
// `roads` counts the trees that refused and took the models.
void ExpectTheDocumentsOfTheModels(const Generated& generated, const Draw& draw,
                                   int (&roads)[2]) {
  SCOPED_TRACE(generated.json);
  const auto expect = [&](const std::string& json,
                          const tsxml_tool::WriteOptions& options,
                          TSXMLTree& tree) {
    const bool added = generated.add(tree);
    ++roads[added];
    EXPECT_EQ(
        DocumentOf(json, options),
        added ? Document(tree) : "/models/0: the library refused the model")
        << tsxml_tool::FormatName(options.format);
  };
  TSXMLTree native;
  expect(generated.json, Options(Format::kNative), native);
  if (generated.nativeOnly) return;
  for (const bool consistent : {false, true}) {
    for (const bool timeSeries : {true, false}) {
      TSXMLTree pmml;
      pmml.SetPMMLOutput(true);
      pmml.SetPMMLConsistent(consistent);
      pmml.SetESPMMLOutputTimeValue(timeSeries);
      expect(generated.json, Options(Format::kPMML, consistent, timeSeries),
             pmml);
    }
  }
#if TSXML_TOOL_HAVE_STATXML
  Draw settings = draw.Object();
  const std::valarray<double> residuals =
      settings.Numbers("residuals", settings.Below(40));
  const unsigned lags = settings.Below("lagCount", 13);
  TSXMLTree statXML;
  statXML.SetStatXMLOutput(
      &residuals, static_cast<int>(lags),
      settings.Put("confidenceLevel", (1 + settings.Below(99)) / 100.0));
  std::string json = generated.json;
  expect(json.insert(1, "\"statXML\": " + settings.Close() + ", "),
         Options(Format::kStatXML), statXML);
#else
  static_cast<void>(draw);
#endif
}

TEST(Faithful, EveryKindOfModelGivesTheDocumentsOfItsModelBuiltInCode) {
  std::mt19937 random(20240611);
  const Draw draw(random);
  int roads[2] = {0, 0};
  for (int i = 0; i < 250; ++i) {
    ExpectTheDocumentsOfTheModels(GenerateArima(draw), draw, roads);
    ExpectTheDocumentsOfTheModels(GenerateSmoothing(draw), draw, roads);
  }
  ExpectTheDocumentsOfTheModels(Croston(), draw, roads);
  ExpectTheDocumentsOfTheModels(DateSpecs(), draw, roads);
  // Both roads are taken: the library refuses some smoothing models (a
  // missing level, say).
  EXPECT_GT(roads[0], 50);
  EXPECT_GT(roads[1], 1000);
}

}  // namespace
