// Forecast states of ARIMA models: one class per estimation method.
#ifndef TSXML_MODELAPI_ARIMA_STATE_H
#define TSXML_MODELAPI_ARIMA_STATE_H

#include <cstdint>
#include <valarray>
#include <vector>

#include "tsxml/base/export.h"
#include "tsxml/modelapi/arima_spec.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/modelapi/sym_matrix.h"

// What every ARIMA state has: the model specification, the final values of
// the (differenced, transformed) series and their predictions, and the
// history of each predictor.
class TSXML_API ARMAForecastState : public ForecastState {
 public:
  const AMModelSpec& GetAMModelSpec() const { return spec_; }
  const std::valarray<double>& GetActualZ() const { return actualZ_; }
  const std::valarray<double>& GetPredZ() const { return predZ_; }
  // Points `first` at the final values of predictor `i` and `second` at the
  // final values of its transfer function, both in this state; sets both to
  // null when the predictor has no history.
  void GetXHistory(unsigned i, const std::valarray<double>*& first,
                   const std::valarray<double>*& second) const;

  void SetActualZ(const std::valarray<double>& values) {
    ReplaceValues(actualZ_, values);
  }
  void SetPredZ(const std::valarray<double>& values) {
    ReplaceValues(predZ_, values);
  }
  // Gives predictor `i` a history (any index; the list grows to hold it).
  void SetXHistory(unsigned i, const std::valarray<double>& predictor,
                   const std::valarray<double>& transferFunction);

 protected:
  ARMAForecastState(const AMModelSpec& spec,
                    const std::valarray<double>& parameters,
                    const std::valarray<double>& stdErrors)
      : ForecastState(parameters, stdErrors), spec_(spec) {}

 private:
  struct XHistory {
    bool present = false;
    std::valarray<double> predictor;
    std::valarray<double> transferFunction;
  };

  AMModelSpec spec_;
  std::valarray<double> actualZ_;
  std::valarray<double> predZ_;
  std::vector<XHistory> xHistory_;
};

// The final noise values and their predictions, which the conditional least
// squares and the theta recursion states keep.
class TSXML_API ARMANoiseHistory {
 public:
  const std::valarray<double>& GetActualN() const { return actualN_; }
  const std::valarray<double>& GetPredN() const { return predN_; }
  void SetActualN(const std::valarray<double>& values) {
    ReplaceValues(actualN_, values);
  }
  void SetPredN(const std::valarray<double>& values) {
    ReplaceValues(predN_, values);
  }

 private:
  std::valarray<double> actualN_;
  std::valarray<double> predN_;
};

// Conditional least squares.
class TSXML_API ARMACLSForecastState : public ARMAForecastState,
                                       public ARMANoiseHistory {
 public:
  explicit ARMACLSForecastState(const AMModelSpec& spec,
                                const std::valarray<double>& parameters = {},
                                const std::valarray<double>& stdErrors = {})
      : ARMAForecastState(spec, parameters, stdErrors) {}
  void Accept(ForecastStateVisitor& visitor) const override;
};

// Exact maximum likelihood with a Kalman filter: the final covariance of the
// state vector (omega) and the final state vector.
class TSXML_API ARMAMLForecastState : public ARMAForecastState {
 public:
  explicit ARMAMLForecastState(const AMModelSpec& spec,
                               const std::valarray<double>& parameters = {},
                               const std::valarray<double>& stdErrors = {})
      : ARMAForecastState(spec, parameters, stdErrors) {}
  void Accept(ForecastStateVisitor& visitor) const override;

  const DSymMat& GetFinalOmega() const { return finalOmega_; }
  const std::valarray<double>& GetFinalStateV() const { return finalStateV_; }
  void SetFinalOmega(const DSymMat& omega) { finalOmega_ = omega; }
  void SetFinalStateV(const std::valarray<double>& values) {
    ReplaceValues(finalStateV_, values);
  }

 private:
  DSymMat finalOmega_;
  std::valarray<double> finalStateV_;
};

// Exact maximum likelihood by the theta recursion: besides the noise, the
// final theta vectors, the final nu values and the number of iterations.
class TSXML_API ARMAMLSpForecastState : public ARMAForecastState,
                                        public ARMANoiseHistory {
 public:
  explicit ARMAMLSpForecastState(const AMModelSpec& spec,
                                 const std::valarray<double>& parameters = {},
                                 const std::valarray<double>& stdErrors = {})
      : ARMAForecastState(spec, parameters, stdErrors) {}
  void Accept(ForecastStateVisitor& visitor) const override;

  const std::vector<std::vector<double>>& GetFinalThetas() const {
    return finalThetas_;
  }
  const std::vector<double>& GetFinalNu() const { return finalNu_; }
  uint64_t GetFinalIterCount() const { return finalIterCount_; }
  void SetFinalThetas(const std::vector<std::vector<double>>& thetas) {
    finalThetas_ = thetas;
  }
  void SetFinalNu(const std::vector<double>& nu) { finalNu_ = nu; }
  void SetFinalIterCount(uint64_t count) { finalIterCount_ = count; }

 private:
  std::vector<std::vector<double>> finalThetas_;
  std::vector<double> finalNu_;
  uint64_t finalIterCount_ = 0;
};

#endif  // TSXML_MODELAPI_ARIMA_STATE_H
