"""A SARIMAX (1,1,1)(0,1,1,12) fit with one exogenous regressor, written by
tsxml.statsmodels as the native, PMML and StatXML documents: the documents
validate, and the parameter table holds statsmodels' estimates."""
import warnings
import xml.etree.ElementTree as ET

import numpy as np
import pytest

stats = pytest.importorskip("scipy.stats")
signal = pytest.importorskip("scipy.signal")
sarimax = pytest.importorskip("statsmodels.tsa.statespace.sarimax")
arima_model = pytest.importorskip("statsmodels.tsa.arima.model")

import tsxml  # noqa: E402
import tsxml.statsmodels as adapters  # noqa: E402
from schema_check import statxml_schema, validate  # noqa: E402

STATXML_NS = "{http://www.tsxml.example/software/analytics/corvane/xml/extension}"


def seasonal_series(seed=16, n=156):
    """y = 50 + 2 x + u, u SARIMA(1,1,1)(0,1,1,12) with phi 0.6, theta 0.4,
    Theta -0.5 (statsmodels' signs), x a random walk."""
    rng = np.random.default_rng(seed)
    x = np.cumsum(rng.normal(0, 1, n)) + 20
    e = rng.normal(0, 1, n + 100)
    ma = np.convolve([1, 0.4], np.r_[1, np.zeros(11), -0.5])
    w = signal.lfilter(ma, [1, -0.6], e)[100:]
    u = signal.lfilter([1], np.convolve([1, -1], np.r_[1, np.zeros(11), -1]),
                       w)
    return 50 + 2.0 * x + u, x


@pytest.fixture(scope="module")
def fit():
    y, x = seasonal_series()
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        results = sarimax.SARIMAX(y, exog=x, order=(1, 1, 1),
                                  seasonal_order=(0, 1, 1, 12)).fit(disp=False)
    return results, adapters.from_sarimax(results)


def write_or_skip(description, **kwargs):
    """The document, or a skip while this build lacks the format or the
    option (the library's StatXML, PMML for ARIMA, consistent PMML)."""
    try:
        return tsxml.write(description, **kwargs)
    except ValueError as error:
        if "not available" in str(error):
            pytest.skip("waits for the library: %s" % error)
        raise


def parameter_rows(statxml):
    root = ET.fromstring(statxml)
    rows = root.findall(".//%sParameterStats" % STATXML_NS)
    return {row.get("paramName"): {key: float(value)
                                   for key, value in row.attrib.items()
                                   if key != "paramName"}
            for row in rows}


class TestDocuments:
    def test_description_follows_the_fit(self, fit):
        results, description = fit
        model = description["models"][0]
        arima = model["arima"]
        assert model["predictors"] == ["x1"]
        assert (arima["ar"], arima["ma"], arima["seasonalMa"]) == ([1], [1],
                                                                   [1])
        assert "seasonalAr" not in arima and "constant" not in arima
        assert (arima["differencing"], arima["seasonalDifferencing"],
                arima["seasonLength"]) == (1, 1, 12)
        assert arima["transferFunctions"] == [
            {"differencing": 1, "seasonalDifferencing": 1}]
        state = arima["state"]
        k = results.model.k_states
        assert len(state["stateVector"]) == k
        assert len(state["omega"]) == k * (k + 1) // 2
        np.testing.assert_array_equal(state["stateVector"],
                                      results.filtered_state[:, -1])
        cov = results.filtered_state_cov[:, :, -1]
        assert state["omega"][-1] == cov[-1, -1]
        assert state["omega"][1] == cov[1, 0]
        assert model["estimation"]["errorVariance"] == results.params[-1]

    def test_native_document_validates(self, fit, tmp_path):
        validate(tsxml.write(fit[1], format="native"),
                 "time-series-1.0.xsd", tmp_path)

    def test_consistent_pmml_validates(self, fit, tmp_path):
        results, description = fit
        document = write_or_skip(description, format="pmml",
                                 pmml_consistent=True)
        validate(document, "pmml-4-2.xsd", tmp_path)

    def test_pmml_arima_shows_statsmodels_coefficients(self, fit):
        # The ARIMA element's AR and MA arrays show the coefficients as the
        # parameter table does: statsmodels' own.
        results, description = fit
        document = write_or_skip(description, format="pmml",
                                 pmml_consistent=True)
        ns = "{http://www.dmg.org/PMML-4_2}"
        arima = ET.fromstring(document).find(".//%sARIMA" % ns)
        assert arima is not None

        def array(path):
            steps = [ns + step for step in path.split("/")] + [ns + "Array"]
            element = arima.find("/".join(steps))
            return [float(v) for v in (element.text or "").split()]

        params = dict(zip(results.model.param_names, results.params))
        assert array("NonseasonalComponent/AR") == pytest.approx(
            [params["ar.L1"]], rel=1e-14)
        assert array("NonseasonalComponent/MA") == pytest.approx(
            [params["ma.L1"]], rel=1e-14)
        assert array("SeasonalComponent/MA") == pytest.approx(
            [params["ma.S.L12"]], rel=1e-14)
        assert array("PredicterEffect/Numerator/NonseasonFactor") == (
            pytest.approx([params["x1"]], rel=1e-14))

    def test_statxml_validates(self, fit, tmp_path):
        document = write_or_skip(fit[1], format="statxml")
        validate(document, statxml_schema(), tmp_path)


class TestParameterTable:
    """StatXML's rows hold statsmodels' estimates and standard errors.

    statsmodels tests SARIMAX parameters against the normal distribution
    (z statistics, df_resid infinite); the table uses Student's t with the
    model's degrees of freedom, nobs_effective - df_model (138 here)."""

    LABELS = {"y AR Lag 1": "ar.L1", "y MA Lag 1": "ma.L1",
              "y MA, Seasonal Lag 1": "ma.S.L12",
              "x1 Numerator Lag 0": "x1"}

    @pytest.fixture(scope="class")
    def table(self, fit):
        results, description = fit
        rows = parameter_rows(write_or_skip(description, format="statxml"))
        df = description["models"][0]["estimation"]["degreesOfFreedom"]
        assert df == results.nobs_effective - results.df_model == 138
        return results, rows, df

    def test_rows_hold_the_estimates_and_standard_errors(self, table):
        results, rows, _ = table
        assert list(rows) == list(self.LABELS)
        names = list(results.model.param_names)
        for label, param in self.LABELS.items():
            i = names.index(param)
            # Numbers pass through 15 significant digits.
            assert rows[label]["estimate"] == pytest.approx(
                results.params[i], rel=1e-14)
            assert rows[label]["stdError"] == pytest.approx(
                results.bse[i], rel=1e-14)
            assert rows[label]["tTest"] == pytest.approx(
                results.tvalues[i], rel=1e-13)

    def test_significances(self, table):
        results, rows, df = table
        names = list(results.model.param_names)
        for label, param in self.LABELS.items():
            i = names.index(param)
            t = results.tvalues[i]
            sig = rows[label]["sig"]
            # Student's t two-sided, as scipy computes it: our incomplete
            # beta converges to about 1e-13 relative, and 1 - F loses the
            # rest to cancellation near 0, hence absolute 1e-12.
            assert sig == pytest.approx(2 * stats.t.sf(abs(t), df),
                                        rel=1e-9, abs=1e-12)
            # statsmodels' z test: t and normal two-sided p-values differ by
            # at most about 0.316 / df (at |t| near 1.56), 0.0023 at 138.
            assert abs(sig - results.pvalues[i]) <= 0.32 / df

    def test_confidence_limits(self, table):
        results, rows, df = table
        # The t quantile comes from an inverse incomplete beta that stops
        # at 1e-12 in x; at 138 df that gives about 10 digits.
        half = stats.t.ppf(0.975, df)
        for label, row in rows.items():
            np.testing.assert_allclose(
                [row["confIntervalLower"], row["confIntervalUpper"]],
                [row["estimate"] - half * row["stdError"],
                 row["estimate"] + half * row["stdError"]],
                rtol=1e-9, atol=1e-12 * row["stdError"])


def test_constant_is_the_mean_of_the_differenced_series():
    # SARIMAX's trend 'c' is the intercept of the ARMA equation; the
    # description's constant is the mean, which statsmodels' ARIMA class
    # estimates directly (a regression on a constant with ARMA errors).
    rng = np.random.default_rng(3)
    e = rng.normal(0, 1, 500)
    y = signal.lfilter([1, 0.3], [1, -0.5, 0.2], e)[100:] + 4.0
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        intercept = sarimax.SARIMAX(y, order=(2, 0, 1), trend="c").fit(
            disp=False)
        mean = arima_model.ARIMA(y, order=(2, 0, 1), trend="c").fit()
    arima = adapters.from_sarimax(intercept)["models"][0]["arima"]
    assert arima["constant"] is True
    names = list(mean.model.param_names)
    # The two fits reach the same likelihood maximum through different
    # parameters, to the optimisers' tolerance.
    assert arima["estimates"][0] == pytest.approx(
        mean.params[names.index("const")], rel=1e-4)
    assert arima["standardErrors"][0] == pytest.approx(
        mean.bse[names.index("const")], rel=1e-2)
    # The AR estimates follow, negated.
    np.testing.assert_allclose(arima["estimates"][1:3],
                               -np.asarray(intercept.params[1:3]))
