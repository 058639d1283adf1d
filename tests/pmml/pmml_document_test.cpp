// The PMML document as a whole: root, Header, the two forms of
// DataDictionary, the order of the models, and the tree's PMML mode.
#include "pmml/pmml_document.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "datespec/date_spec.h"
#include "modelapi/forecast_model.h"
#include "native/date_spec_element.h"
#include "pmml_test_util.h"
#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "tree/date_spec_entry.h"
#include "tree/tsxml_tree.h"
#include "tree/tsxml_tree_imp.h"

namespace {

using OstraTimeXML::XMLElement;
using pmml_test::MakeTypeModel;
using pmml_test::ModelOptions;
using pmml_test::WriteText;
using testing_support::BasicInfo;
using testing_support::Lines;
using testing_support::MonthlyDateSpec;
using testing_support::Text;
using tsxml::TSXPMMLDocument;

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";
const std::string kRootStart = Lines(
    {"<PMML", "\tversion=\"4.2\"", "\txmlns=\"http://www.dmg.org/PMML-4_2\"",
     "\txmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"",
     "\txsi:schemaLocation=\"http://www.dmg.org/PMML-4_2 "
     "pmml-4-2.xsd\">"});
const std::string kDefaultHeader = Lines(
    {"\t<Header", "\t\tcopyright=\"www.dmg.org\">", "\t\t<Application",
     "\t\t\tname=\"TimeSeriesApp\"", "\t\t\tversion=\"4.0\"/>", "\t</Header>"});
const std::string kRootEnd = "\n</PMML>";

std::string DataField(const std::string& type, const std::string& name) {
  return "\n\t\t<DataField\n\t\t\tdataType=\"" + type +
         "\"\n\t\t\toptype=\"continuous\"\n\t\t\tname=\"" + name +
         "\"\n\t\t\tdisplayName=\"" + name + "\"/>";
}

// The exponential smoothing form of DataDictionary; `extension` is the text
// of its first child.
std::string ESDictionary(const std::string& variable,
                         const std::string& timeName = "Month",
                         const std::string& timeType = "date",
                         const std::string& extension = "") {
  return "\n\t<DataDictionary\n\t\tnumberOfFields=\"2\">" + extension +
         DataField("double", variable) + DataField(timeType, timeName) +
         "\n\t</DataDictionary>";
}

// The text of every model element of `document`, as the root holds them.
std::string Models(const TSXPMMLDocument& document) {
  std::string text;
  for (size_t i = 0; i < document.GetModelElementCount(); ++i) {
    text += Text(*document.GetModelElement(i), 1);
  }
  return text;
}

TSFModel MakeARIMAModel() {
  return TSFModel(new TSFModelImp(
      std::make_unique<ARMACLSForecastState>(AMModelSpec()), BasicInfo()));
}

// An "Extension" holding one element, as the tree hands date specifications.
XMLElement* MakeExtension() {
  XMLElement* extension = XMLElement::Create("Extension");
  extension->AddElement(XMLElement::Create("DateSpecification"));
  return extension;
}
const std::string kExtensionText = Lines(
    {"\t\t<Extension>", "\t\t\t<DateSpecification/>", "\t\t</Extension>"});

TEST(PMMLDocumentTest, EmptyDocumentHasDefaultsAndTheESDictionary) {
  TSXPMMLDocument document;
  const std::string body =
      kRootStart + kDefaultHeader + ESDictionary("") + kRootEnd;
  EXPECT_EQ(WriteText(document), kDeclaration + body);
  EXPECT_EQ(WriteText(document, false), body);
}

TEST(PMMLDocumentTest, ApplicationStringsAndTheDefaultCopyright) {
  TSXPMMLDocument document;
  document.SetApplication("", "9", "mine");  // changes nothing
  EXPECT_EQ(WriteText(document, false),
            kRootStart + kDefaultHeader + ESDictionary("") + kRootEnd);

  document.SetApplication("Forecaster", "", "");
  const std::string noVersion =
      Lines({"\t<Header", "\t\tcopyright=\"www.dmg.org\">", "\t\t<Application",
             "\t\t\tname=\"Forecaster\"/>", "\t</Header>"});
  EXPECT_EQ(WriteText(document, false),
            kRootStart + noVersion + ESDictionary("") + kRootEnd);

  document.SetApplication("A & B", "2.1", "(c) \"us\"");
  const std::string all = Lines(
      {"\t<Header", "\t\tcopyright=\"(c) &quot;us&quot;\">", "\t\t<Application",
       "\t\t\tname=\"A &amp; B\"", "\t\t\tversion=\"2.1\"/>", "\t</Header>"});
  EXPECT_EQ(WriteText(document, false),
            kRootStart + all + ESDictionary("") + kRootEnd);
}

TEST(PMMLDocumentTest, LastModelDecidesTheDictionaryAndEveryModelIsWritten) {
  TSXPMMLDocument document;
  ModelOptions options;
  options.history = {1, 2};
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple, options),
                    TSXDictionaryRefs("A", "", "sales"), options.history);
  document.AddModel(MakeTypeModel(ESModelSpec::ESHolt),
                    TSXDictionaryRefs("B", "", "visits"), {});
  ASSERT_EQ(document.GetModelElementCount(), 2u);
  EXPECT_NE(Models(document).find("name=\"sales\""), std::string::npos);
  EXPECT_EQ(WriteText(document, false), kRootStart + kDefaultHeader +
                                            ESDictionary("visits") +
                                            Models(document) + kRootEnd);
}

TEST(PMMLDocumentTest, ARIMAFormListsPredictorsAndDropsTheDateSpecifications) {
  TSXPMMLDocument document;
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("A", "", "sales"), {});
  document.AddModel(MakeARIMAModel(),
                    TSXDictionaryRefs("B", "", "y", {"x1", "x2"}), {});
  // The ARIMA model adds no element of its own yet.
  ASSERT_EQ(document.GetModelElementCount(), 1u);
  EXPECT_EQ(WriteText(document, false, MakeExtension()),
            kRootStart + kDefaultHeader +
                "\n\t<DataDictionary\n\t\tnumberOfFields=\"3\">" +
                DataField("double", "y") + DataField("double", "x1") +
                DataField("double", "x2") + "\n\t</DataDictionary>" +
                Models(document) + kRootEnd);

  // An empty identifier leaves out the names of its field.
  document.AddModel(MakeARIMAModel(), TSXDictionaryRefs("B", "", ""), {});
  EXPECT_EQ(
      WriteText(document, false),
      kRootStart + kDefaultHeader +
          Lines({"\t<DataDictionary", "\t\tnumberOfFields=\"1\">",
                 "\t\t<DataField", "\t\t\tdataType=\"double\"",
                 "\t\t\toptype=\"continuous\"/>", "\t</DataDictionary>"}) +
          Models(document) + kRootEnd);

  // An exponential smoothing model after it brings the extension back.
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("C", "", "z"), {});
  EXPECT_EQ(WriteText(document, false, MakeExtension()),
            kRootStart + kDefaultHeader +
                ESDictionary("z", "Month", "date", kExtensionText) +
                Models(document) + kRootEnd);
}

TEST(PMMLDocumentTest, EmptyModelSelectsTheARIMAFormAndAddsNoElement) {
  TSXPMMLDocument document;
  EXPECT_TRUE(
      document.AddModel(TSFModel(), TSXDictionaryRefs("E", "", "e"), {}));
  EXPECT_EQ(document.GetModelElementCount(), 0u);
  EXPECT_EQ(WriteText(document, false),
            kRootStart + kDefaultHeader +
                "\n\t<DataDictionary\n\t\tnumberOfFields=\"1\">" +
                DataField("double", "e") + "\n\t</DataDictionary>" + kRootEnd);
}

TEST(PMMLDocumentTest, WritesAreRepeatableAndLaterModelsJoin) {
  TSXPMMLDocument document;
  document.AddModel(MakeTypeModel(ESModelSpec::ESBrown),
                    TSXDictionaryRefs("A", "", "y"), {});
  const std::string first = WriteText(document);
  EXPECT_EQ(WriteText(document), first);
  document.AddModel(MakeTypeModel(ESModelSpec::ESDampedTrend),
                    TSXDictionaryRefs("B", "", "y"), {});
  ASSERT_EQ(document.GetModelElementCount(), 2u);
  const std::string second = WriteText(document);
  EXPECT_EQ(second, kDeclaration + kRootStart + kDefaultHeader +
                        ESDictionary("y") + Models(document) + kRootEnd);
  EXPECT_EQ(second.substr(0, first.size() - kRootEnd.size()),
            first.substr(0, first.size() - kRootEnd.size()));
}

TEST(TimeFieldTest, EachPeriodTypeAndTypesOutsideTheTable) {
  const char* const rows[][2] = {{"SimpleSequence", "time"},
                                 {"Cycle", "date"},
                                 {"Year", "date"},
                                 {"Quarter", "date"},
                                 {"Month", "date"},
                                 {"Week", "date"},
                                 {"Day", "date"},
                                 {"Hour", "time"},
                                 {"Minute", "time"},
                                 {"Second", "time"},
                                 {"Obs", "time"}};
  for (int type = 0; type < 11; ++type) {
    std::string name, fieldType;
    EXPECT_TRUE(tsxml::TimeFieldOfPeriod(type, name, fieldType));
    EXPECT_EQ(name, rows[type][0]);
    EXPECT_EQ(fieldType, rows[type][1]);
  }
  for (const int type : {-1, 11, 1000}) {
    std::string name = "n", fieldType = "t";
    EXPECT_FALSE(tsxml::TimeFieldOfPeriod(type, name, fieldType));
    EXPECT_EQ(name + fieldType, "nt");
  }
}

TEST(TimeFieldTest, LastPeriodWithAKnownTypeDecides) {
  std::string name, type;
  TSXDateSpec days(TSXDateSpec::Week);
  ASSERT_TRUE(days.AddPeriod(TSXDateSpec::Day, 7, 0, 5).IsOK());
  EXPECT_TRUE(tsxml::TimeFieldOfDateSpec(days, name, type));
  EXPECT_EQ(name + " " + type, "Day date");
  ASSERT_TRUE(days.AddPeriod(TSXDateSpec::Hour, 24, 0, 0).IsOK());
  EXPECT_TRUE(tsxml::TimeFieldOfDateSpec(days, name, type));
  EXPECT_EQ(name + " " + type, "Hour time");

  // A period of a type outside the table is skipped.
  TSXDateSpec unknown(static_cast<TSXDateSpec::PeriodType>(42));
  name = "kept";
  EXPECT_FALSE(tsxml::TimeFieldOfDateSpec(unknown, name, type));
  EXPECT_EQ(name, "kept");
  TSXDateSpec yearThenUnknown(TSXDateSpec::Year);
  ASSERT_TRUE(yearThenUnknown
                  .AddPeriod(static_cast<TSXDateSpec::PeriodType>(42), 4, 0, 0)
                  .IsOK());
  EXPECT_TRUE(tsxml::TimeFieldOfDateSpec(yearThenUnknown, name, type));
  EXPECT_EQ(name + " " + type, "Year date");
}

TEST(PMMLDocumentTest, TimeFieldOfTheDictionary) {
  TSXPMMLDocument document;
  document.SetDateField("Hour", "time");
  EXPECT_EQ(WriteText(document, false), kRootStart + kDefaultHeader +
                                            ESDictionary("", "Hour", "time") +
                                            kRootEnd);
}

TEST(PMMLDocumentTest, TimeFieldNeedsBothNameAndType) {
  TSXPMMLDocument document;
  document.SetDateFieldName("Week");
  const std::string month =
      kRootStart + kDefaultHeader + ESDictionary("") + kRootEnd;
  EXPECT_EQ(WriteText(document, false), month);
  document.SetDateFieldType("date");
  EXPECT_EQ(WriteText(document, false),
            kRootStart + kDefaultHeader + ESDictionary("", "Week") + kRootEnd);
  document.SetDateFieldName("");
  EXPECT_EQ(WriteText(document, false), month);
}

TEST(PMMLTreeTest, PMMLModeAddsEveryModelAndWritesTheDocument) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.SetApplication("Forecaster", "2", "");
  ModelOptions options;
  options.history = {4, 5, 6};
  const TSFModel model = MakeTypeModel(ESModelSpec::ESSimple, options);
  // References are not checked: an empty record and an unknown date
  // specification identifier are taken.
  TSXDictionaryRefs unknown("U", "", "u");
  unknown.SetDateSpecID(42);
  EXPECT_TRUE(tree.AddModelTree(model, TSXDictionaryRefs()));
  EXPECT_TRUE(tree.AddModelTree(model, unknown));
  EXPECT_TRUE(tree.AddModelTree(TSFModel(), TSXDictionaryRefs("E", "", "e")));
  tree.SetESPMMLOutputTimeValue(false);
  EXPECT_TRUE(tree.AddModelTree(model, TSXDictionaryRefs("S", "", "y")));
  EXPECT_EQ(tree.GetModelCount(), 0);

  // The same models through a document of their own.
  TSXPMMLDocument document;
  document.SetApplication("Forecaster", "2", "");
  document.AddModel(model, TSXDictionaryRefs(), options.history);
  document.AddModel(model, unknown, options.history);
  document.AddModel(TSFModel(), TSXDictionaryRefs("E", "", "e"), {});
  document.SetESPMMLOutputTimeValue(false);
  document.AddModel(model, TSXDictionaryRefs("S", "", "y"), options.history);
  const std::string expected = WriteText(document);
  ASSERT_NE(expected.find("<TimeValue"), std::string::npos);

  std::ostringstream out;
  EXPECT_TRUE(tree.WriteToStream(out));
  EXPECT_EQ(out.str(), expected);
  std::ostringstream again;
  EXPECT_TRUE(tree.WriteToStream(again));
  EXPECT_EQ(again.str(), expected);
}

TEST(PMMLTreeTest, WriteWithoutModelsAndWithoutTheDeclaration) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  tree.SetPMMLOutput(true);
  EXPECT_TRUE(imp->GetPMMLOutputFlag());
  std::ostringstream bare;
  EXPECT_TRUE(imp->WriteToStream(bare, false));
  EXPECT_EQ(bare.str(),
            kRootStart + kDefaultHeader + ESDictionary("") + kRootEnd);
  std::ostringstream complete;
  EXPECT_TRUE(imp->WritePMMLToStream(complete, true));
  EXPECT_EQ(complete.str(), kDeclaration + bare.str());

  // The tree's copyright reaches the Header; an empty application name later
  // leaves the document's strings as they were.
  tree.SetApplication("App", "", "Copyright 2024 Example");
  const std::string header =
      Lines({"\t<Header", "\t\tcopyright=\"Copyright 2024 Example\">",
             "\t\t<Application", "\t\t\tname=\"App\"/>", "\t</Header>"});
  std::ostringstream named;
  EXPECT_TRUE(imp->WritePMMLToStream(named, false));
  EXPECT_EQ(named.str(), kRootStart + header + ESDictionary("") + kRootEnd);
  tree.SetApplication("", "", "");
  std::ostringstream cleared;
  EXPECT_TRUE(imp->WritePMMLToStream(cleared, false));
  EXPECT_EQ(cleared.str(), named.str());
}

TEST(PMMLTreeTest, NullHandleIgnoresTheTimeValueSwitch) {
  TSXMLTree tree(nullptr);
  tree.SetESPMMLOutputTimeValue(false);
  tree.SetPMMLOutput(true);
  std::ostringstream out;
  EXPECT_FALSE(tree.WriteToStream(out));
  EXPECT_EQ(out.str(), "");
}

TSXDateSpec Daily() {
  TSXDateSpec spec(TSXDateSpec::Week);
  spec.AddPeriod(TSXDateSpec::Day, 7, 0, 5);
  return spec;
}

// The "Extension" of DataDictionary holding the elements of `entries`.
std::string ExtensionOf(
    std::initializer_list<std::pair<const TSXDateSpecEntry*, int>> entries) {
  std::string text = "\n\t\t<Extension>";
  for (const auto& [entry, id] : entries) {
    std::unique_ptr<XMLElement> element(tsxml::MakeDateSpecificationElement(
        entry->spec, entry->descriptor, id));
    text += Text(*element, 3);
  }
  return text + "\n\t\t</Extension>";
}

std::string WriteTree(TSXMLTree& tree) {
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

TEST(PMMLTreeTest, EveryDateSpecificationAndTheTimeFieldOfTheLastRegistered) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  const TSXDateSpecEntry monthly{MonthlyDateSpec(2001, 2), 1, "monthly", false};
  const TSXDateSpecEntry daily{Daily(), 2, "", false};
  EXPECT_EQ(tree.AddDateSpec(monthly.spec, "monthly"), 1);
  EXPECT_EQ(tree.AddDateSpec(daily.spec, ""), 2);
  // The model refers to the monthly specification; the daily one, which no
  // model refers to, is written as well, and its period names the time field.
  TSXDictionaryRefs refs("M", "", "y");
  refs.SetDateSpecID(1);
  const TSFModel model = MakeTypeModel(ESModelSpec::ESSimple);
  ASSERT_TRUE(tree.AddModelTree(model, refs));

  TSXPMMLDocument replica;  // the model as it was added: time field "Day"
  replica.SetDateField("Day", "date");
  replica.AddModel(model, refs, {});
  const std::string extension = ExtensionOf({{&monthly, 1}, {&daily, 2}});
  EXPECT_EQ(WriteTree(tree), kDeclaration + kRootStart + kDefaultHeader +
                                 ESDictionary("y", "Day", "date", extension) +
                                 Models(replica) + kRootEnd);

  // An equivalent specification keeps its identifier and descriptor but sets
  // the time field again: DataDictionary names "Month" now, while the model
  // added before keeps "Day" in its mining schema.
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001, 2), "again"), 1);
  EXPECT_EQ(WriteTree(tree), kDeclaration + kRootStart + kDefaultHeader +
                                 ESDictionary("y", "Month", "date", extension) +
                                 Models(replica) + kRootEnd);
}

TEST(PMMLTreeTest, WritingKeepsTheRegistry) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  const TSXDateSpecEntry first{MonthlyDateSpec(1990, 2), 1, "a", false};
  const TSXDateSpecEntry second{MonthlyDateSpec(2001, 2), 2, "b", false};
  tree.AddDateSpec(first.spec, "a");
  const std::string before = WriteTree(tree);
  EXPECT_EQ(before,
            kDeclaration + kRootStart + kDefaultHeader +
                ESDictionary("", "Month", "date", ExtensionOf({{&first, 1}})) +
                kRootEnd);
  EXPECT_EQ(tree.AddDateSpec(second.spec, "b"), 2);
  EXPECT_EQ(WriteTree(tree),
            kDeclaration + kRootStart + kDefaultHeader +
                ESDictionary("", "Month", "date",
                             ExtensionOf({{&first, 1}, {&second, 2}})) +
                kRootEnd);
}

TEST(PMMLTreeTest, ARIMAModelLastLeavesTheDateSpecificationsOut) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.AddDateSpec(Daily(), "days");
  tree.AddModelTree(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("A", "", "y"));
  EXPECT_NE(WriteTree(tree).find("<DateSpecification"), std::string::npos);
  tree.AddModelTree(MakeARIMAModel(), TSXDictionaryRefs("B", "", "z", {"x"}));
  const std::string arima = WriteTree(tree);
  EXPECT_EQ(arima.find("<DateSpecification"), std::string::npos);
  EXPECT_NE(arima.find("numberOfFields=\"2\""), std::string::npos);
  tree.AddModelTree(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("C", "", "y"));
  EXPECT_NE(WriteTree(tree).find("<DateSpecification"), std::string::npos);
}

}  // namespace
