// TSAutocorrelation: sample autocorrelations and partial autocorrelations of
// a series, with their standard errors.
#ifndef TSXML_MODELAPI_AUTOCORRELATION_H
#define TSXML_MODELAPI_AUTOCORRELATION_H

#include <valarray>

#include "tsxml/base/export.h"
#include "tsxml/base/status.h"
#include "tsxml/modelapi/span.h"
#include "tsxml/modelapi/transform.h"

// Both functions take the cases of `series` that `span` covers (Begin() to
// Begin() + Length(), clipped to the series; the horizon is not used), apply
// `transformation` and then drop every missing value (MV::gMissingValue) and
// every value outside the transformation's domain; n is the count of what
// remains. The lags run from 1 to `lagCount`, at most to n - 1, so the
// outputs hold min(lagCount, n - 1) values. `seasonLength` does not change
// these estimates. On failure the outputs are emptied and the status tells
// why; nothing is thrown but an allocation failure.
class TSXML_API TSAutocorrelation {
 public:
  enum StatusCode : long {
    kBadLagCount = 40301,   // `lagCount` below 1
    kTooFewValues = 40302,  // fewer than 2 values remain
    kNoVariation = 40303,   // all remaining values are equal
  };

  // The sample autocorrelation r_k (the mean removed, denominator n) at lags
  // 1 to lagCount, and Bartlett's standard errors
  // sqrt((1 + 2 * (r_1^2 + ... + r_(k-1)^2)) / n).
  static OstraTime::OstraStatus ComputeACF(
      const TSSpan& span, const TSTransformation& transformation,
      unsigned seasonLength, int lagCount, const std::valarray<double>& series,
      std::valarray<double>& acf, std::valarray<double>& stdErrors);

  // The partial autocorrelations at the same lags, by the Durbin-Levinson
  // recursion on those autocorrelations, and their one standard error
  // 1 / sqrt(n). A lag at which the recursion's prediction error variance
  // has reached 0 (the series is predicted exactly) and every later lag are
  // missing.
  static OstraTime::OstraStatus ComputePACF(
      const TSSpan& span, const TSTransformation& transformation,
      unsigned seasonLength, int lagCount, const std::valarray<double>& series,
      std::valarray<double>& pacf, double& stdError);
};

#endif  // TSXML_MODELAPI_AUTOCORRELATION_H
