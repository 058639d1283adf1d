#include "tsxml/native/arima_state_element.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::Lines;
using testing_support::Text;

constexpr double kMissing = MV::gMissingValue;

// The text of what `add` hangs under an element "P".
template <typename Add>
std::string Under(Add add) {
  std::unique_ptr<XMLElement> parent(XMLElement::Create("P"));
  add(*parent);
  return Text(*parent);
}

AMModelSpec SpecWithPredictors(unsigned count) {
  AMModelSpec spec;
  spec.SetXCount(count);
  return spec;
}

TEST(ARIMAStateElementTest, CLSStateWithPredictorsAndEmptyNoise) {
  // The first predictor has a history, the second none; the actual Z values
  // are empty, so "ZState" holds the predicted ones alone; both noise lists
  // are empty and "NoiseState" stays, empty.
  ARMACLSForecastState state(SpecWithPredictors(2));
  state.SetStateSpan(TSSpan(0, 48, 3));
  state.SetXHistory(0, {1.5, kMissing}, {0.25});
  state.SetPredZ({0.5, -0.5});
  EXPECT_EQ(
      Under([&](XMLElement& p) { tsxml::AddARIMACLSState(p, state); }),
      Lines({"<P>", "\t<ARIMACLSState", "\t\tperiodDeficit=\"3\">",
             "\t\t<PredictorState>",
             "\t\t\t<FinalPredictor>1.5 NaN</FinalPredictor>",
             "\t\t\t<FinalTransferFunc>0.25</FinalTransferFunc>",
             "\t\t</PredictorState>", "\t\t<PredictorState/>", "\t\t<ZState>",
             "\t\t\t<FinalPredictedZ>0.5 -0.5</FinalPredictedZ>",
             "\t\t</ZState>", "\t\t<NoiseState/>", "\t</ARIMACLSState>",
             "</P>"}));
}

TEST(ARIMAStateElementTest, PredictorHistoryWithEmptyLists) {
  // A history whose lists are empty writes an empty "PredictorState".
  ARMACLSForecastState state(SpecWithPredictors(1));
  state.SetXHistory(0, {}, {2});
  state.SetActualN({1});
  EXPECT_EQ(Under([&](XMLElement& p) { tsxml::AddARIMACLSState(p, state); }),
            Lines({"<P>", "\t<ARIMACLSState", "\t\tperiodDeficit=\"0\">",
                   "\t\t<PredictorState>",
                   "\t\t\t<FinalTransferFunc>2</FinalTransferFunc>",
                   "\t\t</PredictorState>", "\t\t<NoiseState>",
                   "\t\t\t<FinalNoise>1</FinalNoise>", "\t\t</NoiseState>",
                   "\t</ARIMACLSState>", "</P>"}));
}

TEST(ARIMAStateElementTest, MLStateWritesThePackedOmega) {
  ARMAMLForecastState state{AMModelSpec()};
  state.SetStateSpan(TSSpan(0, 48, 1));
  state.SetActualZ({2});
  state.SetPredZ({-2});
  state.SetFinalOmega(DSymMat(3, {1, 0, 0, 0, 0.25, 4}));
  state.SetFinalStateV({0.125, -0.125, 1});
  EXPECT_EQ(Under([&](XMLElement& p) { tsxml::AddARIMAMLState(p, state); }),
            Lines({"<P>", "\t<ARIMAMLState", "\t\tperiodDeficit=\"1\">",
                   "\t\t<ZState>", "\t\t\t<FinalZ>2</FinalZ>",
                   "\t\t\t<FinalPredictedZ>-2</FinalPredictedZ>",
                   "\t\t</ZState>", "\t\t<KalmanState>",
                   "\t\t\t<FinalOmega>1 0 0 0 0.25 4</FinalOmega>",
                   "\t\t\t<FinalStateVector>0.125 -0.125 1</FinalStateVector>",
                   "\t\t</KalmanState>", "\t</ARIMAMLState>", "</P>"}));

  // Both Z lists empty: no "ZState"; both Kalman lists empty: an empty
  // "KalmanState".
  ARMAMLForecastState empty{AMModelSpec()};
  EXPECT_EQ(Under([&](XMLElement& p) { tsxml::AddARIMAMLState(p, empty); }),
            Lines({"<P>", "\t<ARIMAMLState", "\t\tperiodDeficit=\"0\">",
                   "\t\t<KalmanState/>", "\t</ARIMAMLState>", "</P>"}));
}

TEST(ARIMAStateElementTest, MLSpStateKeepsEveryThetaVector) {
  ARMAMLSpForecastState state{AMModelSpec()};
  state.SetActualN({0.5});
  state.SetPredN({0.25});
  state.SetFinalThetas({{1, 0.5}, {}, {kMissing}});
  state.SetFinalNu({1.5, 1.25});
  state.SetFinalIterCount(12);
  EXPECT_EQ(
      Under([&](XMLElement& p) { tsxml::AddARIMAMLSpState(p, state); }),
      Lines({"<P>", "\t<ARIMAMLSpState", "\t\tperiodDeficit=\"0\">",
             "\t\t<NoiseState>", "\t\t\t<FinalNoise>0.5</FinalNoise>",
             "\t\t\t<FinalPredictedNoise>0.25</FinalPredictedNoise>",
             "\t\t</NoiseState>", "\t\t<ThetaRecursionState",
             "\t\t\tfinalIterationNumber=\"12\">", "\t\t\t<FinalThetas>",
             "\t\t\t\t<ThetaVec>1 0.5</ThetaVec>", "\t\t\t\t<ThetaVec/>",
             "\t\t\t\t<ThetaVec>NaN</ThetaVec>", "\t\t\t</FinalThetas>",
             "\t\t\t<FinalNu>1.5 1.25</FinalNu>", "\t\t</ThetaRecursionState>",
             "\t</ARIMAMLSpState>", "</P>"}));

  // Empty thetas and nu are still written.
  ARMAMLSpForecastState empty{AMModelSpec()};
  EXPECT_EQ(Under([&](XMLElement& p) { tsxml::AddARIMAMLSpState(p, empty); }),
            Lines({"<P>", "\t<ARIMAMLSpState", "\t\tperiodDeficit=\"0\">",
                   "\t\t<NoiseState/>", "\t\t<ThetaRecursionState",
                   "\t\t\tfinalIterationNumber=\"0\">", "\t\t\t<FinalThetas/>",
                   "\t\t\t<FinalNu/>", "\t\t</ThetaRecursionState>",
                   "\t</ARIMAMLSpState>", "</P>"}));
}

}  // namespace
