#include "tsxml/tree/tsxml_tree.h"

#include <utility>

#include "tsxml/tree/tsxml_tree_imp.h"

TSXMLTree::TSXMLTree() : imp_(new TSXMLTreeImp) { imp_->addReference(); }

TSXMLTree::TSXMLTree(TSXMLTreeImp* imp) : imp_(imp) {
  if (imp_) imp_->addReference();
}

TSXMLTree::TSXMLTree(const TSXMLTree& other) : imp_(other.imp_) {
  if (imp_) imp_->addReference();
}

TSXMLTree& TSXMLTree::operator=(const TSXMLTree& other) {
  if (imp_ == other.imp_) return *this;
  if (imp_) imp_->removeReference();
  imp_ = other.imp_;
  if (imp_) imp_->addReference();
  return *this;
}

TSXMLTree::~TSXMLTree() {
  if (imp_) imp_->removeReference();
}

void TSXMLTree::SetApplication(std::string name, std::string version,
                               std::string copyright) {
  if (imp_) {
    imp_->SetApplication(std::move(name), std::move(version),
                         std::move(copyright));
  }
}

void TSXMLTree::SetPMMLOutput(bool on) {
  if (imp_) imp_->SetPMMLOutputFlag(on);
}

void TSXMLTree::SetESPMMLOutputTimeValue(bool on) {
  if (imp_) imp_->SetESPMMLOutputTimeValue(on);
}

bool TSXMLTree::AddModelTree(TSFModel model, const TSXDictionaryRefs& refs) {
  return imp_ && imp_->AddModelTree(model, refs);
}

bool TSXMLTree::AddModelTree(TSFCrModel model, const TSXDictionaryRefs& refs) {
  return imp_ && imp_->AddModelTree(model, refs);
}

int TSXMLTree::AddDateSpec(const TSXDateSpec& spec, std::string descriptor) {
  return imp_ ? imp_->AddDateSpec(spec, std::move(descriptor)) : 0;
}

int TSXMLTree::GetModelCount() const {
  return imp_ ? imp_->GetModelCount() : 0;
}

bool TSXMLTree::WriteToStream(std::ostream& os) {
  return imp_ && imp_->WriteToStream(os, true);
}
