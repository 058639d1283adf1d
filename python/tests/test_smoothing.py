"""Exponential smoothing fits of statsmodels, written to PMML by
tsxml.statsmodels, forecast from the document alone (docs/pmml.md) what the
fit forecasts, and their weights replay the document's series."""
import warnings

import numpy as np
import pytest
from scipy.special import inv_boxcox

sm_holtwinters = pytest.importorskip("statsmodels.tsa.holtwinters")
sm_ets = pytest.importorskip("statsmodels.tsa.exponential_smoothing.ets")
import statsmodels.api as sm  # noqa: E402

import tsxml  # noqa: E402
import tsxml.statsmodels as adapters  # noqa: E402
from pmml_scorer import SmoothingModel  # noqa: E402
from schema_check import statxml_schema, validate  # noqa: E402

HORIZON = 24
# The document's numbers have 15 significant digits; 1e-9 leaves room for
# the sums of the damped trend and nothing for a wrong term.
RELATIVE = 1e-9
SEASON = 12


def generated(n, seed, trend=0.4):
    """A positive monthly series with trend, seasonality and noise."""
    rng = np.random.default_rng(seed)
    t = np.arange(n)
    return (100 + trend * t + 12 * np.sin(2 * np.pi * t / SEASON)
            + 5 * np.cos(2 * np.pi * t / 6) + rng.normal(0, 2, n))


def elnino():
    """statsmodels' monthly sea surface temperatures, 1950 on."""
    data = sm.datasets.elnino.load_pandas().data
    return data.iloc[:, 1:13].to_numpy().ravel()


def fit_holt_winters(y, **kwargs):
    fit_kwargs = kwargs.pop("fit", {})
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return sm_holtwinters.ExponentialSmoothing(y, **kwargs).fit(
            **fit_kwargs)


def fit_ets(y, **kwargs):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return sm_ets.ETSModel(y, **kwargs).fit(disp=False)


def holt_winters_forecast(results, horizon):
    """results.forecast, except where statsmodels 0.13 is known to be wrong.

    At horizons that are a multiple of the season length, statsmodels'
    Holt-Winters forecast uses the seasonal value from before the last
    update instead of the final one (statsmodels issue 9538, fixed after
    0.13). There the reference is statsmodels' own simulation from the end
    of the sample with all errors 0, which uses the final state.
    """
    forecast = np.asarray(results.forecast(horizon), dtype=float)
    if results.model.seasonal is None:
        return forecast
    zero = np.asarray(results.simulate(horizon, repetitions=1,
                                       random_errors=np.zeros((horizon, 1))),
                      dtype=float).ravel()
    # simulate transforms back only when use_boxcox is true, so not for
    # the log (lambda 0.0).
    lam = results.params["lamda"]
    if lam is not None and not results.params["use_boxcox"]:
        zero = inv_boxcox(zero, lam)
    m = results.model.seasonal_periods
    wrong = (np.arange(1, horizon + 1) % m) == 0
    # Elsewhere the two references agree.
    np.testing.assert_allclose(zero[~wrong], forecast[~wrong], rtol=1e-9)
    forecast[wrong] = zero[wrong]
    return forecast


def document(results, adapter):
    return SmoothingModel(tsxml.write(adapter(results), format="pmml"))


def assert_forecasts(model, expected, **kwargs):
    np.testing.assert_allclose(model.forecast(HORIZON, **kwargs), expected,
                               rtol=RELATIVE, atol=0)


def assert_replays(model):
    level, trend, seasonal = model.replay()
    assert level == pytest.approx(model.level, rel=1e-8, abs=1e-9)
    assert trend == pytest.approx(model.trend, rel=1e-8, abs=1e-9)
    if seasonal is not None:
        np.testing.assert_allclose(seasonal, model.seasonal, rtol=1e-8,
                                   atol=1e-9)


HOLT_WINTERS_FORMS = {
    "simple": {},
    "holt": {"trend": "add"},
    "damped": {"trend": "add", "damped_trend": True},
    "simpleSeasonal": {"seasonal": "add", "seasonal_periods": SEASON},
    "additiveWinters": {"trend": "add", "seasonal": "add",
                        "seasonal_periods": SEASON},
    "multiplicativeWinters": {"trend": "add", "seasonal": "mul",
                              "seasonal_periods": SEASON},
    "holt, log": {"trend": "add", "use_boxcox": 0.0},
    "damped, log": {"trend": "add", "damped_trend": True,
                    "use_boxcox": 0.0},
    "additiveWinters, log": {"trend": "add", "seasonal": "add",
                             "seasonal_periods": SEASON, "use_boxcox": 0.0},
    "multiplicativeWinters, log": {"trend": "add", "seasonal": "mul",
                                   "seasonal_periods": SEASON,
                                   "use_boxcox": 0.0},
    "additiveWinters, lambda 1": {"trend": "add", "seasonal": "add",
                                  "seasonal_periods": SEASON,
                                  "use_boxcox": 1.0},
}

EXPECTED_TYPE = {"simple": ("simple", None, None),
                 "holt": ("holt", "additive", None),
                 "damped": ("dampedTrend", "damped_additive", None),
                 "simpleSeasonal": ("simpleSeasonal", None, "additive"),
                 "additiveWinters": ("additiveWinters", "additive",
                                     "additive"),
                 "multiplicativeWinters": ("multiplicativeWinters",
                                           "additive", "multiplicative")}


class TestHoltWinters:
    # Twelve lengths in a row put the last observation at every position of
    # the cycle, so that each phase is written and read once.
    LENGTHS = range(120, 132)

    @pytest.mark.parametrize("form", sorted(HOLT_WINTERS_FORMS))
    def test_pmml_forecasts_the_fit_at_every_phase(self, form):
        kwargs = HOLT_WINTERS_FORMS[form]
        for n in self.LENGTHS:
            results = fit_holt_winters(generated(n, seed=n), **kwargs)
            model = document(results, adapters.from_holt_winters)
            assert_forecasts(model, holt_winters_forecast(results, HORIZON))
            if model.season_type is not None:
                assert model.phase == (n - 1) % SEASON

    @pytest.mark.parametrize("form", sorted(HOLT_WINTERS_FORMS))
    def test_pmml_forecasts_the_fit_on_shipped_data(self, form):
        results = fit_holt_winters(elnino(), **HOLT_WINTERS_FORMS[form])
        model = document(results, adapters.from_holt_winters)
        assert_forecasts(model, holt_winters_forecast(results, HORIZON))

    @pytest.mark.parametrize("form", sorted(HOLT_WINTERS_FORMS))
    def test_weights_replay_the_series_to_the_final_state(self, form):
        results = fit_holt_winters(generated(125, seed=3),
                                   **HOLT_WINTERS_FORMS[form])
        assert_replays(document(results, adapters.from_holt_winters))

    def test_documents_validate(self, tmp_path):
        for form, kwargs in sorted(HOLT_WINTERS_FORMS.items()):
            results = fit_holt_winters(generated(125, seed=2), **kwargs)
            description = adapters.from_holt_winters(results)
            validate(tsxml.write(description), "pmml-4-2.xsd", tmp_path)
            validate(tsxml.write(description, format="native"),
                     "time-series-1.0.xsd", tmp_path)
            if tsxml.available("statxml"):
                validate(tsxml.write(description, format="statxml"),
                         statxml_schema(), tmp_path)

    @pytest.mark.parametrize("form", sorted(EXPECTED_TYPE))
    def test_forms_and_transformations(self, form):
        results = fit_holt_winters(generated(130, seed=1),
                                   **HOLT_WINTERS_FORMS[form])
        description = adapters.from_holt_winters(results)
        es = description["models"][0]["exponentialSmoothing"]
        es_type, trend_form, season_type = EXPECTED_TYPE[form]
        assert es["type"] == es_type
        model = SmoothingModel(tsxml.write(description))
        assert (model.trend_form, model.season_type) == (trend_form,
                                                         season_type)
        assert model.transformation == "none"
        log = fit_holt_winters(generated(130, seed=1),
                               **HOLT_WINTERS_FORMS[form], use_boxcox=0.0)
        assert document(log, adapters.from_holt_winters).transformation == (
            "logarithmic")

    def test_brown_is_holt_with_tied_weights(self):
        # Brown's linear smoothing with weight a is Holt's with level weight
        # a (2 - a) and trend weight a / (2 - a): written as a Brown model,
        # the fit's state forecasts the same, by the trend and by its Array.
        a = 0.3
        results = fit_holt_winters(
            generated(100, seed=5), trend="add",
            fit={"smoothing_level": a * (2 - a),
                 "smoothing_trend": a / (2 - a), "optimized": False})
        description = adapters.from_holt_winters(results)
        es = description["models"][0]["exponentialSmoothing"]
        es["type"] = "brown"
        es["estimates"] = [a]
        model = SmoothingModel(tsxml.write(description))
        assert model.trend_form == "polynomial_exponential"
        assert model.polynomial is not None
        expected = holt_winters_forecast(results, HORIZON)
        assert_forecasts(model, expected)
        assert_forecasts(model, expected, use_polynomial=True)


ETS_FORMS = {
    "ANN": {},
    "AAN": {"trend": "add"},
    "AAdN": {"trend": "add", "damped_trend": True},
    "ANA": {"seasonal": "add", "seasonal_periods": SEASON},
    "AAA": {"trend": "add", "seasonal": "add", "seasonal_periods": SEASON},
    "AAM": {"trend": "add", "seasonal": "mul", "seasonal_periods": SEASON},
}


class TestETS:
    @pytest.mark.parametrize("form", sorted(ETS_FORMS))
    def test_pmml_forecasts_the_fit(self, form):
        for n in (120, 125, 131):
            results = fit_ets(generated(n, seed=n), error="add",
                              **ETS_FORMS[form])
            model = document(results, adapters.from_ets)
            assert_forecasts(model, results.forecast(HORIZON))

    @pytest.mark.parametrize("form", sorted(ETS_FORMS))
    def test_weights_replay_the_series_to_the_final_state(self, form):
        # beta of ETS is alpha times the gamma of the documents.
        results = fit_ets(generated(125, seed=4), error="add",
                          **ETS_FORMS[form])
        assert_replays(document(results, adapters.from_ets))

    def test_same_model_same_document_weights(self):
        # Holt-Winters and ETS(A,A,A) with the same weights and initial state
        # are one model: the adapters write the same weights for it.
        y = generated(125, seed=9)
        hw = fit_holt_winters(y, trend="add", seasonal="add",
                              seasonal_periods=SEASON)
        params = hw.params
        ets_model = sm_ets.ETSModel(y, error="add", trend="add",
                                    seasonal="add", seasonal_periods=SEASON,
                                    initialization_method="known",
                                    initial_level=params["initial_level"],
                                    initial_trend=params["initial_trend"],
                                    initial_seasonal=params["initial_seasons"])
        alpha = params["smoothing_level"]
        ets = ets_model.smooth([alpha, alpha * params["smoothing_trend"],
                                params["smoothing_seasonal"]])
        from_hw = adapters.from_holt_winters(hw)["models"][0]
        from_ets = adapters.from_ets(ets)["models"][0]
        np.testing.assert_allclose(
            from_ets["exponentialSmoothing"]["estimates"],
            from_hw["exponentialSmoothing"]["estimates"], rtol=1e-12)
        for key in ("level", "trend", "seasonal"):
            np.testing.assert_allclose(
                from_ets["exponentialSmoothing"]["finalState"][key],
                from_hw["exponentialSmoothing"]["finalState"][key],
                rtol=1e-9)

    def test_standard_errors_of_the_weights(self):
        results = fit_ets(generated(125, seed=4), error="add", trend="add",
                          damped_trend=True)
        es = adapters.from_ets(results)["models"][0]["exponentialSmoothing"]
        names = list(results.model.param_names)
        bse = np.asarray(results.bse)
        alpha_se, gamma_se, phi_se = es["standardErrors"]
        expected = {"alpha": bse[names.index("smoothing_level")],
                    "phi": bse[names.index("damping_trend")]}
        for label, got in (("alpha", alpha_se), ("phi", phi_se)):
            if np.isnan(expected[label]):
                assert got is None
            else:
                assert got == pytest.approx(expected[label], rel=1e-12)
        # gamma = beta / alpha: its standard error by the delta method
        # stays between the bounds that the correlation of -1 and 1 give.
        alpha = es["estimates"][0]
        gamma = es["estimates"][1]
        beta_se = bse[names.index("smoothing_trend")]
        if gamma_se is not None and not np.isnan(expected["alpha"]):
            a = beta_se / alpha
            b = gamma * expected["alpha"] / alpha
            assert abs(a - b) - 1e-12 <= gamma_se <= a + b + 1e-12
