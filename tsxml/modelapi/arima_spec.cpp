#include "tsxml/modelapi/arima_spec.h"

#include <algorithm>

AMPowers::AMPowers(std::initializer_list<unsigned> lags)
    : AMPowers(std::vector<unsigned>(lags)) {}

AMPowers::AMPowers(const std::vector<unsigned>& lags) : powers_(lags) {
  std::sort(powers_.begin(), powers_.end());
  powers_.erase(std::unique(powers_.begin(), powers_.end()), powers_.end());
  if (!powers_.empty() && powers_.front() == 0) powers_.erase(powers_.begin());
}

unsigned AMModelSpec::GetMeanYPresent(bool& present) const {
  present = meanPresent_;
  return meanPosition_;
}

void AMModelSpec::SetMeanYPresent(bool present) {
  meanPresent_ = present;
  LayOutParameters();
}

void AMModelSpec::GetYDiff(unsigned& nonSeasonal, unsigned& seasonal) const {
  nonSeasonal = nonSeasonalDiff_;
  seasonal = seasonalDiff_;
}

void AMModelSpec::SetYDiff(unsigned nonSeasonal, unsigned seasonal) {
  nonSeasonalDiff_ = nonSeasonal;
  seasonalDiff_ = seasonal;
}

unsigned AMModelSpec::GetARStruct(const AMPowers*& nonSeasonal,
                                  const AMPowers*& seasonal) const {
  nonSeasonal = &arNonSeasonal_;
  seasonal = &arSeasonal_;
  return arPosition_;
}

unsigned AMModelSpec::GetMAStruct(const AMPowers*& nonSeasonal,
                                  const AMPowers*& seasonal) const {
  nonSeasonal = &maNonSeasonal_;
  seasonal = &maSeasonal_;
  return maPosition_;
}

void AMModelSpec::SetARStruct(const AMPowers& nonSeasonal,
                              const AMPowers& seasonal) {
  arNonSeasonal_ = nonSeasonal;
  arSeasonal_ = seasonal;
  LayOutParameters();
}

void AMModelSpec::SetMAStruct(const AMPowers& nonSeasonal,
                              const AMPowers& seasonal) {
  maNonSeasonal_ = nonSeasonal;
  maSeasonal_ = seasonal;
  LayOutParameters();
}

unsigned AMModelSpec::AddPredictor(const AMPredictorSpec& predictor) {
  xs_.push_back(Predictor{predictor});
  LayOutParameters();
  return GetXCount() - 1;
}

void AMModelSpec::SetXCount(unsigned count) {
  xs_.resize(count);
  LayOutParameters();
}

const AMModelSpec::Predictor& AMModelSpec::X(unsigned i) const {
  static const Predictor kNone;
  return i < xs_.size() ? xs_[i] : kNone;
}

unsigned AMModelSpec::GetXRegressionCoeff(unsigned i) const {
  return X(i).numeratorPosition;
}

unsigned AMModelSpec::GetXNumerator(unsigned i, const AMPowers*& nonSeasonal,
                                    const AMPowers*& seasonal) const {
  const Predictor& x = X(i);
  nonSeasonal = &x.spec.numeratorNonSeasonal;
  seasonal = &x.spec.numeratorSeasonal;
  return x.numeratorPosition + 1;
}

unsigned AMModelSpec::GetXDenominator(unsigned i, const AMPowers*& nonSeasonal,
                                      const AMPowers*& seasonal) const {
  const Predictor& x = X(i);
  nonSeasonal = &x.spec.denominatorNonSeasonal;
  seasonal = &x.spec.denominatorSeasonal;
  return x.denominatorPosition;
}

void AMModelSpec::GetXDiffNDelay(unsigned i, unsigned& nonSeasonal,
                                 unsigned& seasonal, unsigned& delay) const {
  const AMPredictorSpec& x = X(i).spec;
  nonSeasonal = x.nonSeasonalDiff;
  seasonal = x.seasonalDiff;
  delay = x.delay;
}

const TSTransformSpec& AMModelSpec::GetXTransformSpec(unsigned i) const {
  return X(i).spec.transform;
}

void AMModelSpec::SetOutliers(const TSOutlierSpecList& outliers) {
  outliers_ = outliers;
  LayOutParameters();
}

unsigned AMModelSpec::GetParameterCount(bool) const { return parameterCount_; }

void AMModelSpec::LayOutParameters() {
  unsigned position = 0;
  meanPosition_ = position;
  if (meanPresent_) ++position;
  arPosition_ = position;
  position += arNonSeasonal_.PowerCount() + arSeasonal_.PowerCount();
  maPosition_ = position;
  position += maNonSeasonal_.PowerCount() + maSeasonal_.PowerCount();
  for (Predictor& x : xs_) {
    x.numeratorPosition = position;
    position += 1 + x.spec.numeratorNonSeasonal.PowerCount() +
                x.spec.numeratorSeasonal.PowerCount();
    x.denominatorPosition = position;
    position += x.spec.denominatorNonSeasonal.PowerCount() +
                x.spec.denominatorSeasonal.PowerCount();
  }
  outlierPosition_ = position;
  parameterCount_ = position + outliers_.GetParameterCount();
}

void AMModelSpec::SetXRegressionCoeffPosition(unsigned i, unsigned position) {
  if (i < xs_.size()) xs_[i].numeratorPosition = position;
}

void AMModelSpec::SetXDenominatorPosition(unsigned i, unsigned position) {
  if (i < xs_.size()) xs_[i].denominatorPosition = position;
}
