// PMML documents of every model kind, checked against the PMML 4.2 schema
// with xmllint in both forms: the consistent form always validates, and the
// default form does unless its case names why not. Without xmllint or the
// schema the tests fail when CI=true and are skipped elsewhere.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <utility>

#include "tree/pmml_schema_cases.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/xml/number_text.h"

#ifndef TSXML_PMML_SCHEMA
#error "TSXML_PMML_SCHEMA must name the PMML 4.2 schema file"
#endif

namespace {

class SchemaValidationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string missing;
    if (!std::ifstream(TSXML_PMML_SCHEMA).good()) {
      missing = std::string("the schema ") + TSXML_PMML_SCHEMA;
    } else if (std::system("xmllint --version >/dev/null 2>&1") != 0) {
      missing = "xmllint (Debian package libxml2-utils)";
    }
    if (missing.empty()) return;
    const char* ci = std::getenv("CI");
    if (ci != nullptr && std::string(ci) == "true") {
      FAIL() << "missing " << missing;
    }
    GTEST_SKIP() << "missing " << missing;
  }

  // Whether xmllint finds `document` valid against the schema; when it
  // doesn't and `what` is given, the test fails with what xmllint said.
  static bool Validate(const std::string& document,
                       const std::string& what = "") {
    static int counter = 0;
    const std::string path = ::testing::TempDir() + "tsxml_pmml_" +
                             std::to_string(getpid()) + "_" +
                             std::to_string(counter++);
    std::ofstream(path + ".xml", std::ios::binary) << document;
    const bool valid =
        std::system(("xmllint --noout --schema '" TSXML_PMML_SCHEMA "' '" +
                     path + ".xml' >'" + path + ".out' 2>&1")
                        .c_str()) == 0;
    if (!valid && !what.empty()) {
      ADD_FAILURE() << what << ":\n"
                    << std::ifstream(path + ".out").rdbuf() << "\n"
                    << document;
    }
    std::remove((path + ".xml").c_str());
    std::remove((path + ".out").c_str());
    return valid;
  }
};

// Replaces the first `from` after `after` by `to` (throws if absent).
std::string Patch(std::string text, const std::string& after,
                  const std::string& from, const std::string& to) {
  return text.replace(text.find(from, text.find(after)), from.size(), to);
}

// Every case in both forms. The consistent form validates always; the
// default form validates unless the case says why not, and then it must
// fail, so that a reason that no longer holds is noticed.
TEST_F(SchemaValidationTest, EveryCaseInBothForms) {
  const std::vector<pmml_cases::Case> cases = pmml_cases::AllCases();
  ASSERT_GT(cases.size(), 90u);
  for (const pmml_cases::Case& c : cases) {
    const std::string standard = pmml_cases::WriteCase(c, false);
    EXPECT_NE(standard.find(c.holds), std::string::npos) << c.name;
    if (c.outsideReason.empty()) {
      Validate(standard, c.name);
    } else {
      EXPECT_FALSE(Validate(standard)) << c.name << ": " << c.outsideReason;
    }
    Validate(pmml_cases::WriteCase(c, true), c.name + ", consistent");
  }
}

// Replaces every `from` by `to`.
std::string ReplaceAll(std::string text, const std::string& from,
                       const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// The default document of a case outside the schema mended in the parts
// that the reasons name: an (empty) "Array" where a seasonal state lacks
// one, the schema's spellings of infinities and NaN in attributes, and an
// empty name in each field element without one.
std::string Mend(std::string text) {
  for (const char* word : {"type=\"additive\"", "type=\"multiplicative\""}) {
    const std::string bare = std::string(word) + "/>";
    const size_t season = text.find("<Seasonality_ExpoSmooth");
    if (season != std::string::npos &&
        text.find(bare, season) != std::string::npos) {
      text = Patch(text, "<Seasonality_ExpoSmooth", bare,
                   std::string(word) +
                       "><Array type=\"real\"/></Seasonality_ExpoSmooth>");
    }
  }
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::pair<double, const char*> spellings[] = {
      {inf, "INF"}, {-inf, "-INF"}, {nan, "NaN"}};
  for (const auto& [value, spelling] : spellings) {
    text = ReplaceAll(
        text, "=\"" + OstraTimeXML::Format(value, false, nullptr) + "\"",
        std::string("=\"") + spelling + "\"");
  }
  for (const std::string tag : {"<MiningField", "<DataField"}) {
    for (size_t at = text.find(tag); at != std::string::npos;
         at = text.find(tag, at + 1)) {
      const size_t end = text.find('>', at);
      if (text.substr(at, end - at).find("name=\"") == std::string::npos) {
        text.insert(at + tag.size(), " name=\"\"");
      }
    }
  }
  return text;
}

// Each reason is the whole of what puts a default document outside the
// schema: mended in the parts that the reasons name, it validates.
TEST_F(SchemaValidationTest, EachReasonIsTheOnlyInvalidPart) {
  int outside = 0;
  for (const pmml_cases::Case& c : pmml_cases::AllCases()) {
    if (c.outsideReason.empty()) continue;
    ++outside;
    Validate(Mend(pmml_cases::WriteCase(c, false)), c.name + ", mended");
  }
  EXPECT_GE(outside, 10);
}

}  // namespace
