// Helpers of the PMML tests: models of every exponential smoothing type and
// the text of a written document.
#ifndef TSXML_TESTS_PMML_PMML_TEST_UTIL_H
#define TSXML_TESTS_PMML_PMML_TEST_UTIL_H

#include <numeric>
#include <sstream>
#include <string>
#include <valarray>

#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/pmml/pmml_document.h"

namespace pmml_test {

// How a generated model is made.
struct ModelOptions {
  unsigned seasonLength = 4;      // used by the seasonal types only
  bool missingLevel = false;      // final level missing
  bool missingSeasonal = false;   // one final seasonal value missing
  bool missingTrend = false;      // final trend missing
  std::valarray<double> history;  // observed series
};

inline bool IsSeasonal(int type) {
  return type == ESModelSpec::ESAdditiveWinters ||
         type == ESModelSpec::ESMultiplicativeWinters ||
         type == ESModelSpec::ESSimpleSeasonal;
}

// A fitted model of ESModelSpec type `type` (0 to 6): estimates 0.5, 0.25,
// 0.125, 0.875 in parameter order, final level 10 and trend 2, seasonal
// values 1, 2, ... with phase 1, and an initial state of 9, 1.5, 0.5, 1, ...
inline TSFModel MakeTypeModel(int type, const ModelOptions& options = {}) {
  const bool seasonal = IsSeasonal(type);
  const unsigned season = seasonal ? options.seasonLength : 1;
  const ESModelSpec spec(type, season);
  const double estimates[] = {0.5, 0.25, 0.125, 0.875};
  const std::valarray<double> parameters(estimates,
                                         spec.GetParameterCount(true));
  std::valarray<double> values(seasonal ? season : 0);
  std::iota(std::begin(values), std::end(values), 1.0);
  const std::valarray<double> initialValues = 0.5 * values;
  if (options.missingSeasonal && values.size() > 1) {
    values[1] = MV::gMissingValue;
  }
  WIESSmState finalState(options.missingLevel ? MV::gMissingValue : 10,
                         options.missingTrend ? MV::gMissingValue : 2, 1,
                         values);
  EstimationInfo info = testing_support::BasicInfo(2, 40, 37, 0.75);
  info.SetGOFStat(BFSharedConst::RMSE, 1.25);
  return testing_support::MakeESModel(spec, parameters, parameters / 10.0,
                                      finalState, info, options.history,
                                      WIESSmState(9, 1.5, 0, initialValues));
}

// The bytes that `document` writes.
inline std::string WriteText(tsxml::TSXPMMLDocument& document,
                             bool complete = true,
                             OstraTimeXML::XMLElement* extension = nullptr) {
  std::ostringstream out;
  document.Write(out, complete, extension);
  return out.str();
}

}  // namespace pmml_test

#endif  // TSXML_TESTS_PMML_PMML_TEST_UTIL_H
