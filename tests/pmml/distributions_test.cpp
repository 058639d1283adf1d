#include "pmml/distributions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "modelapi/missing_value.h"
#include "pmml/distribution_tolerances.h"

namespace {

using distribution_test::IncompleteBetaBound;
using distribution_test::kEps;
using distribution_test::StudentTCDFTolerance;
using distribution_test::StudentTQuantileTolerance;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kPi = 3.14159265358979323846;

bool Missing(double v) { return MV::IsMissing(v); }

double RelErr(double got, double want) {
  return std::fabs(got - want) / std::fabs(want);
}

// Arguments no caller should send, and the extremes of the double range.
const std::vector<double>& OddArguments() {
  static const std::vector<double> args = {
      kNaN,   -kNaN,   kInf,  -kInf,  0.0, -0.0, kMax, -kMax, kTiny, -kTiny,
      1e-300, -1e-300, 1e300, -1e300, 1.0, -1.0, 0.5,  1e8,   1e308};
  return args;
}

// --- Error function and normal distribution --------------------------------

struct Known {
  double arg;
  double want;  // to 20 digits
};

TEST(ErfTest, MatchesKnownValuesOnEveryTableRow) {
  // Rows 0-4 of the small-argument table, rows 0-2 of the large one.
  const Known cases[] = {
      {0.3, 0.32862675945912742764}, {1.2, 0.91031397822963538024},
      {1.5, 0.96610514647531072707}, {1.9, 0.99279042923525746995},
      {2.1, 0.9970205333436670145},  {2.5, 0.99959304798255504106},
      {3.5, 0.99999925690162765859}, {4.5, 0.99999999980338395585}};
  for (const Known& c : cases) {
    // Each table polynomial is good to an ulp; the product with w and the
    // final 1 - y^16 add one rounding each.
    EXPECT_LE(RelErr(TSXErf(c.arg), c.want), 3 * kEps) << c.arg;
    EXPECT_EQ(TSXErf(-c.arg), -TSXErf(c.arg)) << c.arg;
  }
}

TEST(ErfTest, IsOddMonotoneAndContinuousAcrossRows) {
  // Row edges: sqrt(k) and 2.2 in the first table, integers and 6.9 after.
  const double edges[] = {
      1.0, std::sqrt(2.0), std::sqrt(3.0), 2.0, 2.2, 3.0, 4.0, 5.0, 6.0, 6.9};
  for (double e : edges) {
    const double below = std::nextafter(e, 0.0);
    const double above = std::nextafter(e, 10.0);
    EXPECT_NEAR(TSXErf(below), TSXErf(e), 4 * kEps) << e;
    EXPECT_NEAR(TSXErf(above), TSXErf(e), 4 * kEps) << e;
  }
  double last = 0;
  for (double x = 1.0 / 1024; x < 7.5; x += 1.0 / 1024) {
    const double v = TSXErf(x);
    ASSERT_GE(v, last) << x;
    ASSERT_LE(v, 1.0) << x;
    ASSERT_EQ(TSXErf(-x), -v) << x;
    last = v;
  }
}

TEST(ErfTest, SpecialArguments) {
  EXPECT_EQ(TSXErf(0.0), 0.0);
  EXPECT_TRUE(std::signbit(TSXErf(-0.0)));
  EXPECT_EQ(TSXErf(kInf), 1.0);
  EXPECT_EQ(TSXErf(-kInf), -1.0);
  EXPECT_EQ(TSXErf(-kMax), -1.0);
  EXPECT_EQ(TSXErf(6.9), 1.0);
  // erf(x) = 2 x / sqrt(pi) for tiny x.
  EXPECT_NEAR(TSXErf(1e-300), 1.1283791670955126e-300, 1e-315);
  EXPECT_GT(TSXErf(kTiny), 0.0);
  EXPECT_TRUE(Missing(TSXErf(kNaN)));
}

TEST(NormalCDFTest, MatchesKnownValuesInBothHalves) {
  const Known lower[] = {{-1, 0.15865525393145705141},
                         {-3, 0.0013498980316300945267},
                         {-10, 7.619853024160526066e-24},
                         {-37.5, 4.6053530095819548438e-308}};
  for (const Known& c : lower) {
    // exp(log(y) - w^2) with w = -x / sqrt(2): the rounding of the exponent,
    // up to w^2 in size, costs (1 + w^2) eps; 4 of them are allowed.
    const double w2 = c.arg * c.arg / 2;
    EXPECT_LE(RelErr(TSXNormalCDF(c.arg), c.want), 4 * (1 + w2) * kEps)
        << c.arg;
    // The upper half goes through erf: 1 - F(-x), good to a few eps.
    EXPECT_NEAR(TSXNormalCDF(-c.arg), 1 - c.want, 4 * kEps) << c.arg;
  }
}

TEST(NormalCDFTest, SymmetricMonotoneAndFlushedBelowExpMinus708) {
  double last = 0;
  for (double x = -40; x <= 40; x += 1.0 / 64) {
    const double v = TSXNormalCDF(x);
    ASSERT_GE(v, last) << x;
    EXPECT_NEAR(v + TSXNormalCDF(-x), 1.0, 4 * kEps) << x;
    last = v;
  }
  EXPECT_EQ(TSXNormalCDF(0.0), 0.5);
  EXPECT_EQ(TSXNormalCDF(-0.0), 0.5);
  EXPECT_GT(TSXNormalCDF(-37.5), 0.0);
  EXPECT_EQ(TSXNormalCDF(-38.0), 0.0);
  EXPECT_EQ(TSXNormalCDF(-kMax), 0.0);
  EXPECT_EQ(TSXNormalCDF(-kInf), 0.0);
  EXPECT_EQ(TSXNormalCDF(kInf), 1.0);
  EXPECT_EQ(TSXNormalCDF(kMax), 1.0);
  EXPECT_TRUE(Missing(TSXNormalCDF(kNaN)));
}

TEST(NormalQuantileTest, KnownValuesOnEveryRegion) {
  const Known cases[] = {{0.975, 1.9599639845400542355},
                         {0.3, -0.52440051270804078404},
                         {0.01, -2.3263478740408411009},
                         {1e-20, -9.2623400897984075737}};
  for (const Known& c : cases) {
    // PPND16 is good to about 1e-16; 4 eps covers it and the rounding.
    EXPECT_LE(RelErr(TSXNormalQuantile(c.arg), c.want), 4 * kEps) << c.arg;
  }
  EXPECT_EQ(TSXNormalQuantile(0.5), 0.0);
  EXPECT_TRUE(std::isfinite(TSXNormalQuantile(kTiny)));
  EXPECT_LT(TSXNormalQuantile(kTiny), -38.0);
}

TEST(NormalQuantileTest, AntisymmetricAndInverseOfTheCDF) {
  for (int k = 1; k < 1024; ++k) {
    const double p = k / 1024.0;  // p and 1 - p exact
    ASSERT_EQ(TSXNormalQuantile(1 - p), -TSXNormalQuantile(p)) << p;
  }
  for (double e = -300; e < -0.3; e += 0.25) {
    const double p = std::pow(10.0, e);
    const double z = TSXNormalQuantile(p);
    // d(log F)/dz = f / F is about |z| in the tail: the CDF's error of
    // 4 (1 + z^2 / 2) eps and the quantile's 4 eps, times that slope.
    const double tol = 4 * (1 + z * z / 2) * kEps + 4 * kEps * (1 + z * z);
    EXPECT_LE(RelErr(TSXNormalCDF(z), p), tol) << p;
  }
}

TEST(NormalQuantileTest, OutsideTheOpenUnitIntervalIsMissing) {
  for (double p :
       {0.0, -0.0, 1.0, -1e-300, 1.0000000000000002, kInf, -kInf, kNaN, kMax}) {
    EXPECT_TRUE(Missing(TSXNormalQuantile(p))) << p;
  }
}

// --- Log-gamma and the Peizer-Pratt function -------------------------------

TEST(LogGammaTest, MatchesKnownValuesOnEveryBranch) {
  const Known cases[] = {
      {1e-300, 690.77552789821370521},    {0.1, 2.2527126517342059599},
      {0.3, 1.0957979948180755217},       {0.7, 0.26086724653166651439},
      {1.5, -0.12078223763524522235},     {2.5, 0.28468287047291915963},
      {3.2, 0.88540482715490894595},      {4.5, 2.4537365708424422205},
      {7.9, 8.3242658680088089235},       {8, 8.5251613610654143002},
      {100, 359.13420536957539878},       {1e10, 220258509288.81058147},
      {1e300, 6.8977552789821370521e+302}};
  for (const Known& c : cases) {
    // Each table is good to about 2 eps relative where |log Gamma| >= 1 and
    // 2 eps absolute near its zeros at 1 and 2.
    EXPECT_LE(std::fabs(TSXLogGamma(c.arg) - c.want),
              4 * kEps * std::max(1.0, std::fabs(c.want)))
        << c.arg;
  }
  EXPECT_EQ(TSXLogGamma(1.0), 0.0);
  EXPECT_EQ(TSXLogGamma(2.0), 0.0);
  EXPECT_EQ(TSXLogGamma(0.5), std::log(kPi) * 0.5);
}

TEST(LogGammaTest, RecurrenceHoldsAcrossBranches) {
  // log Gamma(x + 1) = log Gamma(x) + log x, with x and x + 1 on different
  // tables for most x below 8.
  for (double x = 1.0 / 128; x < 40; x += 1.0 / 128) {
    const double lhs = TSXLogGamma(x + 1);
    const double rhs = TSXLogGamma(x) + std::log(x);
    const double scale =
        std::max({1.0, std::fabs(lhs), std::fabs(TSXLogGamma(x))});
    ASSERT_LE(std::fabs(lhs - rhs), 8 * kEps * scale) << x;
  }
}

TEST(LogGammaTest, OutsideItsDomain) {
  for (double x : {0.0, -0.0, -1.0, -0.5, -1e-300, -kInf, -kMax, kNaN}) {
    EXPECT_TRUE(Missing(TSXLogGamma(x))) << x;
  }
  EXPECT_EQ(TSXLogGamma(kInf), kInf);
  EXPECT_EQ(TSXLogGamma(kMax), kInf);
  EXPECT_NEAR(TSXLogGamma(kTiny), 744.44007192138126, 1e-12);
}

TEST(PeizerPrattGTest, SpecialPointsAndReflection) {
  EXPECT_EQ(TSXPeizerPrattG(0.0), 1.0);
  EXPECT_EQ(TSXPeizerPrattG(-0.0), 1.0);
  EXPECT_EQ(TSXPeizerPrattG(1.0), 0.0);
  EXPECT_EQ(TSXPeizerPrattG(kInf), -1.0);
  EXPECT_EQ(TSXPeizerPrattG(kMax), -1.0);
  EXPECT_EQ(TSXPeizerPrattG(std::sqrt(kMax) * 2), -1.0);
  EXPECT_EQ(TSXPeizerPrattG(std::nextafter(std::sqrt(kMax), kInf)), -1.0);
  EXPECT_TRUE(std::isfinite(TSXPeizerPrattG(std::sqrt(kMax))));
  EXPECT_TRUE(Missing(TSXPeizerPrattG(-1e-300)));
  EXPECT_TRUE(Missing(TSXPeizerPrattG(kNaN)));
  EXPECT_NEAR(TSXPeizerPrattG(2.0), 4 * std::log(2.0) - 3, 4 * kEps);
  // g(1 / x) = -g(x); away from 1, where the numerator cancels.
  for (double x = 0.001; x < 0.9; x += 0.001) {
    ASSERT_NEAR(TSXPeizerPrattG(1 / x), -TSXPeizerPrattG(x), 1e-13) << x;
  }
}

// --- Incomplete beta -------------------------------------------------------

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
  // exp below -708 is not taken: the value is then 0 (or its complement 1).
  EXPECT_EQ(TSXIncompleteBeta(1e-300, 3, 1, status), 0.0);
  EXPECT_EQ(TSXIncompleteBeta(1e-3, 200, 3, status), 0.0);
  EXPECT_EQ(TSXIncompleteBeta(1 - 1e-3, 3, 200, status), 1.0);
  EXPECT_EQ(TSXIncompleteBeta(1 - 1e-15, 1, 1e5, status), 1.0);
}

TEST(IncompleteBetaTest, ValueAtPointThreeTwoThree) {
  int status = 7;
  // I_0.3(2, 3) = P(Binomial(4, 0.3) >= 2) = 0.3483.
  const double v = TSXIncompleteBeta(0.3, 2, 3, status);
  const auto bound = IncompleteBetaBound(0.3, 2, 3);
  EXPECT_NEAR(v, 0.3483, bound.rel * 0.3483 + bound.abs);
  EXPECT_EQ(status, 0);
}

// P(Binomial(n, x) >= a) for n = a + b - 1, summed in long double.
double BinomialUpperTail(double x, int a, int b) {
  const int n = a + b - 1;
  long double sum = 0;
  long double coeff = 1;  // C(n, j)
  for (int j = 0; j <= n; ++j) {
    if (j >= a) {
      sum += coeff * std::pow(static_cast<long double>(x), j) *
             std::pow(1.0L - x, n - j);
    }
    coeff = coeff * (n - j) / (j + 1);
  }
  return static_cast<double>(sum);
}

TEST(IncompleteBetaTest, IntegerArgumentsMatchBinomialSums) {
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
}

TEST(IncompleteBetaTest, ReflectionOverSeriesFractionAndBothOrders) {
  int status = 7;
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
  // With a = b = 1e12 the continued fraction needs far more than 10000
  // terms, so the normal approximation answers. Its g near 1 loses digits to
  // cancellation, so it is held to 1e-2 here.
  int status = 7;
  const double a = 1e12;
  const double sigma = std::sqrt(0.25 / (2 * a));
  for (double z : {-3.0, -1.0, -0.3, 0.3, 1.0, 3.0}) {
    const double x = 0.5 + z * sigma;
    const double v = TSXIncompleteBeta(x, a, a, status);
    EXPECT_EQ(status, 0);
    EXPECT_NEAR(v, TSXNormalCDF(z), 1e-2) << z;
  }
  EXPECT_NEAR(TSXIncompleteBeta(0.5, a, a, status), 0.5, 1e-9);
}

TEST(IncompleteBetaTest, BadArgumentsGiveStatusOne) {
  int status = 0;
  for (double bad : {0.0, -0.0, -1.0, -kInf, kInf, kNaN, -kMax}) {
    EXPECT_TRUE(Missing(TSXIncompleteBeta(0.5, bad, 2, status))) << bad;
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(Missing(TSXIncompleteBeta(0.5, 2, bad, status))) << bad;
    EXPECT_EQ(status, 1);
  }
  EXPECT_TRUE(Missing(TSXIncompleteBeta(kNaN, 2, 2, status)));
  EXPECT_EQ(status, 1);
  // A later good call clears the status.
  EXPECT_EQ(TSXIncompleteBeta(0.25, 1, 1, status), 0.25);
  EXPECT_EQ(status, 0);
}

TEST(IncompleteBetaTest, AnyArgumentsGiveAProbabilityOrAStatus) {
  int status = 0;
  for (double x : OddArguments()) {
    for (double a : OddArguments()) {
      for (double b : {0.5, 1e-300, 1e300, kMax, 3.0}) {
        const double v = TSXIncompleteBeta(x, a, b, status);
        if (status == 0) {
          ASSERT_GE(v, 0.0) << x << " " << a << " " << b;
          ASSERT_LE(v, 1.0) << x << " " << a << " " << b;
        } else {
          ASSERT_TRUE(Missing(v)) << x << " " << a << " " << b;
        }
      }
    }
  }
}

// --- Inverse incomplete beta -----------------------------------------------

TEST(InverseIncompleteBetaTest, SpecialCasesAndClosedForms) {
  EXPECT_EQ(TSXInverseIncompleteBeta(0.0, 3), 0.0);
  EXPECT_EQ(TSXInverseIncompleteBeta(1.0, 3), 1.0);
  for (double bad_p : {-0.5, 1.5, kNaN, kInf, -kInf}) {
    EXPECT_EQ(TSXInverseIncompleteBeta(bad_p, 3), -1.0) << bad_p;
  }
  for (double bad_a : {0.0, -0.0, -2.0, kNaN, -kInf}) {
    EXPECT_EQ(TSXInverseIncompleteBeta(0.3, bad_a), -1.0) << bad_a;
  }
  EXPECT_EQ(TSXInverseIncompleteBeta(0.5, 0.5), 0.5);
  EXPECT_EQ(TSXInverseIncompleteBeta(0.3, 1e21), 1.0);
  // With a of 1e12 the density's exponent passes 709: the mean of the
  // Beta(a, 1/2) distribution answers.
  EXPECT_EQ(TSXInverseIncompleteBeta(0.3, 1e12), 1e12 / (1e12 + 0.5));
  EXPECT_EQ(TSXInverseIncompleteBeta(0.7, 1e12), 1e12 / (1e12 + 0.5));
  EXPECT_EQ(TSXInverseIncompleteBeta(0.3, kInf), 1.0);
  for (int k = 1; k < 64; ++k) {
    const double p = k / 64.0;
    // I_x(1/2, 1/2) = (2 / pi) asin(sqrt(x)); I_x(1, 1/2) = 1 - sqrt(1 - x).
    const double s = std::sin(p * kPi / 2);
    EXPECT_NEAR(TSXInverseIncompleteBeta(p, 0.5), s * s, 4 * kEps);
    EXPECT_NEAR(TSXInverseIncompleteBeta(p, 1), 1 - (1 - p) * (1 - p),
                4 * kEps);
  }
}

TEST(InverseIncompleteBetaTest, InvertsTheIncompleteBeta) {
  int status = 0;
  for (double a : {0.05, 0.3, 0.75, 1.5, 2.5, 5.0, 15.0, 50.0, 500.0, 5e4}) {
    for (double e = -20; e < 0; e += 0.5) {
      for (double p : {std::pow(10.0, e), 1 - std::pow(10.0, e)}) {
        const double x = TSXInverseIncompleteBeta(p, a);
        ASSERT_GE(x, 0.0) << p << " " << a;
        ASSERT_LE(x, 1.0) << p << " " << a;
        const double s = std::min(x, 1 - x);
        if (s < 1e-8) continue;  // beyond the clamps of the iteration
        // The Newton step at the stop is at most 1e-10 in x; its effect on
        // the probability is that times the density at x.
        const double log_density = std::lgamma(a + 0.5) - std::lgamma(a) -
                                   std::lgamma(0.5) + (a - 1) * std::log(x) -
                                   0.5 * std::log1p(-x);
        const double v = TSXIncompleteBeta(x, a, 0.5, status);
        const auto bound = IncompleteBetaBound(x, a, 0.5);
        const double tol = 1e-10 * std::exp(log_density) + bound.rel * p +
                           bound.abs + 2 * kEps;
        EXPECT_NEAR(v, p, tol) << p << " " << a;
      }
    }
  }
}

// --- Student's t -----------------------------------------------------------

const double kDfs[] = {1e-3, 0.5, 1, 1.5, 2, 3, 4, 7.5, 10, 30, 1e3, 1e6, 1e8};

TEST(StudentTCDFTest, HalfAtZeroForEveryDf) {
  int status = 7;
  for (double df : {1e-300, 1e-3, 0.5, 1.0, 2.0, 17.0, 1e8, 1e9, kMax, kInf}) {
    EXPECT_EQ(TSXStudentTCDF(0.0, df, status), 0.5) << df;
    EXPECT_EQ(TSXStudentTCDF(-0.0, df, status), 0.5) << df;
    EXPECT_EQ(status, 0);
  }
}

TEST(StudentTCDFTest, CauchyClosedFormAtDfOne) {
  int status = 7;
  EXPECT_DOUBLE_EQ(TSXStudentTCDF(1, 1, status), 0.75);
  EXPECT_DOUBLE_EQ(TSXStudentTCDF(-1, 1, status), 0.25);
  for (double x = -50; x <= 50; x += 0.25) {
    EXPECT_EQ(TSXStudentTCDF(x, 1, status), std::atan(x) / kPi + 0.5) << x;
  }
}

// Closed forms of the t distribution for df 2, 3 and 4.
double ClosedFormTCDF(double x, int df) {
  switch (df) {
    case 2:
      return 0.5 + x / (2 * std::sqrt(2 + x * x));
    case 3: {
      const double u = x / std::sqrt(3.0);
      return 0.5 + (u / (1 + u * u) + std::atan(u)) / kPi;
    }
    default: {
      const double s = x * x / (4 + x * x);
      return 0.5 + 0.375 * (x / std::sqrt(x * x + 4) * 2) * (1 - s / 3);
    }
  }
}

TEST(StudentTCDFTest, MatchesClosedFormsForSmallIntegerDf) {
  int status = 7;
  for (int df : {2, 3, 4}) {
    for (double x = -1.5; x <= 1.5; x += 1.0 / 64) {
      const double want = ClosedFormTCDF(x, df);
      const double got = TSXStudentTCDF(x, df, status);
      // The closed forms themselves round at the scale of 1/2.
      ASSERT_NEAR(got, want, StudentTCDFTolerance(x, df, want) + 4 * kEps)
          << x << " " << df;
    }
  }
}

TEST(StudentTCDFTest, SymmetricMonotoneAndWithinZeroOne) {
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
  }
}

TEST(StudentTCDFTest, NormalAboveDfOf1e8) {
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
}

TEST(StudentTCDFTest, InfiniteAndHugeArguments) {
  int status = 7;
  for (double df : kDfs) {
    EXPECT_EQ(TSXStudentTCDF(kInf, df, status), 1.0) << df;
    EXPECT_EQ(TSXStudentTCDF(-kInf, df, status), 0.0) << df;
    EXPECT_EQ(TSXStudentTCDF(kMax, df, status), 1.0) << df;
    EXPECT_EQ(TSXStudentTCDF(-kMax, df, status), 0.0) << df;
    EXPECT_EQ(status, 0);
  }
}

TEST(StudentTCDFTest, BadArgumentsGiveStatusOne) {
  int status = 0;
  for (double df : {0.0, -0.0, -1.0, -kInf, kNaN}) {
    EXPECT_TRUE(Missing(TSXStudentTCDF(1.0, df, status))) << df;
    EXPECT_EQ(status, 1);
  }
  EXPECT_TRUE(Missing(TSXStudentTCDF(kNaN, 5, status)));
  EXPECT_EQ(status, 1);
  EXPECT_EQ(TSXStudentTCDF(0.0, 5, status), 0.5);
  EXPECT_EQ(status, 0);
}

TEST(StudentTQuantileTest, KnownPointsAndInverseOfTheCDF) {
  int status = 7;
  EXPECT_DOUBLE_EQ(TSXStudentTQuantile(0.75, 1, status), 1.0);
  EXPECT_EQ(status, 0);
  // Upper 2.5 percent points, to 20 digits.
  const struct {
    double df, t;
  } points[] = {{10, 2.2281388519862747484}, {20, 2.0859634472658648427}};
  for (const auto& c : points) {
    const double t = TSXStudentTQuantile(0.975, c.df, status);
    const double density =
        std::exp(std::lgamma((c.df + 1) / 2) - std::lgamma(c.df / 2) -
                 (c.df + 1) / 2 * std::log1p(c.t * c.t / c.df)) /
        std::sqrt(c.df * kPi);
    EXPECT_LE(RelErr(t, c.t),
              StudentTQuantileTolerance(0.975, c.df, c.t, density));
    EXPECT_NEAR(TSXStudentTCDF(c.t, c.df, status), 0.975,
                StudentTCDFTolerance(c.t, c.df, 0.975));
  }
}

TEST(StudentTQuantileTest, AntisymmetricAroundOneHalf) {
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

TEST(StudentTQuantileTest, NormalFromDfOf1e8) {
  int status = 7;
  for (double p = 1.0 / 256; p < 1; p += 1.0 / 256) {
    for (double df : {1e8, 1e9, kMax, kInf}) {
      EXPECT_EQ(TSXStudentTQuantile(p, df, status), TSXNormalQuantile(p));
      EXPECT_EQ(status, 0);
    }
  }
}

TEST(StudentTQuantileTest, StatusCodes) {
  int status = 0;
  for (double p : {0.0, -0.0, 1.0, -0.1, 1.1, kNaN, kInf, -kInf}) {
    EXPECT_TRUE(Missing(TSXStudentTQuantile(p, 5, status))) << p;
    EXPECT_EQ(status, 1);
  }
  for (double df : {0.0, -0.0, -3.0, -kInf, kNaN}) {
    EXPECT_TRUE(Missing(TSXStudentTQuantile(0.3, df, status))) << df;
    EXPECT_EQ(status, 1);
  }
  // At df 2 the inverse is 1 - (1 - q)^2, which is 0 once 1 - q rounds to 1:
  // the quantile would be infinite, so no result.
  EXPECT_TRUE(Missing(TSXStudentTQuantile(1e-20, 2, status)));
  EXPECT_EQ(status, 2);
  EXPECT_EQ(TSXStudentTQuantile(0.5, 5, status), 0.0);
  EXPECT_EQ(status, 0);
}

TEST(StudentTQuantileTest, ExtremeArgumentsGiveAValueOfTheRightSignOrStatus) {
  int status = 0;
  const double ps[] = {kTiny,     1e-300,    1e-100, 1e-30,     1e-12,    0.25,
                       0.4999999, 0.5000001, 0.75,   1 - 1e-12, 1 - 1e-16};
  const double dfs[] = {1e-300, 1e-3, 0.5, 1, 1.5, 2, 3, 10, 1e3, 1e7, 9.9e7};
  for (double df : dfs) {
    for (double p : ps) {
      const double t = TSXStudentTQuantile(p, df, status);
      if (status != 0) {
        ASSERT_EQ(status, 2) << p << " " << df;
        ASSERT_TRUE(Missing(t)) << p << " " << df;
        continue;
      }
      ASSERT_TRUE(std::isfinite(t)) << p << " " << df;
      ASSERT_EQ(t < 0, p < 0.5) << p << " " << df;
    }
  }
}

TEST(DistributionsTest, OddArgumentsNeverGiveNaN) {
  int status = 0;
  for (double u : OddArguments()) {
    EXPECT_FALSE(std::isnan(TSXErf(u))) << u;
    EXPECT_FALSE(std::isnan(TSXLogGamma(u))) << u;
    EXPECT_FALSE(std::isnan(TSXNormalCDF(u))) << u;
    EXPECT_FALSE(std::isnan(TSXNormalQuantile(u))) << u;
    EXPECT_FALSE(std::isnan(TSXPeizerPrattG(u))) << u;
    for (double v : OddArguments()) {
      const double inv = TSXInverseIncompleteBeta(u, v);
      EXPECT_TRUE(inv == -1.0 || (inv >= 0 && inv <= 1)) << u << " " << v;
      const double f = TSXStudentTCDF(u, v, status);
      EXPECT_TRUE(status == 0 ? f >= 0 && f <= 1 : Missing(f)) << u << " " << v;
      const double t = TSXStudentTQuantile(u, v, status);
      EXPECT_TRUE(status == 0 ? std::isfinite(t) : Missing(t)) << u << " " << v;
    }
  }
}

}  // namespace
