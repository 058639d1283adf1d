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

#include "tests/tools/tools_test.h"

namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

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

unsigned Mode(const std::string& path) {
  struct stat info;
  return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 0777 : 0;
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
// The documents

// Each example in each form gives the writer's document and a line feed, or
// the writer's error with the input's name and status 2; PMML is the default.
TEST_F(Cli, EachExampleInEachFormIsTheWritersDocumentOrError) {
  using tsxml_tool::Format;
  using tsxml_tool_test::Options;
  const std::pair<Arguments, tsxml_tool::WriteOptions> forms[] = {
    {{}, Options(Format::kPMML)},
    {{"--format", "native"}, Options(Format::kNative)},
    {{"--pmml-consistent"}, Options(Format::kPMML, true)},
    {{"--format", "pmml", "--no-time-series"},
     Options(Format::kPMML, false, false)},
#if TSXML_TOOL_HAVE_STATXML
    {{"--format", "statxml"}, Options(Format::kStatXML)},
#endif
  };
  for (const auto& entry : fs::directory_iterator(kModels)) {
    const std::string file = entry.path().string();
    for (const auto& [form, options] : forms) {
      Arguments arguments = {"write"};
      arguments.insert(arguments.end(), form.begin(), form.end());
      arguments.push_back(file);
      const Result result = Tool(arguments);
      const std::string expected =
          tsxml_tool_test::DocumentOf(ReadFile(file), options);
      const bool written = expected.rfind("<?xml", 0) == 0;
      EXPECT_EQ(result.status, written ? 0 : 2) << Command(arguments);
      EXPECT_EQ(written ? result.out : result.err,
                written ? expected + "\n"
                        : "tsxml: " + file + ": " + expected + "\n");
      EXPECT_EQ(written ? result.err : result.out, "");
    }
    EXPECT_EQ(Tool({"write", "-"}, file).out, Tool({"write", file}).out);
  }
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

// ---------------------------------------------------------------------------
// Bad input: exit status 2, one line naming the input, where and why.

TEST_F(Cli, BadInputsExitWithTheirStatusAndSayWhereAndWhy) {
  const std::string input = Path("bad.json");
  for (const tsxml_tool_test::BadInput& bad :
       tsxml_tool_test::ReadBadInputs()) {
    SCOPED_TRACE(bad.file + " " + bad.format);
    WriteFile(input, bad.bytes);
    const bool pmml = bad.format.rfind("pmml", 0) == 0;
    Arguments arguments = {"write", "--format", pmml ? "pmml" : bad.format};
    if (bad.format == "pmml-consistent")
      arguments.push_back("--pmml-consistent");
    std::string where = bad.line == 0 ? ": "
                                      : ":" + std::to_string(bad.line) + ":" +
                                            std::to_string(bad.column) + ": ";
    if (!bad.pointer.empty()) where += bad.pointer + ": ";
    // Standard input is named as such.
    for (const std::string& name : {input, std::string("-")}) {
      arguments.push_back(name);
      const Result result = Tool(arguments, input);
      arguments.pop_back();
      EXPECT_EQ(result.status, bad.status);
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(result.err,
                !TSXML_TOOL_HAVE_STATXML && bad.format == "statxml"
                    ? "tsxml: --format statxml: not available in this build\n"
                    : "tsxml: " + (name == "-" ? "<stdin>" : name) + where +
                          bad.message + "\n");
    }
  }
}

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
#if !TSXML_TOOL_HAVE_STATXML
  const Result statXML = Tool({"batch", "--format", "statxml", "--out-dir",
                               Path("out"), kModels + "sales.json"});
  EXPECT_EQ(statXML.status, 2);
  EXPECT_EQ(statXML.err,
            "tsxml: --format statxml: not available in this build\n");
#endif
}

// ---------------------------------------------------------------------------
// I/O failures: exit status 1.

// Nothing is left where an output can't be written.
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

// ---------------------------------------------------------------------------
// batch

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
  Arguments arguments = {"batch", "--format", "native", "--out-dir",
                         Path("out")};
  std::string summary;
  for (int i = 0; i < 1000; ++i) {
    const std::string input = Path("d" + std::to_string(i) + ".json");
    arguments.push_back(input);
    if (i % 100 == 7) {
      WriteFile(input, R"({"models": [{"name": "m", "arima": {}}]})");
      summary +=
          "  " + input + ": /models/0: missing field \"dependentVariable\"\n";
    } else if (i % 100 == 13) {
      WriteFile(input, "{\"models\": [\n}");
      summary += "  " + input +
                 ":2:1: /models: syntax error while parsing value - unexpected "
                 "'}'; expected '[', '{', or a literal\n";
    } else {
      WriteFile(input, Description(i));
    }
  }
  Result result = Tool(arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "tsxml: 20 of 1000 inputs failed:\n" + summary);
  EXPECT_EQ(Files("out").size(), 980u);
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
TEST_F(Cli, BatchWritesWhatWriteWritesAndShowsProgressOnATerminal) {
  const Arguments options = {"--pmml-consistent", "--no-time-series"};
  const Arguments inputs = {kModels + "sales.json", kModels + "visitors.json",
                            kModels + "write_models_pmml.json"};
  Arguments arguments = {"batch", "--format", "pmml", "--out-dir", Path("out")};
  arguments.insert(arguments.end(), options.begin(), options.end());
  arguments.insert(arguments.end(), inputs.begin(), inputs.end());
  const Result result = Tool(arguments);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
  for (const std::string& input : inputs) {
    EXPECT_EQ(ReadFile(Path("out/" + fs::path(input).stem().string() + ".xml")),
              Tool({"write", options[0], options[1], input}).out);
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

}  // namespace
