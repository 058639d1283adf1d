#include "tsxml/modelapi/forecast_state.h"

#include "tsxml/modelapi/arima_state.h"
#include "tsxml/modelapi/forecast_state_visitor.h"

ForecastState::~ForecastState() = default;

ForecastStateVisitor::~ForecastStateVisitor() = default;

void ESForecastState::Accept(ForecastStateVisitor& visitor) const {
  visitor.Visit(*this);
}
void ARMACLSForecastState::Accept(ForecastStateVisitor& visitor) const {
  visitor.Visit(*this);
}
void ARMAMLForecastState::Accept(ForecastStateVisitor& visitor) const {
  visitor.Visit(*this);
}
void ARMAMLSpForecastState::Accept(ForecastStateVisitor& visitor) const {
  visitor.Visit(*this);
}
