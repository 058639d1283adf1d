#include "tsxml/modelapi/autocorrelation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "support/test_data.h"
#include "tsxml/base/missing_value.h"

namespace {

constexpr double kMissing = MV::gMissingValue;
using Doubles = std::vector<double>;

struct Result {
  OstraTime::OstraStatus acfStatus, pacfStatus;
  std::valarray<double> acf, acfStdErrors, pacf;
  double pacfStdError = 0.0;
};

// Both functions over the whole of `series`, unless `span` says otherwise,
// into outputs that hold values before.
Result Compute(const std::valarray<double>& series, int lags,
               const TSSpan* span = nullptr,
               unsigned function = BFSharedConst::NoTransform) {
  const TSSpan whole(0, series.size());
  const TSTransformation transformation(function);
  Result r;
  r.acf = r.acfStdErrors = r.pacf = {1, 2};
  r.acfStatus =
      TSAutocorrelation::ComputeACF(span ? *span : whole, transformation, 12,
                                    lags, series, r.acf, r.acfStdErrors);
  r.pacfStatus =
      TSAutocorrelation::ComputePACF(span ? *span : whole, transformation, 12,
                                     lags, series, r.pacf, r.pacfStdError);
  return r;
}

void ExpectRelativelyNear(const std::valarray<double>& actual,
                          const Doubles& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], 1e-12 * std::fabs(expected[i]))
        << "lag " << i + 1;
  }
}

void ExpectSame(const Result& a, const Result& b) {
  ASSERT_EQ(a.acf.size(), b.acf.size());
  for (size_t i = 0; i < a.acf.size(); ++i) {
    EXPECT_EQ(a.acf[i], b.acf[i]);
    EXPECT_EQ(a.acfStdErrors[i], b.acfStdErrors[i]);
    EXPECT_EQ(a.pacf[i], b.pacf[i]);
  }
  EXPECT_EQ(a.pacfStdError, b.pacfStdError);
}

// The output of autocorrelation_reference.py (statsmodels 0.13.5) beside
// this file, tests/data/modelapi/autocorrelation_reference.txt: for each of
// three series a line "{...}," of the series, of the ACF, of its standard
// errors, of the PACF and of the PACF's standard error, lags 1 to the last.
TEST(TSAutocorrelationTest, AgreesWithStatsmodels) {
  std::istringstream text(
      testing_support::ReadTestData("modelapi/autocorrelation_reference.txt"));
  std::vector<Doubles> reference;
  for (std::string line; std::getline(text, line);) {
    if (line.find('{') == std::string::npos) continue;
    std::istringstream numbers(line.substr(line.find('{') + 1));
    reference.emplace_back();
    for (double x; numbers >> x; numbers.ignore(1))
      reference.back().push_back(x);
  }
  ASSERT_EQ(reference.size(), 15u);
  for (size_t s = 0; s < 3; ++s) {
    SCOPED_TRACE(s);
    const Doubles& series = reference[5 * s];
    const Doubles* values = &reference[5 * s + 1];
    const Result r = Compute({series.data(), series.size()},
                             static_cast<int>(values[0].size()));
    EXPECT_TRUE(r.acfStatus.IsOK());
    EXPECT_TRUE(r.pacfStatus.IsOK());
    ExpectRelativelyNear(r.acf, values[0]);
    ExpectRelativelyNear(r.acfStdErrors, values[1]);
    ExpectRelativelyNear(r.pacf, values[2]);
    ExpectRelativelyNear({r.pacfStdError}, values[3]);
  }
  EXPECT_EQ(reference[0][0], kMissing);
}

// The PACF at lag k: the last coefficient of the order-k Yule-Walker
// equations R phi = r, by Gaussian elimination (R is positive definite).
double YuleWalkerLast(const std::valarray<double>& acf, size_t k) {
  std::vector<Doubles> m(k, Doubles(k + 1));
  for (size_t i = 0; i < k; ++i) {
    for (size_t j = 0; j < k; ++j) {
      m[i][j] = i == j ? 1.0 : acf[(i > j ? i - j : j - i) - 1];
    }
    m[i][k] = acf[i];
  }
  for (size_t c = 0; c < k; ++c) {
    for (size_t i = c + 1; i < k; ++i) {
      const double f = m[i][c] / m[c][c];
      for (size_t j = c; j <= k; ++j) m[i][j] -= f * m[c][j];
    }
  }
  Doubles x(k);
  for (size_t i = k; i-- > 0;) {
    x[i] = m[i][k];
    for (size_t j = i + 1; j < k; ++j) x[i] -= m[i][j] * x[j];
    x[i] /= m[i][i];
  }
  return x[k - 1];
}

TEST(TSAutocorrelationTest, InvariantsOverGeneratedSeries) {
  std::mt19937 random(20240611);
  std::normal_distribution<double> noise;
  for (int trial = 0; trial < 200; ++trial) {
    SCOPED_TRACE(trial);
    const size_t n = 10 + random() % 90;
    const double phi =
        std::uniform_real_distribution<double>(-0.9, 0.9)(random);
    std::valarray<double> series(n);
    double previous = 0.0;
    for (double& x : series) x = previous = phi * previous + noise(random);
    // Lags stop at one below the count.
    const int lags = static_cast<int>(1 + random() % (n + 9));
    const Result r = Compute(series, lags);
    ASSERT_EQ(r.acf.size(), std::min(static_cast<size_t>(lags), n - 1));
    EXPECT_DOUBLE_EQ(r.acfStdErrors[0], 1 / std::sqrt(static_cast<double>(n)));
    EXPECT_EQ(r.pacfStdError, r.acfStdErrors[0]);
    EXPECT_EQ(r.pacf[0], r.acf[0]);
    for (size_t k = 0; k < r.acf.size(); ++k) {
      EXPECT_LE(std::fabs(r.acf[k]), 1.0);
      if (k > 0) {
        EXPECT_GE(r.acfStdErrors[k], r.acfStdErrors[k - 1]);
      }
      if (k < 12) {
        EXPECT_NEAR(r.pacf[k], YuleWalkerLast(r.acf, k + 1), 1e-9);
      }
    }

    // Missing values anywhere leave the estimates as they are without them.
    Doubles withGaps;
    for (size_t i = 0; i < n; ++i) {
      if (random() % 4 == 0) withGaps.push_back(kMissing);
      withGaps.push_back(series[i]);
    }
    ExpectSame(Compute({withGaps.data(), withGaps.size()}, lags), r);
  }
}

TEST(TSAutocorrelationTest, SpanAndTransformationChooseTheValues) {
  const std::valarray<double> series = {9, 1, 4, 2, 8, 5, 7, 3, -1, 6};
  // Cases 1 to 7 only.
  const TSSpan middle(1, 7);
  ExpectSame(Compute(series, 3, &middle),
             Compute(std::valarray<double>(series[std::slice(1, 7, 1)]), 3));
  // A span beyond either end is clipped to the series.
  const TSSpan wide(-3, 100);
  ExpectSame(Compute(series, 3, &wide), Compute(series, 3));
  // Under the logarithm and the square root the negative value drops out.
  Doubles logs, roots;
  for (double x : series) {
    if (x > 0) logs.push_back(std::log(x));
    if (x >= 0) roots.push_back(std::sqrt(x));
  }
  const TSSpan whole(0, series.size());
  ExpectSame(Compute(series, 3, &whole, BFSharedConst::Logarithm),
             Compute({logs.data(), logs.size()}, 3));
  ExpectSame(Compute(series, 3, &whole, BFSharedConst::SquareRoot),
             Compute({roots.data(), roots.size()}, 3));
}

TEST(TSAutocorrelationTest, FailuresEmptyTheOutputs) {
  const std::tuple<std::valarray<double>, int, long> cases[] = {
      {{1, 2, 3}, 0, TSAutocorrelation::kBadLagCount},
      {{kMissing, 4, kMissing}, 2, TSAutocorrelation::kTooFewValues},
      {{}, 2, TSAutocorrelation::kTooFewValues},
      {{2.5, 2.5, kMissing, 2.5}, 2, TSAutocorrelation::kNoVariation},
  };
  for (const auto& [series, lags, code] : cases) {
    SCOPED_TRACE(code);
    const Result r = Compute(series, lags);
    EXPECT_EQ(r.acfStatus.GetCode(), code);
    EXPECT_EQ(r.pacfStatus.GetCode(), code);
    EXPECT_EQ(r.acf.size() + r.acfStdErrors.size() + r.pacf.size(), 0u);
    EXPECT_EQ(r.pacfStdError, kMissing);
  }
}

}  // namespace
