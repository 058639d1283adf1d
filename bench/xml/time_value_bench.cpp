// Building, writing and destroying N <TimeValue index= value=/> elements:
// tsxml's nodes against pugixml (the same text from std::to_chars), and the
// real path, a smoothing model with an N-value history written as PMML
// through TSXMLTree.
//
// Per TimeValue, from time_value_probe under callgrind (instructions do not
// depend on the machine's load), heap counts from its allocator hooks:
//
//   mode     N      build+write  write  destroy  allocs  bytes kept  RSS MB
//   tree     10^4        1292     391       45    0.01        147       7
//   pugixml  10^4        2617     795        2    0.01        233       7
//   tree     10^5        1211     303       44    0.00        145      28
//   nodes    10^5        1222     297       44    0.00        139      25
//   pugixml  10^5        2564     713        1    0.01        232      35
//   tree     10^6        1172     285       44    0.00        151     235
//   pugixml  10^6        2554     698        1    0.01        232     297
//
// Wall time at 10^6, one run on the shared 2-core machine (load 4.5), as
// ratios to pugixml: end to end 0.44 (nodes), 0.65 (TSXMLTree, PMML); build
// 0.53, write 0.57, destroy 1.06. README.md has the whole table.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <valarray>

#include "time_value_cases.h"

namespace {

namespace cases = time_value_cases;

struct Tsxml {
  using Document = std::unique_ptr<OstraTimeXML::XMLElement>;
  static Document Build(const std::valarray<double>& history) {
    return cases::BuildTsxml(history);
  }
  static void Write(const Document& document, std::ostream& os) {
    cases::WriteTsxml(*document, os);
  }
};

struct Pugixml {
  using Document = std::unique_ptr<pugi::xml_document>;
  static Document Build(const std::valarray<double>& history) {
    auto document = std::make_unique<pugi::xml_document>();
    cases::BuildPugi(history, *document);
    return document;
  }
  static void Write(const Document& document, std::ostream& os) {
    cases::WritePugi(*document, os);
  }
};

const std::valarray<double>& History(std::size_t count) {
  static std::valarray<double> history;
  if (history.size() != count) history = cases::History(count);
  return history;
}

void Count(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) *
                          state.range(0));
}

template <typename Library>
void BM_Build(benchmark::State& state) {
  const auto& history = History(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    typename Library::Document document = Library::Build(history);
    state.PauseTiming();
    document.reset();
    state.ResumeTiming();
  }
  Count(state);
}

template <typename Library>
void BM_Write(benchmark::State& state) {
  const auto& history = History(static_cast<std::size_t>(state.range(0)));
  const typename Library::Document document = Library::Build(history);
  for (auto _ : state) {
    std::ostringstream os;
    Library::Write(document, os);
    benchmark::DoNotOptimize(os);
  }
  Count(state);
}

template <typename Library>
void BM_Destroy(benchmark::State& state) {
  const auto& history = History(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    typename Library::Document document = Library::Build(history);
    state.ResumeTiming();
    document.reset();
  }
  Count(state);
}

template <typename Library>
void BM_EndToEnd(benchmark::State& state) {
  const auto& history = History(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::ostringstream os;
    Library::Write(Library::Build(history), os);
    benchmark::DoNotOptimize(os);
  }
  Count(state);
}

// The real path: add the model, write the whole PMML document, let the tree
// go.
void BM_TreePMML(benchmark::State& state) {
  const auto& history = History(static_cast<std::size_t>(state.range(0)));
  const TSFModel model = cases::SmoothingModel(history);
  for (auto _ : state) {
    std::ostringstream os;
    {
      TSXMLTree tree;
      cases::AddToPMMLTree(tree, model);
      tree.WriteToStream(os);
    }
    benchmark::DoNotOptimize(os);
  }
  Count(state);
}

#define TIME_VALUE_SIZES \
  Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)

BENCHMARK_TEMPLATE(BM_Build, Tsxml)->TIME_VALUE_SIZES;
BENCHMARK_TEMPLATE(BM_Build, Pugixml)->TIME_VALUE_SIZES;
BENCHMARK_TEMPLATE(BM_Write, Tsxml)->TIME_VALUE_SIZES;
BENCHMARK_TEMPLATE(BM_Write, Pugixml)->TIME_VALUE_SIZES;
// The build outside the timing would otherwise be repeated until the cheap
// destruction adds up to the minimum time.
BENCHMARK_TEMPLATE(BM_Destroy, Tsxml)->TIME_VALUE_SIZES->Iterations(20);
BENCHMARK_TEMPLATE(BM_Destroy, Pugixml)->TIME_VALUE_SIZES->Iterations(20);
BENCHMARK_TEMPLATE(BM_EndToEnd, Tsxml)->TIME_VALUE_SIZES;
BENCHMARK_TEMPLATE(BM_EndToEnd, Pugixml)->TIME_VALUE_SIZES;
BENCHMARK(BM_TreePMML)->TIME_VALUE_SIZES;

}  // namespace
