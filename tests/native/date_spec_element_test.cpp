#include "tsxml/native/date_spec_element.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "tsxml/datespec/date_spec.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::Lines;
using testing_support::Text;

std::string Element(const TSXDateSpec& spec, const std::string& descriptor,
                    int id) {
  std::unique_ptr<XMLElement> element(
      tsxml::MakeDateSpecificationElement(spec, descriptor, id));
  return Text(*element);
}

TEST(DateSpecificationElementTest, YearsAndMonthsFromTheThirdMonth) {
  EXPECT_EQ(Element(testing_support::MonthlyDateSpec(2001, 2), "monthly", 3),
            Lines({"<DateSpecification", "\tdateSpecID=\"3\"",
                   "\tdateSpecDescriptor=\"monthly\">", "\t<Periods>",
                   "\t\t<Year", "\t\t\tfirstCaseIndex=\"2001\"/>", "\t\t<Month",
                   "\t\t\tcycleLength=\"12\"", "\t\t\tfirstCaseIndex=\"2\"/>",
                   "\t</Periods>", "</DateSpecification>"}));
}

TEST(DateSpecificationElementTest, EveryOptionalPart) {
  // Weeks of five working days out of seven, with gaps, a first case day and
  // no descriptor.
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
  EXPECT_EQ(Element(spec, "", 1),
            Lines({"<DateSpecification", "\tdateSpecID=\"1\">", "\t<Periods",
                   "\t\tforcedSeasonLength=\"5\"", "\t\tfiscalYearStart=\"4\">",
                   "\t\t<Week", "\t\t\tfirstCaseIndex=\"10\"/>", "\t\t<Day",
                   "\t\t\tcycleLength=\"7\"", "\t\t\tsubCycleStart=\"0\"",
                   "\t\t\tsubCycleLength=\"5\"", "\t\t\tfirstCaseIndex=\"1\"/>",
                   "\t</Periods>", "\t<GapList>3 9</GapList>",
                   "\t<FirstCaseDay", "\t\tday=\"31\"", "\t\tmonth=\"2\"",
                   "\t\tyear=\"1999\"/>", "</DateSpecification>"}));
}

TEST(DateSpecificationElementTest, LowestIncrementOnPeriods) {
  TSXDateSpec spec = testing_support::MonthlyDateSpec(2001);
  ASSERT_TRUE(spec.SetLowestIncrement(3).IsOK());
  EXPECT_NE(Element(spec, "", 1).find("\t<Periods\n\t\tlowestIncrement=\"3\">"),
            std::string::npos);
}

}  // namespace
