#include <gtest/gtest.h>

#include <sstream>

#include "support/model_fixtures.h"
#include "tree_test_util.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/native/model_xml_tree_maker.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/tree/tsxml_tree_imp.h"

namespace {

using testing_support::BasicInfo;
using testing_support::EstimateElement;
using testing_support::Lines;
using testing_support::MakeESModel;
using testing_support::MakeSimpleModel;
using tree_testing::kBasicInfo;
using tree_testing::kDeclaration;
using tree_testing::kDocumentStart;
using tree_testing::kRefs;
using tree_testing::kRootStart;
using tree_testing::Write;

constexpr double kMissing = MV::gMissingValue;

// The element of MakeSimpleModel() with the references ("S", "", "y") at
// one tab.
const std::string kSimpleElement =
    Lines({"\t<ExpSmoothingModel", "\t\tmodelName=\"S\"",
           "\t\tvariableID=\"y\">", "\t\t<ESSimple>",
           EstimateElement(3, "ParmLevel", {}, {"0.25 0.05"}),
           "\t\t\t<StateLevel>10.5</StateLevel>", "\t\t</ESSimple>"}) +
    kBasicInfo + "\n\t</ExpSmoothingModel>";

TEST(NativeDocumentTest, SimpleModelWholeDocumentEmptiesTheTree) {
  TSXMLTree tree;
  std::ostringstream nothing;
  EXPECT_FALSE(tree.WriteToStream(nothing));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(tree.GetModelCount(), 1);
  const std::string document = Write(tree);
  EXPECT_EQ(document, kDocumentStart + kSimpleElement + "\n</TSCXML>");
  EXPECT_EQ(tree.GetModelCount(), 0);
  // A second write has nothing to write; reused, the tree writes a new
  // document of what was added since.
  EXPECT_FALSE(tree.WriteToStream(nothing));
  EXPECT_EQ(nothing.str(), "");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(Write(tree), document);
}

TEST(NativeDocumentTest, SeasonalModelWithStatisticsWholeDocument) {
  ESModelSpec spec(ESModelSpec::ESMultiplicativeWinters, 4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  EstimationInfo info = BasicInfo(2, 20, 17, 0.004);
  info.SetGOFStat(BFSharedConst::RMSE, 1.25);
  info.SetGOFStat(BFSharedConst::MAPE, kMissing);
  info.SetGOFStat(BFSharedConst::RSQ, 0.875);
  info.SetLBStat(9.5, 18, 15, 0.8912);
  TSXMLTree tree;
  tree.SetApplication("Forecaster", "2.1", "(c) nobody");
  TSXDictionaryRefs refs("Sales", "Quarterly & \"net\"", "sales");
  ASSERT_TRUE(tree.AddModelTree(
      MakeESModel(spec, {0.75, 0.001, 0.5}, {0.125, 0.0005, 0.25},
                  WIESSmState(4.5, 0.0125, 3, {0.9, 1.1, 1.05, 0.95}), info),
      refs));
  EXPECT_EQ(
      Write(tree),
      kDeclaration + kRootStart +
          Lines({"\t<Header>", "\t\t<Application", "\t\t\tname=\"Forecaster\"",
                 "\t\t\tversion=\"2.1\"/>", "\t</Header>",
                 "\t<DataDictionary/>", "\t<ExpSmoothingModel",
                 "\t\tmodelName=\"Sales\"",
                 "\t\tmodelDescriptor=\"Quarterly &amp; &quot;net&quot;\"",
                 "\t\tvariableID=\"sales\">", "\t\t<Transformation",
                 "\t\t\tfunction=\"logarithm\"/>"}) +
          Lines({"\t\t<ESMultiplicativeWinters", "\t\t\tseasonLength=\"4\">",
                 EstimateElement(3, "ParmLevel", {}, {"0.75 0.125"}),
                 EstimateElement(3, "ParmTrend", {}, {"0.001 0.0005"}),
                 EstimateElement(3, "ParmSeason", {}, {"0.5 0.25"}),
                 "\t\t\t<StateLevel>4.5</StateLevel>",
                 "\t\t\t<StateTrend>0.0125</StateTrend>", "\t\t\t<StateSeason",
                 "\t\t\t\tphase=\"3\">0.9 1.1 1.05 0.95</StateSeason>",
                 "\t\t</ESMultiplicativeWinters>"}) +
          Lines({"\t\t<EstimationInfo", "\t\t\tperiodStartIndex=\"2\"",
                 "\t\t\tperiodLength=\"20\"", "\t\t\tdegreesOfFreedom=\"17\">",
                 "\t\t\t<Statistic",
                 "\t\t\t\ttype=\"errVariance\">0.004</Statistic>",
                 "\t\t\t<Statistic",
                 "\t\t\t\ttype=\"rootMeanSqrErr\">1.25</Statistic>",
                 "\t\t\t<Statistic", "\t\t\t\ttype=\"rSqr\">0.875</Statistic>",
                 "\t\t\t<LjungBoxStatistic", "\t\t\t\tk=\"18\"",
                 "\t\t\t\tdegreesOfFreedom=\"15\"",
                 "\t\t\t\tpValue=\"0.8912\">9.5</LjungBoxStatistic>",
                 "\t\t</EstimationInfo>", "\t</ExpSmoothingModel>",
                 "</TSCXML>"}));
}

TEST(NativeDocumentTest, HeaderFollowsTheApplicationStrings) {
  struct Case {
    const char* name;
    const char* version;
    std::string header;
  } cases[] = {
      {"N", "V",
       Lines({"\t<Header>", "\t\t<Application", "\t\t\tname=\"N\"",
              "\t\t\tversion=\"V\"/>", "\t</Header>"})},
      {"N", "",
       Lines({"\t<Header>", "\t\t<Application", "\t\t\tname=\"N\"/>",
              "\t</Header>"})},
      // A version alone writes nothing, and an empty name clears both.
      {"", "V", "\n\t<Header/>"},
  };
  for (const Case& c : cases) {
    TSXMLTree tree;
    tree.SetApplication(c.name, c.version, "copyright");
    ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
    EXPECT_EQ(Write(tree), kDeclaration + kRootStart + c.header +
                               "\n\t<DataDictionary/>" + kSimpleElement +
                               "\n</TSCXML>")
        << c.name << "/" << c.version;
  }
}

TEST(NativeDocumentTest, BareElementsWhenNotComplete) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  std::ostringstream out;
  EXPECT_TRUE(imp->WriteToStream(out, false));
  // The elements at level 0, one behind the other.
  std::string element = kSimpleElement;
  for (size_t at = element.find("\n\t"); at != std::string::npos;
       at = element.find("\n\t", at + 1)) {
    element.erase(at + 1, 1);
  }
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
  }
  // An empty handle, and a model its element can't be made of.
  EXPECT_FALSE(tree.AddModelTree(TSFModel(), kRefs));
  EXPECT_FALSE(
      tree.AddModelTree(MakeESModel(ESModelSpec(ESModelSpec::ESSimple), {0.2},
                                    {}, WIESSmState(kMissing, 0)),
                        kRefs));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(Write(tree), kDocumentStart + kSimpleElement + "\n</TSCXML>");
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
  null.SetPMMLOutput(true);
  EXPECT_FALSE(null.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(null.GetModelCount(), 0);
  std::ostringstream out;
  EXPECT_FALSE(nullCopy.WriteToStream(out));
  EXPECT_EQ(out.str(), "");
}

TEST(ModelXMLTreeMakerTest, ReleaseTreeGivesTheElementOnce) {
  TSFModel model = MakeSimpleModel();
  ModelXMLTreeMaker maker(kRefs, model.GetImp()->GetEstimationInfo());
  model.GetImp()->GetForecastState()->Accept(maker);
  std::unique_ptr<OstraTimeXML::XMLElement> element(maker.ReleaseTree());
  EXPECT_NE(element, nullptr);
  EXPECT_EQ(maker.ReleaseTree(), nullptr);
}

}  // namespace
