#!/usr/bin/python3
"""Reference values for autocorrelation_test.cpp, computed with statsmodels.

Run with Debian's python3 (python3-statsmodels, 0.13):
    /usr/bin/python3 tests/modelapi/autocorrelation_reference.py \
        > tests/data/modelapi/autocorrelation_reference.txt
For each series it prints the series itself, a missing value (None here)
as the library's missing value, -DBL_MAX; statsmodels gets the series
without them.

ACF: acf(adjusted=False, fft=False) with Bartlett's intervals at alpha 0.05;
PACF: pacf(method="ldb") (Durbin-Levinson on the biased autocovariances)
with its intervals at alpha 0.05. Lag 0 is left out, and each standard error
is the interval's half-width divided by the normal quantile at 0.975.
"""
import sys

import numpy as np
from scipy import stats
from statsmodels.tsa.stattools import acf, pacf

SERIES = {
    "kAR": ([None, None, 0.03, 1.38, 2.05, 0.72, 0.13, -0.45, 0.3, 0.13, 0.82,
             -1.35, 0.75, 0.36, 0.89, 0.4, -0.14, 0.38, 1.05, 0.43, 0.1, 0.75,
             -0.42, -1.77, -0.67, -1.07, -2.56, -2.35, -1.88], 10),
    "kSeasonal": ([-3.6, 0.6, 8.9, 12.8, 8.2, 3.0, 1.5, -2.5, -9.2, -7.9, -5.0,
                   -5.1, -1.8, 6.7, 10.1, 14.0, 5.6, 3.9, -1.6, -9.3, -7.3,
                   -7.4, -9.8, 0.3, 3.7, 8.1, 11.2, 14.2, 6.1, 8.3, 3.3, -8.8,
                   -6.0, -9.1, -4.6, -4.6, 1.7, 7.9, 7.9, 13.7, 10.3, 8.5, 0.5,
                   0.4, -4.6, -8.3, -4.5, 1.1, 7.8, 2.7, 13.8, 13.9, 11.0, 4.6,
                   6.5, -6.0, -4.2, -3.2, -10.6, -3.0], 24),
    "kShort": ([-6.5, 1.2, 7.6, 10.1, -8.9, -2.9, 3.5, 7.9], 3),
}


def values(name, array):
    print(f"  // {name}")
    print("  {" + ", ".join(repr(float(v)) for v in array) + "},")


def main():
    z = stats.norm.ppf(0.975)
    for name, (series, lags) in SERIES.items():
        x = np.array([v for v in series if v is not None])
        r, r_int = acf(x, nlags=lags, adjusted=False, fft=False, alpha=0.05,
                       bartlett_confint=True)
        p, p_int = pacf(x, nlags=lags, method="ldb", alpha=0.05)
        print(f"// {name}: n = {len(x)}, {lags} lags")
        values("series", [-sys.float_info.max if v is None else v
                          for v in series])
        values("acf", r[1:])
        values("acf standard errors", (r_int[1:, 1] - r[1:]) / z)
        values("pacf", p[1:])
        values("pacf standard error", [(p_int[1, 1] - p[1]) / z])


if __name__ == "__main__":
    main()
