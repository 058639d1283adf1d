// How nodes are held, filled, serialised and deleted; writing and deleting
// go without recursion along chains of plain elements.
//
// An element keeps its name and attributes in one text buffer: the name,
// then for each attribute a record
//   [u32 name size][u32 value size, top bit set when the value needs no
//   escaping][name][value]
// or, for an XMLAttribute object it owns (added as one, or too long for the
// sizes above), [u32 kObjectRecord][u32 0][XMLAttribute*]. The sizes are
// unaligned and read with memcpy. Create puts the buffer in the same pool
// block as the element, which grows in place while it is the last block
// carved.
//
// Its children are pointers with the lowest bit set for an XMLString, in a
// pool block whose first word is the capacity.
#ifndef TSXML_XML_INTERNAL_NODE_WRITER_H
#define TSXML_XML_INTERNAL_NODE_WRITER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tsxml/xml/internal/output_buffer.h"
#include "tsxml/xml/xml_node.h"

namespace tsxml {

using OstraTimeXML::ExportFormat;
using OstraTimeXML::XMLAttribute;
using OstraTimeXML::XMLDocType;
using OstraTimeXML::XMLElement;
using OstraTimeXML::XMLInterface;
using OstraTimeXML::XMLString;

// The node classes' private fields are reached only through this friend.
struct XMLNodeAccess {
  // Building. Each Create's caller owns the result; all throw
  // std::bad_alloc and then leave everything as it was.
  // An element whose block has room for `attributeBytes` of attribute
  // records (AttributeRecordSize) besides its name.
  static XMLElement* CreateElement(std::string_view name,
                                   std::size_t attributeBytes = 0);
  static XMLString* CreateText(std::string_view text);
  // name="value", the value escaped on output.
  static void AddTextAttribute(XMLElement& element, std::string_view name,
                               std::string_view value);
  // name="text", the number text of `value` (Format(value, false, nullptr)),
  // made here and written without an escaping scan.
  static void AddNumberAttribute(XMLElement& element, std::string_view name,
                                 double value);
  // Appends `child` (may be null), which `element` owns from the call on:
  // should growing the list throw, `child` is deleted. A subclass's own
  // AddElement is called; for elements made by Create no virtual call is
  // made.
  static int AddChild(XMLElement& element, XMLElement* child);
  static int AddChild(XMLElement& element, XMLString* child);
  // The bytes that an attribute with a name and value of these sizes takes.
  static constexpr std::size_t AttributeRecordSize(std::size_t nameSize,
                                                   std::size_t valueSize) {
    return 8 + nameSize + valueSize;
  }
  // Room for the longest number text.
  static constexpr std::size_t kNumberTextRoom = 32;

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

 private:
  static void AppendRecord(XMLElement& element, std::string_view name,
                           std::string_view value, bool plainValue);
  static void AppendObjectRecord(XMLElement& element, XMLAttribute* attribute);
  static void ReserveText(XMLElement& element, std::size_t extra);
  static void AppendTagged(XMLElement& element, std::uintptr_t child);
  // What XMLElement::AddElement does.
  static int AppendChild(XMLElement& element, XMLElement* child);
  static int AppendChild(XMLElement& element, XMLString* child);
  static void DeleteAttributes(XMLElement& element) noexcept;
  static void DestroyCreated(XMLElement* element) noexcept;
  static void DestroyText(XMLString* text) noexcept;
  friend class OstraTimeXML::XMLElement;
  friend class OstraTimeXML::XMLString;
};

// Escaping by runs of bytes that need none.
// Text node: "&" and "<".
void WriteEscapedText(const char* text, std::size_t size, OutputBuffer& out);
// Attribute value: & < > " tab LF CR, blank pairs, and a blank at either end.
void WriteEscapedAttributeValue(const char* value, std::size_t size,
                                OutputBuffer& out);

}  // namespace tsxml

#endif  // TSXML_XML_INTERNAL_NODE_WRITER_H
