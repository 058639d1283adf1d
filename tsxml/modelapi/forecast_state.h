// Forecast states: the final state of a fitted model's forecast recursion,
// with its parameter estimates. A state shows its class to a
// ForecastStateVisitor through Accept.
#ifndef TSXML_MODELAPI_FORECAST_STATE_H
#define TSXML_MODELAPI_FORECAST_STATE_H

#include <cstdint>
#include <valarray>

#include "tsxml/base/export.h"
#include "tsxml/modelapi/model_spec.h"
#include "tsxml/modelapi/span.h"

class ForecastStateVisitor;

// Replaces `target` by a copy of `source`, leaving `target` as it was when
// the copy can't be allocated (a valarray's own assignment does not).
inline void ReplaceValues(std::valarray<double>& target,
                          const std::valarray<double>& source) {
  std::valarray<double> copy(source);
  target.swap(copy);
}

// Base of the four state classes. The standard errors may be shorter than
// the parameters, or empty.
class TSXML_API ForecastState {
 public:
  virtual ~ForecastState();

  virtual const TSSpan& GetStateSpan() const { return span_; }
  virtual const std::valarray<double>& GetParameters() const {
    return parameters_;
  }
  virtual const std::valarray<double>& GetParameterStdErrors() const {
    return stdErrors_;
  }
  // Calls the one Visit of the state's own class, at once.
  virtual void Accept(ForecastStateVisitor& visitor) const = 0;

  void SetStateSpan(const TSSpan& span) { span_ = span; }
  void SetParameters(const std::valarray<double>& parameters) {
    ReplaceValues(parameters_, parameters);
  }
  void SetParameterStdErrors(const std::valarray<double>& stdErrors) {
    ReplaceValues(stdErrors_, stdErrors);
  }

 protected:
  ForecastState() = default;
  ForecastState(const std::valarray<double>& parameters,
                const std::valarray<double>& stdErrors)
      : parameters_(parameters), stdErrors_(stdErrors) {}
  ForecastState(const ForecastState&) = default;
  ForecastState& operator=(const ForecastState&) = default;

 private:
  TSSpan span_;
  std::valarray<double> parameters_;
  std::valarray<double> stdErrors_;
};

// The smoothing state of an exponential smoothing model: level, trend, phase
// and seasonal values. The cycle length is the number of seasonal values
// unless SetCycleLength says otherwise (readers never read past the list).
class TSXML_API WIESSmState {
 public:
  WIESSmState() = default;
  WIESSmState(double levelValue, double trendValue, uint64_t phaseValue = 0,
              const std::valarray<double>& seasonalValues = {})
      : level(levelValue),
        trend(trendValue),
        phase(phaseValue),
        seasonal(seasonalValues),
        cycleLength_(seasonalValues.size()) {}

  double Level() const { return level; }
  double Trend() const { return trend; }
  const std::valarray<double>& Season() const { return seasonal; }
  uint64_t CycleLength() const { return cycleLength_; }
  void SetCycleLength(uint64_t cycleLength) { cycleLength_ = cycleLength; }

  double level = 0.0;
  double trend = 0.0;
  uint64_t phase = 0;
  std::valarray<double> seasonal;

 private:
  uint64_t cycleLength_ = 0;
};

// The state of an exponential smoothing model: its specification, the final
// and the initial smoothing state.
class TSXML_API ESForecastState : public ForecastState {
 public:
  ESForecastState(const ESModelSpec& spec,
                  const std::valarray<double>& parameters,
                  const std::valarray<double>& stdErrors,
                  const WIESSmState& finalState,
                  const WIESSmState& initialState = WIESSmState())
      : ForecastState(parameters, stdErrors),
        spec_(spec),
        smState_(finalState),
        smInitState_(initialState) {}

  const ESModelSpec& GetESModelSpec() const { return spec_; }
  const WIESSmState& GetSmState() const { return smState_; }
  const WIESSmState& GetSmInitState() const { return smInitState_; }

  void Accept(ForecastStateVisitor& visitor) const override;

 private:
  ESModelSpec spec_;
  WIESSmState smState_;
  WIESSmState smInitState_;
};

#endif  // TSXML_MODELAPI_FORECAST_STATE_H
