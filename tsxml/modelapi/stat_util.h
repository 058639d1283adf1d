// Statistical utilities of the model library.
#ifndef TSXML_MODELAPI_STAT_UTIL_H
#define TSXML_MODELAPI_STAT_UTIL_H

namespace TSStatUtil {

// P(T <= t) of Student's t distribution with `df` degrees of freedom; the
// missing value when it cannot be computed (df of 0 or below, NaN).
double CDFStudentsT(double t, double df);

}  // namespace TSStatUtil

#endif  // TSXML_MODELAPI_STAT_UTIL_H
