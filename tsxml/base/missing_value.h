// The system-missing value of the model library.
#ifndef TSXML_BASE_MISSING_VALUE_H
#define TSXML_BASE_MISSING_VALUE_H

#include <limits>

namespace MV {

// The missing value: the negated largest double. A value is missing when it
// compares equal to it; a NaN is not missing.
inline constexpr double gMissingValue = -std::numeric_limits<double>::max();

inline bool IsMissing(double value) { return value == gMissingValue; }

}  // namespace MV

#endif  // TSXML_BASE_MISSING_VALUE_H
