// Index tuples, case numbers and case offsets on hand-worked specifications.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

#include "date_spec_test_util.h"

namespace datespec_test {
namespace {

// Moves the first case of `spec` to `first` and checks the case number, the
// strides (the offset of the first case moved one step, one increment in the
// last period, in each period; 0 for a linked Quarter, which can't move
// alone), tuples at offsets both ways, and a tuple that is invalid.
void CheckWorked(DS spec, const Indexes& first, uint64_t first_case_number,
                 const std::vector<int32_t>& strides,
                 const std::vector<std::pair<int32_t, Indexes>>& at_offset,
                 const Indexes& invalid) {
  SCOPED_TRACE(::testing::PrintToString(first));
  MoveFirstCase(spec, first);
  EXPECT_EQ(spec.NumberFromOffset(0), first_case_number);
  EXPECT_EQ(spec.FirstCaseIndex().GetIndexes(), first);
  for (size_t i = 0; i < strides.size(); ++i) {
    if (strides[i] == 0) continue;
    Indexes step = first;
    step[i] += i + 1 == step.size() ? spec.LowestIncrement() : 1;
    EXPECT_EQ(Make(spec, step).VirtualCaseOffset(), strides[i]) << i;
  }
  for (const auto& [offset, indexes] : at_offset) {
    const Tuple tuple = spec.IndexTuple(offset);
    EXPECT_EQ(tuple.GetIndexes(), indexes) << offset;
    EXPECT_EQ(tuple.VirtualCaseOffset(), offset);
    EXPECT_EQ(Make(spec, indexes).VirtualCaseOffset(), offset);
  }
  Tuple tuple(spec);
  EXPECT_FALSE(tuple.SetIndexes(invalid));
  EXPECT_EQ(tuple.GetIndexes(), first);
}

TEST(WorkedNumbers, FourSpecifications) {
  CheckWorked(YearMonth(), {2001, 2}, 2001 * 12 + 2, {12, 1},
              {{10, {2002, 0}}, {-3, {2000, 11}}}, {2001, 12});
  CheckWorked(Nest(DS::Year, {{DS::Quarter, 4, 0, 0}, {DS::Month, 12, 0, 0}}),
              {2001, 1, 4}, 2001 * 12 + 4, {12, 0, 1}, {{8, {2002, 0, 0}}},
              {2001, 0, 3});
  CheckWorked(Nest(DS::Year, {{DS::Month, 12, 0, 0}}, 3), {2000, 3},
              (2000 * 12 + 3) / 3, {4, 1}, {{5, {2001, 6}}}, {2000, 1});
  CheckWorked(Nest(DS::Cycle, {{DS::Day, 7, 0, 5}}), {1, 0}, 5, {5, 1},
              {{7, {2, 2}}, {12, {3, 2}}}, {1, 5});
}

TEST(Gaps, OffsetTable) {
  const DS spec = Gapped();
  const std::vector<int32_t> case_offset = {0, 1, 2, -1, -1, 3, 4, 5, -1, 6};
  const std::vector<int32_t> forward = {0, 1, 2, 3, 3, 3, 4, 5, 6, 6};
  const std::vector<int32_t> backward = {0, 1, 2, 2, 2, 3, 4, 5, 5, 6};
  for (size_t i = 0; i < 10; ++i) {
    const int32_t v = static_cast<int32_t>(i);
    const Tuple tuple = spec.IndexTuple(v);
    EXPECT_EQ(spec.CaseOffset(v), case_offset[i]) << v;
    EXPECT_EQ(tuple.CaseOffset(), case_offset[i]) << v;
    EXPECT_EQ(spec.ClosestCaseOffset(v, true), forward[i]) << v;
    EXPECT_EQ(tuple.ClosestCaseOffset(true), forward[i]) << v;
    EXPECT_EQ(spec.ClosestCaseOffset(v, false), backward[i]) << v;
    EXPECT_EQ(tuple.ClosestCaseOffset(false), backward[i]) << v;
  }
  const std::vector<int32_t> virtual_offset = {0, 1, 2, 5, 6, 7, 9};
  for (size_t k = 0; k < 7; ++k) {
    EXPECT_EQ(spec.VirtualCaseOffset(static_cast<int32_t>(k)),
              virtual_offset[k])
        << k;
  }
  EXPECT_EQ(Gaps(spec), (std::vector<int32_t>{3, 4, 8}));
  EXPECT_EQ(spec.GapIndex(0).GetIndexes(), (Indexes{2001, 5}));
  EXPECT_EQ(spec.GapIndex(3).GetIndexes(), (Indexes{2001, 2}));
}

TEST(Gaps, MovingTheFirstCaseMovesTheGaps) {
  DS forward = Gapped();
  ASSERT_TRUE(forward.SetFirstCaseIndex(forward.IndexTuple(4)).IsOK());
  EXPECT_EQ(Gaps(forward), (std::vector<int32_t>{4}));
  EXPECT_EQ(forward.FirstCaseIndex().GetIndexes(), (Indexes{2001, 6}));
  EXPECT_EQ(forward.NumberFromOffset(0), 2001u * 12 + 6);
  EXPECT_EQ(forward.VirtualCaseOffset(4), 5);

  // Gaps that the move would carry beyond 32 bits are dropped.
  DS far = YearMonth();
  MoveFirstCase(far, {200, 0});
  ASSERT_TRUE(far.AddGap(INT32_MAX).IsOK());
  ASSERT_TRUE(far.AddGap(INT32_MAX - 15).IsOK());
  MoveFirstCase(far, {199, 2});
  EXPECT_EQ(Gaps(far), (std::vector<int32_t>{INT32_MAX - 5}));
}

TEST(Tuples, UnboundTupleHoldsOneIndex) {
  Tuple tuple;
  EXPECT_TRUE(tuple.IsValid());
  EXPECT_EQ(tuple.GetIndexes(), (Indexes{0}));
  EXPECT_EQ(tuple.VirtualCaseOffset(), 0);
  EXPECT_FALSE(tuple.SetIndexes({}));
  EXPECT_FALSE(tuple.SetIndexes({1, 2}));
  EXPECT_EQ(tuple.GetIndexes(), (Indexes{0}));
  EXPECT_TRUE(tuple.SetIndexes({0xFFFFFFFEu}));
  EXPECT_EQ(tuple.VirtualCaseOffset(), -2);
  EXPECT_EQ(tuple.CaseOffset(), -2);
  EXPECT_EQ(tuple.ClosestCaseOffset(true), -2);
}

TEST(Tuples, StaleAndForeignTuplesAreRefused) {
  DS spec = YearMonth();
  const Tuple stale = Make(spec, {2001, 3});
  ASSERT_TRUE(spec.AddPeriod(DS::Obs, 2, 0, 0).IsOK());
  EXPECT_FALSE(stale.IsValid());
  EXPECT_EQ(stale.VirtualCaseOffset(), 0);
  EXPECT_EQ(spec.SetFirstCaseIndex(stale).GetCode(), 40208);
  EXPECT_EQ(spec.AddGap(stale).GetCode(), 40208);

  DS twin = YearMonth();
  DS other = YearMonth();
  const Tuple foreign = Make(other, {0, 1});
  EXPECT_EQ(twin.SetFirstCaseIndex(foreign).GetCode(), 40208);
  EXPECT_EQ(twin.AddGap(foreign).GetCode(), 40208);
  EXPECT_EQ(twin.AddGap(twin.FirstCaseIndex()).GetCode(), 40209);

  DS sequence;
  ASSERT_TRUE(sequence.AddPeriod(DS::Day, 7, 0, 0).IsOK());
  EXPECT_EQ(sequence.AddGap(Make(sequence, {0, 3})).GetCode(), 40205);
}

TEST(Tuples, IncrementSteps) {
  DS spec = Nest(DS::Year, {{DS::Month, 12, 0, 0}}, 3);
  MoveFirstCase(spec, {2000, 3});
  EXPECT_FALSE(Valid(spec, {2000, 4}));
  EXPECT_EQ(Make(spec, {2000, 6}).VirtualCaseOffset(), 1);

  // A tuple taken before the increment: a value of -4 divides towards zero.
  DS later = YearMonth();
  const Tuple before = Make(later, {0xFFFFFFFFu, 8});
  ASSERT_TRUE(later.SetLowestIncrement(3).IsOK());
  EXPECT_EQ(before.VirtualCaseOffset(), -1);
}

TEST(Tuples, CompareByIndexesThenLength) {
  const DS two = YearMonth();
  const DS three = Nest(DS::Year, {{DS::Month, 12, 0, 0}, {DS::Obs, 2, 0, 0}});
  const Tuple a = Make(two, {2001, 5});
  EXPECT_EQ(a.Compare(Make(three, {2001, 5, 0})), -1);
  EXPECT_EQ(Make(three, {2001, 5, 0}).Compare(a), 1);
  EXPECT_EQ(a.Compare(Make(two, {2001, 4})), 1);
  EXPECT_EQ(a.Compare(Make(two, {2002, 0})), -1);
  const DS other = YearMonth();
  EXPECT_EQ(a.Compare(Make(other, {2001, 5})), 0);
  EXPECT_EQ(Make(two, {0xFFFFFFFFu, 0}).Compare(a), 1);
  EXPECT_EQ(Tuple().Compare(Make(two, {0, 0})), -1);
}

TEST(CaseNumbers, AStrideThatWrapsToZeroTakesNothing) {
  // 65536 x 65536 cases per cycle: the cycle's stride wraps to 0, and so
  // does its share of an offset.
  const DS spec =
      Nest(DS::Cycle, {{DS::Hour, 65536, 0, 0}, {DS::Minute, 65536, 0, 0}});
  EXPECT_EQ(spec.IndexTuple(3 * 65536 + 1).GetIndexes(), (Indexes{0, 3, 1}));
  EXPECT_EQ(Make(spec, {5, 3, 1}).VirtualCaseOffset(), 3 * 65536 + 1);
  EXPECT_EQ(spec.IndexTuple(INT32_MAX).GetIndexes(),
            (Indexes{0, 32767, 65535}));
}

TEST(CaseNumbers, ClampAtTheOriginAndWrapInLowBits) {
  DS spec = YearMonth();
  MoveFirstCase(spec, {2001, 2});
  const uint64_t first = 2001 * 12 + 2;
  EXPECT_EQ(spec.NumberFromOffset(-int32_t(first)), 0u);
  EXPECT_EQ(spec.NumberFromOffset(-int32_t(first) - 1), 0u);
  EXPECT_EQ(spec.IndexTuple(-int32_t(first) - 1000).GetIndexes(),
            (Indexes{0, 0}));
  EXPECT_EQ(spec.OffsetFromNumber(first + 5), 5);
  EXPECT_EQ(spec.OffsetFromNumber(first + (uint64_t{1} << 32) + 5), 5);
  EXPECT_EQ(spec.OffsetFromNumber(0), -int32_t(first));

  // A first case before the origin is widened with its sign, undivided:
  // -9, not -3.
  DS negative = Nest(DS::Year, {{DS::Month, 12, 0, 0}}, 3);
  MoveFirstCase(negative, {0xFFFFFFFFu, 3});
  EXPECT_EQ(negative.NumberFromOffset(0), UINT64_MAX - 8);
  EXPECT_EQ(negative.NumberFromOffset(9), 0u);
  EXPECT_EQ(negative.OffsetFromNumber(UINT64_MAX - 8), 0);
}

}  // namespace
}  // namespace datespec_test
