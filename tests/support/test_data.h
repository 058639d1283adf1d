// Expected documents and transcripts kept as files under tests/data/.
#ifndef TSXML_TESTS_SUPPORT_TEST_DATA_H
#define TSXML_TESTS_SUPPORT_TEST_DATA_H

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace testing_support {

// The bytes of tests/data/`name`, without the one line feed that ends the
// file (a document's own last line has none). A missing file fails the test.
inline std::string ReadTestData(const std::string& name) {
  std::ifstream in(std::string(TSXML_TEST_DATA_DIR) + "/" + name,
                   std::ios::binary);
  if (!in) {
    ADD_FAILURE() << "no test data file " << name;
    return std::string();
  }
  std::ostringstream bytes;
  bytes << in.rdbuf();
  std::string text = bytes.str();
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

// `text` run again: each line "command => result" gets the result that
// `run` gives for its command; other lines and those that begin with "#" stay
// as they are. A test compares the result with `text`.
template <typename Run>
std::string RunTranscript(const std::string& text, Run run) {
  std::istringstream lines(text);
  std::string out, line;
  while (std::getline(lines, line)) {
    const size_t arrow = line.find(" => ");
    out += out.empty() ? "" : "\n";
    if (arrow == std::string::npos || line.rfind('#', 0) == 0) {
      out += line;
      continue;
    }
    SCOPED_TRACE(line);
    const std::string command = line.substr(0, arrow);
    out += command + " => " + run(command);
  }
  return out;
}

}  // namespace testing_support

#endif  // TSXML_TESTS_SUPPORT_TEST_DATA_H
