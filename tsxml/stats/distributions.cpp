#include "tsxml/stats/distributions.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "tsxml/base/missing_value.h"
#include "tsxml/stats/internal/distribution_tables.h"

namespace {

namespace tables = tsxml;

constexpr double kMissing = MV::gMissingValue;
constexpr double kPi = 3.14159265358979323846;
constexpr double kSqrt2 = 1.41421356237309504880;
// sqrt(DBL_MAX), correctly rounded; its square is still finite.
constexpr double kSqrtMaxDouble = 1.3407807929942596e154;
constexpr double kDoubleEpsilon = 2.220446049250313e-16;

// exp() is only called on arguments in [kExpFloor, kExpCeiling]: below, the
// value is taken as 0; above, the caller gives up or takes a fallback.
constexpr double kExpFloor = -708.0;
constexpr double kExpCeiling = 709.0;

// Both stages of the incomplete beta stop after this many terms.
constexpr int kBetaIterations = 10000;
constexpr double kBetaSeriesTerm = 1e-15;

// Newton iteration of the inverse incomplete beta.
constexpr int kNewtonPasses = 50;
constexpr double kNewtonAccuracy = 1e-12;
constexpr double kNewtonStop = 1e-20;
// The step is cut by thirds until it is accepted. 3^-679 underflows to 0, so a
// finite correction is accepted by then; the bound ends the cuts when none can
// be (a previous step size of 0).
constexpr int kMaxStepCuts = 700;

constexpr std::size_t kDoubles = sizeof(double);
static_assert(sizeof(tables::kErfA) ==
              tables::kErfRows * tables::kErfRowSize * kDoubles);
static_assert(sizeof(tables::kErfB) ==
              tables::kErfRows * tables::kErfRowSize * kDoubles);
static_assert(sizeof(tables::kErfcPoly) == tables::kErfcSize * kDoubles);
static_assert(sizeof(tables::kLogGammaStirling) ==
              (tables::kStirlingSize + 1) * kDoubles);
static_assert(sizeof(tables::kLogGammaMid) == tables::kLogGammaMidRows *
                                                  tables::kLogGammaMidRowSize *
                                                  kDoubles);
static_assert(sizeof(tables::kLogGammaLow) == tables::kLogGammaLowRows *
                                                  tables::kLogGammaLowRowSize *
                                                  kDoubles);
static_assert(sizeof(tables::kLogGammaSmall) ==
              2 * tables::kLogGammaSmallRowSize * kDoubles);
static_assert(sizeof(tables::kNormalQuantileA) ==
                  tables::kNormalQuantileSize * kDoubles &&
              sizeof(tables::kNormalQuantileB) ==
                  tables::kNormalQuantileSize * kDoubles &&
              sizeof(tables::kNormalQuantileC) ==
                  tables::kNormalQuantileSize * kDoubles &&
              sizeof(tables::kNormalQuantileD) ==
                  tables::kNormalQuantileSize * kDoubles &&
              sizeof(tables::kNormalQuantileE) ==
                  tables::kNormalQuantileSize * kDoubles &&
              sizeof(tables::kNormalQuantileF) ==
                  tables::kNormalQuantileSize * kDoubles);

// Horner's rule over `n` coefficients listed highest power first.
double PolyHighFirst(const double* c, int n, double x) {
  double sum = c[0];
  for (int i = 1; i < n; ++i) sum = sum * x + c[i];
  return sum;
}

// Horner's rule over `n` coefficients listed lowest power first.
double PolyLowFirst(const double* c, int n, double x) {
  double sum = c[n - 1];
  for (int i = n - 2; i >= 0; --i) sum = sum * x + c[i];
  return sum;
}

// floor(v) as a row of a table with `rows` rows. Callers pass a v whose floor
// is a row already; the clamp keeps any rounding slip inside the table.
int TableRow(double v, int rows) {
  const double f = std::floor(v);
  if (!(f > 0)) return 0;
  if (f >= rows - 1) return rows - 1;
  return static_cast<int>(f);
}

// The relative convergence test of the continued fraction: `az` and
// `previous` both 0, or of one sign and within `eps` of each other.
bool FractionConverged(double az, double previous, double eps) {
  if (az == 0 || previous == 0) return az == 0 && previous == 0;
  if ((az > 0) != (previous > 0)) return false;
  const double m = std::fabs(az);
  const double n = std::fabs(previous);
  return std::fabs(m - n) / std::max(m, n) <= eps;
}

// The power series of I_x(a, b) without its prefactor; false when its terms do
// not fall below kBetaSeriesTerm within the iteration limit.
bool BetaSeries(double x, double a, double n, double& sum) {
  sum = 1;
  double term = 1;
  for (int i = 0; i <= kBetaIterations; ++i) {
    term = term * ((i + n) / (i + a + 1)) * x;
    sum = sum + term;
    if (std::fabs(term) < kBetaSeriesTerm) return true;
  }
  return false;
}

// The continued fraction of I_x(a, b) without its prefactor; false when it
// does not converge within the iteration limit.
bool BetaFraction(double x, double a, double b, double& fraction) {
  const double n = a + b;
  const double eps = std::max(1.0, n) * 10 * kDoubleEpsilon;
  double am = 1;
  double bm = 1;
  double az = 1;
  double bz = 1 - (n / (a + 1)) * x;
  double previous = 1 / bz;
  for (int m = 1; m <= kBetaIterations; ++m) {
    const double c = a + 2.0 * m;
    const double d1 = ((b - m) / (c - 1)) * (m / c) * x;
    const double d2 = -(((a + m + b) / (c + 1)) * (((a + m) / c) * x));
    const double ap = az + d1 * am;
    const double bp = bz + d1 * bm;
    const double app = ap + d2 * az;
    const double bpp = bp + d2 * bz;
    if (bpp == 0) {
      az = app;
      bz = bpp;
      continue;
    }
    am = ap / bpp;
    bm = bp / bpp;
    az = app / bpp;
    bz = 1;
    if (FractionConverged(az, previous, eps)) {
      fraction = az;
      return true;
    }
    previous = az;
  }
  return false;
}

// The Peizer-Pratt normal approximation of I_x(a, b), y = 1 - x, negated
// (the complement) when `direct` is false.
double PeizerPrattBeta(double x, double y, double a, double b, bool direct) {
  const double n = a + b;
  const double m = n - 1;
  const double v = (1 + y * TSXPeizerPrattG((a - 0.5) / (m * x)) +
                    x * TSXPeizerPrattG((b - 0.5) / (m * y))) /
                   ((m + 1.0 / 6) * x * y);
  double z = 0;
  if (v > 0) {
    z = std::sqrt(v) *
        ((x - a / m) * m + (x + 1) / 3 + (x / b - y / a + (x - 0.5) / n) / 50);
  }
  if (!direct) z = -z;
  return TSXNormalCDF(z);
}

// x^a y^b / (a B(a, b)) * sum, or 0 when that is below exp(kExpFloor).
double BetaPrefactor(double x, double y, double a, double b, double sum) {
  if (sum <= 0) return 0;
  const double e = TSXLogGamma(a + b) - TSXLogGamma(a + 1) - TSXLogGamma(b) +
                   b * std::log(y) + a * std::log(x) + std::log(sum);
  return e < kExpFloor ? 0 : std::exp(e);
}

}  // namespace

double TSXErf(double x) {
  if (std::isnan(x)) return kMissing;
  const double w = std::fabs(x);
  if (w == 0) return x;
  double y = 1;
  if (w < 2.2) {
    const double t = w * w;
    const int k = TableRow(t, tables::kErfRows);
    y = w * PolyHighFirst(tables::kErfA + k * tables::kErfRowSize,
                          tables::kErfRowSize, t - k);
  } else if (w < 6.9) {
    const int k = 2 + TableRow(w - 2, tables::kErfRows);
    y = PolyHighFirst(tables::kErfB + (k - 2) * tables::kErfRowSize,
                      tables::kErfRowSize, w - k);
    y *= y;
    y *= y;
    y *= y;
    y *= y;
    y = 1 - y;
  }
  return x < 0 ? -y : y;
}

double TSXLogGamma(double x) {
  if (!(x > 0)) return kMissing;
  if (x >= 8) {
    if (std::isinf(x)) return x;
    const double v = 1 / x;
    return (x - 0.5) * std::log(x) - x +
           tables::kLogGammaStirling[tables::kStirlingSize] +
           v * PolyHighFirst(tables::kLogGammaStirling, tables::kStirlingSize,
                             v * v);
  }
  if (x >= 3.5) {
    const int k = TableRow(x - 3, tables::kLogGammaMidRows);
    return PolyHighFirst(tables::kLogGammaMid + k * tables::kLogGammaMidRowSize,
                         tables::kLogGammaMidRowSize, x - (k + 3.5));
  }
  if (x == 1 || x == 2) return 0;
  if (x > 0.5) {
    double t = x - 4.5 / (x + 0.5);
    const int k = TableRow(t + 4, tables::kLogGammaLowRows);
    t = t - (k - 3.5);
    return PolyHighFirst(tables::kLogGammaLow + k * tables::kLogGammaLowRowSize,
                         tables::kLogGammaLowRowSize, t);
  }
  if (x == 0.5) return std::log(kPi) * 0.5;
  const double* row =
      tables::kLogGammaSmall + (x < 0.25 ? 0 : tables::kLogGammaSmallRowSize);
  const double y = x * PolyHighFirst(row, tables::kLogGammaSmallRowSize, x);
  if (y <= 0) return kMissing;
  return -std::log(y);
}

double TSXNormalCDF(double x) {
  if (std::isnan(x)) return kMissing;
  if (x > 0) return (TSXErf(x / kSqrt2) + 1) * 0.5;
  if (x == 0) return 0.5;
  // 0.5 erfc(w), with erfc(w) = t Q(t - 0.5) exp(-w^2).
  const double w = -x / kSqrt2;
  const double t = tables::kErfcScale / (w + tables::kErfcScale);
  const double y =
      t * PolyHighFirst(tables::kErfcPoly, tables::kErfcSize, t - 0.5);
  if (y > 0) {
    const double e = std::log(y) - w * w;
    if (e >= kExpFloor) return 0.5 * std::exp(e);
  }
  return 0;
}

double TSXNormalQuantile(double p) {
  if (!(p > 0 && p < 1)) return kMissing;
  const double q = p - 0.5;
  if (q == 0) return 0;
  if (std::fabs(q) <= tables::kAs241Split1) {
    const double r = tables::kAs241Const1 - q * q;
    return q *
           PolyLowFirst(tables::kNormalQuantileA, tables::kNormalQuantileSize,
                        r) /
           PolyLowFirst(tables::kNormalQuantileB, tables::kNormalQuantileSize,
                        r);
  }
  double r = std::sqrt(-std::log(q < 0 ? p : 1 - p));
  double z;
  if (r <= tables::kAs241Split2) {
    r -= tables::kAs241Const2;
    z = PolyLowFirst(tables::kNormalQuantileC, tables::kNormalQuantileSize, r) /
        PolyLowFirst(tables::kNormalQuantileD, tables::kNormalQuantileSize, r);
  } else {
    r -= tables::kAs241Split2;
    z = PolyLowFirst(tables::kNormalQuantileE, tables::kNormalQuantileSize, r) /
        PolyLowFirst(tables::kNormalQuantileF, tables::kNormalQuantileSize, r);
  }
  return q < 0 ? -z : z;
}

double TSXPeizerPrattG(double x) {
  if (!(x >= 0)) return kMissing;
  if (x == 0) return 1;
  if (x > kSqrtMaxDouble) return -1;
  const double u = 1 - x;
  if (u == 0) return 0;
  return (2 * x * std::log(x) + 1 - x * x) / (u * u);
}

double TSXIncompleteBeta(double x, double a, double b, int& status) {
  status = 0;
  if (!(a > 0 && b > 0 && std::isfinite(a) && std::isfinite(b)) ||
      std::isnan(x)) {
    status = 1;
    return kMissing;
  }
  if (x <= 0) return 0;
  double y = 1 - x;
  if (y <= 0) return 1;
  if (a == 1 && b == 1) return x;
  if (a == 1) {
    const double v = b * std::log(y);
    return v < kExpFloor ? 1 : 1 - std::exp(v);
  }
  if (b == 1) {
    const double v = a * std::log(x);
    return v < kExpFloor ? 0 : std::exp(v);
  }

  // From here on x, a (and y, b) may trade places; `direct` tells whether the
  // sum found is for I_x(a, b) or for its complement.
  const double n = a + b;
  bool direct = true;
  double sum = 0;
  bool summed = false;
  if (a <= 1 || b <= 1) {
    if (a <= 1) {
      std::swap(x, y);
      std::swap(a, b);
      direct = false;
    }
    summed = BetaSeries(x, a, n, sum);
  }
  if (!summed) {
    if (x >= (a + 1) / (n + 2)) {
      std::swap(x, y);
      std::swap(a, b);
      direct = !direct;
    }
    if (!BetaFraction(x, a, b, sum)) {
      const double approx = PeizerPrattBeta(x, y, a, b, direct);
      if (MV::IsMissing(approx)) status = 2;
      return approx;
    }
  }
  // Rounding in the prefactor's exponent can carry r past 1 when the
  // log-gamma terms are huge; a probability stays in [0, 1].
  const double r = std::min(BetaPrefactor(x, y, a, b, sum), 1.0);
  if (std::isnan(r)) {
    status = 2;
    return kMissing;
  }
  return direct ? r : 1 - r;
}

double TSXInverseIncompleteBeta(double p, double a) {
  if (p == 0) return 0;
  if (p == 1) return 1;
  if (!(a > 0) || !(p > 0 && p < 1)) return -1;
  if (a == 0.5) {
    if (p == 0.5) return 0.5;
    const double s = std::sin(p * 0.5 * kPi);
    return s * s;
  }
  if (a == 1) {
    const double u = 1 - p;
    if (u <= 0) return 1;
    const double e = 2 * std::log(u);
    return e < kExpFloor ? 1 : 1 - std::exp(e);
  }
  if (a * 1e-20 >= 0.5) return 1;
  const double z = TSXNormalQuantile(p);
  if (MV::IsMissing(z)) return -1;

  // Solve in the lower tail: I_x(pp, qq) = alpha with alpha at most 1/2.
  const bool lower = p <= 0.5;
  const double alpha = lower ? p : 1 - p;
  const double pp = lower ? a : 0.5;
  const double qq = lower ? 0.5 : a;
  const double y = lower ? -z : z;
  const double lbeta = TSXLogGamma(qq) + TSXLogGamma(pp) - TSXLogGamma(pp + qq);
  const double mean = a / (a + 0.5);

  double x;
  const double w = 1 / (9 * qq);
  const double h = 1 - w + y * std::sqrt(w);
  const double t = 2 * qq * h * h * h;
  if (t > 0) {
    const double u = (4 * pp + 2 * qq - 2) / t;
    if (u > 1) {
      x = 1 - 2 / (u + 1);
    } else {
      const double e = (std::log(alpha * pp) + lbeta) / pp;
      if (e > kExpCeiling) return mean;
      x = e < kExpFloor ? 0 : std::exp(e);
    }
  } else {
    const double e = (std::log((1 - alpha) * qq) + lbeta) / qq;
    if (e > kExpCeiling) return mean;
    x = e < kExpFloor ? 1 : 1 - std::exp(e);
  }
  x = std::min(std::max(x, 1e-8), 0.9999999);

  double yprev = 0;
  double sq = 1;
  double prev = 1;
  for (int pass = 0; pass < kNewtonPasses; ++pass) {
    int status = 0;
    const double v = TSXIncompleteBeta(x, pp, qq, status);
    if (status > 0) return -1;
    const double e =
        lbeta + (1 - pp) * std::log(x) + (1 - qq) * std::log(1 - x);
    if (e > kExpCeiling) return mean;
    const double d = e < kExpFloor ? 0 : (v - alpha) * std::exp(e);
    if (yprev * d <= 0) prev = sq;

    double tx = x;
    double g = 1;
    for (int cut = 0; cut < kMaxStepCuts; ++cut, g /= 3) {
      const double adj = g * d;
      sq = adj * adj;
      if (!(sq < prev)) continue;
      const double candidate = x - adj;
      if (std::fabs(candidate) < kNewtonAccuracy) {
        tx = kNewtonAccuracy;
        break;
      }
      if (std::fabs(candidate - 1) < kNewtonAccuracy) {
        tx = 0.999999999999;
        break;
      }
      if (candidate > 0 && candidate < 1) {
        tx = candidate;
        break;
      }
    }
    if (prev <= kNewtonStop || d * d <= kNewtonStop ||
        std::fabs(tx - x) < kNewtonAccuracy) {
      break;
    }
    x = tx;
    yprev = d;
  }
  return lower ? x : 1 - x;
}

double TSXStudentTCDF(double x, double df, int& status) {
  status = 0;
  if (!(df > 0) || std::isnan(x)) {
    status = 1;
    return kMissing;
  }
  if (df > 1e8) return TSXNormalCDF(x);
  if (x == 0) return 0.5;
  if (df == 1) return std::atan(x) / kPi + 0.5;
  const double w = std::fabs(x);
  const double s = df / w;
  if (w <= 1) {
    double v = TSXIncompleteBeta(w / (s + w), 0.5, df / 2, status);
    if (MV::IsMissing(v)) return kMissing;
    if (x < 0) v = -v;
    return v * 0.5 + 0.5;
  }
  const double v = TSXIncompleteBeta(s / (s + w), df / 2, 0.5, status);
  if (MV::IsMissing(v)) return kMissing;
  return x < 0 ? v * 0.5 : 1 - v * 0.5;
}

double TSXStudentTQuantile(double p, double df, int& status) {
  status = 0;
  if (!(p > 0 && p < 1) || !(df > 0)) {
    status = 1;
    return kMissing;
  }
  if (p == 0.5) return 0;
  if (df >= 1e8) return TSXNormalQuantile(p);
  const double q = p < 0.5 ? 2 * p : 2 - p - p;
  const double x = TSXInverseIncompleteBeta(q, df / 2);
  if (x == -1) {
    status = 2;
    return kMissing;
  }
  const double t2 = (1 / x - 1) * df;
  // x of 0 (an inversion that underflowed) would give an infinite quantile.
  if (!(t2 >= 0) || std::isinf(t2)) {
    status = 2;
    return kMissing;
  }
  const double t = std::sqrt(t2);
  return p < 0.5 ? -t : t;
}
