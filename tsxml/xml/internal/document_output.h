// Pieces that every document writer shares: the XML declaration, and the loan
// of elements that a writer keeps to the root of one write.
#ifndef TSXML_XML_INTERNAL_DOCUMENT_OUTPUT_H
#define TSXML_XML_INTERNAL_DOCUMENT_OUTPUT_H

#include <cstddef>
#include <vector>

#include "tsxml/xml/internal/node_writer.h"
#include "tsxml/xml/xml_node.h"

namespace tsxml {

// The declaration that opens a complete document, without a line end: the
// root's own text begins with one.
inline constexpr char kXMLDeclaration[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";
inline constexpr size_t kXMLDeclarationLength = sizeof kXMLDeclaration - 1;

// Lends `children` to `root` for one write. Room is reserved first (the only
// step that can throw), so that the children are appended without a failure.
// Unless Keep is called, the destructor takes them back without deleting
// them, so that they stay with the lender; after Keep the root owns them.
class ChildLoan {
 public:
  ChildLoan(XMLElement& root, const std::vector<XMLElement*>& children)
      : root_(root) {
    XMLNodeAccess::ReserveChildren(root, children.size());
    first_ = XMLNodeAccess::ChildCount(root);
    for (XMLElement* child : children) root.AddElement(child);  // no throw
  }
  ~ChildLoan() {
    if (!kept_) XMLNodeAccess::ReleaseChildrenFrom(root_, first_);
  }
  ChildLoan(const ChildLoan&) = delete;
  ChildLoan& operator=(const ChildLoan&) = delete;

  // Gives the children to the root for good.
  void Keep() { kept_ = true; }

 private:
  XMLElement& root_;
  size_t first_ = 0;
  bool kept_ = false;
};

}  // namespace tsxml

#endif  // TSXML_XML_INTERNAL_DOCUMENT_OUTPUT_H
