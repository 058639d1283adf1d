#include "tsxml/tree/tsxml_tree.h"

#include <utility>

#include "tsxml/tree/tsxml_tree_imp.h"

TSXMLTree::TSXMLTree() : imp_(new TSXMLTreeImp) {}

TSXMLTree::TSXMLTree(TSXMLTreeImp* imp) : imp_(imp) {}

TSXMLTree::TSXMLTree(const TSXMLTree& other) = default;

TSXMLTree& TSXMLTree::operator=(const TSXMLTree& other) = default;

TSXMLTree::~TSXMLTree() = default;

void TSXMLTree::SetApplication(std::string name, std::string version,
                               std::string copyright) {
  if (TSXMLTreeImp* imp = imp_.GetImp()) {
    imp->SetApplication(std::move(name), std::move(version),
                        std::move(copyright));
  }
}

void TSXMLTree::SetPMMLOutput(bool on) {
  if (TSXMLTreeImp* imp = imp_.GetImp()) imp->SetPMMLOutputFlag(on);
}

void TSXMLTree::SetStatXMLOutput(const std::valarray<double>* residuals,
                                 int lagCount, double confidenceLevel) {
  if (TSXMLTreeImp* imp = imp_.GetImp()) {
    imp->SetStatXMLOutputFlag(residuals, lagCount, confidenceLevel);
  }
}

void TSXMLTree::SetESPMMLOutputTimeValue(bool on) {
  if (TSXMLTreeImp* imp = imp_.GetImp()) imp->SetESPMMLOutputTimeValue(on);
}

void TSXMLTree::SetPMMLConsistent(bool on) {
  if (TSXMLTreeImp* imp = imp_.GetImp()) imp->SetPMMLConsistent(on);
}

bool TSXMLTree::AddModelTree(TSFModel model, const TSXDictionaryRefs& refs) {
  TSXMLTreeImp* imp = imp_.GetImp();
  return imp && imp->AddModelTree(model, refs);
}

bool TSXMLTree::AddModelTree(TSFCrModel model, const TSXDictionaryRefs& refs) {
  TSXMLTreeImp* imp = imp_.GetImp();
  return imp && imp->AddModelTree(model, refs);
}

int TSXMLTree::AddDateSpec(const TSXDateSpec& spec, std::string descriptor) {
  TSXMLTreeImp* imp = imp_.GetImp();
  return imp ? imp->AddDateSpec(spec, std::move(descriptor)) : 0;
}

int TSXMLTree::GetModelCount() const {
  const TSXMLTreeImp* imp = imp_.GetImp();
  return imp ? imp->GetModelCount() : 0;
}

bool TSXMLTree::WriteToStream(std::ostream& os) {
  TSXMLTreeImp* imp = imp_.GetImp();
  return imp && imp->WriteToStream(os, true);
}
