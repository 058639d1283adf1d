// TSXModelSummary: the record that the PMML document keeps of the model added
// last: its names, fit statistics, Ljung-Box statistic and, for exponential
// smoothing, one row per smoothing parameter.
#ifndef TSXML_PMML_MODEL_SUMMARY_H
#define TSXML_PMML_MODEL_SUMMARY_H

#include <cstdint>
#include <string>
#include <valarray>
#include <vector>

#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/model.h"

class TSXDictionaryRefs;

namespace tsxml {

// A plain record: readers use the fields directly. Statistics the model
// cannot give are stored as the missing value; before the first Fill every
// statistic is missing.
struct TSXModelSummary {
  // Positions in a row of esParameterRows.
  enum ParameterColumn : size_t {
    kEstimate = 0,
    kStdError = 1,
    kTStatistic = 2,
    kSignificance = 3,
    kParameterColumnCount = 4,
  };

  // Copies the names of `refs`; for a model that is not empty also the
  // model, its statistics, `observed` and the parameter rows. An empty model
  // leaves every other field as it was.
  void Fill(const TSFModel& fitted, const TSXDictionaryRefs& refs,
            std::valarray<double> observed);

  // Sets esParameterKinds (0 alpha, 1 gamma, 2 delta, 3 phi) and one row of
  // estimate, standard error, t statistic and two-sided significance per
  // kind. An ARIMA model clears the rows and keeps the kinds; a kind outside
  // 1 to 7 leaves both empty.
  void FillESParameters(const TSFModel& fitted);

  double mse = MV::gMissingValue;
  double rmse = MV::gMissingValue;
  double mape = MV::gMissingValue;
  double mae = MV::gMissingValue;
  double maxAPE = MV::gMissingValue;
  double maxAE = MV::gMissingValue;
  double rSquared = MV::gMissingValue;
  double normalizedBIC = MV::gMissingValue;
  double logLikelihood = MV::gMissingValue;
  double ljungBoxQ = MV::gMissingValue;
  double ljungBoxCount = MV::gMissingValue;
  double ljungBoxSig = MV::gMissingValue;
  double stationaryRSquared = MV::gMissingValue;
  double aic = MV::gMissingValue;
  double bic = MV::gMissingValue;
  std::vector<int32_t> esParameterKinds;
  std::vector<std::vector<double>> esParameterRows;
  TSFModel model;
  std::valarray<double> history;
  std::string modelName;
  std::string modelDescriptor;
  std::string dependentVarID;
};

}  // namespace tsxml

#endif  // TSXML_PMML_MODEL_SUMMARY_H
