// TSXDateSpec: the time axis of a series as a nest of periods (an outer period
// that counts, cycles of fixed length inside it), with a first case, gaps and
// a lowest increment, and the conversions between index tuples, case numbers
// and case offsets.
//
// Widths are fixed on every platform: `unsigned` is 32 bits, indexes and cycle
// lengths are 32-bit unsigned, offsets 32-bit signed (int32_t) and case
// numbers 64-bit unsigned (uint64_t). Sums and products of indexes wrap
// around in 32 bits; no value is ever widened beyond these types, so a caller
// holding a wider integer must narrow it before the call.
//
// There is no calendar arithmetic: every cycle has the length given to
// AddPeriod, and the first case day and the fiscal year start are only stored.
#ifndef TSXML_DATESPEC_DATE_SPEC_H
#define TSXML_DATESPEC_DATE_SPEC_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tsxml/base/export.h"
#include "tsxml/base/status.h"

static_assert(sizeof(unsigned) == 4, "unsigned must be 32 bits");

class TSXDateSpecImp;

// A value class: each TSXDateSpec owns one implementation of its own, made by
// the constructor and freed by the destructor. Failing operations return an
// OstraStatus with one of the codes below and leave the object unchanged;
// allocation failures pass through as std::bad_alloc, also without a change.
//
// Status codes:
//   40200 thrown by the constructor for a first period of type Obs;
//   40201 AddPeriod: cycle length below 2, or sub-cycle beyond the cycle;
//   40202 AddPeriod: type Cycle, or not after the first period's type;
//   40204 AddPeriod: calendar type on a clock date spec, or the reverse;
//   40205 SetLowestIncrement, AddGap: the first period is SimpleSequence;
//   40206 AddPeriod: Quarter and Month don't fit together;
//   40207 SetLowestIncrement, AddPeriod: the increment is 0 or doesn't divide
//         the sub-cycle length of the last period;
//   40208 AddGap, SetFirstCaseIndex: the tuple isn't bound to this
//         date spec or isn't valid for it;
//   40209 AddGap: the offset isn't greater than 0;
//   40210 AddPeriod: an eighth period, since a tuple holds seven indexes.
class TSXML_API TSXDateSpec {
 public:
  // Period types from coarse to fine. Calendar family: Year, Quarter, Month;
  // clock family: Week to Second; the others are neutral. Values outside the
  // list are accepted, stored and treated as neutral.
  enum PeriodType : int32_t {
    SimpleSequence = 0,
    Cycle = 1,
    Year = 2,
    Quarter = 3,
    Month = 4,
    Week = 5,
    Day = 6,
    Hour = 7,
    Minute = 8,
    Second = 9,
    Obs = 10,
  };

  // The name of a period type in the documents: "SimpleSequence", "Cycle",
  // "Year", "Quarter", "Month", "Week", "Day", "Hour", "Minute", "Second",
  // "Obs"; null for a type outside the list.
  static const char* PeriodTypeName(int32_t type);

  // One case as one index per period. A tuple is a plain value holding a
  // pointer to the implementation it is bound to (not owned: that
  // date spec must outlive the tuple) or null when unbound. It doesn't
  // notice changes of its date spec; they show only in IsValid.
  class TSXML_API TSXIndexTuple {
   public:
    static constexpr unsigned kMaxIndexes = 7;

    // Unbound, with the one index 0.
    TSXIndexTuple();
    // Bound to `spec`, holding the indexes of its first case.
    explicit TSXIndexTuple(const TSXDateSpec& spec);
    // The same, for the library's own code (TSXDateSpecImp isn't installed).
    explicit TSXIndexTuple(const TSXDateSpecImp& imp);

    // True if unbound; else true if the indexes are a valid point of the
    // specification as it is now (right count, within every sub-cycle, the
    // linked Quarter equal to Month / 3, the last index on an increment).
    bool IsValid() const;
    // -1, 0 or 1: the indexes compared from the first one on as unsigned
    // numbers; a tuple that is a prefix of the other is the smaller one.
    // Bindings are not compared.
    int Compare(const TSXIndexTuple& other) const;
    // Unbound: takes a list of exactly one entry. Bound: takes a list that is
    // valid for the specification. Returns false and changes nothing
    // otherwise.
    bool SetIndexes(const std::vector<unsigned>& indexes);
    // The indexes in use.
    std::vector<unsigned> GetIndexes() const;

    // The virtual case offset (gaps count as steps) from the first case.
    // Unbound: the first index read as signed. A tuple of the wrong length:
    // 0.
    int32_t VirtualCaseOffset() const;
    // The case offset (gaps don't count); -1 if the tuple is on a gap.
    // Unbound: the first index read as signed.
    int32_t CaseOffset() const;
    // As CaseOffset, but a tuple on a gap gives the next case after the gap
    // (forward) or the last case before it.
    int32_t ClosestCaseOffset(bool forward) const;

   private:
    friend class TSXDateSpecImp;

    // Bound to exactly `imp`, and valid for it.
    bool IsValidFor(const TSXDateSpecImp& imp) const;

    const TSXDateSpecImp* imp_ = nullptr;
    uint32_t count_ = 1;
    uint32_t indexes_[kMaxIndexes] = {};
  };

  // A specification with the one period `type`, no gaps and an increment of
  // 1. Throws OstraTime::OstraStatus(40200, false) for Obs.
  explicit TSXDateSpec(PeriodType type = SimpleSequence);
  // Deep copies. Tuples bound to the assigned object stay bound to it.
  TSXDateSpec(const TSXDateSpec& other);
  TSXDateSpec& operator=(const TSXDateSpec& other);
  ~TSXDateSpec();

  // Adds a period of `type`, or replaces the period of that type. A
  // `subCycleLength` of 0 means the whole cycle. On success the first case
  // goes back to the lowest index of every period and the gaps and the first
  // case day are cleared. Codes 40201, 40202, 40204, 40206, 40207, 40210.
  OstraTime::OstraStatus AddPeriod(PeriodType type, unsigned cycleLength,
                                   unsigned subCycleStart,
                                   unsigned subCycleLength);
  // Only every `increment`-th step of the innermost period is a case. On
  // success clears as AddPeriod does. Codes 40205, 40207.
  OstraTime::OstraStatus SetLowestIncrement(unsigned increment);
  // Marks the virtual case offset `offset` as a gap; a gap already there is
  // OK. Codes 40209 (checked first), 40205.
  OstraTime::OstraStatus AddGap(int32_t offset);
  // Marks the point of `tuple` as a gap. Code 40208 before those above.
  OstraTime::OstraStatus AddGap(const TSXIndexTuple& tuple);
  // Empties the gaps.
  void ClearGaps();
  // Moves the first case to `tuple`, shifting the gaps with it: gaps at or
  // before the new first case are dropped, and so are gaps that the shift
  // would carry past the largest 32-bit offset. Clears the first case day.
  // Code 40208.
  OstraTime::OstraStatus SetFirstCaseIndex(const TSXIndexTuple& tuple);

  // Stored only, without a check.
  void SetForcedSeasonLength(unsigned length);
  void SetFiscalYearStart(unsigned start);
  // Stores the calendar day of the first case; (0, 0, 0) clears it. False,
  // and nothing stored, if the three aren't all 0 or all set with day <= 31
  // and month <= 12, or if there is no Day period.
  bool SetFirstCaseDay(unsigned day, unsigned month, unsigned year);

  unsigned PeriodCount() const;
  // The fields of period `i`; `subCycleLength` reads 0 for a whole cycle.
  // Leaves all four untouched if `i` isn't below PeriodCount().
  void GetPeriod(unsigned i, PeriodType& type, unsigned& cycleLength,
                 unsigned& subCycleStart, unsigned& subCycleLength) const;
  unsigned LowestIncrement() const;
  unsigned ForcedSeasonLength() const;
  unsigned FiscalYearStart() const;
  // All three 0 when no day is set.
  void GetFirstCaseDay(unsigned& day, unsigned& month, unsigned& year) const;
  size_t GapCount() const;
  // 1 with the first period alone; else the last period's sub-cycle length
  // divided by the increment.
  unsigned DefaultSeasonLength() const;
  // Same periods and increment; with `strict` also the same first case and
  // gaps. The first case day, forced season length and fiscal year start are
  // never compared.
  bool IsEquivalent(const TSXDateSpec& other, bool strict) const;

  // The tuple of the first case, bound to this specification.
  TSXIndexTuple FirstCaseIndex() const;
  // The tuple of gap `i`, or of the first case if `i` isn't below GapCount().
  TSXIndexTuple GapIndex(size_t i) const;
  // The tuple at the virtual case offset `offset`; the first case when the
  // point found isn't a valid tuple (for instance beyond 32-bit indexes).
  TSXIndexTuple IndexTuple(int32_t offset) const;
  // Case offset to virtual case offset.
  int32_t VirtualCaseOffset(int32_t offset) const;
  // Virtual case offset to case offset; -1 for a gap, so a gap can't be told
  // from the case offset -1 by the number alone.
  int32_t CaseOffset(int32_t offset) const;
  // As CaseOffset, but a gap gives the next case after it (forward) or the
  // last case before it.
  int32_t ClosestCaseOffset(int32_t offset, bool forward) const;
  // Virtual case offset to case number (steps from the origin); offsets
  // before the origin give 0.
  uint64_t NumberFromOffset(int32_t offset) const;
  // Case number to virtual case offset, from the low 32 bits of both numbers.
  int32_t OffsetFromNumber(uint64_t number) const;

 private:
  TSXDateSpecImp* imp_;  // Owned; never null.
};

#endif  // TSXML_DATESPEC_DATE_SPEC_H
