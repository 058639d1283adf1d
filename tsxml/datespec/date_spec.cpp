#include "tsxml/datespec/date_spec.h"

#include <algorithm>
#include <utility>

#include "tsxml/datespec/internal/date_spec_imp.h"

using tsxml::AsSigned;
using Tuple = TSXDateSpec::TSXIndexTuple;

const char* TSXDateSpec::PeriodTypeName(int32_t type) {
  static constexpr const char* kNames[] = {
      "SimpleSequence", "Cycle",  "Year",   "Quarter", "Month", "Week", "Day",
      "Hour",           "Minute", "Second", "Obs"};
  return type >= SimpleSequence && type <= Obs ? kNames[type] : nullptr;
}

// TSXDateSpec::TSXIndexTuple

Tuple::TSXIndexTuple() = default;

Tuple::TSXIndexTuple(const TSXDateSpec& spec)
    : TSXIndexTuple(spec.imp_->FirstCaseIndex()) {}

Tuple::TSXIndexTuple(const TSXDateSpecImp& imp)
    : TSXIndexTuple(imp.FirstCaseIndex()) {}

bool Tuple::IsValid() const {
  return imp_ == nullptr || imp_->IndexesAreValid(count_, indexes_);
}

bool Tuple::IsValidFor(const TSXDateSpecImp& imp) const {
  return imp_ == &imp && imp.IndexesAreValid(count_, indexes_);
}

int Tuple::Compare(const TSXIndexTuple& other) const {
  const uint32_t common = std::min(count_, other.count_);
  for (uint32_t i = 0; i < common; ++i) {
    if (indexes_[i] != other.indexes_[i]) {
      return indexes_[i] < other.indexes_[i] ? -1 : 1;
    }
  }
  if (count_ == other.count_) return 0;
  return count_ > other.count_ ? 1 : -1;
}

bool Tuple::SetIndexes(const std::vector<unsigned>& indexes) {
  if (imp_ == nullptr) {
    if (indexes.size() != 1) return false;
  } else if (!imp_->IndexesAreValid(indexes.size(), indexes.data())) {
    return false;
  }
  // A valid list has one index per period, so at most kMaxIndexes.
  count_ = static_cast<uint32_t>(indexes.size());
  std::copy(indexes.begin(), indexes.end(), indexes_);
  return true;
}

std::vector<unsigned> Tuple::GetIndexes() const {
  return std::vector<unsigned>(indexes_, indexes_ + count_);
}

int32_t Tuple::VirtualCaseOffset() const {
  if (imp_ == nullptr) return AsSigned(indexes_[0]);
  return imp_->TupleOffset(count_, indexes_);
}

int32_t Tuple::CaseOffset() const {
  if (imp_ == nullptr) return AsSigned(indexes_[0]);
  return imp_->CaseOffset(imp_->TupleOffset(count_, indexes_));
}

int32_t Tuple::ClosestCaseOffset(bool forward) const {
  if (imp_ == nullptr) return AsSigned(indexes_[0]);
  return imp_->ClosestOffset(imp_->TupleOffset(count_, indexes_),
                             forward ? 1 : -1);
}

// TSXDateSpec

TSXDateSpec::TSXDateSpec(PeriodType type) : imp_(nullptr) {
  if (type == Obs) {
    throw OstraTime::OstraStatus(tsxml::kObsFirstPeriod, false);
  }
  imp_ = new TSXDateSpecImp(type);
}

TSXDateSpec::TSXDateSpec(const TSXDateSpec& other)
    : imp_(new TSXDateSpecImp(*other.imp_)) {}

TSXDateSpec& TSXDateSpec::operator=(const TSXDateSpec& other) {
  if (this != &other) {
    // Copy first, then move in without a throw: tuples keep `imp_`.
    TSXDateSpecImp copy(*other.imp_);
    *imp_ = std::move(copy);
  }
  return *this;
}

TSXDateSpec::~TSXDateSpec() { delete imp_; }

OstraTime::OstraStatus TSXDateSpec::AddPeriod(PeriodType type,
                                              unsigned cycleLength,
                                              unsigned subCycleStart,
                                              unsigned subCycleLength) {
  return imp_->AddPeriod(type, cycleLength, subCycleStart, subCycleLength);
}

OstraTime::OstraStatus TSXDateSpec::SetLowestIncrement(unsigned increment) {
  return imp_->SetLowestIncrement(increment);
}

OstraTime::OstraStatus TSXDateSpec::AddGap(int32_t offset) {
  return imp_->AddGap(offset);
}

OstraTime::OstraStatus TSXDateSpec::AddGap(const TSXIndexTuple& tuple) {
  return imp_->AddGap(tuple);
}

void TSXDateSpec::ClearGaps() { imp_->ClearGaps(); }

OstraTime::OstraStatus TSXDateSpec::SetFirstCaseIndex(
    const TSXIndexTuple& tuple) {
  return imp_->SetFirstCaseIndex(tuple);
}

void TSXDateSpec::SetForcedSeasonLength(unsigned length) {
  imp_->SetForcedSeasonLength(length);
}

void TSXDateSpec::SetFiscalYearStart(unsigned start) {
  imp_->SetFiscalYearStart(start);
}

bool TSXDateSpec::SetFirstCaseDay(unsigned day, unsigned month, unsigned year) {
  return imp_->SetFirstCaseDay(day, month, year);
}

unsigned TSXDateSpec::PeriodCount() const {
  return static_cast<unsigned>(imp_->Periods().size());
}

void TSXDateSpec::GetPeriod(unsigned i, PeriodType& type, unsigned& cycleLength,
                            unsigned& subCycleStart,
                            unsigned& subCycleLength) const {
  const auto& periods = imp_->Periods();
  if (i >= periods.size()) return;
  const TSXDateSpecImp::Period& period = periods[i];
  type = period.periodType;
  cycleLength = period.cycleLength;
  subCycleStart = period.subCycleStart;
  subCycleLength =
      period.subCycleLength == period.cycleLength ? 0 : period.subCycleLength;
}

unsigned TSXDateSpec::LowestIncrement() const {
  return imp_->LowestIncrement();
}

unsigned TSXDateSpec::ForcedSeasonLength() const {
  return imp_->ForcedSeasonLength();
}

unsigned TSXDateSpec::FiscalYearStart() const {
  return imp_->FiscalYearStart();
}

void TSXDateSpec::GetFirstCaseDay(unsigned& day, unsigned& month,
                                  unsigned& year) const {
  imp_->GetFirstCaseDay(day, month, year);
}

size_t TSXDateSpec::GapCount() const { return imp_->GapCount(); }

unsigned TSXDateSpec::DefaultSeasonLength() const {
  return imp_->DefaultSeasonLength();
}

bool TSXDateSpec::IsEquivalent(const TSXDateSpec& other, bool strict) const {
  return imp_->IsEquivalent(*other.imp_, strict);
}

Tuple TSXDateSpec::FirstCaseIndex() const { return imp_->FirstCaseIndex(); }

Tuple TSXDateSpec::GapIndex(size_t i) const { return imp_->GapIndex(i); }

Tuple TSXDateSpec::IndexTuple(int32_t offset) const {
  return imp_->IndexTuple(offset);
}

int32_t TSXDateSpec::VirtualCaseOffset(int32_t offset) const {
  return imp_->VirtualCaseOffset(offset);
}

int32_t TSXDateSpec::CaseOffset(int32_t offset) const {
  return imp_->CaseOffset(offset);
}

int32_t TSXDateSpec::ClosestCaseOffset(int32_t offset, bool forward) const {
  return imp_->ClosestOffset(offset, forward ? 1 : -1);
}

uint64_t TSXDateSpec::NumberFromOffset(int32_t offset) const {
  return imp_->NumberFromOffset(offset);
}

int32_t TSXDateSpec::OffsetFromNumber(uint64_t number) const {
  return imp_->OffsetFromNumber(number);
}
