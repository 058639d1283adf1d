#include "tools/tsxml/description.h"

#include <simdjson.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tools/tsxml/syntax_error.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/base/status.h"
#include "tsxml/modelapi/forecast_model.h"

namespace tsxml_tool {

DescriptionError::DescriptionError(std::string pointer, std::string message)
    : DescriptionError(std::move(pointer), 0, 0, std::move(message)) {}

DescriptionError::DescriptionError(std::string pointer, std::size_t line,
                                   std::size_t column, std::string message)
    : std::runtime_error(
          (line != 0
               ? std::to_string(line) + ":" + std::to_string(column) + ": "
               : std::string()) +
          (pointer.empty() ? std::string() : pointer + ": ") + message),
      pointer_(std::move(pointer)),
      line_(line),
      column_(column),
      message_(std::move(message)) {}

namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

[[noreturn]] void Fail(const std::string& pointer, std::string message) {
  throw DescriptionError(pointer, std::move(message));
}

std::string Child(const std::string& pointer, std::string_view key) {
  std::string child = pointer;
  child += '/';
  for (char c : key) {
    if (c == '~') {
      child += "~0";
    } else if (c == '/') {
      child += "~1";
    } else {
      child += c;
    }
  }
  return child;
}

std::string Child(const std::string& pointer, std::size_t index) {
  return pointer + "/" + std::to_string(index);
}

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

const char* TypeName(const element& value) {
  switch (value.type()) {
    case element_type::ARRAY:
      return "an array";
    case element_type::OBJECT:
      return "an object";
    case element_type::INT64:
    case element_type::UINT64:
    case element_type::DOUBLE:
      return "a number";
    case element_type::STRING:
      return "a string";
    case element_type::BOOL:
      return "a boolean";
    case element_type::NULL_VALUE:
      return "null";
  }
  return "a value";
}

[[noreturn]] void FailType(const element& value, const std::string& pointer,
                           const char* expected) {
  Fail(pointer,
       std::string("expected ") + expected + ", got " + TypeName(value));
}

// An object whose fields are checked against the names it may have: an
// unknown name or a name given twice is an error.
class Object {
 public:
  Object(const element& value, std::string pointer,
         std::initializer_list<const char*> names)
      : pointer_(std::move(pointer)) {
    simdjson::dom::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS) {
      FailType(value, pointer_, "an object");
    }
    for (simdjson::dom::key_value_pair field : object) {
      if (std::find(names.begin(), names.end(), field.key) == names.end()) {
        std::string expected;
        for (const char* name : names) {
          expected += expected.empty() ? "" : ", ";
          expected += name;
        }
        Fail(Child(pointer_, field.key),
             "unknown field; expected one of: " + expected);
      }
      for (const auto& seen : fields_) {
        if (seen.first == field.key) {
          Fail(Child(pointer_, field.key), "duplicate field");
        }
      }
      fields_.emplace_back(field.key, field.value);
    }
  }

  const std::string& Pointer() const { return pointer_; }
  std::string Pointer(std::string_view name) const {
    return Child(pointer_, name);
  }

  std::optional<element> Find(std::string_view name) const {
    for (const auto& field : fields_) {
      if (field.first == name) return field.second;
    }
    return std::nullopt;
  }
  bool Has(std::string_view name) const { return Find(name).has_value(); }

  element Require(std::string_view name) const {
    std::optional<element> value = Find(name);
    if (!value) Fail(pointer_, "missing field " + Quoted(name));
    return *value;
  }

 private:
  std::string pointer_;
  std::vector<std::pair<std::string_view, element>> fields_;
};

// The number of elements of `array`. The parser's own count stops at
// 0xFFFFFF; a longer array is counted one by one.
std::size_t Count(const simdjson::dom::array& array) {
  std::size_t count = array.size();
  if (count >= 0xFFFFFF) {
    count = 0;
    for (element item : array) {
      static_cast<void>(item);
      ++count;
    }
  }
  return count;
}

// A number, null (the missing value) or "NaN", "INF", "-INF".
double ReadNumber(const element& value, const std::string& pointer) {
  switch (value.type()) {
    case element_type::DOUBLE:
      return value.get_double().value_unsafe();
    case element_type::INT64:
      return static_cast<double>(value.get_int64().value_unsafe());
    case element_type::UINT64:
      return static_cast<double>(value.get_uint64().value_unsafe());
    case element_type::NULL_VALUE:
      return MV::gMissingValue;
    case element_type::STRING: {
      std::string_view text = value.get_string().value_unsafe();
      if (text == "NaN") return std::numeric_limits<double>::quiet_NaN();
      if (text == "INF") return std::numeric_limits<double>::infinity();
      if (text == "-INF") return -std::numeric_limits<double>::infinity();
      Fail(pointer,
           "expected a number, null, \"NaN\", \"INF\" or \"-INF\", "
           "got the string " +
               Quoted(text));
    }
    default:
      FailType(value, pointer, "a number, null, \"NaN\", \"INF\" or \"-INF\"");
  }
}

double ReadNumber(const Object& object, std::string_view name) {
  std::optional<element> value = object.Find(name);
  return value ? ReadNumber(*value, object.Pointer(name)) : MV::gMissingValue;
}

template <typename Values>
Values ReadNumbers(const element& value, const std::string& pointer) {
  simdjson::dom::array array;
  if (value.get_array().get(array) != simdjson::SUCCESS) {
    FailType(value, pointer, "an array of numbers");
  }
  Values numbers(Count(array));
  std::size_t i = 0;
  for (element item : array) {
    // Only a string or a wrong type needs the element's pointer.
    const element_type type = item.type();
    numbers[i] = type == element_type::STRING || type == element_type::ARRAY ||
                         type == element_type::OBJECT ||
                         type == element_type::BOOL
                     ? ReadNumber(item, Child(pointer, i))
                     : ReadNumber(item, pointer);
    ++i;
  }
  return numbers;
}

std::valarray<double> ReadSeries(const Object& object, std::string_view name) {
  std::optional<element> value = object.Find(name);
  if (!value) return {};
  return ReadNumbers<std::valarray<double>>(*value, object.Pointer(name));
}

template <typename Integer>
[[noreturn]] void FailRange(const std::string& pointer, Integer low,
                            Integer high) {
  Fail(pointer, "out of range: expected an integer from " +
                    std::to_string(low) + " to " + std::to_string(high));
}

// An integer from `low` to `high`. A number with a zero fraction counts as an
// integer, as in JSON Schema.
template <typename Integer>
Integer ReadInteger(const element& value, const std::string& pointer,
                    Integer low = std::numeric_limits<Integer>::min(),
                    Integer high = std::numeric_limits<Integer>::max()) {
  switch (value.type()) {
    case element_type::INT64: {
      const int64_t number = value.get_int64().value_unsafe();
      if constexpr (std::is_signed_v<Integer>) {
        if (number < static_cast<int64_t>(low) ||
            number > static_cast<int64_t>(high)) {
          FailRange(pointer, low, high);
        }
      } else {
        if (number < 0 || static_cast<uint64_t>(number) < low ||
            static_cast<uint64_t>(number) > high) {
          FailRange(pointer, low, high);
        }
      }
      return static_cast<Integer>(number);
    }
    case element_type::UINT64: {
      // Only numbers past the largest int64 come as UINT64.
      const uint64_t number = value.get_uint64().value_unsafe();
      if constexpr (std::is_signed_v<Integer>) {
        FailRange(pointer, low, high);
      } else {
        if (number > high) FailRange(pointer, low, high);
        return static_cast<Integer>(number);
      }
    }
    case element_type::DOUBLE: {
      const double number = value.get_double().value_unsafe();
      if (number != std::floor(number)) {
        Fail(pointer, "expected an integer, got a number with a fraction");
      }
      // Both bounds as doubles; the upper one is exclusive past 2^53, where
      // a double can't tell high from high + 1.
      if (number < static_cast<double>(low) ||
          number >= static_cast<double>(high) + 1.0) {
        FailRange(pointer, low, high);
      }
      return static_cast<Integer>(number);
    }
    default:
      FailType(value, pointer, "an integer");
  }
}

template <typename Integer>
Integer ReadInteger(const Object& object, std::string_view name,
                    Integer fallback,
                    Integer low = std::numeric_limits<Integer>::min(),
                    Integer high = std::numeric_limits<Integer>::max()) {
  std::optional<element> value = object.Find(name);
  return value ? ReadInteger<Integer>(*value, object.Pointer(name), low, high)
               : fallback;
}

std::string ReadString(const element& value, const std::string& pointer) {
  std::string_view text;
  if (value.get_string().get(text) != simdjson::SUCCESS) {
    FailType(value, pointer, "a string");
  }
  return std::string(text);
}

std::string ReadString(const Object& object, std::string_view name,
                       const std::string& fallback = std::string()) {
  std::optional<element> value = object.Find(name);
  return value ? ReadString(*value, object.Pointer(name)) : fallback;
}

bool ReadBool(const Object& object, std::string_view name) {
  std::optional<element> value = object.Find(name);
  if (!value) return false;
  bool flag = false;
  if (value->get_bool().get(flag) != simdjson::SUCCESS) {
    FailType(*value, object.Pointer(name), "true or false");
  }
  return flag;
}

// One of `words`, by position.
template <std::size_t N>
std::size_t ReadWord(const element& value, const std::string& pointer,
                     const char* const (&words)[N], const char* what) {
  std::string_view text;
  if (value.get_string().get(text) != simdjson::SUCCESS) {
    FailType(value, pointer, "a string");
  }
  for (std::size_t i = 0; i < N; ++i) {
    if (text == words[i]) return i;
  }
  std::string expected;
  for (std::size_t i = 0; i < N; ++i) {
    expected += i == 0 ? "" : ", ";
    expected += words[i];
  }
  Fail(pointer, "unknown " + std::string(what) + " " + Quoted(text) +
                    "; expected one of: " + expected);
}

std::vector<std::string> ReadStrings(const element& value,
                                     const std::string& pointer) {
  simdjson::dom::array array;
  if (value.get_array().get(array) != simdjson::SUCCESS) {
    FailType(value, pointer, "an array of strings");
  }
  std::vector<std::string> strings;
  std::size_t i = 0;
  for (element item : array)
    strings.push_back(ReadString(item, Child(pointer, i++)));
  return strings;
}

simdjson::dom::array ReadArray(const element& value, const std::string& pointer,
                               const char* expected) {
  simdjson::dom::array array;
  if (value.get_array().get(array) != simdjson::SUCCESS) {
    FailType(value, pointer, expected);
  }
  return array;
}

// ---------------------------------------------------------------------------
// Date specifications

const char* const kPeriodTypes[] = {
    "simpleSequence", "cycle",  "year",   "quarter", "month", "week", "day",
    "hour",           "minute", "second", "obs"};

std::string StatusText(const OstraTime::OstraStatus& status) {
  const char* text = "the date specification refuses it";
  switch (status.GetCode()) {
    case 40200:
      text = "the first period can't be obs";
      break;
    case 40201:
      text =
          "a cycle length below 2, or a sub-cycle that reaches beyond the "
          "cycle";
      break;
    case 40202:
      text =
          "a period must be finer than the first period, and only the "
          "first period can be a cycle";
      break;
    case 40204:
      text =
          "calendar periods (year, quarter, month) and clock periods "
          "(week to second) don't mix";
      break;
    case 40205:
      text = "a simple sequence has no increment and no gaps";
      break;
    case 40206:
      text =
          "the quarter and the month don't fit together (a month cycle "
          "three times the quarter cycle, with matching sub-cycles)";
      break;
    case 40207:
      text =
          "the lowest increment must divide the sub-cycle length of the "
          "last period";
      break;
    case 40208:
      text = "the index tuple is not a point of this date specification";
      break;
    case 40209:
      text = "a gap offset must be 1 or more";
      break;
    case 40210:
      text = "a date specification holds at most seven periods";
      break;
    default:
      break;
  }
  return std::string(text) + " (status " + std::to_string(status.GetCode()) +
         ")";
}

void Check(const OstraTime::OstraStatus& status, const std::string& pointer) {
  if (!status.IsOK()) Fail(pointer, StatusText(status));
}

TSXDateSpec::TSXIndexTuple ReadTuple(const TSXDateSpec& spec,
                                     const element& value,
                                     const std::string& pointer) {
  simdjson::dom::array array = ReadArray(value, pointer, "an array of indexes");
  std::vector<unsigned> indexes;
  std::size_t i = 0;
  for (element item : array) {
    indexes.push_back(ReadInteger<unsigned>(item, Child(pointer, i++)));
  }
  TSXDateSpec::TSXIndexTuple tuple(spec);
  if (!tuple.SetIndexes(indexes)) {
    Fail(pointer, "expected " + std::to_string(spec.PeriodCount()) +
                      " indexes, one per period, each within its period's "
                      "sub-cycle (a linked quarter equal to month / 3, the "
                      "last on an increment)");
  }
  return tuple;
}

TSXDateSpec ReadDateSpec(const Object& object) {
  simdjson::dom::array periods = ReadArray(
      object.Require("periods"), object.Pointer("periods"), "an array");
  if (periods.size() == 0) {
    Fail(object.Pointer("periods"), "expected at least one period");
  }
  std::optional<TSXDateSpec> spec;
  std::size_t i = 0;
  for (element item : periods) {
    const Object period(
        item, Child(object.Pointer("periods"), i),
        {"type", "cycleLength", "subCycleStart", "subCycleLength"});
    const auto type = static_cast<TSXDateSpec::PeriodType>(
        ReadWord(period.Require("type"), period.Pointer("type"), kPeriodTypes,
                 "period type"));
    if (i == 0) {
      for (const char* name :
           {"cycleLength", "subCycleStart", "subCycleLength"}) {
        if (period.Has(name)) {
          Fail(period.Pointer(name),
               "the first period counts without a cycle; it has only a type");
        }
      }
      if (type == TSXDateSpec::Obs) {
        Fail(period.Pointer("type"),
             StatusText(OstraTime::OstraStatus(40200, false)));
      }
      spec.emplace(type);
    } else {
      const unsigned cycle = ReadInteger<unsigned>(
          period.Require("cycleLength"), period.Pointer("cycleLength"));
      const unsigned start = ReadInteger<unsigned>(period, "subCycleStart", 0);
      const unsigned length =
          ReadInteger<unsigned>(period, "subCycleLength", 0);
      Check(spec->AddPeriod(type, cycle, start, length), period.Pointer());
    }
    ++i;
  }
  if (std::optional<element> value = object.Find("lowestIncrement")) {
    Check(spec->SetLowestIncrement(
              ReadInteger<unsigned>(*value, object.Pointer("lowestIncrement"))),
          object.Pointer("lowestIncrement"));
  }
  if (std::optional<element> value = object.Find("firstCase")) {
    Check(spec->SetFirstCaseIndex(
              ReadTuple(*spec, *value, object.Pointer("firstCase"))),
          object.Pointer("firstCase"));
  }
  if (std::optional<element> value = object.Find("gaps")) {
    const std::string pointer = object.Pointer("gaps");
    i = 0;
    for (element gap : ReadArray(*value, pointer, "an array of gaps")) {
      const std::string gapPointer = Child(pointer, i++);
      if (gap.type() == element_type::ARRAY) {
        Check(spec->AddGap(ReadTuple(*spec, gap, gapPointer)), gapPointer);
      } else {
        Check(spec->AddGap(ReadInteger<int32_t>(gap, gapPointer)), gapPointer);
      }
    }
  }
  if (std::optional<element> value = object.Find("firstCaseDay")) {
    const Object day(*value, object.Pointer("firstCaseDay"),
                     {"year", "month", "day"});
    const unsigned year =
        ReadInteger<unsigned>(day.Require("year"), day.Pointer("year"));
    const unsigned month =
        ReadInteger<unsigned>(day.Require("month"), day.Pointer("month"));
    const unsigned dayOfMonth =
        ReadInteger<unsigned>(day.Require("day"), day.Pointer("day"));
    if (!spec->SetFirstCaseDay(dayOfMonth, month, year)) {
      Fail(day.Pointer(),
           "expected day 1 to 31, month 1 to 12 and a year (or all three 0), "
           "on a date specification with a day period");
    }
  }
  spec->SetForcedSeasonLength(
      ReadInteger<unsigned>(object, "forcedSeasonLength", 0));
  spec->SetFiscalYearStart(ReadInteger<unsigned>(object, "fiscalYearStart", 0));
  return *spec;
}

// ---------------------------------------------------------------------------
// What all models share

const char* const kTransformations[] = {"none", "log", "squareRoot"};

unsigned ReadTransformation(const Object& object) {
  std::optional<element> value = object.Find("transformation");
  return value ? static_cast<unsigned>(
                     ReadWord(*value, object.Pointer("transformation"),
                              kTransformations, "transformation"))
               : BFSharedConst::NoTransform;
}

TSSpan ReadSpan(const element& value, const std::string& pointer) {
  const Object span(value, pointer, {"begin", "length", "horizon"});
  const int64_t begin = ReadInteger<int64_t>(span, "begin", 0);
  const uint64_t length = ReadInteger<uint64_t>(span, "length", 0);
  const uint64_t horizon = ReadInteger<uint64_t>(span, "horizon", 0);
  return TSSpan(begin, length, horizon);
}

// The fit statistics by the names of the description, in the order of the
// library's table.
struct FitStatistic {
  const char* name;
  BFSharedConst::GOFStatType type;
};
const FitStatistic kFitStatistics[] = {
    {"mse", BFSharedConst::MSE},
    {"rmse", BFSharedConst::RMSE},
    {"mape", BFSharedConst::MAPE},
    {"mae", BFSharedConst::MAE},
    {"maxAPE", BFSharedConst::MAXAPE},
    {"maxAE", BFSharedConst::MAXAE},
    {"rSquared", BFSharedConst::RSQ},
    {"normalizedBIC", BFSharedConst::NRMBIC},
    {"rmspe", BFSharedConst::RMSPE},
    {"logLikelihood", BFSharedConst::LOGLK},
    {"aic", BFSharedConst::AIC},
    {"bic", BFSharedConst::BIC},
    {"stationaryRSquared", BFSharedConst::SRSQ},
};

EstimationInfo ReadEstimation(const element& value,
                              const std::string& pointer) {
  const Object object(
      value, pointer,
      {"span", "degreesOfFreedom", "errorVariance", "fit", "ljungBox"});
  EstimationInfo info;
  if (std::optional<element> span = object.Find("span")) {
    info.SetSpan(ReadSpan(*span, object.Pointer("span")));
  }
  info.SetDegreesOfFreedom(
      ReadInteger<uint64_t>(object, "degreesOfFreedom", 0));
  info.SetErrorVariance(ReadNumber(object, "errorVariance"));
  if (std::optional<element> fitValue = object.Find("fit")) {
    const Object fit(*fitValue, object.Pointer("fit"),
                     {"mse", "rmse", "mape", "mae", "maxAPE", "maxAE",
                      "rSquared", "normalizedBIC", "rmspe", "logLikelihood",
                      "aic", "bic", "stationaryRSquared"});
    for (const FitStatistic& statistic : kFitStatistics) {
      if (fit.Has(statistic.name)) {
        info.SetGOFStat(statistic.type, ReadNumber(fit, statistic.name));
      }
    }
  }
  if (std::optional<element> lbValue = object.Find("ljungBox")) {
    const Object lb(*lbValue, object.Pointer("ljungBox"),
                    {"statistic", "lags", "degreesOfFreedom", "significance"});
    const double statistic = ReadNumber(lb, "statistic");
    const uint64_t lags = ReadInteger<uint64_t>(lb, "lags", 0);
    const uint64_t df = ReadInteger<uint64_t>(lb, "degreesOfFreedom", 0);
    info.SetLBStat(statistic, lags, df, ReadNumber(lb, "significance"));
  }
  return info;
}

// Estimates and standard errors: exactly `count` estimates, at most as many
// standard errors.
void ReadEstimates(const Object& object, unsigned count,
                   const std::string& layout, ForecastState& state) {
  std::valarray<double> estimates = ReadNumbers<std::valarray<double>>(
      object.Require("estimates"), object.Pointer("estimates"));
  if (estimates.size() != count) {
    Fail(object.Pointer("estimates"), "expected " + std::to_string(count) +
                                          " estimates (" + layout + "), got " +
                                          std::to_string(estimates.size()));
  }
  std::valarray<double> errors = ReadSeries(object, "standardErrors");
  if (errors.size() > count) {
    Fail(object.Pointer("standardErrors"),
         "expected at most " + std::to_string(count) +
             " standard errors, one per estimate, got " +
             std::to_string(errors.size()));
  }
  state.SetParameters(estimates);
  state.SetParameterStdErrors(errors);
}

// ---------------------------------------------------------------------------
// Exponential smoothing

// In the order of ESModelSpec::ESModelType.
const char* const kSmoothingTypes[] = {
    "additiveWinters",       "brown",          "dampedTrend", "holt",
    "multiplicativeWinters", "simpleSeasonal", "simple"};

WIESSmState ReadSmoothingState(const element& value,
                               const std::string& pointer) {
  const Object object(value, pointer,
                      {"level", "trend", "phase", "seasonal", "cycleLength"});
  const double level =
      ReadNumber(object.Require("level"), object.Pointer("level"));
  const double trend = object.Has("trend") ? ReadNumber(object, "trend") : 0.0;
  const uint64_t phase = ReadInteger<uint64_t>(object, "phase", 0);
  WIESSmState state(level, trend, phase, ReadSeries(object, "seasonal"));
  if (object.Has("cycleLength")) {
    state.SetCycleLength(ReadInteger<uint64_t>(object, "cycleLength", 0));
  }
  return state;
}

ESForecastState ReadSmoothing(const element& value,
                              const std::string& pointer) {
  const Object object(
      value, pointer,
      {"type", "seasonLength", "transformation", "estimates", "standardErrors",
       "finalState", "initialState", "stateSpan"});
  const int type =
      static_cast<int>(ReadWord(object.Require("type"), object.Pointer("type"),
                                kSmoothingTypes, "exponential smoothing type"));
  ESModelSpec spec(type, ReadInteger<unsigned>(object, "seasonLength", 1));
  spec.SetYTransformSpec(TSTransformSpec(ReadTransformation(object)));

  static const char* const kParameterNames[] = {"alpha", "gamma", "delta",
                                                "phi"};
  std::string layout;
  for (int kind = 0; kind < ESModelSpec::kParameterKindCount; ++kind) {
    if (ESModelSpec::HasParameterKind(type, kind)) {
      layout += layout.empty() ? "" : ", ";
      layout += kParameterNames[kind];
    }
  }
  layout += " for " + std::string(kSmoothingTypes[type]);

  const WIESSmState finalState = ReadSmoothingState(
      object.Require("finalState"), object.Pointer("finalState"));
  const WIESSmState initialState =
      object.Has("initialState")
          ? ReadSmoothingState(*object.Find("initialState"),
                               object.Pointer("initialState"))
          : WIESSmState();
  ESForecastState state(spec, {}, {}, finalState, initialState);
  ReadEstimates(object, spec.GetParameterCount(true), layout, state);
  if (std::optional<element> span = object.Find("stateSpan")) {
    state.SetStateSpan(ReadSpan(*span, object.Pointer("stateSpan")));
  }
  return state;
}

// ---------------------------------------------------------------------------
// ARIMA

// Lags: integers from 1 up, strictly ascending.
AMPowers ReadLags(const Object& object, std::string_view name) {
  std::optional<element> value = object.Find(name);
  if (!value) return AMPowers();
  const std::string pointer = object.Pointer(name);
  std::vector<unsigned> lags;
  std::size_t i = 0;
  for (element item : ReadArray(*value, pointer, "an array of lags")) {
    const std::string lagPointer = Child(pointer, i++);
    if (item.type() == element_type::INT64 &&
        item.get_int64().value_unsafe() < 1) {
      Fail(lagPointer, "expected a lag of 1 or more, got " +
                           std::to_string(item.get_int64().value_unsafe()));
    }
    const unsigned lag = ReadInteger<unsigned>(item, lagPointer, 1u);
    if (!lags.empty() && lag <= lags.back()) {
      Fail(lagPointer,
           "lags must be strictly ascending: " + std::to_string(lag) +
               " follows " + std::to_string(lags.back()));
    }
    lags.push_back(lag);
  }
  return AMPowers(lags);
}

AMPredictorSpec ReadTransferFunction(const element& value,
                                     const std::string& pointer) {
  const Object object(
      value, pointer,
      {"transformation", "differencing", "seasonalDifferencing", "delay",
       "numerator", "seasonalNumerator", "denominator", "seasonalDenominator"});
  AMPredictorSpec predictor;
  predictor.transform = TSTransformSpec(ReadTransformation(object));
  predictor.nonSeasonalDiff = ReadInteger<unsigned>(object, "differencing", 0);
  predictor.seasonalDiff =
      ReadInteger<unsigned>(object, "seasonalDifferencing", 0);
  predictor.delay = ReadInteger<unsigned>(object, "delay", 0);
  predictor.numeratorNonSeasonal = ReadLags(object, "numerator");
  predictor.numeratorSeasonal = ReadLags(object, "seasonalNumerator");
  predictor.denominatorNonSeasonal = ReadLags(object, "denominator");
  predictor.denominatorSeasonal = ReadLags(object, "seasonalDenominator");
  return predictor;
}

// In the order of TSOutlierSpec::OutlierType, from 1.
const char* const kOutlierTypes[] = {
    "additive",   "levelShift",   "transient",     "seasonalAdditive",
    "localTrend", "innovational", "varianceChange"};

TSOutlierSpecList ReadOutliers(const element& value,
                               const std::string& pointer) {
  TSOutlierSpecList outliers;
  std::size_t i = 0;
  for (element item : ReadArray(value, pointer, "an array of outliers")) {
    const Object outlier(item, Child(pointer, i++), {"type", "start"});
    const auto type = static_cast<uint32_t>(
        1 + ReadWord(outlier.Require("type"), outlier.Pointer("type"),
                     kOutlierTypes, "outlier type"));
    const uint64_t start = ReadInteger<uint64_t>(outlier.Require("start"),
                                                 outlier.Pointer("start"));
    outliers.Add(TSOutlierSpec(type, start));
  }
  return outliers;
}

const char* const kArimaMethods[] = {"kalmanFilter", "conditionalLeastSquares",
                                     "thetaRecursion"};
enum ArimaMethod { kKalmanFilter, kConditionalLeastSquares, kThetaRecursion };

// Omega, the packed lower triangle of an n by n matrix: n (n + 1) / 2 values.
DSymMat ReadOmega(const Object& object) {
  std::valarray<double> packed = ReadSeries(object, "omega");
  unsigned n = 0;
  std::size_t size = 0;
  while (size < packed.size()) size += ++n;
  if (size != packed.size()) {
    Fail(object.Pointer("omega"),
         "expected the packed lower triangle of a square matrix, n (n + 1) / "
         "2 values, got " +
             std::to_string(packed.size()));
  }
  return DSymMat(n, packed);
}

void ReadPredictorHistory(const Object& object, unsigned predictors,
                          ARMAForecastState& state) {
  std::optional<element> value = object.Find("predictorHistory");
  if (!value) return;
  const std::string pointer = object.Pointer("predictorHistory");
  simdjson::dom::array array = ReadArray(*value, pointer, "an array");
  const std::size_t count = Count(array);
  if (count > predictors) {
    Fail(pointer, "expected at most one history per transfer function (" +
                      std::to_string(predictors) + "), got " +
                      std::to_string(count));
  }
  unsigned i = 0;
  for (element item : array) {
    const std::string itemPointer = Child(pointer, i);
    if (!item.is_null()) {
      const Object history(item, itemPointer,
                           {"predictor", "transferFunction"});
      const std::valarray<double> predictor = ReadSeries(history, "predictor");
      state.SetXHistory(i, predictor, ReadSeries(history, "transferFunction"));
    }
    ++i;
  }
}

std::unique_ptr<ForecastState> ReadArimaState(const Object& arima,
                                              const AMModelSpec& spec) {
  const Object object(arima.Require("state"), arima.Pointer("state"),
                      {"method", "finalValues", "predictedValues",
                       "predictorHistory", "finalNoise", "predictedNoise",
                       "omega", "stateVector", "thetas", "nu", "iterations"});
  const auto method = static_cast<ArimaMethod>(
      ReadWord(object.Require("method"), object.Pointer("method"),
               kArimaMethods, "estimation method"));
  // The fields of one method only.
  struct Owned {
    const char* name;
    bool kalman, cls, theta;
  };
  static const Owned kOwned[] = {
      {"finalNoise", false, true, true}, {"predictedNoise", false, true, true},
      {"omega", true, false, false},     {"stateVector", true, false, false},
      {"thetas", false, false, true},    {"nu", false, false, true},
      {"iterations", false, false, true}};
  for (const Owned& owned : kOwned) {
    const bool allowed = method == kKalmanFilter     ? owned.kalman
                         : method == kThetaRecursion ? owned.theta
                                                     : owned.cls;
    if (object.Has(owned.name) && !allowed) {
      Fail(object.Pointer(owned.name), std::string("the ") +
                                           kArimaMethods[method] +
                                           " state has no " + owned.name);
    }
  }

  std::unique_ptr<ARMAForecastState> state;
  ARMANoiseHistory* noise = nullptr;
  if (method == kKalmanFilter) {
    auto kalman = std::make_unique<ARMAMLForecastState>(spec);
    kalman->SetFinalOmega(ReadOmega(object));
    kalman->SetFinalStateV(ReadSeries(object, "stateVector"));
    state = std::move(kalman);
  } else if (method == kConditionalLeastSquares) {
    auto cls = std::make_unique<ARMACLSForecastState>(spec);
    noise = cls.get();
    state = std::move(cls);
  } else {
    auto theta = std::make_unique<ARMAMLSpForecastState>(spec);
    if (std::optional<element> value = object.Find("thetas")) {
      const std::string pointer = object.Pointer("thetas");
      std::vector<std::vector<double>> thetas;
      std::size_t i = 0;
      for (element item : ReadArray(*value, pointer, "an array of arrays")) {
        thetas.push_back(
            ReadNumbers<std::vector<double>>(item, Child(pointer, i++)));
      }
      theta->SetFinalThetas(thetas);
    }
    if (std::optional<element> value = object.Find("nu")) {
      theta->SetFinalNu(
          ReadNumbers<std::vector<double>>(*value, object.Pointer("nu")));
    }
    theta->SetFinalIterCount(ReadInteger<uint64_t>(object, "iterations", 0));
    noise = theta.get();
    state = std::move(theta);
  }
  if (noise) {
    noise->SetActualN(ReadSeries(object, "finalNoise"));
    noise->SetPredN(ReadSeries(object, "predictedNoise"));
  }
  state->SetActualZ(ReadSeries(object, "finalValues"));
  state->SetPredZ(ReadSeries(object, "predictedValues"));
  ReadPredictorHistory(object, spec.GetXCount(), *state);
  return state;
}

std::unique_ptr<ForecastState> ReadArima(const element& value,
                                         const std::string& pointer) {
  const Object object(
      value, pointer,
      {"seasonLength", "transformation", "constant", "differencing",
       "seasonalDifferencing", "ar", "seasonalAr", "ma", "seasonalMa",
       "transferFunctions", "outliers", "estimates", "standardErrors",
       "stateSpan", "state"});
  AMModelSpec spec;
  spec.SetSeasonLength(ReadInteger<unsigned>(object, "seasonLength", 1));
  spec.SetYTransformSpec(TSTransformSpec(ReadTransformation(object)));
  spec.SetMeanYPresent(ReadBool(object, "constant"));
  const unsigned differencing =
      ReadInteger<unsigned>(object, "differencing", 0);
  spec.SetYDiff(differencing,
                ReadInteger<unsigned>(object, "seasonalDifferencing", 0));
  const AMPowers ar = ReadLags(object, "ar");
  spec.SetARStruct(ar, ReadLags(object, "seasonalAr"));
  const AMPowers ma = ReadLags(object, "ma");
  spec.SetMAStruct(ma, ReadLags(object, "seasonalMa"));
  unsigned transferTerms = 0;
  if (std::optional<element> list = object.Find("transferFunctions")) {
    const std::string listPointer = object.Pointer("transferFunctions");
    std::size_t i = 0;
    for (element item : ReadArray(*list, listPointer, "an array")) {
      const AMPredictorSpec predictor =
          ReadTransferFunction(item, Child(listPointer, i++));
      transferTerms += 1 + predictor.numeratorNonSeasonal.PowerCount() +
                       predictor.numeratorSeasonal.PowerCount() +
                       predictor.denominatorNonSeasonal.PowerCount() +
                       predictor.denominatorSeasonal.PowerCount();
      spec.AddPredictor(predictor);
    }
  }
  if (std::optional<element> list = object.Find("outliers")) {
    spec.SetOutliers(ReadOutliers(*list, object.Pointer("outliers")));
  }

  const AMPowers *arLags = nullptr, *arSeasonal = nullptr;
  const AMPowers *maLags = nullptr, *maSeasonal = nullptr;
  spec.GetARStruct(arLags, arSeasonal);
  spec.GetMAStruct(maLags, maSeasonal);
  bool constant = false;
  spec.GetMeanYPresent(constant);
  const std::string layout =
      "constant " + std::to_string(constant ? 1 : 0) + ", AR " +
      std::to_string(arLags->PowerCount() + arSeasonal->PowerCount()) +
      ", MA " +
      std::to_string(maLags->PowerCount() + maSeasonal->PowerCount()) +
      ", transfer functions " + std::to_string(transferTerms) + ", outliers " +
      std::to_string(spec.GetOutliers().GetParameterCount());

  std::unique_ptr<ForecastState> state = ReadArimaState(object, spec);
  ReadEstimates(object, spec.GetParameterCount(true), layout, *state);
  if (std::optional<element> span = object.Find("stateSpan")) {
    state->SetStateSpan(ReadSpan(*span, object.Pointer("stateSpan")));
  }
  return state;
}

// ---------------------------------------------------------------------------
// Models

ModelDescription ReadModel(const element& value, const std::string& pointer,
                           const std::vector<DateSpecDescription>& dateSpecs) {
  const Object object(
      value, pointer,
      {"name", "descriptor", "dependentVariable", "predictors", "dateSpec",
       "estimation", "history", "exponentialSmoothing", "arima", "croston"});
  ModelDescription model;
  model.pointer = pointer;
  std::vector<std::string> predictors;
  if (std::optional<element> list = object.Find("predictors")) {
    predictors = ReadStrings(*list, object.Pointer("predictors"));
  }
  std::string name = ReadString(object.Require("name"), object.Pointer("name"));
  std::string descriptor = ReadString(object, "descriptor");
  std::string dependent = ReadString(object.Require("dependentVariable"),
                                     object.Pointer("dependentVariable"));
  model.refs = TSXDictionaryRefs(std::move(name), std::move(descriptor),
                                 std::move(dependent), predictors);
  if (std::optional<element> id = object.Find("dateSpec")) {
    const std::string wanted = ReadString(*id, object.Pointer("dateSpec"));
    for (std::size_t i = 0; i < dateSpecs.size(); ++i) {
      if (dateSpecs[i].id == wanted) model.dateSpec = static_cast<int>(i);
    }
    if (model.dateSpec < 0) {
      Fail(object.Pointer("dateSpec"),
           "no date specification has the identifier " + Quoted(wanted));
    }
  }

  const char* kind = nullptr;
  for (const char* candidate : {"exponentialSmoothing", "arima", "croston"}) {
    if (!object.Has(candidate)) continue;
    if (kind) {
      Fail(object.Pointer(candidate),
           std::string("a model has one kind; this one is already ") + kind);
    }
    kind = candidate;
  }
  if (!kind) {
    Fail(pointer,
         "missing the model: one of the fields \"exponentialSmoothing\", "
         "\"arima\", \"croston\"");
  }

  EstimationInfo info;
  if (std::optional<element> estimation = object.Find("estimation")) {
    info = ReadEstimation(*estimation, object.Pointer("estimation"));
  }
  const std::string kindPointer = object.Pointer(kind);
  const element kindValue = object.Require(kind);
  if (std::string_view(kind) == "croston") {
    if (object.Has("history")) {
      Fail(object.Pointer("history"),
           "a Croston model keeps no observed series");
    }
    const Object croston(
        kindValue, kindPointer,
        {"transformation", "demand", "interval", "absoluteError"});
    const auto function =
        static_cast<BFSharedConst::TSFunctionType>(ReadTransformation(croston));
    const ESForecastState demand =
        ReadSmoothing(croston.Require("demand"), croston.Pointer("demand"));
    const ESForecastState interval =
        ReadSmoothing(croston.Require("interval"), croston.Pointer("interval"));
    const ESForecastState error = ReadSmoothing(
        croston.Require("absoluteError"), croston.Pointer("absoluteError"));
    model.kind = ModelKind::kCroston;
    model.croston =
        TSFCrModel(new TSFCrModelImp(demand, interval, error, info, function));
    return model;
  }
  std::unique_ptr<ForecastState> state;
  if (std::string_view(kind) == "arima") {
    model.kind = ModelKind::kArima;
    state = ReadArima(kindValue, kindPointer);
  } else {
    model.kind = ModelKind::kExponentialSmoothing;
    state = std::make_unique<ESForecastState>(
        ReadSmoothing(kindValue, kindPointer));
  }
  model.model = TSFModel(
      new TSFModelImp(std::move(state), info, ReadSeries(object, "history")));
  return model;
}

StatXMLDescription ReadStatXML(const element& value,
                               const std::string& pointer) {
  const Object object(value, pointer,
                      {"residuals", "lagCount", "confidenceLevel"});
  StatXMLDescription settings;
  settings.present = true;
  const element residuals = object.Require("residuals");
  if (!residuals.is_null()) {
    settings.hasResiduals = true;
    settings.residuals = ReadNumbers<std::valarray<double>>(
        residuals, object.Pointer("residuals"));
  }
  settings.lagCount = ReadInteger<int>(object.Require("lagCount"),
                                       object.Pointer("lagCount"), 0);
  const element level = object.Require("confidenceLevel");
  settings.confidenceLevel =
      ReadNumber(level, object.Pointer("confidenceLevel"));
  if (!(settings.confidenceLevel > 0.0 && settings.confidenceLevel < 1.0)) {
    Fail(object.Pointer("confidenceLevel"),
         "expected a fraction between 0 and 1, such as 0.95");
  }
  return settings;
}

}  // namespace

Description ReadDescription(std::string_view bytes) {
  simdjson::dom::parser parser;
  element root;
  const simdjson::error_code error =
      parser.parse(bytes.empty() ? "" : bytes.data(), bytes.size(), true)
          .get(root);
  if (error != simdjson::SUCCESS) {
    throw LocateSyntaxError(bytes, simdjson::error_message(error));
  }

  const Object object(
      root, "", {"$schema", "application", "dateSpecs", "models", "statXML"});
  if (object.Has("$schema")) {
    ReadString(*object.Find("$schema"), object.Pointer("$schema"));
  }
  Description description;
  if (std::optional<element> value = object.Find("application")) {
    const Object application(*value, object.Pointer("application"),
                             {"name", "version", "copyright"});
    description.application.present = true;
    description.application.name =
        ReadString(application.Require("name"), application.Pointer("name"));
    description.application.version = ReadString(application, "version");
    description.application.copyright = ReadString(application, "copyright");
  }
  if (std::optional<element> value = object.Find("dateSpecs")) {
    const std::string pointer = object.Pointer("dateSpecs");
    std::size_t i = 0;
    for (element item : ReadArray(*value, pointer, "an array")) {
      const Object spec(
          item, Child(pointer, i++),
          {"id", "descriptor", "periods", "lowestIncrement", "firstCase",
           "gaps", "firstCaseDay", "forcedSeasonLength", "fiscalYearStart"});
      std::string id = ReadString(spec.Require("id"), spec.Pointer("id"));
      if (id.empty()) Fail(spec.Pointer("id"), "expected a non-empty name");
      for (const DateSpecDescription& earlier : description.dateSpecs) {
        if (earlier.id == id) {
          Fail(spec.Pointer("id"), "duplicate identifier " + Quoted(id));
        }
      }
      TSXDateSpec built = ReadDateSpec(spec);
      description.dateSpecs.push_back(
          {std::move(id), ReadString(spec, "descriptor"), std::move(built)});
    }
  }
  const std::string modelsPointer = object.Pointer("models");
  std::size_t i = 0;
  for (element item :
       ReadArray(object.Require("models"), modelsPointer, "an array")) {
    description.models.push_back(
        ReadModel(item, Child(modelsPointer, i++), description.dateSpecs));
  }
  if (std::optional<element> value = object.Find("statXML")) {
    description.statXML = ReadStatXML(*value, object.Pointer("statXML"));
  }
  return description;
}

}  // namespace tsxml_tool
