// What the tool's tests share: the table of bad inputs and the writer's
// documents.
#ifndef TSXML_TESTS_TOOLS_TOOLS_TEST_H
#define TSXML_TESTS_TOOLS_TOOLS_TEST_H

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/test_data.h"
#include "tools/tsxml/description.h"
#include "tools/tsxml/write.h"

namespace tsxml_tool_test {

// A row of tests/data/tools/bad_inputs.tsv, with the bytes of its file under
// tests/data/tools/bad/.
struct BadInput {
  std::string file, format;  // native, pmml, pmml-consistent or statxml
  int status = 0;
  std::size_t line = 0, column = 0;  // 0 unless a syntax error
  std::string pointer, message, bytes;
};

inline std::vector<BadInput> ReadBadInputs() {
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

inline tsxml_tool::WriteOptions Options(tsxml_tool::Format format,
                                        bool consistent = false,
                                        bool timeSeries = true) {
  tsxml_tool::WriteOptions options;
  options.format = format;
  options.pmmlConsistent = consistent;
  options.timeSeries = timeSeries;
  return options;
}

// The document of `json` as the writer writes it, or the error it refuses
// the description with.
inline std::string DocumentOf(const std::string& json,
                              const tsxml_tool::WriteOptions& options) {
  std::ostringstream out;
  try {
    tsxml_tool::WriteDocument(tsxml_tool::ReadDescription(json), options, out);
  } catch (const tsxml_tool::DescriptionError& error) {
    return error.what();
  }
  return out.str();
}

}  // namespace tsxml_tool_test

#endif  // TSXML_TESTS_TOOLS_TOOLS_TEST_H
