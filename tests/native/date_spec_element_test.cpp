#include "tsxml/native/date_spec_element.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/datespec/date_spec.h"

namespace {

std::string Element(const TSXDateSpec& spec, const std::string& descriptor,
                    int id) {
  std::unique_ptr<OstraTimeXML::XMLElement> element(
      tsxml::MakeDateSpecificationElement(spec, descriptor, id));
  return testing_support::Text(*element);
}

// Years and months from the third month; weeks of five working days out of
// seven with every optional part and no descriptor; a lowest increment
// (setting it starts the first case over at 0).
TEST(DateSpecificationElementTest, ElementsOfThreeSpecs) {
  TSXDateSpec spec(TSXDateSpec::Week);
  ASSERT_TRUE(spec.AddPeriod(TSXDateSpec::Day, 7, 0, 5).IsOK());
  spec.SetForcedSeasonLength(5);
  spec.SetFiscalYearStart(4);
  TSXDateSpec::TSXIndexTuple first(spec);
  ASSERT_TRUE(first.SetIndexes({10, 1}));
  ASSERT_TRUE(spec.SetFirstCaseIndex(first).IsOK());
  ASSERT_TRUE(spec.AddGap(3).IsOK());
  ASSERT_TRUE(spec.AddGap(9).IsOK());
  ASSERT_TRUE(spec.SetFirstCaseDay(31, 2, 1999));
  TSXDateSpec increment = testing_support::MonthlyDateSpec(2001);
  ASSERT_TRUE(increment.SetLowestIncrement(3).IsOK());
  EXPECT_EQ(Element(testing_support::MonthlyDateSpec(2001, 2), "monthly", 3) +
                Element(spec, "", 1) + Element(increment, "", 2),
            "\n" + testing_support::ReadTestData("native/date_specs.xml"));
}

}  // namespace
