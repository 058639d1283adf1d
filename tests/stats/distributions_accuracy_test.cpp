// Accuracy of the distribution functions against Boost.Math, an independent
// implementation, over grids of their arguments.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <limits>
#include <vector>

#include "tsxml/stats/distributions.h"

namespace {

// Error bounds derived from the functions' stopping rules.
constexpr double kEps = std::numeric_limits<double>::epsilon();

// Values below exp(-708) are flushed to 0: compared absolutely.
const double kFlushedToZero = std::exp(-708.0);

// The error of TSXIncompleteBeta(x, a, b), y = 1 - x, as rel * value + abs.
struct BetaBound {
  double rel, abs;
};

BetaBound IncompleteBetaBound(double x, double y, double a, double b) {
  const double n = a + b;
  // The prefactor is exp(e), e a sum of log-gammas and logs good to about
  // 2 eps each: 4 eps times the larger orientation's sum of magnitudes.
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
  // max(1, a + b) * 10 eps; the series at a term below 1e-15, so with ratio q
  // its tail is below 1e-15 q / (1 - q), at most about 400 times that within
  // its 10001 terms. Through a complement 1 - r the tail and the roundings of
  // 1 - r and of y count at the scale of 1.
  const double fraction = std::max(1.0, n) * 10 * kEps;
  const double q = std::max(x, y);
  const double tail = 1e-15 * std::min(q / (1 - q), 400.0);
  return {fraction + 4 * kEps * terms + 8 * kEps, tail + 4 * kEps};
}

// `tails` = t^2 / (df + t^2) and `body` = df / (df + t^2), free of overflow.
struct BetaArgument {
  double tails, body;
};

BetaArgument TToBeta(double t, double df) {
  if (t == 0) return {0, 1};
  const double r = df / std::fabs(t) / std::fabs(t);
  return {1 / (1 + r), r / (1 + r)};
}

// Absolute error allowed for TSXStudentTCDF(x, df) around the value `f`.
double StudentTCDFTolerance(double x, double df, double f) {
  // df 1: atan(x) / pi + 0.5, rounded at the scale of 1/2.
  if (df == 1) return 2 * kEps * f + kEps + kFlushedToZero;
  const double w = std::fabs(x);
  const BetaArgument arg = TToBeta(x, df);
  const BetaBound beta = IncompleteBetaBound(arg.tails, arg.body, 0.5, df / 2);
  // The incomplete beta gives |2 f - 1| for w <= 1, else twice the tail.
  const double v = w <= 1 ? std::fabs(2 * f - 1) : 2 * std::min(f, 1 - f);
  // For df above 2 and |x| >= 2 the tail is summed directly, never as a
  // complement, so only the relative part applies there.
  const double abs = df > 2 && w >= 2 ? 0 : beta.abs;
  return 0.5 * (beta.rel * v + abs) + 2 * kEps * f + kFlushedToZero;
}

// Relative error allowed for TSXStudentTQuantile(p, df) = t, with `density`
// the t density at t. Valid where X = df / (df + t^2) and 1 - X are at least
// 1e-8, and min(p, 1 - p) >= 1e-20.
double StudentTQuantileTolerance(double p, double df, double t,
                                 double density) {
  const BetaArgument arg = TToBeta(t, df);
  // Newton stops at a step of 1e-10 in X; t^2 = df (1 - X) / X makes that a
  // relative error of 1e-10 / (X (1 - X)), halved by the square root.
  double rel = 0.5 * 1e-10 / (arg.body * arg.tails) + 4 * kEps;
  // Above 1/2, 2 - p - p rounds by up to half an ulp; one ulp is allowed.
  if (p > 0.5) rel += kEps / (2 * density * std::fabs(t));
  // The root found is that of the computed distribution function.
  rel += StudentTCDFTolerance(t, df, p) / (density * std::fabs(t));
  return rel;
}

std::vector<double> Grid(double from, double to, double step) {
  std::vector<double> grid;
  for (double v = from; v <= to; v += step) grid.push_back(v);
  return grid;
}

// Probabilities from `smallest` up to 1/2 and their complements down to
// 1 - `closest_to_one`, spaced evenly in log10.
std::vector<double> Probabilities(double smallest, double closest_to_one) {
  std::vector<double> ps;
  for (double e = std::log10(smallest); e < std::log10(0.5); e += 0.125) {
    const double p = std::pow(10.0, e);
    ps.push_back(p);
    if (p >= closest_to_one) ps.push_back(1 - p);
  }
  return ps;
}

TEST(AccuracyTest, SpecialFunctions) {
  std::vector<double> xs = Grid(-10, 10, 1.0 / 512);
  for (double x : {1e-300, 1e-100, 1e-10, 2.2, 6.9}) {
    xs.push_back(x);
    xs.push_back(std::nextafter(x, 0.0));
  }
  for (double x : xs) {
    // Ooura's tables are good to an ulp; with w * P or 1 - y^16 on top the
    // result is good to 3 eps.
    const double want = boost::math::erf(x);
    ASSERT_LE(std::fabs(TSXErf(x) - want), 3 * kEps * std::fabs(want)) << x;
  }
  const boost::math::normal normal;
  for (double x : Grid(-37.5, 38, 1.0 / 512)) {
    // Below 0: exp(log(y) - w^2), w = -x / sqrt(2); rounding the exponent
    // (size up to w^2) costs (1 + w^2) eps, 4 of them are allowed. Above 0:
    // (erf + 1) / 2, a few eps. Below -37.5 the value is flushed to 0.
    const double want = boost::math::cdf(normal, x);
    const double w2 = x < 0 ? x * x / 2 : 0;
    ASSERT_LE(std::fabs(TSXNormalCDF(x) - want), 4 * (1 + w2) * kEps * want)
        << x;
  }
  xs = Grid(1.0 / 256, 200, 1.0 / 256);
  for (double e = -300; e < 0; e += 0.5) xs.push_back(std::pow(10.0, e));
  for (double x : xs) {
    // The tables are good to about 2 eps relative; near the zeros at 1 and
    // 2 that holds absolutely (relative error there is not meaningful).
    const double want = boost::math::lgamma(x);
    ASSERT_LE(std::fabs(TSXLogGamma(x) - want),
              4 * kEps * std::max(1.0, std::fabs(want)))
        << x;
  }
  xs = Probabilities(1e-300, 1e-16);
  xs.push_back(1 - 1e-16);
  for (double p : xs) {
    // AS 241 (PPND16) is good to about 1e-16 relative.
    const double want = boost::math::quantile(normal, p);
    ASSERT_LE(std::fabs(TSXNormalQuantile(p) - want),
              4 * kEps * std::fabs(want))
        << p;
  }
}

TEST(AccuracyTest, IncompleteBeta) {
  // Both orders, the series (a or b at most 1), the continued fraction, the
  // closed forms at a or b of 1.
  const double params[] = {0.05, 0.5, 0.9, 1,    1.5,   2,  5,
                           7.25, 17,  30,  40.5, 500.0, 2e4};
  int status = 7;
  for (double a : params) {
    for (double b : params) {
      for (int k = 1; k < 64; ++k) {
        const double x = k / 64.0;  // 1 - x exact
        const double want = boost::math::ibeta(a, b, x);
        const auto bound = IncompleteBetaBound(x, 1 - x, a, b);
        ASSERT_NEAR(TSXIncompleteBeta(x, a, b, status), want,
                    bound.rel * want + bound.abs)
            << x << " " << a << " " << b;
        ASSERT_EQ(status, 0);
      }
    }
  }
  // At a = b = 1e12 the continued fraction stops at (a + b) 10 eps, about
  // 4e-3: held to 1e-2. I_1/2(a, a) is 1/2.
  const double huge = 1e12;
  for (double z : {-3.0, -1.0, -0.3, 0.3, 1.0, 3.0}) {
    const double x = 0.5 + z * std::sqrt(0.125 / huge);
    EXPECT_NEAR(TSXIncompleteBeta(x, huge, huge, status),
                boost::math::ibeta(huge, huge, x), 1e-2)
        << z;
    EXPECT_EQ(status, 0);
  }
  EXPECT_NEAR(TSXIncompleteBeta(0.5, huge, huge, status), 0.5, 1e-9);
}

const double kDfs[] = {1e-3, 0.5, 1,   1.5, 2,   3,   4,   5,  7.5,
                       10,   30,  100, 1e3, 1e5, 1e6, 1e7, 1e8};

TEST(AccuracyTest, StudentTCDF) {
  std::vector<double> xs = Grid(-60, 60, 1.0 / 16);
  for (double e = -300; e <= 300; e += 4) {
    xs.push_back(std::pow(10.0, e));
    xs.push_back(-std::pow(10.0, e));
  }
  int status = 0;
  for (double df : kDfs) {
    const boost::math::students_t dist(df);
    for (double x : xs) {
      // Boost's reference takes t^2, which overflows from |t| 1e155 on; the
      // tail it then drops is still sizeable below df 1.
      if (df < 1 && std::isinf(x * x)) continue;
      // Boost's df-1 path loses x near 0 (0.5 for |x| <= 1e-10); there the
      // Cauchy distribution in long double serves as the reference.
      const double want =
          df == 1 ? static_cast<double>(0.5L +
                                        std::atan(static_cast<long double>(x)) /
                                            3.141592653589793238462643L)
                  : boost::math::cdf(dist, x);
      const double got = TSXStudentTCDF(x, df, status);
      ASSERT_EQ(status, 0);
      ASSERT_LE(std::fabs(got - want), StudentTCDFTolerance(x, df, want))
          << x << " " << df;
    }
  }
}

TEST(AccuracyTest, StudentTQuantile) {
  int status = 0;
  for (double df :
       {1.0, 1.5, 2.0, 3.0, 5.0, 10.0, 30.0, 100.0, 1e3, 1e5, 1e7}) {
    const boost::math::students_t dist(df);
    for (double p : Probabilities(1e-300, 1e-15)) {
      const double want = boost::math::quantile(dist, p);
      const double got = TSXStudentTQuantile(p, df, status);
      const BetaArgument arg = TToBeta(want, df);
      // X = df / (df + t^2) is found to 1e-10 from a start clamped to
      // [1e-8, 1 - 1e-7]: relative accuracy needs X and 1 - X above 1e-8.
      // Below tails of 1e-20 AS 109's start misses too far for 50 passes.
      if (std::min(arg.body, arg.tails) < 1e-8 || std::min(p, 1 - p) < 1e-20) {
        if (status == 0) {
          ASSERT_EQ(got < 0, p < 0.5) << p << " " << df;
        }
        continue;
      }
      ASSERT_EQ(status, 0) << p << " " << df;
      const double density = boost::math::pdf(dist, want);
      ASSERT_LE(
          std::fabs(got - want),
          StudentTQuantileTolerance(p, df, want, density) * std::fabs(want))
          << p << " " << df;
    }
  }
}

}  // namespace
