#include "tsxml/datespec/internal/date_spec_imp.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace {

using tsxml::AsSigned;
using tsxml::DivideTowardZero;
using Status = OstraTime::OstraStatus;
using Period = TSXDateSpecImp::Period;

// +1 for the calendar types, -1 for the clock types, 0 for the others.
int Family(TSXDateSpec::PeriodType type) {
  switch (type) {
    case TSXDateSpec::Year:
    case TSXDateSpec::Quarter:
    case TSXDateSpec::Month:
      return 1;
    case TSXDateSpec::Week:
    case TSXDateSpec::Day:
    case TSXDateSpec::Hour:
    case TSXDateSpec::Minute:
    case TSXDateSpec::Second:
      return -1;
    default:
      return 0;
  }
}

Status Failure(tsxml::StatusCode code) { return Status(code, false); }

bool IsQuarterOrMonth(TSXDateSpec::PeriodType type) {
  return type == TSXDateSpec::Quarter || type == TSXDateSpec::Month;
}

// A Quarter fits a Month when the month cycle and sub-cycle are three times
// those of the quarter and the quarter's sub-cycle starts at the month's
// start divided by 3. The products are exact, not 32-bit.
bool QuarterFitsMonth(const Period& q, const Period& m) {
  return q.cycleLength > 1 &&
         uint64_t{m.cycleLength} == 3 * uint64_t{q.cycleLength} &&
         uint64_t{m.subCycleLength} == 3 * uint64_t{q.subCycleLength} &&
         q.subCycleStart == m.subCycleStart / 3;
}

}  // namespace

TSXDateSpecImp::TSXDateSpecImp(PeriodType type)
    : periods_{Period{type, 0, 0, 0, 0}}, strides_{1} {}

Status TSXDateSpecImp::AddPeriod(PeriodType type, uint32_t cycleLength,
                                 uint32_t subCycleStart,
                                 uint32_t subCycleLength) {
  const uint32_t length = subCycleLength != 0 ? subCycleLength : cycleLength;
  if (cycleLength < 2 || length + subCycleStart > cycleLength) {
    return Failure(tsxml::kBadCycle);
  }
  const size_t count = periods_.size();
  size_t position = 0;
  while (position < count && type > periods_[position].periodType) {
    ++position;
  }
  if (position == 0 || type == TSXDateSpec::Cycle) {
    return Failure(tsxml::kBadPosition);
  }
  const bool replacing =
      position < count && periods_[position].periodType == type;
  if (!replacing) {
    // A first Cycle leaves the family to the period after it.
    int reference = 0;
    if (periods_[0].periodType != TSXDateSpec::Cycle) {
      reference = Family(periods_[0].periodType);
    } else if (count > 1) {
      reference = Family(periods_[1].periodType);
    }
    if (Family(type) * reference < 0) {
      return Failure(tsxml::kFamilyClash);
    }
  }

  const Period record{type, cycleLength, subCycleStart, length, subCycleStart};
  bool link = false;
  if (IsQuarterOrMonth(type)) {
    // A Month pairs with the period before it, a Quarter with the one after.
    size_t other = position - 1;
    if (type == TSXDateSpec::Quarter) {
      other = replacing ? position + 1 : position;
    }
    if (other < count && IsQuarterOrMonth(periods_[other].periodType)) {
      const bool isQuarter = type == TSXDateSpec::Quarter;
      if (!QuarterFitsMonth(isQuarter ? record : periods_[other],
                            isQuarter ? periods_[other] : record)) {
        return Failure(tsxml::kQuarterMonthMismatch);
      }
      link = !replacing;
    }
  }
  const bool last = replacing ? position + 1 == count : position == count;
  if (last && length % lowestIncrement_ != 0) {
    return Failure(tsxml::kBadIncrement);
  }
  if (!replacing && count >= TSXDateSpec::TSXIndexTuple::kMaxIndexes) {
    return Failure(tsxml::kTooManyPeriods);
  }

  if (replacing) {
    periods_[position] = record;
  } else {
    // Both reservations come first; the inserts after them can't throw.
    periods_.reserve(count + 1);
    strides_.reserve(count + 1);
    periods_.insert(periods_.begin() + static_cast<std::ptrdiff_t>(position),
                    record);
    strides_.push_back(1);
    if (linkedQuarter_ != 0 && position <= linkedQuarter_) ++linkedQuarter_;
    if (link) {
      linkedQuarter_ = static_cast<uint32_t>(
          type == TSXDateSpec::Quarter ? position : position - 1);
    }
  }
  Rebuild();
  return Status();
}

void TSXDateSpecImp::Rebuild() {
  for (Period& period : periods_) period.firstIndex = period.subCycleStart;
  firstCaseNumber_ = 0;
  firstCaseDay_ = firstCaseMonth_ = firstCaseYear_ = 0;
  gaps_.clear();
  virtualGaps_.clear();
  uint32_t running = 1;
  for (size_t i = periods_.size(); i-- > 0;) {
    if (i != 0 && i == linkedQuarter_) {
      strides_[i] = 1;
      continue;
    }
    strides_[i] = running;
    uint32_t length = periods_[i].subCycleLength;
    if (i + 1 == periods_.size()) length /= lowestIncrement_;
    running *= length;
  }
}

Status TSXDateSpecImp::SetLowestIncrement(uint32_t increment) {
  if (periods_[0].periodType == TSXDateSpec::SimpleSequence) {
    return Failure(tsxml::kSimpleSequenceFirst);
  }
  if (increment == 0 || periods_.back().subCycleLength % increment != 0) {
    return Failure(tsxml::kBadIncrement);
  }
  lowestIncrement_ = increment;
  Rebuild();
  return Status();
}

Status TSXDateSpecImp::AddGap(int32_t offset) {
  if (offset <= 0) return Failure(tsxml::kOffsetNotPositive);
  if (periods_[0].periodType == TSXDateSpec::SimpleSequence) {
    return Failure(tsxml::kSimpleSequenceFirst);
  }
  auto at = std::lower_bound(gaps_.begin(), gaps_.end(), offset);
  if (at != gaps_.end() && *at == offset) return Status();
  std::vector<int32_t> gaps;
  gaps.reserve(gaps_.size() + 1);
  gaps.insert(gaps.end(), gaps_.begin(), at);
  gaps.push_back(offset);
  gaps.insert(gaps.end(), at, gaps_.end());
  CommitGaps(std::move(gaps));
  return Status();
}

Status TSXDateSpecImp::AddGap(const Tuple& tuple) {
  if (!tuple.IsValidFor(*this)) {
    return Failure(tsxml::kForeignTuple);
  }
  return AddGap(TupleOffset(tuple.count_, tuple.indexes_));
}

void TSXDateSpecImp::ClearGaps() {
  gaps_.clear();
  virtualGaps_.clear();
}

void TSXDateSpecImp::CommitGaps(std::vector<int32_t> gaps) {
  // Gaps are distinct and above 0, so gaps[i] > i and nothing overflows.
  std::vector<int32_t> virtualGaps(gaps);
  for (size_t i = 0; i < virtualGaps.size(); ++i) {
    virtualGaps[i] -= static_cast<int32_t>(i);
  }
  gaps_.swap(gaps);
  virtualGaps_.swap(virtualGaps);
}

Status TSXDateSpecImp::SetFirstCaseIndex(const Tuple& tuple) {
  if (!tuple.IsValidFor(*this)) {
    return Failure(tsxml::kForeignTuple);
  }
  const size_t count = periods_.size();
  const uint32_t* indexes = tuple.indexes_;
  std::vector<int32_t> gaps;
  if (!gaps_.empty()) {
    // Gaps are measured from the first case, so they move against it.
    const int64_t shift = TupleOffset(count, indexes);
    gaps.reserve(gaps_.size());
    for (int32_t gap : gaps_) {
      const int64_t moved = int64_t{gap} - shift;
      if (moved > 0 && moved <= std::numeric_limits<int32_t>::max()) {
        gaps.push_back(static_cast<int32_t>(moved));
      }
    }
  }
  // The case number counts from the sub-cycle starts, not the old first case.
  uint32_t number = indexes[0];
  for (size_t i = 1; i < count; ++i) {
    if (i == linkedQuarter_) continue;
    number = number * periods_[i].subCycleLength +
             (indexes[i] - periods_[i].subCycleStart);
  }
  int32_t signedNumber = AsSigned(number);
  if (signedNumber > 0) {
    signedNumber = DivideTowardZero(signedNumber, lowestIncrement_);
  }

  CommitGaps(std::move(gaps));
  for (size_t i = 0; i < count; ++i) periods_[i].firstIndex = indexes[i];
  firstCaseNumber_ = static_cast<uint64_t>(int64_t{signedNumber});
  firstCaseDay_ = firstCaseMonth_ = firstCaseYear_ = 0;
  return Status();
}

bool TSXDateSpecImp::HasPeriod(PeriodType type) const {
  return std::any_of(periods_.begin(), periods_.end(),
                     [type](const Period& p) { return p.periodType == type; });
}

bool TSXDateSpecImp::SetFirstCaseDay(uint32_t day, uint32_t month,
                                     uint32_t year) {
  if (day != 0) {
    if (month == 0 || year == 0 || day > 31 || month > 12) return false;
  } else if (month != 0 || year != 0) {
    return false;
  }
  if (!HasPeriod(TSXDateSpec::Day)) return false;
  firstCaseDay_ = day;
  firstCaseMonth_ = month;
  firstCaseYear_ = year;
  return true;
}

void TSXDateSpecImp::GetFirstCaseDay(uint32_t& day, uint32_t& month,
                                     uint32_t& year) const {
  day = firstCaseDay_;
  month = firstCaseMonth_;
  year = firstCaseYear_;
}

uint32_t TSXDateSpecImp::DefaultSeasonLength() const {
  const uint32_t length = periods_.back().subCycleLength;
  return length == 0 ? 1 : length / lowestIncrement_;
}

bool TSXDateSpecImp::IsEquivalent(const TSXDateSpecImp& other,
                                  bool strict) const {
  if (periods_.size() != other.periods_.size()) return false;
  for (size_t i = 0; i < periods_.size(); ++i) {
    const Period& a = periods_[i];
    const Period& b = other.periods_[i];
    if (a.periodType != b.periodType || a.cycleLength != b.cycleLength ||
        a.subCycleStart != b.subCycleStart ||
        a.subCycleLength != b.subCycleLength ||
        (strict && a.firstIndex != b.firstIndex)) {
      return false;
    }
  }
  if (lowestIncrement_ != other.lowestIncrement_) return false;
  return !strict || gaps_ == other.gaps_;
}

bool TSXDateSpecImp::IndexesAreValid(size_t count,
                                     const uint32_t* indexes) const {
  if (count != periods_.size()) return false;
  for (size_t i = 1; i < count; ++i) {
    const Period& period = periods_[i];
    if (indexes[i] < period.subCycleStart ||
        indexes[i] >= period.subCycleStart + period.subCycleLength) {
      return false;
    }
  }
  if (linkedQuarter_ != 0 &&
      indexes[linkedQuarter_] != indexes[linkedQuarter_ + 1] / 3) {
    return false;
  }
  if (lowestIncrement_ >= 2 && count != 0 &&
      (indexes[count - 1] - periods_.back().subCycleStart) % lowestIncrement_ !=
          0) {
    return false;
  }
  return true;
}

int32_t TSXDateSpecImp::TupleOffset(size_t count,
                                    const uint32_t* indexes) const {
  if (count != periods_.size() || count == 0) return 0;
  // The full sub-cycle of the last period; the increment divides out last.
  uint32_t value = indexes[0] - periods_[0].firstIndex;
  for (size_t i = 1; i < count; ++i) {
    if (i == linkedQuarter_) continue;
    value = value * periods_[i].subCycleLength +
            (indexes[i] - periods_[i].firstIndex);
  }
  return DivideTowardZero(AsSigned(value), lowestIncrement_);
}

TSXDateSpecImp::Tuple TSXDateSpecImp::TupleFromNumber(uint64_t number) const {
  Tuple tuple = FirstCaseIndex();
  const size_t count = periods_.size();
  uint32_t result[Tuple::kMaxIndexes] = {};
  for (size_t i = 0; i < count; ++i) {
    if (i != 0 && i == linkedQuarter_) continue;
    const uint32_t stride = strides_[i];
    uint64_t q = stride == 0 ? 0 : number / stride;
    // The product is taken in 32 bits, so the first period keeps whatever
    // a wrapped product leaves over.
    number -= uint32_t{stride * static_cast<uint32_t>(q)};
    if (i + 1 == count) q *= lowestIncrement_;
    result[i] = periods_[i].subCycleStart + static_cast<uint32_t>(q);
  }
  if (linkedQuarter_ != 0) {
    result[linkedQuarter_] = result[linkedQuarter_ + 1] / 3;
  }
  if (IndexesAreValid(count, result)) {
    std::copy(result, result + count, tuple.indexes_);
  }
  return tuple;
}

TSXDateSpecImp::Tuple TSXDateSpecImp::FirstCaseIndex() const {
  Tuple tuple;
  tuple.imp_ = this;
  tuple.count_ = static_cast<uint32_t>(periods_.size());
  for (size_t i = 0; i < periods_.size(); ++i) {
    tuple.indexes_[i] = periods_[i].firstIndex;
  }
  return tuple;
}

TSXDateSpecImp::Tuple TSXDateSpecImp::GapIndex(size_t i) const {
  if (i >= gaps_.size()) return FirstCaseIndex();
  return TupleFromNumber(firstCaseNumber_ + static_cast<uint64_t>(gaps_[i]));
}

int32_t TSXDateSpecImp::CaseOffset(int32_t offset) const {
  return ClosestOffset(offset, 0);
}

int32_t TSXDateSpecImp::ClosestOffset(int32_t offset, int direction) const {
  if (offset < 0 || gaps_.empty()) return offset;
  const auto at = std::lower_bound(gaps_.begin(), gaps_.end(), offset);
  // Fewer gaps below `offset` than `offset` itself: no overflow below.
  const int32_t below = static_cast<int32_t>(at - gaps_.begin());
  if (at == gaps_.end() || *at != offset) return offset - below;
  if (direction == 0) return -1;
  return direction > 0 ? offset - below : offset - below - 1;
}

int32_t TSXDateSpecImp::VirtualCaseOffset(int32_t offset) const {
  if (offset < 1 || gaps_.empty()) return offset;
  const auto at =
      std::upper_bound(virtualGaps_.begin(), virtualGaps_.end(), offset);
  const auto passed = static_cast<uint32_t>(at - virtualGaps_.begin());
  return AsSigned(static_cast<uint32_t>(offset) + passed);
}

uint64_t TSXDateSpecImp::NumberFromOffset(int32_t offset) const {
  if (offset >= 0) return firstCaseNumber_ + static_cast<uint64_t>(offset);
  const uint64_t back = static_cast<uint64_t>(-int64_t{offset});
  return back > firstCaseNumber_ ? 0 : firstCaseNumber_ - back;
}

int32_t TSXDateSpecImp::OffsetFromNumber(uint64_t number) const {
  return AsSigned(static_cast<uint32_t>(number) -
                  static_cast<uint32_t>(firstCaseNumber_));
}
