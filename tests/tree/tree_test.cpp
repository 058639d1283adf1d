// Native documents through the public tree: whole documents, refused models,
// the registry of date specifications, handles and bare writes.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/arima_fixtures.h"
#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/native/model_xml_tree_maker.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/tree/tsxml_tree_imp.h"

namespace {

using testing_support::BasicInfo;
using testing_support::MakeCrostonModel;
using testing_support::MakeESModel;
using testing_support::MakeFullARIMAModel;
using testing_support::MakeSimpleModel;
using testing_support::MonthlyDateSpec;
using testing_support::ReadTestData;

const TSXDictionaryRefs kRefs("S", "", "y");

// The document `tree` writes, which it must.
std::string Write(TSXMLTree& tree) {
  std::ostringstream out;
  EXPECT_TRUE(tree.WriteToStream(out));
  return out.str();
}

TEST(NativeDocumentTest, SimpleModelWholeDocumentEmptiesTheTree) {
  TSXMLTree tree;
  std::ostringstream nothing;
  EXPECT_FALSE(tree.WriteToStream(nothing));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(Write(tree), ReadTestData("tree/simple.xml"));
  EXPECT_EQ(tree.GetModelCount(), 0);
  // A second write has nothing to write; reused, the tree writes a new
  // document of what was added since.
  EXPECT_FALSE(tree.WriteToStream(nothing));
  EXPECT_EQ(nothing.str(), "");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(Write(tree), ReadTestData("tree/simple.xml"));
}

TEST(NativeDocumentTest, SeasonalModelWithStatisticsWholeDocument) {
  ESModelSpec spec(ESModelSpec::ESMultiplicativeWinters, 4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  EstimationInfo info = BasicInfo(2, 20, 17, 0.004);
  info.SetGOFStat(BFSharedConst::RMSE, 1.25);
  info.SetGOFStat(BFSharedConst::MAPE, MV::gMissingValue);
  info.SetGOFStat(BFSharedConst::RSQ, 0.875);
  info.SetLBStat(9.5, 18, 15, 0.8912);
  TSXMLTree tree;
  tree.SetApplication("Forecaster", "2.1", "(c) nobody");
  ASSERT_TRUE(tree.AddModelTree(
      MakeESModel(spec, {0.75, 0.001, 0.5}, {0.125, 0.0005, 0.25},
                  WIESSmState(4.5, 0.0125, 3, {0.9, 1.1, 1.05, 0.95}), info),
      TSXDictionaryRefs("Sales", "Quarterly & \"net\"", "sales")));
  EXPECT_EQ(Write(tree), ReadTestData("tree/seasonal.xml"));
}

TEST(NativeDocumentTest, HeaderFollowsTheApplicationStrings) {
  TSXMLTree tree;
  tree.SetApplication("N", "", "copyright");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  std::string expected = ReadTestData("tree/simple.xml");
  expected.replace(
      expected.find("<Header/>"), 9,
      "<Header>\n\t\t<Application\n\t\t\tname=\"N\"/>\n\t</Header>");
  EXPECT_EQ(Write(tree), expected);
  // An empty name clears the strings set before.
  tree.SetApplication("", "V", "");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(Write(tree), ReadTestData("tree/simple.xml"));
}

// Simple and ARIMA models of each state class, a Croston model whose elapsed
// time sub-model has no level, and a model added in PMML mode, which the
// native document leaves out; a Croston model goes to the native document
// whatever the mode.
TEST(NativeDocumentTest, EveryModelKindInOneDocument) {
  const TSXDictionaryRefs arimaRefs("Sales", "", "sales", {"price"});
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  EXPECT_TRUE(tree.AddModelTree(MakeSimpleModel(), TSXDictionaryRefs()));
  EXPECT_EQ(tree.GetModelCount(), 0);
  tree.SetPMMLOutput(false);
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  ASSERT_TRUE(
      tree.AddModelTree(MakeFullARIMAModel<ARMACLSForecastState>(), arimaRefs));
  ASSERT_TRUE(
      tree.AddModelTree(MakeFullARIMAModel<ARMAMLForecastState>(), arimaRefs));
  ASSERT_TRUE(tree.AddModelTree(MakeFullARIMAModel<ARMAMLSpForecastState>(),
                                arimaRefs));
  tree.SetPMMLOutput(true);
  ASSERT_TRUE(tree.AddModelTree(
      MakeCrostonModel(BFSharedConst::SquareRoot, MV::gMissingValue),
      TSXDictionaryRefs("Parts", "spare parts", "demand")));
  EXPECT_EQ(tree.GetModelCount(), 5);
  std::ostringstream pmml;
  EXPECT_TRUE(tree.WriteToStream(pmml));
  EXPECT_EQ(pmml.str().find("<ExpSmoothingModel"), std::string::npos);
  EXPECT_EQ(tree.GetModelCount(), 5);
  tree.SetPMMLOutput(false);
  EXPECT_EQ(Write(tree), ReadTestData("tree/every_model.xml"));
}

TEST(NativeDocumentTest, BareElementsWhenNotComplete) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  std::ostringstream out;
  EXPECT_TRUE(imp->WriteToStream(out, false));
  const std::string element = ReadTestData("tree/simple_element.xml");
  EXPECT_EQ(out.str(), element + element);
  EXPECT_EQ(tree.GetModelCount(), 0);
  EXPECT_FALSE(imp->WriteToStream(out, false));
}

TEST(CheckDictRefsTest, RefusedModelsLeaveTheTreeUnchanged) {
  TSXDictionaryRefs withDateSpec("S", "", "y");
  withDateSpec.SetDateSpecID(1);
  const TSXDictionaryRefs refused[] = {
      TSXDictionaryRefs(),
      TSXDictionaryRefs("", "d", "y"),
      TSXDictionaryRefs("S", "d", ""),
      TSXDictionaryRefs("S", "", "y", {"x"}),
      TSXDictionaryRefs("S", "", "y", {""}),
      withDateSpec,
  };
  TSXMLTree tree;
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  for (const TSXDictionaryRefs& refs : refused) {
    EXPECT_FALSE(tree.AddModelTree(MakeSimpleModel(), refs));
    EXPECT_FALSE(tree.AddModelTree(MakeCrostonModel(), refs));
  }
  // Empty handles, a model its element can't be made of, and ARIMA models
  // whose predictors the references don't name one for one.
  EXPECT_FALSE(tree.AddModelTree(TSFModel(), kRefs));
  EXPECT_FALSE(tree.AddModelTree(TSFCrModel(), kRefs));
  EXPECT_FALSE(
      tree.AddModelTree(MakeESModel(ESModelSpec(ESModelSpec::ESSimple), {0.2},
                                    {}, WIESSmState(MV::gMissingValue, 0)),
                        kRefs));
  const TSFModel arima = MakeFullARIMAModel<ARMACLSForecastState>();
  EXPECT_FALSE(tree.AddModelTree(arima, kRefs));
  EXPECT_FALSE(
      tree.AddModelTree(arima, TSXDictionaryRefs("A", "", "y", {"p", "q"})));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(Write(tree), ReadTestData("tree/simple.xml"));
}

TEST(ModelXMLTreeMakerTest, ReleaseTreeGivesTheElementOnceAndNoneOnAMismatch) {
  TSFModel model = MakeSimpleModel();
  ModelXMLTreeMaker maker(kRefs, model.GetImp()->GetEstimationInfo());
  model.GetImp()->GetForecastState()->Accept(maker);
  std::unique_ptr<OstraTimeXML::XMLElement> element(maker.ReleaseTree());
  EXPECT_NE(element, nullptr);
  EXPECT_EQ(maker.ReleaseTree(), nullptr);
  // The visit builds nothing when the predictor names don't match.
  model = MakeFullARIMAModel<ARMACLSForecastState>();
  ModelXMLTreeMaker mismatch(kRefs, model.GetImp()->GetEstimationInfo());
  model.GetImp()->GetForecastState()->Accept(mismatch);
  EXPECT_EQ(mismatch.ReleaseTree(), nullptr);
}

TEST(TreeHandleTest, CopiesShareOneTreeAndNullAnswersFalse) {
  TSXMLTree tree;
  TSXMLTree copy(tree);
  TSXMLTree assigned;
  assigned = copy;
  const TSXMLTree& self = assigned;
  assigned = self;
  ASSERT_TRUE(copy.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(assigned.GetModelCount(), 1);

  TSXMLTree null(nullptr);
  TSXMLTree nullCopy(null);
  nullCopy = null;
  null.SetApplication("a", "b", "c");
  null.SetESPMMLOutputTimeValue(false);
  EXPECT_EQ(null.AddDateSpec(MonthlyDateSpec(2001), "d"), 0);
  EXPECT_FALSE(null.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_FALSE(null.AddModelTree(MakeCrostonModel(), kRefs));
  EXPECT_EQ(null.GetModelCount(), 0);
  null.SetPMMLOutput(true);
  std::ostringstream out;
  EXPECT_FALSE(nullCopy.WriteToStream(out));
  EXPECT_EQ(out.str(), "");
}

TSXDictionaryRefs RefsOn(int dateSpecID) {
  TSXDictionaryRefs refs("M", "", "y");
  refs.SetDateSpecID(dateSpecID);
  return refs;
}

// The used specifications in registration order, each model with its
// identifier; a complete write empties the registry.
TEST(DateSpecRegistryTest, UsedSpecificationsAndAnEmptyRegistryAfterAWrite) {
  TSXMLTree tree;
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(1980), "unused"), 1);
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(1990), "B"), 2);
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001), "A"), 3);
  // An equivalent specification keeps its identifier and descriptor.
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001), "again"), 3);
  EXPECT_FALSE(tree.AddModelTree(MakeSimpleModel(), RefsOn(4)));
  std::ostringstream nothing;
  EXPECT_FALSE(tree.WriteToStream(nothing));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(3)));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(3)));
  ASSERT_TRUE(tree.AddModelTree(MakeCrostonModel(), RefsOn(2)));
  EXPECT_EQ(Write(tree), ReadTestData("tree/date_specs.xml"));
  EXPECT_FALSE(tree.AddModelTree(MakeSimpleModel(), RefsOn(3)));
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(1990), "new"), 1);
}

TEST(DateSpecRegistryTest, BareWriteKeepsSpecificationsAndUsedFlags) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  const int id = tree.AddDateSpec(MonthlyDateSpec(2001), "kept");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(id)));
  std::ostringstream bare;
  ASSERT_TRUE(imp->WriteToStream(bare, false));
  // Still registered and still used: a model without a date specification
  // now brings it into the document.
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001), "x"), id);
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(0)));
  EXPECT_NE(Write(tree).find("dateSpecDescriptor=\"kept\""), std::string::npos);
}

}  // namespace
