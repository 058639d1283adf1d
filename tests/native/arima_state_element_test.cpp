#include "tsxml/native/arima_state_element.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using OstraTimeXML::XMLElement;

constexpr double kMissing = MV::gMissingValue;

// Each state class filled and empty. A predictor without a history writes an
// empty "PredictorState", and so does one whose lists are empty; both Z lists
// empty drop "ZState", while empty noise, Kalman, theta and nu lists keep
// their elements.
TEST(ARIMAStateElementTest, EveryStateClassFilledAndEmpty) {
  AMModelSpec predictors;
  predictors.SetXCount(2);
  ARMACLSForecastState cls(predictors);
  cls.SetStateSpan(TSSpan(0, 48, 3));
  cls.SetXHistory(0, {1.5, kMissing}, {0.25});
  cls.SetPredZ({0.5, -0.5});
  predictors.SetXCount(1);
  ARMACLSForecastState emptyLists(predictors);
  emptyLists.SetXHistory(0, {}, {2});
  emptyLists.SetActualN({1});

  ARMAMLForecastState ml{AMModelSpec()};
  ml.SetStateSpan(TSSpan(0, 48, 1));
  ml.SetActualZ({2});
  ml.SetPredZ({-2});
  ml.SetFinalOmega(DSymMat(3, {1, 0, 0, 0, 0.25, 4}));
  ml.SetFinalStateV({0.125, -0.125, 1});

  ARMAMLSpForecastState mlsp{AMModelSpec()};
  mlsp.SetActualN({0.5});
  mlsp.SetPredN({0.25});
  mlsp.SetFinalThetas({{1, 0.5}, {}, {kMissing}});
  mlsp.SetFinalNu({1.5, 1.25});
  mlsp.SetFinalIterCount(12);

  std::unique_ptr<XMLElement> parent(XMLElement::Create("P"));
  tsxml::AddARIMACLSState(*parent, cls);
  tsxml::AddARIMACLSState(*parent, emptyLists);
  tsxml::AddARIMAMLState(*parent, ml);
  tsxml::AddARIMAMLState(*parent, ARMAMLForecastState{AMModelSpec()});
  tsxml::AddARIMAMLSpState(*parent, mlsp);
  tsxml::AddARIMAMLSpState(*parent, ARMAMLSpForecastState{AMModelSpec()});
  EXPECT_EQ(testing_support::Text(*parent),
            "\n" + testing_support::ReadTestData("native/arima_states.xml"));
}

}  // namespace
