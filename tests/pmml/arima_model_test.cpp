// The TimeSeriesModel elements of ARIMA models, compared whole with the files
// tests/data/pmml/arima_*.xml: every part of a seasonal model under the
// Kalman state, the edges of the structure and the state in one document,
// and the two forms of numbers and names.
#include "tsxml/pmml/arima_model.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>

#include "arima_test_models.h"
#include "pmml_test_util.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/pmml/pmml_document.h"

namespace {

using OstraTimeXML::XMLElement;
using pmml_test::MakeARIMAModel;
using testing_support::BasicInfo;
using tsxml::PMMLMode;

constexpr double kMissing = MV::gMissingValue;
constexpr double kInf = std::numeric_limits<double>::infinity();

std::string ElementText(const TSFModel& model, const TSXDictionaryRefs& refs,
                        PMMLMode mode = PMMLMode::kDefault) {
  const std::unique_ptr<XMLElement> element(
      tsxml::BuildARIMAModel(model, refs, mode));
  return testing_support::Text(*element);
}

std::string Expected(const std::string& name) {
  return "\n" + testing_support::ReadTestData("pmml/" + name + ".xml");
}

TEST(ARIMAModelTest, SeasonalModelWithEveryPartUnderTheKalmanState) {
  EXPECT_EQ(ElementText(pmml_test::MakeSeasonalKalmanModel(),
                        TSXDictionaryRefs("Sales", "", "sales", {"price"})),
            Expected("arima_kalman"));
}

// Five ARIMA models in one document, all named "TS"; DataDictionary lists
// the fields of the last one. In order: conditional least squares (theta
// recursion without theta and nu, no Z state with one Z series), ARIMA(0,0,0)
// with a missing error variance, ARIMA(0,1,0) with the theta recursion
// state, an AR term at lag 3 only with a seasonal difference only, and two
// predictors of which the references name one: the first without a
// denominator, the second without a history.
TEST(ARIMAModelTest, EdgesOfStructureAndStateInOneDocument) {
  tsxml::TSXPMMLDocument document;
  auto add = [&document](const TSFModel& model, const TSXDictionaryRefs& refs) {
    EXPECT_TRUE(document.AddModel(model, refs, {}));
  };

  AMModelSpec ar1;
  ar1.SetARStruct({1}, {});
  add(MakeARIMAModel<ARMACLSForecastState>(ar1, {0.4}, BasicInfo(),
                                           [](ARMACLSForecastState& state) {
                                             state.SetActualN({0.1, -0.2});
                                             state.SetPredN({0.05, 0.15});
                                             state.SetActualZ({1.5});
                                           }),
      TSXDictionaryRefs("C", "", "y"));

  EstimationInfo noVariance = BasicInfo();
  noVariance.SetErrorVariance(kMissing);
  add(MakeARIMAModel<ARMAMLForecastState>(AMModelSpec(), {}, noVariance),
      TSXDictionaryRefs("Z", "", "zero"));

  AMModelSpec walk;
  walk.SetYDiff(1, 0);
  add(MakeARIMAModel<ARMAMLSpForecastState>(
          walk, {}, BasicInfo(),
          [](ARMAMLSpForecastState& state) {
            state.SetActualN({0.1});
            state.SetFinalThetas({{0.5, 0.25}, {0.125}});
            state.SetFinalNu({1.5, 1.25});
            state.SetFinalIterCount(7);
          }),
      TSXDictionaryRefs("W", "", "walk"));

  AMModelSpec lag3;
  lag3.SetSeasonLength(4);
  lag3.SetYDiff(0, 1);
  lag3.SetARStruct({3}, {});
  add(MakeARIMAModel<ARMAMLForecastState>(lag3, {0.5}),
      TSXDictionaryRefs("L", "", "lag3"));

  AMModelSpec predictors;
  predictors.AddPredictor(AMPredictorSpec());
  AMPredictorSpec second;
  second.numeratorNonSeasonal = {2};
  second.denominatorNonSeasonal = {2};
  predictors.AddPredictor(second);
  add(MakeARIMAModel<ARMAMLForecastState>(
          predictors, {1.5, 2.5, 0.5, 0.25}, BasicInfo(),
          [](ARMAMLForecastState& state) { state.SetXHistory(0, {7}, {0.7}); }),
      TSXDictionaryRefs("F", "", "y", {"x0"}));

  EXPECT_EQ(pmml_test::WriteText(document, false), Expected("arima_models"));
}

// A model of odd values: no dependent variable and an unnamed predictor, an
// infinite RMSE, a NaN constant, a missing and an infinite AR coefficient, a
// transient outlier whose damping is missing, an infinite magnitude, an
// outlier of no known type, a missing omega, a NaN state and a missing error
// variance. The default form writes the number text and leaves the names
// out; the consistent form writes the schema's spellings, "NaN" for the
// missing extension value, and empty names.
TEST(ARIMAModelTest, OddValuesInBothForms) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  AMModelSpec spec;
  spec.SetSeasonLength(4);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({1, 2}, {});
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Transient, 5),
                    TSOutlierSpec(TSOutlierSpec::Additive, 7),
                    TSOutlierSpec(8, 9)});
  EstimationInfo info = BasicInfo();
  info.SetGOFStat(BFSharedConst::RMSE, kInf);
  info.SetErrorVariance(kMissing);
  const TSFModel model = MakeARIMAModel<ARMAMLForecastState>(
      spec, {nan, kMissing, -kInf, 2, kMissing, kInf, 1}, info,
      [nan](ARMAMLForecastState& state) {
        state.SetFinalOmega(DSymMat(1, {kMissing}));
        state.SetFinalStateV({nan});
      });
  const TSXDictionaryRefs refs("O", "", "", {""});
  EXPECT_EQ(ElementText(model, refs), Expected("arima_odd_values"));
  EXPECT_EQ(ElementText(model, refs, PMMLMode::kConsistent),
            Expected("arima_odd_values_consistent"));
}

}  // namespace
