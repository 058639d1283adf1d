#include "tree/tsxml_tree_imp.h"

#include <memory>
#include <ostream>
#include <utility>

#include "modelapi/forecast_state.h"
#include "tree/document_root.h"
#include "tree/model_xml_tree_maker.h"
#include "xml/internal/node_writer.h"
#include "xml/xml_node.h"

using OstraTimeXML::ExportFormat;
using OstraTimeXML::XMLElement;

namespace {

constexpr char kDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";

// Lends the model elements to the document root for one write. Unless the
// write succeeds and Keep is called, the destructor takes them back, so that
// a failing write leaves them with the tree.
class ChildLoan {
 public:
  ChildLoan(XMLElement& root, const std::vector<XMLElement*>& children)
      : root_(root) {
    OstraTimeXML::internal::XMLNodeAccess::ReserveChildren(root, children.size());
    first_ = OstraTimeXML::internal::XMLNodeAccess::ChildCount(root);
    for (XMLElement* child : children) root.AddElement(child);  // no throw
  }
  ~ChildLoan() {
    if (!kept_) OstraTimeXML::internal::XMLNodeAccess::ReleaseChildrenFrom(root_, first_);
  }
  ChildLoan(const ChildLoan&) = delete;
  ChildLoan& operator=(const ChildLoan&) = delete;

  void Keep() { kept_ = true; }

 private:
  XMLElement& root_;
  size_t first_ = 0;
  bool kept_ = false;
};

}  // namespace

TSXMLTreeImp::TSXMLTreeImp() = default;

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

bool TSXMLTreeImp::AddModelTree(TSFModel model, const TSXDictionaryRefs& refs) {
  if (statXMLOutput_ || pmmlOutput_) return false;
  return AddXMLModelTree(model, refs);
}

int TSXMLTreeImp::GetModelCount() const {
  return static_cast<int>(models_.size());
}

bool TSXMLTreeImp::WriteToStream(std::ostream& os, bool complete) {
  if (statXMLOutput_ || pmmlOutput_) return false;
  return WriteXMLToStream(os, complete);
}

bool TSXMLTreeImp::AddXMLModelTree(TSFModel& model,
                                   const TSXDictionaryRefs& refs) {
  unsigned int index = 0;
  if (!CheckDictRefs(&model, refs, index)) return false;
  const TSFModelImp* imp = model.GetImp();
  ModelXMLTreeMaker maker(refs, imp->GetEstimationInfo());
  imp->GetForecastState()->Accept(maker);
  std::unique_ptr<XMLElement> element(maker.ReleaseTree());
  if (!element) return false;
  models_.push_back(element.get());
  element.release();
  return true;
}

bool TSXMLTreeImp::CheckDictRefs(const TSFModel* model,
                                 const TSXDictionaryRefs& refs,
                                 unsigned int& index) const {
  index = 0;
  if (refs.GetModelName().empty() || refs.GetDependentVarID().empty()) {
    return false;
  }
  if (refs.GetDateSpecID() != 0) return false;  // no date spec is registered
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
  root->AddElement(dictionary.release());

  ChildLoan loan(*root, models_);
  os.write(kDeclaration, sizeof kDeclaration - 1);
  ExportFormat format;
  root->ToStream(os, format, false);
  loan.Keep();
  models_.clear();  // the root owns them now and deletes them with itself
  return true;
}
