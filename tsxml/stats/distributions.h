// Probabilities and quantiles of the normal and Student's t distributions, and
// the special functions under them. Free functions without state: nothing
// allocates, throws or keeps anything between calls, so any thread may call
// them at any time.
//
// A result that cannot be given is the missing value MV::gMissingValue (the
// negated largest double). Where a function has a `status`, it is 0 on
// success, 1 for a bad argument and 2 when no result was found. A NaN
// argument counts as a bad argument: the missing value (with status 1 where
// there is a status, -1.0 from TSXInverseIncompleteBeta).
//
// Accuracy, as the tests hold it against Boost.Math: TSXErf within 3 ulp;
// TSXLogGamma within 4 ulp of its scale; TSXNormalCDF within 4 (1 + x^2) ulp;
// TSXNormalQuantile within 4 ulp (for p from 1e-300 to 1 - 1e-16);
// TSXIncompleteBeta and TSXStudentTCDF within the stopping rule of the
// continued fraction, max(1, a + b) * 10 ulp relative, plus the rounding of
// its log-gamma prefactor; TSXStudentTQuantile to about 1e-10 relative where
// the tail probability is at least 1e-20.
#ifndef TSXML_STATS_DISTRIBUTIONS_H
#define TSXML_STATS_DISTRIBUTIONS_H

#include "tsxml/base/export.h"

// erf(x); +-1 from |x| 6.9 on.
TSXML_API double TSXErf(double x);

// log Gamma(x) for x > 0 (+inf for +inf); missing for x <= 0.
TSXML_API double TSXLogGamma(double x);

// P(Z <= x) of the standard normal; 0 where it is below exp(-708) / 2.
TSXML_API double TSXNormalCDF(double x);

// The x with P(Z <= x) = p; missing unless 0 < p < 1.
TSXML_API double TSXNormalQuantile(double p);

// The Peizer-Pratt g(x) = (2 x log x + 1 - x^2) / (1 - x)^2; g(0) = 1, g(1) =
// 0, -1 above sqrt(DBL_MAX); missing for x < 0.
TSXML_API double TSXPeizerPrattG(double x);

// The regularised incomplete beta I_x(a, b), in [0, 1]: 0 for x <= 0, 1 for
// x >= 1. a or b not positive and finite: status 1, missing; a result that
// could not be formed (overflowing log-gamma terms): status 2, missing.
TSXML_API double TSXIncompleteBeta(double x, double a, double b, int& status);

// The x in [0, 1] with I_x(a, 1/2) = p, to about 1e-10 in x; -1.0 when p is
// outside [0, 1], a <= 0, or the inversion fails.
TSXML_API double TSXInverseIncompleteBeta(double p, double a);

// P(T <= x) of Student's t with df > 0 degrees of freedom (normal above 1e8);
// df <= 0: status 1, missing.
TSXML_API double TSXStudentTCDF(double x, double df, int& status);

// The x with P(T <= x) = p, for 0 < p < 1 and df > 0 (normal from 1e8 on);
// other arguments: status 1, missing; an inversion that fails or underflows
// to an infinite x: status 2, missing.
TSXML_API double TSXStudentTQuantile(double p, double df, int& status);

#endif  // TSXML_STATS_DISTRIBUTIONS_H
