#include "tsxml/pmml/arima_model.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/pmml/parameter_table.h"

namespace tsxml {

namespace {

// The level of the confidence limits of the table; the document reports no
// limits, but the table computes them.
constexpr double kConfidenceLevel = 0.95;

// The outlier type that has a damping coefficient (transient).
constexpr int32_t kTransientOutlier = 3;

// A "MiningField" of `name`; the consistent form writes the name also when it
// is empty, as the schema requires it.
void AddField(XMLElement& schema, const std::string& name,
              const std::string& usageType, PMMLMode mode) {
  if (mode == PMMLMode::kDefault) {
    AddMiningField(schema, name, usageType);
    return;
  }
  XMLElement* field = AddChildElement(schema, "MiningField");
  field->AddAttribute("name", name);
  AddOptionalAttribute(*field, "usageType", usageType);
}

// "NonseasonFactor" or "SeasonFactor" of one lag polynomial.
void AddFactor(XMLElement& parent, const char* name, const TSXLagFactor& factor,
               PMMLMode mode) {
  XMLElement* element = AddChildElement(parent, name);
  AddIntegerAttribute(*element, "maximumOrder", factor.maximumOrder);
  AddRealArray(*element, factor.coefficients, mode);
}

void AddPredictorEffect(XMLElement& arima, const TSXPredictorEffect& effect,
                        PMMLMode mode) {
  XMLElement* element = AddChildElement(arima, "PredicterEffect");
  AddOptionalAttribute(*element, "field", effect.field);
  AddOptionalAttribute(
      *element, "transformation",
      TransformationName(static_cast<unsigned>(effect.transformation)));
  AddIntegerAttribute(*element, "delay", effect.delay);
  AddIntegerAttribute(*element, "nonSeasonalDiff",
                      effect.numeratorNonSeasonal.difference);
  AddIntegerAttribute(*element, "seasonalDiff",
                      effect.numeratorSeasonal.difference);
  XMLElement* numerator = AddChildElement(*element, "Numerator");
  AddFactor(*numerator, "NonseasonFactor", effect.numeratorNonSeasonal, mode);
  AddFactor(*numerator, "SeasonFactor", effect.numeratorSeasonal, mode);
  XMLElement* denominator = AddChildElement(*element, "Denominator");
  AddFactor(*denominator, "NonseasonFactor", effect.denominatorNonSeasonal,
            mode);
  AddFactor(*denominator, "SeasonFactor", effect.denominatorSeasonal, mode);
}

void AddOutlierEffect(XMLElement& arima, const TSXOutlierRow& row,
                      PMMLMode mode) {
  XMLElement* element = AddChildElement(arima, "OutlierEffect");
  AddOptionalAttribute(*element, "type",
                       OutlierTypeName(static_cast<unsigned>(row.type)));
  AddDoubleAttribute(*element, "startTime", row.startTime, mode);
  AddDoubleAttribute(*element, "magnitude", row.magnitude, mode);
  if (row.type == kTransientOutlier) {
    AddDoubleAttribute(*element, "dampingCoefficient", row.dampingCoefficient,
                       mode);
  }
}

// "NonseasonalComponent" or "SeasonalComponent": AR, then MA, each when it
// has coefficients.
void AddComponentArrays(XMLElement& component, const std::vector<double>& ar,
                        const std::vector<double>& ma, PMMLMode mode) {
  if (!ar.empty()) AddArrayElement(component, "AR", ar, mode);
  if (!ma.empty()) AddArrayElement(component, "MA", ma, mode);
}

// The lower triangle of `omega`, diagonal included, one "Array" per row.
void AddKalmanState(XMLElement& statistics, const TSXParameterTable& table,
                    PMMLMode mode) {
  XMLElement* state = AddChildElement(statistics, "KalmanState");
  const unsigned n = table.finalOmega.NRows();
  if (n > 0) {
    XMLElement* matrix =
        AddChildElement(*AddChildElement(*state, "FinalOmega"), "Matrix");
    AddIntegerAttribute(*matrix, "nbCols", static_cast<int>(n));
    AddIntegerAttribute(*matrix, "nbRows", static_cast<int>(n));
    matrix->AddAttribute("kind", "symmetric");
    std::vector<double> row;
    row.reserve(n);
    for (unsigned i = 0; i < n; ++i) {
      row.clear();
      for (unsigned j = 0; j <= i; ++j) row.push_back(table.finalOmega(i, j));
      AddRealArray(*matrix, row, mode);
    }
  }
  if (table.finalStateVector.size() != 0) {
    AddArrayElement(*state, "FinalStateVector", table.finalStateVector, mode);
  }
}

void AddThetaRecursionState(XMLElement& statistics,
                            const TSXParameterTable& table, PMMLMode mode) {
  XMLElement* state = AddChildElement(statistics, "ThetaRecursionState");
  AddIntegerAttribute(*state, "finalIterationNumber",
                      table.finalIterationNumber);
  if (table.finalNoise.size() != 0) {
    AddArrayElement(*state, "FinalNoise", table.finalNoise, mode);
  }
  if (table.finalPredictedNoise.size() != 0) {
    AddArrayElement(*state, "FinalPredictedNoise", table.finalPredictedNoise,
                    mode);
  }
  if (!table.finalTheta.empty()) {
    XMLElement* theta = AddChildElement(*state, "FinalTheta");
    for (const std::vector<double>& values : table.finalTheta) {
      AddRealArray(*theta, values, mode);
    }
  }
  if (!table.finalNu.empty()) {
    AddArrayElement(*state, "FinalNu", table.finalNu, mode);
  }
}

void AddMaximumLikelihoodStat(XMLElement& arima, const TSXParameterTable& table,
                              PMMLMode mode) {
  XMLElement* statistics = AddChildElement(arima, "MaximumLikelihoodStat");
  const char* method = table.stateMethod == 1   ? "kalman"
                       : table.stateMethod == 2 ? "thetaRecursion"
                                                : "unknown";
  AddOptionalAttribute(*statistics, "method", method);
  AddIntegerAttribute(*statistics, "periodDeficit", table.periodDeficit);

  // The history lists hold only the predictors that have a history; a
  // position past their end has no arrays (see the header).
  for (size_t i = 0; i < table.predictorNames.size(); ++i) {
    XMLElement* predictor = AddChildElement(*statistics, "PredictorState");
    AddOptionalAttribute(*predictor, "field", table.predictorNames[i]);
    if (i < table.finalPredictorValues.size() &&
        table.finalPredictorValues[i].size() != 0) {
      AddArrayElement(*predictor, "FinalPredictorValues",
                      table.finalPredictorValues[i], mode);
    }
    if (i < table.finalTransferFunctionValues.size() &&
        table.finalTransferFunctionValues[i].size() != 0) {
      AddArrayElement(*predictor, "FinalTransferFunctionValues",
                      table.finalTransferFunctionValues[i], mode);
    }
  }
  if (!table.zStateField.empty()) {
    XMLElement* z = AddChildElement(*statistics, "ZState");
    AddOptionalAttribute(*z, "field", table.zStateField);
    if (table.finalZ.size() != 0) {
      AddArrayElement(*z, "FinalZ", table.finalZ, mode);
    }
    if (table.finalPredictedZ.size() != 0) {
      AddArrayElement(*z, "FinalPredictedZ", table.finalPredictedZ, mode);
    }
  }
  if (table.stateMethod == 1) {
    AddKalmanState(*statistics, table, mode);
  } else if (table.stateMethod == 2) {
    AddThetaRecursionState(*statistics, table, mode);
  }
}

void AddARIMA(XMLElement& extension, const TSXParameterTable& table,
              PMMLMode mode) {
  XMLElement* arima = AddChildElement(extension, "ARIMA");
  AddDoubleAttribute(*arima, "RMSE", table.rmse, mode);
  AddOptionalAttribute(
      *arima, "transformation",
      TransformationName(static_cast<unsigned>(table.transformationType)));
  AddDoubleAttribute(*arima, "constantTerm", table.constantTerm, mode);
  AddIntegerAttribute(*arima, "seasonLength", table.seasonLength);

  if (table.maxARLag != 0 || table.maxMALag != 0 ||
      table.nonSeasonalDiff != 0) {
    XMLElement* component = AddChildElement(*arima, "NonseasonalComponent");
    AddIntegerAttribute(*component, "p", table.maxARLag);
    AddIntegerAttribute(*component, "d", table.nonSeasonalDiff);
    AddIntegerAttribute(*component, "q", table.maxMALag);
    AddComponentArrays(*component, table.arCoefficients, table.maCoefficients,
                       mode);
  }
  if (table.maxSeasonalARLag != 0 || table.maxSeasonalMALag != 0 ||
      table.seasonalDiff != 0) {
    XMLElement* component = AddChildElement(*arima, "SeasonalComponent");
    AddIntegerAttribute(*component, "seasonalP", table.maxSeasonalARLag);
    AddIntegerAttribute(*component, "seasonalD", table.seasonalDiff);
    AddIntegerAttribute(*component, "seasonalQ", table.maxSeasonalMALag);
    AddIntegerAttribute(*component, "period", table.seasonLength);
    AddComponentArrays(*component, table.seasonalARCoefficients,
                       table.seasonalMACoefficients, mode);
  }
  for (const TSXPredictorEffect& effect : table.predictorEffects) {
    AddPredictorEffect(*arima, effect, mode);
  }
  for (const TSXOutlierRow& row : table.outlierRows) {
    AddOutlierEffect(*arima, row, mode);
  }
  AddMaximumLikelihoodStat(*arima, table, mode);
}

}  // namespace

XMLElement* BuildARIMAModel(const TSFModel& model,
                            const TSXDictionaryRefs& refs, PMMLMode mode) {
  const TSXParameterTable table(refs.GetDependentVarID(), model,
                                refs.GetPredictorIDs(), kConfidenceLevel);

  std::unique_ptr<XMLElement> element(XMLElement::Create("TimeSeriesModel"));
  element->AddAttribute("modelName", "TS");
  element->AddAttribute("functionName", "timeSeries");
  element->AddAttribute("algorithmName", "ARIMA");
  element->AddAttribute("bestFit", "ARIMA");

  XMLElement* schema = AddChildElement(*element, "MiningSchema");
  AddField(*schema, refs.GetDependentVarID(), "predicted", mode);
  for (const std::string& predictor : refs.GetPredictorIDs()) {
    AddField(*schema, predictor, "", mode);
  }

  AddValueExtension(*element, "positiveParameters", 1.0, mode);
  AddARIMA(*AddContainerExtension(*element, ""), table, mode);
  AddValueExtension(*element, "errVariance", table.errVariance, mode);
  AddValueExtension(*element, "degreesOfFreedom",
                    static_cast<double>(table.degreesOfFreedom), mode);
  AddValueExtension(*element, "periodStartIndex",
                    static_cast<double>(table.periodStartIndex), mode);
  AddValueExtension(*element, "periodLength",
                    static_cast<double>(table.periodLength), mode);
  return element.release();
}

}  // namespace tsxml
