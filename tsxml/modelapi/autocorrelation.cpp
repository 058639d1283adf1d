#include "tsxml/modelapi/autocorrelation.h"

#include <cmath>
#include <cstddef>
#include <vector>

#include "tsxml/base/missing_value.h"

namespace {

using OstraTime::OstraStatus;

// The value `x` takes under a transformation of `function`; false when `x`
// is missing or outside the transformation's domain.
bool Transform(unsigned function, double x, double& y) {
  if (MV::IsMissing(x)) return false;
  switch (function) {
    case BFSharedConst::Logarithm:
      if (!(x > 0.0)) return false;
      y = std::log(x);
      return true;
    case BFSharedConst::SquareRoot:
      if (!(x >= 0.0)) return false;
      y = std::sqrt(x);
      return true;
    default:
      y = x;
      return true;
  }
}

// The sample autocorrelations r_1 .. r_lags of the usable values of
// `series`, and the count n of those values.
struct Correlations {
  std::vector<double> r;
  size_t n = 0;
};

OstraStatus Autocorrelations(const TSSpan& span,
                             const TSTransformation& transformation,
                             int lagCount, const std::valarray<double>& series,
                             Correlations& out) {
  if (lagCount < 1) return OstraStatus(TSAutocorrelation::kBadLagCount, false);

  const size_t size = series.size();
  const int64_t begin = span.Begin();
  size_t first = 0;
  if (begin > 0) {
    first =
        static_cast<uint64_t>(begin) < size ? static_cast<size_t>(begin) : size;
  }
  // The cases before the series (a negative begin) count towards the length.
  uint64_t length = span.Length();
  if (begin < 0) {
    const uint64_t before = 0 - static_cast<uint64_t>(begin);
    length = length > before ? length - before : 0;
  }
  const size_t last =
      length < size - first ? first + static_cast<size_t>(length) : size;

  std::vector<double> values;
  values.reserve(last - first);
  for (size_t t = first; t < last; ++t) {
    double y = 0.0;
    if (Transform(transformation.GetFunctionType(), series[t], y)) {
      values.push_back(y);
    }
  }
  const size_t n = values.size();
  if (n < 2) return OstraStatus(TSAutocorrelation::kTooFewValues, false);

  double mean = 0.0;
  for (double v : values) mean += v;
  mean /= static_cast<double>(n);
  double c0 = 0.0;
  for (double& v : values) {
    v -= mean;
    c0 += v * v;
  }
  if (!(c0 > 0.0)) return OstraStatus(TSAutocorrelation::kNoVariation, false);

  const size_t lags =
      static_cast<size_t>(lagCount) < n ? static_cast<size_t>(lagCount) : n - 1;
  out.r.assign(lags, 0.0);
  for (size_t k = 1; k <= lags; ++k) {
    double ck = 0.0;
    for (size_t t = 0; t + k < n; ++t) ck += values[t] * values[t + k];
    out.r[k - 1] = ck / c0;
  }
  out.n = n;
  return OstraStatus();
}

}  // namespace

OstraStatus TSAutocorrelation::ComputeACF(
    const TSSpan& span, const TSTransformation& transformation,
    unsigned /*seasonLength*/, int lagCount,
    const std::valarray<double>& series, std::valarray<double>& acf,
    std::valarray<double>& stdErrors) {
  Correlations c;
  const OstraStatus status =
      Autocorrelations(span, transformation, lagCount, series, c);
  std::valarray<double> values(c.r.size());
  std::valarray<double> errors(c.r.size());
  const double n = static_cast<double>(c.n);
  double sumOfSquares = 0.0;
  for (size_t k = 0; k < c.r.size(); ++k) {
    values[k] = c.r[k];
    errors[k] = std::sqrt((1.0 + 2.0 * sumOfSquares) / n);
    sumOfSquares += c.r[k] * c.r[k];
  }
  acf.swap(values);
  stdErrors.swap(errors);
  return status;
}

OstraStatus TSAutocorrelation::ComputePACF(
    const TSSpan& span, const TSTransformation& transformation,
    unsigned /*seasonLength*/, int lagCount,
    const std::valarray<double>& series, std::valarray<double>& pacf,
    double& stdError) {
  Correlations c;
  const OstraStatus status =
      Autocorrelations(span, transformation, lagCount, series, c);
  const size_t lags = c.r.size();
  std::valarray<double> values(MV::gMissingValue, lags);
  // phi[j - 1] is the j-th coefficient of the best linear predictor from the
  // previous k values; v its error variance relative to that of the series.
  std::vector<double> phi(lags, 0.0);
  std::vector<double> previous(lags, 0.0);
  double v = 1.0;
  for (size_t k = 1; k <= lags && v > 0.0; ++k) {
    double numerator = c.r[k - 1];
    for (size_t j = 1; j < k; ++j) numerator -= phi[j - 1] * c.r[k - j - 1];
    const double phiKK = numerator / v;
    previous = phi;
    for (size_t j = 1; j < k; ++j) {
      phi[j - 1] = previous[j - 1] - phiKK * previous[k - j - 1];
    }
    phi[k - 1] = phiKK;
    values[k - 1] = phiKK;
    v *= 1.0 - phiKK * phiKK;
  }
  pacf.swap(values);
  stdError = status.IsOK() ? std::sqrt(1.0 / static_cast<double>(c.n))
                           : MV::gMissingValue;
  return status;
}
