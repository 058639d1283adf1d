#include "modelapi/croston_model.h"

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

TSFCrModel::TSFCrModel(TSFCrModelImp* imp) : imp_(imp) {
  if (imp_) imp_->addReference();
}

TSFCrModel::TSFCrModel(const TSFCrModel& other) : TSFCrModel(other.imp_) {}

TSFCrModel& TSFCrModel::operator=(const TSFCrModel& other) {
  if (other.imp_) other.imp_->addReference();
  if (imp_) imp_->removeReference();
  imp_ = other.imp_;
  return *this;
}

TSFCrModel::~TSFCrModel() {
  if (imp_) imp_->removeReference();
}
