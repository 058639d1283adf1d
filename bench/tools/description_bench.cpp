// The description of one multiplicative Winters model with a history of n
// values: reading it, and writing its documents, in ns per history value.
// ParseNlohmann is the first step of a reader built on nlohmann-json (parse,
// then copy the history out), for the choice of the JSON library.
//
// Measured on the 2-core development machine (g++ 12, Release, the machine
// busy with other builds: CPU time per history value):
//
//   n                     10^4      10^5      10^6
//   ReadDescription       24.1      27.2      64.3   (simdjson, the reader)
//   ParseNlohmann          252       249       248   (parse and copy only)
//   WritePMML              527       555       553
//   WriteNative         constant 8 us: the native document has no history
//
// Reading costs a tenth of writing the PMML document; nlohmann-json alone
// would cost half of it before any field is checked.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <valarray>

#include "tools/tsxml/description.h"
#include "tools/tsxml/write.h"

namespace {

// Counts the bytes written and keeps none.
class NullBuffer : public std::streambuf {
 protected:
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
};

std::string MakeDescription(std::size_t n) {
  std::mt19937_64 random(n);
  std::normal_distribution<double> value(400.0, 30.0);
  std::string history;
  history.reserve(n * 20);
  char text[32];
  for (std::size_t i = 0; i < n; ++i) {
    std::snprintf(text, sizeof text, "%s%.17g", i ? ", " : "", value(random));
    history += text;
  }
  return R"({"models": [{"name": "Visitors", "dependentVariable": "visitors",
    "estimation": {"span": {"length": )" +
         std::to_string(n) + R"(}, "degreesOfFreedom": )" +
         std::to_string(n - 3) + R"(, "errorVariance": 0.00142,
    "fit": {"mse": 38.61, "rmse": 6.214, "mape": 3.118, "mae": 4.907}},
    "history": [)" +
         history + R"(],
    "exponentialSmoothing": {"type": "multiplicativeWinters",
      "seasonLength": 12, "transformation": "log",
      "estimates": [0.7542, 0.0001, 0.2213],
      "standardErrors": [0.0911, 0.0032, 0.1187],
      "finalState": {"level": 5.2781, "trend": 0.00917, "phase": 3,
        "seasonal": [0.912, 0.934, 1.021, 0.987, 0.976, 1.063, 1.148, 1.152,
                     1.041, 0.947, 0.861, 0.958]}}}]})";
}

void PerValue(benchmark::State& state) {
  state.counters["per_value"] =
      benchmark::Counter(static_cast<double>(state.range(0)),
                         benchmark::Counter::kIsIterationInvariantRate |
                             benchmark::Counter::kInvert);
}

void BM_ReadDescription(benchmark::State& state) {
  const std::string json =
      MakeDescription(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    tsxml_tool::Description description = tsxml_tool::ReadDescription(json);
    benchmark::DoNotOptimize(description);
  }
  PerValue(state);
}

void BM_ParseNlohmann(benchmark::State& state) {
  const std::string json =
      MakeDescription(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    const nlohmann::json document = nlohmann::json::parse(json);
    const nlohmann::json& history = document["models"][0]["history"];
    std::valarray<double> values(history.size());
    std::size_t i = 0;
    for (const nlohmann::json& item : history) values[i++] = item.get<double>();
    benchmark::DoNotOptimize(values);
  }
  PerValue(state);
}

void Write(benchmark::State& state, tsxml_tool::Format format) {
  const tsxml_tool::Description description = tsxml_tool::ReadDescription(
      MakeDescription(static_cast<std::size_t>(state.range(0))));
  tsxml_tool::WriteOptions options;
  options.format = format;
  NullBuffer buffer;
  std::ostream out(&buffer);
  for (auto _ : state) tsxml_tool::WriteDocument(description, options, out);
  PerValue(state);
}

void BM_WritePMML(benchmark::State& state) {
  Write(state, tsxml_tool::Format::kPMML);
}

void BM_WriteNative(benchmark::State& state) {
  Write(state, tsxml_tool::Format::kNative);
}

BENCHMARK(BM_ReadDescription)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseNlohmann)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WritePMML)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteNative)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
