#include "tsxml/modelapi/autocorrelation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "tsxml/base/missing_value.h"

namespace {

constexpr double kMissing = MV::gMissingValue;

struct Result {
  OstraTime::OstraStatus acfStatus;
  OstraTime::OstraStatus pacfStatus;
  std::valarray<double> acf;
  std::valarray<double> acfStdErrors;
  std::valarray<double> pacf;
  double pacfStdError = 0.0;
};

// Both functions over the whole of `series`, unless `span` says otherwise.
Result Compute(const std::valarray<double>& series, int lags,
               const TSSpan* span = nullptr,
               unsigned function = BFSharedConst::NoTransform) {
  const TSSpan whole(0, series.size());
  const TSTransformation transformation(function);
  Result r;
  r.acfStatus =
      TSAutocorrelation::ComputeACF(span ? *span : whole, transformation, 12,
                                    lags, series, r.acf, r.acfStdErrors);
  r.pacfStatus =
      TSAutocorrelation::ComputePACF(span ? *span : whole, transformation, 12,
                                     lags, series, r.pacf, r.pacfStdError);
  return r;
}

void ExpectRelativelyNear(const std::valarray<double>& actual,
                          const std::vector<double>& expected) {
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

// Reference values: the output of autocorrelation_reference.py (statsmodels
// 0.13.5) beside this file, on the same series.
struct Reference {
  std::valarray<double> series;
  int lags;
  std::vector<double> acf, acfStdErrors, pacf;
  double pacfStdError;
};

const Reference kReferences[] = {
    // kAR: two missing values first; n = 27, 10 lags.
    {{kMissing, kMissing, 0.03,  1.38,  2.05,  0.72,  0.13,  -0.45, 0.3,  0.13,
      0.82,     -1.35,    0.75,  0.36,  0.89,  0.4,   -0.14, 0.38,  1.05, 0.43,
      0.1,      0.75,     -0.42, -1.77, -0.67, -1.07, -2.56, -2.35, -1.88},
     10,
     {0.5843945454969742, 0.3691192586352191, 0.22372230265258955,
      0.2150987964483732, 0.07718669487694607, -0.025551070923458607,
      -0.1543824561965862, -0.13516615343964036, -0.0722537429618512,
      -0.07121513340297407},
     {0.19245008972987526, 0.24966896376433473, 0.2691228566895478,
      0.27592506774098485, 0.2820671279231167, 0.2828483376764895,
      0.2829338119080551, 0.28603674442959476, 0.2883926910960722,
      0.28906237326660694},
     {0.5843945454969742, 0.0419179738759058, -0.011323809416822274,
      0.11949258881320239, -0.14521836597990775, -0.07909506457605957,
      -0.14183084436062193, 0.027623224406062526, 0.08808194721949278,
      -0.04420644075662804},
     0.19245008972987526},
    // kSeasonal: n = 60, 24 lags.
    {{-3.6, 0.6, 8.9,  12.8, 8.2,  3.0, 1.5,  -2.5, -9.2, -7.9, -5.0,  -5.1,
      -1.8, 6.7, 10.1, 14.0, 5.6,  3.9, -1.6, -9.3, -7.3, -7.4, -9.8,  0.3,
      3.7,  8.1, 11.2, 14.2, 6.1,  8.3, 3.3,  -8.8, -6.0, -9.1, -4.6,  -4.6,
      1.7,  7.9, 7.9,  13.7, 10.3, 8.5, 0.5,  0.4,  -4.6, -8.3, -4.5,  1.1,
      7.8,  2.7, 13.8, 13.9, 11.0, 4.6, 6.5,  -6.0, -4.2, -3.2, -10.6, -3.0},
     24,
     {0.7273660103248545,   0.41766743578212684,  0.038676786477945424,
      -0.38172111130036085, -0.6901833010860338,  -0.7740272200703597,
      -0.6578966264708874,  -0.40779412539563703, 0.0008499073017771261,
      0.3405510918539523,   0.6175765143262562,   0.6878291460857827,
      0.5820923943344416,   0.3376949082759355,   -0.028230989512173305,
      -0.322449634782481,   -0.5385187154832378,  -0.6079610189574916,
      -0.53747679481037,    -0.309770748043412,   -0.032565810836808255,
      0.24064691473601543,  0.44044179004985995,  0.5208752966894542},
     {0.12909944487358055, 0.1852081093415275,  0.200292070061757,
      0.20041650744561718, 0.21218814768292757, 0.2467837980643091,
      0.28438151762618824, 0.30870770415518706, 0.3175588893864248,
      0.3175589272976282,  0.32358848431073306, 0.34267019938530285,
      0.36495638554983495, 0.3801151779899524,  0.38508286152573656,
      0.3851173542352307,  0.3895910275731753,  0.4018058183538991,
      0.41685545338335317, 0.42824974704887864, 0.4319681042147376,
      0.43200902088581794, 0.4342374450832806,  0.4416202641710779},
     {0.7273660103248545,    -0.2365358384499596,  -0.3709734043184554,
      -0.4795069253306296,   -0.38153626020574627, -0.12445311083253191,
      0.0166336575092487,    -0.0512161109342703,  0.16971724752833034,
      -0.0535077329851019,   0.1193056966617794,   -0.08888463085018593,
      -0.038994460460442824, 0.0201192017230916,   -0.1244616479736119,
      0.10020452556555018,   0.0402793020573579,   -0.027165865237746976,
      -0.10176785074113036,  -0.12672973427588813, -0.06756615173068939,
      -0.02046991042076375,  -0.06012431091924575, 0.073076072400333},
     0.12909944487358055},
    // kShort: n = 8, 3 lags.
    {{-6.5, 1.2, 7.6, 10.1, -8.9, -2.9, 3.5, 7.9},
     3,
     {0.03839075171104847, -0.579801000747685, -0.4080059814804164},
     {0.3535533905932738, 0.3540740917579749, 0.457614207134393},
     {0.03839075171104847, -0.5821328269250222, -0.5308526548633644},
     0.3535533905932738},
};

TEST(TSAutocorrelationTest, AgreesWithStatsmodels) {
  for (const Reference& reference : kReferences) {
    SCOPED_TRACE(reference.series.size());
    const Result r = Compute(reference.series, reference.lags);
    EXPECT_TRUE(r.acfStatus.IsOK());
    EXPECT_TRUE(r.pacfStatus.IsOK());
    ExpectRelativelyNear(r.acf, reference.acf);
    ExpectRelativelyNear(r.acfStdErrors, reference.acfStdErrors);
    ExpectRelativelyNear(r.pacf, reference.pacf);
    EXPECT_NEAR(r.pacfStdError, reference.pacfStdError,
                1e-12 * reference.pacfStdError);
  }
}

// The PACF at lag k is the last coefficient of the order-k Yule-Walker
// equations R phi = r, solved here by Gaussian elimination.
double YuleWalkerLast(const std::valarray<double>& acf, size_t k) {
  std::vector<std::vector<double>> m(k, std::vector<double>(k + 1));
  for (size_t i = 0; i < k; ++i) {
    for (size_t j = 0; j < k; ++j) {
      m[i][j] = i == j ? 1.0 : acf[(i > j ? i - j : j - i) - 1];
    }
    m[i][k] = acf[i];
  }
  for (size_t c = 0; c < k; ++c) {
    size_t pivot = c;
    for (size_t i = c + 1; i < k; ++i) {
      if (std::fabs(m[i][c]) > std::fabs(m[pivot][c])) pivot = i;
    }
    std::swap(m[c], m[pivot]);
    for (size_t i = c + 1; i < k; ++i) {
      const double f = m[i][c] / m[c][c];
      for (size_t j = c; j <= k; ++j) m[i][j] -= f * m[c][j];
    }
  }
  std::vector<double> x(k);
  for (size_t i = k; i-- > 0;) {
    double s = m[i][k];
    for (size_t j = i + 1; j < k; ++j) s -= m[i][j] * x[j];
    x[i] = s / m[i][i];
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
    const int lags = static_cast<int>(1 + random() % (n - 1));

    const Result r = Compute(series, lags);
    ASSERT_EQ(r.acf.size(), static_cast<size_t>(lags));
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
    std::vector<double> withGaps;
    for (size_t i = 0; i < n; ++i) {
      if (random() % 4 == 0) withGaps.push_back(kMissing);
      withGaps.push_back(series[i]);
    }
    ExpectSame(Compute({withGaps.data(), withGaps.size()}, lags), r);
  }
}

TEST(TSAutocorrelationTest, LagsStopAtOneBelowTheCount) {
  const Result r = Compute({1, 3, 2, 5}, 10);
  EXPECT_TRUE(r.acfStatus.IsOK());
  // Mean 2.75; deviations -1.75, 0.25, -0.75, 2.25; sum of squares 8.75.
  ExpectRelativelyNear(r.acf, {-2.3125 / 8.75, 1.875 / 8.75, -3.9375 / 8.75});
  EXPECT_EQ(r.pacf.size(), 3u);
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
  std::vector<double> logs, roots;
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
  const struct {
    std::valarray<double> series;
    int lags;
    long code;
  } cases[] = {
      {{1, 2, 3}, 0, TSAutocorrelation::kBadLagCount},
      {{kMissing, 4, kMissing}, 2, TSAutocorrelation::kTooFewValues},
      {{}, 2, TSAutocorrelation::kTooFewValues},
      {{2.5, 2.5, kMissing, 2.5}, 2, TSAutocorrelation::kNoVariation},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    Result r;
    r.acf = {1, 2};
    r.acfStdErrors = {1, 2};
    r.pacf = {1, 2};
    const TSSpan span(0, c.series.size());
    EXPECT_EQ(TSAutocorrelation::ComputeACF(span, TSTransformation(), 1, c.lags,
                                            c.series, r.acf, r.acfStdErrors)
                  .GetCode(),
              c.code);
    EXPECT_EQ(
        TSAutocorrelation::ComputePACF(span, TSTransformation(), 1, c.lags,
                                       c.series, r.pacf, r.pacfStdError)
            .GetCode(),
        c.code);
    EXPECT_EQ(r.acf.size() + r.acfStdErrors.size() + r.pacf.size(), 0u);
    EXPECT_EQ(r.pacfStdError, kMissing);
  }
}

}  // namespace
