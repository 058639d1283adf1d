// The TimeSeriesModel elements of exponential smoothing models, all in one
// document compared whole with tests/data/pmml/es_models.xml.
#include "tsxml/pmml/es_model.h"

#include <gtest/gtest.h>

#include <limits>

#include "pmml_test_util.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/pmml/pmml_document.h"

namespace {

using pmml_test::MakeTypeModel;
using testing_support::MakeESModel;
using Spec = ESModelSpec;

constexpr double kMissing = MV::gMissingValue;

// In order: models of MakeTypeModel (estimates 0.5, 0.25, 0.125 in parameter
// order, final level 10 and trend 2, seasonal values 1, 2, ...), the others
// with the statistics of BasicInfo(), no RMSE and an initial state of zeros.
TEST(ESModelTest, WholeModelsInOneDocument) {
  tsxml::TSXPMMLDocument document;
  const TSXDictionaryRefs refs("M", "", "y");
  auto add = [&](const TSFModel& model) {
    document.AddModel(model, refs, model.GetImp()->GetHistoryData());
  };
  pmml_test::ModelOptions series, shortSeries, week, level, seasonal, trend;
  series.history = {3, kMissing, 4.5};
  shortSeries.history = {3, 4};
  week.seasonLength = 7;  // still "month"
  level.missingLevel = true;
  seasonal.missingSeasonal = true;
  trend.missingTrend = true;

  // No model name, an empty dependent variable.
  document.AddModel(MakeTypeModel(Spec::ESSimple), TSXDictionaryRefs(), {});
  // The time series needs the flag and a history.
  add(MakeTypeModel(Spec::ESSimple));
  document.SetESPMMLOutputTimeValue(false);
  add(MakeTypeModel(Spec::ESSimple, shortSeries));
  document.SetESPMMLOutputTimeValue(true);
  add(MakeTypeModel(Spec::ESSimple, shortSeries));
  add(MakeTypeModel(Spec::ESAdditiveWinters, series));
  // Brown: 2 / alpha + 10 - 2, then the trend; no array at 1e-7 or below.
  add(MakeTypeModel(Spec::ESBrown));
  for (const double alpha : {1e-8, 1e-7, 2e-7}) {
    add(MakeESModel(Spec(Spec::ESBrown), {alpha}, {}, WIESSmState(10, 2)));
  }
  // Without a position for the damping parameter, phi is missing.
  add(MakeTypeModel(Spec::ESDampedTrend));
  Spec noPhi(Spec::ESDampedTrend);
  noPhi.SetESParameterIndex(Spec::DampingTrend, -1);
  add(MakeESModel(noPhi, {0.5, 0.25, 0.125}, {}, WIESSmState(10, 2)));
  // A missing level drops the smoothed values, phase and arrays; a missing
  // seasonal value the phase, the array and initSeason; a missing trend the
  // trend value and, in a seasonal model, the season state.
  add(MakeTypeModel(Spec::ESAdditiveWinters, level));
  add(MakeTypeModel(Spec::ESMultiplicativeWinters, seasonal));
  add(MakeTypeModel(Spec::ESHolt, trend));
  add(MakeTypeModel(Spec::ESAdditiveWinters, trend));
  add(MakeTypeModel(Spec::ESSimpleSeasonal, week));
  // Infinities as they print; a missing error variance.
  Spec squareRoot(Spec::ESSimpleSeasonal, 2);
  squareRoot.SetYTransformSpec(TSTransformSpec(BFSharedConst::SquareRoot));
  EstimationInfo noVariance = testing_support::BasicInfo();
  noVariance.SetErrorVariance(kMissing);
  const double inf = std::numeric_limits<double>::infinity();
  add(MakeESModel(squareRoot, {0.5, 0.25}, {}, WIESSmState(1, 0, 0, {inf, 2}),
                  noVariance, {}, WIESSmState(1, 0, 0, {1, -inf})));
  // The mining schema names the time field set when the model is added.
  for (const char* field : {"Day", "Hour"}) {
    document.SetDateField(field, "date");
    add(MakeTypeModel(Spec::ESSimple));
  }
  EXPECT_EQ(pmml_test::WriteText(document, false),
            "\n" + testing_support::ReadTestData("pmml/es_models.xml"));
}

// The consistent form, with the time field changed between the models: a
// missing RMSE, estimate, phi, error variance or initial level leaves its
// attribute out or writes "NaN" in an extension; missing and NaN
// observations are "NaN" and infinities "INF"; a seasonal state without its
// level has an Array of "NaN". DataDictionary lists the dependent variable
// and the time field of the default form, then the other fields that the
// models name, each once.
TEST(ESModelTest, ConsistentFormDocument) {
  tsxml::TSXPMMLDocument document;
  document.SetConsistent(true);
  auto add = [&](const TSFModel& model, const TSXDictionaryRefs& refs) {
    document.AddModel(model, refs, model.GetImp()->GetHistoryData());
  };
  const double inf = std::numeric_limits<double>::infinity();
  EstimationInfo noVariance = testing_support::BasicInfo();
  noVariance.SetErrorVariance(kMissing);
  add(MakeESModel(Spec(Spec::ESSimple), {kMissing}, {}, WIESSmState(10, 0),
                  noVariance,
                  {3, kMissing, std::numeric_limits<double>::quiet_NaN(), inf},
                  WIESSmState(kMissing, 0)),
      TSXDictionaryRefs("S", "", "y"));
  Spec noPhi(Spec::ESDampedTrend);
  noPhi.SetESParameterIndex(Spec::DampingTrend, -1);
  add(MakeESModel(noPhi, {0.5, inf, 0.125}, {}, WIESSmState(10, 2)),
      TSXDictionaryRefs("D", "", "z"));
  document.SetDateField("Day", "date");
  pmml_test::ModelOptions level;
  level.missingLevel = true;
  add(MakeTypeModel(Spec::ESAdditiveWinters, level),
      TSXDictionaryRefs("W", "", "y"));
  EXPECT_EQ(
      pmml_test::WriteText(document, false),
      "\n" + testing_support::ReadTestData("pmml/es_models_consistent.xml"));
}

}  // namespace
