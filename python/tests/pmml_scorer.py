"""A scorer of the PMML exponential smoothing element that knows only what
docs/pmml.md states: the forecasts from the final state, and the replay of
the weights over the document's series from its initial state."""
import math
import xml.etree.ElementTree as ET

NS = {"p": "http://www.dmg.org/PMML-4_2"}

_BACK = {"none": lambda f: f, "logarithmic": math.exp,
         "squareroot": lambda f: f * f}
_FORWARD = {"none": lambda y: y, "logarithmic": math.log,
            "squareroot": math.sqrt}


def _array(element):
    return [float(v) for v in element.find("p:Array", NS).text.split()]


class SmoothingModel:
    """The first exponential smoothing TimeSeriesModel of a document."""

    def __init__(self, pmml_text):
        root = ET.fromstring(pmml_text)
        model = root.find("p:TimeSeriesModel", NS)
        self.model = model
        es = model.find("p:ExponentialSmoothing", NS)
        self.transformation = es.get("transformation")
        level = es.find("p:Level", NS)
        self.alpha = float(level.get("alpha"))
        self.level = float(level.get("smoothedValue"))
        trend = es.find("p:Trend_ExpoSmooth", NS)
        self.trend_form = None
        self.trend = 0.0
        self.gamma = 0.0
        self.phi = 1.0
        self.polynomial = None
        if trend is not None:
            self.trend_form = trend.get("trend")
            self.trend = float(trend.get("smoothedValue"))
            self.gamma = float(trend.get("gamma", "0"))
            if self.trend_form == "damped_additive":
                self.phi = float(trend.get("phi"))
            if trend.find("p:Array", NS) is not None:
                self.polynomial = _array(trend)
        season = es.find("p:Seasonality_ExpoSmooth", NS)
        self.season_type = None
        if season is not None:
            self.season_type = season.get("type")
            self.period = int(season.get("period"))
            self.phase = int(season.get("phase"))
            self.delta = float(season.get("delta"))
            self.seasonal = _array(season)
            assert len(self.seasonal) == self.period

    def extension(self, name):
        for element in self.model.findall("p:Extension", NS):
            if element.get("name") == name:
                return element
        return None

    def trend_term(self, h, use_polynomial=False):
        if self.trend_form is None:
            return 0.0
        if self.trend_form == "damped_additive":
            return sum(self.phi ** i for i in range(1, h + 1)) * self.trend
        if self.trend_form == "polynomial_exponential" and use_polynomial:
            c0, c1 = self.polynomial
            shift = (1 - self.alpha) / self.alpha
            return c0 + c1 * (h - shift) - self.level
        assert self.trend_form in ("additive", "polynomial_exponential")
        return h * self.trend

    def forecast(self, horizon, use_polynomial=False):
        """F(1), ..., F(horizon) on the series' scale."""
        values = []
        for h in range(1, horizon + 1):
            f = self.level + self.trend_term(h, use_polynomial)
            if self.season_type is not None:
                s = self.seasonal[(self.phase + h) % self.period]
                f = f * s if self.season_type == "multiplicative" else f + s
            values.append(_BACK[self.transformation](f))
        return values

    def replay(self):
        """The final state (level, trend, seasonal Array) that the weights
        give from the initial state over the document's TimeSeries."""
        series = [float(v.get("value")) for v in
                  self.model.find("p:TimeSeries", NS).findall(
                      "p:TimeValue", NS)]
        n = len(series)
        assert float(self.extension("periodLength").get("value")) == n
        level = float(self.extension("initLevel").get("value"))
        trend_extension = self.extension("initTrend")
        trend = (float(trend_extension.get("value"))
                 if trend_extension is not None else 0.0)
        phi = self.phi if self.trend_form is not None else 0.0
        seasonal = None
        if self.season_type is not None:
            seasonal = _array(self.extension("initSeason"))
            position = (self.phase - n + 1) % self.period
        alpha, gamma = self.alpha, self.gamma
        forward = _FORWARD[self.transformation]
        for value in series:
            y = forward(value)
            base = level + phi * trend
            if seasonal is None:
                e = y - base
                level, trend = base + alpha * e, phi * trend + alpha * gamma * e
                continue
            s = seasonal[position]
            if self.season_type == "multiplicative":
                e = y - base * s
                level = base + alpha * e / s
                trend = phi * trend + alpha * gamma * e / s
                seasonal[position] = s + self.delta * e / base
            else:
                e = y - (base + s)
                level = base + alpha * e
                trend = phi * trend + alpha * gamma * e
                seasonal[position] = s + self.delta * e
            position = (position + 1) % self.period
        return level, trend, seasonal
