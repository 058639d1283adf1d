// ARIMA and Croston models through the document tree.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "modelapi/forecast_model.h"
#include "support/arima_fixtures.h"
#include "support/model_fixtures.h"
#include "tree/model_xml_tree_maker.h"
#include "tree/tsxml_tree.h"

namespace {

using testing_support::Lines;
using testing_support::MakeCrostonModel;
using testing_support::MakeFullARIMAModel;
using testing_support::MakeSimpleModel;

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";
const std::string kDocumentStart = "\n\t<Header/>\n\t<DataDictionary/>";
const std::string kInfo =
    Lines({"\t\t<EstimationInfo", "\t\t\tperiodStartIndex=\"0\"",
           "\t\t\tperiodLength=\"24\"", "\t\t\tdegreesOfFreedom=\"23\">",
           "\t\t\t<Statistic", "\t\t\t\ttype=\"errVariance\">2.5</Statistic>",
           "\t\t</EstimationInfo>"});

std::string Write(TSXMLTree& tree) {
  std::ostringstream out;
  EXPECT_TRUE(tree.WriteToStream(out));
  return out.str();
}

// The document after the root's start tag; the root itself is checked with
// the exponential smoothing documents.
std::string Body(const std::string& document) {
  EXPECT_EQ(document.rfind(kDeclaration + "\n<TSCXML", 0), 0u);
  const size_t header = document.find("\n\t<Header");
  return header == std::string::npos ? document : document.substr(header);
}

// The names of the elements at `depth` tabs, in document order.
std::vector<std::string> NamesAtDepth(const std::string& text, size_t depth) {
  const std::string start = "\n" + std::string(depth, '\t') + "<";
  std::vector<std::string> names;
  for (size_t at = text.find(start); at != std::string::npos;
       at = text.find(start, at + 1)) {
    const size_t name = at + start.size();
    if (text[name] == '/') continue;
    names.push_back(text.substr(name, text.find_first_of(">/\n", name) - name));
  }
  return names;
}

const TSXDictionaryRefs kARIMARefs("Sales", "", "sales", {"price"});

TEST(ARIMATreeTest, WholeDocumentWithAnARIMAModel) {
  TSXMLTree tree;
  ASSERT_TRUE(
      tree.AddModelTree(MakeFullARIMAModel<ARMAMLForecastState>(), kARIMARefs));
  EXPECT_EQ(
      Body(Write(tree)),
      kDocumentStart +
          Lines(
              {"\t<ARIMAModel",
               "\t\tmodelName=\"Sales\"",
               "\t\tvariableID=\"sales\"",
               "\t\tseasonLength=\"12\">",
               "\t\t<Transformation",
               "\t\t\tfunction=\"logarithm\"",
               "\t\t\tnonSeasonalDiff=\"1\"",
               "\t\t\tseasonalDiff=\"1\"/>",
               "\t\t<ConstantTerm>",
               "\t\t\t<EstimatedParameter>0.5 0.01</EstimatedParameter>",
               "\t\t</ConstantTerm>",
               "\t\t<Autoregression>",
               "\t\t\t<NonSeasonalFactor>",
               "\t\t\t\t<LagTerm",
               "\t\t\t\t\tlag=\"1\">",
               "\t\t\t\t\t<EstimatedParameter>0.75 0.02</EstimatedParameter>",
               "\t\t\t\t</LagTerm>",
               "\t\t\t\t<LagTerm",
               "\t\t\t\t\tlag=\"2\">",
               "\t\t\t\t\t<EstimatedParameter>1 0.03</EstimatedParameter>",
               "\t\t\t\t</LagTerm>",
               "\t\t\t</NonSeasonalFactor>",
               "\t\t\t<SeasonalFactor>",
               "\t\t\t\t<LagTerm",
               "\t\t\t\t\tlag=\"1\">",
               "\t\t\t\t\t<EstimatedParameter>1.25 0.04</EstimatedParameter>",
               "\t\t\t\t</LagTerm>",
               "\t\t\t</SeasonalFactor>",
               "\t\t</Autoregression>",
               "\t\t<MovingAverage>",
               "\t\t\t<SeasonalFactor>",
               "\t\t\t\t<LagTerm",
               "\t\t\t\t\tlag=\"1\">",
               "\t\t\t\t\t<EstimatedParameter>1.5 0.05</EstimatedParameter>",
               "\t\t\t\t</LagTerm>",
               "\t\t\t</SeasonalFactor>",
               "\t\t</MovingAverage>",
               "\t\t<PredictorEffect",
               "\t\t\tvariableID=\"price\">",
               "\t\t\t<Transformation",
               "\t\t\t\tnonSeasonalDiff=\"1\"",
               "\t\t\t\tdelay=\"1\"/>",
               "\t\t\t<Numerator>",
               "\t\t\t\t<NonSeasonalFactor>",
               "\t\t\t\t\t<ZeroLagTerm>",
               "\t\t\t\t\t\t<EstimatedParameter>1.75 0.06</EstimatedParameter>",
               "\t\t\t\t\t</ZeroLagTerm>",
               "\t\t\t\t\t<LagTerm",
               "\t\t\t\t\t\tlag=\"1\">",
               "\t\t\t\t\t\t<EstimatedParameter>2 0.07</EstimatedParameter>",
               "\t\t\t\t\t</LagTerm>",
               "\t\t\t\t</NonSeasonalFactor>",
               "\t\t\t</Numerator>",
               "\t\t\t<Denominator>",
               "\t\t\t\t<NonSeasonalFactor>",
               "\t\t\t\t\t<LagTerm",
               "\t\t\t\t\t\tlag=\"1\">",
               "\t\t\t\t\t\t<EstimatedParameter>2.25 0.08</EstimatedParameter>",
               "\t\t\t\t\t</LagTerm>",
               "\t\t\t\t</NonSeasonalFactor>",
               "\t\t\t</Denominator>",
               "\t\t</PredictorEffect>",
               "\t\t<OutlierEffect",
               "\t\t\ttype=\"additive\"",
               "\t\t\tstartIndex=\"30\">",
               "\t\t\t<EstimatedParameter>2.5 0.09</EstimatedParameter>",
               "\t\t</OutlierEffect>",
               "\t\t<OutlierEffect",
               "\t\t\ttype=\"transient\"",
               "\t\t\tstartIndex=\"41\">",
               "\t\t\t<EstimatedParameter>2.75 0.1</EstimatedParameter>",
               "\t\t\t<EstimatedParameter>3 0.11</EstimatedParameter>",
               "\t\t</OutlierEffect>",
               "\t\t<ARIMAMLState",
               "\t\t\tperiodDeficit=\"2\">",
               "\t\t\t<PredictorState>",
               "\t\t\t\t<FinalPredictor>3 4</FinalPredictor>",
               "\t\t\t\t<FinalTransferFunc>0.5 0.75</FinalTransferFunc>",
               "\t\t\t</PredictorState>",
               "\t\t\t<ZState>",
               "\t\t\t\t<FinalZ>0.25 -0.5</FinalZ>",
               "\t\t\t\t<FinalPredictedZ>0.125 -0.25</FinalPredictedZ>",
               "\t\t\t</ZState>",
               "\t\t\t<KalmanState>",
               "\t\t\t\t<FinalOmega>1 0.5 2</FinalOmega>",
               "\t\t\t\t<FinalStateVector>0.25 0.125</FinalStateVector>",
               "\t\t\t</KalmanState>",
               "\t\t</ARIMAMLState>"}) +
          kInfo + Lines({"\t</ARIMAModel>", "</TSCXML>"}));
}

TEST(ARIMATreeTest, EachStateClassAddsItsStateBeforeEstimationInfo) {
  const std::vector<std::string> structure = {
      "Transformation",  "ConstantTerm",  "Autoregression", "MovingAverage",
      "PredictorEffect", "OutlierEffect", "OutlierEffect"};
  struct Case {
    TSFModel model;
    const char* state;
    std::vector<std::string> stateChildren;
  } cases[] = {
      {MakeFullARIMAModel<ARMACLSForecastState>(),
       "ARIMACLSState",
       {"PredictorState", "ZState", "NoiseState"}},
      {MakeFullARIMAModel<ARMAMLForecastState>(),
       "ARIMAMLState",
       {"PredictorState", "ZState", "KalmanState"}},
      {MakeFullARIMAModel<ARMAMLSpForecastState>(),
       "ARIMAMLSpState",
       {"PredictorState", "ZState", "NoiseState", "ThetaRecursionState"}},
  };
  for (const Case& c : cases) {
    TSXMLTree tree;
    ASSERT_TRUE(tree.AddModelTree(c.model, kARIMARefs));
    const std::string document = Write(tree);
    std::vector<std::string> children = structure;
    children.push_back(c.state);
    children.push_back("EstimationInfo");
    EXPECT_EQ(NamesAtDepth(document, 2), children) << c.state;
    const size_t begin = document.find(std::string("<") + c.state);
    const size_t end = document.find(std::string("</") + c.state);
    ASSERT_LT(begin, end);
    EXPECT_EQ(NamesAtDepth(document.substr(begin, end - begin), 3),
              c.stateChildren)
        << c.state;
  }
}

TEST(ARIMATreeTest, PredictorNameMismatchLeavesTheTreeUnchanged) {
  TSXMLTree tree;
  ASSERT_TRUE(
      tree.AddModelTree(MakeSimpleModel(), TSXDictionaryRefs("S", "", "y")));
  TSXMLTree reference;
  ASSERT_TRUE(reference.AddModelTree(MakeSimpleModel(),
                                     TSXDictionaryRefs("S", "", "y")));
  const TSFModel model = MakeFullARIMAModel<ARMACLSForecastState>();
  EXPECT_FALSE(tree.AddModelTree(model, TSXDictionaryRefs("A", "", "y")));
  EXPECT_FALSE(
      tree.AddModelTree(model, TSXDictionaryRefs("A", "", "y", {"p", "q"})));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(Write(tree), Write(reference));

  // The visit itself builds nothing when the names don't match.
  const TSXDictionaryRefs refs("A", "", "y");
  ModelXMLTreeMaker maker(refs, model.GetImp()->GetEstimationInfo());
  model.GetImp()->GetForecastState()->Accept(maker);
  EXPECT_EQ(maker.ReleaseTree(), nullptr);
}

const std::string kCrostonElement = Lines({
    "\t<CrostonModel",
    "\t\tmodelName=\"Parts\"",
    "\t\tmodelDescriptor=\"spare parts\"",
    "\t\tvariableID=\"demand\">",
    "\t\t<Transformation",
    "\t\t\tfunction=\"squareRoot\"/>",
    "\t\t<ActualDemandSubmodel>",
    "\t\t\t<ESSimple>",
    "\t\t\t\t<ParmLevel>",
    "\t\t\t\t\t<EstimatedParameter>0.2 0.05</EstimatedParameter>",
    "\t\t\t\t</ParmLevel>",
    "\t\t\t\t<StateLevel>12.5</StateLevel>",
    "\t\t\t</ESSimple>",
    "\t\t</ActualDemandSubmodel>",
    "\t\t<ElapsedTimeSubmodel>",
    "\t\t\t<ESSimple>",
    "\t\t\t\t<ParmLevel>",
    "\t\t\t\t\t<EstimatedParameter>0.1 0.05</EstimatedParameter>",
    "\t\t\t\t</ParmLevel>",
    "\t\t\t\t<StateLevel>3.25</StateLevel>",
    "\t\t\t</ESSimple>",
    "\t\t</ElapsedTimeSubmodel>",
    "\t\t<AbsoluteErrorSubmodel>",
    "\t\t\t<ESSimple>",
    "\t\t\t\t<ParmLevel>",
    "\t\t\t\t\t<EstimatedParameter>0.3 0.05</EstimatedParameter>",
    "\t\t\t\t</ParmLevel>",
    "\t\t\t\t<StateLevel>4</StateLevel>",
    "\t\t\t</ESSimple>",
    "\t\t</AbsoluteErrorSubmodel>",
});
const TSXDictionaryRefs kCrostonRefs("Parts", "spare parts", "demand");

TEST(CrostonTreeTest, WholeDocumentWithACrostonModel) {
  TSXMLTree tree;
  ASSERT_TRUE(tree.AddModelTree(MakeCrostonModel(BFSharedConst::SquareRoot),
                                kCrostonRefs));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(Body(Write(tree)), kDocumentStart + kCrostonElement + kInfo +
                                   Lines({"\t</CrostonModel>", "</TSCXML>"}));
}

TEST(CrostonTreeTest, RefusedReferencesAndEmptyHandles) {
  TSXMLTree tree;
  // A Croston model has no predictors to name.
  EXPECT_FALSE(tree.AddModelTree(MakeCrostonModel(),
                                 TSXDictionaryRefs("P", "", "demand", {"x"})));
  EXPECT_FALSE(
      tree.AddModelTree(MakeCrostonModel(), TSXDictionaryRefs("", "", "d")));
  EXPECT_FALSE(tree.AddModelTree(TSFCrModel(), kCrostonRefs));
  EXPECT_EQ(tree.GetModelCount(), 0);
  TSXMLTree null(nullptr);
  EXPECT_FALSE(null.AddModelTree(MakeCrostonModel(), kCrostonRefs));
  EXPECT_EQ(null.GetModelCount(), 0);
}

// A Croston model added in PMML mode stays for the native document.
TEST(CrostonTreeTest, AddedWhateverTheModeInOrderWithOtherModels) {
  TSXMLTree tree;
  ASSERT_TRUE(
      tree.AddModelTree(MakeSimpleModel(), TSXDictionaryRefs("S", "", "y")));
  ASSERT_TRUE(tree.AddModelTree(MakeFullARIMAModel<ARMACLSForecastState>(),
                                kARIMARefs));
  tree.SetPMMLOutput(true);
  ASSERT_TRUE(tree.AddModelTree(MakeCrostonModel(), kCrostonRefs));
  EXPECT_EQ(tree.GetModelCount(), 3);
  tree.SetPMMLOutput(false);
  EXPECT_EQ(
      NamesAtDepth(Write(tree), 1),
      (std::vector<std::string>{"Header", "DataDictionary", "ExpSmoothingModel",
                                "ARIMAModel", "CrostonModel"}));
}

}  // namespace
