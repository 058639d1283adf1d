// Model specifications: what was fitted, and where each parameter stands in
// the flat parameter vector of the forecast state.
#ifndef TSXML_MODELAPI_MODEL_SPEC_H
#define TSXML_MODELAPI_MODEL_SPEC_H

#include <array>

#include "tsxml/base/export.h"
#include "tsxml/modelapi/transform.h"

// The boolean arguments of GetParameterCount and GetSeasonLength choose the
// full count and the effective season length; this layer has no fixed
// parameters, so true and false give the same answers.
class TSXML_API TSModelSpec {
 public:
  virtual ~TSModelSpec();

  const TSTransformSpec& GetYTransformSpec() const { return yTransform_; }
  void SetYTransformSpec(const TSTransformSpec& spec) { yTransform_ = spec; }

  virtual unsigned GetParameterCount(bool all) const = 0;
  virtual unsigned GetSeasonLength(bool effective) const;
  void SetSeasonLength(unsigned seasonLength) { seasonLength_ = seasonLength; }

 protected:
  TSModelSpec() = default;
  TSModelSpec(const TSModelSpec&) = default;
  TSModelSpec& operator=(const TSModelSpec&) = default;

 private:
  TSTransformSpec yTransform_;
  unsigned seasonLength_ = 1;
};

// An exponential smoothing model: its type and the positions of its smoothing
// parameters. The constructor lays the parameters out in kind order (level,
// trend, season, damping), each kind that the type has; SetESParameterIndex
// and SetParameterCount override that layout.
class TSXML_API ESModelSpec : public TSModelSpec {
 public:
  enum ESModelType : int {
    ESAdditiveWinters = 0,
    ESBrown = 1,
    ESDampedTrend = 2,
    ESHolt = 3,
    ESMultiplicativeWinters = 4,
    ESSimpleSeasonal = 5,
    ESSimple = 6,
  };
  enum ESParameterKind : int {
    Level = 0,
    Trend = 1,
    Season = 2,
    DampingTrend = 3,
  };
  static constexpr int kParameterKindCount = 4;

  // A type outside 0..6 is kept as given and has no parameters.
  explicit ESModelSpec(int type = ESSimple, unsigned seasonLength = 1);

  // Whether a model of `type` has a parameter of `kind`.
  static bool HasParameterKind(int type, int kind);
  // Whether a model of `type` has a trend in its smoothing state: every type
  // but the simple and the simple seasonal ones.
  static bool HasTrendState(int type);

  virtual int GetESModelType() const { return type_; }
  // The position of the parameter of `kind`, or -1 when the model has none.
  virtual int GetESParameterIndex(int kind) const;
  unsigned GetParameterCount(bool all) const override;

  void SetESParameterIndex(int kind, int index);
  void SetParameterCount(unsigned count) { parameterCount_ = count; }

 private:
  int type_;
  std::array<int, kParameterKindCount> index_;
  unsigned parameterCount_;
};

#endif  // TSXML_MODELAPI_MODEL_SPEC_H
