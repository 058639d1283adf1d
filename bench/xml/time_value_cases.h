// The documents that the TimeValue benchmark and probe compare: a series of
// <TimeValue index= value=/> elements built with tsxml's nodes, with pugixml
// from the same std::to_chars text, and a smoothing model with the same
// history written as PMML through TSXMLTree.
#ifndef TSXML_BENCH_XML_TIME_VALUE_CASES_H
#define TSXML_BENCH_XML_TIME_VALUE_CASES_H

#include <charconv>
#include <cstddef>
#include <memory>
#include <ostream>
#include <random>
#include <valarray>

#include "pugixml.hpp"
#include "support/model_fixtures.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/xml/xml_node.h"

namespace time_value_cases {

// A random walk around 1000 at full double precision: most values need 16
// or 17 digits, so the text is the 15-digit rounding of each.
inline std::valarray<double> History(std::size_t count) {
  std::valarray<double> history(count);
  std::mt19937_64 rng(42);
  std::uniform_real_distribution<double> step(-1.0, 1.0);
  double level = 1000.0;
  for (std::size_t i = 0; i < count; ++i) {
    level += step(rng);
    history[i] = level;
  }
  return history;
}

// The series as tsxml's builders make it, through the public node API.
inline std::unique_ptr<OstraTimeXML::XMLElement> BuildTsxml(
    const std::valarray<double>& history) {
  using OstraTimeXML::XMLElement;
  std::unique_ptr<XMLElement> series(XMLElement::Create("TimeSeries"));
  for (std::size_t i = 0; i < history.size(); ++i) {
    std::unique_ptr<XMLElement> value(XMLElement::Create("TimeValue"));
    value->AddAttribute("index", static_cast<double>(i + 1));
    value->AddAttribute("value", history[i]);
    series->AddElement(value.release());
  }
  return series;
}

inline void WriteTsxml(const OstraTimeXML::XMLElement& series,
                       std::ostream& os) {
  OstraTimeXML::ExportFormat format;
  series.ToStream(os, format, false);
}

// The same elements in a pugixml document, their text from std::to_chars:
// the integer index as an integer, the value as "%.15g" would print it.
inline void BuildPugi(const std::valarray<double>& history,
                      pugi::xml_document& doc) {
  pugi::xml_node series = doc.append_child("TimeSeries");
  char text[32];
  for (std::size_t i = 0; i < history.size(); ++i) {
    pugi::xml_node value = series.append_child("TimeValue");
    *std::to_chars(text, text + sizeof text - 1, i + 1).ptr = '\0';
    value.append_attribute("index").set_value(text);
    *std::to_chars(text, text + sizeof text - 1, history[i],
                   std::chars_format::general, 15)
         .ptr = '\0';
    value.append_attribute("value").set_value(text);
  }
}

inline void WritePugi(const pugi::xml_document& doc, std::ostream& os) {
  doc.save(os, "\t");
}

// A simple smoothing model whose observed series is `history`.
inline TSFModel SmoothingModel(const std::valarray<double>& history) {
  const std::uint64_t n = history.size();
  return testing_support::MakeESModel(
      ESModelSpec(ESModelSpec::ESSimple), {0.25}, {0.05},
      WIESSmState(history.size() ? history[history.size() - 1] : 0.0, 0.0),
      testing_support::BasicInfo(0, n, n > 0 ? n - 1 : 0), history);
}

// A PMML tree that holds `model` with its TimeSeries.
inline void AddToPMMLTree(TSXMLTree& tree, const TSFModel& model) {
  tree.SetPMMLOutput(true);
  tree.SetApplication("bench", "1", "");
  tree.AddModelTree(model, TSXDictionaryRefs("M", "", "y"));
}

}  // namespace time_value_cases

#endif  // TSXML_BENCH_XML_TIME_VALUE_CASES_H
