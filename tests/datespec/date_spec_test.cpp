// Date specifications: hand-worked cases run from the transcript
// tests/data/datespec/transcript.txt, and generated specifications checked
// against the test's own model of the time axis (a mixed-radix count of
// steps, and a plain set of gaps).
//
// The transcript: each line "command => result" runs its command on named
// specifications and tuples, and the transcript written anew from the
// results must equal the file; the commands are listed at its head. This
// file replaces the global operator new, to make allocations fail on request.
#include "tsxml/datespec/date_spec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <new>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/failing_allocator.h"
#include "support/test_data.h"

namespace {

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
std::string Period(const DS& spec, unsigned i) {
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
std::string Show(const DS& spec) {
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

using testing_support::FailingAllocations;
using testing_support::ForEachFailingAllocation;
using testing_support::gLiveAllocations;

std::string Text(bool value) { return value ? "true" : "false"; }

// "ok" or the code, " w" added for a warning (no operation makes one).
std::string Text(const OstraTime::OstraStatus& status) {
  return (status.IsOK() ? "ok" : std::to_string(status.GetCode())) +
         (status.IsWarning() ? " w" : "");
}

// The tuple's indexes, whether it is valid, and its virtual case offset,
// case offset and closest case offsets forward and backward.
std::string Describe(const Tuple& t) {
  return Join(t.GetIndexes()) + (t.IsValid() ? ", valid, " : ", invalid, ") +
         Join(std::vector<int32_t>{t.VirtualCaseOffset(), t.CaseOffset(),
                                   t.ClosestCaseOffset(true),
                                   t.ClosestCaseOffset(false)});
}

class Transcript {
 public:
  std::string Run(const std::string& text) {
    return testing_support::RunTranscript(text, [this](const std::string& c) {
      std::istringstream words(c);
      w_.assign(std::istream_iterator<std::string>(words), {});
      try {
        return Do();
      } catch (const std::exception& e) {
        return std::string(e.what());
      }
    });
  }

 private:
  // Word `i` as a number; a negative one wraps, as the casts want it.
  uint64_t N(size_t i) const { return std::stoull(w_.at(i)); }
  Indexes From(size_t i) const {
    Indexes out;
    for (; i < w_.size(); ++i) out.push_back(U(i));
    return out;
  }
  unsigned U(size_t i) const { return unsigned(N(i)); }
  DS& Spec(size_t i) { return specs_.at(w_.at(i)); }
  Tuple& At(size_t i) { return tuples_.at(w_.at(i)); }
  DS::PeriodType Type(size_t i) const {
    for (int32_t t = 0; t <= DS::Obs; ++t) {
      const char* name = DS::PeriodTypeName(t);
      if (name && w_.at(i) == name) return DS::PeriodType(t);
    }
    throw std::invalid_argument("no period type " + w_.at(i));
  }

  std::string Do() {
    const std::string& verb = w_.at(0);
    if (verb == "failing") return Failing();
    if (verb == "new" || verb == "copy") {
      try {
        specs_.insert_or_assign(w_.at(1), verb == "copy"  ? DS(Spec(2))
                                          : w_.size() > 2 ? DS(Type(2))
                                                          : DS());
      } catch (const OstraTime::OstraStatus& status) {
        return Text(status);
      }
      return "ok";
    }
    if (verb == "tuple") {
      Tuple& t = tuples_
                     .insert_or_assign(w_.at(1),
                                       w_.size() > 2 ? Tuple(Spec(2)) : Tuple())
                     .first->second;
      return w_.size() > 3 ? Text(t.SetIndexes(From(3))) : Describe(t);
    }
    if (verb == "set") return Text(At(1).SetIndexes(From(2)));
    if (verb == "look") return Describe(At(1));
    if (verb == "compare") return std::to_string(At(1).Compare(At(2)));
    DS& spec = Spec(1);
    const std::string shown = Show(spec);
    const std::string result = OnSpec(verb, spec);
    if (result != "ok" && result != "true") {
      EXPECT_EQ(Show(spec), shown);
    }
    return result;
  }

  // Runs the rest of the command with the n-th allocation failing, for n =
  // 0, 1, ... until it goes through; a failure must leave the named
  // specification as it was and free every block.
  std::string Failing() {
    w_.erase(w_.begin());
    const auto named = specs_.find(w_.at(1));
    const std::string shown = named == specs_.end() ? "" : Show(named->second);
    std::string result;
    const long failures = ForEachFailingAllocation([&](long n) {
      const long live = gLiveAllocations;
      try {
        FailingAllocations failing(n);
        result = Do();
        return true;
      } catch (const std::bad_alloc&) {
        EXPECT_EQ(gLiveAllocations, live);
        EXPECT_EQ(named == specs_.end() ? "" : Show(named->second), shown);
        return false;
      }
    });
    return (failures > 0 ? "failed, then " : "") + result;
  }

  std::string OnSpec(const std::string& verb, DS& spec) {
    const auto v = [this] { return int32_t(N(2)); };
    if (verb == "add") return Text(spec.AddPeriod(Type(2), U(3), U(4), U(5)));
    if (verb == "increment") return Text(spec.SetLowestIncrement(U(2)));
    if (verb == "gap") return Text(spec.AddGap(v()));
    if (verb == "gapat") return Text(spec.AddGap(At(2)));
    if (verb == "first") return Text(spec.SetFirstCaseIndex(At(2)));
    if (verb == "day") return Text(spec.SetFirstCaseDay(U(2), U(3), U(4)));
    if (verb == "show") return Show(spec);
    if (verb == "period") return Period(spec, U(2));
    if (verb == "equivalent") {
      return Text(spec.IsEquivalent(Spec(2), false)) + " " +
             Text(spec.IsEquivalent(Spec(2), true));
    }
    if (verb == "number") return std::to_string(spec.NumberFromOffset(v()));
    if (verb == "offset") return std::to_string(spec.OffsetFromNumber(N(2)));
    if (verb == "offsets") {
      return Join(std::vector<int32_t>{
          spec.CaseOffset(v()), spec.ClosestCaseOffset(v(), true),
          spec.ClosestCaseOffset(v(), false), spec.VirtualCaseOffset(v())});
    }
    if (verb == "at") return Describe(spec.IndexTuple(v()));
    if (verb == "gapindex") return Describe(spec.GapIndex(N(2)));
    if (verb == "assign") spec = Spec(2);
    if (verb == "clear") spec.ClearGaps();
    if (verb == "season") spec.SetForcedSeasonLength(U(2));
    if (verb == "fiscal") spec.SetFiscalYearStart(U(2));
    const bool known = verb == "assign" || verb == "clear" ||
                       verb == "season" || verb == "fiscal";
    return known ? "ok" : "unknown command";
  }

  std::vector<std::string> w_;  // the words of the command
  std::map<std::string, DS> specs_;
  std::map<std::string, Tuple> tuples_;
};

TEST(DateSpecTranscript, BuildingAndCaseArithmetic) {
  const std::string text =
      testing_support::ReadTestData("datespec/transcript.txt");
  EXPECT_EQ(Transcript().Run(text), text);
}

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
      cycles.push_back(cycle);
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

  // The indexes of a point at any distance from the first case of `spec`,
  // one of them sometimes off by one.
  static Indexes Near(Random& rng, const DS& spec) {
    const int32_t v = int32_t(rng.Bits() >> rng.In(1, 31));
    Indexes t = spec.IndexTuple(rng.Chance(50) ? v : -v).GetIndexes();
    if (rng.Chance(10)) t[rng.Below(t.size())] += rng.Chance(50) ? 1 : -1u;
    return t;
  }

  std::vector<DS::PeriodType> types;
  std::vector<unsigned> cycles, starts, lengths;
  unsigned increment;
  size_t linked = 0;
};

struct Counts {
  int linked = 0, refusals = 0;

  // Runs `call` on `spec`; a refusal (false) must leave `spec` as it was.
  template <typename Call>
  bool Try(DS& spec, Call call) {
    const std::string shown = Show(spec);
    if (call(spec)) return true;
    EXPECT_EQ(Show(spec), shown);
    ++refusals;
    return false;
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
      const size_t j = size_t(at - axis.types.begin());
      const unsigned c = axis.cycles[j], s = axis.starts[j],
                     l = axis.lengths[j];
      cycle = month ? 3 * c : c / 3;
      start = month ? 3 * s + unsigned(rng.In(0, 2)) : s / 3;
      length = month ? 3 * l : l / 3;
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
                     const std::vector<int32_t>& gaps, Random& rng) {
  // The walks keep the first case near the origin.
  const Indexes first = spec.FirstCaseIndex().GetIndexes();
  const int64_t first_number = axis.Number(first);
  ASSERT_EQ(spec.NumberFromOffset(0), uint64_t(first_number));

  for (int n = 0; n < 40; ++n) {
    const Indexes indexes = Axis::Near(rng, spec);
    Tuple tuple(spec);
    const bool valid = tuple.SetIndexes(indexes);
    ASSERT_EQ(valid, axis.Valid(indexes)) << ::testing::PrintToString(indexes);
    if (!valid) continue;
    const int64_t diff = axis.Number(indexes) - first_number;
    const int32_t offset = tuple.VirtualCaseOffset();
    if (std::abs(diff * axis.increment) >= kTwo31) continue;
    ASSERT_EQ(offset, diff);
    ASSERT_EQ(spec.IndexTuple(offset).GetIndexes(), indexes);
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
    if (v == 0 || tuple.GetIndexes() != first) {
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
      // A gap at an offset, a move of the first case, a structural change
      // (mostly refused), or clearing the gaps.
      const int64_t action = rng.In(0, 3);
      const int32_t offset = int32_t(rng.In(-2, 60));
      const bool done = action < 3 && counts.Try(spec, [&](DS& s) {
        if (action == 1) return s.SetFirstCaseIndex(tuple).IsOK();
        if (action == 0) return s.AddGap(offset).IsOK();
        return (rng.Chance(50)
                    ? s.AddPeriod(rng.Type(), unsigned(rng.In(0, 12)),
                                  unsigned(rng.In(0, 3)),
                                  unsigned(rng.In(0, 12)))
                    : s.SetLowestIncrement(unsigned(rng.In(0, 6))))
            .IsOK();
      });
      if (done && action == 0) {
        ASSERT_GT(offset, 0);
        ASSERT_NE(axis.types[0], DS::SimpleSequence);
        gaps.push_back(offset);
      } else if (done && action == 1) {
        std::vector<int32_t> moved;
        for (int32_t gap : gaps) {
          if (gap - diff > 0) moved.push_back(int32_t(gap - diff));
        }
        gaps = moved;
        ASSERT_EQ(spec.FirstCaseIndex().GetIndexes(), tuple.GetIndexes());
      } else if (done || (action == 3 && rng.Chance(20))) {
        if (done) axis = Axis(spec);
        if (!done) spec.ClearGaps();
        gaps.clear();
      }
      std::sort(gaps.begin(), gaps.end());
      gaps.erase(std::unique(gaps.begin(), gaps.end()), gaps.end());
      ASSERT_EQ(spec.GapCount(), gaps.size());
      if (step % 12 == 11) CheckArithmetic(spec, axis, gaps, rng);
      if (HasFatalFailure()) return;
    }
  }
  EXPECT_GT(counts.linked, kSpecs / 50);
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
