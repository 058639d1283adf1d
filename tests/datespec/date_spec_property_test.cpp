// Generated specifications checked against the test's own model of the time
// axis: a mixed-radix count of steps, and a plain set of gaps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>

#include "date_spec_test_util.h"

namespace datespec_test {
namespace {

constexpr int64_t kTwo31 = int64_t{1} << 31;

struct Random {
  std::mt19937 engine;
  int64_t In(int64_t lo, int64_t hi) {  // uniform in [lo, hi]
    return std::uniform_int_distribution<int64_t>(lo, hi)(engine);
  }
  bool Chance(int percent) { return In(0, 99) < percent; }
  size_t Below(size_t size) { return size_t(In(0, int64_t(size) - 1)); }
  uint32_t Bits() { return static_cast<uint32_t>(engine()); }
  DS::PeriodType Type(DS::PeriodType last = DS::Obs) {
    return DS::PeriodType(In(DS::SimpleSequence, last));
  }
};

// The test's reading of a specification's periods, with the arithmetic
// done independently, in 64 bits, on small numbers.
struct Axis {
  explicit Axis(const DS& spec) : increment(spec.LowestIncrement()) {
    for (unsigned i = 0; i < spec.PeriodCount(); ++i) {
      DS::PeriodType type = DS::Obs;
      unsigned cycle = 0, start = 0, length = 0;
      spec.GetPeriod(i, type, cycle, start, length);
      types.push_back(type);
      starts.push_back(start);
      lengths.push_back(length == 0 ? cycle : length);
      if (i > 1 && type == DS::Month && types[i - 1] == DS::Quarter) {
        linked = i - 1;
      }
    }
  }

  size_t Count() const { return types.size(); }
  bool IsLast(size_t i) const { return i + 1 == Count(); }

  bool Valid(const Indexes& t) const {
    if (t.size() != Count()) return false;
    for (size_t i = 1; i < t.size(); ++i) {
      if (t[i] < starts[i] || t[i] - starts[i] >= lengths[i]) return false;
    }
    if (linked != 0 && t[linked] != t[linked + 1] / 3) return false;
    return (t.back() - starts.back()) % increment == 0;
  }

  // Steps from the origin, the first index counted as unsigned.
  int64_t Number(const Indexes& t) const {
    int64_t number = 0;
    for (size_t i = 0; i < t.size(); ++i) {
      if (i != 0 && i == linked) continue;
      int64_t length = lengths[i], index = int64_t{t[i]} - starts[i];
      if (IsLast(i)) length /= increment, index /= increment;
      number = number * length + index;
    }
    return number;
  }

  // A tuple near `first`, mostly valid.
  Indexes Near(Random& rng, const Indexes& first) const {
    Indexes t(Count());
    t[0] = rng.Chance(70)   ? first[0] + unsigned(rng.In(-3, 3))
           : rng.Chance(50) ? unsigned(rng.In(0, 5000))
                            : rng.Bits();
    for (size_t i = 1; i < t.size(); ++i) {
      const unsigned step = IsLast(i) ? increment : 1;
      t[i] = starts[i] + step * unsigned(rng.In(0, lengths[i] / step - 1));
    }
    if (linked != 0) t[linked] = t[linked + 1] / 3;
    if (rng.Chance(10)) t[rng.Below(t.size())] += rng.Chance(50) ? 1 : -1u;
    return t;
  }

  std::vector<DS::PeriodType> types;
  std::vector<unsigned> starts, lengths;
  unsigned increment;
  size_t linked = 0;
};

struct Counts {
  int linked = 0, with_gaps = 0, round_trips = 0, refusals = 0, moves = 0;

  // Attempt, counting refusals.
  template <typename Call>
  bool Try(DS& spec, Call call) {
    const bool done = Attempt(spec, call);
    refusals += !done;
    return done;
  }
};

// A random first period, then random periods, half of them a Quarter or
// Month that is mostly made to fit a partner already there, and maybe an
// increment. Many attempts are refused. With `wrapping`, cycles and
// increments are mostly huge, and sub-cycles may end past 32 bits.
DS RandomNest(Random& rng, Counts& counts, bool wrapping = false) {
  const unsigned huge[] = {2, 3, 7, 12, 65536, 1u << 31, 0xFFFFFFFFu};
  DS spec(rng.Type(DS::Second));
  for (int a = int(rng.In(1, 9)); a > 0; --a) {
    const DS::PeriodType type = rng.Chance(50)   ? rng.Type()
                                : rng.Chance(50) ? DS::Quarter
                                                 : DS::Month;
    const Axis axis(spec);
    unsigned cycle = unsigned(rng.In(2, 12)), start = 0, length = 0;
    if (wrapping) cycle = rng.Chance(70) ? huge[rng.In(0, 6)] : rng.Bits();
    const bool month = type == DS::Month;
    const auto at = std::find(axis.types.begin() + 1, axis.types.end(),
                              month ? DS::Quarter : DS::Month);
    if (at != axis.types.end() && (month || type == DS::Quarter) &&
        rng.Chance(80)) {
      DS::PeriodType t = DS::Obs;
      unsigned c = 0, s = 0, l = 0;
      spec.GetPeriod(unsigned(at - axis.types.begin()), t, c, s, l);
      cycle = month ? 3 * c : c / 3;
      start = month ? 3 * s + unsigned(rng.In(0, 2)) : s / 3;
      length = l == 0 ? 0 : month ? 3 * l : l / 3;
    } else if (wrapping && rng.Chance(30)) {
      start = 0u - unsigned(rng.In(1, 4));
      length = unsigned(rng.In(1, 8));
    } else if (cycle >= 2 && rng.Chance(30)) {
      length = unsigned(rng.In(1, cycle));
      start = unsigned(rng.In(0, cycle - length));
    }
    counts.Try(spec, [&](DS& s) {
      return s.AddPeriod(type, cycle, start, length).IsOK();
    });
  }
  if (rng.Chance(50)) {
    const unsigned increment =
        wrapping ? (rng.Chance(50) ? rng.Bits() : 1u << rng.In(0, 3))
                 : unsigned(rng.In(0, 4));
    counts.Try(spec,
               [&](DS& s) { return s.SetLowestIncrement(increment).IsOK(); });
  }
  return spec;
}

// Checks every conversion of `spec` against `axis` and the gaps `gaps`.
void CheckArithmetic(const DS& spec, const Axis& axis,
                     const std::vector<int32_t>& gaps, Random& rng,
                     Counts& counts) {
  const Indexes first = spec.FirstCaseIndex().GetIndexes();
  const int64_t first_number = axis.Number(first);
  const int64_t increment = axis.increment;
  const bool first_exact = first_number * increment < kTwo31;
  if (first_exact) {
    EXPECT_EQ(spec.NumberFromOffset(0), uint64_t(first_number));
  }

  for (int n = 0; n < 40; ++n) {
    const Indexes indexes = axis.Near(rng, first);
    Tuple tuple(spec);
    const bool valid = tuple.SetIndexes(indexes);
    ASSERT_EQ(valid, axis.Valid(indexes)) << ::testing::PrintToString(indexes);
    if (!valid) continue;
    const int64_t diff = axis.Number(indexes) - first_number;
    const int32_t offset = tuple.VirtualCaseOffset();
    EXPECT_EQ(tuple.CaseOffset(), spec.CaseOffset(offset));
    if (std::abs(diff * increment) >= kTwo31) continue;
    ASSERT_EQ(offset, diff);
    if (first_exact && axis.Number(indexes) < 2 * kTwo31) {
      ASSERT_EQ(spec.IndexTuple(offset).GetIndexes(), indexes);
      ++counts.round_trips;
    }
  }

  // Points near the first case, against a walk over the axis: each is a
  // valid tuple (or the first case, where the point isn't valid: a linked
  // pair whose sub-cycles disagree), its case offsets as the gaps say.
  const int32_t end = gaps.empty() ? 30 : std::clamp(gaps.back() + 5, 30, 400);
  int32_t below = 0;
  std::vector<int32_t> virtual_of;
  for (int32_t v = int32_t(-std::min<int64_t>(5, first_number)); v <= end;
       ++v) {
    const bool gap = std::binary_search(gaps.begin(), gaps.end(), v);
    const int32_t closest = v < 0 ? v : v - below;
    EXPECT_EQ(spec.CaseOffset(v), gap ? -1 : closest) << v;
    EXPECT_EQ(spec.ClosestCaseOffset(v, true), closest) << v;
    EXPECT_EQ(spec.ClosestCaseOffset(v, false), closest - gap) << v;
    const Tuple tuple = spec.IndexTuple(v);
    if (first_exact && (v == 0 || tuple.GetIndexes() != first)) {
      EXPECT_TRUE(tuple.IsValid());
      EXPECT_EQ(tuple.VirtualCaseOffset(), v);
      EXPECT_EQ(tuple.CaseOffset(), spec.CaseOffset(v));
      EXPECT_EQ(tuple.ClosestCaseOffset(true), closest);
      EXPECT_EQ(tuple.ClosestCaseOffset(false), closest - gap);
    }
    if (v < 0) continue;
    if (gap) ++below;
    if (!gap) virtual_of.push_back(v);
  }
  for (int32_t k = 0; k < int32_t(virtual_of.size()); ++k) {
    EXPECT_EQ(spec.VirtualCaseOffset(k), virtual_of[static_cast<size_t>(k)]);
  }
  // Each gap's tuple gives the gap back, unless the point isn't a valid
  // tuple and the first case stands in for it.
  for (size_t i = 0; i < gaps.size() && first_exact; ++i) {
    const Tuple tuple = spec.GapIndex(i);
    if (tuple.GetIndexes() != first) {
      EXPECT_EQ(tuple.VirtualCaseOffset(), gaps[i]);
    }
  }
  EXPECT_EQ(spec.GapIndex(gaps.size()).GetIndexes(), first);
}

TEST(DateSpecProperties, GeneratedSpecifications) {
  Random rng{std::mt19937(20240611)};
  Counts counts;
  constexpr int kSpecs = 1500;
  for (int round = 0; round < kSpecs; ++round) {
    SCOPED_TRACE(round);
    DS spec = RandomNest(rng, counts);
    Axis axis(spec);
    counts.linked += axis.linked != 0;
    std::vector<int32_t> gaps;

    for (int step = 0; step < 25; ++step) {
      // A point near the first case, and its offset by the model.
      const Tuple tuple = spec.IndexTuple(int32_t(rng.In(-40, 80)));
      const int64_t diff = axis.Number(tuple.GetIndexes()) -
                           axis.Number(spec.FirstCaseIndex().GetIndexes());
      switch (rng.In(0, 3)) {
        case 0: {  // A gap at an offset.
          const int32_t offset = int32_t(rng.In(-2, 60));
          if (counts.Try(spec,
                         [&](DS& s) { return s.AddGap(offset).IsOK(); })) {
            ASSERT_GT(offset, 0);
            ASSERT_NE(axis.types[0], DS::SimpleSequence);
            gaps.push_back(offset);
          }
          break;
        }
        case 1:  // Move the first case.
          if (counts.Try(spec, [&](DS& s) {
                return s.SetFirstCaseIndex(tuple).IsOK();
              })) {
            ++counts.moves;
            std::vector<int32_t> moved;
            for (int32_t gap : gaps) {
              if (gap - diff > 0) moved.push_back(int32_t(gap - diff));
            }
            gaps = moved;
            ASSERT_EQ(spec.FirstCaseIndex().GetIndexes(), tuple.GetIndexes());
          }
          break;
        case 2:  // A structural change, mostly refused.
          if (counts.Try(spec, [&](DS& s) {
                return (rng.Chance(50)
                            ? s.AddPeriod(rng.Type(), unsigned(rng.In(0, 12)),
                                          unsigned(rng.In(0, 3)),
                                          unsigned(rng.In(0, 12)))
                            : s.SetLowestIncrement(unsigned(rng.In(0, 6))))
                    .IsOK();
              })) {
            axis = Axis(spec);
            gaps.clear();
          }
          break;
        default:
          if (rng.Chance(20)) {
            spec.ClearGaps();
            gaps.clear();
          }
      }
      std::sort(gaps.begin(), gaps.end());
      gaps.erase(std::unique(gaps.begin(), gaps.end()), gaps.end());
      ASSERT_EQ(spec.GapCount(), gaps.size());
      if (step % 12 == 11) CheckArithmetic(spec, axis, gaps, rng, counts);
      if (HasFatalFailure()) return;
    }
    counts.with_gaps += !gaps.empty();
  }
  EXPECT_GT(counts.linked, kSpecs / 50);
  EXPECT_GT(counts.with_gaps, kSpecs / 4);
  EXPECT_GT(counts.moves, 2 * kSpecs);
  EXPECT_GT(counts.round_trips, 20 * kSpecs);
  EXPECT_GT(counts.refusals, 8 * kSpecs);
}

// Huge cycles, sub-cycles whose end wraps past 32 bits, strides that wrap to
// 0, huge increments and gaps: every call stays defined, a refusal changes
// nothing, and the conversions keep the relations that hold whatever the
// numbers.
TEST(DateSpecProperties, WrappingSpecificationsStayDefined) {
  Random rng{std::mt19937(77)};
  Counts counts;
  constexpr int kRounds = 1000;
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    DS spec = RandomNest(rng, counts, true);
    for (int step = 0; step < 20; ++step) {
      const Tuple tuple = spec.IndexTuple(int32_t(rng.Bits()));
      counts.Try(spec, [&](DS& s) {
        return (rng.Chance(50) ? s.SetFirstCaseIndex(tuple) : s.AddGap(tuple))
            .IsOK();
      });
      counts.Try(spec,
                 [&](DS& s) { return s.AddGap(int32_t(rng.Bits())).IsOK(); });

      const int32_t v = int32_t(rng.Bits());
      const Tuple at = spec.IndexTuple(v);
      EXPECT_TRUE(at.IsValid() ||
                  at.GetIndexes() == spec.FirstCaseIndex().GetIndexes());
      EXPECT_EQ(at.CaseOffset(), spec.CaseOffset(at.VirtualCaseOffset()));
      EXPECT_EQ(at.ClosestCaseOffset(true),
                spec.ClosestCaseOffset(at.VirtualCaseOffset(), true));
      spec.GapIndex(rng.Below(spec.GapCount() + 1)).VirtualCaseOffset();
      const int32_t k = int32_t(rng.Bits() >> 1);
      if (int64_t{k} + int64_t(spec.GapCount()) <= INT32_MAX) {
        EXPECT_EQ(spec.CaseOffset(spec.VirtualCaseOffset(k)), k);
      }
      // Case numbers and offsets invert each other where the number doesn't
      // clamp at 0.
      const uint64_t number = spec.NumberFromOffset(v);
      if (v >= 0 || uint64_t(-int64_t{v}) <= spec.NumberFromOffset(0)) {
        EXPECT_EQ(number, spec.NumberFromOffset(0) + uint64_t(int64_t{v}));
        EXPECT_EQ(spec.OffsetFromNumber(number), v);
      } else {
        EXPECT_EQ(number, 0u);
      }
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(counts.refusals, 10 * kRounds);
}

}  // namespace
}  // namespace datespec_test
