// PMML documents of every exponential smoothing type, checked against the
// PMML 4.2 schema with xmllint. Without xmllint or the schema the tests fail
// when CI=true and are skipped elsewhere.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

#include "pmml/pmml_test_util.h"
#include "support/date_spec_fixtures.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/xml/number_text.h"

#ifndef TSXML_PMML_SCHEMA
#error "TSXML_PMML_SCHEMA must name the PMML 4.2 schema file"
#endif

namespace {

using pmml_test::IsSeasonal;
using pmml_test::MakeTypeModel;
using pmml_test::ModelOptions;

constexpr int kTypeCount = 7;
const char* const kTypeNames[kTypeCount] = {
    "ESAdditiveWinters",       "ESBrown",          "ESDampedTrend", "ESHolt",
    "ESMultiplicativeWinters", "ESSimpleSeasonal", "ESSimple"};

bool HasTrend(int type) {
  return type != ESModelSpec::ESSimpleSeasonal && type != ESModelSpec::ESSimple;
}

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

  // Whether xmllint finds `document` valid against the schema; what it said
  // goes to `output`.
  static bool Validate(const std::string& document,
                       std::string* output = nullptr) {
    static int counter = 0;
    const std::string path = ::testing::TempDir() + "tsxml_pmml_" +
                             std::to_string(getpid()) + "_" +
                             std::to_string(counter++) + ".xml";
    std::ofstream(path, std::ios::binary) << document;
    const std::string command = std::string("xmllint --noout --schema '") +
                                TSXML_PMML_SCHEMA + "' '" + path + "' 2>&1";
    bool valid = false;
    if (FILE* pipe = popen(command.c_str(), "r")) {
      char buffer[512];
      size_t size;
      while ((size = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        if (output != nullptr) output->append(buffer, size);
      }
      const int status = pclose(pipe);
      valid = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    std::remove(path.c_str());
    return valid;
  }

  static void ExpectValid(const std::string& what,
                          const std::string& document) {
    std::string output;
    EXPECT_TRUE(Validate(document, &output)) << what << ":\n"
                                             << output << "\n"
                                             << document;
  }
};

// Registers three date specifications: years and months from March 2001, a
// five-day week with a gap and a first case day, and hours of the day (the
// last one sets the time field, of type "time").
void AddDateSpecs(TSXMLTree& tree) {
  tree.AddDateSpec(testing_support::MonthlyDateSpec(2001, 2), "monthly & more");

  TSXDateSpec days(TSXDateSpec::Week);
  days.AddPeriod(TSXDateSpec::Day, 7, 0, 5);
  days.AddGap(3);
  days.SetFirstCaseDay(5, 3, 2024);
  tree.AddDateSpec(days, "");

  TSXDateSpec hours(TSXDateSpec::Day);
  hours.AddPeriod(TSXDateSpec::Hour, 24, 0, 0);
  hours.SetLowestIncrement(2);
  tree.AddDateSpec(hours, "every other hour");
}

// A PMML tree with the models of `types`, each on its own variable.
std::string Document(std::initializer_list<int> types,
                     const ModelOptions& options = {}, bool timeSeries = true,
                     bool dateSpecs = true) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.SetESPMMLOutputTimeValue(timeSeries);
  if (dateSpecs) AddDateSpecs(tree);
  for (const int type : types) {
    tree.AddModelTree(MakeTypeModel(type, options),
                      TSXDictionaryRefs(kTypeNames[type], "", "y"));
  }
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

// Replaces the first `from` after `after` by `to`; fails the test if absent.
std::string Patch(std::string text, const std::string& after,
                  const std::string& from, const std::string& to) {
  const size_t start = text.find(after);
  const size_t at = start == std::string::npos ? start : text.find(from, start);
  if (at == std::string::npos) {
    ADD_FAILURE() << "no " << from << " after " << after;
    return text;
  }
  return text.replace(at, from.size(), to);
}

TEST_F(SchemaValidationTest, EveryTypeWithAndWithoutTimeSeriesAndDateSpecs) {
  ModelOptions options;
  options.history = {3, 4.5, MV::gMissingValue, 6};  // a missing observation
  for (int type = 0; type < kTypeCount; ++type) {
    for (const bool timeSeries : {true, false}) {
      for (const bool dateSpecs : {true, false}) {
        const std::string document =
            Document({type}, options, timeSeries, dateSpecs);
        ASSERT_EQ(document.find("<TimeValue") != std::string::npos, timeSeries);
        ASSERT_EQ(document.find("<DateSpecification") != std::string::npos,
                  dateSpecs);
        ExpectValid(std::string(kTypeNames[type]) +
                        (timeSeries ? " with" : " without") + " TimeSeries," +
                        (dateSpecs ? " with" : " without") + " date specs",
                    document);
      }
    }
  }
}

TEST_F(SchemaValidationTest, AllTypesInOneDocumentAndTheEmptyDocument) {
  ModelOptions options;
  options.history = {1, 2, 3};
  options.seasonLength = 12;
  ExpectValid("seven models", Document({0, 1, 2, 3, 4, 5, 6}, options));
  ExpectValid("no model", Document({}));
  ExpectValid("no model, no date specs", Document({}, {}, true, false));
}

// A seasonal model whose final state lacks a level, a trend or a seasonal
// value writes "Seasonality_ExpoSmooth" without the "Array" the schema
// requires (the values aren't known): outside the schema, but valid with an
// empty array put in. The other types stay inside the schema.
TEST_F(SchemaValidationTest, MissingValuesInTheFinalState) {
  for (int type = 0; type < kTypeCount; ++type) {
    for (const std::string missing : {"level", "trend", "a seasonal value"}) {
      ModelOptions options;
      options.missingLevel = missing == "level";
      options.missingTrend = missing == "trend";
      options.missingSeasonal = missing == "a seasonal value";
      if ((options.missingTrend && !HasTrend(type)) ||
          (options.missingSeasonal && !IsSeasonal(type))) {
        continue;
      }
      const std::string what = kTypeNames[type] + (" missing " + missing);
      const std::string document = Document({type}, options);
      if (!IsSeasonal(type)) {
        ExpectValid(what, document);
        continue;
      }
      EXPECT_FALSE(Validate(document)) << what;
      const std::string typeWord = type == ESModelSpec::ESMultiplicativeWinters
                                       ? "type=\"multiplicative\""
                                       : "type=\"additive\"";
      ExpectValid(
          what + ", array put in",
          Patch(document, "<Seasonality_ExpoSmooth", typeWord + "/>",
                typeWord + "><Array type=\"real\"/></Seasonality_ExpoSmooth>"));
    }
  }
}

// An infinite RMSE is written as the standard library prints it ("inf"),
// which is no xs:double of the schema; the schema's own spelling "INF" in its
// place makes the document valid. In array text and extension values, which
// the schema reads as strings, the same text is valid.
TEST_F(SchemaValidationTest, InfiniteRMSEIsTheOnlyInvalidPart) {
  const double inf = std::numeric_limits<double>::infinity();
  const std::string infText = OstraTimeXML::Format(inf, false, nullptr);
  ESModelSpec spec(ESModelSpec::ESAdditiveWinters, 2);
  EstimationInfo info = testing_support::BasicInfo();
  info.SetGOFStat(BFSharedConst::RMSE, inf);
  info.SetErrorVariance(inf);
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.AddModelTree(
      testing_support::MakeESModel(spec, {0.5, 0.25, 0.125}, {},
                                   WIESSmState(1, 0, 0, {inf, -inf}), info, {},
                                   WIESSmState(1, 0, 0, {1, inf})),
      TSXDictionaryRefs("Inf", "", "y"));
  std::ostringstream out;
  tree.WriteToStream(out);
  const std::string document = out.str();
  ASSERT_NE(document.find("RMSE=\"" + infText + "\""), std::string::npos);
  EXPECT_FALSE(Validate(document));
  ExpectValid("RMSE spelled INF",
              Patch(document, "<ExponentialSmoothing",
                    "RMSE=\"" + infText + "\"", "RMSE=\"INF\""));
}

}  // namespace
