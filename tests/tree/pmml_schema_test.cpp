// PMML documents of every exponential smoothing type, checked against the
// PMML 4.2 schema with xmllint. Without xmllint or the schema the tests fail
// when CI=true and are skipped elsewhere.
#include <gtest/gtest.h>
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

// Replaces the first `from` after `after` by `to` (throws if absent).
std::string Patch(std::string text, const std::string& after,
                  const std::string& from, const std::string& to) {
  return text.replace(text.find(from, text.find(after)), from.size(), to);
}

// Each type alone with and without TimeSeries and date specifications, all
// seven in one document, and the document without models.
TEST_F(SchemaValidationTest, EveryTypeAndTheEmptyDocument) {
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
        Validate(document, kTypeNames[type] + std::to_string(timeSeries) +
                               std::to_string(dateSpecs));
      }
    }
  }
  options.seasonLength = 12;
  Validate(Document({0, 1, 2, 3, 4, 5, 6}, options), "seven models");
  Validate(Document({}), "no model");
  Validate(Document({}, {}, true, false), "no model, no date specs");
}

// A seasonal model whose final state lacks a level, a trend or a seasonal
// value writes "Seasonality_ExpoSmooth" without the "Array" the schema
// requires (the values aren't known): outside the schema, but valid with an
// empty array put in. The other types stay inside the schema.
TEST_F(SchemaValidationTest, MissingValuesInTheFinalState) {
  for (int type = 0; type < kTypeCount; ++type) {
    for (int missing = 0; missing < 3; ++missing) {
      ModelOptions options;
      options.missingLevel = missing == 0;
      options.missingTrend = missing == 1;
      options.missingSeasonal = missing == 2;
      if ((missing == 1 && !HasTrend(type)) ||
          (missing == 2 && !IsSeasonal(type))) {
        continue;
      }
      const std::string what = kTypeNames[type] + std::to_string(missing);
      const std::string document = Document({type}, options);
      if (!IsSeasonal(type)) {
        Validate(document, what);
        continue;
      }
      EXPECT_FALSE(Validate(document)) << what;
      const std::string word = type == ESModelSpec::ESMultiplicativeWinters
                                   ? "type=\"multiplicative\""
                                   : "type=\"additive\"";
      Validate(Patch(document, "<Seasonality_ExpoSmooth", word + "/>",
                     word + "><Array type=\"real\"/></Seasonality_ExpoSmooth>"),
               what + ", array put in");
    }
  }
}

// An infinite RMSE is written as the standard library prints it ("inf"),
// which is no xs:double of the schema; the schema's own spelling "INF" in its
// place makes the document valid. In array text and extension values, which
// the schema reads as strings, the same text is valid.
TEST_F(SchemaValidationTest, InfiniteRMSEIsTheOnlyInvalidPart) {
  const double inf = std::numeric_limits<double>::infinity();
  const std::string rmse =
      "RMSE=\"" + OstraTimeXML::Format(inf, false, nullptr) + "\"";
  EstimationInfo info = testing_support::BasicInfo();
  info.SetGOFStat(BFSharedConst::RMSE, inf);
  info.SetErrorVariance(inf);
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.AddModelTree(
      testing_support::MakeESModel(
          ESModelSpec(ESModelSpec::ESAdditiveWinters, 2), {0.5, 0.25, 0.125},
          {}, WIESSmState(1, 0, 0, {inf, -inf}), info, {},
          WIESSmState(1, 0, 0, {1, inf})),
      TSXDictionaryRefs("Inf", "", "y"));
  std::ostringstream out;
  tree.WriteToStream(out);
  ASSERT_NE(out.str().find(rmse), std::string::npos);
  EXPECT_FALSE(Validate(out.str()));
  Validate(Patch(out.str(), "<ExponentialSmoothing", rmse, "RMSE=\"INF\""),
           "RMSE spelled INF");
}

}  // namespace
