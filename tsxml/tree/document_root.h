// The root of the native model document.
#ifndef TSXML_TREE_DOCUMENT_ROOT_H
#define TSXML_TREE_DOCUMENT_ROOT_H

#include <string>

#include "tsxml/xml/xml_node.h"

namespace tsxml {

// "TSCXML" with its namespace attributes and its "Header", which holds
// "Application" when `name` is not empty. Caller owns the result.
OstraTimeXML::XMLElement* MakeDocumentRoot(const std::string& name,
                                           const std::string& version);

}  // namespace tsxml

#endif  // TSXML_TREE_DOCUMENT_ROOT_H
