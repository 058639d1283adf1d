// Number text and serialisation speed.
//
// Measured on the 2-core development machine (g++ 12, Release, the machine
// busy with other builds: CPU time, median of 5 repetitions):
//
//   Format/to_chars             176 ns per double   (the route in use)
//   Format/ostringstream       1763 ns per double   (reference route)
//   BM_FormatLong              24.6 ns
//   BM_ToString                 695 MB/s   (1.56 MB document, 2.15 ms)
//   BM_ToStreamNull/0 raw       812 MB/s   (null streambuf)
//   BM_ToStreamNull/1 utf8      342 MB/s   (C.UTF-8 locale, every piece
//                                           converted)
//   BM_ToStreamOstringstream    782 MB/s
//   BM_PutPerByte                84 MB/s   (same bytes, one put each)
#include <benchmark/benchmark.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "tsxml/xml/internal/number_format.h"
#include "tsxml/xml/number_text.h"
#include "tsxml/xml/xml_node.h"

namespace {

using namespace OstraTimeXML;

// Finite doubles over all magnitudes, half of them short decimals.
const std::vector<double>& RandomDoubles() {
  static const std::vector<double> values = [] {
    std::mt19937_64 rng(1);
    std::vector<double> v;
    while (v.size() < 4096) {
      if (v.size() % 2 == 0) {
        v.push_back(static_cast<double>(rng() % 100000) / 100.0);
        continue;
      }
      double d;
      const std::uint64_t bits = rng();
      std::memcpy(&d, &bits, sizeof(d));
      if (std::isfinite(d)) v.push_back(d);
    }
    return v;
  }();
  return values;
}

template <std::string (*Route)(double)>
void BM_FormatDouble(benchmark::State& state) {
  const std::vector<double>& values = RandomDoubles();
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Route(values[i++ % values.size()]));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(BM_FormatDouble, tsxml::FormatGeneral15)
    ->Name("Format/to_chars");
BENCHMARK_TEMPLATE(BM_FormatDouble, tsxml::FormatGeneral15ViaStream)
    ->Name("Format/ostringstream");

void BM_FormatLong(benchmark::State& state) {
  long value = -123456;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Format(value));
    value += 7919;
  }
}
BENCHMARK(BM_FormatLong);

// A document shaped like the library's: nested elements with numeric
// attributes, value lists as text, some text that needs escaping.
std::unique_ptr<XMLElement> LargeDocument() {
  std::unique_ptr<XMLElement> root(XMLElement::Create("TSCXML"));
  root->AddAttribute("version", "1.0");
  std::mt19937_64 rng(2);
  std::uniform_real_distribution<double> unit(-1000.0, 1000.0);
  for (int model = 0; model < 200; ++model) {
    std::unique_ptr<XMLElement> m(XMLElement::Create("Model"));
    m->AddAttribute("name", "series <" + std::to_string(model) + "> & co");
    for (int p = 0; p < 40; ++p) {
      std::unique_ptr<XMLElement> parameter(XMLElement::Create("Parameter"));
      parameter->AddAttribute("estimate", unit(rng));
      parameter->AddAttribute("standardError", unit(rng) / 1000.0);
      parameter->AddAttribute("label", "lag  " + std::to_string(p));
      m->AddElement(parameter.release());
    }
    std::string values;
    for (int v = 0; v < 200; ++v) {
      values += Format(unit(rng), false, nullptr);
      values += ' ';
    }
    std::unique_ptr<XMLElement> list(XMLElement::Create("Values"));
    list->AddElement(XMLString::Create(values));
    m->AddElement(list.release());
    root->AddElement(m.release());
  }
  return root;
}

const XMLElement& Document() {
  static const std::unique_ptr<XMLElement> document = LargeDocument();
  return *document;
}

std::size_t DocumentSize() {
  static const std::size_t size = [] {
    ExportFormat format;
    std::string text;
    Document().ToString(text, format);
    return text.size();
  }();
  return size;
}

class NullBuffer : public std::streambuf {
 protected:
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

void BM_ToString(benchmark::State& state) {
  std::string text;
  for (auto _ : state) {
    text.clear();
    ExportFormat format;
    Document().ToString(text, format);
    benchmark::DoNotOptimize(text.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(DocumentSize()));
  state.counters["document_bytes"] = static_cast<double>(DocumentSize());
}
BENCHMARK(BM_ToString)->Unit(benchmark::kMillisecond);

void BM_ToStreamNull(benchmark::State& state) {
  NullBuffer sink;
  std::ostream os(&sink);
  const bool utf8 = state.range(0) != 0;
  const std::string old_locale = std::setlocale(LC_CTYPE, nullptr);
  std::setlocale(LC_CTYPE, "C.UTF-8");
  for (auto _ : state) {
    ExportFormat format;
    Document().ToStream(os, format, utf8);
  }
  std::setlocale(LC_CTYPE, old_locale.c_str());
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(DocumentSize()));
  state.SetLabel(utf8 ? "utf8, C.UTF-8 locale" : "raw");
}
BENCHMARK(BM_ToStreamNull)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// For scale: the same bytes put one by one, as a per-byte writer would.
void BM_PutPerByte(benchmark::State& state) {
  ExportFormat format;
  std::string text;
  Document().ToString(text, format);
  NullBuffer sink;
  std::ostream os(&sink);
  for (auto _ : state) {
    for (char c : text) os.put(c);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_PutPerByte)->Unit(benchmark::kMillisecond);

void BM_ToStreamOstringstream(benchmark::State& state) {
  for (auto _ : state) {
    std::ostringstream os;
    ExportFormat format;
    Document().ToStream(os, format, false);
    benchmark::DoNotOptimize(os);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(DocumentSize()));
}
BENCHMARK(BM_ToStreamOstringstream)->Unit(benchmark::kMillisecond);

}  // namespace
