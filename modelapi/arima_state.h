// Forecast states of ARIMA models: one class per estimation method.
#ifndef TSXML_MODELAPI_ARIMA_STATE_H
#define TSXML_MODELAPI_ARIMA_STATE_H

#include <valarray>

#include "modelapi/arima_spec.h"
#include "modelapi/forecast_state.h"
#include "tsxml_export.h"

// What every ARIMA state has: the model specification.
class TSXML_API ARMAForecastState : public ForecastState {
 public:
  const AMModelSpec& GetAMModelSpec() const { return spec_; }

 protected:
  explicit ARMAForecastState(const AMModelSpec& spec) : spec_(spec) {}

 private:
  AMModelSpec spec_;
};

// Conditional least squares.
class TSXML_API ARMACLSForecastState : public ARMAForecastState {
 public:
  explicit ARMACLSForecastState(const AMModelSpec& spec)
      : ARMAForecastState(spec) {}
  void Accept(ForecastStateVisitor& visitor) const override;
};

// Exact maximum likelihood with a Kalman filter.
class TSXML_API ARMAMLForecastState : public ARMAForecastState {
 public:
  explicit ARMAMLForecastState(const AMModelSpec& spec)
      : ARMAForecastState(spec) {}
  void Accept(ForecastStateVisitor& visitor) const override;
};

// Exact maximum likelihood by the theta recursion.
class TSXML_API ARMAMLSpForecastState : public ARMAForecastState {
 public:
  explicit ARMAMLSpForecastState(const AMModelSpec& spec)
      : ARMAForecastState(spec) {}
  void Accept(ForecastStateVisitor& visitor) const override;
};

#endif  // TSXML_MODELAPI_ARIMA_STATE_H
