// tsxml: writes the documents of the tsxml library (native, PMML, StatXML)
// from JSON model descriptions.
//
//   tsxml write [--format native|pmml|statxml] [--pmml-consistent]
//               [--no-time-series] [-o FILE] INPUT
//   tsxml batch --format F --out-dir DIR [--quiet] INPUT...
//   tsxml schema
//
// Exit status: 0 success, 1 an I/O failure, 2 bad input or usage.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "tools/tsxml/description.h"
#include "tools/tsxml/output_file.h"
#include "tools/tsxml/schema.h"
#include "tools/tsxml/write.h"
#include "tsxml/version.h"

namespace {

using tsxml_tool::DescriptionError;
using tsxml_tool::IoError;

constexpr int kSuccess = 0;
constexpr int kIoFailure = 1;
constexpr int kBadInput = 2;

// The bytes of `input`, or of standard input for "-".
std::string ReadInput(const std::string& input) {
  const bool standardInput = input == "-";
  const std::string name = standardInput ? "standard input" : input;
  std::FILE* file = standardInput ? stdin : std::fopen(input.c_str(), "rb");
  if (!file) throw IoError("cannot read " + name + ": " + std::strerror(errno));
  std::string bytes;
  char buffer[1 << 16];
  std::size_t got = 0;
  while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
    bytes.append(buffer, got);
  }
  const bool failed = std::ferror(file) != 0;
  const int error = errno;
  if (!standardInput) std::fclose(file);
  if (failed)
    throw IoError("cannot read " + name + ": " + std::strerror(error));
  return bytes;
}

// "INPUT:LINE:COLUMN: /pointer: message" for syntax errors,
// "INPUT: /pointer: message" for the others.
std::string Describe(const std::string& input, const DescriptionError& error) {
  const std::string name = input == "-" ? "<stdin>" : input;
  return name + (error.Line() != 0 ? ":" : ": ") + error.what();
}

// Writes the document of `description` followed by a line feed.
void WriteText(const tsxml_tool::Description& description,
               const tsxml_tool::WriteOptions& options, std::ostream& os) {
  TSXMLTree tree = tsxml_tool::BuildTree(description, options);
  if (!tree.WriteToStream(os)) {
    throw DescriptionError("", "the library wrote no document");
  }
  os << '\n';
}

// The options that this build can't honour: exit status 2 with a message.
bool Available(const tsxml_tool::WriteOptions& options) {
  if (!tsxml_tool::FormatAvailable(options.format)) {
    std::cerr << "tsxml: --format " << tsxml_tool::FormatName(options.format)
              << ": not available in this build\n";
    return false;
  }
  return true;
}

int RunWrite(const std::string& input, const std::string& output,
             const tsxml_tool::WriteOptions& options) {
  if (!Available(options)) return kBadInput;
  try {
    const tsxml_tool::Description description =
        tsxml_tool::ReadDescription(ReadInput(input));
    if (output.empty()) {
      WriteText(description, options, std::cout);
      std::cout.flush();
      if (!std::cout) throw IoError("cannot write standard output");
    } else {
      // The tree is built before the file is made: bad input makes none.
      TSXMLTree tree = tsxml_tool::BuildTree(description, options);
      tsxml_tool::OutputFile file(output);
      tree.WriteToStream(file.Stream());
      file.Stream() << '\n';
      file.Commit();
    }
    return kSuccess;
  } catch (const DescriptionError& error) {
    std::cerr << "tsxml: " << Describe(input, error) << '\n';
    return kBadInput;
  } catch (const IoError& error) {
    std::cerr << "tsxml: " << error.what() << '\n';
    return kIoFailure;
  }
}

// Progress on standard error: done, total, rate and the time left.
class Progress {
 public:
  Progress(std::size_t total, bool shown)
      : total_(total), shown_(shown), start_(Clock::now()), last_(start_) {}

  void Step(std::size_t done) {
    if (!shown_) return;
    const Clock::time_point now = Clock::now();
    if (done != total_ && now - last_ < std::chrono::milliseconds(100)) return;
    last_ = now;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    const double left =
        rate > 0 ? static_cast<double>(total_ - done) / rate : 0;
    char line[128];
    std::snprintf(line, sizeof line, "\r%zu/%zu  %.1f/s  %lds left   ", done,
                  total_, rate, static_cast<long>(left + 0.5));
    std::cerr << line << (done == total_ ? "\n" : "") << std::flush;
  }

 private:
  using Clock = std::chrono::steady_clock;
  std::size_t total_;
  bool shown_;
  Clock::time_point start_;
  Clock::time_point last_;
};

int RunBatch(const std::vector<std::string>& inputs, const std::string& outDir,
             bool quiet, const tsxml_tool::WriteOptions& options) {
  if (!Available(options)) return kBadInput;
  std::error_code error;
  std::filesystem::create_directories(outDir, error);
  if (!std::filesystem::is_directory(outDir)) {
    std::cerr << "tsxml: cannot make the directory " << outDir << '\n';
    return kIoFailure;
  }

  struct Failure {
    std::string input;
    std::string message;
    int status;
  };
  std::vector<Failure> failures;
  std::map<std::string, std::string> outputs;  // output name -> input
  Progress progress(inputs.size(), !quiet && ::isatty(STDERR_FILENO) == 1);
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    const std::string& input = inputs[i];
    const std::string name = std::filesystem::path(input)
                                 .filename()
                                 .replace_extension(".xml")
                                 .string();
    const auto [seen, isNew] = outputs.emplace(name, input);
    try {
      if (!isNew) {
        throw IoError("writes the same file " + name + " as " + seen->second);
      }
      const tsxml_tool::Description description =
          tsxml_tool::ReadDescription(ReadInput(input));
      TSXMLTree tree = tsxml_tool::BuildTree(description, options);
      tsxml_tool::OutputFile file(
          (std::filesystem::path(outDir) / name).string());
      tree.WriteToStream(file.Stream());
      file.Stream() << '\n';
      file.Commit();
    } catch (const DescriptionError& failure) {
      failures.push_back({input, Describe(input, failure), kBadInput});
    } catch (const IoError& failure) {
      failures.push_back({input, input + ": " + failure.what(), kIoFailure});
    }
    progress.Step(i + 1);
  }
  if (failures.empty()) return kSuccess;
  std::cerr << "tsxml: " << failures.size() << " of " << inputs.size()
            << " inputs failed:\n";
  int status = kBadInput;
  for (const Failure& failure : failures) {
    std::cerr << "  " << failure.message << '\n';
    if (failure.status == kIoFailure) status = kIoFailure;
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  CLI::App app(
      "Writes tsxml documents (native, PMML, StatXML) from JSON model "
      "descriptions.\nExit status: 0 success, 1 an I/O failure, 2 bad input.",
      "tsxml");
  app.set_version_flag("--version", "tsxml " TSXML_VERSION);
  app.require_subcommand(1);

  const std::vector<std::string> formats = {"native", "pmml", "statxml"};
  std::string format = "pmml";
  bool consistent = false;
  bool noTimeSeries = false;

  CLI::App* write = app.add_subcommand(
      "write",
      "Write the document of one description (a file, or - for "
      "standard input) to standard output or FILE.");
  std::string input;
  std::string output;
  write->add_option("--format", format, "Document format (default: pmml)")
      ->check(CLI::IsMember(formats));
  write->add_flag("--pmml-consistent", consistent,
                  "PMML that holds together as one document");
  write->add_flag("--no-time-series", noTimeSeries,
                  "Leave the observed series out of PMML smoothing models");
  write->add_option("-o,--output", output,
                    "Write to FILE, replaced only when the document is "
                    "complete");
  write->add_option("INPUT", input, "The description, or - for standard input")
      ->required();

  CLI::App* batch = app.add_subcommand(
      "batch",
      "Write one document per description into a directory "
      "(INPUT.json gives INPUT.xml), going on past bad inputs.");
  std::vector<std::string> inputs;
  std::string outDir;
  bool quiet = false;
  batch->add_option("--format", format, "Document format")
      ->check(CLI::IsMember(formats))
      ->required();
  batch->add_flag("--pmml-consistent", consistent,
                  "PMML that holds together as one document");
  batch->add_flag("--no-time-series", noTimeSeries,
                  "Leave the observed series out of PMML smoothing models");
  batch->add_option("--out-dir", outDir, "Directory of the documents")
      ->required();
  batch->add_flag("-q,--quiet", quiet, "No progress on standard error");
  batch->add_option("INPUT", inputs, "Description files")->required();

  CLI::App* schema = app.add_subcommand(
      "schema", "Print the JSON Schema (2020-12) of the description.");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    return status == 0 ? kSuccess : kBadInput;
  }

  tsxml_tool::WriteOptions options;
  tsxml_tool::ParseFormat(format, options.format);
  options.pmmlConsistent = consistent;
  options.timeSeries = !noTimeSeries;
  try {
    if (schema->parsed()) {
      std::cout << tsxml_tool::kSchema;
      std::cout.flush();
      if (!std::cout) throw IoError("cannot write standard output");
      return kSuccess;
    }
    if (write->parsed()) return RunWrite(input, output, options);
    return RunBatch(inputs, outDir, quiet, options);
  } catch (const IoError& error) {
    std::cerr << "tsxml: " << error.what() << '\n';
    return kIoFailure;
  } catch (const std::bad_alloc&) {
    std::cerr << "tsxml: out of memory\n";
    return kIoFailure;
  } catch (const std::exception& error) {
    std::cerr << "tsxml: " << error.what() << '\n';
    return kIoFailure;
  }
}
