#include "tsxml/modelapi/stat_util.h"

#include "tsxml/base/missing_value.h"
#include "tsxml/stats/distributions.h"

namespace TSStatUtil {

double CDFStudentsT(double t, double df) {
  int status = 0;
  const double p = TSXStudentTCDF(t, df, status);
  return status == 0 ? p : MV::gMissingValue;
}

}  // namespace TSStatUtil
