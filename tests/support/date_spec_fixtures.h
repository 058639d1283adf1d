// Date specifications for tests.
#ifndef TSXML_TESTS_SUPPORT_DATE_SPEC_FIXTURES_H
#define TSXML_TESTS_SUPPORT_DATE_SPEC_FIXTURES_H

#include "tsxml/datespec/date_spec.h"

namespace testing_support {

// Years and months, the first case in month `firstMonth` (0-based) of
// `firstYear`.
inline TSXDateSpec MonthlyDateSpec(unsigned firstYear,
                                   unsigned firstMonth = 0) {
  TSXDateSpec spec(TSXDateSpec::Year);
  spec.AddPeriod(TSXDateSpec::Month, 12, 0, 0);
  TSXDateSpec::TSXIndexTuple first(spec);
  first.SetIndexes({firstYear, firstMonth});
  spec.SetFirstCaseIndex(first);
  return spec;
}

}  // namespace testing_support

#endif  // TSXML_TESTS_SUPPORT_DATE_SPEC_FIXTURES_H
