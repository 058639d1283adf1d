// Building a date specification: construction, copying, AddPeriod and the
// other setters with their status codes, and the comparison of two
// specifications.
#include <gtest/gtest.h>

#include "date_spec_test_util.h"

namespace datespec_test {
namespace {

std::vector<unsigned> PeriodFields(const DS& spec, unsigned i) {
  DS::PeriodType type = DS::Obs;
  unsigned cycle = 99, start = 99, length = 99;
  spec.GetPeriod(i, type, cycle, start, length);
  return {unsigned(type), cycle, start, length};
}

Indexes FirstCaseDay(const DS& spec) {
  unsigned day = 9, month = 9, year = 9;
  spec.GetFirstCaseDay(day, month, year);
  return {day, month, year};
}

// A call that fails must give `code` and leave `spec` as it was.
template <typename Call>
void ExpectRefused(DS& spec, long code, Call call) {
  EXPECT_FALSE(Attempt(spec, [&](DS& s) {
    const OstraTime::OstraStatus status = call(s);
    EXPECT_EQ(status.GetCode(), code);
    return status.IsOK();
  }));
}

void ExpectAddPeriodRefused(DS& spec, long code, DS::PeriodType type,
                            unsigned cycle, unsigned start, unsigned length) {
  ExpectRefused(spec, code,
                [&](DS& s) { return s.AddPeriod(type, cycle, start, length); });
}

TEST(DateSpecConstruction, StartValuesAndObsFirstThrows40200) {
  const DS spec(DS::Year);
  EXPECT_EQ(PeriodFields(spec, 1), (Indexes{DS::Obs, 99, 99, 99}));
  EXPECT_EQ(Snapshot(spec), (std::vector<uint64_t>{1, DS::Year, 0, 0, 0, 1, 0,
                                                   0, 0, 0, 0, 1, 0, 0, 0}));
  EXPECT_EQ(PeriodFields(DS(), 0), (Indexes{DS::SimpleSequence, 0, 0, 0}));
  try {
    DS obs(DS::Obs);
    ADD_FAILURE() << "no throw";
  } catch (const OstraTime::OstraStatus& status) {
    EXPECT_EQ(status.GetCode(), 40200);
    EXPECT_FALSE(status.IsWarning());
  }
}

TEST(DateSpecCopy, DeepCopiesAndKeepsTuplesBound) {
  DS a = YearMonth();
  MoveFirstCase(a, {2001, 2});
  ASSERT_TRUE(a.AddGap(3).IsOK());
  a.SetForcedSeasonLength(12);
  a.SetFiscalYearStart(4);
  DS b(a);
  EXPECT_EQ(Snapshot(b), Snapshot(a));
  ASSERT_TRUE(b.AddGap(5).IsOK());
  EXPECT_EQ(a.GapCount(), 1u);

  const Tuple of_b = b.FirstCaseIndex();
  const auto before = Snapshot(b);
  const DS& same = b;
  b = same;
  EXPECT_EQ(Snapshot(b), before);
  b = a;
  EXPECT_EQ(Snapshot(b), Snapshot(a));
  EXPECT_TRUE(b.SetFirstCaseIndex(of_b).IsOK());
  EXPECT_EQ(a.SetFirstCaseIndex(of_b).GetCode(), 40208);
}

TEST(AddPeriod, WholeSubCycleReadsAsZero) {
  DS whole = YearMonth();
  DS explicit_length(DS::Year);
  ASSERT_TRUE(explicit_length.AddPeriod(DS::Month, 12, 0, 12).IsOK());
  EXPECT_EQ(PeriodFields(whole, 1), (Indexes{DS::Month, 12, 0, 0}));
  EXPECT_EQ(Snapshot(explicit_length), Snapshot(whole));
  ASSERT_TRUE(whole.AddPeriod(DS::Month, 12, 2, 7).IsOK());
  EXPECT_EQ(whole.FirstCaseIndex().GetIndexes(), (Indexes{0, 2}));
}

TEST(AddPeriod, CycleAndPositionChecks) {
  DS spec(DS::Year);
  ExpectAddPeriodRefused(spec, 40201, DS::Month, 1, 0, 0);
  ExpectAddPeriodRefused(spec, 40201, DS::Month, 7, 3, 5);
  ExpectAddPeriodRefused(spec, 40201, DS::Month, 7, 8, 0);
  ExpectAddPeriodRefused(spec, 40202, DS::Year, 12, 0, 0);
  ExpectAddPeriodRefused(spec, 40202, DS::Cycle, 12, 0, 0);
  DS cycle(DS::Cycle);
  ExpectAddPeriodRefused(cycle, 40202, DS::Cycle, 12, 0, 0);
  DS month(DS::Month);
  ExpectAddPeriodRefused(month, 40202, DS::Year, 12, 0, 0);
}

TEST(AddPeriod, FamiliesDontMix) {
  DS year(DS::Year);
  ExpectAddPeriodRefused(year, 40204, DS::Week, 52, 0, 0);
  DS cycle(DS::Cycle);
  ASSERT_TRUE(cycle.AddPeriod(DS::Month, 12, 0, 0).IsOK());
  ExpectAddPeriodRefused(cycle, 40204, DS::Week, 4, 0, 0);
  DS week(DS::Week);
  ExpectAddPeriodRefused(week, 40202, DS::Month, 12, 0, 0);
  EXPECT_TRUE(DS(DS::Cycle).AddPeriod(DS::Week, 4, 0, 0).IsOK());
  // Obs is neutral, and so is a first SimpleSequence or a lone Cycle.
  for (DS::PeriodType first : {DS::SimpleSequence, DS::Cycle, DS::Year,
                               DS::Month, DS::Week, DS::Second}) {
    EXPECT_TRUE(DS(first).AddPeriod(DS::Obs, 3, 0, 0).IsOK()) << first;
  }
  Nest(DS::SimpleSequence, {{DS::Month, 12, 0, 0}, {DS::Day, 7, 0, 0}});
  DS cycle_obs = Nest(DS::Cycle, {{DS::Obs, 3, 0, 0}, {DS::Hour, 24, 0, 0}});
  ExpectAddPeriodRefused(cycle_obs, 40204, DS::Year, 5, 0, 0);
}

TEST(AddPeriod, QuarterAndMonthLinkInEitherOrder) {
  const DS quarter_first =
      Nest(DS::Year, {{DS::Quarter, 4, 0, 0}, {DS::Month, 12, 0, 0}});
  const DS month_first =
      Nest(DS::Year, {{DS::Month, 12, 0, 0}, {DS::Quarter, 4, 0, 0}});
  EXPECT_EQ(Snapshot(quarter_first), Snapshot(month_first));
  EXPECT_FALSE(Valid(month_first, {2001, 0, 3}));  // linked: 3 / 3 is not 0
}

TEST(AddPeriod, QuarterAndMonthMustFit) {
  DS quarter(DS::Year);
  ASSERT_TRUE(quarter.AddPeriod(DS::Quarter, 4, 0, 0).IsOK());
  ExpectAddPeriodRefused(quarter, 40206, DS::Month, 10, 0, 0);
  DS starts_with_quarter(DS::Quarter);
  ExpectAddPeriodRefused(starts_with_quarter, 40206, DS::Month, 12, 0, 0);

  DS part(DS::Year);
  ASSERT_TRUE(part.AddPeriod(DS::Quarter, 4, 1, 2).IsOK());
  for (unsigned start : {3u, 4u, 5u}) {
    DS spec(part);
    EXPECT_TRUE(spec.AddPeriod(DS::Month, 12, start, 6).IsOK()) << start;
  }
  ExpectAddPeriodRefused(part, 40206, DS::Month, 12, 2, 6);
  ExpectAddPeriodRefused(part, 40206, DS::Month, 12, 6, 6);
  ExpectAddPeriodRefused(part, 40206, DS::Month, 12, 3, 9);

  // A replacement is checked against its partner, if there is one.
  EXPECT_TRUE(quarter.AddPeriod(DS::Quarter, 5, 0, 0).IsOK());
  ASSERT_TRUE(quarter.AddPeriod(DS::Quarter, 4, 0, 0).IsOK());
  ASSERT_TRUE(quarter.AddPeriod(DS::Month, 12, 0, 0).IsOK());
  ExpectAddPeriodRefused(quarter, 40206, DS::Quarter, 4, 1, 2);
  ExpectAddPeriodRefused(quarter, 40206, DS::Month, 12, 3, 6);
}

TEST(AddPeriod, IncrementAndPeriodLimits) {
  DS spec(DS::Cycle);
  ASSERT_TRUE(spec.AddPeriod(DS::Month, 12, 0, 0).IsOK());
  ASSERT_TRUE(spec.SetLowestIncrement(3).IsOK());
  ExpectAddPeriodRefused(spec, 40207, DS::Obs, 7, 0, 0);
  ExpectAddPeriodRefused(spec, 40207, DS::Month, 10, 0, 0);
  EXPECT_TRUE(spec.AddPeriod(DS::Quarter, 4, 0, 0).IsOK());
  EXPECT_TRUE(spec.AddPeriod(DS::Obs, 9, 0, 0).IsOK());

  // An eighth period is refused with 40210.
  DS seven;
  for (DS::PeriodType type :
       {DS::Year, DS::Quarter, DS::Month, DS::Week, DS::Day, DS::Hour}) {
    ASSERT_TRUE(seven.AddPeriod(type, type == DS::Month ? 12 : 4, 0, 0).IsOK());
  }
  ExpectAddPeriodRefused(seven, 40210, DS::Minute, 60, 0, 0);
  EXPECT_TRUE(seven.AddPeriod(DS::Hour, 24, 0, 0).IsOK());
  EXPECT_EQ(seven.FirstCaseIndex().GetIndexes(), Indexes(7, 0));
}

TEST(AddPeriod, StructuralChangesResetFirstCaseGapsAndDay) {
  DS spec(DS::Cycle);
  ASSERT_TRUE(spec.AddPeriod(DS::Day, 7, 1, 5).IsOK());
  MoveFirstCase(spec, {4, 3});
  ASSERT_TRUE(spec.AddGap(2).IsOK());
  ASSERT_TRUE(spec.SetFirstCaseDay(3, 4, 2020));
  spec.SetForcedSeasonLength(5);
  spec.SetFiscalYearStart(7);
  DS copy(spec);
  DS moved(spec);
  MoveFirstCase(moved, {4, 4});
  EXPECT_EQ(FirstCaseDay(moved), (Indexes{0, 0, 0}));
  ASSERT_TRUE(spec.AddPeriod(DS::Hour, 24, 0, 0).IsOK());
  ASSERT_TRUE(copy.SetLowestIncrement(5).IsOK());
  for (const DS* changed : {&spec, &copy}) {
    EXPECT_EQ(FirstCaseDay(*changed), (Indexes{0, 0, 0}));
    EXPECT_EQ(changed->GapCount(), 0u);
    EXPECT_EQ(changed->NumberFromOffset(0), 0u);
    EXPECT_EQ(changed->FirstCaseIndex().GetIndexes()[1], 1u);
    EXPECT_EQ(changed->ForcedSeasonLength(), 5u);
    EXPECT_EQ(changed->FiscalYearStart(), 7u);
  }
}

TEST(Setters, IncrementGapAndDayChecks) {
  DS spec = YearMonth();
  ExpectRefused(spec, 40207, [](DS& s) { return s.SetLowestIncrement(5); });
  ExpectRefused(spec, 40207, [](DS& s) { return s.SetLowestIncrement(0); });
  ASSERT_TRUE(spec.SetLowestIncrement(3).IsOK());
  EXPECT_EQ(spec.DefaultSeasonLength(), 4u);
  DS alone(DS::Year);
  EXPECT_TRUE(alone.SetLowestIncrement(7).IsOK());
  EXPECT_EQ(alone.DefaultSeasonLength(), 1u);

  DS sequence;
  ASSERT_TRUE(sequence.AddPeriod(DS::Month, 12, 0, 0).IsOK());
  ExpectRefused(sequence, 40205, [](DS& s) { return s.SetLowestIncrement(5); });
  ExpectRefused(sequence, 40205, [](DS& s) { return s.SetLowestIncrement(3); });
  // A gap's offset is checked before the type of the first period.
  ExpectRefused(sequence, 40209, [](DS& s) { return s.AddGap(0); });
  ExpectRefused(sequence, 40209, [](DS& s) { return s.AddGap(INT32_MIN); });
  ExpectRefused(sequence, 40205, [](DS& s) { return s.AddGap(1); });

  DS week(DS::Week);
  EXPECT_FALSE(week.SetFirstCaseDay(1, 1, 2000));
  ASSERT_TRUE(week.AddPeriod(DS::Day, 7, 0, 5).IsOK());
  EXPECT_TRUE(week.SetFirstCaseDay(31, 2, 1999));
  for (const Indexes& bad :
       {Indexes{32, 1, 1}, Indexes{1, 13, 1}, Indexes{1, 0, 1},
        Indexes{1, 1, 0}, Indexes{0, 1, 0}, Indexes{0, 0, 1}}) {
    EXPECT_FALSE(Attempt(week, [&](DS& s) {
      return s.SetFirstCaseDay(bad[0], bad[1], bad[2]);
    }));
  }
  EXPECT_EQ(FirstCaseDay(week), (Indexes{31, 2, 1999}));
  EXPECT_TRUE(week.SetFirstCaseDay(0, 0, 0));
  EXPECT_EQ(FirstCaseDay(week), (Indexes{0, 0, 0}));
}

TEST(IsEquivalent, StrictAlsoComparesFirstCaseAndGaps) {
  const DS base = YearMonth();
  DS moved(base);
  MoveFirstCase(moved, {1, 1});
  DS gapped(base);
  ASSERT_TRUE(gapped.AddGap(4).IsOK());
  for (const DS* other : {&moved, &gapped}) {
    EXPECT_TRUE(base.IsEquivalent(*other, false));
    EXPECT_FALSE(base.IsEquivalent(*other, true));
  }
  DS stored_only(base);
  stored_only.SetForcedSeasonLength(3);
  stored_only.SetFiscalYearStart(4);
  EXPECT_TRUE(base.IsEquivalent(stored_only, true));

  DS increment(base);
  ASSERT_TRUE(increment.SetLowestIncrement(2).IsOK());
  DS sub_cycle(DS::Year);
  ASSERT_TRUE(sub_cycle.AddPeriod(DS::Month, 12, 0, 11).IsOK());
  DS longer(base);
  ASSERT_TRUE(longer.AddPeriod(DS::Obs, 2, 0, 0).IsOK());
  for (const DS* other : {&increment, &sub_cycle, &longer}) {
    EXPECT_FALSE(base.IsEquivalent(*other, false));
    EXPECT_FALSE(other->IsEquivalent(base, false));
  }
}

}  // namespace
}  // namespace datespec_test
