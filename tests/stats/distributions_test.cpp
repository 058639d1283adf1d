// Edges, status codes and invariants of the distribution functions; their
// accuracy over grids is compared with Boost.Math in
// distributions_accuracy_test.cpp.
#include "tsxml/stats/distributions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "stats/distribution_tolerances.h"
#include "tsxml/base/missing_value.h"

namespace {

using distribution_test::IncompleteBetaBound;
using distribution_test::kEps;
using distribution_test::StudentTCDFTolerance;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kMissing = MV::gMissingValue;
constexpr double kPi = 3.14159265358979323846;

bool Missing(double v) { return MV::IsMissing(v); }

// Arguments no caller should send, and the extremes of the double range.
const double kOddArguments[] = {
    kNaN,   -kNaN,   kInf,  -kInf,  0.0, -0.0, kMax, -kMax, kTiny, -kTiny,
    1e-300, -1e-300, 1e300, -1e300, 1.0, -1.0, 0.5,  1e8,   1e308};

TEST(SpecialFunctionsTest, ExactValuesAtTheEdges) {
  const double sqrtMax = std::sqrt(kMax);
  const struct {
    double (*f)(double);
    std::vector<double> args;
    double want;
  } cases[] = {
      {TSXErf, {0.0}, 0.0},
      {TSXErf, {kInf, 6.9}, 1.0},
      {TSXErf, {-kInf, -kMax}, -1.0},
      {TSXNormalCDF, {0.0, -0.0}, 0.5},
      {TSXNormalCDF, {-38.0, -kMax, -kInf}, 0.0},
      {TSXNormalCDF, {kInf, kMax}, 1.0},
      {TSXNormalQuantile, {0.5}, 0.0},
      {TSXLogGamma, {1.0, 2.0}, 0.0},
      {TSXLogGamma, {0.5}, std::log(kPi) * 0.5},
      {TSXLogGamma, {kInf, kMax}, kInf},
      {TSXPeizerPrattG, {0.0, -0.0}, 1.0},
      {TSXPeizerPrattG, {1.0}, 0.0},
      {TSXPeizerPrattG,
       {kInf, kMax, sqrtMax * 2, std::nextafter(sqrtMax, kInf)},
       -1.0},
      // Outside the domain: the missing value.
      {TSXErf, {kNaN}, kMissing},
      {TSXNormalCDF, {kNaN}, kMissing},
      {TSXNormalQuantile,
       {0.0, -0.0, 1.0, -1e-300, 1.0000000000000002, kInf, -kInf, kNaN, kMax},
       kMissing},
      {TSXLogGamma,
       {0.0, -0.0, -1.0, -0.5, -1e-300, -kInf, -kMax, kNaN},
       kMissing},
      {TSXPeizerPrattG, {-1e-300, kNaN}, kMissing}};
  for (const auto& c : cases) {
    for (double x : c.args) EXPECT_EQ(c.f(x), c.want) << &c - cases << " " << x;
  }
  EXPECT_TRUE(std::signbit(TSXErf(-0.0)));
  EXPECT_GT(TSXErf(kTiny), 0.0);
  // The last value before the flush, beyond the accuracy grid: good to
  // 4 (1 + x^2 / 2) eps relative.
  EXPECT_LE(std::fabs(TSXNormalCDF(-37.5) - 4.6053530095819548438e-308),
            4 * (1 + 37.5 * 37.5 / 2) * kEps * 4.6053530095819548438e-308);
  EXPECT_TRUE(std::isfinite(TSXNormalQuantile(kTiny)));
  EXPECT_LT(TSXNormalQuantile(kTiny), -38.0);
  EXPECT_TRUE(std::isfinite(TSXPeizerPrattG(sqrtMax)));
  EXPECT_NEAR(TSXPeizerPrattG(2.0), 4 * std::log(2.0) - 3, 4 * kEps);
  EXPECT_NEAR(TSXLogGamma(kTiny), 744.44007192138126, 1e-12);
  // Beyond the accuracy grid; good to about 2 eps relative.
  EXPECT_LE(std::fabs(TSXLogGamma(1e10) - 220258509288.81058147),
            4 * kEps * 220258509288.81058147);
  EXPECT_LE(std::fabs(TSXLogGamma(1e300) - 6.8977552789821370521e+302),
            4 * kEps * 6.8977552789821370521e+302);
}

TEST(SpecialFunctionsTest, SymmetriesAndMonotonicity) {
  double last = 0;
  for (double x = -40; x <= 40; x += 1.0 / 64) {
    const double v = TSXNormalCDF(x);
    ASSERT_GE(v, last) << x;
    EXPECT_NEAR(v + TSXNormalCDF(-x), 1.0, 4 * kEps) << x;
    last = v;
  }
  for (int k = 1; k < 1024; ++k) {
    const double p = k / 1024.0;  // p and 1 - p exact
    ASSERT_EQ(TSXNormalQuantile(1 - p), -TSXNormalQuantile(p)) << p;
  }
  // g(1 / x) = -g(x); away from 1, where the numerator cancels.
  for (double x = 0.001; x < 0.9; x += 0.001) {
    ASSERT_NEAR(TSXPeizerPrattG(1 / x), -TSXPeizerPrattG(x), 1e-13) << x;
  }
}

TEST(IncompleteBetaTest, LimitsAndClosedForms) {
  int status = 7;
  for (double a : {0.1, 0.5, 1.0, 2.5, 40.0, 1e6}) {
    for (double b : {0.1, 0.5, 1.0, 3.0, 1e6}) {
      for (double x : {0.0, -0.0, -1.0, -kInf, -kMax}) {
        EXPECT_EQ(TSXIncompleteBeta(x, a, b, status), 0.0);
        EXPECT_EQ(status, 0);
      }
      for (double x : {1.0, 1.5, kInf, kMax}) {
        EXPECT_EQ(TSXIncompleteBeta(x, a, b, status), 1.0);
        EXPECT_EQ(status, 0);
      }
    }
  }
  for (double x = 1.0 / 64; x < 1; x += 1.0 / 64) {
    EXPECT_EQ(TSXIncompleteBeta(x, 1, 1, status), x);
    // I_x(1, b) = 1 - (1 - x)^b and I_x(a, 1) = x^a.
    EXPECT_NEAR(TSXIncompleteBeta(x, 1, 3.5, status), 1 - std::pow(1 - x, 3.5),
                4 * kEps);
    EXPECT_NEAR(TSXIncompleteBeta(x, 0.25, 1, status), std::pow(x, 0.25),
                4 * kEps);
  }
  // I_0.3(2, 3) = P(Binomial(4, 0.3) >= 2) = 0.3483.
  const auto bound = IncompleteBetaBound(0.3, 2, 3);
  EXPECT_NEAR(TSXIncompleteBeta(0.3, 2, 3, status), 0.3483,
              bound.rel * 0.3483 + bound.abs);
  EXPECT_EQ(status, 0);
  // exp below -708 is not taken: the value is then 0 (or its complement 1).
  EXPECT_EQ(TSXIncompleteBeta(1e-300, 3, 1, status), 0.0);
  EXPECT_EQ(TSXIncompleteBeta(1e-3, 200, 3, status), 0.0);
  EXPECT_EQ(TSXIncompleteBeta(1 - 1e-3, 3, 200, status), 1.0);
  EXPECT_EQ(TSXIncompleteBeta(1 - 1e-15, 1, 1e5, status), 1.0);
}

// P(Binomial(a + b - 1, x) >= a), summed in long double.
double BinomialUpperTail(double x, int a, int b) {
  const int n = a + b - 1;
  long double sum = 0;
  long double coeff = 1;  // C(n, j)
  for (int j = 0; j <= n; ++j) {
    if (j >= a) {
      sum += coeff * std::pow(static_cast<long double>(x), j) *
             std::pow(1.0L - static_cast<long double>(x), n - j);
    }
    coeff = coeff * (n - j) / (j + 1);
  }
  return static_cast<double>(sum);
}

TEST(IncompleteBetaTest, MatchesBinomialSumsAndItsReflection) {
  int status = 7;
  for (int a = 2; a <= 40; a += 3) {
    for (int b = 2; b <= 40; b += 4) {
      for (int k = 1; k < 64; ++k) {
        const double x = k / 64.0;
        const double want = BinomialUpperTail(x, a, b);
        const auto bound = IncompleteBetaBound(x, a, b);
        ASSERT_NEAR(TSXIncompleteBeta(x, a, b, status), want,
                    bound.rel * want + bound.abs)
            << x << " " << a << " " << b;
        ASSERT_EQ(status, 0);
      }
    }
  }
  // I_x(a, b) + I_1-x(b, a) = 1 over the series, the fraction and both
  // orders.
  const double params[] = {0.05, 0.5, 0.9, 1.5, 2.0, 7.25, 30.0, 500.0, 2e4};
  for (double a : params) {
    for (double b : params) {
      for (int k = 1; k < 32; ++k) {
        const double x = k / 32.0;  // 1 - x exact
        const double v = TSXIncompleteBeta(x, a, b, status);
        const double w = TSXIncompleteBeta(1 - x, b, a, status);
        const auto bound = IncompleteBetaBound(x, a, b);
        ASSERT_GE(v, 0.0);
        ASSERT_LE(v, 1.0);
        ASSERT_NEAR(v + w, 1.0, 2 * (bound.rel + bound.abs))
            << x << " " << a << " " << b;
      }
    }
  }
}

TEST(IncompleteBetaTest, PeizerPrattStandsInForHugeParameters) {
  // a = b = 1e12 needs far more than 10000 terms of the continued fraction;
  // the normal approximation answers, held to 1e-2 as its g cancels near 1.
  int status = 7;
  const double a = 1e12;
  const double sigma = std::sqrt(0.25 / (2 * a));
  for (double z : {-3.0, -1.0, -0.3, 0.3, 1.0, 3.0}) {
    EXPECT_NEAR(TSXIncompleteBeta(0.5 + z * sigma, a, a, status),
                TSXNormalCDF(z), 1e-2)
        << z;
    EXPECT_EQ(status, 0);
  }
  EXPECT_NEAR(TSXIncompleteBeta(0.5, a, a, status), 0.5, 1e-9);
}

TEST(InverseIncompleteBetaTest, SpecialCasesAndClosedForms) {
  EXPECT_EQ(TSXInverseIncompleteBeta(0.0, 3), 0.0);
  EXPECT_EQ(TSXInverseIncompleteBeta(1.0, 3), 1.0);
  for (double bad : {-0.5, 1.5, kNaN, kInf, -kInf}) {
    EXPECT_EQ(TSXInverseIncompleteBeta(bad, 3), -1.0) << bad;
  }
  for (double bad : {0.0, -0.0, -2.0, kNaN, -kInf}) {
    EXPECT_EQ(TSXInverseIncompleteBeta(0.3, bad), -1.0) << bad;
  }
  EXPECT_EQ(TSXInverseIncompleteBeta(0.5, 0.5), 0.5);
  EXPECT_EQ(TSXInverseIncompleteBeta(0.3, 1e21), 1.0);
  EXPECT_EQ(TSXInverseIncompleteBeta(0.3, kInf), 1.0);
  // At a = 1e12 the density's exponent passes 709: the mean of
  // Beta(a, 1/2) answers.
  EXPECT_EQ(TSXInverseIncompleteBeta(0.3, 1e12), 1e12 / (1e12 + 0.5));
  EXPECT_EQ(TSXInverseIncompleteBeta(0.7, 1e12), 1e12 / (1e12 + 0.5));
  for (int k = 1; k < 64; ++k) {
    const double p = k / 64.0;
    // I_x(1/2, 1/2) = (2 / pi) asin(sqrt(x)); I_x(1, 1/2) = 1 - sqrt(1 - x).
    const double s = std::sin(p * kPi / 2);
    EXPECT_NEAR(TSXInverseIncompleteBeta(p, 0.5), s * s, 4 * kEps);
    EXPECT_NEAR(TSXInverseIncompleteBeta(p, 1), 1 - (1 - p) * (1 - p),
                4 * kEps);
  }
}

const double kDfs[] = {1e-3, 0.5, 1, 1.5, 2, 3, 4, 7.5, 10, 30, 1e3, 1e6, 1e8};

TEST(StudentTTest, HalfAtZeroAndTheClosedFormAtDfOne) {
  int status = 7;
  for (double df : {1e-300, 1e-3, 0.5, 1.0, 2.0, 17.0, 1e8, 1e9, kMax, kInf}) {
    EXPECT_EQ(TSXStudentTCDF(0.0, df, status), 0.5) << df;
    EXPECT_EQ(TSXStudentTCDF(-0.0, df, status), 0.5) << df;
    EXPECT_EQ(status, 0);
  }
  EXPECT_DOUBLE_EQ(TSXStudentTCDF(1, 1, status), 0.75);
  EXPECT_DOUBLE_EQ(TSXStudentTCDF(-1, 1, status), 0.25);
  EXPECT_DOUBLE_EQ(TSXStudentTQuantile(0.75, 1, status), 1.0);
  EXPECT_EQ(status, 0);
}

TEST(StudentTTest, CDFIsSymmetricMonotoneAndWithinZeroOne) {
  int status = 7;
  for (double df : kDfs) {
    double last = 0;
    for (double x = -60; x <= 60; x += 1.0 / 8) {
      const double f = TSXStudentTCDF(x, df, status);
      ASSERT_EQ(status, 0);
      ASSERT_GE(f, 0.0);
      ASSERT_LE(f, 1.0);
      const double tol = StudentTCDFTolerance(x, df, f);
      ASSERT_GE(f, last - 2 * tol) << x << " " << df;
      ASSERT_NEAR(f + TSXStudentTCDF(-x, df, status), 1.0, 2 * tol + kEps)
          << x << " " << df;
      last = f;
    }
    EXPECT_EQ(TSXStudentTCDF(kInf, df, status), 1.0) << df;
    EXPECT_EQ(TSXStudentTCDF(-kInf, df, status), 0.0) << df;
    EXPECT_EQ(TSXStudentTCDF(kMax, df, status), 1.0) << df;
    EXPECT_EQ(TSXStudentTCDF(-kMax, df, status), 0.0) << df;
    EXPECT_EQ(status, 0);
  }
}

TEST(StudentTTest, QuantileIsAntisymmetricAroundOneHalf) {
  int status = 7;
  for (double df : kDfs) {
    EXPECT_EQ(TSXStudentTQuantile(0.5, df, status), 0.0);
    for (int k = 1; k < 512; ++k) {
      const double p = k / 1024.0;  // 1 - p and 2 - (1 - p) exact
      const double lower = TSXStudentTQuantile(p, df, status);
      ASSERT_EQ(status, 0);
      ASSERT_LT(lower, 0.0);
      ASSERT_EQ(TSXStudentTQuantile(1 - p, df, status), -lower)
          << p << " " << df;
    }
  }
}

TEST(StudentTTest, NormalAboveDfOf1e8) {
  int status = 7;
  for (double x = -8; x <= 8; x += 0.125) {
    for (double df : {1.0000001e8, 1e9, 1e300, kMax, kInf}) {
      EXPECT_EQ(TSXStudentTCDF(x, df, status), TSXNormalCDF(x));
      EXPECT_EQ(status, 0);
    }
    // At 1e8 itself the t path still runs; it differs from the normal by
    // about (x^3 + x) density / (4 df) and its own error.
    const double f = TSXStudentTCDF(x, 1e8, status);
    const double density = std::exp(-x * x / 2) / std::sqrt(2 * kPi);
    EXPECT_NEAR(f, TSXNormalCDF(x),
                std::fabs(x * x * x + x) * density / 4e8 +
                    StudentTCDFTolerance(x, 1e8, f));
  }
  for (double p = 1.0 / 256; p < 1; p += 1.0 / 256) {
    for (double df : {1e8, 1e9, kMax, kInf}) {
      EXPECT_EQ(TSXStudentTQuantile(p, df, status), TSXNormalQuantile(p));
      EXPECT_EQ(status, 0);
    }
  }
}

TEST(DistributionsTest, StatusCodes) {
  int status = 0;
  // 1 for a bad argument, with the missing value.
  const auto bad = [&status](double v) { return Missing(v) && status == 1; };
  for (double df : {0.0, -0.0, -1.0, -kInf, kNaN}) {
    EXPECT_TRUE(bad(TSXStudentTCDF(1.0, df, status))) << df;
    EXPECT_TRUE(bad(TSXStudentTQuantile(0.3, df, status))) << df;
  }
  for (double p : {0.0, -0.0, 1.0, -0.1, 1.1, kNaN, kInf, -kInf}) {
    EXPECT_TRUE(bad(TSXStudentTQuantile(p, 5, status))) << p;
  }
  for (double ab : {0.0, -0.0, -1.0, -kInf, kInf, kNaN, -kMax}) {
    EXPECT_TRUE(bad(TSXIncompleteBeta(0.5, ab, 2, status))) << ab;
    EXPECT_TRUE(bad(TSXIncompleteBeta(0.5, 2, ab, status))) << ab;
  }
  // 2 when there is no result: at df 2 the inverse is 1 - (1 - q)^2, 0 once
  // 1 - q rounds to 1, and the quantile would be infinite.
  EXPECT_TRUE(Missing(TSXStudentTQuantile(1e-20, 2, status)));
  EXPECT_EQ(status, 2);
  // A later good call clears the status.
  EXPECT_EQ(TSXStudentTQuantile(0.5, 5, status), 0.0);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(bad(TSXStudentTCDF(kNaN, 5, status)));
  EXPECT_EQ(TSXStudentTCDF(0.0, 5, status), 0.5);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(bad(TSXIncompleteBeta(kNaN, 2, 2, status)));
  EXPECT_EQ(TSXIncompleteBeta(0.25, 1, 1, status), 0.25);
  EXPECT_EQ(status, 0);
}

TEST(DistributionsTest, OddArgumentsGiveAValueInRangeOrAStatus) {
  int status = 0;
  for (double u : kOddArguments) {
    EXPECT_FALSE(std::isnan(TSXErf(u))) << u;
    EXPECT_FALSE(std::isnan(TSXLogGamma(u))) << u;
    EXPECT_FALSE(std::isnan(TSXNormalCDF(u))) << u;
    EXPECT_FALSE(std::isnan(TSXNormalQuantile(u))) << u;
    EXPECT_FALSE(std::isnan(TSXPeizerPrattG(u))) << u;
    for (double v : kOddArguments) {
      const double inv = TSXInverseIncompleteBeta(u, v);
      EXPECT_TRUE(inv == -1.0 || (inv >= 0 && inv <= 1)) << u << " " << v;
      const double f = TSXStudentTCDF(u, v, status);
      EXPECT_TRUE(status == 0 ? f >= 0 && f <= 1 : Missing(f)) << u << " " << v;
      const double t = TSXStudentTQuantile(u, v, status);
      EXPECT_TRUE(status == 0 ? std::isfinite(t) && (t < 0) == (u < 0.5)
                              : Missing(t))
          << u << " " << v;
      for (double b : {0.5, 1e-300, 1e300, kMax, 3.0}) {
        const double i = TSXIncompleteBeta(u, v, b, status);
        ASSERT_TRUE(status == 0 ? i >= 0 && i <= 1 : Missing(i))
            << u << " " << v << " " << b;
      }
    }
  }
}

}  // namespace
