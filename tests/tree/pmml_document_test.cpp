// The PMML document as a whole: root, Header, the two forms of
// DataDictionary, the order of the models, and the tree's PMML mode.
#include "tsxml/pmml/pmml_document.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "pmml/pmml_test_util.h"
#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/datespec/date_spec_entry.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/native/date_spec_element.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/tree/tsxml_tree_imp.h"

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

// "Header" with `copyright` and the application `name` and, unless empty,
// `version`.
std::string Header(const std::string& copyright, const std::string& name,
                   const std::string& version = "") {
  return "\n\t<Header\n\t\tcopyright=\"" + copyright +
         "\">\n\t\t<Application\n\t\t\tname=\"" + name + "\"" +
         (version.empty() ? "" : "\n\t\t\tversion=\"" + version + "\"") +
         "/>\n\t</Header>";
}
const std::string kDefaultHeader =
    Header("www.dmg.org", "TimeSeriesApp", "4.0");

// The document without the declaration: root, `header`, `dictionary` and
// `models`.
std::string Body(const std::string& dictionary, const std::string& models = "",
                 const std::string& header = kDefaultHeader) {
  return Lines({"<PMML", "\tversion=\"4.2\"",
                "\txmlns=\"http://www.dmg.org/PMML-4_2\"",
                "\txmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"",
                "\txsi:schemaLocation=\"http://www.dmg.org/PMML-4_2 "
                "pmml-4-2.xsd\">"}) +
         header + dictionary + models + "\n</PMML>";
}

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

// The ARIMA form of DataDictionary: one double field per name.
std::string ARIMADictionary(std::initializer_list<std::string> names) {
  std::string text = "\n\t<DataDictionary\n\t\tnumberOfFields=\"" +
                     std::to_string(names.size()) + "\">";
  for (const std::string& name : names) text += DataField("double", name);
  return text + "\n\t</DataDictionary>";
}

// The text of every model element of `document`, as the root holds them.
std::string Models(TSXPMMLDocument& document) {
  const std::string text = WriteText(document, false);
  const size_t begin = text.find("</DataDictionary>") + 17;
  return text.substr(begin, text.size() - begin - 8);
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

TEST(PMMLDocumentTest, DefaultsAndApplicationStrings) {
  TSXPMMLDocument document;
  const std::string empty = Body(ESDictionary(""));
  EXPECT_EQ(WriteText(document), kDeclaration + empty);
  EXPECT_EQ(WriteText(document, false), empty);
  document.SetApplication("", "9", "mine");  // changes nothing
  EXPECT_EQ(WriteText(document, false), empty);

  document.SetApplication("Forecaster", "", "");
  EXPECT_EQ(WriteText(document, false),
            Body(ESDictionary(""), "", Header("www.dmg.org", "Forecaster")));
  document.SetApplication("A & B", "2.1", "(c) \"us\"");
  EXPECT_EQ(WriteText(document, false),
            Body(ESDictionary(""), "",
                 Header("(c) &quot;us&quot;", "A &amp; B", "2.1")));
}

TEST(PMMLDocumentTest, LastModelDecidesTheDictionaryAndWritesRepeat) {
  TSXPMMLDocument document;
  ModelOptions options;
  options.history = {1, 2};
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple, options),
                    TSXDictionaryRefs("A", "", "sales"), options.history);
  const std::string first = Models(document);
  EXPECT_EQ(WriteText(document),
            kDeclaration + Body(ESDictionary("sales"), first));
  EXPECT_EQ(WriteText(document),
            kDeclaration + Body(ESDictionary("sales"), first));
  document.AddModel(MakeTypeModel(ESModelSpec::ESHolt),
                    TSXDictionaryRefs("B", "", "visits"), {});
  const std::string both = Models(document);
  EXPECT_EQ(both.substr(0, first.size()), first);
  EXPECT_NE(both, first);
  EXPECT_EQ(WriteText(document),
            kDeclaration + Body(ESDictionary("visits"), both));
}

TEST(PMMLDocumentTest, ARIMAFormListsPredictorsAndDropsTheDateSpecifications) {
  TSXPMMLDocument document;
  // An empty model selects the ARIMA form and adds no element.
  EXPECT_TRUE(
      document.AddModel(TSFModel(), TSXDictionaryRefs("E", "", "e"), {}));
  EXPECT_EQ(Models(document), "");
  EXPECT_EQ(WriteText(document, false), Body(ARIMADictionary({"e"})));

  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("A", "", "sales"), {});
  document.AddModel(MakeARIMAModel(),
                    TSXDictionaryRefs("B", "", "y", {"x1", "x2"}), {});
  EXPECT_EQ(WriteText(document, false, MakeExtension()),
            Body(ARIMADictionary({"y", "x1", "x2"}), Models(document)));

  // An empty identifier leaves out the names of its field.
  document.AddModel(MakeARIMAModel(), TSXDictionaryRefs("B", "", ""), {});
  EXPECT_EQ(
      WriteText(document, false),
      Body(Lines({"\t<DataDictionary", "\t\tnumberOfFields=\"1\">",
                  "\t\t<DataField", "\t\t\tdataType=\"double\"",
                  "\t\t\toptype=\"continuous\"/>", "\t</DataDictionary>"}),
           Models(document)));

  // An exponential smoothing model after it brings the extension back.
  document.AddModel(MakeTypeModel(ESModelSpec::ESSimple),
                    TSXDictionaryRefs("C", "", "z"), {});
  EXPECT_EQ(
      WriteText(document, false, MakeExtension()),
      Body(ESDictionary("z", "Month", "date",
                        Lines({"\t\t<Extension>", "\t\t\t<DateSpecification/>",
                               "\t\t</Extension>"})),
           Models(document)));
}

TEST(PMMLDocumentTest, TimeFieldNeedsBothNameAndType) {
  TSXPMMLDocument document;
  document.SetDateField("Week", "");
  EXPECT_EQ(WriteText(document, false), Body(ESDictionary("")));
  document.SetDateFieldType("time");
  EXPECT_EQ(WriteText(document, false), Body(ESDictionary("", "Week", "time")));
  document.SetDateField("", "time");
  EXPECT_EQ(WriteText(document, false), Body(ESDictionary("")));
  document.SetDateField("Hour", "time");
  EXPECT_EQ(WriteText(document, false), Body(ESDictionary("", "Hour", "time")));
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

std::string WriteTree(TSXMLTree& tree) {
  std::ostringstream out;
  EXPECT_TRUE(tree.WriteToStream(out));
  return out.str();
}

TEST(PMMLTreeTest, PMMLModeAddsEveryModelAndWritesTheDocument) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.SetApplication("Forecaster", "2", "(c) us");
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
  document.SetApplication("Forecaster", "2", "(c) us");
  document.AddModel(model, TSXDictionaryRefs(), options.history);
  document.AddModel(model, unknown, options.history);
  document.AddModel(TSFModel(), TSXDictionaryRefs("E", "", "e"), {});
  document.SetESPMMLOutputTimeValue(false);
  document.AddModel(model, TSXDictionaryRefs("S", "", "y"), options.history);
  const std::string expected = WriteText(document);
  ASSERT_NE(expected.find("<TimeValue"), std::string::npos);
  EXPECT_EQ(WriteTree(tree), expected);
  // An empty application name later leaves the strings as they were.
  tree.SetApplication("", "", "");
  EXPECT_EQ(WriteTree(tree), expected);
}

TEST(PMMLTreeTest, WritesWithAndWithoutTheDeclaration) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  tree.SetPMMLOutput(true);
  EXPECT_TRUE(imp->GetPMMLOutputFlag());
  std::ostringstream bare;
  EXPECT_TRUE(imp->WriteToStream(bare, false));
  EXPECT_EQ(bare.str(), Body(ESDictionary("")));
  std::ostringstream complete;
  EXPECT_TRUE(imp->WritePMMLToStream(complete, true));
  EXPECT_EQ(complete.str(), kDeclaration + bare.str());

  TSXMLTree null(nullptr);
  null.SetESPMMLOutputTimeValue(false);
  null.SetPMMLOutput(true);
  std::ostringstream nothing;
  EXPECT_FALSE(null.WriteToStream(nothing));
  EXPECT_EQ(nothing.str(), "");
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

TEST(PMMLTreeTest, EveryDateSpecificationAndTheTimeFieldOfTheLastRegistered) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  TSXDateSpec days(TSXDateSpec::Week);
  days.AddPeriod(TSXDateSpec::Day, 7, 0, 5);
  const TSXDateSpecEntry monthly{MonthlyDateSpec(2001, 2), 1, "monthly", false};
  const TSXDateSpecEntry daily{days, 2, "", false};
  EXPECT_EQ(tree.AddDateSpec(monthly.spec, "monthly"), 1);
  const std::string onlyMonthly = ExtensionOf({{&monthly, 1}});
  EXPECT_EQ(
      WriteTree(tree),
      kDeclaration + Body(ESDictionary("", "Month", "date", onlyMonthly)));
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
  const std::string both = ExtensionOf({{&monthly, 1}, {&daily, 2}});
  EXPECT_EQ(WriteTree(tree),
            kDeclaration +
                Body(ESDictionary("y", "Day", "date", both), Models(replica)));

  // An equivalent specification keeps its identifier and descriptor but sets
  // the time field again: DataDictionary names "Month" now, while the model
  // added before keeps "Day" in its mining schema.
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001, 2), "again"), 1);
  EXPECT_EQ(WriteTree(tree),
            kDeclaration + Body(ESDictionary("y", "Month", "date", both),
                                Models(replica)));
}

}  // namespace
