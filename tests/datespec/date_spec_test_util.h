// Helpers shared by the date specification tests.
#ifndef TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H
#define TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tsxml/datespec/date_spec.h"

namespace datespec_test {

using DS = TSXDateSpec;
using Tuple = TSXDateSpec::TSXIndexTuple;
using Indexes = std::vector<unsigned>;

// A tuple of `spec` holding `indexes`; a test failure if they aren't valid.
inline Tuple Make(const DS& spec, const Indexes& indexes) {
  Tuple tuple(spec);
  EXPECT_TRUE(tuple.SetIndexes(indexes));
  return tuple;
}

// True if `indexes` are a valid tuple of `spec`.
inline bool Valid(const DS& spec, const Indexes& indexes) {
  Tuple tuple(spec);
  return tuple.SetIndexes(indexes);
}

inline void MoveFirstCase(DS& spec, const Indexes& indexes) {
  ASSERT_TRUE(spec.SetFirstCaseIndex(Make(spec, indexes)).IsOK());
}

// A specification of the type `first` and the periods {type, cycle length,
// sub-cycle start, sub-cycle length}, with `increment`.
inline DS Nest(DS::PeriodType first,
               const std::vector<std::vector<unsigned>>& periods,
               unsigned increment = 1) {
  DS spec(first);
  for (const auto& p : periods) {
    EXPECT_TRUE(spec.AddPeriod(DS::PeriodType(p[0]), p[1], p[2], p[3]).IsOK());
  }
  EXPECT_TRUE(increment == 1 || spec.SetLowestIncrement(increment).IsOK());
  return spec;
}

inline DS YearMonth() { return Nest(DS::Year, {{DS::Month, 12, 0, 0}}); }

// Years and months from the year 2001, month 2, with the gaps 3, 4 and 8.
inline DS Gapped() {
  DS spec = YearMonth();
  MoveFirstCase(spec, {2001, 2});
  for (int32_t gap : {8, 3, 4}) EXPECT_TRUE(spec.AddGap(gap).IsOK());
  return spec;
}

// The gaps, read back through their tuples.
inline std::vector<int32_t> Gaps(const DS& spec) {
  std::vector<int32_t> gaps;
  for (size_t i = 0; i < spec.GapCount(); ++i) {
    gaps.push_back(spec.GapIndex(i).VirtualCaseOffset());
  }
  return gaps;
}

// Everything a caller can read of a specification, flattened for ==.
inline std::vector<uint64_t> Snapshot(const DS& spec) {
  std::vector<uint64_t> out;
  out.push_back(spec.PeriodCount());
  for (unsigned i = 0; i < spec.PeriodCount(); ++i) {
    DS::PeriodType type = DS::Obs;
    unsigned cycle = 0, start = 0, length = 0;
    spec.GetPeriod(i, type, cycle, start, length);
    out.insert(out.end(), {uint64_t(type), cycle, start, length});
  }
  unsigned day = 0, month = 0, year = 0;
  spec.GetFirstCaseDay(day, month, year);
  out.insert(out.end(), {spec.LowestIncrement(), spec.ForcedSeasonLength(),
                         spec.FiscalYearStart(), day, month, year,
                         spec.DefaultSeasonLength(), spec.NumberFromOffset(0),
                         spec.GapCount()});
  for (size_t i = 0; i < spec.GapCount(); ++i) {
    out.push_back(uint64_t(int64_t{spec.GapIndex(i).VirtualCaseOffset()}));
  }
  for (unsigned index : spec.FirstCaseIndex().GetIndexes()) {
    out.push_back(index);
  }
  return out;
}

// Runs `call` on `spec`; a call that fails (gives false) must leave `spec`
// exactly as it was. Returns what the call gave.
template <typename Call>
bool Attempt(DS& spec, Call call) {
  const DS before(spec);
  const auto snapshot = Snapshot(spec);
  if (call(spec)) return true;
  EXPECT_TRUE(spec.IsEquivalent(before, true));
  EXPECT_EQ(Snapshot(spec), snapshot);
  return false;
}

}  // namespace datespec_test

#endif  // TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H
