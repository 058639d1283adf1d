#include "tsxml/statxml/statxml_document.h"

#include <ostream>
#include <utility>

#include "tsxml/base/vendor.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/modelapi/outlier_spec.h"
#include "tsxml/pmml/parameter_table.h"
#include "tsxml/pmml/pmml_elements.h"
#include "tsxml/xml/internal/document_output.h"

namespace tsxml {

using OstraTimeXML::ExportFormat;

namespace {

template <typename Values>
XMLElement* AddCoordinatesOf(XMLElement& parent, std::string statistic,
                             const Values& values) {
  XMLElement* coordinates =
      AddChildElement(parent, "Coordinates", "feature", "statistic",
                      "statistic", std::move(statistic));
  AddRealArray(*coordinates, values);
  return coordinates;
}

// "MultivariateData" described as `description` holding one
// "CoordinatesGroup" of the correlations `name`, their standard errors and
// their bounds.
template <typename StdErrors>
void AddCorrelations(XMLElement& parent, const std::string& name,
                     const std::valarray<double>& values,
                     const StdErrors& stdErrors,
                     const std::vector<double>& lower,
                     const std::vector<double>& upper) {
  XMLElement* data =
      AddChildElement(parent, "MultivariateData", "description", name);
  XMLElement* group = AddChildElement(*data, "CoordinatesGroup");
  AddCoordinates(*group, name, values);
  AddCoordinates(*group, "StdErr", stdErrors);
  AddCoordinates(*group, "ConfIntervalLower", lower);
  AddCoordinates(*group, "ConfIntervalUpper", upper);
}

// The values of an "OutlierPointStats" row: twelve for a transient, eight
// for any other type.
std::vector<double> OutlierPointStats(const TSXOutlierRow& row) {
  std::vector<double> values = {
      row.startTime,      static_cast<double>(row.type),
      row.magnitude,      row.magnitudeStdError,
      row.magnitudeTTest, row.magnitudeSig};
  if (row.type == TSOutlierSpec::Transient) {
    values.insert(values.end(), {row.dampingCoefficient, row.dampingStdError,
                                 row.dampingTTest, row.dampingSig});
  }
  values.insert(values.end(), {1.0, row.startTime});
  return values;
}

// The root "StatXML" with its namespace attributes. Caller owns the result.
XMLElement* MakeStatXMLRoot() {
  const std::string namespaceURI =
      std::string(kVendorBaseURI) + "/software/analytics/corvane/xml/extension";
  std::unique_ptr<XMLElement> root(XMLElement::Create("StatXML"));
  root->AddAttribute("version", "1.0");
  root->AddAttribute("xmlns", namespaceURI);
  root->AddAttribute("xmlns:xsi", kXsiNamespaceURI);
  root->AddAttribute("xsi:schemaLocation",
                     namespaceURI + " " + namespaceURI + "/StatXML_7.0.xsd");
  return root.release();
}

}  // namespace

void AddStatXMLStatistic(XMLElement& parent, std::string name,
                         std::string value) {
  if (name.empty() || value.empty()) return;
  AddChildElement(parent, "Statistic", "name", std::move(name), "value",
                  std::move(value));
}

XMLElement* AddCoordinates(XMLElement& parent, std::string statistic,
                           const std::vector<double>& values) {
  return AddCoordinatesOf(parent, std::move(statistic), values);
}

XMLElement* AddCoordinates(XMLElement& parent, std::string statistic,
                           const std::valarray<double>& values) {
  return AddCoordinatesOf(parent, std::move(statistic), values);
}

TSXStatXMLDocument::~TSXStatXMLDocument() = default;

void TSXStatXMLDocument::SetOutput(const std::valarray<double>* series,
                                   int lagCount, double confidenceLevel) {
  series_ = series;
  lagCount_ = lagCount;
  confidenceLevel_ = confidenceLevel;
}

bool TSXStatXMLDocument::AddModel(const TSFModel& model,
                                  const TSXDictionaryRefs& refs) {
  const TSFModelImp* imp = model.GetImp();
  if (imp == nullptr) return false;
  const bool exponentialSmoothing =
      dynamic_cast<const ESForecastState*>(imp->GetForecastState()) != nullptr;

  std::unique_ptr<XMLElement> root(MakeStatXMLRoot());
  XMLElement* pmmlModel = AddChildElement(*root, "PMMLModel", "modelID", "1",
                                          "modelType", "TimeSeries");
  TSXParameterTable table(refs.GetDependentVarID(), model,
                          refs.GetPredictorIDs(), confidenceLevel_);
  if (series_ != nullptr && series_->size() > 0) {
    table.ComputeResidualCorrelations(*series_, model, lagCount_);
  }
  AddChildElement(*pmmlModel, "PredictiveSummary", "algorithmName",
                  exponentialSmoothing ? "ExponentialSmoothing" : "ARIMA",
                  "dataUsage", "training");
  XMLElement* diagnostics =
      AddChildElement(*pmmlModel, "ModelDiagnostics", "dataUsage", "training");

  const std::pair<const char*, double> statistics[] = {
      {"MSE", table.mse},
      {"RMSE", table.rmse},
      {"RMSPE", table.rmspe},
      {"MAPE", table.mape},
      {"MaxAPE", table.maxAPE},
      {"MAE", table.mae},
      {"MaxAE", table.maxAE},
      {"BIC", table.bic},
      {"AIC", table.aic},
      {"RSquared", table.rSquared},
      {"StationaryRSquared", table.stationaryRSquared}};
  for (const auto& statistic : statistics) {
    AddStatXMLStatistic(*diagnostics, statistic.first,
                        PMMLNumberText(statistic.second));
  }
  if (!exponentialSmoothing) {
    AddStatXMLStatistic(*diagnostics, "positiveParameters", "1");
  }

  if (!table.outlierRows.empty()) {
    XMLElement* outliers = AddChildElement(*pmmlModel, "MultivariateData",
                                           "description", "OutlierEffect");
    for (const TSXOutlierRow& row : table.outlierRows) {
      AddCoordinates(*outliers, "OutlierPointStats", OutlierPointStats(row));
    }
  }
  if (table.acf.size() > 0) {
    AddCorrelations(*diagnostics, "ACF", table.acf, table.acfStdErr,
                    table.acfLower, table.acfUpper);
  }
  if (table.pacf.size() > 0) {
    AddCorrelations(*diagnostics, "PACF", table.pacf, table.pacfStdErr,
                    table.pacfLower, table.pacfUpper);
  }
  if (!MV::IsMissing(table.ljungBoxQ)) {
    XMLElement* test =
        AddChildElement(*diagnostics, "ModelTestStats", "description",
                        "LjungBoxQTest", "testID", "1");
    XMLElement* chiTest = AddChildElement(*test, "ChiTest");
    AddDoubleAttribute(*chiTest, "chiSquare", table.ljungBoxQ);
    AddDoubleAttribute(*chiTest, "sig", table.ljungBoxSig);
    AddDoubleAttribute(*chiTest, "df", table.ljungBoxDf);
  }
  if (table.GetRowCount() > 0) {
    XMLElement* summary = AddChildElement(*pmmlModel, "TrainingSummary");
    XMLElement* estimates = AddChildElement(*summary, "ParameterEstimates");
    for (const TSXParameterRow& row : table.rows) {
      XMLElement* stats = AddChildElement(*estimates, "ParameterStats",
                                          "paramName", row.paramName);
      AddDoubleAttribute(*stats, "estimate", row.estimate);
      AddDoubleAttribute(*stats, "stdError", row.stdError);
      AddDoubleAttribute(*stats, "sig", row.sig);
      AddDoubleAttribute(*stats, "tTest", row.tTest);
      AddDoubleAttribute(*stats, "confIntervalLower", row.confIntervalLower);
      AddDoubleAttribute(*stats, "confIntervalUpper", row.confIntervalUpper);
    }
  }

  root_.swap(root);  // no throw: the document is complete
  return true;
}

bool TSXStatXMLDocument::Write(std::ostream& os) const {
  os.write(kXMLDeclaration, kXMLDeclarationLength);
  if (!root_) return false;
  ExportFormat format;
  root_->ToStream(os, format, false);
  return true;
}

}  // namespace tsxml
