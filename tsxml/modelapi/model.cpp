#include "tsxml/modelapi/model.h"

#include "tsxml/modelapi/arima_state.h"

TSFModelImp::TSFModelImp(std::unique_ptr<ForecastState> state,
                         const EstimationInfo& info,
                         const std::valarray<double>& history)
    : state_(std::move(state)), info_(info), history_(history) {}

TSFModelImp::~TSFModelImp() = default;

TSFModelProp::~TSFModelProp() = default;

unsigned TSFModelProp::GetSeasonLength(bool) const { return seasonLength_; }

TSFESModelProp::TSFESModelProp(const ESModelSpec& spec,
                               const std::valarray<double>& estimates,
                               const std::valarray<double>& stdErrors)
    : TSFModelProp(spec.GetESModelType() + 1, spec.GetSeasonLength(true),
                   TSTransformation(spec.GetYTransformSpec().function)),
      spec_(spec),
      estimates_(estimates),
      stdErrors_(stdErrors) {}

int TSFESModelProp::GetWeight(int type) const {
  return spec_.GetESParameterIndex(type);
}

namespace {
double At(const std::valarray<double>& values, int position) {
  return position >= 0 && static_cast<size_t>(position) < values.size()
             ? values[static_cast<size_t>(position)]
             : MV::gMissingValue;
}
}  // namespace

double TSFESModelProp::GetParameterEstimate(int position) const {
  return At(estimates_, position);
}

double TSFESModelProp::GetParameterStdError(int position) const {
  return At(stdErrors_, position);
}

unsigned TSFModel::GetPredictorCount() const {
  const auto* arima =
      dynamic_cast<const ARMAForecastState*>(GetImp()->GetForecastState());
  return arima ? arima->GetAMModelSpec().GetXCount() : 0;
}

uint64_t TSFModel::GetDegreesOfFreedom() const {
  return GetImp()->GetEstimationInfo().GetDegreesOfFreedom();
}

TSSpan TSFModel::GetSpan() const {
  return GetImp()->GetEstimationInfo().GetSpan();
}

double TSFModel::GetGOFStat(const std::string& key) const {
  static constexpr struct {
    const char* key;
    BFSharedConst::GOFStatType type;
  } kKeys[] = {
      {"MSE", BFSharedConst::MSE},       {"RMSE", BFSharedConst::RMSE},
      {"RMSPE", BFSharedConst::RMSPE},   {"MAPE", BFSharedConst::MAPE},
      {"MAE", BFSharedConst::MAE},       {"MAXAPE", BFSharedConst::MAXAPE},
      {"MAXAE", BFSharedConst::MAXAE},   {"RSQ", BFSharedConst::RSQ},
      {"NRMBIC", BFSharedConst::NRMBIC}, {"LOGLK", BFSharedConst::LOGLK},
      {"SRSQ", BFSharedConst::SRSQ},     {"AIC", BFSharedConst::AIC},
      {"BIC", BFSharedConst::BIC},
  };
  for (const auto& entry : kKeys) {
    if (key == entry.key) {
      return GetImp()->GetEstimationInfo().GetGOFStat(entry.type);
    }
  }
  return MV::gMissingValue;
}

TSFModel::LBStat TSFModel::GetLBStat() const {
  LBStat stat;
  GetImp()->GetEstimationInfo().GetLBStat(
      stat.q, stat.lags, stat.degreesOfFreedom, stat.significance);
  return stat;
}

TSFModelProp* TSFModel::GetModelProperties() const {
  const ForecastState* state = GetImp()->GetForecastState();
  if (const auto* es = dynamic_cast<const ESForecastState*>(state)) {
    return new TSFESModelProp(es->GetESModelSpec(), es->GetParameters(),
                              es->GetParameterStdErrors());
  }
  if (const auto* arima = dynamic_cast<const ARMAForecastState*>(state)) {
    const AMModelSpec& spec = arima->GetAMModelSpec();
    return new TSFModelProp(
        0, spec.GetSeasonLength(true),
        TSTransformation(spec.GetYTransformSpec().function));
  }
  return new TSFModelProp(0, 1, TSTransformation());
}
