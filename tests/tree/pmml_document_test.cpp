// The PMML document as a whole: root, Header, the two forms of
// DataDictionary, the order of the models, and the tree's PMML mode.
#include "tsxml/pmml/pmml_document.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "pmml/pmml_test_util.h"
#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/tree/tsxml_tree_imp.h"

namespace {

using OstraTimeXML::XMLElement;
using pmml_test::MakeTypeModel;
using pmml_test::WriteText;
using testing_support::MonthlyDateSpec;
using testing_support::ReadTestData;
using tsxml::TSXPMMLDocument;

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";

// The document `document` writes without the declaration, with it put in.
std::string Bare(TSXPMMLDocument& document, XMLElement* extension = nullptr) {
  return kDeclaration + WriteText(document, false, extension);
}

std::string WriteTree(TSXMLTree& tree) {
  std::ostringstream out;
  EXPECT_TRUE(tree.WriteToStream(out));
  return out.str();
}

// The time field needs both a name and a type; an empty application name
// changes nothing.
TEST(PMMLDocumentTest, HeaderAndTimeFieldOfADocumentWithoutModels) {
  TSXPMMLDocument document;
  const std::string empty = ReadTestData("tree/pmml_empty.xml");
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
  EXPECT_EQ(WriteText(document), ReadTestData("tree/pmml_week.xml"));
  document.SetDateField("Hour", "time");
  document.SetApplication("A & B", "2.1", "(c) \"us\"");
  EXPECT_EQ(WriteText(document), ReadTestData("tree/pmml_hour.xml"));
}

TEST(PMMLDocumentTest, LastModelDecidesTheDictionaryAndWritesRepeat) {
  TSXPMMLDocument document;
  pmml_test::ModelOptions options;
  options.history = {1, 2};
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple, options),
                    TSXDictionaryRefs("A", "", "sales"), options.history);
  EXPECT_EQ(WriteText(document), ReadTestData("tree/pmml_sales.xml"));
  EXPECT_EQ(WriteText(document), ReadTestData("tree/pmml_sales.xml"));
  document.AddModel(MakeTypeModel(ESModelSpec::ESHolt),
                    TSXDictionaryRefs("B", "", "visits"), {});
  EXPECT_EQ(WriteText(document), ReadTestData("tree/pmml_visits.xml"));
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
  EXPECT_EQ(Bare(document), ReadTestData("tree/pmml_arima_empty.xml"));
  const TSFModel arima(
      new TSFModelImp(std::make_unique<ARMACLSForecastState>(AMModelSpec()),
                      testing_support::BasicInfo()));
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("A", "", "sales"), {});
  document.AddModel(arima, TSXDictionaryRefs("B", "", "y", {"x1", "x2"}), {});
  EXPECT_EQ(Bare(document, MakeExtension()),
            ReadTestData("tree/pmml_arima_predictors.xml"));
  // An empty identifier leaves out the names of its field.
  document.AddModel(arima, TSXDictionaryRefs("B", "", ""), {});
  EXPECT_EQ(Bare(document), ReadTestData("tree/pmml_arima_unnamed.xml"));
  // An exponential smoothing model after it brings the extension back.
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("C", "", "z"), {});
  EXPECT_EQ(Bare(document, MakeExtension()),
            ReadTestData("tree/pmml_es_after_arima.xml"));
}

TEST(TimeFieldTest, EveryPeriodTypeAndTypesOutsideTheTable) {
  // Most of these words reach no document of the other tests.
  const char* const fields[] = {
      "SimpleSequence time", "Cycle date",  "Year date", "Quarter date",
      "Month date",          "Week date",   "Day date",  "Hour time",
      "Minute time",         "Second time", "Obs time"};
  std::string name, type;
  for (int period = 0; period < 11; ++period) {
    EXPECT_TRUE(tsxml::TimeFieldOfPeriod(period, name, type));
    EXPECT_EQ(name + " " + type, fields[period]);
  }
  name = "n";
  type = "t";
  for (const int outside : {-1, 11, 1000}) {
    EXPECT_FALSE(tsxml::TimeFieldOfPeriod(outside, name, type));
  }
  const auto unknown = static_cast<TSXDateSpec::PeriodType>(42);
  EXPECT_FALSE(tsxml::TimeFieldOfDateSpec(TSXDateSpec(unknown), name, type));
  EXPECT_EQ(name + " " + type, "n t");
  TSXDateSpec yearThenUnknown(TSXDateSpec::Year);
  ASSERT_TRUE(yearThenUnknown.AddPeriod(unknown, 4, 0, 0).IsOK());
  EXPECT_TRUE(tsxml::TimeFieldOfDateSpec(yearThenUnknown, name, type));
  EXPECT_EQ(name + " " + type, "Year date");
}

// References are not checked: an empty record and an unknown date
// specification identifier are taken. Models added after
// SetESPMMLOutputTimeValue(false) have no TimeSeries.
TEST(PMMLTreeTest, PMMLModeAddsEveryModelAndWritesTheDocument) {
  TSXMLTree tree;
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
  const std::string expected = ReadTestData("tree/pmml_tree.xml");
  EXPECT_EQ(WriteTree(tree), expected);
  // An empty application name later leaves the strings as they were.
  tree.SetApplication("", "", "");
  EXPECT_EQ(WriteTree(tree), expected);
}

TEST(PMMLTreeTest, WritesWithAndWithoutTheDeclaration) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  tree.SetPMMLOutput(true);
  std::ostringstream bare, complete;
  EXPECT_TRUE(imp->WriteToStream(bare, false));
  EXPECT_EQ(kDeclaration + bare.str(), ReadTestData("tree/pmml_empty.xml"));
  EXPECT_TRUE(imp->WritePMMLToStream(complete, true));
  EXPECT_EQ(complete.str(), ReadTestData("tree/pmml_empty.xml"));
}

// Every registered date specification is written, used by a model or not,
// and the last one registered names the time field of DataDictionary; the
// model keeps the time field in force when it was added.
TEST(PMMLTreeTest, EveryDateSpecificationAndTheTimeFieldOfTheLastRegistered) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001, 2), "monthly"), 1);
  EXPECT_EQ(WriteTree(tree), ReadTestData("tree/pmml_monthly.xml"));
  TSXDateSpec days(TSXDateSpec::Week);
  days.AddPeriod(TSXDateSpec::Day, 7, 0, 5);
  EXPECT_EQ(tree.AddDateSpec(days, ""), 2);
  TSXDictionaryRefs refs("M", "", "y");
  refs.SetDateSpecID(1);
  ASSERT_TRUE(tree.AddModelTree(MakeTypeModel(ESModelSpec::ESSimple), refs));
  EXPECT_EQ(WriteTree(tree), ReadTestData("tree/pmml_daily.xml"));
  // An equivalent specification keeps its identifier and descriptor but sets
  // the time field again.
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001, 2), "again"), 1);
  EXPECT_EQ(WriteTree(tree), ReadTestData("tree/pmml_monthly_again.xml"));
}

}  // namespace
