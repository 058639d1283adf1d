// Helpers shared by the date specification tests.
#ifndef TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H
#define TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "datespec/date_spec.h"

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

}  // namespace datespec_test

#endif  // TSXML_TESTS_DATESPEC_DATE_SPEC_TEST_UTIL_H
