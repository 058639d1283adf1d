// Fitted models: TSFModel, a counted handle on a TSFModelImp that holds the
// forecast state, the estimation information and the observed series; and
// the model properties that a handle reports.
#ifndef TSXML_MODELAPI_MODEL_H
#define TSXML_MODELAPI_MODEL_H

#include <cstdint>
#include <memory>
#include <string>
#include <valarray>

#include "tsxml/base/export.h"
#include "tsxml/modelapi/estimation_info.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/modelapi/ref_counted.h"
#include "tsxml/modelapi/transform.h"

// The fitted model behind a TSFModel handle. Owns its state.
class TSXML_API TSFModelImp : public TSRCObject {
 public:
  // `state` must not be null.
  TSFModelImp(std::unique_ptr<ForecastState> state, const EstimationInfo& info,
              const std::valarray<double>& history = {});
  ~TSFModelImp() override;

  const ForecastState* GetForecastState() const { return state_.get(); }
  const EstimationInfo& GetEstimationInfo() const { return info_; }
  const std::valarray<double>& GetHistoryData() const { return history_; }

 private:
  std::unique_ptr<ForecastState> state_;
  EstimationInfo info_;
  std::valarray<double> history_;
};

// Properties of a fitted model. Kind 0 is ARIMA, 1 to 7 exponential
// smoothing (one above the ESModelSpec type).
class TSXML_API TSFModelProp {
 public:
  TSFModelProp(int kind, unsigned seasonLength,
               const TSTransformation& yTransformation)
      : kind_(kind),
        seasonLength_(seasonLength),
        yTransformation_(yTransformation) {}
  virtual ~TSFModelProp();

  virtual int GetModelKind() const { return kind_; }
  // `effective` as in TSModelSpec::GetSeasonLength.
  virtual unsigned GetSeasonLength(bool effective) const;
  virtual TSTransformation GetYTransformation() const {
    return yTransformation_;
  }

 private:
  int kind_;
  unsigned seasonLength_;
  TSTransformation yTransformation_;
};

// Properties of an exponential smoothing model, with its parameters.
class TSXML_API TSFESModelProp : public TSFModelProp {
 public:
  TSFESModelProp(const ESModelSpec& spec,
                 const std::valarray<double>& estimates,
                 const std::valarray<double>& stdErrors);

  // The position of the parameter of kind `type` (0 alpha, 1 gamma, 2 delta,
  // 3 phi), or -1 when the model has none.
  int GetWeight(int type) const;
  // The value at `position`; missing when the position is outside the vector.
  double GetParameterEstimate(int position) const;
  double GetParameterStdError(int position) const;

 private:
  ESModelSpec spec_;
  std::valarray<double> estimates_;
  std::valarray<double> stdErrors_;
};

// A counted handle on a TSFModelImp; the default handle is empty. Copies
// share the model; the last handle to go deletes it. Every query but IsEmpty
// expects a model behind the handle.
class TSXML_API TSFModel : public TSRCHandle<TSFModelImp> {
 public:
  // The Ljung-Box statistic of the residuals.
  struct LBStat {
    double q;
    uint64_t lags;
    uint64_t degreesOfFreedom;
    double significance;
  };

  // The empty handle, or one that takes a reference on `imp` (may be null).
  using TSRCHandle::TSRCHandle;

  // The predictors of an ARIMA model; 0 for other models.
  unsigned GetPredictorCount() const;
  uint64_t GetDegreesOfFreedom() const;
  TSSpan GetSpan() const;
  // A statistic by its key ("MSE", "RMSE", "RMSPE", "MAPE", "MAE", "MAXAPE",
  // "MAXAE", "RSQ", "NRMBIC", "LOGLK", "SRSQ", "AIC", "BIC"); missing for
  // any other key.
  double GetGOFStat(const std::string& key) const;
  LBStat GetLBStat() const;
  // A TSFESModelProp for an exponential smoothing model, a TSFModelProp of
  // kind 0 for an ARIMA model. Caller owns the result.
  TSFModelProp* GetModelProperties() const;
};

#endif  // TSXML_MODELAPI_MODEL_H
