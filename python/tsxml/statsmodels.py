"""Model descriptions from fitted statsmodels results.

Each adapter takes a results object and gives a description (a dict of the
form docs/model-description.md tells) that ``tsxml.write`` turns into any of
the three documents:

    >>> from statsmodels.tsa.holtwinters import ExponentialSmoothing
    >>> import tsxml, tsxml.statsmodels
    >>> results = ExponentialSmoothing(y, trend="add").fit()
    >>> pmml = tsxml.write(tsxml.statsmodels.from_holt_winters(results))

``from_holt_winters`` takes ``ExponentialSmoothing`` results, ``from_ets``
``ETSModel`` results and ``from_sarimax`` ``SARIMAX`` results. A fitted
model that our models can't hold exactly raises ValueError naming the
feature; docs/python.md tells the mapping.
"""
import math
import re

import numpy as np

__all__ = ["from_ets", "from_holt_winters", "from_sarimax"]


def from_holt_winters(results, name=None, dependent_variable=None,
                      date_spec=None, lags=24, confidence_level=0.95):
    """The description of a fitted ``ExponentialSmoothing`` model
    (statsmodels.tsa.holtwinters): simple, Holt, damped trend, additive and
    multiplicative seasonal; Box-Cox off, log (lambda 0) or lambda 1.

    ``name`` and ``dependent_variable`` default to the series' name;
    ``date_spec`` is an entry of the description's ``dateSpecs`` that the
    model refers to; ``lags`` and ``confidence_level`` go to the ``statXML``
    section, whose residuals are the fit's.
    """
    model = results.model
    params = results.params
    if model.trend == "mul":
        _unsupported("a multiplicative trend (trend='mul')")
    if params.get("remove_bias"):
        _unsupported("remove_bias=True (forecasts shifted by the mean "
                     "residual)")
    if getattr(model, "exog", None) is not None:
        _unsupported("exogenous variables")
    has_trend = model.trend == "add"
    damped = bool(model.damped_trend)
    seasonal = model.seasonal
    m = int(model.seasonal_periods) if seasonal else 1

    shift = 0.0
    transformation = "none"
    use_boxcox = params.get("use_boxcox")
    # use_boxcox is False, True (lambda estimated) or lambda itself, 0.0 too.
    if use_boxcox is not None and use_boxcox is not False:
        lam = params.get("lamda")
        if lam == 0:
            transformation = "log"
        elif lam == 1:
            # boxcox(y, 1) is y - 1: for additive components a shift of the
            # level, which the description holds exactly.
            if seasonal == "mul":
                _unsupported("Box-Cox lambda 1 with multiplicative "
                             "seasonality")
            shift = 1.0
        else:
            _unsupported("Box-Cox lambda %r (only 0, the log, and 1 map)"
                         % (lam,))

    es_type = _smoothing_type(has_trend, damped, seasonal)
    alpha = float(params["smoothing_level"])
    estimates = [alpha]
    if has_trend:
        estimates.append(float(params["smoothing_trend"]))
    if seasonal:
        estimates.append(float(params["smoothing_seasonal"]))
    if damped:
        estimates.append(float(params["damping_trend"]))

    y = np.asarray(model.endog, dtype=float).ravel()
    n = y.size
    level = np.asarray(results.level, dtype=float)
    trend = np.asarray(results.trend, dtype=float) if has_trend else None
    season = np.asarray(results.season, dtype=float) if seasonal else None
    final = _state(level[-1] + shift, trend[-1] if has_trend else None,
                   season[-m:] if seasonal else None, n, m)
    initial = _state(float(params["initial_level"]) + shift,
                     float(params["initial_trend"]) if has_trend else None,
                     np.asarray(params["initial_seasons"], dtype=float)
                     if seasonal else None, 0, m)

    sse = float(results.sse)
    k = int(results.k)
    fit = {"mse": sse / n, "rmse": math.sqrt(sse / n),
           "mae": float(np.mean(np.abs(results.resid))),
           "aic": float(results.aic), "bic": float(results.bic)}
    smoothing = {"type": es_type, "seasonLength": m,
                 "transformation": transformation, "estimates": estimates,
                 "finalState": final, "initialState": initial}
    estimation = {"span": {"begin": 0, "length": n},
                  "degreesOfFreedom": max(n - k, 0),
                  "errorVariance": sse / n, "fit": fit}
    return _description(model, name, dependent_variable, date_spec, y,
                        estimation, {"exponentialSmoothing": smoothing},
                        np.asarray(results.resid, dtype=float), lags,
                        confidence_level)


def from_ets(results, name=None, dependent_variable=None, date_spec=None,
             lags=24, confidence_level=0.95):
    """The description of a fitted ``ETSModel`` (statsmodels.tsa.
    exponential_smoothing.ets) with additive errors: ETS(A,N,N), (A,A,N),
    (A,Ad,N), (A,N,A), (A,A,A) and (A,A,M). Its trend weight beta becomes
    gamma = beta / alpha, the weight of the Holt-Winters form the
    description uses (docs/python.md), with its standard error by the delta
    method. Arguments as for ``from_holt_winters``.
    """
    model = results.model
    if model.error != "add":
        _unsupported("multiplicative errors (error='mul'): our models have "
                     "additive errors with one error variance")
    if model.trend == "mul":
        _unsupported("a multiplicative trend (trend='mul')")
    has_trend = model.trend == "add"
    damped = bool(model.damped_trend)
    seasonal = model.seasonal
    m = int(model.seasonal_periods) if seasonal else 1
    es_type = _smoothing_type(has_trend, damped, seasonal)

    names = list(model.param_names)
    values = np.asarray(results.params, dtype=float)
    cov = np.asarray(results.cov_params(), dtype=float)

    def index(param):
        return names.index(param)

    ia = index("smoothing_level")
    alpha = values[ia]
    estimates = [alpha]
    errors = [_std_error(cov, ia)]
    if has_trend:
        ib = index("smoothing_trend")
        beta = values[ib]
        gamma = beta / alpha if alpha > 0 else 0.0
        # d gamma = d beta / alpha - beta / alpha^2 d alpha
        gradient = np.zeros(len(names))
        if alpha > 0:
            gradient[ib] = 1 / alpha
            gradient[ia] = -beta / alpha ** 2
        estimates.append(gamma)
        errors.append(_delta_std_error(cov, gradient))
    if seasonal:
        ig = index("smoothing_seasonal")
        estimates.append(values[ig])
        errors.append(_std_error(cov, ig))
    if damped:
        ip = index("damping_trend")
        estimates.append(values[ip])
        errors.append(_std_error(cov, ip))

    y = np.asarray(model.endog, dtype=float).ravel()
    n = y.size
    final = _state(float(results.level[-1]),
                   float(results.slope[-1]) if has_trend else None,
                   np.asarray(results.season, dtype=float)[-m:]
                   if seasonal else None, n, m)
    initial = _state(float(results.initial_level),
                     float(results.initial_trend) if has_trend else None,
                     np.asarray(results.initial_seasonal, dtype=float)
                     if seasonal else None, 0, m)

    resid = np.asarray(results.resid, dtype=float)
    mse = float(results.mse)
    fit = {"mse": mse, "rmse": math.sqrt(mse), "mae": float(results.mae),
           "logLikelihood": float(results.llf), "aic": float(results.aic),
           "bic": float(results.bic)}
    smoothing = {"type": es_type, "seasonLength": m, "estimates": estimates,
                 "standardErrors": errors, "finalState": final,
                 "initialState": initial}
    estimation = {"span": {"begin": 0, "length": n},
                  "degreesOfFreedom": _degrees_of_freedom(
                      results.nobs, results.df_model),
                  "errorVariance": float(results.scale), "fit": fit}
    return _description(model, name, dependent_variable, date_spec, y,
                        estimation, {"exponentialSmoothing": smoothing},
                        resid, lags, confidence_level)


def from_sarimax(results, name=None, dependent_variable=None,
                 date_spec=None, lags=24, confidence_level=0.95):
    """The description of a fitted ``SARIMAX`` model (statsmodels.tsa.
    statespace.sarimax): orders and seasonal orders, exogenous regressors as
    predictors with a numerator of lag 0, the constant (trend 'c'), and the
    Kalman filter's final state vector and covariance. Arguments as for
    ``from_holt_winters``; the predictors are named by ``exog_names``.

    AR and MA estimates are stored negated, so that the parameter table
    (StatXML) shows statsmodels' estimates; the constant is stored as the
    mean of the differenced series, c / (phi(1) Phi(1)), with its standard
    error by the delta method (docs/model-description.md).
    """
    model = results.model
    if getattr(model, "measurement_error", False):
        _unsupported("measurement_error=True")
    if getattr(model, "time_varying_regression", False):
        _unsupported("time_varying_regression=True")
    if model.k_exog and not getattr(model, "mle_regression", True):
        _unsupported("mle_regression=False (regression coefficients in the "
                     "state vector)")
    trend = model.trend
    if trend not in (None, "n", "c"):
        _unsupported("trend %r (only a constant, trend='c', maps)" % (trend,))
    if getattr(model, "state_regression", False):
        _unsupported("state_regression=True")

    names = list(model.param_names)
    values = np.asarray(results.params, dtype=float)
    cov = np.asarray(results.cov_params(), dtype=float)
    bse = np.asarray(results.bse, dtype=float)
    s = int(model.seasonal_periods) if model.seasonal_periods else 0
    d = int(model.k_diff)
    seasonal_d = int(model.k_seasonal_diff)

    def terms(pattern):
        found = []
        for i, param in enumerate(names):
            match = re.fullmatch(pattern, param)
            if match:
                found.append((int(match.group(1)), i))
        return found

    ar = terms(r"ar\.L(\d+)")
    seasonal_ar = terms(r"ar\.S\.L(\d+)")
    ma = terms(r"ma\.L(\d+)")
    seasonal_ma = terms(r"ma\.S\.L(\d+)")
    exog_names = list(model.exog_names or [])
    known = ({i for _, i in ar + seasonal_ar + ma + seasonal_ma}
             | {names.index(x) for x in exog_names}
             | {i for i, p in enumerate(names)
                if p in ("intercept", "sigma2")})
    for i, param in enumerate(names):
        if i not in known:
            _unsupported("the parameter %r" % param)

    estimates = []
    errors = []
    arima = {"seasonLength": max(s, 1), "differencing": d,
             "seasonalDifferencing": seasonal_d}
    if "intercept" in names:
        # SARIMAX's constant is the intercept c of the differenced series'
        # ARMA equation; the description's is that series' mean,
        # mu = c / (phi(1) Phi(1)).
        ic = names.index("intercept")
        phi1 = 1 - sum(values[i] for _, i in ar)
        seasonal_phi1 = 1 - sum(values[i] for _, i in seasonal_ar)
        mu = values[ic] / (phi1 * seasonal_phi1)
        gradient = np.zeros(len(names))
        gradient[ic] = 1 / (phi1 * seasonal_phi1)
        for _, i in ar:
            gradient[i] = mu / phi1
        for _, i in seasonal_ar:
            gradient[i] = mu / seasonal_phi1
        arima["constant"] = True
        estimates.append(mu)
        errors.append(_delta_std_error(cov, gradient))
    for key, lags_found, seasonal in (("ar", ar, False),
                                      ("seasonalAr", seasonal_ar, True),
                                      ("ma", ma, False),
                                      ("seasonalMa", seasonal_ma, True)):
        if not lags_found:
            continue
        if seasonal and any(lag % s for lag, _ in lags_found):
            _unsupported("a seasonal lag that is not a multiple of the "
                         "season length")
        arima[key] = [lag // s if seasonal else lag
                      for lag, _ in lags_found]
        for _, i in lags_found:
            estimates.append(-values[i])
            errors.append(_missing_if_nan(bse[i]))
    transfer = []
    for x in exog_names:
        i = names.index(x)
        transfer.append({"differencing": d, "seasonalDifferencing": seasonal_d})
        estimates.append(values[i])
        errors.append(_missing_if_nan(bse[i]))
    if transfer:
        arima["transferFunctions"] = transfer
    arima["estimates"] = estimates
    arima["standardErrors"] = errors

    y = np.asarray(model.data.orig_endog, dtype=float).ravel()
    n = y.size
    burn = int(model.loglikelihood_burn)
    resid = np.asarray(results.resid, dtype=float).ravel()
    arima["state"] = _kalman_state(results, y, resid, ar, seasonal_ar, ma,
                                   seasonal_ma, s, d, seasonal_d)
    sigma2 = (float(values[names.index("sigma2")]) if "sigma2" in names
              else float(results.scale))
    fit = {"mse": float(results.mse), "rmse": math.sqrt(results.mse),
           "mae": float(results.mae), "logLikelihood": float(results.llf),
           "aic": float(results.aic), "bic": float(results.bic)}
    estimation = {"span": {"begin": 0, "length": n},
                  "degreesOfFreedom": _degrees_of_freedom(
                      results.nobs_effective, results.df_model),
                  "errorVariance": sigma2, "fit": fit}
    # The residuals of the diffuse start carry no information.
    statxml_resid = resid.copy()
    statxml_resid[:burn] = np.nan
    description = _description(model, name, dependent_variable, date_spec, y,
                               estimation, {"arima": arima}, statxml_resid,
                               lags, confidence_level)
    description["models"][0]["predictors"] = exog_names
    return description


def _kalman_state(results, y, resid, ar, seasonal_ar, ma, seasonal_ma, s, d,
                  seasonal_d):
    """The Kalman filter's state after the last observation, with the last
    values of the differenced series (and their one-step predictions) and
    of each differenced regressor that the ARMA recursion reaches back to.
    """
    model = results.model
    state = np.asarray(results.filtered_state, dtype=float)[:, -1]
    cov = np.asarray(results.filtered_state_cov, dtype=float)[:, :, -1]
    packed = [cov[i, j] for i in range(cov.shape[0]) for j in range(i + 1)]
    # The largest lag of the AR and of the MA polynomial (non-seasonal
    # times seasonal); statsmodels names seasonal lags in periods.
    reach = max(_last_lag(ar) + _last_lag(seasonal_ar),
                _last_lag(ma) + _last_lag(seasonal_ma), 1)
    w = _difference(y, d, seasonal_d, s)
    keep = min(reach, w.size)
    final = w[-keep:] if keep else w[:0]
    predicted = final - resid[-keep:] if keep else final
    result = {"method": "kalmanFilter", "finalValues": final,
              "predictedValues": predicted}
    if model.k_exog:
        exog = np.asarray(model.data.orig_exog, dtype=float)
        exog = exog.reshape(y.size, -1)
        params = dict(zip(model.param_names, np.asarray(results.params)))
        history = []
        for j, x in enumerate(model.exog_names):
            dx = _difference(exog[:, j], d, seasonal_d, s)[-keep:]
            history.append({"predictor": dx,
                            "transferFunction": params[x] * dx})
        result["predictorHistory"] = history
    result["omega"] = packed
    result["stateVector"] = state
    return result


def _last_lag(terms):
    return max((lag for lag, _ in terms), default=0)


def _difference(x, d, seasonal_d, s):
    for _ in range(d):
        x = x[1:] - x[:-1]
    for _ in range(seasonal_d):
        x = x[s:] - x[:-s]
    return x


def _smoothing_type(has_trend, damped, seasonal):
    if seasonal is None:
        if damped:
            return "dampedTrend"
        return "holt" if has_trend else "simple"
    if damped:
        _unsupported("a damped trend with seasonality")
    if seasonal == "add":
        return "additiveWinters" if has_trend else "simpleSeasonal"
    if not has_trend:
        _unsupported("multiplicative seasonality without a trend")
    return "multiplicativeWinters"


def _state(level, trend, seasonal, n, m):
    """A smoothing state after ``n`` observations. ``seasonal`` lists the
    seasonal values in the order statsmodels keeps them: the first applies
    to the period after the last observation. The description holds them by
    position in the cycle (the first observation is position 0), with the
    position of the last observation as the phase."""
    state = {"level": float(level)}
    if trend is not None:
        state["trend"] = float(trend)
    if seasonal is not None:
        by_position = [0.0] * m
        for k, value in enumerate(seasonal):
            by_position[(n + k) % m] = float(value)
        state["phase"] = (n - 1) % m
        state["seasonal"] = by_position
    return state


def _description(model, name, dependent_variable, date_spec, history,
                 estimation, body, residuals, lags, confidence_level):
    series = getattr(model, "endog_names", None) or "y"
    if isinstance(series, (list, tuple)):
        series = series[0]
    entry = {"name": name or str(series),
             "dependentVariable": dependent_variable or str(series),
             "estimation": estimation, "history": _series(history)}
    entry.update(body)
    description = {"models": [entry],
                   "statXML": {"residuals": _series(residuals),
                               "lagCount": int(lags),
                               "confidenceLevel": float(confidence_level)}}
    if date_spec is not None:
        description["dateSpecs"] = [date_spec]
        entry["dateSpec"] = date_spec["id"]
    return description


def _series(values):
    return [None if math.isnan(v) else float(v)
            for v in np.asarray(values, dtype=float).ravel()]


def _std_error(cov, i):
    return _missing_if_nan(math.sqrt(cov[i, i]) if cov[i, i] >= 0
                           else math.nan)


def _delta_std_error(cov, gradient):
    used = gradient != 0
    if not used.any():
        return None
    sub = cov[np.ix_(used, used)]
    variance = float(gradient[used] @ sub @ gradient[used])
    return _missing_if_nan(math.sqrt(variance) if variance >= 0
                           else math.nan)


def _missing_if_nan(value):
    value = float(value)
    return None if math.isnan(value) else value


def _degrees_of_freedom(observations, parameters):
    return max(int(observations) - int(parameters), 0)


def _unsupported(feature):
    raise ValueError("this model has no place in a tsxml description: %s"
                     % feature)
