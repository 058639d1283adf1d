// Exact values at the edges, status codes and invariants of the distribution
// functions; their accuracy over grids is compared with Boost.Math in
// distributions_accuracy_test.cpp.
#include "tsxml/stats/distributions.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "support/test_data.h"
#include "tsxml/base/missing_value.h"

namespace {

constexpr double kEps = std::numeric_limits<double>::epsilon();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

// The shortest text that reads back as `v`, or "missing".
std::string Format(double v) {
  if (MV::IsMissing(v)) return "missing";
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, v).ptr);
}

// Calls the function named by the first word of `command` with the other
// words as its arguments.
std::string Call(const std::string& command) {
  std::istringstream in(command);
  const std::vector<std::string> words{std::istream_iterator<std::string>(in),
                                       {}};
  std::vector<double> a;
  for (size_t i = 1; i < words.size(); ++i) {
    a.push_back(std::strtod(words[i].c_str(), nullptr));
  }
  const std::string& f = words.at(0);
  if (f == "erf") return Format(TSXErf(a.at(0)));
  if (f == "loggamma") return Format(TSXLogGamma(a.at(0)));
  if (f == "normalcdf") return Format(TSXNormalCDF(a.at(0)));
  if (f == "normalquantile") return Format(TSXNormalQuantile(a.at(0)));
  if (f == "g") return Format(TSXPeizerPrattG(a.at(0)));
  if (f == "inverseibeta") {
    return Format(TSXInverseIncompleteBeta(a.at(0), a.at(1)));
  }
  int status = 7;  // not one the functions set: each call must set it
  double v = 0;
  if (f == "ibeta") v = TSXIncompleteBeta(a.at(0), a.at(1), a.at(2), status);
  if (f == "tcdf") v = TSXStudentTCDF(a.at(0), a.at(1), status);
  if (f == "tquantile") v = TSXStudentTQuantile(a.at(0), a.at(1), status);
  return Format(v) + ", status " + std::to_string(status);
}

TEST(DistributionsTest, ValuesAndStatusCodes) {
  const std::string text = testing_support::ReadTestData("stats/values.txt");
  const std::string out =
      testing_support::RunTranscript(text, [](const std::string& command) {
        const size_t equals = command.find(" == ");
        const std::string result = Call(command.substr(0, equals));
        if (equals == std::string::npos) return result;
        const std::string other = Call(command.substr(equals + 4));
        const bool same = result.substr(0, result.find(',')) == other;
        return same ? std::string("equal") : result + " vs " + other;
      });
  EXPECT_EQ(out, text);
}

TEST(DistributionsTest, PeizerPrattGAndTheTQuantileAntisymmetry) {
  EXPECT_NEAR(TSXPeizerPrattG(2.0), 4 * std::log(2.0) - 3, 4 * kEps);
  // The t quantile is exactly antisymmetric around 1/2.
  int status = 7;
  for (double df :
       {1e-3, 0.5, 1.0, 1.5, 2.0, 3.0, 4.0, 7.5, 10.0, 30.0, 1e3, 1e6, 1e8}) {
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

TEST(DistributionsTest, OddArgumentsGiveAValueInRangeOrAStatus) {
  const double odd[] = {kNaN,  -kNaN, kInf,   -kInf,  0.0,     -0.0,  kMax,
                        -kMax, kTiny, -kTiny, 1e-300, -1e-300, 1e300, -1e300,
                        1.0,   -1.0,  0.5,    1e8,    1e308};
  int status = 0;
  // With status 0 a value in [0, 1], else the missing value.
  const auto probability = [&status](double v) {
    return status == 0 ? v >= 0 && v <= 1 : MV::IsMissing(v);
  };
  for (double u : odd) {
    for (double f : {TSXErf(u), TSXLogGamma(u), TSXNormalCDF(u),
                     TSXNormalQuantile(u), TSXPeizerPrattG(u)}) {
      EXPECT_FALSE(std::isnan(f)) << u;
    }
    for (double v : odd) {
      const double inv = TSXInverseIncompleteBeta(u, v);
      EXPECT_TRUE(inv == -1.0 || (inv >= 0 && inv <= 1)) << u << " " << v;
      EXPECT_TRUE(probability(TSXStudentTCDF(u, v, status))) << u << " " << v;
      const double t = TSXStudentTQuantile(u, v, status);
      EXPECT_TRUE(status == 0 ? std::isfinite(t) && (t < 0) == (u < 0.5)
                              : MV::IsMissing(t))
          << u << " " << v;
      for (double b : {0.5, 1e-300, 1e300, kMax, 3.0}) {
        ASSERT_TRUE(probability(TSXIncompleteBeta(u, v, b, status)))
            << u << " " << v << " " << b;
      }
    }
  }
}

}  // namespace
