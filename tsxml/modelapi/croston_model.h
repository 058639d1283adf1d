// Croston models of intermittent demand: three simple exponential smoothing
// models (actual demand, elapsed time between demands, absolute error) that
// share a transformation and one set of fit statistics.
#ifndef TSXML_MODELAPI_CROSTON_MODEL_H
#define TSXML_MODELAPI_CROSTON_MODEL_H

#include "tsxml/base/export.h"
#include "tsxml/modelapi/estimation_info.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/modelapi/ref_counted.h"
#include "tsxml/modelapi/transform.h"

// The fitted Croston model behind a TSFCrModel handle. Holds copies of its
// three states.
class TSXML_API TSFCrModelImp : public TSRCObject {
 public:
  enum StateNumber : int {
    ActualDemand = 0,
    ElapsedTime = 1,
    AbsoluteError = 2,
  };

  TSFCrModelImp(
      const ESForecastState& actualDemand, const ESForecastState& elapsedTime,
      const ESForecastState& absoluteError, const EstimationInfo& info,
      BFSharedConst::TSFunctionType function = BFSharedConst::NoTransform);
  ~TSFCrModelImp() override;

  // The state numbered `which` (see StateNumber), owned by the model; null
  // for any other number.
  const ESForecastState* GetForecastState(int which) const;
  const EstimationInfo& GetEstimationInfo() const { return info_; }
  // The transformation of the series; any number is kept as given.
  BFSharedConst::TSFunctionType GetFunctionType() const { return function_; }

 private:
  ESForecastState actualDemand_;
  ESForecastState elapsedTime_;
  ESForecastState absoluteError_;
  EstimationInfo info_;
  BFSharedConst::TSFunctionType function_;
};

// A counted handle on a TSFCrModelImp; the default handle is empty. Copies
// share the model; the last handle to go deletes it.
class TSXML_API TSFCrModel : public TSRCHandle<TSFCrModelImp> {
 public:
  // The empty handle, or one that takes a reference on `imp` (may be null).
  using TSRCHandle::TSRCHandle;
};

#endif  // TSXML_MODELAPI_CROSTON_MODEL_H
