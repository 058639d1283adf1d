// Expected documents kept as files under tests/data/.
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

}  // namespace testing_support

#endif  // TSXML_TESTS_SUPPORT_TEST_DATA_H
