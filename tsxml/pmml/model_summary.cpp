#include "tsxml/pmml/model_summary.h"

#include <cmath>
#include <memory>
#include <utility>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/modelapi/stat_util.h"

namespace tsxml {

namespace {

// The smoothing parameter kinds of a model kind (1 to 7, one above the
// ESModelSpec type), in kind order.
std::vector<int32_t> ParameterKinds(int modelKind) {
  std::vector<int32_t> kinds;
  for (int kind = 0; kind < ESModelSpec::kParameterKindCount; ++kind) {
    if (ESModelSpec::HasParameterKind(modelKind - 1, kind)) {
      kinds.push_back(kind);
    }
  }
  return kinds;
}

// Estimate, standard error, t statistic and two-sided significance.
std::vector<double> ParameterRow(const TSFESModelProp& properties, int kind,
                                 double degreesOfFreedom) {
  const int position = properties.GetWeight(kind);
  const double estimate = properties.GetParameterEstimate(position);
  const double stdError = properties.GetParameterStdError(position);
  double t = MV::gMissingValue;
  if (stdError != 0.0 && !MV::IsMissing(stdError)) t = estimate / stdError;
  double significance = MV::gMissingValue;
  if (!MV::IsMissing(t)) {
    const double c = TSStatUtil::CDFStudentsT(-std::fabs(t), degreesOfFreedom);
    if (!MV::IsMissing(c)) significance = c * 2.0;
  }
  return {estimate, stdError, t, significance};
}

}  // namespace

void TSXModelSummary::Fill(const TSFModel& fitted,
                           const TSXDictionaryRefs& refs,
                           std::valarray<double> observed) {
  modelName = refs.GetModelName();
  modelDescriptor = refs.GetModelDescriptor();
  dependentVarID = refs.GetDependentVarID();
  if (fitted.IsEmpty()) return;
  model = fitted;

  mse = fitted.GetGOFStat("MSE");
  rmse = fitted.GetGOFStat("RMSE");
  mape = fitted.GetGOFStat("MAPE");
  mae = fitted.GetGOFStat("MAE");
  maxAPE = fitted.GetGOFStat("MAXAPE");
  maxAE = fitted.GetGOFStat("MAXAE");
  rSquared = fitted.GetGOFStat("RSQ");
  normalizedBIC = fitted.GetGOFStat("NRMBIC");
  logLikelihood = fitted.GetGOFStat("LOGLK");
  stationaryRSquared = fitted.GetGOFStat("SRSQ");
  aic = fitted.GetGOFStat("AIC");
  bic = fitted.GetGOFStat("BIC");

  const TSFModel::LBStat lb = fitted.GetLBStat();
  ljungBoxQ = lb.q;
  ljungBoxCount = static_cast<double>(lb.lags);
  ljungBoxSig = lb.significance;

  history = std::move(observed);
  FillESParameters(fitted);
}

void TSXModelSummary::FillESParameters(const TSFModel& fitted) {
  esParameterRows.clear();
  const std::unique_ptr<TSFModelProp> properties(fitted.GetModelProperties());
  const int kind = properties->GetModelKind();
  if (kind == 0) return;  // ARIMA
  const double df = static_cast<double>(fitted.GetDegreesOfFreedom());
  const auto* es = dynamic_cast<const TSFESModelProp*>(properties.get());
  esParameterKinds = ParameterKinds(kind);
  if (es == nullptr) esParameterKinds.clear();
  for (const int32_t parameterKind : esParameterKinds) {
    esParameterRows.push_back(ParameterRow(*es, parameterKind, df));
  }
}

}  // namespace tsxml
