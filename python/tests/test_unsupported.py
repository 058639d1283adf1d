"""What our models can't hold is refused by name, never written as another
model; a broken description is refused by the reader with its pointer."""
import warnings

import numpy as np
import pytest

holtwinters = pytest.importorskip("statsmodels.tsa.holtwinters")
ets = pytest.importorskip("statsmodels.tsa.exponential_smoothing.ets")
sarimax = pytest.importorskip("statsmodels.tsa.statespace.sarimax")

import tsxml  # noqa: E402
import tsxml.statsmodels as adapters  # noqa: E402


def series(n=72, seed=11):
    rng = np.random.default_rng(seed)
    t = np.arange(n)
    return 30 + 0.2 * t + 4 * np.sin(2 * np.pi * t / 12) + rng.normal(0, 1, n)


def quietly(fit):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return fit()


HOLT_WINTERS = {
    "Box-Cox lambda 0.5": ({"trend": "add", "use_boxcox": 0.5}, {}),
    "Box-Cox lambda": ({"trend": "add", "use_boxcox": True}, {}),
    "multiplicative trend": ({"trend": "mul"}, {}),
    "damped trend with seasonality": (
        {"trend": "add", "damped_trend": True, "seasonal": "add",
         "seasonal_periods": 12}, {}),
    "multiplicative seasonality without a trend": (
        {"seasonal": "mul", "seasonal_periods": 12}, {}),
    "Box-Cox lambda 1 with multiplicative seasonality": (
        {"trend": "add", "seasonal": "mul", "seasonal_periods": 12,
         "use_boxcox": 1.0}, {}),
    "remove_bias": ({"trend": "add"}, {"remove_bias": True}),
}


@pytest.mark.parametrize("feature", sorted(HOLT_WINTERS))
def test_holt_winters_features_without_a_place(feature):
    model_kwargs, fit_kwargs = HOLT_WINTERS[feature]
    results = quietly(lambda: holtwinters.ExponentialSmoothing(
        series(), **model_kwargs).fit(**fit_kwargs))
    with pytest.raises(ValueError, match=feature):
        adapters.from_holt_winters(results)


ETS = {
    "multiplicative errors": {"error": "mul", "trend": "add"},
    "multiplicative trend": {"error": "add", "trend": "mul"},
    "damped trend with seasonality": {"error": "add", "trend": "add",
                                      "damped_trend": True,
                                      "seasonal": "add",
                                      "seasonal_periods": 12},
    "multiplicative seasonality without a trend": {
        "error": "add", "seasonal": "mul", "seasonal_periods": 12},
}


@pytest.mark.parametrize("feature", sorted(ETS))
def test_ets_features_without_a_place(feature):
    results = quietly(lambda: ets.ETSModel(series(), **ETS[feature]).fit(
        disp=False))
    with pytest.raises(ValueError, match=feature):
        adapters.from_ets(results)


SARIMAX = {
    "trend 't'": {"order": (1, 1, 0), "trend": "t"},
    "trend 'ct'": {"order": (1, 0, 0), "trend": "ct"},
    "measurement_error": {"order": (1, 1, 0), "measurement_error": True},
    "time_varying_regression": {"order": (1, 0, 0), "exog": True,
                                "time_varying_regression": True,
                                "mle_regression": False},
    "mle_regression=False": {"order": (1, 0, 0), "exog": True,
                             "mle_regression": False},
}


@pytest.mark.parametrize("feature", sorted(SARIMAX))
def test_sarimax_features_without_a_place(feature):
    kwargs = dict(SARIMAX[feature])
    y = series()
    if kwargs.pop("exog", False):
        kwargs["exog"] = np.random.default_rng(2).normal(size=y.size)
    results = quietly(lambda: sarimax.SARIMAX(y, **kwargs).fit(disp=False))
    with pytest.raises(ValueError, match=feature.replace("(", r"\(")):
        adapters.from_sarimax(results)


def test_lags_of_a_sparse_order():
    # order=([1, 3], 0, 0) keeps lags 1 and 3 only.
    results = quietly(lambda: sarimax.SARIMAX(series(), order=([1, 3], 1, 0),
                                              seasonal_order=(1, 0, 0, 12))
                      .fit(disp=False))
    arima = adapters.from_sarimax(results)["models"][0]["arima"]
    assert arima["ar"] == [1, 3] and arima["seasonalAr"] == [1]
    names = list(results.model.param_names)
    np.testing.assert_array_equal(
        arima["estimates"],
        [-results.params[names.index(p)]
         for p in ("ar.L1", "ar.L3", "ar.S.L12")])
    assert len(arima["state"]["finalValues"]) == 3 + 12
    tsxml.write(adapters.from_sarimax(results), format="native")


def test_broken_adapter_output_is_refused_with_its_pointer():
    results = quietly(lambda: holtwinters.ExponentialSmoothing(
        series(), trend="add").fit())
    description = adapters.from_holt_winters(results)
    es = description["models"][0]["exponentialSmoothing"]
    es["estimates"] = es["estimates"][:1]
    with pytest.raises(ValueError) as raised:
        tsxml.write(description)
    assert raised.value.pointer == "/models/0/exponentialSmoothing/estimates"
    del es["finalState"]
    with pytest.raises(ValueError, match="finalState"):
        tsxml.write(description)
