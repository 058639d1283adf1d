// Helpers shared by the date specification tests.
#ifndef TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H
#define TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "tsxml/datespec/date_spec.h"

namespace datespec_test {

using DS = TSXDateSpec;
using Tuple = TSXDateSpec::TSXIndexTuple;
using Indexes = std::vector<unsigned>;

template <typename T>
std::string Join(const std::vector<T>& values) {
  std::ostringstream out;
  for (size_t i = 0; i < values.size(); ++i) out << (i ? " " : "") << values[i];
  return out.str();
}

// The type and fields of period `i`, read into "Obs 99 99 99" first.
inline std::string Period(const DS& spec, unsigned i) {
  DS::PeriodType type = DS::Obs;
  unsigned cycle = 99, start = 99, length = 99;
  spec.GetPeriod(i, type, cycle, start, length);
  const char* name = DS::PeriodTypeName(type);
  return (name ? name : "?") + (" " + Join(Indexes{cycle, start, length}));
}

// Everything a caller can read of a specification: its periods, the
// increment, forced season length, fiscal year start, first case day,
// default season length and first case number, the gaps (read back through
// their tuples) and the first case's indexes.
inline std::string Show(const DS& spec) {
  std::ostringstream out;
  for (unsigned i = 0; i < spec.PeriodCount(); ++i) {
    out << Period(spec, i) << ", ";
  }
  unsigned day = 9, month = 9, year = 9;
  spec.GetFirstCaseDay(day, month, year);
  std::vector<int32_t> gaps;
  for (size_t i = 0; i < spec.GapCount(); ++i) {
    gaps.push_back(spec.GapIndex(i).VirtualCaseOffset());
  }
  out << "increment " << spec.LowestIncrement() << ", season "
      << spec.ForcedSeasonLength() << ", fiscal " << spec.FiscalYearStart()
      << ", day " << Join(Indexes{day, month, year}) << ", default "
      << spec.DefaultSeasonLength() << ", number " << spec.NumberFromOffset(0)
      << ", gaps {" << Join(gaps) << "}, first "
      << Join(spec.FirstCaseIndex().GetIndexes());
  return out.str();
}

// Runs `call` on `spec`; a call that fails (gives false) must leave `spec`
// exactly as it was. Returns what the call gave.
template <typename Call>
bool Attempt(DS& spec, Call call) {
  const DS before(spec);
  const std::string shown = Show(spec);
  if (call(spec)) return true;
  EXPECT_TRUE(spec.IsEquivalent(before, true));
  EXPECT_EQ(Show(spec), shown);
  return false;
}

}  // namespace datespec_test

#endif  // TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H
