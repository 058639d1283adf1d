// DSymMat: a symmetric matrix of doubles.
#ifndef TSXML_MODELAPI_SYM_MATRIX_H
#define TSXML_MODELAPI_SYM_MATRIX_H

#include <cstddef>
#include <valarray>

#include "tsxml/base/export.h"

// An n by n symmetric matrix kept as its lower triangle, row by row: element
// (r, c) with c <= r is stored at r * (r + 1) / 2 + c. AsArray gives that
// packed form, n * (n + 1) / 2 values.
class TSXML_API DSymMat {
 public:
  // An n by n matrix of zeros.
  explicit DSymMat(unsigned n = 0);
  // An n by n matrix from the packed lower triangle; values missing from
  // `packed` are 0 and extra ones are dropped.
  DSymMat(unsigned n, const std::valarray<double>& packed);

  unsigned NRows() const { return n_; }
  // Element (r, c), the same as (c, r); 0 outside the matrix.
  double operator()(unsigned r, unsigned c) const;
  // Sets (r, c) and so (c, r); ignored outside the matrix.
  void Set(unsigned r, unsigned c, double value);
  // The packed lower triangle.
  const std::valarray<double>& AsArray() const { return values_; }

 private:
  // The packed position of (r, c), or the size of the array outside.
  size_t Position(unsigned r, unsigned c) const;

  unsigned n_;
  std::valarray<double> values_;
};

#endif  // TSXML_MODELAPI_SYM_MATRIX_H
