// ForecastStateVisitor: how a forecast state shows its own class.
#ifndef TSXML_MODELAPI_FORECAST_STATE_VISITOR_H
#define TSXML_MODELAPI_FORECAST_STATE_VISITOR_H

#include "tsxml/base/export.h"

class ARMAMLSpForecastState;
class ARMAMLForecastState;
class ARMACLSForecastState;
class ESForecastState;

// ForecastState::Accept calls the one Visit of the state's class.
class TSXML_API ForecastStateVisitor {
 public:
  virtual ~ForecastStateVisitor();
  virtual void Visit(const ARMAMLSpForecastState& state) = 0;
  virtual void Visit(const ARMAMLForecastState& state) = 0;
  virtual void Visit(const ARMACLSForecastState& state) = 0;
  virtual void Visit(const ESForecastState& state) = 0;
};

#endif  // TSXML_MODELAPI_FORECAST_STATE_VISITOR_H
