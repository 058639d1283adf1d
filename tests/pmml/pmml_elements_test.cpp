// The small builders, at the edges that the documents of the other tests do
// not reach: empty names and values, missing numbers and empty arrays.
#include "tsxml/pmml/pmml_elements.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <valarray>
#include <vector>

#include "support/model_fixtures.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/xml/number_text.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::Element;
using testing_support::Lines;
using testing_support::Text;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMissing = MV::gMissingValue;

const std::string kInfText = OstraTimeXML::Format(kInf, false, nullptr);

TEST(PMMLElementsTest, NumberTextAndWordTables) {
  EXPECT_EQ(tsxml::PMMLNumberText(kMissing), "");
  EXPECT_EQ(tsxml::PMMLNumberText(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(tsxml::PMMLNumberText(-kInf), "-" + kInfText);
  EXPECT_EQ(tsxml::TransformationName(1), "logarithmic");
  EXPECT_EQ(tsxml::TransformationName(3), "none");
  EXPECT_EQ(tsxml::OutlierTypeName(0), "none");
  EXPECT_EQ(tsxml::OutlierTypeName(7), "varianceChange");
  EXPECT_EQ(tsxml::OutlierTypeName(8), "");
  EXPECT_EQ(tsxml::OutlierTypeName(0xFFFFFFFFu), "");
}

TEST(PMMLElementsTest, EmptyNamesValuesAndMissingNumbersAreLeftOut) {
  auto p = Element();
  tsxml::AddOptionalAttribute(*p, "", "v");
  tsxml::AddOptionalAttribute(*p, "a", "");
  tsxml::AddOptionalAttribute(*p, "b", "v");
  tsxml::AddIntegerAttribute(*p, "c", 0);
  tsxml::AddIntegerAttribute(*p, "d", -2147483647 - 1);
  tsxml::AddDoubleAttribute(*p, "e", kMissing);
  tsxml::AddDoubleAttribute(*p, "f", 0.125);
  XMLElement* child = tsxml::AddChildElement(*p, "C", "a", "1", "", "x", "b",
                                             "", "c", "3", "d", "4");
  tsxml::AddChildElement(*child, "D");
  tsxml::AddMiningField(*p, "x", "");
  tsxml::AddDataField(*p, "");
  // A value extension keeps an empty name and writes the missing value.
  tsxml::AddValueExtension(*p, "", kMissing);
  tsxml::AddContainerExtension(*p, "");
  EXPECT_EQ(Text(*p), Lines({"<p",
                             "\tb=\"v\"",
                             "\tc=\"0\"",
                             "\td=\"-2147483648\"",
                             "\tf=\"0.125\">",
                             "\t<C",
                             "\t\ta=\"1\"",
                             "\t\tc=\"3\"",
                             "\t\td=\"4\">",
                             "\t\t<D/>",
                             "\t</C>",
                             "\t<MiningField",
                             "\t\tname=\"x\"/>",
                             "\t<DataField",
                             "\t\tdataType=\"double\"",
                             "\t\toptype=\"continuous\"/>",
                             "\t<Extension",
                             "\t\textender=\"tsxml.example\"",
                             "\t\tname=\"\"",
                             "\t\tvalue=\"-1.79769313486232e+308\"/>",
                             "\t<Extension",
                             "\t\textender=\"tsxml.example\"/>",
                             "</p>"}));
}

TEST(PMMLElementsTest, ListTextReadsNaNForMissingAndKeepsInfinity) {
  auto p = Element();
  tsxml::AddDoubleListText(*p, nullptr, 3);
  const double values[] = {1, kMissing, 2.5, kInf, -kInf};
  tsxml::AddDoubleListText(*p, values, 0);
  EXPECT_EQ(Text(*p), "\n<p/>");
  tsxml::AddDoubleListText(*p, values, 5);
  EXPECT_EQ(Text(*p), "\n<p>1 NaN 2.5 " + kInfText + " -" + kInfText + "</p>");
}

TEST(PMMLElementsTest, ArraysEmptyAndWrapped) {
  auto p = Element();
  tsxml::AddRealArray(*p, std::vector<double>{});
  tsxml::AddArrayElement(*p, "AR", std::vector<double>{0, 0, 0.25});
  XMLElement* wrapper =
      tsxml::AddArrayElement(*p, "MA", std::valarray<double>{});
  tsxml::AddChildElement(*wrapper, "Y");
  EXPECT_EQ(Text(*p),
            Lines({"<p>", "\t<Array", "\t\tn=\"0\"", "\t\ttype=\"real\"/>",
                   "\t<AR>", "\t\t<Array", "\t\t\tn=\"3\"",
                   "\t\t\ttype=\"real\">0 0 0.25</Array>", "\t</AR>", "\t<MA>",
                   "\t\t<Array", "\t\t\tn=\"0\"", "\t\t\ttype=\"real\"/>",
                   "\t\t<Y/>", "\t</MA>", "</p>"}));
}

}  // namespace
