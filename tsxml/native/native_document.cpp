#include "tsxml/native/native_document.h"

#include <memory>
#include <ostream>

#include "tsxml/base/vendor.h"
#include "tsxml/modelapi/croston_model.h"
#include "tsxml/modelapi/model.h"
#include "tsxml/native/croston_element.h"
#include "tsxml/native/date_spec_element.h"
#include "tsxml/native/model_xml_tree_maker.h"
#include "tsxml/xml/internal/document_output.h"

namespace tsxml {

using OstraTimeXML::ExportFormat;

XMLElement* MakeDocumentRoot(const std::string& name,
                             const std::string& version) {
  const std::string namespaceURI =
      std::string(kVendorBaseURI) +
      "/software/analytics/corvane/xml/components/time-series";
  const std::string schemaLocation =
      std::string(kVendorHost) +
      "/software/analytics/corvane/xml/components/time-series-1.0.xsd";

  std::unique_ptr<XMLElement> root(XMLElement::Create("TSCXML"));
  root->AddAttribute("xmlns", namespaceURI);
  root->AddAttribute("xmlns:xsi", kXsiNamespaceURI);
  root->AddAttribute("xsi:schemaLocation", namespaceURI + " " + schemaLocation);

  std::unique_ptr<XMLElement> header(XMLElement::Create("Header"));
  if (!name.empty()) {
    std::unique_ptr<XMLElement> application(XMLElement::Create("Application"));
    application->AddAttribute("name", name);
    if (!version.empty()) application->AddAttribute("version", version);
    header->AddElement(application.release());
  }
  root->AddElement(header.release());
  return root.release();
}

TSXNativeDocument::~TSXNativeDocument() {
  for (XMLElement* model : models_) delete model;
}

bool TSXNativeDocument::AddModel(const TSFModel& model,
                                 const TSXDictionaryRefs& refs) {
  const TSFModelImp* imp = model.GetImp();
  if (imp == nullptr || imp->GetForecastState() == nullptr) return false;
  ModelXMLTreeMaker maker(refs, imp->GetEstimationInfo());
  imp->GetForecastState()->Accept(maker);
  return Append(maker.ReleaseTree());
}

bool TSXNativeDocument::AddModel(const TSFCrModel& model,
                                 const TSXDictionaryRefs& refs) {
  const TSFCrModelImp* imp = model.GetImp();
  if (imp == nullptr) return false;
  const ESForecastState* actualDemand =
      imp->GetForecastState(TSFCrModelImp::ActualDemand);
  const ESForecastState* elapsedTime =
      imp->GetForecastState(TSFCrModelImp::ElapsedTime);
  const ESForecastState* absoluteError =
      imp->GetForecastState(TSFCrModelImp::AbsoluteError);
  if (!actualDemand || !elapsedTime || !absoluteError) return false;
  return Append(MakeCrostonElement(*actualDemand, *elapsedTime, *absoluteError,
                                   refs, imp->GetFunctionType(),
                                   imp->GetEstimationInfo()));
}

bool TSXNativeDocument::Append(XMLElement* element) {
  std::unique_ptr<XMLElement> owned(element);
  if (!owned) return false;
  models_.push_back(owned.get());
  owned.release();
  return true;
}

bool TSXNativeDocument::Write(std::ostream& os, bool complete,
                              const std::string& name,
                              const std::string& version,
                              const std::deque<TSXDateSpecEntry>& dateSpecs) {
  if (models_.empty()) return false;
  if (!complete) {
    ExportFormat format;
    for (const XMLElement* model : models_) model->ToStream(os, format, false);
    for (XMLElement* model : models_) delete model;
    models_.clear();
    return true;
  }

  std::unique_ptr<XMLElement> root(MakeDocumentRoot(name, version));
  std::unique_ptr<XMLElement> dictionary(XMLElement::Create("DataDictionary"));
  for (const TSXDateSpecEntry& entry : dateSpecs) {
    if (!entry.used) continue;
    std::unique_ptr<XMLElement> dateSpec(
        MakeDateSpecificationElement(entry.spec, entry.descriptor, entry.id));
    dictionary->AddElement(dateSpec.release());
  }
  root->AddElement(dictionary.release());

  ChildLoan loan(*root, models_);
  os.write(kXMLDeclaration, kXMLDeclarationLength);
  ExportFormat format;
  root->ToStream(os, format, false);
  loan.Keep();
  models_.clear();  // the root owns them now and deletes them with itself
  return true;
}

}  // namespace tsxml
