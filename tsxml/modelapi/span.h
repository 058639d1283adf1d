// TSSpan: a stretch of a series' cases.
#ifndef TSXML_MODELAPI_SPAN_H
#define TSXML_MODELAPI_SPAN_H

#include <cstdint>

#include "tsxml/base/export.h"

// First case, number of cases, and how far a forecast state reaches beyond
// the last case.
class TSXML_API TSSpan {
 public:
  TSSpan() = default;
  TSSpan(int64_t begin, uint64_t length, uint64_t horizon = 0)
      : begin_(begin), length_(length), horizon_(horizon) {}

  int64_t Begin() const { return begin_; }
  uint64_t Length() const { return length_; }
  uint64_t Horizon() const { return horizon_; }

 private:
  int64_t begin_ = 0;
  uint64_t length_ = 0;
  uint64_t horizon_ = 0;
};

#endif  // TSXML_MODELAPI_SPAN_H
