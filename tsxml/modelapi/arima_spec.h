// The structure of an ARIMA model with transfer functions and outliers,
// and where each of its parameters stands in the flat parameter vector of
// its forecast state.
#ifndef TSXML_MODELAPI_ARIMA_SPEC_H
#define TSXML_MODELAPI_ARIMA_SPEC_H

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "tsxml/base/export.h"
#include "tsxml/modelapi/model_spec.h"
#include "tsxml/modelapi/outlier_spec.h"
#include "tsxml/modelapi/transform.h"

// The lags of one polynomial factor. The list is kept ascending without
// repeats, and a lag of 0 is dropped (the zero-lag term of a numerator is
// not a power). Seasonal lags count seasons.
class TSXML_API AMPowers {
 public:
  AMPowers() = default;
  AMPowers(std::initializer_list<unsigned> lags);
  explicit AMPowers(const std::vector<unsigned>& lags);

  const std::vector<unsigned>& PowerList() const { return powers_; }
  unsigned PowerCount() const { return static_cast<unsigned>(powers_.size()); }
  // The largest lag, 0 for an empty list.
  unsigned MaxPower() const { return powers_.empty() ? 0 : powers_.back(); }

 private:
  std::vector<unsigned> powers_;
};

// One predictor of an ARIMA model: its transformation, differencing, delay
// and the lags of its transfer function. The numerator always has its
// zero-lag term (the regression coefficient) besides its powers.
struct TSXML_API AMPredictorSpec {
  TSTransformSpec transform;
  unsigned nonSeasonalDiff = 0;
  unsigned seasonalDiff = 0;
  unsigned delay = 0;
  AMPowers numeratorNonSeasonal;
  AMPowers numeratorSeasonal;
  AMPowers denominatorNonSeasonal;
  AMPowers denominatorSeasonal;
};

// An ARIMA model. Every structural setter (SetMeanYPresent, SetARStruct,
// SetMAStruct, AddPredictor, SetXCount, SetOutliers) lays the parameters out
// anew by LayOutParameters; the position setters override that layout until
// the next structural change. Positions and counts are 32-bit and their sums
// wrap. A predictor index at or past GetXCount() reads as a plain regression
// without lags, at position 0.
class TSXML_API AMModelSpec : public TSModelSpec {
 public:
  AMModelSpec() = default;

  // Whether the model has a constant (the mean of the series); the result
  // is the constant's position.
  unsigned GetMeanYPresent(bool& present) const;
  void SetMeanYPresent(bool present);

  // The differencing of the series.
  void GetYDiff(unsigned& nonSeasonal, unsigned& seasonal) const;
  void SetYDiff(unsigned nonSeasonal, unsigned seasonal);

  // The lags of the AR or MA factors, owned by this object (never null);
  // the result is the position of the first parameter, non-seasonal ones
  // first.
  unsigned GetARStruct(const AMPowers*& nonSeasonal,
                       const AMPowers*& seasonal) const;
  unsigned GetMAStruct(const AMPowers*& nonSeasonal,
                       const AMPowers*& seasonal) const;
  void SetARStruct(const AMPowers& nonSeasonal, const AMPowers& seasonal);
  void SetMAStruct(const AMPowers& nonSeasonal, const AMPowers& seasonal);

  // Number of predictors (transfer functions).
  unsigned GetXCount() const { return static_cast<unsigned>(xs_.size()); }
  // Appends a predictor; gives its index.
  unsigned AddPredictor(const AMPredictorSpec& predictor);
  // Keeps the first `count` predictors and adds plain regressions up to it.
  void SetXCount(unsigned count);

  // Position of the regression coefficient (the numerator's zero-lag term)
  // of predictor `i`.
  unsigned GetXRegressionCoeff(unsigned i) const;
  // The numerator's lags of predictor `i`; the result is the position of
  // its first lag term, one past the regression coefficient.
  unsigned GetXNumerator(unsigned i, const AMPowers*& nonSeasonal,
                         const AMPowers*& seasonal) const;
  // The denominator's lags of predictor `i`; the result is the position of
  // its first term.
  unsigned GetXDenominator(unsigned i, const AMPowers*& nonSeasonal,
                           const AMPowers*& seasonal) const;
  void GetXDiffNDelay(unsigned i, unsigned& nonSeasonal, unsigned& seasonal,
                      unsigned& delay) const;
  const TSTransformSpec& GetXTransformSpec(unsigned i) const;

  const TSOutlierSpecList& GetOutliers() const { return outliers_; }
  void SetOutliers(const TSOutlierSpecList& outliers);
  // Position of the first outlier parameter.
  unsigned GetOutlierParmIndex() const { return outlierPosition_; }

  unsigned GetParameterCount(bool all) const override;

  // Lays the parameters out in this order and sets the parameter count to
  // their total: the constant, the AR lags (non-seasonal, then seasonal),
  // the MA lags likewise, per predictor its numerator (regression
  // coefficient, then lags) and its denominator, then the outliers.
  void LayOutParameters();

  // Position overrides, for a layout of the host's own.
  void SetMeanYPosition(unsigned position) { meanPosition_ = position; }
  void SetARPosition(unsigned position) { arPosition_ = position; }
  void SetMAPosition(unsigned position) { maPosition_ = position; }
  // Ignored for a predictor index at or past GetXCount().
  void SetXRegressionCoeffPosition(unsigned i, unsigned position);
  void SetXDenominatorPosition(unsigned i, unsigned position);
  void SetOutlierParmIndex(unsigned position) { outlierPosition_ = position; }
  void SetParameterCount(unsigned count) { parameterCount_ = count; }

 private:
  struct Predictor {
    AMPredictorSpec spec;
    unsigned numeratorPosition = 0;
    unsigned denominatorPosition = 0;
  };

  // Predictor `i`, or a plain regression at position 0 past the end.
  const Predictor& X(unsigned i) const;

  bool meanPresent_ = false;
  unsigned meanPosition_ = 0;
  unsigned nonSeasonalDiff_ = 0;
  unsigned seasonalDiff_ = 0;
  AMPowers arNonSeasonal_;
  AMPowers arSeasonal_;
  unsigned arPosition_ = 0;
  AMPowers maNonSeasonal_;
  AMPowers maSeasonal_;
  unsigned maPosition_ = 0;
  std::vector<Predictor> xs_;
  TSOutlierSpecList outliers_;
  unsigned outlierPosition_ = 0;
  unsigned parameterCount_ = 0;
};

#endif  // TSXML_MODELAPI_ARIMA_SPEC_H
