// Transformations of a series.
#ifndef TSXML_MODELAPI_TRANSFORM_H
#define TSXML_MODELAPI_TRANSFORM_H

#include "tsxml/base/export.h"

namespace BFSharedConst {

// The transformation applied to a series before fitting.
enum TSFunctionType : unsigned {
  NoTransform = 0,
  Logarithm = 1,
  SquareRoot = 2,
};

}  // namespace BFSharedConst

// A transformation as a model specification holds it; `function` first.
struct TSXML_API TSTransformSpec {
  TSTransformSpec() = default;
  explicit TSTransformSpec(unsigned functionType) : function(functionType) {}

  unsigned function = BFSharedConst::NoTransform;
};

// The transformation of a fitted series, as model properties report it.
class TSXML_API TSTransformation {
 public:
  TSTransformation() = default;
  explicit TSTransformation(unsigned functionType) : function_(functionType) {}
  unsigned GetFunctionType() const { return function_; }

 private:
  unsigned function_ = BFSharedConst::NoTransform;
};

#endif  // TSXML_MODELAPI_TRANSFORM_H
