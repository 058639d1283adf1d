// Validation of documents against the XML Schemas in schemas/ with xmllint
// (Debian's libxml2-utils).
#ifndef TSXML_TESTS_SUPPORT_XMLLINT_H
#define TSXML_TESTS_SUPPORT_XMLLINT_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace testing_support {

// The path of schemas/`name`.
inline std::string SchemaPath(const std::string& name) {
  return std::string(TSXML_SCHEMA_DIR) + "/" + name;
}

// Fails the test when xmllint is missing and CI is "true", skips it
// otherwise. Use as the first statement of a test: it returns from it.
#define TSXML_REQUIRE_XMLLINT()                                            \
  do {                                                                     \
    if (std::system("xmllint --version >/dev/null 2>&1") != 0) {           \
      const char* ci = std::getenv("CI");                                  \
      if (ci != nullptr && std::string(ci) == "true") {                    \
        FAIL() << "xmllint (Debian package libxml2-utils) is missing";     \
      }                                                                    \
      GTEST_SKIP() << "xmllint (Debian package libxml2-utils) is missing"; \
    }                                                                      \
  } while (false)

// What xmllint says when it finds `document` invalid against `schema` (a
// path); empty when the document is valid.
inline std::string SchemaErrors(const std::string& document,
                                const std::string& schema) {
  static std::atomic<unsigned> counter{0};
  const std::string path = ::testing::TempDir() + "tsxml_schema_" +
                           std::to_string(::getpid()) + "_" +
                           std::to_string(++counter);
  std::ofstream(path + ".xml", std::ios::binary) << document;
  const std::string command = "xmllint --noout --schema '" + schema + "' '" +
                              path + ".xml' >'" + path + ".out' 2>&1";
  const bool valid = std::system(command.c_str()) == 0;
  std::ostringstream said;
  if (!valid) said << std::ifstream(path + ".out").rdbuf() << " ";
  std::remove((path + ".xml").c_str());
  std::remove((path + ".out").c_str());
  return said.str();
}

}  // namespace testing_support

#endif  // TSXML_TESTS_SUPPORT_XMLLINT_H
