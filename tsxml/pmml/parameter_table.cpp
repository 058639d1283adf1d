#include "tsxml/pmml/parameter_table.h"

#include <cmath>
#include <memory>
#include <utility>

#include "tsxml/modelapi/arima_spec.h"
#include "tsxml/modelapi/arima_state.h"
#include "tsxml/modelapi/autocorrelation.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/modelapi/outlier_spec.h"
#include "tsxml/stats/distributions.h"

namespace tsxml {

namespace {

// The low 32 bits of `value`, as a signed number.
template <typename Integer>
int32_t CutToInt32(Integer value) {
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

// -x, except that the missing value stays missing.
double Negated(double x) { return MV::IsMissing(x) ? x : -x; }

// values[position], or missing past the end.
double At(const std::valarray<double>& values, uint64_t position) {
  return position < values.size() ? values[static_cast<size_t>(position)]
                                  : MV::gMissingValue;
}

// The smoothing parameters (0 alpha, 1 gamma, 2 delta, 3 phi) of a model
// kind, in row order; empty for a kind outside 1 to 7.
std::vector<int> SmoothingParameters(int modelKind) {
  switch (modelKind) {
    case 1:  // additive Winters
    case 5:  // multiplicative Winters
      return {0, 1, 2};
    case 2:  // Brown
    case 7:  // simple
      return {0};
    case 3:  // damped trend
      return {0, 1, 3};
    case 4:  // Holt
      return {0, 1};
    case 6:  // simple seasonal
      return {0, 2};
    default:
      return {};
  }
}

const char* const kSmoothingParameterNames[] = {"alpha", "gamma", "delta",
                                                "phi"};

// The terms of one ARMA factor: the labels' stem ("AR Lag ") and where the
// coefficients go.
struct ARMATerms {
  const AMPowers* powers;
  const char* label;
  std::vector<double>* coefficients;
};

}  // namespace

TSXParameterTable::TSXParameterTable(std::string target, TSFModel model,
                                     std::vector<std::string> predictors,
                                     double level)
    : confidenceLevel(level),
      targetName(std::move(target)),
      predictorNames(std::move(predictors)) {
  FillFromModel(model);
}

void TSXParameterTable::FillFromModel(const TSFModel& model) {
  const TSFModelImp* imp = model.GetImp();
  if (imp == nullptr) return;

  mse = model.GetGOFStat("MSE");
  rmse = model.GetGOFStat("RMSE");
  rmspe = model.GetGOFStat("RMSPE");
  mape = model.GetGOFStat("MAPE");
  maxAPE = model.GetGOFStat("MAXAPE");
  mae = model.GetGOFStat("MAE");
  maxAE = model.GetGOFStat("MAXAE");
  aic = model.GetGOFStat("AIC");
  bic = model.GetGOFStat("BIC");
  rSquared = model.GetGOFStat("RSQ");
  stationaryRSquared = model.GetGOFStat("SRSQ");
  degreesOfFreedom = CutToInt32(model.GetDegreesOfFreedom());

  const std::unique_ptr<TSFModelProp> properties(model.GetModelProperties());
  const EstimationInfo& info = imp->GetEstimationInfo();
  double q = MV::gMissingValue, sig = MV::gMissingValue;
  uint64_t count = 0, df = 0;
  info.GetLBStat(q, count, df, sig);
  ljungBoxQ = q;
  ljungBoxSig = sig;
  ljungBoxDf = static_cast<double>(df);
  if (properties) {
    transformationType =
        CutToInt32(properties->GetYTransformation().GetFunctionType());
    const int kind = properties->GetModelKind();
    if (kind != 0) {
      isExponentialSmoothing = true;
      AddESRows(*properties, kind);
    } else {
      isExponentialSmoothing = false;
      FillARIMA(model);
    }
  }

  errVariance = info.GetErrorVariance();
  degreesOfFreedom = CutToInt32(info.GetDegreesOfFreedom());
  const TSSpan span = model.GetSpan();
  periodStartIndex = CutToInt32(span.Begin());
  periodLength = CutToInt32(span.Length());
}

void TSXParameterTable::AddESRows(const TSFModelProp& properties,
                                  int modelKind) {
  const auto* smoothing = dynamic_cast<const TSFESModelProp*>(&properties);
  if (smoothing == nullptr) return;
  for (int type : SmoothingParameters(modelKind)) {
    const int position = smoothing->GetWeight(type);
    AddRow(kSmoothingParameterNames[type],
           smoothing->GetParameterEstimate(position),
           smoothing->GetParameterStdError(position));
  }
}

void TSXParameterTable::FillARIMA(const TSFModel& model) {
  const auto* state = dynamic_cast<const ARMAForecastState*>(
      model.GetImp()->GetForecastState());
  if (state == nullptr) return;
  const AMModelSpec& spec = state->GetAMModelSpec();
  const std::valarray<double>& estimates = state->GetParameters();
  const std::valarray<double>& stdErrors = state->GetParameterStdErrors();
  const uint64_t total = spec.GetParameterCount(true);
  seasonLength = CutToInt32(spec.GetSeasonLength(true));
  unsigned nonSeasonal = 0, seasonal = 0;
  spec.GetYDiff(nonSeasonal, seasonal);
  nonSeasonalDiff = CutToInt32(nonSeasonal);
  seasonalDiff = CutToInt32(seasonal);
  const std::string prefix = targetName + " ";
  const bool stdErrorsComplete = stdErrors.size() >= total;
  const auto stdErrorAt = [&](uint64_t position) {
    return stdErrorsComplete ? At(stdErrors, position) : MV::gMissingValue;
  };

  bool present = false;
  const unsigned meanPosition = spec.GetMeanYPresent(present);
  if (present && estimates.size() >= total && meanPosition < estimates.size()) {
    constantTerm = estimates[meanPosition];
    AddRow(prefix + "Constant", constantTerm, stdErrorAt(meanPosition));
  }

  // AR, then MA; each non-seasonal, then seasonal.
  for (int block = 0; block < 2; ++block) {
    const bool ar = block == 0;
    const AMPowers* powers[2] = {nullptr, nullptr};
    const uint64_t start = ar ? spec.GetARStruct(powers[0], powers[1])
                              : spec.GetMAStruct(powers[0], powers[1]);
    (ar ? maxARLag : maxMALag) = CutToInt32(powers[0]->MaxPower());
    (ar ? maxSeasonalARLag : maxSeasonalMALag) =
        CutToInt32(powers[1]->MaxPower());
    const bool complete =
        start + powers[0]->PowerCount() + powers[1]->PowerCount() <=
        estimates.size();
    const ARMATerms terms[2] = {
        {powers[0], ar ? "AR Lag " : "MA Lag ",
         ar ? &arCoefficients : &maCoefficients},
        {powers[1], ar ? "AR, Seasonal Lag " : "MA, Seasonal Lag ",
         ar ? &seasonalARCoefficients : &seasonalMACoefficients}};
    uint64_t position = start;
    for (const ARMATerms& factor : terms) {
      if (factor.powers->PowerCount() == 0) continue;
      factor.coefficients->assign(factor.powers->MaxPower(), 0.0);
      for (unsigned lag : factor.powers->PowerList()) {
        const double estimate =
            complete ? Negated(At(estimates, position)) : MV::gMissingValue;
        (*factor.coefficients)[lag - 1] = estimate;
        if (complete) {
          AddRow(prefix + factor.label + std::to_string(lag), estimate,
                 stdErrorAt(position));
        }
        ++position;
      }
    }
  }

  const unsigned predictorCount = spec.GetXCount();
  predictorNames.resize(predictorCount);
  predictorEffects.reserve(predictorCount);
  for (unsigned i = 0; i < predictorCount; ++i) {
    TSXPredictorEffect effect;
    effect.field = predictorNames[i];
    effect.transformation = CutToInt32(spec.GetXTransformSpec(i).function);
    unsigned diff = 0, seasonalXDiff = 0, delay = 0;
    spec.GetXDiffNDelay(i, diff, seasonalXDiff, delay);
    effect.delay = CutToInt32(delay);

    const AMPowers* numerator[2] = {nullptr, nullptr};
    spec.GetXNumerator(i, numerator[0], numerator[1]);
    AddTransferFunction(effect.field, *numerator[0], *numerator[1], true,
                        spec.GetXRegressionCoeff(i), estimates, stdErrors,
                        effect.numeratorNonSeasonal, effect.numeratorSeasonal);
    const AMPowers* denominator[2] = {nullptr, nullptr};
    const uint64_t denominatorStart =
        spec.GetXDenominator(i, denominator[0], denominator[1]);
    AddTransferFunction(effect.field, *denominator[0], *denominator[1], false,
                        denominatorStart, estimates, stdErrors,
                        effect.denominatorNonSeasonal,
                        effect.denominatorSeasonal);
    for (TSXLagFactor* factor :
         {&effect.numeratorNonSeasonal, &effect.denominatorNonSeasonal}) {
      factor->difference = CutToInt32(diff);
    }
    for (TSXLagFactor* factor :
         {&effect.numeratorSeasonal, &effect.denominatorSeasonal}) {
      factor->difference = CutToInt32(seasonalXDiff);
    }
    predictorEffects.push_back(std::move(effect));
  }

  AddOutlierRows(model);

  periodDeficit = CutToInt32(state->GetStateSpan().Horizon());
  const auto* kalman = dynamic_cast<const ARMAMLForecastState*>(state);
  stateMethod = kalman ? 1 : 2;
  for (unsigned i = 0; i < predictorCount; ++i) {
    const std::valarray<double>* predictor = nullptr;
    const std::valarray<double>* transfer = nullptr;
    state->GetXHistory(i, predictor, transfer);
    if (predictor == nullptr) continue;
    finalPredictorValues.push_back(*predictor);
    finalTransferFunctionValues.push_back(transfer ? *transfer
                                                   : std::valarray<double>());
  }
  // The state's series are copied, then swapped in (ReplaceValues), and so is
  // the matrix moved in: a valarray's copy assignment that fails to allocate
  // leaves the valarray broken, with a size and no storage, or with freed
  // storage.
  ReplaceValues(finalZ, state->GetActualZ());
  ReplaceValues(finalPredictedZ, state->GetPredZ());
  if (finalZ.size() > 0 && finalPredictedZ.size() > 0) zStateField = targetName;
  if (kalman) {
    finalOmega = DSymMat(kalman->GetFinalOmega());
    ReplaceValues(finalStateVector, kalman->GetFinalStateV());
  } else if (const auto* cls =
                 dynamic_cast<const ARMACLSForecastState*>(state)) {
    ReplaceValues(finalNoise, cls->GetActualN());
    ReplaceValues(finalPredictedNoise, cls->GetPredN());
  } else if (const auto* theta =
                 dynamic_cast<const ARMAMLSpForecastState*>(state)) {
    ReplaceValues(finalNoise, theta->GetActualN());
    ReplaceValues(finalPredictedNoise, theta->GetPredN());
    finalTheta = theta->GetFinalThetas();
    finalNu = theta->GetFinalNu();
    finalIterationNumber = CutToInt32(theta->GetFinalIterCount());
  }
}

void TSXParameterTable::AddTransferFunction(
    const std::string& name, const AMPowers& nonSeasonal,
    const AMPowers& seasonal, bool numerator, uint64_t start,
    const std::valarray<double>& estimates,
    const std::valarray<double>& stdErrors, TSXLagFactor& nonSeasonalFactor,
    TSXLagFactor& seasonalFactor) {
  const std::vector<unsigned>& lags = nonSeasonal.PowerList();
  const uint64_t e = numerator ? 1 : 0;
  const uint64_t total =
      start + nonSeasonal.PowerCount() + seasonal.PowerCount() + e;
  const bool estimatesUsable = total <= estimates.size();
  const bool stdErrorsUsable = estimatesUsable && total <= stdErrors.size();
  const auto add = [&](TSXLagFactor& factor, size_t index, bool negate,
                       uint64_t position, const std::string& label) {
    double estimate = MV::gMissingValue;
    if (estimatesUsable) {
      estimate = estimates[static_cast<size_t>(position)];
      if (negate) estimate = Negated(estimate);
    }
    factor.coefficients[index] = estimate;
    if (estimatesUsable) {
      AddRow(name + " " + label, estimate,
             stdErrorsUsable ? stdErrors[static_cast<size_t>(position)]
                             : MV::gMissingValue);
    }
  };

  uint64_t position = start;
  if (numerator || !lags.empty()) {
    const size_t length = (lags.empty() ? 0 : lags.back()) + e;
    nonSeasonalFactor.coefficients.assign(length, 0.0);
    nonSeasonalFactor.maximumOrder = CutToInt32(length);
    if (numerator) {
      add(nonSeasonalFactor, 0, false, position++, "Numerator Lag 0");
    }
    for (unsigned lag : lags) {
      const size_t index = numerator ? lag : lag - 1;
      add(nonSeasonalFactor, index, true, position++,
          (numerator ? "Numerator Lag " : "Denominator Lag ") +
              std::to_string(lag));
    }
  }
  if (seasonal.PowerCount() > 0) {
    seasonalFactor.coefficients.assign(seasonal.MaxPower(), 0.0);
    seasonalFactor.maximumOrder = CutToInt32(seasonal.MaxPower());
    for (unsigned lag : seasonal.PowerList()) {
      add(seasonalFactor, lag - 1, true, position++,
          (numerator ? "Numerator, Seasonal Lag "
                     : "Denominator, Seasonal Lag ") +
              std::to_string(lag));
    }
  }
}

void TSXParameterTable::AddOutlierRows(const TSFModel& model) {
  const auto* state = dynamic_cast<const ARMAForecastState*>(
      model.GetImp()->GetForecastState());
  if (state == nullptr) return;
  const AMModelSpec& spec = state->GetAMModelSpec();
  const std::valarray<double>& estimates = state->GetParameters();
  const std::valarray<double>& stdErrors = state->GetParameterStdErrors();
  const TSOutlierSpecList outliers = spec.GetOutliers();
  const unsigned count = outliers.GetOutlierSpecCount(false);
  for (unsigned i = 0; i < count; ++i) {
    const TSOutlierSpec outlier = outliers.GetOutlierSpec(i);
    if (outlier.type == TSOutlierSpec::None) continue;
    const uint64_t position = uint64_t{spec.GetOutlierParmIndex()} +
                              outliers.ParameterVectorIndex(i, 0);
    TSXOutlierRow row;
    row.type = CutToInt32(outlier.type);
    row.startTime = static_cast<double>(outlier.startIndex);
    const unsigned parameters = outlier.GetParameterCount();
    if (position + parameters <= estimates.size()) {
      for (unsigned j = 0; j < parameters && j < 2; ++j) {
        const double estimate = estimates[static_cast<size_t>(position + j)];
        const double stdError = At(stdErrors, position + j);
        double t = MV::gMissingValue, sig = MV::gMissingValue;
        TStatistic(estimate, stdError, t, sig);
        if (j == 0) {
          row.magnitude = estimate;
          row.magnitudeStdError = stdError;
          row.magnitudeTTest = t;
          row.magnitudeSig = sig;
        } else {
          row.dampingCoefficient = estimate;
          row.dampingStdError = stdError;
          row.dampingTTest = t;
          row.dampingSig = sig;
        }
      }
    }
    outlierRows.push_back(row);
  }
}

void TSXParameterTable::AddRow(std::string name, double estimate,
                               double stdError) {
  TSXParameterRow row;
  row.paramName = std::move(name);
  FillRowStatistics(estimate, stdError, row);
  rows.push_back(std::move(row));
}

void TSXParameterTable::FillRowStatistics(double estimate, double stdError,
                                          TSXParameterRow& row) const {
  row.estimate = estimate;
  row.stdError = stdError;
  if (MV::IsMissing(stdError) || MV::IsMissing(estimate)) return;
  TStatistic(estimate, stdError, row.tTest, row.sig);
  int status = 0;
  const double q =
      TSXStudentTQuantile(confidenceLevel * 0.5 + 0.5,
                          static_cast<double>(degreesOfFreedom), status);
  if (status != 0) return;
  const double half = q * stdError;
  row.confIntervalLower = estimate - half;
  row.confIntervalUpper = half + estimate;
}

void TSXParameterTable::TStatistic(double estimate, double stdError, double& t,
                                   double& sig) const {
  t = MV::gMissingValue;
  sig = MV::gMissingValue;
  if (MV::IsMissing(estimate) || MV::IsMissing(stdError) || stdError == 0.0) {
    return;
  }
  t = estimate / stdError;
  int status = 0;
  const double f = TSXStudentTCDF(
      std::fabs(t), static_cast<double>(degreesOfFreedom), status);
  if (status == 0) sig = (1.0 - f) + (1.0 - f);
}

void TSXParameterTable::ComputeResidualCorrelations(
    const std::valarray<double>& residuals, const TSFModel& model,
    int lagCount) {
  unsigned k = 1;
  if (!model.IsEmpty()) {
    const std::unique_ptr<TSFModelProp> properties(model.GetModelProperties());
    if (properties) k = properties->GetSeasonLength(true);
  }
  const TSSpan span(0, residuals.size(), 0);
  TSAutocorrelation::ComputeACF(span, TSTransformation(), k, lagCount,
                                residuals, acf, acfStdErr);
  FillZeroCentredBounds(acf, acfStdErr, acfLower, acfUpper, confidenceLevel);
  double pacfError = 0.0;
  TSAutocorrelation::ComputePACF(span, TSTransformation(), k, lagCount,
                                 residuals, pacf, pacfError);
  pacfStdErr = std::valarray<double>(pacfError, pacf.size());
  FillZeroCentredBounds(pacf, pacfStdErr, pacfLower, pacfUpper,
                        confidenceLevel);
}

void FillZeroCentredBounds(const std::valarray<double>& values,
                           const std::valarray<double>& stdErrs,
                           std::vector<double>& lower,
                           std::vector<double>& upper, double level) {
  const double p = 1.0 - (1.0 - level) * 0.5;
  double z = MV::gMissingValue;
  if (p == 0.5) {
    z = 0.0;
  } else if (p > 0.0 && p < 1.0) {
    z = TSXNormalQuantile(p);
  }
  lower.assign(values.size(), 0.0);
  upper.assign(values.size(), 0.0);
  for (size_t i = 0; i < values.size(); ++i) {
    const double stdErr = i < stdErrs.size() ? stdErrs[i] : MV::gMissingValue;
    if (MV::IsMissing(stdErr) || MV::IsMissing(z)) {
      lower[i] = MV::gMissingValue;
      upper[i] = MV::gMissingValue;
      continue;
    }
    upper[i] = stdErr * z;
    lower[i] = -upper[i];
  }
}

}  // namespace tsxml
