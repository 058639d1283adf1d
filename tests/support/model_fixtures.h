// Small fitted models for tests, and helpers to print nodes.
#ifndef TSXML_TESTS_SUPPORT_MODEL_FIXTURES_H
#define TSXML_TESTS_SUPPORT_MODEL_FIXTURES_H

#include <initializer_list>
#include <memory>
#include <string>
#include <valarray>
#include <vector>

#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/xml/xml_node.h"

namespace testing_support {

// "\n" + the lines joined by "\n": the text of a serialised element.
inline std::string Lines(std::initializer_list<std::string> lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += '\n';
    text += line;
  }
  return text;
}

// A new, empty element that the caller owns.
inline std::unique_ptr<OstraTimeXML::XMLElement> Element(
    const char* name = "p") {
  return std::unique_ptr<OstraTimeXML::XMLElement>(
      OstraTimeXML::XMLElement::Create(name));
}

// The text of `node` with a default format at `level`.
inline std::string Text(const OstraTimeXML::XMLInterface& node, int level = 0) {
  OstraTimeXML::ExportFormat format;
  format.SetLevel(level);
  std::string out;
  node.ToString(out, format);
  return out;
}

// An EstimationInfo with a span, degrees of freedom and the error variance,
// and every other statistic missing.
inline EstimationInfo BasicInfo(int64_t begin = 0, uint64_t length = 24,
                                uint64_t df = 23, double variance = 2.5) {
  EstimationInfo info;
  info.SetSpan(TSSpan(begin, length));
  info.SetDegreesOfFreedom(df);
  info.SetErrorVariance(variance);
  return info;
}

inline TSFModel MakeESModel(const ESModelSpec& spec,
                            const std::valarray<double>& parameters,
                            const std::valarray<double>& stdErrors,
                            const WIESSmState& finalState,
                            const EstimationInfo& info = BasicInfo(),
                            const std::valarray<double>& history = {},
                            const WIESSmState& initialState = WIESSmState()) {
  return TSFModel(new TSFModelImp(
      std::make_unique<ESForecastState>(spec, parameters, stdErrors, finalState,
                                        initialState),
      info, history));
}

// ESSimple with level 10.5, alpha 0.25 (0.05).
inline TSFModel MakeSimpleModel() {
  return MakeESModel(ESModelSpec(ESModelSpec::ESSimple), {0.25}, {0.05},
                     WIESSmState(10.5, 0.0));
}

}  // namespace testing_support

#endif  // TSXML_TESTS_SUPPORT_MODEL_FIXTURES_H
