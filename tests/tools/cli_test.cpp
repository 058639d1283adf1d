// The tsxml program: its documents, exit statuses, messages and files.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/tools/bad_descriptions.h"

namespace {

namespace fs = std::filesystem;

const std::string kTool = TSXML_TOOL;
const std::string kSource = TSXML_SOURCE_DIR;
const std::string kModels = kSource + "/examples/models/";

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

struct Result {
  int status;
  std::string out;
  std::string err;
};

// Each test works in a directory of its own, removed at the end.
class Cli : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern =
        std::string(tmp && *tmp ? tmp : "/tmp") + "/tsxml_cli_test_XXXXXX";
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

  // Runs the tool with `arguments`, each quoted.
  Result Tool(const std::vector<std::string>& arguments,
              const std::string& input = "/dev/null") const {
    std::string command = Quote(kTool);
    for (const std::string& argument : arguments) {
      command += " " + Quote(argument);
    }
    return Shell(command + " <" + Quote(input));
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
// The documents

#ifdef TSXML_WRITE_MODELS
TEST_F(Cli, DescriptionsOfTheExampleModelsWriteWhatTheExampleWrites) {
  const Result native = Shell(Quote(TSXML_WRITE_MODELS));
  ASSERT_EQ(native.status, 0);
  EXPECT_EQ(
      Tool({"write", "--format", "native", kModels + "write_models.json"}).out,
      native.out);

  for (const bool consistent : {false, true}) {
    const std::string option = consistent ? "--pmml-consistent" : "--pmml";
    const Result pmml = Shell(Quote(TSXML_WRITE_MODELS) + " " + option);
    ASSERT_EQ(pmml.status, 0) << option;
    std::vector<std::string> arguments = {"write"};
    if (consistent) arguments.push_back("--pmml-consistent");
    arguments.push_back(kModels + "write_models_pmml.json");
    const Result written = Tool(arguments);
    EXPECT_EQ(written.status, 0) << option;
    EXPECT_EQ(written.err, "") << option;
    EXPECT_EQ(written.out, pmml.out) << option;
  }
#if TSXML_TOOL_HAVE_STATXML
  const Result statXML = Shell(Quote(TSXML_WRITE_MODELS) + " --statxml");
  ASSERT_EQ(statXML.status, 0);
  EXPECT_EQ(Tool({"write", "--format", "statxml",
                  kModels + "write_models_statxml.json"})
                .out,
            statXML.out);
#endif
}
#endif

TEST_F(Cli, PMMLIsTheDefaultFormatAndStandardInputIsRead) {
  const std::string file = kModels + "write_models_pmml.json";
  const Result pmml = Tool({"write", "--format", "pmml", file});
  EXPECT_EQ(pmml.status, 0);
  EXPECT_EQ(Tool({"write", file}).out, pmml.out);
  EXPECT_EQ(Tool({"write", "-"}, file).out, pmml.out);
  EXPECT_EQ(
      pmml.out.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<PMML", 0),
      0u);
  EXPECT_EQ(pmml.out.back(), '\n');
}

TEST_F(Cli, NoTimeSeriesLeavesTheSeriesOut) {
  const std::string file = kModels + "visitors.json";
  EXPECT_NE(Tool({"write", file}).out.find("</TimeSeries>"), std::string::npos);
  const Result without = Tool({"write", "--no-time-series", file});
  EXPECT_EQ(without.status, 0);
  EXPECT_EQ(without.out.find("</TimeSeries>"), std::string::npos);
}

TEST_F(Cli, SchemaIsTheDocumentedFile) {
  const Result schema = Tool({"schema"});
  EXPECT_EQ(schema.status, 0);
  EXPECT_EQ(schema.out,
            ReadFile(kSource + "/docs/model-description.schema.json"));
}

// ---------------------------------------------------------------------------
// Bad input: exit status 2, one line naming the input, where and why.

TEST_F(Cli, BadDescriptionsExitWith2AndSayWhereAndWhy) {
  const std::string input = Path("bad.json");
  for (const tsxml_tool_test::BadDescription& bad :
       tsxml_tool_test::kBadDescriptions) {
    SCOPED_TRACE(bad.name);
    WriteFile(input, bad.input);
    std::string where = input;
    if (bad.line != 0) {
      where +=
          ":" + std::to_string(bad.line) + ":" + std::to_string(bad.column);
    }
    where += ": ";
    if (*bad.pointer) where += std::string(bad.pointer) + ": ";
    const Result result = Tool({"write", "--format", "native", input});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "tsxml: " + where + bad.message + "\n");
  }
}

TEST_F(Cli, StandardInputIsNamedAsSuch) {
  WriteFile(Path("bad.json"), R"({"models": [], "x": 1})");
  const Result result = Tool({"write", "-"}, Path("bad.json"));
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err,
            "tsxml: <stdin>: /x: unknown field; expected one of: $schema, "
            "application, dateSpecs, models, statXML\n");
}

TEST_F(Cli, UsageErrorsExitWith2AndHelpWith0) {
  EXPECT_EQ(Tool({}).status, 2);
  EXPECT_EQ(Tool({"write"}).status, 2);
  EXPECT_EQ(Tool({"write", "--format", "xml", "x.json"}).status, 2);
  EXPECT_EQ(Tool({"frobnicate"}).status, 2);
  EXPECT_EQ(Tool({"batch", "x.json"}).status, 2);  // no --format, --out-dir
  for (const char* command : {"write", "batch", "schema"}) {
    const Result help = Tool({command, "--help"});
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_NE(help.out.find(std::string("Usage: tsxml ") + command),
              std::string::npos)
        << help.out;
  }
  const Result version = Tool({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.rfind("tsxml ", 0), 0u);
}

// ARIMA models go into PMML. The consistent option reaches the document in
// `write` and in `batch`: the data dictionary of the write_models
// description, which lists the fields of the model added last by default,
// lists those of all three models.
TEST_F(Cli, ARIMAModelsAndConsistentPMMLAreWritten) {
  const Result sales = Tool({"write", kModels + "sales.json"});
  EXPECT_EQ(sales.status, 0);
  EXPECT_EQ(sales.err, "");
  EXPECT_NE(sales.out.find("algorithmName=\"ARIMA\""), std::string::npos);

  const std::string input = Path("models.json");
  WriteFile(input, ReadFile(kModels + "write_models_pmml.json"));
  const Result standard = Tool({"write", input});
  const Result consistent = Tool({"write", "--pmml-consistent", input});
  EXPECT_EQ(consistent.status, 0);
  EXPECT_NE(standard.out.find("numberOfFields=\"2\""), std::string::npos);
  EXPECT_NE(consistent.out.find("numberOfFields=\"5\""), std::string::npos);
  const Result batch = Tool({"batch", "--format", "pmml", "--pmml-consistent",
                             "--quiet", "--out-dir", Path("out"), input});
  EXPECT_EQ(batch.status, 0) << batch.err;
  EXPECT_EQ(ReadFile(Path("out/models.xml")), consistent.out);
}

#if !TSXML_TOOL_HAVE_STATXML
// StatXML only when the library has it.
TEST_F(Cli, WhatThisBuildCantWriteExitsWith2AndSaysSo) {
  const std::string file = kModels + "sales.json";
  Result result = Tool({"write", "--format", "statxml", file});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err,
            "tsxml: --format statxml: not available in this build\n");
  result =
      Tool({"batch", "--format", "statxml", "--out-dir", Path("out"), file});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err,
            "tsxml: --format statxml: not available in this build\n");
}
#endif

TEST_F(Cli, AnInputThatCantBeReadExitsWith1) {
  Result result = Tool({"write", Path("missing.json")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "tsxml: cannot read " + Path("missing.json") +
                            ": No such file or directory\n");
  result = Tool({"write", dir_});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "tsxml: cannot read " + dir_ + ": Is a directory\n");
}

TEST_F(Cli, AStandardOutputThatCantBeWrittenExitsWith1) {
  for (const std::string& command :
       {" write " + Quote(kModels + "calls.json"), std::string(" schema")}) {
    const Result result = Shell("(" + Quote(kTool) + command + " >/dev/full)");
    EXPECT_EQ(result.status, 1) << command;
    EXPECT_EQ(result.err, "tsxml: cannot write standard output\n");
  }
}

// ---------------------------------------------------------------------------
// -o FILE: the whole document or nothing.

TEST_F(Cli, OutputFileHoldsTheDocument) {
  const std::string file = kModels + "calls.json";
  const Result result = Tool({"write", "-o", Path("calls.xml"), file});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(ReadFile(Path("calls.xml")), Tool({"write", file}).out);
  EXPECT_EQ(Files(), std::vector<std::string>{"calls.xml"});
}

TEST_F(Cli, BadInputLeavesTheOutputFileAsItWas) {
  WriteFile(Path("old.xml"), "old document\n");
  WriteFile(Path("bad.json"), R"({"models": [{"name": "m"}]})");
  const Result result =
      Tool({"write", "-o", Path("old.xml"), Path("bad.json")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(ReadFile(Path("old.xml")), "old document\n");
  EXPECT_EQ(Files(), (std::vector<std::string>{"bad.json", "old.xml"}));
  // And makes none where there was none.
  EXPECT_EQ(Tool({"write", "-o", Path("new.xml"), Path("bad.json")}).status, 2);
  EXPECT_EQ(Files(), (std::vector<std::string>{"bad.json", "old.xml"}));
}

TEST_F(Cli, AReplacedOutputFileKeepsItsPermissions) {
  WriteFile(Path("out.xml"), "old\n");
  ASSERT_EQ(::chmod(Path("out.xml").c_str(), 0640), 0);
  ASSERT_EQ(
      Tool({"write", "-o", Path("out.xml"), kModels + "calls.json"}).status, 0);
  struct stat info;
  ASSERT_EQ(::stat(Path("out.xml").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);
  EXPECT_NE(ReadFile(Path("out.xml")), "old\n");
}

TEST_F(Cli, AnOutputFileThatCantBeWrittenExitsWith1AndLeavesNothing) {
  Result result = Tool(
      {"write", "-o", Path("no/such/dir/out.xml"), kModels + "calls.json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err.rfind("tsxml: cannot create a temporary file beside " +
                                 Path("no/such/dir/out.xml") + ": ",
                             0),
            0u)
      << result.err;
  // A directory where the file should go: the rename fails.
  fs::create_directory(Path("taken.xml"));
  result = Tool({"write", "-o", Path("taken.xml"), kModels + "calls.json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err.rfind("tsxml: cannot write " + Path("taken.xml"), 0), 0u)
      << result.err;
  EXPECT_EQ(Files(), std::vector<std::string>{"taken.xml"});
  EXPECT_TRUE(fs::is_empty(Path("taken.xml")));
}

// ---------------------------------------------------------------------------
// batch

// A small smoothing model whose level is `i`.
std::string Description(int i) {
  return R"({"models": [{"name": "m)" + std::to_string(i) +
         R"(", "dependentVariable": "y", "exponentialSmoothing": {"type":
         "simple", "estimates": [0.5], "finalState": {"level": )" +
         std::to_string(i) + "}}}]}";
}

TEST_F(Cli, BatchWritesOneDocumentPerInput) {
  fs::create_directory(Path("in"));
  std::vector<std::string> arguments = {"batch", "--format", "native",
                                        "--out-dir", Path("out")};
  for (int i = 0; i < 1000; ++i) {
    const std::string input = Path("in/d" + std::to_string(i) + ".json");
    WriteFile(input, Description(i));
    arguments.push_back(input);
  }
  const Result result = Tool(arguments);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "");  // not a terminal: no progress
  EXPECT_EQ(Files("out").size(), 1000u);
  for (int i : {0, 517, 999}) {
    const std::string name = "d" + std::to_string(i);
    EXPECT_EQ(
        ReadFile(Path("out/" + name + ".xml")),
        Tool({"write", "--format", "native", Path("in/" + name + ".json")})
            .out);
  }
}

TEST_F(Cli, BatchGoesOnPastBadInputsAndNamesThemAtTheEnd) {
  std::vector<std::string> arguments = {"batch",     "--format",  "native",
                                        "--out-dir", Path("out"), "-q"};
  std::string summary;
  int failed = 0;
  for (int i = 0; i < 60; ++i) {
    const std::string input = Path("d" + std::to_string(i) + ".json");
    arguments.push_back(input);
    if (i % 20 == 7) {
      WriteFile(input, R"({"models": [{"name": "m", "arima": {}}]})");
      summary +=
          "  " + input + ": /models/0: missing field \"dependentVariable\"\n";
      ++failed;
    } else if (i % 20 == 13) {
      WriteFile(input, "{\"models\": [\n}");
      summary += "  " + input +
                 ":2:1: /models: syntax error while parsing value - unexpected "
                 "'}'; expected '[', '{', or a literal\n";
      ++failed;
    } else {
      WriteFile(input, Description(i));
    }
  }
  const Result result = Tool(arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "tsxml: " + std::to_string(failed) +
                            " of 60 inputs failed:\n" + summary);
  EXPECT_EQ(Files("out").size(), 60u - static_cast<unsigned>(failed));
  EXPECT_FALSE(fs::exists(Path("out/d7.xml")));
  EXPECT_TRUE(fs::exists(Path("out/d8.xml")));
}

TEST_F(Cli, BatchExitsWith1WhenAnInputCantBeRead) {
  WriteFile(Path("a.json"), Description(1));
  fs::create_directory(Path("sub"));
  WriteFile(Path("sub/a.json"), Description(2));
  const Result result =
      Tool({"batch", "--format", "native", "--out-dir", Path("out"),
            Path("a.json"), Path("missing.json"), Path("sub/a.json")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "tsxml: 2 of 3 inputs failed:\n  " + Path("missing.json") +
                ": cannot read " + Path("missing.json") +
                ": No such file or directory\n  " + Path("sub/a.json") +
                ": writes the same file a.xml as " + Path("a.json") + "\n");
  EXPECT_EQ(Files("out"), std::vector<std::string>{"a.xml"});
}

// On a terminal, progress: done, total, rate and time left; none with -q.
TEST_F(Cli, BatchShowsProgressOnATerminal) {
  if (std::system("command -v script >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "no script(1) to make a terminal";
  }
  WriteFile(Path("a.json"), Description(1));
  WriteFile(Path("b.json"), Description(2));
  const std::string command = "batch --format native --out-dir " +
                              Quote(Path("out")) + " " + Quote(Path("a.json")) +
                              " " + Quote(Path("b.json"));
  const auto onTerminal = [&](const std::string& extra) {
    return Shell("script -qec " +
                 Quote(Quote(kTool) + " " + command + extra + " 2>&1") +
                 " /dev/null")
        .out;
  };
  const std::string shown = onTerminal("");
  EXPECT_NE(shown.find("2/2"), std::string::npos) << shown;
  EXPECT_NE(shown.find("s left"), std::string::npos) << shown;
  EXPECT_EQ(onTerminal(" --quiet").find("2/2"), std::string::npos);
}

}  // namespace
