// The specification of an ARIMA model with transfer functions and outliers.
#ifndef TSXML_MODELAPI_ARIMA_SPEC_H
#define TSXML_MODELAPI_ARIMA_SPEC_H

#include "modelapi/model_spec.h"
#include "tsxml_export.h"

class TSXML_API AMModelSpec : public TSModelSpec {
 public:
  AMModelSpec() = default;

  // Number of predictors (transfer functions).
  unsigned GetXCount() const { return xCount_; }
  void SetXCount(unsigned count) { xCount_ = count; }

  unsigned GetParameterCount(bool all) const override;
  void SetParameterCount(unsigned count) { parameterCount_ = count; }

 private:
  unsigned xCount_ = 0;
  unsigned parameterCount_ = 0;
};

#endif  // TSXML_MODELAPI_ARIMA_SPEC_H
