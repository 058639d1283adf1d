// Probabilities and quantiles of the normal and Student's t distributions, and
// the special functions under them. Free functions without state: nothing
// allocates or throws. Results that cannot be given are MV::gMissingValue;
// `status` is 0 on success, 1 for a bad argument, 2 when no result was found.
// A NaN argument counts as a bad argument: the missing value (with status 1
// where there is a status, -1.0 from TSXInverseIncompleteBeta).
#ifndef TSXML_STATS_DISTRIBUTIONS_H
#define TSXML_STATS_DISTRIBUTIONS_H

// erf(x); +-1 from |x| 6.9 on.
double TSXErf(double x);

// log Gamma(x) for x > 0 (+inf for +inf); missing for x <= 0.
double TSXLogGamma(double x);

// P(Z <= x) of the standard normal; 0 where it is below exp(-708) / 2.
double TSXNormalCDF(double x);

// The x with P(Z <= x) = p; missing unless 0 < p < 1.
double TSXNormalQuantile(double p);

// The Peizer-Pratt g(x) = (2 x log x + 1 - x^2) / (1 - x)^2; g(0) = 1, g(1) =
// 0, -1 above sqrt(DBL_MAX); missing for x < 0.
double TSXPeizerPrattG(double x);

// The regularised incomplete beta I_x(a, b), in [0, 1]: 0 for x <= 0, 1 for
// x >= 1. a or b not positive and finite: status 1, missing; a result that
// could not be formed (overflowing log-gamma terms): status 2, missing.
double TSXIncompleteBeta(double x, double a, double b, int& status);

// The x in [0, 1] with I_x(a, 1/2) = p, to about 1e-10 in x; -1.0 when p is
// outside [0, 1], a <= 0, or the inversion fails.
double TSXInverseIncompleteBeta(double p, double a);

// P(T <= x) of Student's t with df > 0 degrees of freedom (normal above 1e8);
// df <= 0: status 1, missing.
double TSXStudentTCDF(double x, double df, int& status);

// The x with P(T <= x) = p, for 0 < p < 1 and df > 0 (normal from 1e8 on);
// other arguments: status 1, missing; an inversion that fails or underflows
// to an infinite x: status 2, missing.
double TSXStudentTQuantile(double p, double df, int& status);

#endif  // TSXML_STATS_DISTRIBUTIONS_H
