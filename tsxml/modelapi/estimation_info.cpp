#include "tsxml/modelapi/estimation_info.h"

#include <cstddef>

EstimationInfo::EstimationInfo() { gof_.fill(MV::gMissingValue); }

namespace {
bool InTable(BFSharedConst::GOFStatType type) {
  return type >= 0 && type < BFSharedConst::kGOFStatTypeCount;
}
}  // namespace

double EstimationInfo::GetGOFStat(BFSharedConst::GOFStatType type) const {
  return InTable(type) ? gof_[static_cast<size_t>(type)] : MV::gMissingValue;
}

void EstimationInfo::SetGOFStat(BFSharedConst::GOFStatType type, double value) {
  if (InTable(type)) gof_[static_cast<size_t>(type)] = value;
}

void EstimationInfo::GetLBStat(double& statistic, uint64_t& k,
                               uint64_t& degreesOfFreedom,
                               double& pValue) const {
  statistic = lbStatistic_;
  k = lbLags_;
  degreesOfFreedom = lbDegreesOfFreedom_;
  pValue = lbPValue_;
}

void EstimationInfo::SetLBStat(double statistic, uint64_t k,
                               uint64_t degreesOfFreedom, double pValue) {
  lbStatistic_ = statistic;
  lbLags_ = k;
  lbDegreesOfFreedom_ = degreesOfFreedom;
  lbPValue_ = pValue;
}
