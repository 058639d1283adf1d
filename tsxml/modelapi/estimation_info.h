// EstimationInfo: how a model was fitted and how well it fits.
#ifndef TSXML_MODELAPI_ESTIMATION_INFO_H
#define TSXML_MODELAPI_ESTIMATION_INFO_H

#include <array>
#include <cstdint>

#include "tsxml/base/export.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/span.h"
#include "tsxml/modelapi/transform.h"

namespace BFSharedConst {

// Goodness-of-fit statistics. 10 to 13 are not used.
enum GOFStatType : int {
  MSE = 0,
  RMSE = 1,
  MAPE = 2,
  MAE = 3,
  MAXAPE = 4,
  MAXAE = 5,
  RSQ = 6,
  NRMBIC = 7,
  RMSPE = 8,
  LOGLK = 9,
  AIC = 14,
  BIC = 15,
  SRSQ = 16,
};
inline constexpr int kGOFStatTypeCount = 17;

}  // namespace BFSharedConst

// Every statistic starts missing (MV::gMissingValue) until it is set.
class TSXML_API EstimationInfo {
 public:
  EstimationInfo();

  const TSSpan& GetSpan() const { return span_; }
  uint64_t GetDegreesOfFreedom() const { return degreesOfFreedom_; }
  double GetErrorVariance() const { return errorVariance_; }
  // Missing for a type outside the table or one that was not set.
  double GetGOFStat(BFSharedConst::GOFStatType type) const;
  // The Ljung-Box statistic, its number of lags, its degrees of freedom and
  // its significance; the statistic is missing when the model has none.
  void GetLBStat(double& statistic, uint64_t& k, uint64_t& degreesOfFreedom,
                 double& pValue) const;

  void SetSpan(const TSSpan& span) { span_ = span; }
  void SetDegreesOfFreedom(uint64_t df) { degreesOfFreedom_ = df; }
  void SetErrorVariance(double value) { errorVariance_ = value; }
  // Ignored for a type outside the table.
  void SetGOFStat(BFSharedConst::GOFStatType type, double value);
  void SetLBStat(double statistic, uint64_t k, uint64_t degreesOfFreedom,
                 double pValue);

 private:
  TSSpan span_;
  uint64_t degreesOfFreedom_ = 0;
  double errorVariance_ = MV::gMissingValue;
  std::array<double, BFSharedConst::kGOFStatTypeCount> gof_;
  double lbStatistic_ = MV::gMissingValue;
  uint64_t lbLags_ = 0;
  uint64_t lbDegreesOfFreedom_ = 0;
  double lbPValue_ = MV::gMissingValue;
};

#endif  // TSXML_MODELAPI_ESTIMATION_INFO_H
