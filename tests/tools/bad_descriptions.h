// Descriptions that must be refused, with where and why: read by the reader
// tests (the exact error) and the command-line tests (exit status 2 and the
// message on standard error).
#ifndef TSXML_TESTS_TOOLS_BAD_DESCRIPTIONS_H
#define TSXML_TESTS_TOOLS_BAD_DESCRIPTIONS_H

#include <cstddef>
#include <iterator>

namespace tsxml_tool_test {

struct BadDescription {
  const char* name;
  const char* input;
  const char* pointer;
  std::size_t line;  // 0 unless a syntax error
  std::size_t column;
  const char* message;
};

// A smoothing model with room for a field: SMOOTHING(R"("seasonLength": 2,)").
#define SMOOTHING(extra)                                                     \
  "{\"models\": [{\"name\": \"m\", \"dependentVariable\": \"y\", "           \
  "\"exponentialSmoothing\": {" extra                                        \
  "\"type\": \"simple\", \"estimates\": [0.3], \"finalState\": {\"level\": " \
  "1}}}]}"
// An ARIMA model whose structure is `extra`, with `estimates`, and a state.
#define ARIMA(extra, estimates, state)                                        \
  "{\"models\": [{\"name\": \"m\", \"dependentVariable\": \"y\", \"arima\": " \
  "{" extra "\"estimates\": " estimates ", \"state\": " state "}}]}"
#define KALMAN "{\"method\": \"kalmanFilter\"}"
// A smoothing model on the date specification `spec`, whose id is "d".
#define DATESPEC(spec)                                                      \
  "{\"dateSpecs\": [" spec                                                  \
  "], \"models\": [{\"name\": \"m\", "                                      \
  "\"dependentVariable\": \"y\", \"dateSpec\": \"d\", "                     \
  "\"exponentialSmoothing\": {\"type\": \"simple\", \"estimates\": [0.3], " \
  "\"finalState\": {\"level\": 1}}}]}"

inline constexpr BadDescription kBadDescriptions[] = {
    // Syntax, with line and column.
    {"empty input", "", "", 1, 1,
     "syntax error while parsing value - unexpected end of input; expected "
     "'[', '{', or a literal"},
    {"unclosed array", R"({"models": [})", "/models", 1, 13,
     "syntax error while parsing value - unexpected '}'; expected '[', '{', "
     "or a literal"},
    {"double comma on line 3",
     "{\n  \"models\": [\n    {\"name\": \"m\",,}\n]}", "/models/0/name", 3, 18,
     "syntax error while parsing object key - unexpected ','; expected "
     "string literal"},
    {"invalid UTF-8", "{\"models\": [], \"application\": {\"name\": \"\xff\"}}",
     "/application/name", 1, 41,
     "syntax error while parsing value - invalid string: ill-formed UTF-8 "
     "byte; last read: '\"\xff'"},
    {"number beyond double", R"({"models": [], "x": 1e400})", "/x", 1, 25,
     "number overflow parsing '1e400'"},
    {"integer beyond 64 bits",
     SMOOTHING(R"("seasonLength": 18446744073709551616,)"),
     "/models/0/exponentialSmoothing/seasonLength", 0, 0,
     "number out of range: an integer beyond 64 bits"},
    // The document and its fields.
    {"not an object", "[]", "", 0, 0, "expected an object, got an array"},
    {"no models", "{}", "", 0, 0, "missing field \"models\""},
    {"unknown field", R"({"models": [], "modles": []})", "/modles", 0, 0,
     "unknown field; expected one of: $schema, application, dateSpecs, "
     "models, statXML"},
    {"duplicate field", R"({"models": [], "models": []})", "/models", 0, 0,
     "duplicate field"},
    // Models.
    {"model without dependent variable",
     R"({"models": [{"name": "m", "exponentialSmoothing": {}}]})", "/models/0",
     0, 0, "missing field \"dependentVariable\""},
    {"model of no kind",
     R"({"models": [{"name": "m", "dependentVariable": "y"}]})", "/models/0", 0,
     0,
     "missing the model: one of the fields \"exponentialSmoothing\", "
     "\"arima\", \"croston\""},
    {"model of two kinds",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "exponentialSmoothing": {}, "arima": {}}]})",
     "/models/0/arima", 0, 0,
     "a model has one kind; this one is already exponentialSmoothing"},
    {"unknown date specification",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "dateSpec": "weekly", "exponentialSmoothing": {}}]})",
     "/models/0/dateSpec", 0, 0,
     "no date specification has the identifier \"weekly\""},
    {"Croston model with a history",
     R"({"models": [{"name": "m", "dependentVariable": "y", "history": [1],
       "croston": {}}]})",
     "/models/0/history", 0, 0, "a Croston model keeps no observed series"},
    {"degrees of freedom negative",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "estimation": {"degreesOfFreedom": -1}, "exponentialSmoothing": {}}]})",
     "/models/0/estimation/degreesOfFreedom", 0, 0,
     "out of range: expected an integer from 0 to 18446744073709551615"},
    {"unknown fit statistic",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "estimation": {"fit": {"R2": 0.5}}, "exponentialSmoothing": {}}]})",
     "/models/0/estimation/fit/R2", 0, 0,
     "unknown field; expected one of: mse, rmse, mape, mae, maxAPE, maxAE, "
     "rSquared, normalizedBIC, rmspe, logLikelihood, aic, bic, "
     "stationaryRSquared"},
    // Exponential smoothing.
    {"unknown smoothing type",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "exponentialSmoothing": {"type": "winters"}}]})",
     "/models/0/exponentialSmoothing/type", 0, 0,
     "unknown exponential smoothing type \"winters\"; expected one of: "
     "additiveWinters, brown, dampedTrend, holt, multiplicativeWinters, "
     "simpleSeasonal, simple"},
    {"too few estimates",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "exponentialSmoothing": {"type": "additiveWinters", "seasonLength": 4,
       "estimates": [0.3, 0.1], "finalState": {"level": 1}}}]})",
     "/models/0/exponentialSmoothing/estimates", 0, 0,
     "expected 3 estimates (alpha, gamma, delta for additiveWinters), got 2"},
    {"more standard errors than estimates",
     SMOOTHING(R"("standardErrors": [0.1, 0.2],)"),
     "/models/0/exponentialSmoothing/standardErrors", 0, 0,
     "expected at most 1 standard errors, one per estimate, got 2"},
    {"estimate of an unknown word",
     R"({"models": [{"name": "m", "dependentVariable": "y",
       "exponentialSmoothing": {"type": "simple", "estimates": ["Inf"],
       "finalState": {"level": 1}}}]})",
     "/models/0/exponentialSmoothing/estimates/0", 0, 0,
     "expected a number, null, \"NaN\", \"INF\" or \"-INF\", got the string "
     "\"Inf\""},
    {"unknown transformation", SMOOTHING(R"("transformation": "ln",)"),
     "/models/0/exponentialSmoothing/transformation", 0, 0,
     "unknown transformation \"ln\"; expected one of: none, log, squareRoot"},
    // ARIMA.
    {"negative lag", ARIMA(R"("ar": [1, -3],)", "[]", KALMAN),
     "/models/0/arima/ar/1", 0, 0, "expected a lag of 1 or more, got -3"},
    {"lags out of order", ARIMA(R"("ar": [1, 3, 2],)", "[]", KALMAN),
     "/models/0/arima/ar/2", 0, 0,
     "lags must be strictly ascending: 2 follows 3"},
    {"lag list not an array", ARIMA(R"("ar": 1,)", "[]", KALMAN),
     "/models/0/arima/ar", 0, 0, "expected an array of lags, got a number"},
    {"estimates that don't fit the structure",
     ARIMA(R"("constant": true, "ar": [1, 3], "ma": [1],
       "transferFunctions": [{"numerator": [1]}],
       "outliers": [{"type": "transient", "start": 4}],)",
           "[1, 2, 3, 4, 5, 6, 7]", KALMAN),
     "/models/0/arima/estimates", 0, 0,
     "expected 8 estimates (constant 1, AR 2, MA 1, transfer functions 2, "
     "outliers 2), got 7"},
    {"unknown outlier type",
     ARIMA(R"("outliers": [{"type": "spike", "start": 3}],)", "[1]", KALMAN),
     "/models/0/arima/outliers/0/type", 0, 0,
     "unknown outlier type \"spike\"; expected one of: additive, levelShift, "
     "transient, seasonalAdditive, localTrend, innovational, "
     "varianceChange"},
    {"unknown estimation method", ARIMA("", "[]", R"({"method": "ols"})"),
     "/models/0/arima/state/method", 0, 0,
     "unknown estimation method \"ols\"; expected one of: kalmanFilter, "
     "conditionalLeastSquares, thetaRecursion"},
    {"omega not triangular",
     ARIMA("", "[]", R"({"method": "kalmanFilter", "omega": [1, 2, 3, 4]})"),
     "/models/0/arima/state/omega", 0, 0,
     "expected the packed lower triangle of a square matrix, n (n + 1) / 2 "
     "values, got 4"},
    {"field of another method",
     ARIMA("", "[]", R"({"method": "conditionalLeastSquares", "omega": [1]})"),
     "/models/0/arima/state/omega", 0, 0,
     "the conditionalLeastSquares state has no omega"},
    {"more predictor histories than transfer functions",
     ARIMA("", "[]",
           R"({"method": "thetaRecursion", "predictorHistory": [null]})"),
     "/models/0/arima/state/predictorHistory", 0, 0,
     "expected at most one history per transfer function (0), got 1"},
    // Date specifications.
    {"duplicate date specification",
     R"({"dateSpecs": [{"id": "d", "periods": [{"type": "year"}]},
       {"id": "d", "periods": [{"type": "cycle"}]}], "models": []})",
     "/dateSpecs/1/id", 0, 0, "duplicate identifier \"d\""},
    {"first period obs",
     DATESPEC(R"({"id": "d", "periods": [{"type": "obs"}]})"),
     "/dateSpecs/0/periods/0/type", 0, 0,
     "the first period can't be obs (status 40200)"},
    {"month that doesn't fit the quarter",
     DATESPEC(R"({"id": "d", "periods": [{"type": "year"},
       {"type": "quarter", "cycleLength": 4},
       {"type": "month", "cycleLength": 10}]})"),
     "/dateSpecs/0/periods/2", 0, 0,
     "the quarter and the month don't fit together (a month cycle three "
     "times the quarter cycle, with matching sub-cycles) (status 40206)"},
    {"first case of the wrong length",
     DATESPEC(R"({"id": "d", "periods": [{"type": "year"},
       {"type": "month", "cycleLength": 12}], "firstCase": [2019]})"),
     "/dateSpecs/0/firstCase", 0, 0,
     "expected 2 indexes, one per period, each within its period's sub-cycle "
     "(a linked quarter equal to month / 3, the last on an increment)"},
    {"gap at offset 0",
     DATESPEC(R"({"id": "d", "periods": [{"type": "year"}], "gaps": [0]})"),
     "/dateSpecs/0/gaps/0", 0, 0,
     "a gap offset must be 1 or more (status 40209)"},
    // The statistics document.
    {"confidence level in percent",
     R"({"models": [], "statXML": {"residuals": null, "lagCount": 24,
       "confidenceLevel": 95}})",
     "/statXML/confidenceLevel", 0, 0,
     "expected a fraction between 0 and 1, such as 0.95"},
};

static_assert(std::size(kBadDescriptions) >= 25, "at least 25 cases");

#undef SMOOTHING
#undef ARIMA
#undef KALMAN
#undef DATESPEC

}  // namespace tsxml_tool_test

#endif  // TSXML_TESTS_TOOLS_BAD_DESCRIPTIONS_H
