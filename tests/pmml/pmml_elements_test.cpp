// The small builders, at the edges that the documents of the other tests do
// not reach: empty names and values, missing numbers and empty arrays.
#include "tsxml/pmml/pmml_elements.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <valarray>
#include <vector>

#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/base/missing_value.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::Element;
using testing_support::Text;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMissing = MV::gMissingValue;

// Missing numbers: no text alone, "NaN" in a list; infinities keep the
// number text.
TEST(PMMLElementsTest, NumberTextsAndWordTables) {
  EXPECT_EQ(tsxml::PMMLNumberText(kMissing), "");
  EXPECT_EQ(tsxml::PMMLNumberText(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(tsxml::PMMLNumberText(-kInf), "-inf");
  auto p = Element();
  tsxml::AddDoubleListText(*p, nullptr, 3);
  const double values[] = {1, kMissing, 2.5, kInf, -kInf};
  tsxml::AddDoubleListText(*p, values, 0);
  EXPECT_EQ(Text(*p), "\n<p/>");
  tsxml::AddDoubleListText(*p, values, 5);
  EXPECT_EQ(Text(*p), "\n<p>1 NaN 2.5 inf -inf</p>");
  EXPECT_EQ(tsxml::TransformationName(1), "logarithmic");
  EXPECT_EQ(tsxml::TransformationName(3), "none");
  EXPECT_EQ(tsxml::OutlierTypeName(0), "none");
  EXPECT_EQ(tsxml::OutlierTypeName(7), "varianceChange");
  EXPECT_EQ(tsxml::OutlierTypeName(8), "");
  EXPECT_EQ(tsxml::OutlierTypeName(0xFFFFFFFFu), "");
}

// Empty names and values and missing numbers left out, arrays empty and
// wrapped.
TEST(PMMLElementsTest, BuildersUnderOneParent) {
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
  tsxml::AddRealArray(*p, std::vector<double>{});
  tsxml::AddArrayElement(*p, "AR", std::vector<double>{0, 0, 0.25});
  XMLElement* wrapper =
      tsxml::AddArrayElement(*p, "MA", std::valarray<double>{});
  tsxml::AddChildElement(*wrapper, "Y");
  EXPECT_EQ(Text(*p),
            "\n" + testing_support::ReadTestData("pmml/elements.xml"));
}

// The consistent form's numbers: the schema's spellings of NaN and the
// infinities, the largest doubles kept in range, and the missing value left
// out of an optional attribute (the whole elements of both forms are in the
// model tests).
TEST(PMMLElementsTest, XsDoubleSpellings) {
  const double max = std::numeric_limits<double>::max();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::string texts;
  for (const double value : {kMissing, nan, -nan, kInf, -kInf, -0.1, 1e-300,
                             max, std::nextafter(-max, 0.0),
                             1.79769313486231e308, 1.79769313486232e307}) {
    texts += tsxml::XsDoubleText(value) + " ";
  }
  EXPECT_EQ(texts,
            "NaN NaN NaN INF -INF -0.1 1e-300 1.79769313486231e+308 "
            "-1.79769313486231e+308 1.79769313486231e+308 "
            "1.79769313486232e+307 ");
  EXPECT_EQ(tsxml::PMMLNumberText(kMissing, tsxml::PMMLMode::kConsistent), "");
  EXPECT_EQ(tsxml::PMMLNumberText(kInf, tsxml::PMMLMode::kConsistent), "INF");
  EXPECT_EQ(tsxml::PMMLNumberText(kInf, tsxml::PMMLMode::kDefault), "inf");
}

}  // namespace
