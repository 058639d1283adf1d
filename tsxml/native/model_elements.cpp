#include "tsxml/native/model_elements.h"

#include <cmath>
#include <memory>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/estimation_info.h"
#include "tsxml/xml/number_text.h"

namespace tsxml {

using OstraTimeXML::Format;
using OstraTimeXML::XMLAttribute;
using OstraTimeXML::XMLString;

namespace {

std::string NumberText(double value) { return Format(value, false, nullptr); }

}  // namespace

std::string ValueText(const double* values, size_t count,
                      InfinityText infinities) {
  std::string text;
  for (size_t i = 0; i < count; ++i) {
    if (i != 0) text += ' ';
    const double value = values[i];
    if (MV::IsMissing(value)) {
      text += "NaN";
    } else if (std::isinf(value) && infinities == InfinityText::kUniform) {
      text += value > 0 ? "INF" : "-INF";
    } else {
      text += NumberText(value);
    }
  }
  return text;
}

void AddValueText(XMLElement& element, const double* values, size_t count) {
  if (count == 0) return;
  std::unique_ptr<XMLString> text(XMLString::Create(ValueText(values, count)));
  element.AddElement(text.release());
}

bool AddValueListElement(XMLElement& parent, const std::string& name,
                         const std::valarray<double>& values, bool emitEmpty) {
  if (values.size() == 0 && !emitEmpty) return false;
  std::unique_ptr<XMLElement> list(XMLElement::Create(name));
  AddValueText(*list, values.size() ? &values[0] : nullptr, values.size());
  parent.AddElement(list.release());
  return true;
}

bool AddTransformationElement(XMLElement& parent, unsigned function,
                              unsigned nonSeasonalDiff, unsigned seasonalDiff,
                              unsigned delay) {
  if (function == 0 && nonSeasonalDiff == 0 && seasonalDiff == 0 &&
      delay == 0) {
    return false;
  }
  std::unique_ptr<XMLElement> transformation(
      XMLElement::Create("Transformation"));
  if (function != 0) {
    transformation->AddAttribute("function",
                                 function == 1 ? "logarithm" : "squareRoot");
  }
  if (nonSeasonalDiff != 0) {
    transformation->AddAttribute("nonSeasonalDiff", nonSeasonalDiff);
  }
  if (seasonalDiff != 0) {
    transformation->AddAttribute("seasonalDiff", seasonalDiff);
  }
  if (delay != 0) transformation->AddAttribute("delay", delay);
  parent.AddElement(transformation.release());
  return true;
}

bool AddEstimatedParameter(XMLElement& parent, double estimate,
                           double stdError) {
  if (MV::IsMissing(estimate)) return false;
  std::string text = NumberText(estimate);
  if (!MV::IsMissing(stdError)) {
    text += ' ';
    text += NumberText(stdError);
  }
  std::unique_ptr<XMLElement> parameter(
      XMLElement::Create("EstimatedParameter"));
  std::unique_ptr<XMLString> value(XMLString::Create(text));
  parameter->AddElement(value.release());
  parent.AddElement(parameter.release());
  return true;
}

void AddStatistic(XMLElement& parent, const std::string& type, double value) {
  if (MV::IsMissing(value)) return;
  std::unique_ptr<XMLElement> statistic(XMLElement::Create("Statistic"));
  statistic->AddAttribute("type", type);
  AddValueText(*statistic, &value, 1);
  parent.AddElement(statistic.release());
}

void AddEstimationInfo(XMLElement& parent, const EstimationInfo& info) {
  static constexpr struct {
    BFSharedConst::GOFStatType type;
    const char* word;
  } kGoodnessOfFit[] = {
      {BFSharedConst::MSE, "meanSqrErr"},
      {BFSharedConst::RMSE, "rootMeanSqrErr"},
      {BFSharedConst::MAPE, "meanAbsPctErr"},
      {BFSharedConst::MAE, "meanAbsErr"},
      {BFSharedConst::MAXAPE, "maxAbsPctErr"},
      {BFSharedConst::MAXAE, "maxAbsErr"},
      {BFSharedConst::RSQ, "rSqr"},
      {BFSharedConst::NRMBIC, "normBayesIC"},
      {BFSharedConst::LOGLK, "logLikelihood"},
      {BFSharedConst::AIC, "akaikeIC"},
      {BFSharedConst::BIC, "bayesIC"},
      {BFSharedConst::SRSQ, "stationaryRSqr"},
  };

  std::unique_ptr<XMLElement> element(XMLElement::Create("EstimationInfo"));
  const TSSpan span = info.GetSpan();
  element->AddAttribute("periodStartIndex", static_cast<double>(span.Begin()));
  element->AddAttribute("periodLength", static_cast<double>(span.Length()));
  element->AddAttribute("degreesOfFreedom",
                        static_cast<double>(info.GetDegreesOfFreedom()));
  AddStatistic(*element, "errVariance", info.GetErrorVariance());
  for (const auto& row : kGoodnessOfFit) {
    AddStatistic(*element, row.word, info.GetGOFStat(row.type));
  }

  double statistic = 0.0;
  double pValue = 0.0;
  uint64_t k = 0;
  uint64_t degreesOfFreedom = 0;
  info.GetLBStat(statistic, k, degreesOfFreedom, pValue);
  if (!MV::IsMissing(statistic)) {
    std::unique_ptr<XMLElement> ljungBox(
        XMLElement::Create("LjungBoxStatistic"));
    ljungBox->AddAttribute("k", static_cast<double>(k));
    ljungBox->AddAttribute("degreesOfFreedom",
                           static_cast<double>(degreesOfFreedom));
    ljungBox->AddAttribute("pValue", pValue);
    AddValueText(*ljungBox, &statistic, 1);
    element->AddElement(ljungBox.release());
  }
  parent.AddElement(element.release());
}

void AddModelAttributes(XMLElement& model, const TSXDictionaryRefs& refs) {
  if (!refs.GetModelName().empty()) {
    model.AddAttribute("modelName", refs.GetModelName());
  }
  if (!refs.GetModelDescriptor().empty()) {
    model.AddAttribute("modelDescriptor", refs.GetModelDescriptor());
  }
  model.AddAttribute("variableID", refs.GetDependentVarID());
  if (refs.GetDateSpecID() > 0) {
    model.AddAttribute("dateSpecID", static_cast<double>(refs.GetDateSpecID()));
  }
}

}  // namespace tsxml
