// Every whole document that the tests expect (the files under tests/data/
// that begin with the XML declaration) is valid against the schema of its
// root element, but for the few that the default PMML mode writes outside
// the PMML schema, each named here with its reason; and the native schema is
// strict enough to refuse a misplaced element and a misspelt attribute.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "support/test_data.h"
#include "support/xmllint.h"

namespace {

namespace fs = std::filesystem;
using testing_support::ReadTestData;
using testing_support::SchemaErrors;
using testing_support::SchemaPath;

// The schema of each root element.
const std::map<std::string, std::string> kSchemas = {
    {"TSCXML", "time-series-1.0.xsd"},
    {"PMML", "pmml-4-2.xsd"},
    {"StatXML", "StatXML_7.0.xsd"},
};

// Documents the default PMML mode writes outside the schema, and why.
const std::map<std::string, std::string> kOutsideTheSchema = {
    {"tree/pmml_arima_unnamed.xml",
     "an empty dependent variable identifier gives a DataField and a "
     "MiningField without the name the schema requires"},
    {"tree/pmml_es_after_arima.xml",
     "it holds the ARIMA model of an empty dependent variable identifier, "
     "whose MiningField lacks the name the schema requires"},
};

// The name of the root element of `document`, empty when it has none.
std::string RootName(const std::string& document) {
  size_t at = document.find("?>");
  while ((at = document.find('<', at)) != std::string::npos) {
    if (document.compare(at, 2, "<!") != 0 &&
        document.compare(at, 2, "<?") != 0) {
      const size_t end = document.find_first_of(" \t\n/>", at + 1);
      return document.substr(at + 1, end - at - 1);
    }
    ++at;
  }
  return std::string();
}

TEST(SchemaTest, EveryExpectedDocumentIsValid) {
  TSXML_REQUIRE_XMLLINT();
  int validated = 0;
  for (const auto& entry :
       fs::recursive_directory_iterator(TSXML_TEST_DATA_DIR)) {
    if (entry.path().extension() != ".xml") continue;
    const std::string name =
        fs::relative(entry.path(), TSXML_TEST_DATA_DIR).generic_string();
    const std::string document = ReadTestData(name);
    if (document.rfind("<?xml", 0) != 0)
      continue;  // an element, not a document
    const auto schema = kSchemas.find(RootName(document));
    if (schema == kSchemas.end()) continue;  // no schema of ours
    const std::string errors =
        SchemaErrors(document, SchemaPath(schema->second));
    const auto outside = kOutsideTheSchema.find(name);
    if (outside == kOutsideTheSchema.end()) {
      EXPECT_EQ(errors, "") << name;
    } else {
      EXPECT_NE(errors, "") << name << " is valid now: " << outside->second;
    }
    ++validated;
  }
  EXPECT_GE(validated, 20);
}

// Replaces the first `from` in `text` by `to`.
std::string Replaced(std::string text, const std::string& from,
                     const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

TEST(SchemaTest, NativeSchemaRefusesMisplacedElementsAndMisspeltAttributes) {
  TSXML_REQUIRE_XMLLINT();
  const std::string schema = SchemaPath("time-series-1.0.xsd");
  const std::string document = ReadTestData("tree/seasonal.xml");
  ASSERT_EQ(SchemaErrors(document, schema), "");
  // DataDictionary before Header.
  const std::string swapped =
      Replaced(Replaced(document, "<Header>", "<DataDictionary/>\n\t<Header>"),
               "</Header>\n\t<DataDictionary/>", "</Header>");
  EXPECT_NE(SchemaErrors(swapped, schema), "");
  // The trend state before the level state.
  const std::string level = "<StateLevel>4.5</StateLevel>";
  const std::string trend = "<StateTrend>0.0125</StateTrend>";
  EXPECT_NE(SchemaErrors(Replaced(document, level + "\n\t\t\t" + trend,
                                  trend + "\n\t\t\t" + level),
                         schema),
            "");
  EXPECT_NE(
      SchemaErrors(Replaced(document, "variableID=", "variableId="), schema),
      "");
  EXPECT_NE(SchemaErrors(Replaced(document, "periodLength=", "periodLenght="),
                         schema),
            "");
}

}  // namespace
