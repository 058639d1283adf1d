// TSXDateSpecImp: the data behind one TSXDateSpec and all of its arithmetic.
// Not installed.
#ifndef TSXML_DATESPEC_INTERNAL_DATE_SPEC_IMP_H
#define TSXML_DATESPEC_INTERNAL_DATE_SPEC_IMP_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tsxml/base/status.h"
#include "tsxml/datespec/date_spec.h"

namespace tsxml {

// The status codes of date specification operations.
enum StatusCode : long {
  kObsFirstPeriod = 40200,
  kBadCycle = 40201,
  kBadPosition = 40202,
  kFamilyClash = 40204,
  kSimpleSequenceFirst = 40205,
  kQuarterMonthMismatch = 40206,
  kBadIncrement = 40207,
  kForeignTuple = 40208,
  kOffsetNotPositive = 40209,
  kTooManyPeriods = 40210,
};

// The 32 bits of `value` read as a two's-complement signed number.
inline int32_t AsSigned(uint32_t value) { return static_cast<int32_t>(value); }

// `value` / `divisor` rounded towards zero, for any `divisor` but 0.
inline int32_t DivideTowardZero(int32_t value, uint32_t divisor) {
  return static_cast<int32_t>(int64_t{value} / int64_t{divisor});
}

}  // namespace tsxml

// Owned by exactly one TSXDateSpec; tuples point to it. Mutating operations
// do every check, then make whatever allocation they need, and only then
// change a field, so a failure or a std::bad_alloc leaves the object as it
// was.
class TSXDateSpecImp {
 public:
  using PeriodType = TSXDateSpec::PeriodType;
  using Tuple = TSXDateSpec::TSXIndexTuple;
  using Status = OstraTime::OstraStatus;

  struct Period {
    PeriodType periodType;
    uint32_t cycleLength;     // 0 in the first period
    uint32_t subCycleStart;   // lowest index in use
    uint32_t subCycleLength;  // number of indexes in use; 0 in the first
    uint32_t firstIndex;      // the first case's index
  };

  explicit TSXDateSpecImp(PeriodType type);

  Status AddPeriod(PeriodType type, uint32_t cycleLength,
                   uint32_t subCycleStart, uint32_t subCycleLength);
  Status SetLowestIncrement(uint32_t increment);
  Status AddGap(int32_t offset);
  Status AddGap(const Tuple& tuple);
  void ClearGaps();
  Status SetFirstCaseIndex(const Tuple& tuple);
  void SetForcedSeasonLength(uint32_t length) { forcedSeasonLength_ = length; }
  void SetFiscalYearStart(uint32_t start) { fiscalYearStart_ = start; }
  bool SetFirstCaseDay(uint32_t day, uint32_t month, uint32_t year);

  const std::vector<Period>& Periods() const { return periods_; }
  uint32_t LowestIncrement() const { return lowestIncrement_; }
  uint32_t ForcedSeasonLength() const { return forcedSeasonLength_; }
  uint32_t FiscalYearStart() const { return fiscalYearStart_; }
  void GetFirstCaseDay(uint32_t& day, uint32_t& month, uint32_t& year) const;
  size_t GapCount() const { return gaps_.size(); }
  uint32_t DefaultSeasonLength() const;
  bool IsEquivalent(const TSXDateSpecImp& other, bool strict) const;

  // True if `count` indexes are a valid point: one per period, each but the
  // first within its sub-cycle, a linked Quarter equal to its Month / 3, and
  // the last index a whole number of increments from its sub-cycle start.
  bool IndexesAreValid(size_t count, const uint32_t* indexes) const;
  // The virtual case offset of a point from the first case; 0 for a count
  // other than the number of periods.
  int32_t TupleOffset(size_t count, const uint32_t* indexes) const;
  // The tuple at case `number`; the first case if that point isn't valid. A
  // stride that wrapped to 0 takes no part of the number.
  Tuple TupleFromNumber(uint64_t number) const;
  Tuple FirstCaseIndex() const;
  Tuple GapIndex(size_t i) const;
  Tuple IndexTuple(int32_t offset) const {
    return TupleFromNumber(NumberFromOffset(offset));
  }

  // Virtual case offset to case offset; -1 on a gap.
  int32_t CaseOffset(int32_t offset) const;
  // As CaseOffset; on a gap, the next case with `direction` > 0, the last
  // case before it with `direction` < 0, and -1 with `direction` 0.
  int32_t ClosestOffset(int32_t offset, int direction) const;
  // Case offset to virtual case offset.
  int32_t VirtualCaseOffset(int32_t offset) const;
  uint64_t NumberFromOffset(int32_t offset) const;
  int32_t OffsetFromNumber(uint64_t number) const;

 private:
  // Resets what depends on the structure (first case, gaps, first case day)
  // and derives the strides. Doesn't allocate.
  void Rebuild();
  // Stores `gaps` (ascending, all > 0) with their virtual offsets.
  void CommitGaps(std::vector<int32_t> gaps);
  bool HasPeriod(PeriodType type) const;

  std::vector<Period> periods_;
  uint32_t lowestIncrement_ = 1;
  std::vector<int32_t> gaps_;
  uint32_t forcedSeasonLength_ = 0;
  uint32_t firstCaseDay_ = 0;
  uint32_t firstCaseMonth_ = 0;
  uint32_t firstCaseYear_ = 0;
  uint32_t fiscalYearStart_ = 0;
  std::vector<uint32_t> strides_;
  std::vector<int32_t> virtualGaps_;
  // Position of a Quarter tied to the Month right after it; 0 for none.
  uint32_t linkedQuarter_ = 0;
  uint64_t firstCaseNumber_ = 0;
};

#endif  // TSXML_DATESPEC_INTERNAL_DATE_SPEC_IMP_H
