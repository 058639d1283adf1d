#include "modelapi/stat_util.h"

#include "modelapi/missing_value.h"

namespace TSStatUtil {

// Served by the Student's t distribution function once it is built in.
double CDFStudentsT(double, double) { return MV::gMissingValue; }

}  // namespace TSStatUtil
