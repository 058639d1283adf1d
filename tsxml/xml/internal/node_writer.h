// Serialisation and deletion of node trees, without recursion along chains of
// plain elements.
#ifndef TSXML_XML_INTERNAL_NODE_WRITER_H
#define TSXML_XML_INTERNAL_NODE_WRITER_H

#include <string>

#include "tsxml/xml/internal/output_buffer.h"
#include "tsxml/xml/xml_node.h"

namespace tsxml {

using OstraTimeXML::ExportFormat;
using OstraTimeXML::XMLAttribute;
using OstraTimeXML::XMLDocType;
using OstraTimeXML::XMLElement;
using OstraTimeXML::XMLInterface;
using OstraTimeXML::XMLString;

// The node classes' private fields are read only through this friend.
struct XMLNodeAccess {
  // The text of `root` and its subtree. Children of exactly the types
  // XMLElement and XMLString are written here, in a loop over an explicit
  // stack; any other child writes itself through its virtual ToString or
  // ToStream, after the buffer has been flushed.
  static void WriteElement(const XMLElement& root, ExportFormat& format,
                           OutputBuffer& out);
  // name="value" as one piece; `format` is not read.
  static void WriteAttribute(const XMLAttribute& attribute, OutputBuffer& out);
  // The escaped text as one piece; clears both layout flags.
  static void WriteText(const XMLString& text, ExportFormat& format,
                        OutputBuffer& out);
  // The declaration and document type as one piece.
  static void WriteDocType(const XMLDocType& docType, OutputBuffer& out);

  // Deletes the attributes and the whole subtree of `element`, each node
  // once, in the order of nested destructors; leaves `element` empty.
  static void DeleteContents(XMLElement& element) noexcept;

  // Lending children for one write: the caller reserves room, appends the
  // borrowed elements (which then cannot throw), and on failure takes every
  // child from position `first` on back without deleting it.
  static void ReserveChildren(XMLElement& element, size_t extra);
  static size_t ChildCount(const XMLElement& element);
  static void ReleaseChildrenFrom(XMLElement& element, size_t first) noexcept;
};

// Escaping by runs of bytes that need none.
// Text node: "&" and "<".
void WriteEscapedText(const std::string& text, OutputBuffer& out);
// Attribute value: & < > " tab LF CR, blank pairs, and a blank at either end.
void WriteEscapedAttributeValue(const std::string& value, OutputBuffer& out);

}  // namespace tsxml

#endif  // TSXML_XML_INTERNAL_NODE_WRITER_H
