#include "tsxml/native/date_spec_element.h"

#include <memory>
#include <valarray>
#include <vector>

#include "tsxml/datespec/date_spec.h"
#include "tsxml/native/model_elements.h"

namespace tsxml {

using OstraTimeXML::XMLElement;

XMLElement* MakeDateSpecificationElement(const TSXDateSpec& spec,
                                         const std::string& descriptor,
                                         int id) {
  std::unique_ptr<XMLElement> element(XMLElement::Create("DateSpecification"));
  element->AddAttribute("dateSpecID", static_cast<double>(id));
  if (!descriptor.empty())
    element->AddAttribute("dateSpecDescriptor", descriptor);

  std::unique_ptr<XMLElement> periods(XMLElement::Create("Periods"));
  if (spec.LowestIncrement() > 1) {
    periods->AddAttribute("lowestIncrement", spec.LowestIncrement());
  }
  if (spec.ForcedSeasonLength() != 0) {
    periods->AddAttribute("forcedSeasonLength", spec.ForcedSeasonLength());
  }
  if (spec.FiscalYearStart() != 0) {
    periods->AddAttribute("fiscalYearStart", spec.FiscalYearStart());
  }

  const std::vector<unsigned> indexes = spec.FirstCaseIndex().GetIndexes();
  for (unsigned i = 0; i < spec.PeriodCount(); ++i) {
    TSXDateSpec::PeriodType type = TSXDateSpec::SimpleSequence;
    unsigned cycleLength = 0;
    unsigned subCycleStart = 0;
    unsigned subCycleLength = 0;
    spec.GetPeriod(i, type, cycleLength, subCycleStart, subCycleLength);
    const char* word = TSXDateSpec::PeriodTypeName(type);
    if (!word) continue;
    std::unique_ptr<XMLElement> period(XMLElement::Create(word));
    if (cycleLength > 1) {
      period->AddAttribute("cycleLength", cycleLength);
      if (subCycleLength != 0) {
        period->AddAttribute("subCycleStart", subCycleStart);
        period->AddAttribute("subCycleLength", subCycleLength);
      }
    }
    period->AddAttribute("firstCaseIndex",
                         i < indexes.size() ? indexes[i] : 0u);
    periods->AddElement(period.release());
  }
  element->AddElement(periods.release());

  const size_t gapCount = spec.GapCount();
  if (gapCount != 0) {
    std::valarray<double> gaps(gapCount);
    for (size_t i = 0; i < gapCount; ++i) {
      gaps[i] = spec.GapIndex(i).VirtualCaseOffset();
    }
    AddValueListElement(*element, "GapList", gaps, false);
  }

  unsigned day = 0;
  unsigned month = 0;
  unsigned year = 0;
  spec.GetFirstCaseDay(day, month, year);
  if (day != 0) {
    std::unique_ptr<XMLElement> firstCaseDay(
        XMLElement::Create("FirstCaseDay"));
    firstCaseDay->AddAttribute("day", day);
    firstCaseDay->AddAttribute("month", month);
    firstCaseDay->AddAttribute("year", year);
    element->AddElement(firstCaseDay.release());
  }
  return element.release();
}

}  // namespace tsxml
