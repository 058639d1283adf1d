// Error bounds of the distribution functions, derived from their stopping
// rules.
#ifndef TSXML_TESTS_PMML_DISTRIBUTION_TOLERANCES_H
#define TSXML_TESTS_PMML_DISTRIBUTION_TOLERANCES_H

#include <algorithm>
#include <cmath>
#include <limits>

namespace distribution_test {

inline constexpr double kEps = std::numeric_limits<double>::epsilon();

// exp(-708): the incomplete beta and the normal CDF flush values below it to
// 0, so results this small are compared absolutely.
inline const double kFlushedToZero = std::exp(-708.0);

// The error of TSXIncompleteBeta(x, a, b), as rel * value + abs.
struct BetaBound {
  double rel;
  double abs;
};

inline BetaBound IncompleteBetaBound(double x, double y, double a, double b) {
  const double n = a + b;
  // The prefactor is exp(e), e a sum of log-gamma values and logs good to
  // about 2 eps each: e is off by 4 eps times the larger of the two
  // orientations' sums of magnitudes.
  const double common = std::fabs(std::lgamma(n));
  const double direct = std::fabs(std::lgamma(a + 1)) +
                        std::fabs(std::lgamma(b)) + std::fabs(b * std::log(y)) +
                        std::fabs(a * std::log(x));
  const double swapped =
      std::fabs(std::lgamma(b + 1)) + std::fabs(std::lgamma(a)) +
      std::fabs(a * std::log(y)) + std::fabs(b * std::log(x));
  double terms = common + std::max(direct, swapped);
  if (!std::isfinite(terms)) terms = 0;
  // The continued fraction stops when two convergents agree to
  // max(1, a + b) * 10 eps.
  const double fraction = std::max(1.0, n) * 10 * kEps;
  // The series stops at a term below 1e-15: with ratio q the tail is below
  // 1e-15 q / (1 - q), at most about 400 times that within its 10001 terms.
  // Through a complement 1 - r the tail and the roundings of 1 - r and of
  // y = 1 - x count at the scale of 1.
  const double q = std::max(x, y);
  const double tail = 1e-15 * std::min(q / (1 - q), 400.0);
  return {fraction + 4 * kEps * terms + 8 * kEps, tail + 4 * kEps};
}

// The same for an x whose complement 1 - x is exact.
inline BetaBound IncompleteBetaBound(double x, double a, double b) {
  return IncompleteBetaBound(x, 1 - x, a, b);
}

// `tails` = t^2 / (df + t^2) and `body` = df / (df + t^2), free of overflow.
struct BetaArgument {
  double tails;
  double body;
};

inline BetaArgument TToBeta(double t, double df) {
  if (t == 0) return {0, 1};
  const double r = df / std::fabs(t) / std::fabs(t);
  return {1 / (1 + r), r / (1 + r)};
}

// Absolute error allowed for TSXStudentTCDF(x, df) around the value `f`.
inline double StudentTCDFTolerance(double x, double df, double f) {
  // df 1: atan(x) / pi + 0.5, rounded at the scale of 1/2.
  if (df == 1) return 2 * kEps * f + kEps + kFlushedToZero;
  const double w = std::fabs(x);
  const BetaArgument arg = TToBeta(x, df);
  const BetaBound beta = IncompleteBetaBound(arg.tails, arg.body, 0.5, df / 2);
  // The incomplete beta gives v = |2 f - 1| for w <= 1, else twice the tail.
  const double v = w <= 1 ? std::fabs(2 * f - 1) : 2 * std::min(f, 1 - f);
  // For df above 2 and |x| >= 2 the tail is summed directly, never as a
  // complement, so only the relative part applies there.
  const double abs = df > 2 && w >= 2 ? 0 : beta.abs;
  return 0.5 * (beta.rel * v + abs) + 2 * kEps * f + kFlushedToZero;
}

// Relative error allowed for TSXStudentTQuantile(p, df) = t, with `density`
// the t density at t. Valid where X = df / (df + t^2) and 1 - X are at least
// 1e-8, and min(p, 1 - p) >= 1e-20.
inline double StudentTQuantileTolerance(double p, double df, double t,
                                        double density) {
  const BetaArgument arg = TToBeta(t, df);
  // The Newton iteration stops once its step is at most 1e-10, so X is found
  // to about 1e-10; t^2 = df (1 - X) / X turns that into a relative error of
  // 1e-10 / (X (1 - X)), halved by the square root.
  double rel = 0.5 * 1e-10 / (arg.body * arg.tails) + 4 * kEps;
  // Above 1/2 the tail 2 - p - p rounds 2 - p by up to half an ulp; one ulp
  // is allowed, for the curvature of t where that is a sizeable part of it.
  if (p > 0.5) rel += kEps / (2 * density * std::fabs(t));
  // The root found is that of the computed distribution function.
  rel += StudentTCDFTolerance(t, df, p) / (density * std::fabs(t));
  return rel;
}

}  // namespace distribution_test

#endif  // TSXML_TESTS_PMML_DISTRIBUTION_TOLERANCES_H
