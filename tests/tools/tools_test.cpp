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
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <valarray>
#include <vector>

#include "tests/support/arima_fixtures.h"
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

std::string Quote(std::string text) {
  for (std::size_t at = 0; (at = text.find('\'', at)) != text.npos; at += 4) {
    text.replace(at, 1, "'\\''");
  }
  return "'" + text + "'";
}

std::string ReadFile(const std::string& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
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

  // Runs `command` in the shell, its output and error caught.
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

  std::set<std::string> Files(const std::string& sub = "") const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir_ + "/" + sub)) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  std::string dir_;
};

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
  const std::string at =
      std::to_string(bad.line) + ":" + std::to_string(bad.column) + ": ";
  return name + (bad.line ? ":" + at : ": ") +
         (bad.pointer.empty() ? "" : bad.pointer + ": ") + bad.message;
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
    if (!tsxml_tool::FormatAvailable(format)) continue;  // statxml
    const bool consistent = bad.format == "pmml-consistent";
    std::ostringstream out;
    try {
      tsxml_tool::WriteDocument(tsxml_tool::ReadDescription(bad.bytes),
                                Options(format, consistent), out);
      ADD_FAILURE() << "written";
    } catch (const tsxml_tool::DescriptionError& error) {
      EXPECT_EQ(error.Pointer(), bad.pointer);
      EXPECT_EQ(error.Line(), bad.line);
      EXPECT_EQ(error.Column(), bad.column);
      EXPECT_EQ(error.Message(), bad.message);
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
      EXPECT_EQ(result.err,
                "tsxml: " + Said(bad, name == "-" ? "<stdin>" : name) + "\n");
    }
  }
}

// The parser counts an array's elements up to 0xFFFFFF only.
TEST(Reader, ReadsAHistoryLongerThanTheParserCounts) {
  const std::size_t length = 0xFFFFFF + 2;
  std::string json =
      R"({"models": [{"name": "m", "dependentVariable": "y", "history": [)";
  for (std::size_t i = 0; i < length; ++i) json += i ? ",1" : "1";
  json += R"(], "exponentialSmoothing": {"type": "simple", "estimates": [0.5],
      "finalState": {"level": 1}}}]})";
  const tsxml_tool::Description description = tsxml_tool::ReadDescription(json);
  const std::valarray<double>& history =
      description.models[0].model.GetImp()->GetHistoryData();
  EXPECT_EQ(history.size(), length);
  EXPECT_EQ(history[length - 1], 1.0);
}

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
    const double values[] = {
        MV::gMissingValue, std::nan(""), inf, -inf,
        std::uniform_real_distribution<double>(-1000, 1000)(random_)};
    return values[std::min(Below(20), 4u)];
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
  bool nativeOnly = false;  // with Croston models, which have no other form
};

Generated GenerateArima(const Draw& draw) {
  static const char* const kOutliers[] = {
      "additive",   "levelShift",   "transient",     "seasonalAdditive",
      "localTrend", "innovational", "varianceChange"};
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

  // The state, and the fields of its method.
  std::unique_ptr<ARMAForecastState> forecast;
  ARMANoiseHistory* noise = nullptr;
  const unsigned method = state.Word(
      "method", {"kalmanFilter", "conditionalLeastSquares", "thetaRecursion"});
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
  for (unsigned i = 0; i < predictors.size(); ++i) {  // null if no values
    Draw history = draw.Object();
    const auto x = history.Numbers("predictor", history.Below(4));
    const auto y = history.Numbers("transferFunction", history.Below(4));
    if (x.size() != 0) forecast->SetXHistory(i, x, y);
    histories.push_back(x.size() != 0 ? history.Close() : "null");
  }
  const unsigned count = spec.GetParameterCount(true);
  forecast->SetParameters(arima.Numbers("estimates", count));
  forecast->SetParameterStdErrors(
      arima.Numbers("standardErrors", arima.Below(count + 1)));
  const unsigned begin = span.Below("begin", 10);
  const unsigned length = span.Below("length", 200);
  forecast->SetStateSpan(TSSpan(begin, length, span.Below("horizon", 12)));
  state.Raw("predictorHistory", Json(histories));
  arima.Raw("transferFunctions", Json(functions))
      .Raw("outliers", Json(outliers))
      .Raw("stateSpan", span.Close())
      .Raw("state", state.Close());

  Draw estimation = draw.Object(), fit = draw.Object();
  EstimationInfo info;
  info.SetSpan(TSSpan(0, 120));
  info.SetDegreesOfFreedom(estimation.Put("degreesOfFreedom", 120 - count));
  info.SetErrorVariance(estimation.Put("errorVariance", estimation.Number()));
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
  const double level = state.Put("level", state.Number());
  const double trend = state.Put("trend", state.Number());
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
  const auto estimates = smoothing.Numbers("estimates", count);
  const auto errors =
      smoothing.Numbers("standardErrors", smoothing.Below(count + 1));
  const WIESSmState final =
      State(smoothing, "finalState", season, smoothing.Below(season));
  const WIESSmState initial = State(smoothing, "initialState", season, 0);
  const auto history = smoothing.Numbers(smoothing.Below(30));
  EstimationInfo info;
  info.SetSpan(TSSpan(0, history.size()));
  info.SetDegreesOfFreedom(estimation.Below("degreesOfFreedom", 30));
  info.SetGOFStat(BFSharedConst::MSE, fit.Put("mse", 2.5));
  info.SetGOFStat(BFSharedConst::MAXAPE, fit.Put("maxAPE", fit.Number()));
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
                testing_support::MakeESModel(spec, estimates, errors, final,
                                             info, history, initial),
                TSXDictionaryRefs("m", "d <&>", "y"));
          }};
}

// Date specifications, a smoothing and a Croston model: the models refer to
// the identifiers the tree gave the date specifications.
Generated FixedModels() {
  return {
      testing_support::ReadTestData("tools/fixed_models.json"),
      [](TSXMLTree& tree) {
        TSXDateSpec days(TSXDateSpec::Week);
        EXPECT_TRUE(days.AddPeriod(TSXDateSpec::Day, 7, 0, 5).IsOK());
        TSXDateSpec::TSXIndexTuple first(days), gap(days);
        EXPECT_TRUE(first.SetIndexes({1, 0}) && gap.SetIndexes({3, 4}));
        EXPECT_TRUE(days.SetFirstCaseIndex(first).IsOK() &&
                    days.AddGap(3).IsOK() && days.AddGap(gap).IsOK() &&
                    days.SetFirstCaseDay(1, 1, 2024));
        days.SetForcedSeasonLength(5);
        days.SetFiscalYearStart(4);
        TSXDateSpec hours(TSXDateSpec::Day);
        EXPECT_TRUE(hours.AddPeriod(TSXDateSpec::Hour, 24, 8, 10).IsOK() &&
                    hours.SetLowestIncrement(2).IsOK());
        TSXDictionaryRefs simple("m", "", "y"), croston("c", "", "demand");
        croston.SetDateSpecID(tree.AddDateSpec(hours, "shifts"));
        simple.SetDateSpecID(tree.AddDateSpec(days, "working days"));
        return tree.AddModelTree(testing_support::MakeSimpleModel(), simple) &&
               tree.AddModelTree(
                   testing_support::MakeCrostonModel(BFSharedConst::SquareRoot),
                   croston);
      },
      true};
}

// The documents of `generated` in every format are those of its tree: native,
// PMML in its four forms and StatXML on a residual series of its own; what
// the library refuses, the description refuses. `roads` counts both ways.
void ExpectTheDocumentsOfTheModels(const Generated& generated, const Draw& draw,
                                   int (&roads)[2]) {
  SCOPED_TRACE(generated.json);
  const auto expect = [&](const std::string& json,
                          const tsxml_tool::WriteOptions& options,
                          TSXMLTree tree) {
    tree.SetPMMLOutput(options.format == Format::kPMML);
    tree.SetPMMLConsistent(options.pmmlConsistent);
    tree.SetESPMMLOutputTimeValue(options.timeSeries);
    const bool added = generated.add(tree);
    ++roads[added];
    EXPECT_EQ(
        DocumentOf(json, options),
        added ? Document(tree) : "/models/0: the library refused the model")
        << tsxml_tool::FormatName(options.format);
  };
  expect(generated.json, Options(Format::kNative), TSXMLTree());
  if (generated.nativeOnly) return;
  for (const bool consistent : {false, true}) {
    for (const bool timeSeries : {true, false}) {
      expect(generated.json, Options(Format::kPMML, consistent, timeSeries),
             TSXMLTree());
    }
  }
  Draw settings = draw.Object();
#if TSXML_TOOL_HAVE_STATXML
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
  ExpectTheDocumentsOfTheModels(FixedModels(), draw, roads);
  TSXMLTree empty;  // PMML without models: the library's empty document
  empty.SetPMMLOutput(true);
  EXPECT_EQ(DocumentOf(R"({"models": []})", Options(Format::kPMML)),
            Document(empty));
  // The library refuses some smoothing models (a missing level, say).
  EXPECT_GT(roads[0], 50);
  EXPECT_GT(roads[1], 1000);
}

// The options reach the documents of write and batch, each the writer's
// document and a line feed; PMML is the default. On a terminal, batch shows
// progress: done, total, rate and time left; none with --quiet.
TEST_F(Cli, OptionsReachTheDocumentsAndBatchShowsProgressOnATerminal) {
  const char* const names[] = {"sales", "visitors", "write_models_pmml"};
  Arguments arguments = {
      "batch",     "--format", "pmml", "--pmml-consistent", "--no-time-series",
      "--out-dir", Path("out")};
  for (const char* name : names) arguments.push_back(kModels + name + ".json");
  const Result result = Tool(arguments);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
  for (const char* name : names) {
    const std::string input = kModels + name + ".json", json = ReadFile(input);
    const std::string document =
        DocumentOf(json, Options(Format::kPMML, true, false)) + "\n";
    EXPECT_EQ(ReadFile(Path("out/") + name + ".xml"), document);
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
    const Result written = Tool(arguments);
    EXPECT_EQ(expected.status + written.status, 0) << option;  // both 0
    EXPECT_EQ(written.out + written.err, expected.out) << option;
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
  EXPECT_EQ(Tool({"batch", "--help"}).status, 0);
  const Result schema = Tool({"schema"});
  EXPECT_EQ(schema.status, 0);
  EXPECT_EQ(schema.out,
            ReadFile(kSource + "/docs/model-description.schema.json"));
  EXPECT_EQ(Tool({"--version"}).out.rfind("tsxml ", 0), 0u);
}

// -o FILE: the whole document or nothing; a replaced file keeps its mode.
// I/O failures exit with 1 and leave nothing where an output can't be written.
TEST_F(Cli, OutputFilesAreWholeOrUntouchedAndIOFailuresExitWith1) {
  const std::string good = kModels + "calls.json", bad = Path("bad.json");
  WriteFile(bad, R"({"models": [{"name": "m"}]})");
  WriteFile(Path("out.xml"), "old\n");
  ASSERT_EQ(::chmod(Path("out.xml").c_str(), 0640), 0);
  for (const std::string& output : {Path("out.xml"), Path("new.xml")}) {
    EXPECT_EQ(Tool({"write", "-o", output, bad}).status, 2);
  }
  EXPECT_EQ(ReadFile(Path("out.xml")), "old\n");
  EXPECT_EQ(Files(), (std::set<std::string>{"bad.json", "out.xml"}));
  const std::string document = Tool({"write", good}).out;
  for (const std::string& output : {Path("out.xml"), Path("new.xml")}) {
    const Result result = Tool({"write", "-o", output, good});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(ReadFile(output), document);
  }
  struct stat info;
  ASSERT_EQ(::stat(Path("out.xml").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);

  fs::create_directory(Path("taken.xml"));  // the rename onto it fails
  const std::pair<Arguments, std::string> failures[] = {
      {{"write", Path("missing.json")},
       "cannot read " + Path("missing.json") + ": No such file or directory"},
      {{"write", dir_}, "cannot read " + dir_ + ": Is a directory"},
      {{"write", "-o", Path("no/dir/out.xml"), good},
       "cannot create a temporary file beside " + Path("no/dir/out.xml") +
           ": No such file or directory"},
      {{"write", "-o", Path("taken.xml"), good},
       "cannot write " + Path("taken.xml") + ": Is a directory"}};
  for (const auto& [arguments, error] : failures) {
    const Result result = Tool(arguments);
    EXPECT_EQ(result.status, 1) << Command(arguments);
    EXPECT_EQ(result.out + result.err, "tsxml: " + error + "\n");
  }
  for (const Arguments& arguments :
       {Arguments{"write", good}, Arguments{"schema"}}) {
    const Result result = Shell("(" + Command(arguments) + " >/dev/full)");
    EXPECT_EQ(result.status, 1) << arguments[0];
    EXPECT_EQ(result.err, "tsxml: cannot write standard output\n");
  }
  EXPECT_EQ(Files(), (std::set<std::string>{"bad.json", "new.xml", "out.xml",
                                            "taken.xml"}));
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
    WriteFile(input, i % 20 == 7 ? row.bytes
                                 : R"({"models": [{"name": "m",
        "dependentVariable": "y", "exponentialSmoothing": {"type": "simple",
        "estimates": [0.5], "finalState": {"level": )" +
                                       std::to_string(i) + "}}}]}");
    if (i % 20 == 7) summary += "  " + Said(row, input) + "\n";
  }
  Result result = Tool(arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "tsxml: 50 of 1000 inputs failed:\n" + summary);
  EXPECT_EQ(Files("out").size(), 950u);
  for (int i : {0, 517, 999}) {
    const std::string name = "d" + std::to_string(i);
    EXPECT_EQ(ReadFile(Path("out/" + name + ".xml")),
              Tool({"write", "--format", "native", Path(name + ".json")}).out);
  }

  fs::create_directory(Path("sub"));
  fs::copy_file(Path("d0.json"), Path("sub/d0.json"));
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
  EXPECT_EQ(Files("again"), std::set<std::string>{"d0.xml"});
}

}  // namespace
