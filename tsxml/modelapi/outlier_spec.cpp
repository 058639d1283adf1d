#include "tsxml/modelapi/outlier_spec.h"

#include <cstddef>

const char* TSOutlierSpec::TypeName(uint32_t outlierType) {
  static constexpr const char* kNames[] = {
      "none",  "additive",     "level",         "transient", "seasonalAdditive",
      "trend", "innovational", "varianceChange"};
  return outlierType < sizeof kNames / sizeof kNames[0] ? kNames[outlierType]
                                                        : nullptr;
}

unsigned TSOutlierSpec::GetParameterCount() const {
  if (countSet_) return parameterCount_;
  if (type == None) return 0;
  return type == Transient ? 2 : 1;
}

unsigned TSOutlierSpecList::GetOutlierSpecCount(bool) const {
  return static_cast<unsigned>(specs_.size());
}

TSOutlierSpec TSOutlierSpecList::GetOutlierSpec(unsigned i) const {
  return i < specs_.size() ? specs_[i] : TSOutlierSpec();
}

unsigned TSOutlierSpecList::ParameterVectorIndex(unsigned i, unsigned j) const {
  unsigned position = j;
  for (size_t k = 0; k < i && k < specs_.size(); ++k) {
    position += specs_[k].GetParameterCount();
  }
  return position;
}

unsigned TSOutlierSpecList::GetParameterCount() const {
  return ParameterVectorIndex(GetOutlierSpecCount(false), 0);
}
