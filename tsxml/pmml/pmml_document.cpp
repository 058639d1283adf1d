#include "tsxml/pmml/pmml_document.h"

#include <algorithm>
#include <ostream>
#include <set>
#include <utility>

#include "tsxml/base/vendor.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/native/date_spec_element.h"
#include "tsxml/pmml/arima_model.h"
#include "tsxml/pmml/es_model.h"
#include "tsxml/pmml/pmml_elements.h"
#include "tsxml/xml/internal/document_output.h"

namespace tsxml {

using OstraTimeXML::ExportFormat;

namespace {

// The published names of the PMML 4.2 standard and of its publisher.
constexpr char kPMMLNamespaceURI[] = "http://www.dmg.org/PMML-4_2";
constexpr char kPMMLSchemaFile[] = "pmml-4-2.xsd";
constexpr char kDefaultCopyright[] = "www.dmg.org";

// The data type of the time field of each date specification period type,
// SimpleSequence to Obs; the field is named as the period type.
constexpr const char* kTimeFieldTypes[] = {"time", "date", "date", "date",
                                           "date", "date", "date", "time",
                                           "time", "time", "time"};
static_assert(sizeof kTimeFieldTypes / sizeof kTimeFieldTypes[0] ==
                  TSXDateSpec::Obs + 1,
              "one time field type per period type");

const std::string& DefaultTimeFieldName() {
  static const std::string name = "Month";
  return name;
}

const std::string& DefaultTimeFieldType() {
  static const std::string type = "date";
  return type;
}

// A continuous "DataField" with all four attributes, also when `name` is
// empty.
void AddFullDataField(XMLElement& dictionary, const std::string& name,
                      const std::string& dataType) {
  std::unique_ptr<XMLElement> field(XMLElement::Create("DataField"));
  field->AddAttribute("dataType", dataType);
  field->AddAttribute("optype", "continuous");
  field->AddAttribute("name", name);
  field->AddAttribute("displayName", name);
  dictionary.AddElement(field.release());
}

// Room for `extra` more entries, growing geometrically: the one step of an
// append that can throw.
template <typename T>
void ReserveFor(std::vector<T>& entries, size_t extra) {
  if (entries.capacity() - entries.size() >= extra) return;
  entries.reserve(std::max(entries.size() + extra, 2 * entries.capacity()));
}

}  // namespace

bool TimeFieldOfPeriod(int periodType, std::string& name, std::string& type) {
  const char* periodName = TSXDateSpec::PeriodTypeName(periodType);
  if (periodName == nullptr) return false;
  name = periodName;
  type = kTimeFieldTypes[periodType];
  return true;
}

bool TimeFieldOfDateSpec(const TSXDateSpec& spec, std::string& name,
                         std::string& type) {
  bool found = false;
  for (unsigned i = 0; i < spec.PeriodCount(); ++i) {
    TSXDateSpec::PeriodType periodType = TSXDateSpec::SimpleSequence;
    unsigned cycleLength = 0, subCycleStart = 0, subCycleLength = 0;
    spec.GetPeriod(i, periodType, cycleLength, subCycleStart, subCycleLength);
    if (TimeFieldOfPeriod(periodType, name, type)) found = true;
  }
  return found;
}

XMLElement* MakeDateSpecExtension(
    const std::deque<TSXDateSpecEntry>& dateSpecs) {
  if (dateSpecs.empty()) return nullptr;
  std::unique_ptr<XMLElement> extension(XMLElement::Create("Extension"));
  for (const TSXDateSpecEntry& entry : dateSpecs) {
    std::unique_ptr<XMLElement> dateSpec(
        MakeDateSpecificationElement(entry.spec, entry.descriptor, entry.id));
    extension->AddElement(dateSpec.release());
  }
  return extension.release();
}

TSXPMMLDocument::TSXPMMLDocument()
    : applicationName_("TimeSeriesApp"),
      applicationVersion_("4.0"),
      last_(std::make_unique<LastModel>()) {}

TSXPMMLDocument::~TSXPMMLDocument() {
  for (XMLElement* element : modelElements_) delete element;
}

void TSXPMMLDocument::SetApplication(std::string name, std::string version,
                                     std::string copyright) {
  if (name.empty()) return;
  applicationName_ = std::move(name);
  applicationVersion_ = std::move(version);
  copyright_ = std::move(copyright);
}

void TSXPMMLDocument::SetDateFieldType(std::string type) noexcept {
  dateFieldType_ = std::move(type);
}

void TSXPMMLDocument::SetDateField(std::string name,
                                   std::string type) noexcept {
  dateFieldName_ = std::move(name);
  dateFieldType_ = std::move(type);
}

bool TSXPMMLDocument::AddModel(const TSFModel& model,
                               const TSXDictionaryRefs& refs,
                               const std::valarray<double>& history) {
  // Built aside and swapped in last, so that a failure changes nothing.
  auto last = std::make_unique<LastModel>(*last_);
  last->dictionaryRefs = refs;
  last->summary.Fill(model, refs, history);
  const TSFModelImp* imp = model.GetImp();
  const auto* state = dynamic_cast<const ESForecastState*>(
      imp ? imp->GetForecastState() : nullptr);
  last->lastModelIsES = state != nullptr;

  std::unique_ptr<XMLElement> element;
  std::vector<Field> fields;
  if (state) {
    element.reset(BuildESModel(last->summary, TimeFieldName(),
                               esPMMLOutputTimeValue_, refs, *state,
                               imp->GetEstimationInfo(), history, mode_));
    fields.push_back({refs.GetDependentVarID(), "double"});
    fields.push_back({TimeFieldName(), TimeFieldType()});
  } else if (imp) {
    element.reset(BuildARIMAModel(model, refs, mode_));
    fields.push_back({refs.GetDependentVarID(), "double"});
    for (const std::string& id : refs.GetPredictorIDs()) {
      fields.push_back({id, "double"});
    }
  }
  if (element) {
    ReserveFor(modelElements_, 1);
    ReserveFor(miningFields_, fields.size());
    // No throw after the reserves: pointers and moved strings.
    modelElements_.push_back(element.release());
    for (Field& field : fields) miningFields_.push_back(std::move(field));
  }
  last_.swap(last);
  return true;
}

bool TSXPMMLDocument::Write(std::ostream& stream, bool complete,
                            XMLElement* dateSpecExtension) {
  std::unique_ptr<XMLElement> extension(dateSpecExtension);
  std::unique_ptr<XMLElement> root(MakeRoot());
  AddDataDictionary(*root, std::move(extension));
  // The loan ends before the root goes: the model elements stay here.
  ChildLoan loan(*root, modelElements_);
  if (complete) stream.write(kXMLDeclaration, kXMLDeclarationLength);
  ExportFormat format;
  root->ToStream(stream, format, false);
  return true;
}

XMLElement* TSXPMMLDocument::MakeRoot() const {
  std::unique_ptr<XMLElement> root(XMLElement::Create("PMML"));
  root->AddAttribute("version", "4.2");
  root->AddAttribute("xmlns", kPMMLNamespaceURI);
  root->AddAttribute("xmlns:xsi", kXsiNamespaceURI);
  root->AddAttribute("xsi:schemaLocation",
                     std::string(kPMMLNamespaceURI) + " " + kPMMLSchemaFile);
  XMLElement* header = AddChildElement(
      *root, "Header", "copyright",
      copyright_.empty() ? std::string(kDefaultCopyright) : copyright_);
  AddChildElement(*header, "Application", "name", applicationName_, "version",
                  applicationVersion_);
  return root.release();
}

void TSXPMMLDocument::AddDataDictionary(
    XMLElement& root, std::unique_ptr<XMLElement> dateSpecExtension) const {
  XMLElement* dictionary = AddChildElement(root, "DataDictionary");
  if (mode_ == PMMLMode::kConsistent) {
    const std::vector<Field> fields = ConsistentFields();
    if (last_->lastModelIsES && dateSpecExtension) {
      dictionary->AddElement(dateSpecExtension.release());
    }
    AddIntegerAttribute(*dictionary, "numberOfFields",
                        static_cast<int>(fields.size()));
    for (const Field& field : fields) {
      AddFullDataField(*dictionary, field.name, field.dataType);
    }
    return;
  }
  const TSXDictionaryRefs& refs = last_->dictionaryRefs;
  if (!last_->lastModelIsES) {
    AddDataField(*dictionary, refs.GetDependentVarID());
    for (const std::string& id : refs.GetPredictorIDs()) {
      AddDataField(*dictionary, id);
    }
    AddIntegerAttribute(*dictionary, "numberOfFields",
                        static_cast<int>(refs.GetPredictorIDs().size() + 1));
    return;  // the ARIMA form drops the date specifications
  }
  if (dateSpecExtension) dictionary->AddElement(dateSpecExtension.release());
  dictionary->AddAttribute("numberOfFields", "2");
  AddFullDataField(*dictionary, refs.GetDependentVarID(), "double");
  AddFullDataField(*dictionary, TimeFieldName(), TimeFieldType());
}

std::vector<TSXPMMLDocument::Field> TSXPMMLDocument::ConsistentFields() const {
  const TSXDictionaryRefs& refs = last_->dictionaryRefs;
  std::vector<Field> fields;
  fields.push_back({refs.GetDependentVarID(), "double"});
  if (last_->lastModelIsES) {
    fields.push_back({TimeFieldName(), TimeFieldType()});
  } else {
    for (const std::string& id : refs.GetPredictorIDs()) {
      fields.push_back({id, "double"});
    }
  }
  fields.insert(fields.end(), miningFields_.begin(), miningFields_.end());
  std::set<std::string> names;
  std::vector<Field> once;
  for (Field& field : fields) {
    if (names.insert(field.name).second) once.push_back(std::move(field));
  }
  return once;
}

const std::string& TSXPMMLDocument::TimeFieldName() const {
  return dateFieldName_.empty() || dateFieldType_.empty()
             ? DefaultTimeFieldName()
             : dateFieldName_;
}

const std::string& TSXPMMLDocument::TimeFieldType() const {
  return dateFieldName_.empty() || dateFieldType_.empty()
             ? DefaultTimeFieldType()
             : dateFieldType_;
}

}  // namespace tsxml
