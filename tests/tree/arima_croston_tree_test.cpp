// ARIMA and Croston models through the document tree.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/arima_fixtures.h"
#include "support/model_fixtures.h"
#include "tree_test_util.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/native/model_xml_tree_maker.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

using testing_support::EstimateElement;
using testing_support::Lines;
using testing_support::MakeCrostonModel;
using testing_support::MakeFullARIMAModel;
using testing_support::MakeSimpleModel;
using tree_testing::kBasicInfo;
using tree_testing::kDocumentStart;
using tree_testing::kRefs;
using tree_testing::Write;

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

// The ARIMA element itself is checked whole in native/.
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
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  TSXMLTree reference;
  ASSERT_TRUE(reference.AddModelTree(MakeSimpleModel(), kRefs));
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

const TSXDictionaryRefs kCrostonRefs("Parts", "spare parts", "demand");

TEST(CrostonTreeTest, SubmodelWithMissingLevelKeepsItsElements) {
  TSXMLTree tree;
  ASSERT_TRUE(tree.AddModelTree(
      MakeCrostonModel(BFSharedConst::SquareRoot, MV::gMissingValue),
      kCrostonRefs));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(Write(tree),
            kDocumentStart +
                Lines({"\t<CrostonModel", "\t\tmodelName=\"Parts\"",
                       "\t\tmodelDescriptor=\"spare parts\"",
                       "\t\tvariableID=\"demand\">", "\t\t<Transformation",
                       "\t\t\tfunction=\"squareRoot\"/>",
                       "\t\t<ActualDemandSubmodel>", "\t\t\t<ESSimple>",
                       EstimateElement(4, "ParmLevel", {}, {"0.2 0.05"}),
                       "\t\t\t\t<StateLevel>12.5</StateLevel>",
                       "\t\t\t</ESSimple>", "\t\t</ActualDemandSubmodel>"}) +
                Lines({"\t\t<ElapsedTimeSubmodel>", "\t\t\t<ESSimple>",
                       EstimateElement(4, "ParmLevel", {}, {"0.1 0.05"}),
                       "\t\t\t</ESSimple>", "\t\t</ElapsedTimeSubmodel>",
                       "\t\t<AbsoluteErrorSubmodel>", "\t\t\t<ESSimple>",
                       EstimateElement(4, "ParmLevel", {}, {"0.3 0.05"}),
                       "\t\t\t\t<StateLevel>4</StateLevel>",
                       "\t\t\t</ESSimple>", "\t\t</AbsoluteErrorSubmodel>"}) +
                kBasicInfo + Lines({"\t</CrostonModel>", "</TSCXML>"}));
}

TEST(CrostonTreeTest, RefusedReferencesAndEmptyHandles) {
  TSXMLTree tree;
  // A Croston model has no predictors to name.
  EXPECT_FALSE(tree.AddModelTree(MakeCrostonModel(),
                                 TSXDictionaryRefs("P", "", "demand", {"x"})));
  EXPECT_FALSE(tree.AddModelTree(TSFCrModel(), kCrostonRefs));
  EXPECT_EQ(tree.GetModelCount(), 0);
  TSXMLTree null(nullptr);
  EXPECT_FALSE(null.AddModelTree(MakeCrostonModel(), kCrostonRefs));
  EXPECT_EQ(null.GetModelCount(), 0);
}

TEST(TreeModeTest, EachModeWritesItsOwnModels) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  // PMML mode takes the model without checking the references and without
  // counting it.
  EXPECT_TRUE(tree.AddModelTree(MakeSimpleModel(), TSXDictionaryRefs()));
  EXPECT_EQ(tree.GetModelCount(), 0);
  tree.SetPMMLOutput(false);
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  ASSERT_TRUE(tree.AddModelTree(MakeFullARIMAModel<ARMACLSForecastState>(),
                                kARIMARefs));
  // A Croston model goes to the native document whatever the mode.
  tree.SetPMMLOutput(true);
  ASSERT_TRUE(tree.AddModelTree(MakeCrostonModel(), kCrostonRefs));
  EXPECT_EQ(tree.GetModelCount(), 3);
  std::ostringstream pmml;
  EXPECT_TRUE(tree.WriteToStream(pmml));
  EXPECT_EQ(pmml.str().find("<ExpSmoothingModel"), std::string::npos);
  EXPECT_EQ(tree.GetModelCount(), 3);
  tree.SetPMMLOutput(false);
  const std::string native = Write(tree);
  EXPECT_EQ(native.find("<TimeSeriesModel"), std::string::npos);
  EXPECT_EQ(
      NamesAtDepth(native, 1),
      (std::vector<std::string>{"Header", "DataDictionary", "ExpSmoothingModel",
                                "ARIMAModel", "CrostonModel"}));
}

}  // namespace
