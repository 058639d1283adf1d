// Outliers of an ARIMA model: each has a type, a start case and one or two
// parameters in the model's parameter vector.
#ifndef TSXML_MODELAPI_OUTLIER_SPEC_H
#define TSXML_MODELAPI_OUTLIER_SPEC_H

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "tsxml/base/export.h"

// One outlier, by value: `type` first, the case where it starts second.
// Types outside 1..7 are kept as given; readers skip them.
class TSXML_API TSOutlierSpec {
 public:
  enum OutlierType : uint32_t {
    None = 0,
    Additive = 1,
    LevelShift = 2,
    Transient = 3,
    SeasonalAdditive = 4,
    LocalTrend = 5,
    Innovational = 6,
    VarianceChange = 7,
  };

  // The word of an outlier type in the documents: "none", "additive",
  // "level", "transient", "seasonalAdditive", "trend", "innovational",
  // "varianceChange" for 0 to 7; null for any other type.
  static const char* TypeName(uint32_t outlierType);

  TSOutlierSpec() = default;
  TSOutlierSpec(uint32_t outlierType, uint64_t start)
      : type(outlierType), startIndex(start) {}

  // The number of its parameters: 2 for a transient (magnitude and damping),
  // 0 for type 0, 1 for any other type, unless SetParameterCount overrode it.
  unsigned GetParameterCount() const;
  void SetParameterCount(unsigned count) {
    parameterCount_ = count;
    countSet_ = true;
  }

  uint32_t type = None;
  uint64_t startIndex = 0;

 private:
  unsigned parameterCount_ = 0;
  bool countSet_ = false;
};

// The outliers of a model, in the order of their parameters.
class TSXML_API TSOutlierSpecList {
 public:
  TSOutlierSpecList() = default;
  TSOutlierSpecList(std::initializer_list<TSOutlierSpec> specs)
      : specs_(specs) {}

  void Add(const TSOutlierSpec& spec) { specs_.push_back(spec); }

  // The number of outliers. This layer keeps no outliers that the fit
  // dropped, so `estimatedOnly` true and false give the same answer.
  unsigned GetOutlierSpecCount(bool estimatedOnly) const;
  // Outlier `i`; a default outlier of type 0 past the end.
  TSOutlierSpec GetOutlierSpec(unsigned i) const;
  // The position of parameter `j` of outlier `i`, counted from the first
  // outlier parameter: the parameters of the outliers before `i`, plus `j`.
  // Sums wrap in 32 bits.
  unsigned ParameterVectorIndex(unsigned i, unsigned j) const;
  // The parameters of all outliers together.
  unsigned GetParameterCount() const;

 private:
  std::vector<TSOutlierSpec> specs_;
};

#endif  // TSXML_MODELAPI_OUTLIER_SPEC_H
