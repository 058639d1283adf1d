#include "tsxml/modelapi/croston_model.h"

TSFCrModelImp::TSFCrModelImp(const ESForecastState& actualDemand,
                             const ESForecastState& elapsedTime,
                             const ESForecastState& absoluteError,
                             const EstimationInfo& info,
                             BFSharedConst::TSFunctionType function)
    : actualDemand_(actualDemand),
      elapsedTime_(elapsedTime),
      absoluteError_(absoluteError),
      info_(info),
      function_(function) {}

TSFCrModelImp::~TSFCrModelImp() = default;

const ESForecastState* TSFCrModelImp::GetForecastState(int which) const {
  switch (which) {
    case ActualDemand:
      return &actualDemand_;
    case ElapsedTime:
      return &elapsedTime_;
    case AbsoluteError:
      return &absoluteError_;
    default:
      return nullptr;
  }
}
