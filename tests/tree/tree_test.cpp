// Documents through the public tree, compared whole with the files
// tests/data/tree/*.xml: native documents, refused models, handles, bare
// writes and the registry of date specifications; then the PMML document, its
// Header and two forms of DataDictionary, and the tree's PMML mode.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "pmml/arima_test_models.h"
#include "pmml/pmml_test_util.h"
#include "support/arima_fixtures.h"
#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/native/model_xml_tree_maker.h"
#include "tsxml/pmml/pmml_document.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/tree/tsxml_tree_imp.h"

namespace {

using OstraTimeXML::XMLElement;
using pmml_test::MakeTypeModel;
using pmml_test::WriteText;
using testing_support::MakeCrostonModel;
using testing_support::MakeFullARIMAModel;
using testing_support::MakeSimpleModel;
using testing_support::MonthlyDateSpec;
using tsxml::TSXPMMLDocument;

const TSXDictionaryRefs kRefs("S", "", "y");
const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";

// The document `tree` writes, which it must.
std::string Write(TSXMLTree& tree) {
  std::ostringstream out;
  EXPECT_TRUE(tree.WriteToStream(out));
  return out.str();
}

// The file tests/data/tree/`name`.xml.
std::string Doc(const std::string& name) {
  return testing_support::ReadTestData("tree/" + name + ".xml");
}

TSXDictionaryRefs RefsOn(int dateSpecID, const char* name = "M") {
  TSXDictionaryRefs refs(name, "", "y");
  refs.SetDateSpecID(dateSpecID);
  return refs;
}

// A write empties the tree and a second one has nothing to write; an empty
// application name clears the strings set before.
TEST(NativeDocumentTest, SimpleModelAndTheApplicationStrings) {
  TSXMLTree tree;
  std::ostringstream nothing;
  EXPECT_FALSE(tree.WriteToStream(nothing));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(Write(tree), Doc("simple"));
  EXPECT_EQ(tree.GetModelCount(), 0);
  EXPECT_FALSE(tree.WriteToStream(nothing));
  EXPECT_EQ(nothing.str(), "");
  tree.SetApplication("N", "", "copyright");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(Write(tree), Doc("simple_named"));
  tree.SetApplication("", "V", "");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_EQ(Write(tree), Doc("simple"));
}

TEST(NativeDocumentTest, SeasonalModelWithStatistics) {
  ESModelSpec spec(ESModelSpec::ESMultiplicativeWinters, 4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  EstimationInfo info = testing_support::BasicInfo(2, 20, 17, 0.004);
  info.SetGOFStat(BFSharedConst::RMSE, 1.25);
  info.SetGOFStat(BFSharedConst::MAPE, MV::gMissingValue);
  info.SetGOFStat(BFSharedConst::RSQ, 0.875);
  info.SetLBStat(9.5, 18, 15, 0.8912);
  TSXMLTree tree;
  tree.SetApplication("Forecaster", "2.1", "(c) nobody");
  ASSERT_TRUE(tree.AddModelTree(
      testing_support::MakeESModel(
          spec, {0.75, 0.001, 0.5}, {0.125, 0.0005, 0.25},
          WIESSmState(4.5, 0.0125, 3, {0.9, 1.1, 1.05, 0.95}), info),
      TSXDictionaryRefs("Sales", "Quarterly & \"net\"", "sales")));
  EXPECT_EQ(Write(tree), Doc("seasonal"));
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
  EXPECT_EQ(Write(tree).find("<ExpSmoothingModel"), std::string::npos);
  EXPECT_EQ(tree.GetModelCount(), 5);
  tree.SetPMMLOutput(false);
  EXPECT_EQ(Write(tree), Doc("every_model"));
}

TEST(CheckDictRefsTest, RefusedModelsLeaveTheTreeUnchanged) {
  const TSXDictionaryRefs refused[] = {
      TSXDictionaryRefs(),
      TSXDictionaryRefs("", "d", "y"),
      TSXDictionaryRefs("S", "d", ""),
      TSXDictionaryRefs("S", "", "y", {"x"}),
      TSXDictionaryRefs("S", "", "y", {""}),
      RefsOn(1, "S"),
  };
  TSXMLTree tree;
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  for (const TSXDictionaryRefs& refs : refused) {
    EXPECT_FALSE(tree.AddModelTree(MakeSimpleModel(), refs));
    EXPECT_FALSE(tree.AddModelTree(MakeCrostonModel(), refs));
  }
  // Empty handles, a model its element can't be made of, and an ARIMA model
  // whose predictors the references don't name one for one.
  EXPECT_FALSE(tree.AddModelTree(TSFModel(), kRefs));
  EXPECT_FALSE(tree.AddModelTree(TSFCrModel(), kRefs));
  EXPECT_FALSE(tree.AddModelTree(
      testing_support::MakeESModel(ESModelSpec(ESModelSpec::ESSimple), {0.2},
                                   {}, WIESSmState(MV::gMissingValue, 0)),
      kRefs));
  TSFModel model = MakeFullARIMAModel<ARMACLSForecastState>();
  EXPECT_FALSE(tree.AddModelTree(model, kRefs));
  EXPECT_FALSE(
      tree.AddModelTree(model, TSXDictionaryRefs("A", "", "y", {"p", "q"})));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_EQ(Write(tree), Doc("simple"));

  // The visit itself builds nothing when the names don't match, and gives a
  // tree it built only once.
  ModelXMLTreeMaker mismatch(kRefs, model.GetImp()->GetEstimationInfo());
  model.GetImp()->GetForecastState()->Accept(mismatch);
  EXPECT_EQ(mismatch.ReleaseTree(), nullptr);
  model = MakeSimpleModel();
  ModelXMLTreeMaker maker(kRefs, model.GetImp()->GetEstimationInfo());
  model.GetImp()->GetForecastState()->Accept(maker);
  std::unique_ptr<OstraTimeXML::XMLElement> element(maker.ReleaseTree());
  EXPECT_NE(element, nullptr);
  EXPECT_EQ(maker.ReleaseTree(), nullptr);
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
  null.SetPMMLConsistent(true);
  EXPECT_EQ(null.AddDateSpec(MonthlyDateSpec(2001), "d"), 0);
  EXPECT_FALSE(null.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_FALSE(null.AddModelTree(MakeCrostonModel(), kRefs));
  EXPECT_EQ(null.GetModelCount(), 0);
  null.SetPMMLOutput(true);
  std::ostringstream out;
  EXPECT_FALSE(nullCopy.WriteToStream(out));
  EXPECT_EQ(out.str(), "");
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
  EXPECT_EQ(Write(tree), Doc("date_specs"));
  EXPECT_FALSE(tree.AddModelTree(MakeSimpleModel(), RefsOn(3)));
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(1990), "new"), 1);
}

// A bare write gives the model elements at level 0 and empties the tree, but
// keeps the specifications registered and marked used: a model without a
// date specification brings it into the next document.
TEST(DateSpecRegistryTest, BareWriteKeepsSpecificationsAndUsedFlags) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001), "kept"), 1);
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(1, "S")));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  std::ostringstream bare;
  EXPECT_TRUE(imp->WriteToStream(bare, false));
  EXPECT_EQ(bare.str(), Doc("bare_elements"));
  EXPECT_EQ(tree.GetModelCount(), 0);
  EXPECT_FALSE(imp->WriteToStream(bare, false));
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001), "x"), 1);
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), kRefs));
  EXPECT_NE(Write(tree).find("dateSpecDescriptor=\"kept\""), std::string::npos);
}

// The document `document` writes without the declaration, with it put in.
std::string Bare(TSXPMMLDocument& document, XMLElement* extension = nullptr) {
  return kDeclaration + WriteText(document, false, extension);
}

// The time field needs both a name and a type; an empty application name
// changes nothing.
TEST(PMMLDocumentTest, HeaderAndTimeFieldOfADocumentWithoutModels) {
  TSXPMMLDocument document;
  const std::string empty = Doc("pmml_empty");
  EXPECT_EQ(WriteText(document), empty);
  EXPECT_EQ(Bare(document), empty);
  document.SetApplication("", "9", "mine");
  document.SetDateField("Week", "");
  EXPECT_EQ(WriteText(document), empty);
  document.SetDateField("", "time");
  EXPECT_EQ(WriteText(document), empty);
  document.SetDateField("Week", "");
  document.SetDateFieldType("time");
  document.SetApplication("Forecaster", "", "");
  EXPECT_EQ(WriteText(document), Doc("pmml_week"));
  document.SetDateField("Hour", "time");
  document.SetApplication("A & B", "2.1", "(c) \"us\"");
  EXPECT_EQ(WriteText(document), Doc("pmml_hour"));
}

TEST(PMMLDocumentTest, LastModelDecidesTheDictionaryAndWritesRepeat) {
  TSXPMMLDocument document;
  pmml_test::ModelOptions options;
  options.history = {1, 2};
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple, options),
                    TSXDictionaryRefs("A", "", "sales"), options.history);
  EXPECT_EQ(WriteText(document), Doc("pmml_sales"));
  EXPECT_EQ(WriteText(document), Doc("pmml_sales"));
  document.AddModel(MakeTypeModel(ESModelSpec::ESHolt),
                    TSXDictionaryRefs("B", "", "visits"), {});
  EXPECT_EQ(WriteText(document), Doc("pmml_visits"));
}

// An "Extension" holding one element, as the tree hands date specifications.
XMLElement* MakeExtension() {
  XMLElement* extension = XMLElement::Create("Extension");
  extension->AddElement(XMLElement::Create("DateSpecification"));
  return extension;
}

TEST(PMMLDocumentTest, ARIMAFormListsPredictorsAndDropsTheDateSpecifications) {
  TSXPMMLDocument document;
  // An empty model selects the ARIMA form and adds no element.
  EXPECT_TRUE(
      document.AddModel(TSFModel(), TSXDictionaryRefs("E", "", "e"), {}));
  EXPECT_EQ(Bare(document), Doc("pmml_arima_empty"));
  // An ARIMA model adds its element, with a field for each predictor that
  // the references name (here more than the model has).
  const TSFModel arima(
      new TSFModelImp(std::make_unique<ARMACLSForecastState>(AMModelSpec()),
                      testing_support::BasicInfo()));
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("A", "", "sales"), {});
  document.AddModel(arima, TSXDictionaryRefs("B", "", "y", {"x1", "x2"}), {});
  EXPECT_EQ(Bare(document, MakeExtension()), Doc("pmml_arima_predictors"));
  // An empty identifier leaves out the names of its field.
  document.AddModel(arima, TSXDictionaryRefs("B", "", ""), {});
  EXPECT_EQ(Bare(document), Doc("pmml_arima_unnamed"));
  // An exponential smoothing model after it brings the extension back.
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("C", "", "z"), {});
  EXPECT_EQ(Bare(document, MakeExtension()), Doc("pmml_es_after_arima"));
}

TEST(TimeFieldTest, EveryPeriodTypeAndTypesOutsideTheTable) {
  // Most of these words reach no document of the other tests.
  std::string name, type, fields;
  for (int period = 0; period < 11; ++period) {
    EXPECT_TRUE(tsxml::TimeFieldOfPeriod(period, name, type));
    fields += name + " " + type + ", ";
  }
  EXPECT_EQ(fields,
            "SimpleSequence time, Cycle date, Year date, Quarter date, Month "
            "date, Week date, Day date, Hour time, Minute time, Second time, "
            "Obs time, ");
  for (const int outside : {-1, 11, 1000}) {
    EXPECT_FALSE(tsxml::TimeFieldOfPeriod(outside, name, type));
  }
  const auto unknown = static_cast<TSXDateSpec::PeriodType>(42);
  EXPECT_FALSE(tsxml::TimeFieldOfDateSpec(TSXDateSpec(unknown), name, type));
  EXPECT_EQ(name + " " + type, "Obs time");
  TSXDateSpec yearThenUnknown(TSXDateSpec::Year);
  ASSERT_TRUE(yearThenUnknown.AddPeriod(unknown, 4, 0, 0).IsOK());
  EXPECT_TRUE(tsxml::TimeFieldOfDateSpec(yearThenUnknown, name, type));
  EXPECT_EQ(name + " " + type, "Year date");
}

// References are not checked: an empty record and an unknown date
// specification identifier are taken. Models added after
// SetESPMMLOutputTimeValue(false) have no TimeSeries.
TEST(PMMLTreeTest, PMMLModeAddsEveryModelAndWritesTheDocument) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  tree.SetPMMLOutput(true);
  tree.SetApplication("Forecaster", "2", "(c) us");
  pmml_test::ModelOptions options;
  options.history = {4, 5, 6};
  const TSFModel model = MakeTypeModel(ESModelSpec::ESSimple, options);
  TSXDictionaryRefs unknown("U", "", "u");
  unknown.SetDateSpecID(42);
  EXPECT_TRUE(tree.AddModelTree(model, TSXDictionaryRefs()));
  EXPECT_TRUE(tree.AddModelTree(model, unknown));
  EXPECT_TRUE(tree.AddModelTree(TSFModel(), TSXDictionaryRefs("E", "", "e")));
  tree.SetESPMMLOutputTimeValue(false);
  EXPECT_TRUE(tree.AddModelTree(model, TSXDictionaryRefs("S", "", "y")));
  EXPECT_EQ(tree.GetModelCount(), 0);
  const std::string expected = Doc("pmml_tree");
  EXPECT_EQ(Write(tree), expected);
  // An empty application name later leaves the strings as they were.
  tree.SetApplication("", "", "");
  std::ostringstream bare, complete;
  EXPECT_TRUE(imp->WriteToStream(bare, false));
  EXPECT_EQ(kDeclaration + bare.str(), expected);
  EXPECT_TRUE(imp->WritePMMLToStream(complete, true));
  EXPECT_EQ(complete.str(), expected);
}

// Every registered date specification is written, used by a model or not,
// and the last one registered names the time field of DataDictionary; the
// model keeps the time field in force when it was added.
TEST(PMMLTreeTest, EveryDateSpecificationAndTheTimeFieldOfTheLastRegistered) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001, 2), "monthly"), 1);
  EXPECT_EQ(Write(tree), Doc("pmml_monthly"));
  TSXDateSpec days(TSXDateSpec::Week);
  days.AddPeriod(TSXDateSpec::Day, 7, 0, 5);
  EXPECT_EQ(tree.AddDateSpec(days, ""), 2);
  TSXDictionaryRefs refs("M", "", "y");
  refs.SetDateSpecID(1);
  ASSERT_TRUE(tree.AddModelTree(MakeTypeModel(ESModelSpec::ESSimple), refs));
  EXPECT_EQ(Write(tree), Doc("pmml_daily"));
  // An equivalent specification keeps its identifier and descriptor but sets
  // the time field again.
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001, 2), "again"), 1);
  EXPECT_EQ(Write(tree), Doc("pmml_monthly_again"));
}

// The DataDictionary of `document`, from the line feed before it to its
// closing tag.
std::string Dictionary(const std::string& document) {
  const size_t begin = document.find("\n\t<DataDictionary");
  const size_t end = document.find("</DataDictionary>");
  if (begin == std::string::npos || end == std::string::npos) return "";
  return document.substr(begin, end + 17 - begin);
}

// The document of a PMML tree with a monthly date specification, a
// smoothing model and the seasonal ARIMA model, the ARIMA model last or
// first; SetPMMLConsistent is called with each of `consistent` in turn.
std::string MixedDocument(bool arimaLast,
                          std::initializer_list<bool> consistent) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  for (const bool on : consistent) tree.SetPMMLConsistent(on);
  tree.AddDateSpec(MonthlyDateSpec(2001, 2), "m");
  const TSFModel arima = pmml_test::MakeSeasonalKalmanModel();
  const TSFModel simple = MakeTypeModel(ESModelSpec::ESSimple);
  if (arimaLast) {
    tree.AddModelTree(simple, TSXDictionaryRefs("A", "", "sales"));
    tree.AddModelTree(arima,
                      TSXDictionaryRefs("B", "", "visits", {"price", "sales"}));
  } else {
    tree.AddModelTree(arima, TSXDictionaryRefs("B", "", "", {"x"}));
    tree.AddModelTree(simple, TSXDictionaryRefs("A", "", "y"));
  }
  return Write(tree);
}

// With SetPMMLConsistent, DataDictionary defines every field that a
// MiningField names: the fields of the default form first (of the ARIMA
// model; of the smoothing model, with the date specification), then those
// of the other models, each once, an empty name among them. Turned off
// again, the tree writes the default document.
TEST(PMMLTreeTest, ConsistentDictionaryDefinesEveryMiningField) {
  EXPECT_EQ(Dictionary(MixedDocument(true, {true})),
            "\n" + Doc("pmml_consistent_arima_last"));
  EXPECT_EQ(Dictionary(MixedDocument(false, {true})),
            "\n" + Doc("pmml_consistent_es_last"));
  for (const bool arimaLast : {true, false}) {
    EXPECT_EQ(MixedDocument(arimaLast, {true, false}),
              MixedDocument(arimaLast, {}));
  }
}

}  // namespace
