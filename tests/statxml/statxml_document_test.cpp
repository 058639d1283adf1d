// The StatXML elements, and a document refusing an empty handle; the tree
// tests compare whole documents.
#include "tsxml/statxml/statxml_document.h"

#include <gtest/gtest.h>

#include <sstream>
#include <valarray>
#include <vector>

#include "support/model_fixtures.h"

namespace {

using testing_support::Element;
using testing_support::Lines;
using testing_support::Text;

TEST(StatXMLElementsTest, StatisticNeedsNameAndValue) {
  auto parent = Element();
  tsxml::AddStatXMLStatistic(*parent, "MSE", "");
  tsxml::AddStatXMLStatistic(*parent, "", "1");
  tsxml::AddStatXMLStatistic(*parent, "RMSE", "2.5");
  EXPECT_EQ(Text(*parent), Lines({"<p>", "\t<Statistic", "\t\tname=\"RMSE\"",
                                  "\t\tvalue=\"2.5\"/>", "</p>"}));
}

TEST(StatXMLElementsTest, CoordinatesWriteMissingValuesAsNaN) {
  auto fromVector = Element(), fromValarray = Element();
  tsxml::AddCoordinates(*fromVector, "StdErr",
                        std::vector<double>{0.5, MV::gMissingValue, -1.25});
  tsxml::AddCoordinates(*fromValarray, "StdErr",
                        std::valarray<double>{0.5, MV::gMissingValue, -1.25});
  EXPECT_EQ(Text(*fromVector),
            Lines({"<p>", "\t<Coordinates", "\t\tfeature=\"statistic\"",
                   "\t\tstatistic=\"StdErr\">", "\t\t<Array", "\t\t\tn=\"3\"",
                   "\t\t\ttype=\"real\">0.5 NaN -1.25</Array>",
                   "\t</Coordinates>", "</p>"}));
  EXPECT_EQ(Text(*fromValarray), Text(*fromVector));
}

TEST(StatXMLDocumentTest, EmptyHandleIsRefused) {
  tsxml::TSXStatXMLDocument document;
  EXPECT_FALSE(document.AddModel(TSFModel(), TSXDictionaryRefs()));
  std::ostringstream out;
  EXPECT_FALSE(document.Write(out));
  EXPECT_EQ(out.str(), "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>");
}

}  // namespace
