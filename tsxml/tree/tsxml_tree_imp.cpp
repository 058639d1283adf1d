#include "tsxml/tree/tsxml_tree_imp.h"

#include <memory>
#include <ostream>
#include <utility>

#include "tsxml/native/native_document.h"
#include "tsxml/pmml/pmml_document.h"
#include "tsxml/statxml/statxml_document.h"

TSXMLTreeImp::TSXMLTreeImp()
    : nativeDocument_(std::make_unique<tsxml::TSXNativeDocument>()),
      pmmlDocument_(std::make_unique<tsxml::TSXPMMLDocument>()),
      statXMLDocument_(std::make_unique<tsxml::TSXStatXMLDocument>()) {}

// The native model elements go first, then the StatXML document, then the
// other members in reverse order.
TSXMLTreeImp::~TSXMLTreeImp() {
  nativeDocument_.reset();
  statXMLDocument_.reset();
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

void TSXMLTreeImp::SetPMMLConsistent(bool on) {
  pmmlDocument_->SetConsistent(on);
}

void TSXMLTreeImp::SetStatXMLOutputFlag(const std::valarray<double>* series,
                                        int lagCount, double confidenceLevel) {
  statXMLOutput_ = true;
  statXMLDocument_->SetOutput(series, lagCount, confidenceLevel);
}

bool TSXMLTreeImp::AddModelTree(TSFModel model, const TSXDictionaryRefs& refs) {
  if (statXMLOutput_) return AddStatXMLModelTree(model, refs, nullptr);
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
  return static_cast<int>(nativeDocument_->GetModelCount());
}

bool TSXMLTreeImp::WriteToStream(std::ostream& os, bool complete) {
  if (statXMLOutput_) return WriteStatXMLToStream(os, complete);
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
  return pmmlDocument_->Write(os, complete,
                              tsxml::MakeDateSpecExtension(dateSpecs_));
}

bool TSXMLTreeImp::AddStatXMLModelTree(TSFModel& model,
                                       const TSXDictionaryRefs& refs,
                                       std::valarray<double>* /*history*/) {
  return statXMLDocument_->AddModel(model, refs);
}

bool TSXMLTreeImp::WriteStatXMLToStream(std::ostream& os, bool /*complete*/) {
  return statXMLDocument_->Write(os);
}

bool TSXMLTreeImp::AddXMLModelTree(TSFModel& model,
                                   const TSXDictionaryRefs& refs) {
  if (model.IsEmpty()) return false;
  unsigned int index = 0;
  if (!CheckDictRefs(&model, refs, index)) return false;
  if (!nativeDocument_->AddModel(model, refs)) return false;
  MarkDateSpecUsed(refs, index);
  return true;
}

bool TSXMLTreeImp::AddModelTree(TSFCrModel model,
                                const TSXDictionaryRefs& refs) {
  unsigned int index = 0;
  if (!CheckDictRefs(nullptr, refs, index)) return false;
  if (!nativeDocument_->AddModel(model, refs)) return false;
  MarkDateSpecUsed(refs, index);
  return true;
}

void TSXMLTreeImp::MarkDateSpecUsed(const TSXDictionaryRefs& refs,
                                    unsigned int index) {
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
    dateSpecs_.push_back(
        TSXDateSpecEntry{spec, largest + 1, std::move(descriptor), false});
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
  if (!nativeDocument_->Write(os, complete, applicationName_,
                              applicationVersion_, dateSpecs_)) {
    return false;
  }
  if (complete) dateSpecs_.clear();
  return true;
}
