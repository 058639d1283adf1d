#include "tsxml/tree/tsxml_tree_imp.h"

#include <memory>
#include <ostream>
#include <utility>

#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/native/croston_element.h"
#include "tsxml/native/date_spec_element.h"
#include "tsxml/pmml/pmml_document.h"
#include "tsxml/tree/document_root.h"
#include "tsxml/tree/model_xml_tree_maker.h"
#include "tsxml/xml/internal/document_output.h"
#include "tsxml/xml/xml_node.h"

using OstraTimeXML::ExportFormat;
using OstraTimeXML::XMLElement;
using OstraTimeXML::internal::ChildLoan;
using OstraTimeXML::internal::kXMLDeclaration;
using OstraTimeXML::internal::kXMLDeclarationLength;

TSXMLTreeImp::TSXMLTreeImp()
    : pmmlDocument_(std::make_unique<tsxml::TSXPMMLDocument>()) {}

TSXMLTreeImp::~TSXMLTreeImp() {
  for (XMLElement* model : models_) delete model;
}

void TSXMLTreeImp::SetApplication(std::string name, std::string version,
                                  std::string copyright) {
  if (name.empty()) {
    applicationName_.clear();
    applicationVersion_.clear();
    applicationCopyright_.clear();
    return;
  }
  applicationName_ = std::move(name);
  applicationVersion_ = std::move(version);
  applicationCopyright_ = std::move(copyright);
}

void TSXMLTreeImp::SetESPMMLOutputTimeValue(bool on) {
  pmmlDocument_->SetESPMMLOutputTimeValue(on);
}

bool TSXMLTreeImp::AddModelTree(TSFModel model, const TSXDictionaryRefs& refs) {
  if (statXMLOutput_) return false;
  if (pmmlOutput_) {
    // Copy-constructed, not assigned: a valarray whose assignment fails to
    // allocate is left broken.
    std::valarray<double> history(model.IsEmpty()
                                      ? std::valarray<double>()
                                      : model.GetImp()->GetHistoryData());
    return AddPMMLModelTree(model, refs, &history);
  }
  return AddXMLModelTree(model, refs);
}

int TSXMLTreeImp::GetModelCount() const {
  return static_cast<int>(models_.size());
}

bool TSXMLTreeImp::WriteToStream(std::ostream& os, bool complete) {
  if (statXMLOutput_) return false;
  if (pmmlOutput_) return WritePMMLToStream(os, complete);
  return WriteXMLToStream(os, complete);
}

bool TSXMLTreeImp::AddPMMLModelTree(TSFModel& model,
                                    const TSXDictionaryRefs& refs,
                                    std::valarray<double>* history) {
  return pmmlDocument_->AddModel(model, refs,
                                 history ? *history : std::valarray<double>());
}

bool TSXMLTreeImp::WritePMMLToStream(std::ostream& os, bool complete) {
  pmmlDocument_->SetApplication(applicationName_, applicationVersion_,
                                applicationCopyright_);
  // Every registered date specification, used by a model or not.
  std::unique_ptr<XMLElement> extension;
  if (!dateSpecs_.empty()) {
    extension.reset(XMLElement::Create("Extension"));
    for (const TSXDateSpecEntry& entry : dateSpecs_) {
      std::unique_ptr<XMLElement> dateSpec(tsxml::MakeDateSpecificationElement(
          entry.spec, entry.descriptor, entry.id));
      extension->AddElement(dateSpec.release());
    }
  }
  return pmmlDocument_->Write(os, complete, extension.release());
}

bool TSXMLTreeImp::AddXMLModelTree(TSFModel& model,
                                   const TSXDictionaryRefs& refs) {
  if (model.IsEmpty() || !model.GetImp()->GetForecastState()) return false;
  unsigned int index = 0;
  if (!CheckDictRefs(&model, refs, index)) return false;
  const TSFModelImp* imp = model.GetImp();
  ModelXMLTreeMaker maker(refs, imp->GetEstimationInfo());
  imp->GetForecastState()->Accept(maker);
  std::unique_ptr<XMLElement> element(maker.ReleaseTree());
  if (!element) return false;
  AppendModel(std::move(element), refs, index);
  return true;
}

bool TSXMLTreeImp::AddModelTree(TSFCrModel model,
                                const TSXDictionaryRefs& refs) {
  unsigned int index = 0;
  if (!CheckDictRefs(nullptr, refs, index)) return false;
  const TSFCrModelImp* imp = model.GetImp();
  if (imp == nullptr) return false;
  const ESForecastState* actualDemand =
      imp->GetForecastState(TSFCrModelImp::ActualDemand);
  const ESForecastState* elapsedTime =
      imp->GetForecastState(TSFCrModelImp::ElapsedTime);
  const ESForecastState* absoluteError =
      imp->GetForecastState(TSFCrModelImp::AbsoluteError);
  if (!actualDemand || !elapsedTime || !absoluteError) return false;
  AppendModel(std::unique_ptr<XMLElement>(tsxml::MakeCrostonElement(
                  *actualDemand, *elapsedTime, *absoluteError, refs,
                  imp->GetFunctionType(), imp->GetEstimationInfo())),
              refs, index);
  return true;
}

void TSXMLTreeImp::AppendModel(std::unique_ptr<XMLElement> element,
                               const TSXDictionaryRefs& refs,
                               unsigned int index) {
  models_.push_back(element.get());
  element.release();
  if (refs.GetDateSpecID() != 0) dateSpecs_[index].used = true;
}

int TSXMLTreeImp::AddDateSpec(const TSXDateSpec& spec, std::string descriptor) {
  // The PMML time field of `spec`, made before anything changes and moved in
  // last, so that a failure changes nothing.
  std::string fieldName, fieldType;
  const bool timeField = tsxml::TimeFieldOfDateSpec(spec, fieldName, fieldType);
  int largest = 0;
  int id = 0;
  for (const TSXDateSpecEntry& entry : dateSpecs_) {
    if (spec.IsEquivalent(entry.spec, true)) {
      id = entry.id;
      break;
    }
    if (entry.id > largest) largest = entry.id;
  }
  if (id == 0) {
    dateSpecs_.push_back(TSXDateSpecEntry{spec, largest + 1,
                                          std::move(descriptor), false});
    id = largest + 1;
  }
  if (timeField) {
    pmmlDocument_->SetDateField(std::move(fieldName), std::move(fieldType));
  }
  return id;
}

bool TSXMLTreeImp::CheckDictRefs(const TSFModel* model,
                                 const TSXDictionaryRefs& refs,
                                 unsigned int& index) const {
  index = 0;
  if (refs.GetModelName().empty() || refs.GetDependentVarID().empty()) {
    return false;
  }
  if (refs.GetDateSpecID() != 0) {
    size_t position = 0;
    while (position < dateSpecs_.size() &&
           dateSpecs_[position].id != refs.GetDateSpecID()) {
      ++position;
    }
    if (position == dateSpecs_.size()) return false;
    index = static_cast<unsigned int>(position);
  }
  const size_t predictors = model ? model->GetPredictorCount() : 0;
  if (refs.GetPredictorIDs().size() != predictors) return false;
  for (const std::string& id : refs.GetPredictorIDs()) {
    if (id.empty()) return false;
  }
  return true;
}

bool TSXMLTreeImp::WriteXMLToStream(std::ostream& os, bool complete) {
  if (models_.empty()) return false;
  if (!complete) {
    ExportFormat format;
    for (const XMLElement* model : models_) model->ToStream(os, format, false);
    for (XMLElement* model : models_) delete model;
    models_.clear();
    return true;
  }

  std::unique_ptr<XMLElement> root(
      tsxml::MakeDocumentRoot(applicationName_, applicationVersion_));
  std::unique_ptr<XMLElement> dictionary(XMLElement::Create("DataDictionary"));
  for (const TSXDateSpecEntry& entry : dateSpecs_) {
    if (!entry.used) continue;
    std::unique_ptr<XMLElement> dateSpec(tsxml::MakeDateSpecificationElement(
        entry.spec, entry.descriptor, entry.id));
    dictionary->AddElement(dateSpec.release());
  }
  root->AddElement(dictionary.release());

  ChildLoan loan(*root, models_);
  os.write(kXMLDeclaration, kXMLDeclarationLength);
  ExportFormat format;
  root->ToStream(os, format, false);
  loan.Keep();
  models_.clear();  // the root owns them now and deletes them with itself
  dateSpecs_.clear();
  return true;
}
