#include "tsxml/modelapi/sym_matrix.h"

#include <algorithm>
#include <utility>

DSymMat::DSymMat(unsigned n)
    : n_(n), values_(0.0, static_cast<size_t>(n) * (n + size_t{1}) / 2) {}

DSymMat::DSymMat(unsigned n, const std::valarray<double>& packed) : DSymMat(n) {
  const size_t count = std::min(values_.size(), packed.size());
  for (size_t i = 0; i < count; ++i) values_[i] = packed[i];
}

size_t DSymMat::Position(unsigned r, unsigned c) const {
  if (r >= n_ || c >= n_) return values_.size();
  if (c > r) std::swap(r, c);
  return static_cast<size_t>(r) * (r + size_t{1}) / 2 + c;
}

double DSymMat::operator()(unsigned r, unsigned c) const {
  const size_t position = Position(r, c);
  return position < values_.size() ? values_[position] : 0.0;
}

void DSymMat::Set(unsigned r, unsigned c, double value) {
  const size_t position = Position(r, c);
  if (position < values_.size()) values_[position] = value;
}
