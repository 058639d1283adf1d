// Accuracy of the distribution functions against Boost.Math, an independent
// implementation, over grids of their arguments.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <vector>

#include "stats/distribution_tolerances.h"
#include "tsxml/stats/distributions.h"

namespace {

using distribution_test::kEps;
using distribution_test::StudentTCDFTolerance;
using distribution_test::StudentTQuantileTolerance;

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

TEST(AccuracyTest, Erf) {
  std::vector<double> xs = Grid(-10, 10, 1.0 / 512);
  for (double x : {1e-300, 1e-100, 1e-10, 2.2, 6.9}) {
    xs.push_back(x);
    xs.push_back(std::nextafter(x, 0.0));
  }
  for (double x : xs) {
    const double want = boost::math::erf(x);
    const double got = TSXErf(x);
    // Ooura's tables are good to an ulp; with w * P or 1 - y^16 on top the
    // result is good to 3 eps.
    ASSERT_LE(std::fabs(got - want), 3 * kEps * std::fabs(want)) << x;
  }
}

TEST(AccuracyTest, NormalCDF) {
  const boost::math::normal normal;
  for (double x : Grid(-10, 10, 1.0 / 512)) {
    const double want = boost::math::cdf(normal, x);
    const double got = TSXNormalCDF(x);
    // Below 0: exp(log(y) - w^2), w = -x / sqrt(2); rounding the exponent
    // (size up to w^2) costs (1 + w^2) eps, 4 of them are allowed. Above 0:
    // (erf + 1) / 2, a few eps.
    const double w2 = x < 0 ? x * x / 2 : 0;
    ASSERT_LE(std::fabs(got - want), 4 * (1 + w2) * kEps * want) << x;
  }
}

TEST(AccuracyTest, LogGamma) {
  std::vector<double> xs = Grid(1.0 / 256, 200, 1.0 / 256);
  for (double e = -300; e < 0; e += 0.5) xs.push_back(std::pow(10.0, e));
  for (double x : xs) {
    const double want = boost::math::lgamma(x);
    const double got = TSXLogGamma(x);
    // The tables are good to about 2 eps relative; near the zeros at 1 and
    // 2 that holds absolutely (relative error there is not meaningful).
    const double scale = std::max(1.0, std::fabs(want));
    ASSERT_LE(std::fabs(got - want), 4 * kEps * scale) << x;
  }
}

TEST(AccuracyTest, NormalQuantile) {
  const boost::math::normal normal;
  std::vector<double> ps = Probabilities(1e-300, 1e-16);
  ps.push_back(1 - 1e-16);
  for (double p : ps) {
    const double want = boost::math::quantile(normal, p);
    const double got = TSXNormalQuantile(p);
    // AS 241 (PPND16) is good to about 1e-16 relative.
    ASSERT_LE(std::fabs(got - want), 4 * kEps * std::fabs(want)) << p;
  }
}

const double kDfs[] = {1, 1.5, 2, 3, 5, 10, 30, 100, 1e3, 1e5, 1e7};

std::vector<double> TArguments() {
  std::vector<double> xs = Grid(-60, 60, 1.0 / 16);
  for (double e = -300; e <= 300; e += 4) {
    xs.push_back(std::pow(10.0, e));
    xs.push_back(-std::pow(10.0, e));
  }
  return xs;
}

TEST(AccuracyTest, StudentTCDF) {
  int status = 0;
  for (double df : kDfs) {
    const boost::math::students_t dist(df);
    for (double x : TArguments()) {
      // Boost's df-1 path loses x near 0 (0.5 for |x| <= 1e-10); there the
      // Cauchy distribution in long double serves as the reference.
      const double want =
          df == 1 ? static_cast<double>(0.5L +
                                        std::atan(static_cast<long double>(x)) /
                                            3.141592653589793238462643L)
                  : boost::math::cdf(dist, x);
      const double got = TSXStudentTCDF(x, df, status);
      ASSERT_EQ(status, 0);
      // See StudentTCDFTolerance: the stopping rules of the incomplete beta,
      // the conditioning of its prefactor, and complements taken at the
      // scale of 1; absolute below exp(-708).
      ASSERT_LE(std::fabs(got - want), StudentTCDFTolerance(x, df, want))
          << x << " " << df;
    }
  }
}

TEST(AccuracyTest, StudentTQuantile) {
  int status = 0;
  for (double df : kDfs) {
    const boost::math::students_t dist(df);
    for (double p : Probabilities(1e-300, 1e-15)) {
      const double want = boost::math::quantile(dist, p);
      const double got = TSXStudentTQuantile(p, df, status);
      const distribution_test::BetaArgument arg =
          distribution_test::TToBeta(want, df);
      // The iteration finds X = df / (df + t^2) to an absolute 1e-10 after
      // clamping its start to [1e-8, 1 - 1e-7], so relative accuracy needs
      // X and 1 - X above 1e-8. AS 109's start value misses badly for tails
      // below about 1e-20, where 50 Newton passes need not reach the root.
      const bool checked =
          std::min(arg.body, arg.tails) >= 1e-8 && std::min(p, 1 - p) >= 1e-20;
      if (!checked) {
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
