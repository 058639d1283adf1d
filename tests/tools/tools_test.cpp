// The tsxml tool: the description reader and the document writer, linked
// in, and the program, run as a command. Bad inputs are files under
// tests/data/tools/bad/ with their errors in tests/data/tools/bad_inputs.tsv;
// a description gives the same documents as its models built in code.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <valarray>
#include <vector>

#include "tests/support/arima_fixtures.h"
#include "tests/support/model_fixtures.h"
#include "tests/support/test_data.h"
#include "tools/tsxml/description.h"
#include "tools/tsxml/write.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;
using tsxml_tool::Format;

const std::string kTool = TSXML_TOOL;
const std::string kSource = TSXML_SOURCE_DIR;
const std::string kModels = kSource + "/examples/models/";

tsxml_tool::WriteOptions Options(Format format, bool consistent = false,
                                 bool timeSeries = true) {
  tsxml_tool::WriteOptions options;
  options.format = format;
  options.pmmlConsistent = consistent;
  options.timeSeries = timeSeries;
  return options;
}

// The document of `json` as the writer writes it, or the error it refuses
// the description with.
std::string DocumentOf(const std::string& json,
                       const tsxml_tool::WriteOptions& options) {
  std::ostringstream out;
  try {
    tsxml_tool::WriteDocument(tsxml_tool::ReadDescription(json), options, out);
  } catch (const tsxml_tool::DescriptionError& error) {
    return error.what();
  }
  return out.str();
}

std::string Document(TSXMLTree& tree) {
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

std::string Quote(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) {
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return quoted + "'";
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)),
                     std::istreambuf_iterator<char>());
}

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

unsigned Mode(const std::string& path) {
  struct stat info;
  return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 0777 : 0;
}

struct Result {
  int status;
  std::string out, err;
};

// Each test works in a directory of its own, removed at the end.
class Cli : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = fs::temp_directory_path() / "tsxml_cli_XXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    dir_ = pattern;
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string Path(const std::string& name) const { return dir_ + "/" + name; }

  // Runs the shell command `command` with standard output and error caught.
  Result Shell(const std::string& command) const {
    const std::string out = Path(".out"), err = Path(".err");
    const int raw =
        std::system((command + " >" + Quote(out) + " 2>" + Quote(err)).c_str());
    Result result{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadFile(out),
                  ReadFile(err)};
    fs::remove(out);
    fs::remove(err);
    return result;
  }

  static std::string Command(const Arguments& arguments) {
    std::string command = Quote(kTool);
    for (const std::string& argument : arguments)
      command += " " + Quote(argument);
    return command;
  }

  Result Tool(const Arguments& arguments,
              const std::string& input = "/dev/null") const {
    return Shell(Command(arguments) + " <" + Quote(input));
  }

  // The files of the test's directory, sorted.
  std::vector<std::string> Files(const std::string& sub = "") const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir_ + "/" + sub)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  std::string dir_;
};

// ---------------------------------------------------------------------------
// Bad inputs

// A row of tests/data/tools/bad_inputs.tsv, with the bytes of its file.
struct BadInput {
  std::string file, format;  // native, pmml, pmml-consistent or statxml
  int status = 0;
  std::size_t line = 0, column = 0;  // 0 unless a syntax error
  std::string pointer, message, bytes;
};

std::vector<BadInput> ReadBadInputs() {
  std::istringstream table(
      testing_support::ReadTestData("tools/bad_inputs.tsv"));
  std::vector<BadInput> inputs;
  for (std::string row; std::getline(table, row);) {
    if (row.empty() || row[0] == '#') continue;
    std::istringstream in(row);
    BadInput bad;
    std::getline(std::getline(in, bad.file, '\t'), bad.format, '\t');
    in >> bad.status >> bad.line >> bad.column;
    std::getline(std::getline(in.ignore(1), bad.pointer, '\t'), bad.message);
    EXPECT_FALSE(in.fail()) << row;
    bad.bytes = testing_support::ReadTestData("tools/bad/" + bad.file);
    inputs.push_back(bad);
  }
  EXPECT_GE(inputs.size(), 45u);
  return inputs;
}

// What the tool says of `bad` read as `name`:
// "NAME[:LINE:COLUMN]: [POINTER: ]MESSAGE".
std::string Said(const BadInput& bad, const std::string& name) {
  std::string said = name;
  if (bad.line != 0) {
    said += ":" + std::to_string(bad.line) + ":" + std::to_string(bad.column);
  }
  return said + ": " + (bad.pointer.empty() ? "" : bad.pointer + ": ") +
         bad.message;
}

// The reader's error, or the writer's in the input's format, with nothing
// written; the tool exits with the status and says on one line where and
// why, naming the input (standard input as such).
TEST_F(Cli, BadInputsAreRefusedWhereAndWhyTheTableSays) {
  const std::string input = Path("bad.json");
  for (const BadInput& bad : ReadBadInputs()) {
    SCOPED_TRACE(bad.file + " " + bad.format);
    const Format format = bad.format == "native"    ? Format::kNative
                          : bad.format == "statxml" ? Format::kStatXML
                                                    : Format::kPMML;
    const bool available = tsxml_tool::FormatAvailable(format);
    const bool consistent = bad.format == "pmml-consistent";
    std::ostringstream out;
    try {
      tsxml_tool::WriteDocument(tsxml_tool::ReadDescription(bad.bytes),
                                Options(format, consistent), out);
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

    WriteFile(input, bad.bytes);
    Arguments arguments = {"write", "--format",
                           consistent ? "pmml" : bad.format, input};
    if (consistent) arguments.push_back("--pmml-consistent");
    for (const std::string& name : {input, std::string("-")}) {
      arguments[3] = name;
      const Result result = Tool(arguments, input);
      EXPECT_EQ(result.status, bad.status) << Command(arguments);
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(
          result.err,
          available
              ? "tsxml: " + Said(bad, name == "-" ? "<stdin>" : name) + "\n"
              : "tsxml: --format statxml: not available in this build\n");
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
std::string Json(const std::string& json) { return json; }
template <typename Values>
std::string Json(const Values& values) {
  std::string text;
  for (const auto& value : values)
    text += (text.empty() ? "" : ", ") + Json(value);
  return "[" + text + "]";
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
    return Raw(key, "\"" + std::string(words[index]) + "\""), index;
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
  std::vector<std::string> functions, predictors, names, outliers, histories;
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
    names.push_back("\"x" + std::to_string(i) + "\"");
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
  state.Raw("predictorHistory", Json(histories));
  arima.Raw("transferFunctions", Json(functions))
      .Raw("outliers", Json(outliers))
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
          Json(names) + R"(, "estimation": )" + estimation.Close() +
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
            return tree.AddModelTree(
                testing_support::MakeCrostonModel(BFSharedConst::SquareRoot),
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
            return tree.AddModelTree(testing_support::MakeSimpleModel(), refs);
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

// ---------------------------------------------------------------------------
// The program's documents, I/O failures and batch

// The options reach the documents of write and batch, each the writer's
// document and a line feed; PMML is the default. On a terminal, batch shows
// progress: done, total, rate and time left; none with --quiet.
TEST_F(Cli, OptionsReachTheDocumentsAndBatchShowsProgressOnATerminal) {
  const Arguments inputs = {kModels + "sales.json", kModels + "visitors.json",
                            kModels + "write_models_pmml.json"};
  Arguments arguments = {
      "batch",     "--format", "pmml", "--pmml-consistent", "--no-time-series",
      "--out-dir", Path("out")};
  arguments.insert(arguments.end(), inputs.begin(), inputs.end());
  const Result result = Tool(arguments);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
  for (const std::string& input : inputs) {
    const std::string json = ReadFile(input);
    const std::string document =
        DocumentOf(json, Options(Format::kPMML, true, false)) + "\n";
    EXPECT_EQ(ReadFile(Path("out/" + fs::path(input).stem().string() + ".xml")),
              document);
    EXPECT_EQ(
        Tool({"write", "--pmml-consistent", "--no-time-series", input}).out,
        document);
    EXPECT_EQ(Tool({"write", "-"}, input).out,
              DocumentOf(json, Options(Format::kPMML)) + "\n");
  }
  if (std::system("command -v script >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "no script(1) to make a terminal";
  }
  const auto onTerminal = [&](const std::string& extra) {
    return Shell("script -qec " + Quote(Command(arguments) + extra + " 2>&1") +
                 " /dev/null")
        .out;
  };
  const std::string shown = onTerminal("");
  EXPECT_NE(shown.find("3/3"), std::string::npos) << shown;
  EXPECT_NE(shown.find("s left"), std::string::npos) << shown;
  EXPECT_EQ(onTerminal(" --quiet").find("3/3"), std::string::npos);
}

#ifdef TSXML_WRITE_MODELS
TEST_F(Cli, DescriptionsOfTheExampleModelsWriteWhatTheExampleWrites) {
  const std::pair<std::string, Arguments> cases[] = {
    {"", {"write", "--format", "native", kModels + "write_models.json"}},
    {" --pmml", {"write", kModels + "write_models_pmml.json"}},
    {" --pmml-consistent",
     {"write", "--pmml-consistent", kModels + "write_models_pmml.json"}},
#if TSXML_TOOL_HAVE_STATXML
    {" --statxml",
     {"write", "--format", "statxml", kModels + "write_models_statxml.json"}},
#endif
  };
  for (const auto& [option, arguments] : cases) {
    const Result expected = Shell(Quote(TSXML_WRITE_MODELS) + option);
    ASSERT_EQ(expected.status, 0) << option;
    const Result written = Tool(arguments);
    EXPECT_EQ(written.status, 0) << option;
    EXPECT_EQ(written.err, "") << option;
    EXPECT_EQ(written.out, expected.out) << option;
  }
}
#endif

TEST_F(Cli, UsageErrorsExitWith2AndSchemaHelpAndVersionWith0) {
  for (const Arguments& usage :
       {Arguments{}, Arguments{"write"}, Arguments{"frobnicate"},
        Arguments{"write", "--format", "xml", "x"},
        Arguments{"batch", "x.json"}}) {
    EXPECT_EQ(Tool(usage).status, 2) << Command(usage);
  }
  const Result schema = Tool({"schema"});
  EXPECT_EQ(schema.status, 0);
  EXPECT_EQ(schema.out,
            ReadFile(kSource + "/docs/model-description.schema.json"));
  for (const char* command : {"write", "batch", "schema"}) {
    EXPECT_EQ(Tool({command, "--help"}).status, 0) << command;
  }
  const Result version = Tool({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.rfind("tsxml ", 0), 0u);
}

// I/O failures: exit status 1, and nothing is left where an output can't be
// written.
TEST_F(Cli, InputsThatCantBeReadAndOutputsThatCantBeWrittenExitWith1) {
  const std::string good = kModels + "calls.json";
  Result result = Tool({"write", Path("missing.json")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "tsxml: cannot read " + Path("missing.json") +
                            ": No such file or directory\n");
  result = Tool({"write", dir_});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "tsxml: cannot read " + dir_ + ": Is a directory\n");
  for (const Arguments& arguments :
       {Arguments{"write", good}, Arguments{"schema"}}) {
    result = Shell("(" + Command(arguments) + " >/dev/full)");
    EXPECT_EQ(result.status, 1) << arguments[0];
    EXPECT_EQ(result.err, "tsxml: cannot write standard output\n");
  }
  result = Tool({"write", "-o", Path("no/such/dir/out.xml"), good});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err.rfind("tsxml: cannot create a temporary file beside " +
                                 Path("no/such/dir/out.xml") + ": ",
                             0),
            0u)
      << result.err;
  // A directory where the file should go: the rename fails.
  fs::create_directory(Path("taken.xml"));
  result = Tool({"write", "-o", Path("taken.xml"), good});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err.rfind("tsxml: cannot write " + Path("taken.xml"), 0), 0u)
      << result.err;
  EXPECT_EQ(Files(), std::vector<std::string>{"taken.xml"});
  EXPECT_TRUE(fs::is_empty(Path("taken.xml")));
}

// -o FILE: the whole document or nothing. A replaced file keeps its mode, a
// new one has the mode of new files.
TEST_F(Cli, OutputFileHoldsTheWholeDocumentOrIsLeftAsItWas) {
  const std::string good = kModels + "calls.json", bad = Path("bad.json");
  WriteFile(bad, R"({"models": [{"name": "m"}]})");
  WriteFile(Path("out.xml"), "old\n");
  ASSERT_EQ(::chmod(Path("out.xml").c_str(), 0640), 0);
  for (const std::string& output : {Path("out.xml"), Path("new.xml")}) {
    EXPECT_EQ(Tool({"write", "-o", output, bad}).status, 2);
  }
  EXPECT_EQ(ReadFile(Path("out.xml")), "old\n");
  EXPECT_EQ(Files(), (std::vector<std::string>{"bad.json", "out.xml"}));

  const std::string document = Tool({"write", good}).out;
  for (const std::string& output : {Path("out.xml"), Path("new.xml")}) {
    const Result result = Tool({"write", "-o", output, good});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(ReadFile(output), document);
  }
  const mode_t mask = ::umask(0);
  ::umask(mask);
  EXPECT_EQ(Mode(Path("out.xml")), 0640u);
  EXPECT_EQ(Mode(Path("new.xml")), 0666u & ~mask);
  EXPECT_EQ(Files(),
            (std::vector<std::string>{"bad.json", "new.xml", "out.xml"}));
}

// A small smoothing model whose level is `i`.
std::string Description(int i) {
  return R"({"models": [{"name": "m)" + std::to_string(i) +
         R"(", "dependentVariable": "y", "exponentialSmoothing": {"type":
         "simple", "estimates": [0.5], "finalState": {"level": )" +
         std::to_string(i) + "}}}]}";
}

// One document per good input; the others are named at the end, with
// status 2, or 1 when one of them is an I/O failure. Not on a terminal: no
// progress.
TEST_F(Cli, BatchWritesEachGoodInputAndNamesTheOthersAtTheEnd) {
  std::vector<BadInput> bad;
  for (const auto& row : ReadBadInputs()) {
    if (row.format == "native") bad.push_back(row);
  }
  Arguments arguments = {"batch", "--format", "native", "--out-dir",
                         Path("out")};
  std::string summary;
  for (int i = 0; i < 1000; ++i) {
    const std::string input = Path("d" + std::to_string(i) + ".json");
    arguments.push_back(input);
    const auto& row = bad[static_cast<std::size_t>(i / 20) % bad.size()];
    WriteFile(input, i % 20 == 7 ? row.bytes : Description(i));
    if (i % 20 == 7) summary += "  " + Said(row, input) + "\n";
  }
  Result result = Tool(arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "tsxml: 50 of 1000 inputs failed:\n" + summary);
  EXPECT_EQ(Files("out").size(), 950u);
  EXPECT_FALSE(fs::exists(Path("out/d7.xml")));
  for (int i : {0, 517, 999}) {
    const std::string name = "d" + std::to_string(i);
    EXPECT_EQ(ReadFile(Path("out/" + name + ".xml")),
              Tool({"write", "--format", "native", Path(name + ".json")}).out);
  }

  fs::create_directory(Path("sub"));
  WriteFile(Path("sub/d0.json"), Description(0));
  result = Tool({"batch", "--format", "native", "--out-dir", Path("again"),
                 Path("d0.json"), Path("d7.json"), Path("missing.json"),
                 Path("sub/d0.json")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "tsxml: 3 of 4 inputs failed:\n" +
                            summary.substr(0, summary.find('\n') + 1) + "  " +
                            Path("missing.json") + ": cannot read " +
                            Path("missing.json") +
                            ": No such file or directory\n  " +
                            Path("sub/d0.json") + ": writes the same file " +
                            "d0.xml as " + Path("d0.json") + "\n");
  EXPECT_EQ(Files("again"), std::vector<std::string>{"d0.xml"});
}

// The PMML options reach batch's documents; on a terminal, progress: done,
// total, rate and time left; none with --quiet.
}  // namespace
