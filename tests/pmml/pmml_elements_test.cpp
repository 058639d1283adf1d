#include "pmml/pmml_elements.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <valarray>
#include <vector>

#include "modelapi/missing_value.h"
#include "support/model_fixtures.h"
#include "xml/number_text.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::Lines;
using testing_support::Text;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMissing = MV::gMissingValue;

std::unique_ptr<XMLElement> Element(const char* name = "p") {
  return std::unique_ptr<XMLElement>(XMLElement::Create(name));
}

std::string Infinity() { return OstraTimeXML::Format(kInf, false, nullptr); }

TEST(PMMLNumberTextTest, MissingIsEmptyAndOthersAreNumberText) {
  EXPECT_EQ(tsxml::PMMLNumberText(kMissing), "");
  EXPECT_EQ(tsxml::PMMLNumberText(0), "0");
  EXPECT_EQ(tsxml::PMMLNumberText(-2.5), "-2.5");
  EXPECT_EQ(tsxml::PMMLNumberText(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(tsxml::PMMLNumberText(kInf), Infinity());
  EXPECT_EQ(tsxml::PMMLNumberText(-kInf), "-" + Infinity());
}

TEST(OptionalAttributeTest, EmptyNamesAndValuesAndMissingNumbersAreLeftOut) {
  auto p = Element();
  tsxml::AddOptionalAttribute(*p, "", "v");
  tsxml::AddOptionalAttribute(*p, "a", "");
  tsxml::AddOptionalAttribute(*p, "b", "v");
  tsxml::AddIntegerAttribute(*p, "c", 0);
  tsxml::AddIntegerAttribute(*p, "d", -2147483647 - 1);
  tsxml::AddDoubleAttribute(*p, "e", kMissing);
  tsxml::AddDoubleAttribute(*p, "f", 0.125);
  EXPECT_EQ(Text(*p), Lines({"<p", "\tb=\"v\"", "\tc=\"0\"",
                             "\td=\"-2147483648\"", "\tf=\"0.125\"/>"}));
}

TEST(ChildElementTest, PairsInOrderAndGivenBack) {
  auto p = Element();
  XMLElement* child = tsxml::AddChildElement(*p, "C", "a", "1", "", "x", "b",
                                             "", "c", "3", "d", "4");
  tsxml::AddChildElement(*child, "D");
  EXPECT_EQ(Text(*p), Lines({"<p>", "\t<C", "\t\ta=\"1\"", "\t\tc=\"3\"",
                             "\t\td=\"4\">", "\t\t<D/>", "\t</C>", "</p>"}));
}

TEST(FieldElementTest, MiningAndDataFieldsLeaveEmptyValuesOut) {
  auto p = Element();
  tsxml::AddMiningField(*p, "y", "predicted");
  tsxml::AddMiningField(*p, "x", "");
  tsxml::AddDataField(*p, "y");
  tsxml::AddDataField(*p, "");
  EXPECT_EQ(Text(*p),
            Lines({"<p>", "\t<MiningField", "\t\tname=\"y\"",
                   "\t\tusageType=\"predicted\"/>", "\t<MiningField",
                   "\t\tname=\"x\"/>", "\t<DataField",
                   "\t\tdataType=\"double\"", "\t\toptype=\"continuous\"",
                   "\t\tname=\"y\"", "\t\tdisplayName=\"y\"/>", "\t<DataField",
                   "\t\tdataType=\"double\"", "\t\toptype=\"continuous\"/>",
                   "</p>"}));
}

TEST(ExtensionTest, ValueAndContainerForms) {
  auto p = Element();
  tsxml::AddValueExtension(*p, "errVariance", 2.5);
  tsxml::AddValueExtension(*p, "", kMissing);
  tsxml::AddContainerExtension(*p, "");
  XMLElement* container = tsxml::AddContainerExtension(*p, "initSeason");
  tsxml::AddChildElement(*container, "X");
  EXPECT_EQ(
      Text(*p),
      Lines({"<p>", "\t<Extension", "\t\textender=\"tsxml.example\"",
             "\t\tname=\"errVariance\"", "\t\tvalue=\"2.5\"/>", "\t<Extension",
             "\t\textender=\"tsxml.example\"", "\t\tname=\"\"",
             "\t\tvalue=\"-1.79769313486232e+308\"/>", "\t<Extension",
             "\t\textender=\"tsxml.example\"/>", "\t<Extension",
             "\t\textender=\"tsxml.example\"", "\t\tname=\"initSeason\">",
             "\t\t<X/>", "\t</Extension>", "</p>"}));
}

TEST(DoubleListTextTest, MissingReadsNaNAndInfinityIsNotReplaced) {
  auto p = Element();
  tsxml::AddDoubleListText(*p, nullptr, 3);
  const double values[] = {1, kMissing, 2.5, kInf, -kInf};
  tsxml::AddDoubleListText(*p, values, 0);
  EXPECT_EQ(Text(*p), "\n<p/>");
  tsxml::AddDoubleListText(*p, values, 5);
  EXPECT_EQ(Text(*p),
            "\n<p>1 NaN 2.5 " + Infinity() + " -" + Infinity() + "</p>");
  auto q = Element();
  const double allMissing[] = {kMissing, kMissing};
  tsxml::AddDoubleListText(*q, allMissing, 2);
  EXPECT_EQ(Text(*q), "\n<p>NaN NaN</p>");
}

TEST(RealArrayTest, BothOverloadsAndTheEmptyArray) {
  auto p = Element();
  tsxml::AddRealArray(*p, std::valarray<double>{0.5, 2});
  tsxml::AddRealArray(*p, std::vector<double>{});
  tsxml::AddArrayElement(*p, "AR", std::vector<double>{0, 0, 0.25});
  XMLElement* wrapper =
      tsxml::AddArrayElement(*p, "MA", std::valarray<double>{});
  tsxml::AddChildElement(*wrapper, "Y");
  EXPECT_EQ(Text(*p),
            Lines({"<p>", "\t<Array", "\t\tn=\"2\"",
                   "\t\ttype=\"real\">0.5 2</Array>", "\t<Array", "\t\tn=\"0\"",
                   "\t\ttype=\"real\"/>", "\t<AR>", "\t\t<Array",
                   "\t\t\tn=\"3\"", "\t\t\ttype=\"real\">0 0 0.25</Array>",
                   "\t</AR>", "\t<MA>", "\t\t<Array", "\t\t\tn=\"0\"",
                   "\t\t\ttype=\"real\"/>", "\t\t<Y/>", "\t</MA>", "</p>"}));
}

TEST(WordTableTest, TransformationAndOutlierWords) {
  EXPECT_EQ(tsxml::TransformationName(0), "none");
  EXPECT_EQ(tsxml::TransformationName(1), "logarithmic");
  EXPECT_EQ(tsxml::TransformationName(2), "squareroot");
  EXPECT_EQ(tsxml::TransformationName(3), "none");
  const char* const outliers[] = {"none",         "additive",         "level",
                                  "transient",    "seasonalAdditive", "trend",
                                  "innovational", "varianceChange"};
  for (unsigned type = 0; type < 8; ++type) {
    EXPECT_EQ(tsxml::OutlierTypeName(type), outliers[type]) << type;
  }
  EXPECT_EQ(tsxml::OutlierTypeName(8), "");
  EXPECT_EQ(tsxml::OutlierTypeName(0xFFFFFFFFu), "");
  // An outlier of a type without a word gets no "type" attribute.
  auto effect = Element("OutlierEffect");
  tsxml::AddOptionalAttribute(*effect, "type", tsxml::OutlierTypeName(8));
  EXPECT_EQ(Text(*effect), "\n<OutlierEffect/>");
}

}  // namespace
