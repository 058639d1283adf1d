// TSXParameterTable: one fitted model analysed once for the documents that
// report its estimates. Each estimate becomes a labelled row with t
// statistic, significance and confidence limits; the ARIMA structure,
// transfer functions, outliers and final state are laid out densely by lag;
// on request the residual correlations come with zero-centred bounds.
#ifndef TSXML_PMML_PARAMETER_TABLE_H
#define TSXML_PMML_PARAMETER_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <valarray>
#include <vector>

#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/model.h"
#include "tsxml/modelapi/sym_matrix.h"

class AMPowers;

namespace tsxml {

// One estimated parameter. A statistic that cannot be computed is missing.
struct TSXParameterRow {
  std::string paramName;
  double estimate = MV::gMissingValue;
  double stdError = MV::gMissingValue;
  double sig = MV::gMissingValue;
  double tTest = MV::gMissingValue;
  double confIntervalLower = MV::gMissingValue;
  double confIntervalUpper = MV::gMissingValue;
};

// One lag polynomial of a transfer function: coefficients dense by lag
// (0.0 where there is no term, missing where the estimate is not there).
struct TSXLagFactor {
  int32_t difference = 0;
  int32_t maximumOrder = 0;  // the number of coefficients
  std::vector<double> coefficients;
};

// One predictor's transfer function.
struct TSXPredictorEffect {
  TSXLagFactor numeratorNonSeasonal;
  TSXLagFactor numeratorSeasonal;
  TSXLagFactor denominatorNonSeasonal;
  TSXLagFactor denominatorSeasonal;
  std::string field;
  int32_t transformation = 0;
  int32_t delay = 0;
};

// One outlier of an ARIMA model (never of type 0). The damping fields are
// read for a transient (type 3) only. Fields stay 0.0 when the parameter
// vector is too short to hold the outlier's parameters.
struct TSXOutlierRow {
  int32_t type = 0;
  double startTime = 0.0;
  double magnitude = 0.0;
  double dampingCoefficient = 0.0;
  double magnitudeStdError = 0.0;
  double magnitudeTTest = 0.0;
  double magnitudeSig = 0.0;
  double dampingStdError = 0.0;
  double dampingTTest = 0.0;
  double dampingSig = 0.0;
};

// The constructor runs the whole analysis; the table keeps no reference to
// the model. Readers use the fields directly. Nothing is reported: what
// cannot be computed stays missing, or 0.0 and empty as initialised, and an
// empty model handle leaves every field as initialised. An estimate vector
// too short for a block of terms drops that block's rows and leaves missing
// at its coefficients; a standard error vector shorter than the parameter
// count leaves the rows' standard errors missing.
//
// Choices of this implementation:
// - A standard error of 0 leaves t and significance missing; the confidence
//   limits both equal the estimate.
// - An estimate that is itself missing stays missing when negated, and leaves
//   its row's statistics missing.
// - An outlier whose standard error is missing or past the end of the
//   standard error vector has missing standard error, t and significance.
// - An outlier with more than two parameters reports its first two; the
//   damping fields hold the second.
// - A confidence level at or beyond +-1 leaves the correlation bounds
//   missing.
class TSXParameterTable {
 public:
  // Analyses `model` for `targetName`, the name of the dependent variable,
  // and `predictorNames`, in predictor order; `confidenceLevel` is a fraction
  // (0.95).
  TSXParameterTable(std::string targetName, TSFModel model,
                    std::vector<std::string> predictorNames,
                    double confidenceLevel);
  TSXParameterTable(const TSXParameterTable&) = delete;
  TSXParameterTable& operator=(const TSXParameterTable&) = delete;

  // Computes acf, pacf, their standard errors and their bounds at lags 1 to
  // `lagCount` from `residuals` (see TSAutocorrelation). Call at most once.
  void ComputeResidualCorrelations(const std::valarray<double>& residuals,
                                   const TSFModel& model, int lagCount);

  size_t GetRowCount() const { return rows.size(); }
  // The row at `position`; null past the end.
  const TSXParameterRow* GetRow(size_t position) const {
    return position < rows.size() ? &rows[position] : nullptr;
  }

  double confidenceLevel;
  bool isExponentialSmoothing = true;
  std::string targetName;
  std::vector<std::string> predictorNames;
  int32_t seasonLength = 0;
  double rmse = MV::gMissingValue;
  int32_t transformationType = 0;
  double errVariance = MV::gMissingValue;
  int32_t degreesOfFreedom = -1;
  int32_t periodStartIndex = -1;
  int32_t periodLength = -1;
  double constantTerm = 0.0;
  int32_t nonSeasonalDiff = 0;
  std::vector<double> arCoefficients;  // dense, lag L at L - 1
  std::vector<double> maCoefficients;
  int32_t maxARLag = 0;
  int32_t maxMALag = 0;
  int32_t seasonalDiff = 0;
  std::vector<double> seasonalARCoefficients;  // lags in seasons
  std::vector<double> seasonalMACoefficients;
  int32_t maxSeasonalARLag = 0;
  int32_t maxSeasonalMALag = 0;
  std::vector<TSXPredictorEffect> predictorEffects;
  std::vector<TSXOutlierRow> outlierRows;
  int32_t periodDeficit = 0;
  int32_t stateMethod = 0;  // 1 Kalman state, 2 theta recursion state
  std::vector<std::valarray<double>> finalPredictorValues;
  std::vector<std::valarray<double>> finalTransferFunctionValues;
  std::string zStateField;
  std::valarray<double> finalZ;
  std::valarray<double> finalPredictedZ;
  DSymMat finalOmega;
  std::valarray<double> finalStateVector;
  int32_t finalIterationNumber = 0;
  std::valarray<double> finalNoise;
  std::valarray<double> finalPredictedNoise;
  std::vector<std::vector<double>> finalTheta;
  std::vector<double> finalNu;
  double mse = MV::gMissingValue;
  double rmspe = MV::gMissingValue;
  double mape = MV::gMissingValue;
  double maxAPE = MV::gMissingValue;
  double mae = MV::gMissingValue;
  double maxAE = MV::gMissingValue;
  double bic = MV::gMissingValue;
  double aic = MV::gMissingValue;
  double rSquared = MV::gMissingValue;
  double stationaryRSquared = MV::gMissingValue;
  std::valarray<double> acf;
  std::valarray<double> acfStdErr;
  std::vector<double> acfLower;
  std::vector<double> acfUpper;
  std::valarray<double> pacf;
  std::valarray<double> pacfStdErr;
  std::vector<double> pacfLower;
  std::vector<double> pacfUpper;
  double ljungBoxQ = MV::gMissingValue;
  double ljungBoxSig = MV::gMissingValue;
  double ljungBoxDf = MV::gMissingValue;
  std::vector<TSXParameterRow> rows;

 private:
  void FillFromModel(const TSFModel& model);
  void AddESRows(const TSFModelProp& properties, int modelKind);
  // The ARIMA part: rows, structure, predictors, outliers and state.
  void FillARIMA(const TSFModel& model);
  // Lays out one transfer function factor pair and adds its rows; `start` is
  // the position of its first term. The non-seasonal factor of a numerator
  // begins with the regression coefficient, at lag 0 and with its own sign.
  void AddTransferFunction(const std::string& name, const AMPowers& nonSeasonal,
                           const AMPowers& seasonal, bool numerator,
                           uint64_t start,
                           const std::valarray<double>& estimates,
                           const std::valarray<double>& stdErrors,
                           TSXLagFactor& nonSeasonalFactor,
                           TSXLagFactor& seasonalFactor);
  void AddOutlierRows(const TSFModel& model);
  // A row for `estimate` and `stdError`, labelled `name`, appended to rows.
  void AddRow(std::string name, double estimate, double stdError);
  void FillRowStatistics(double estimate, double stdError,
                         TSXParameterRow& row) const;
  // t = estimate / stdError and its two-sided significance; both missing
  // when the standard error is 0 or missing or the estimate missing.
  void TStatistic(double estimate, double stdError, double& t,
                  double& sig) const;
};

// Bounds of +-z * stdErr at each index of `values`, with z the normal
// quantile of `level` (two-sided); missing where the standard error is
// missing or past the end of `stdErrs`, or when z is not defined. `lower`
// and `upper` are sized to `values`.
void FillZeroCentredBounds(const std::valarray<double>& values,
                           const std::valarray<double>& stdErrs,
                           std::vector<double>& lower,
                           std::vector<double>& upper, double level);

}  // namespace tsxml

#endif  // TSXML_PMML_PARAMETER_TABLE_H
