// The description reader and the document writer: bad descriptions are
// refused where and why they are wrong, and a description gives the same
// document as the models it describes built in code.
#include "tools/tsxml/description.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <valarray>
#include <vector>

#include "tests/tools/bad_descriptions.h"
#include "tools/tsxml/write.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

using tsxml_tool::Description;
using tsxml_tool::DescriptionError;
using tsxml_tool::Format;
using tsxml_tool::ReadDescription;
using tsxml_tool::WriteOptions;

TEST(BadDescriptions, EachIsRefusedWhereAndWhyTheTableSays) {
  for (const tsxml_tool_test::BadDescription& bad :
       tsxml_tool_test::kBadDescriptions) {
    SCOPED_TRACE(bad.name);
    try {
      ReadDescription(bad.input);
      ADD_FAILURE() << "accepted";
    } catch (const DescriptionError& error) {
      EXPECT_EQ(error.Pointer(), bad.pointer);
      EXPECT_EQ(error.Line(), bad.line);
      EXPECT_EQ(error.Column(), bad.column);
      EXPECT_EQ(error.Message(), bad.message);
    }
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
  const Description description = ReadDescription(json);
  const std::valarray<double>& history =
      description.models[0].model.GetImp()->GetHistoryData();
  EXPECT_EQ(history.size(), length);
  EXPECT_EQ(history[length - 1], 1.0);
}

// ---------------------------------------------------------------------------
// Descriptions and models built in code give the same documents.

std::string Document(TSXMLTree& tree) {
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

std::string DocumentOf(const std::string& json, const WriteOptions& options) {
  std::ostringstream out;
  tsxml_tool::WriteDocument(ReadDescription(json), options, out);
  return out.str();
}

WriteOptions Native() {
  WriteOptions options;
  options.format = Format::kNative;
  return options;
}

// Numbers as the description writes them, special values included.
std::string Json(double value) {
  if (MV::IsMissing(value)) return "null";
  if (std::isnan(value)) return "\"NaN\"";
  if (std::isinf(value)) return value > 0 ? "\"INF\"" : "\"-INF\"";
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

template <typename Values>
std::string Json(const Values& values) {
  std::string text = "[";
  for (std::size_t i = 0; i < values.size(); ++i) {
    text += (i ? ", " : "") + Json(static_cast<double>(values[i]));
  }
  return text + "]";
}

std::string Json(const std::vector<unsigned>& lags) {
  std::string text = "[";
  for (std::size_t i = 0; i < lags.size(); ++i) {
    text += (i ? ", " : "") + std::to_string(lags[i]);
  }
  return text + "]";
}

// Draws the values of generated models.
class Draw {
 public:
  explicit Draw(unsigned seed) : random_(seed) {}

  unsigned Below(unsigned n) {
    return std::uniform_int_distribution<unsigned>(0, n - 1)(random_);
  }
  bool Coin() { return Below(2) == 1; }
  // Mostly ordinary numbers, sometimes a missing or non-finite one.
  double Number() {
    switch (Below(20)) {
      case 0:
        return MV::gMissingValue;
      case 1:
        return std::numeric_limits<double>::quiet_NaN();
      case 2:
        return std::numeric_limits<double>::infinity();
      case 3:
        return -std::numeric_limits<double>::infinity();
      default:
        return std::uniform_real_distribution<double>(-1000, 1000)(random_);
    }
  }
  std::valarray<double> Numbers(unsigned count) {
    std::valarray<double> values(count);
    for (double& value : values) value = Number();
    return values;
  }
  // Up to four strictly ascending lags from 1 to 14.
  std::vector<unsigned> Lags() {
    std::vector<unsigned> lags;
    for (unsigned lag = 1; lag < 15 && lags.size() < 4; ++lag) {
      if (Below(5) == 0) lags.push_back(lag);
    }
    return lags;
  }

 private:
  std::mt19937 random_;
};

const char* const kTransformations[] = {"none", "log", "squareRoot"};

// `text` with each $0 to $9 replaced by the value of that position.
std::string Fill(std::string_view text, std::vector<std::string> values) {
  std::string filled;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '$' && i + 1 < text.size() &&
        std::isdigit(static_cast<unsigned char>(text[i + 1]))) {
      filled += values.at(static_cast<std::size_t>(text[++i] - '0'));
    } else {
      filled += text[i];
    }
  }
  return filled;
}

// Joins JSON texts into an array.
std::string Array(const std::vector<std::string>& items) {
  std::string text = "[";
  for (std::size_t i = 0; i < items.size(); ++i) {
    text += (i ? ", " : "") + items[i];
  }
  return text + "]";
}

// One generated ARIMA model, as a description and in code.
struct GeneratedArima {
  std::string json;
  TSFModel model;
  std::vector<std::string> predictors;
};

GeneratedArima GenerateArima(Draw& draw) {
  AMModelSpec spec;
  const unsigned season = 1 + draw.Below(12), transformation = draw.Below(3);
  const bool constant = draw.Coin();
  const unsigned d = draw.Below(3), sd = draw.Below(2);
  const std::vector<unsigned> ar = draw.Lags(), sar = draw.Lags();
  const std::vector<unsigned> ma = draw.Lags(), sma = draw.Lags();
  spec.SetSeasonLength(season);
  spec.SetYTransformSpec(TSTransformSpec(transformation));
  spec.SetMeanYPresent(constant);
  spec.SetYDiff(d, sd);
  spec.SetARStruct(AMPowers(ar), AMPowers(sar));
  spec.SetMAStruct(AMPowers(ma), AMPowers(sma));
  const std::string structure = Fill(
      R"("seasonLength": $0, "transformation": "$1", "constant": $2,
      "differencing": $3, "seasonalDifferencing": $4, "ar": $5,
      "seasonalAr": $6, "ma": $7, "seasonalMa": $8)",
      {std::to_string(season), kTransformations[transformation],
       constant ? "true" : "false", std::to_string(d), std::to_string(sd),
       Json(ar), Json(sar), Json(ma), Json(sma)});

  GeneratedArima generated;
  std::vector<std::string> functions, names;
  for (unsigned i = 0, n = draw.Below(3); i < n; ++i) {
    AMPredictorSpec x;
    const unsigned xTransformation = draw.Below(3);
    x.transform = TSTransformSpec(xTransformation);
    x.nonSeasonalDiff = draw.Below(2);
    x.seasonalDiff = draw.Below(2);
    x.delay = draw.Below(4);
    const std::vector<unsigned> lags[4] = {draw.Lags(), draw.Lags(),
                                           draw.Lags(), draw.Lags()};
    x.numeratorNonSeasonal = AMPowers(lags[0]);
    x.numeratorSeasonal = AMPowers(lags[1]);
    x.denominatorNonSeasonal = AMPowers(lags[2]);
    x.denominatorSeasonal = AMPowers(lags[3]);
    spec.AddPredictor(x);
    functions.push_back(Fill(
        R"({"transformation": "$0", "differencing": $1,
        "seasonalDifferencing": $2, "delay": $3, "numerator": $4,
        "seasonalNumerator": $5, "denominator": $6,
        "seasonalDenominator": $7})",
        {kTransformations[xTransformation], std::to_string(x.nonSeasonalDiff),
         std::to_string(x.seasonalDiff), std::to_string(x.delay), Json(lags[0]),
         Json(lags[1]), Json(lags[2]), Json(lags[3])}));
    generated.predictors.push_back("x" + std::to_string(i));
    names.push_back("\"x" + std::to_string(i) + "\"");
  }

  static const char* const kOutliers[] = {
      "additive",   "levelShift",   "transient",     "seasonalAdditive",
      "localTrend", "innovational", "varianceChange"};
  TSOutlierSpecList outliers;
  std::vector<std::string> outlierJson;
  for (unsigned i = 0, n = draw.Below(4); i < n; ++i) {
    const unsigned type = 1 + draw.Below(7), start = draw.Below(100);
    outliers.Add(TSOutlierSpec(type, start));
    outlierJson.push_back(Fill(R"({"type": "$0", "start": $1})",
                               {kOutliers[type - 1], std::to_string(start)}));
  }
  spec.SetOutliers(outliers);
  const unsigned count = spec.GetParameterCount(true);
  const std::valarray<double> estimates = draw.Numbers(count);
  const std::valarray<double> errors = draw.Numbers(draw.Below(count + 1));

  // The state, and the fields of its method.
  std::unique_ptr<ARMAForecastState> state;
  std::string methodJson;
  const unsigned method = draw.Below(3);
  if (method == 0) {
    auto kalman = std::make_unique<ARMAMLForecastState>(spec);
    const unsigned n = draw.Below(4);
    const std::valarray<double> omega = draw.Numbers(n * (n + 1) / 2);
    const std::valarray<double> vector = draw.Numbers(n);
    kalman->SetFinalOmega(DSymMat(n, omega));
    kalman->SetFinalStateV(vector);
    methodJson =
        Fill(R"("method": "kalmanFilter", "omega": $0, "stateVector": $1)",
             {Json(omega), Json(vector)});
    state = std::move(kalman);
  } else {
    ARMANoiseHistory* noise = nullptr;
    if (method == 1) {
      auto cls = std::make_unique<ARMACLSForecastState>(spec);
      noise = cls.get();
      state = std::move(cls);
      methodJson = R"("method": "conditionalLeastSquares")";
    } else {
      auto theta = std::make_unique<ARMAMLSpForecastState>(spec);
      std::vector<std::vector<double>> thetas(draw.Below(3));
      std::vector<std::string> thetaJson;
      for (std::vector<double>& row : thetas) {
        const std::valarray<double> values = draw.Numbers(draw.Below(4));
        row.assign(std::begin(values), std::end(values));
        thetaJson.push_back(Json(values));
      }
      const std::valarray<double> nu = draw.Numbers(draw.Below(3));
      const unsigned iterations = draw.Below(50);
      theta->SetFinalThetas(thetas);
      theta->SetFinalNu(std::vector<double>(std::begin(nu), std::end(nu)));
      theta->SetFinalIterCount(iterations);
      methodJson =
          Fill(R"("method": "thetaRecursion", "thetas": $0,
          "nu": $1, "iterations": $2)",
               {Array(thetaJson), Json(nu), std::to_string(iterations)});
      noise = theta.get();
      state = std::move(theta);
    }
    const std::valarray<double> actual = draw.Numbers(draw.Below(4));
    const std::valarray<double> predicted = draw.Numbers(3);
    noise->SetActualN(actual);
    noise->SetPredN(predicted);
    methodJson += Fill(R"(, "finalNoise": $0, "predictedNoise": $1)",
                       {Json(actual), Json(predicted)});
  }
  const std::valarray<double> actual = draw.Numbers(draw.Below(5));
  const std::valarray<double> predicted = draw.Numbers(draw.Below(5));
  state->SetActualZ(actual);
  state->SetPredZ(predicted);
  std::vector<std::string> histories;
  for (unsigned i = 0; i < generated.predictors.size(); ++i) {
    histories.push_back("null");
    if (draw.Coin()) {
      const std::valarray<double> x = draw.Numbers(3), tf = draw.Numbers(3);
      state->SetXHistory(i, x, tf);
      histories.back() = Fill(R"({"predictor": $0, "transferFunction": $1})",
                              {Json(x), Json(tf)});
    }
  }
  state->SetParameters(estimates);
  state->SetParameterStdErrors(errors);
  const unsigned begin = draw.Below(10), length = draw.Below(200),
                 horizon = draw.Below(12);
  state->SetStateSpan(TSSpan(begin, length, horizon));
  const double variance = draw.Number();

  EstimationInfo info;
  info.SetSpan(TSSpan(0, 120));
  info.SetDegreesOfFreedom(120 - count);
  info.SetErrorVariance(variance);
  info.SetGOFStat(BFSharedConst::AIC, 321.5);
  info.SetGOFStat(BFSharedConst::LOGLK, -150.25);
  generated.json = Fill(
      R"({"models": [{"name": "m", "dependentVariable": "y", "predictors": $0,
      "estimation": {"span": {"length": 120}, "degreesOfFreedom": $1,
        "errorVariance": $2, "fit": {"aic": 321.5, "logLikelihood": -150.25}},
      "arima": {$3, "transferFunctions": $4, "outliers": $5,
        "estimates": $6, "standardErrors": $7, "stateSpan": $8,
        "state": {$9, )",
      {Array(names), std::to_string(120 - count), Json(variance), structure,
       Array(functions), Array(outlierJson), Json(estimates), Json(errors),
       Fill(R"({"begin": $0, "length": $1, "horizon": $2})",
            {std::to_string(begin), std::to_string(length),
             std::to_string(horizon)}),
       methodJson});
  generated.json += Fill(
      R"("finalValues": $0, "predictedValues": $1, "predictorHistory": $2}}}]})",
      {Json(actual), Json(predicted), Array(histories)});
  generated.model = TSFModel(new TSFModelImp(std::move(state), info));
  return generated;
}

TEST(Faithful, GeneratedArimaModelsGiveTheDocumentsOfTheirModel) {
  Draw draw(20240611);
  for (int i = 0; i < 300; ++i) {
    const GeneratedArima generated = GenerateArima(draw);
    SCOPED_TRACE(generated.json);
    TSXMLTree tree;
    ASSERT_TRUE(tree.AddModelTree(
        generated.model,
        TSXDictionaryRefs("m", "", "y", generated.predictors)));
    EXPECT_EQ(DocumentOf(generated.json, Native()), Document(tree));
    // PMML, in both forms.
    for (const bool consistent : {false, true}) {
      TSXMLTree pmml;
      pmml.SetPMMLOutput(true);
      pmml.SetPMMLConsistent(consistent);
      ASSERT_TRUE(pmml.AddModelTree(
          generated.model,
          TSXDictionaryRefs("m", "", "y", generated.predictors)));
      WriteOptions options;
      options.pmmlConsistent = consistent;
      EXPECT_EQ(DocumentOf(generated.json, options), Document(pmml));
    }
#if TSXML_TOOL_HAVE_STATXML
    // The statistics document, on a residual series of its own.
    const std::valarray<double> residuals = draw.Numbers(draw.Below(40));
    const int lags = static_cast<int>(draw.Below(13));
    TSXMLTree statXML;
    statXML.SetStatXMLOutput(&residuals, lags, 0.9);
    ASSERT_TRUE(statXML.AddModelTree(
        generated.model,
        TSXDictionaryRefs("m", "", "y", generated.predictors)));
    std::string json = generated.json;
    json.insert(1, Fill(R"("statXML": {"residuals": $0, "lagCount": $1,
        "confidenceLevel": 0.9}, )",
                        {Json(residuals), std::to_string(lags)}));
    WriteOptions options;
    options.format = Format::kStatXML;
    EXPECT_EQ(DocumentOf(json, options), Document(statXML));
#endif
  }
}

const char* const kSmoothingTypes[] = {
    "additiveWinters",       "brown",          "dampedTrend", "holt",
    "multiplicativeWinters", "simpleSeasonal", "simple"};

std::string StateJson(const WIESSmState& state) {
  return Fill(R"({"level": $0, "trend": $1, "phase": $2, "seasonal": $3})",
              {Json(state.level), Json(state.trend),
               std::to_string(state.phase), Json(state.seasonal)});
}

TEST(Faithful, GeneratedSmoothingModelsGiveTheDocumentsOfTheirModel) {
  Draw draw(42);
  int refused = 0;
  for (int i = 0; i < 200; ++i) {
    const int type = static_cast<int>(draw.Below(7));
    const unsigned season = 1 + draw.Below(12), transformation = draw.Below(3);
    ESModelSpec spec(type, season);
    spec.SetYTransformSpec(TSTransformSpec(transformation));
    const unsigned count = spec.GetParameterCount(true);
    const std::valarray<double> estimates = draw.Numbers(count);
    const std::valarray<double> errors = draw.Numbers(draw.Below(count + 1));
    const WIESSmState final(draw.Number(), draw.Number(), draw.Below(season),
                            draw.Numbers(draw.Below(season + 1)));
    const WIESSmState initial(draw.Number(), draw.Number(), 0,
                              draw.Numbers(draw.Below(season + 1)));
    const std::valarray<double> history = draw.Numbers(draw.Below(30));
    const unsigned df = draw.Below(30);
    const double maxAPE = draw.Number();
    EstimationInfo info;
    info.SetSpan(TSSpan(0, history.size()));
    info.SetDegreesOfFreedom(df);
    info.SetGOFStat(BFSharedConst::MSE, 2.5);
    info.SetGOFStat(BFSharedConst::MAXAPE, maxAPE);
    info.SetLBStat(12.5, 18, 16, 0.75);
    const std::string json =
        Fill(
            R"({"application": {"name": "gen", "version": "2"}, "models": [{
        "name": "m", "descriptor": "d <&>", "dependentVariable": "y",
        "estimation": {"span": {"length": $0}, "degreesOfFreedom": $1,
          "fit": {"mse": 2.5, "maxAPE": $2}, "ljungBox": {"statistic": 12.5,
          "lags": 18, "degreesOfFreedom": 16, "significance": 0.75}},
        "history": $3, "exponentialSmoothing": {"type": "$4",
          "seasonLength": $5, "transformation": "$6", "estimates": $7,
          "standardErrors": $8, "finalState": $9, )",
            {std::to_string(history.size()), std::to_string(df), Json(maxAPE),
             Json(history), kSmoothingTypes[type], std::to_string(season),
             kTransformations[transformation], Json(estimates), Json(errors),
             StateJson(final)}) +
        R"("initialState": )" + StateJson(initial) + "}}]}";
    SCOPED_TRACE(json);
    const auto model = [&]() {
      return TSFModel(
          new TSFModelImp(std::make_unique<ESForecastState>(
                              spec, estimates, errors, final, initial),
                          info, history));
    };
    const TSXDictionaryRefs refs("m", "d <&>", "y");

    // The native document refuses some of them (a missing level, say):
    // then so does the description, with the model's pointer.
    TSXMLTree native;
    native.SetApplication("gen", "2", "");
    if (native.AddModelTree(model(), refs)) {
      EXPECT_EQ(DocumentOf(json, Native()), Document(native));
    } else {
      ++refused;
      try {
        DocumentOf(json, Native());
        ADD_FAILURE() << "written";
      } catch (const DescriptionError& error) {
        EXPECT_STREQ(error.what(), "/models/0: the library refused the model");
      }
    }

    for (const bool timeSeries : {true, false}) {
      for (const bool consistent : {false, true}) {
        TSXMLTree pmml;
        pmml.SetPMMLOutput(true);
        pmml.SetPMMLConsistent(consistent);
        pmml.SetESPMMLOutputTimeValue(timeSeries);
        pmml.SetApplication("gen", "2", "");
        pmml.AddModelTree(model(), refs);
        WriteOptions options;
        options.timeSeries = timeSeries;
        options.pmmlConsistent = consistent;
        EXPECT_EQ(DocumentOf(json, options), Document(pmml));
      }
    }
  }
  // Both roads are taken.
  EXPECT_GT(refused, 10);
  EXPECT_LT(refused, 190);
}

TEST(Faithful, CrostonModelGivesTheNativeDocumentOfItsModel) {
  const auto submodel = [](double level, double alpha) {
    return ESForecastState(ESModelSpec(ESModelSpec::ESSimple), {alpha}, {},
                           WIESSmState(level, 0.0));
  };
  EstimationInfo info;
  info.SetSpan(TSSpan(3, 50));
  info.SetDegreesOfFreedom(48);
  info.SetGOFStat(BFSharedConst::MAE, 1.5);
  TSXMLTree tree;
  ASSERT_TRUE(tree.AddModelTree(
      TSFCrModel(new TSFCrModelImp(submodel(5, 0.1), submodel(2, 0.2),
                                   submodel(1, 0.3), info,
                                   BFSharedConst::SquareRoot)),
      TSXDictionaryRefs("c", "", "demand")));
  const std::string sub = R"("type": "simple", "finalState": {"level": )";
  EXPECT_EQ(DocumentOf(R"({"models": [{"name": "c", "dependentVariable":
      "demand", "estimation": {"span": {"begin": 3, "length": 50},
      "degreesOfFreedom": 48, "fit": {"mae": 1.5}}, "croston": {
      "transformation": "squareRoot",
      "demand": {)" + sub + R"(5}, "estimates": [0.1]},
      "interval": {)" + sub +
                           R"(2}, "estimates": [0.2]},
      "absoluteError": {)" +
                           sub + R"(1}, "estimates": [0.3]}}}]})",
                       Native()),
            Document(tree));
}

// The date specifications of a description are those built in code, and
// the models refer to the identifiers the tree gave them.
TEST(Faithful, DateSpecificationsGiveTheDocumentOfTheirSpecifications) {
  TSXDateSpec days(TSXDateSpec::Week);
  ASSERT_TRUE(days.AddPeriod(TSXDateSpec::Day, 7, 0, 5).IsOK());
  TSXDateSpec::TSXIndexTuple first(days);
  ASSERT_TRUE(first.SetIndexes({1, 0}));
  ASSERT_TRUE(days.SetFirstCaseIndex(first).IsOK());
  ASSERT_TRUE(days.AddGap(3).IsOK());
  TSXDateSpec::TSXIndexTuple gap(days);
  ASSERT_TRUE(gap.SetIndexes({3, 4}));
  ASSERT_TRUE(days.AddGap(gap).IsOK());
  ASSERT_TRUE(days.SetFirstCaseDay(1, 1, 2024));
  days.SetForcedSeasonLength(5);
  days.SetFiscalYearStart(4);
  TSXDateSpec hours(TSXDateSpec::Day);
  ASSERT_TRUE(hours.AddPeriod(TSXDateSpec::Hour, 24, 8, 10).IsOK());
  ASSERT_TRUE(hours.SetLowestIncrement(2).IsOK());

  TSXMLTree tree;
  tree.AddDateSpec(hours, "unused");
  TSXDictionaryRefs refs("m", "", "y");
  refs.SetDateSpecID(tree.AddDateSpec(days, "working days"));
  ASSERT_TRUE(tree.AddModelTree(
      TSFModel(new TSFModelImp(std::make_unique<ESForecastState>(
                                   ESModelSpec(), std::valarray<double>{0.5},
                                   std::valarray<double>{}, WIESSmState(1, 0)),
                               EstimationInfo())),
      refs));

  EXPECT_EQ(DocumentOf(R"({"dateSpecs": [
      {"id": "hours", "descriptor": "unused", "periods": [{"type": "day"},
       {"type": "hour", "cycleLength": 24, "subCycleStart": 8,
        "subCycleLength": 10}], "lowestIncrement": 2},
      {"id": "days", "descriptor": "working days", "periods": [
       {"type": "week"}, {"type": "day", "cycleLength": 7,
        "subCycleLength": 5}], "firstCase": [1, 0], "gaps": [3, [3, 4]],
       "firstCaseDay": {"year": 2024, "month": 1, "day": 1},
       "forcedSeasonLength": 5, "fiscalYearStart": 4}],
      "models": [{"name": "m", "dependentVariable": "y", "dateSpec": "days",
       "exponentialSmoothing": {"type": "simple", "estimates": [0.5],
       "finalState": {"level": 1}}}]})",
                       Native()),
            Document(tree));
}

// ---------------------------------------------------------------------------
// What the writer refuses: an error with the model's pointer, nothing
// written.

struct Refusal {
  const char* name;
  const char* input;
  Format format;
  bool consistent;
  const char* what;
};

#define SIMPLE                                        \
  "\"exponentialSmoothing\": {\"type\": \"simple\", " \
  "\"estimates\": [0.3], \"finalState\": {\"level\": 1}}"
#define CROSTON_SUB                                               \
  "{\"type\": \"simple\", \"estimates\": [0.3], \"finalState\": " \
  "{\"level\": 1}}"

const Refusal kRefusals[] = {
    {"native model without a name",
     R"({"models": [{"name": "", "dependentVariable": "y", )" SIMPLE "}]}",
     Format::kNative, false,
     "/models/0/name: the native document needs a model name"},
    {"native model without a dependent variable",
     R"({"models": [{"name": "m", "dependentVariable": "y", )" SIMPLE
     R"(}, {"name": "m", "dependentVariable": "", )" SIMPLE "}]}",
     Format::kNative, false,
     "/models/1/dependentVariable: the native document needs a dependent "
     "variable"},
    {"predictor names without transfer functions",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "predictors": ["x"], )" SIMPLE "}]}",
     Format::kNative, false,
     "/models/0/predictors: expected one predictor name per transfer "
     "function (0), got 1"},
    {"empty predictor name",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "predictors": [""], "arima": {"transferFunctions": [{}],
       "estimates": [1], "state": {"method": "kalmanFilter"}}}]})",
     Format::kNative, false,
     "/models/0/predictors/0: a predictor name must not be empty"},
    {"Croston model with a predictor name",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "predictors": ["x"], "croston": {"demand": )" CROSTON_SUB
     R"(, "interval": )" CROSTON_SUB R"(, "absoluteError": )" CROSTON_SUB
     "}}]}",
     Format::kNative, false,
     "/models/0/predictors: expected one predictor name per transfer "
     "function (0), got 1"},
    {"native document without models", R"({"models": []})", Format::kNative,
     false, "/models: the native document needs at least one model"},
    {"Croston model in PMML",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "croston": {"demand": )" CROSTON_SUB R"(, "interval": )" CROSTON_SUB
     R"(, "absoluteError": )" CROSTON_SUB "}}]}",
     Format::kPMML, false,
     "/models/0: a Croston model has no PMML form; write it as a native "
     "document"},
    {"Croston model in consistent PMML",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "croston": {"demand": )" CROSTON_SUB R"(, "interval": )" CROSTON_SUB
     R"(, "absoluteError": )" CROSTON_SUB "}}]}",
     Format::kPMML, true,
     "/models/0: a Croston model has no PMML form; write it as a native "
     "document"},
#if TSXML_TOOL_HAVE_STATXML
    {"StatXML without its settings", R"({"models": [{"name": "m",
       "dependentVariable": "y", )" SIMPLE "}]}",
     Format::kStatXML, false,
     "missing field \"statXML\": the statxml format needs the residuals, "
     "the lag count and the confidence level"},
    {"StatXML of two models",
     R"({"statXML": {"residuals": null, "lagCount": 2, "confidenceLevel": 0.9},
       "models": [{"name": "m", "dependentVariable": "y", )" SIMPLE
     R"(}, {"name": "m", "dependentVariable": "y", )" SIMPLE "}]}",
     Format::kStatXML, false,
     "/models: a StatXML document holds one model, not 2"},
    {"Croston model in StatXML",
     R"({"statXML": {"residuals": null, "lagCount": 2, "confidenceLevel": 0.9},
       "models": [{"name": "m", "dependentVariable": "y",
       "croston": {"demand": )" CROSTON_SUB R"(, "interval": )" CROSTON_SUB
     R"(, "absoluteError": )" CROSTON_SUB "}}]}",
     Format::kStatXML, false,
     "/models/0: a Croston model has no StatXML form; write it as a native "
     "document"},
#else
    {"StatXML", R"({"models": []})", Format::kStatXML, false,
     "the statxml format is not available in this build"},
#endif
};

#undef SIMPLE
#undef CROSTON_SUB

TEST(Writer, RefusesWithThePointerOfTheModelAndWritesNothing) {
  for (const Refusal& refusal : kRefusals) {
    SCOPED_TRACE(refusal.name);
    const Description description = ReadDescription(refusal.input);
    WriteOptions options;
    options.format = refusal.format;
    options.pmmlConsistent = refusal.consistent;
    std::ostringstream out;
    try {
      tsxml_tool::WriteDocument(description, options, out);
      ADD_FAILURE() << "written";
    } catch (const DescriptionError& error) {
      EXPECT_STREQ(error.what(), refusal.what);
    }
    EXPECT_EQ(out.str(), "");
  }
}

TEST(Writer, PMMLWithoutModelsIsTheLibrarysEmptyDocument) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  EXPECT_EQ(DocumentOf(R"({"models": []})", WriteOptions()), Document(tree));
}

}  // namespace
