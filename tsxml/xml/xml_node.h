// The write-only XML node model and its serialiser.
//
// A document is built from heap nodes made by the static Create factories,
// serialised once with ToString or ToStream and deleted. An element owns its
// attributes and children: deleting a root deletes the whole document.
#ifndef TSXML_XML_XML_NODE_H
#define TSXML_XML_XML_NODE_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "tsxml/base/export.h"

namespace tsxml {
struct XMLNodeAccess;
}  // namespace tsxml

namespace OstraTimeXML {

// Layout flags and nesting depth, passed down (and changed) by serialisation.
// `level` rises by one per nesting step and is back at its entry value when an
// element returns; every closing element sets both layout flags to true again.
class TSXML_API ExportFormat {
 public:
  ExportFormat() = default;
  ExportFormat(const ExportFormat&) = default;
  ExportFormat& operator=(const ExportFormat&) = default;
  ExportFormat& operator=(ExportFormat&&) = default;

  bool HasIndentation() const { return format_ && hasIndentation_; }
  bool IsNewParagraph() const { return format_ && isNewParagraph_; }
  void SetFormat(bool value) { format_ = value; }
  void SetIndentation(bool value) { hasIndentation_ = value; }
  void SetIsNewParagraph(bool value) { isNewParagraph_ = value; }

  // The master switch and the depth in tabs.
  bool GetFormat() const { return format_; }
  int GetLevel() const { return level_; }
  void SetLevel(int level) { level_ = level; }

 private:
  bool isNewParagraph_ = true;
  bool hasIndentation_ = true;
  bool format_ = true;
  int level_ = 0;
};

// Abstract base of all nodes. ToString appends the node's text to `out`;
// ToStream writes the same bytes to `os`, each piece converted to UTF-8 by
// WriteUTF when `utf8` is true. Both return 0; the stream state is not read.
class TSXML_API XMLInterface {
 public:
  XMLInterface() = default;
  XMLInterface(const XMLInterface&) = default;
  XMLInterface& operator=(const XMLInterface&) { return *this; }
  virtual ~XMLInterface();

  virtual int ToString(std::string& out, ExportFormat& format) const = 0;
  virtual int ToStream(std::ostream& os, ExportFormat& format,
                       bool utf8) const = 0;
};

// name="value", with the value escaped on output.
class TSXML_API XMLAttribute : public XMLInterface {
 public:
  // Caller owns the result.
  static XMLAttribute* Create(const std::string& name,
                              const std::string& value);
  // The value is the number text Format(value, false, nullptr), made once here.
  // Caller owns the result.
  static XMLAttribute* Create(const std::string& name, double value);

  XMLAttribute& operator=(const XMLAttribute& other);

  int ToString(std::string& out, ExportFormat& format) const override;
  int ToStream(std::ostream& os, ExportFormat& format,
               bool utf8) const override;

 private:
  XMLAttribute(const std::string& name, const std::string& value);
  friend struct tsxml::XMLNodeAccess;

  std::string name_;
  std::string value_;
};

// A text node; "&" and "<" are escaped on output.
class TSXML_API XMLString : public XMLInterface {
 public:
  // Caller owns the result.
  static XMLString* Create(const std::string& text);
  ~XMLString() override;

  // Strong guarantee: on an allocation failure the text stays as it was.
  XMLString& operator=(const XMLString& other);

  int ToString(std::string& out, ExportFormat& format) const override;
  int ToStream(std::ostream& os, ExportFormat& format,
               bool utf8) const override;

  // Text nodes live in the node pool's memory (see XMLElement).
  static void* operator new(std::size_t size);
  static void operator delete(void* block) noexcept;

 private:
  XMLString(char* text, std::size_t size, std::size_t capacity) noexcept;
  friend struct tsxml::XMLNodeAccess;

  // The text: in the room behind the node that Create made for it, or, after
  // an assignment of a longer text, in a block of its own.
  char* text_;
  std::size_t size_;
  std::size_t capacity_;
};

// The XML declaration and a document type declaration. Not part of a tree:
// the caller of WriteTree owns it.
class TSXML_API XMLDocType : public XMLInterface {
 public:
  // `userValue` is stored and copied at its full width and never written.
  // Caller owns the result.
  static XMLDocType* Create(const std::string& name,
                            const std::string& systemId, long userValue);

  XMLDocType& operator=(const XMLDocType& other);

  // Appends a line feed and `text` to the internal subset; returns its new
  // length in bytes.
  int AddExtension(const std::string& text);

  int ToString(std::string& out, ExportFormat& format) const override;
  int ToStream(std::ostream& os, ExportFormat& format,
               bool utf8) const override;

 private:
  XMLDocType(const std::string& name, const std::string& systemId,
             long userValue);
  friend struct tsxml::XMLNodeAccess;

  std::string name_;
  std::string systemId_;
  std::string extensions_;
  long userValue_;
};

// An element with attributes and children (elements and text nodes in one
// sequence). Owns every attribute and child added to it; a node must be added
// to one element only. Null entries are accepted and skipped on output.
// Writing and deleting loop over plain elements without recursion, so trees
// of any depth are fine; a host subclass child writes itself through its own
// virtual ToString or ToStream.
//
// Elements and their text are held in memory of the library's node pool
// (xml/internal/node_pool.h), which the class's operator new and delete
// reach: a subclass allocated with new is freed by delete as usual.
class TSXML_API XMLElement : public XMLInterface {
 public:
  // Caller owns the result.
  static XMLElement* Create(const std::string& name);
  ~XMLElement() override;

  XMLElement(const XMLElement&) = delete;
  XMLElement& operator=(const XMLElement&) = delete;

  int ToString(std::string& out, ExportFormat& format) const override;
  int ToStream(std::ostream& os, ExportFormat& format,
               bool utf8) const override;

  // Append and take ownership; return the number of children afterwards.
  // Should growing the list throw, `child` is deleted and nothing changes.
  virtual int AddElement(XMLString* child);
  virtual int AddElement(XMLElement* child);

  // Append and take ownership (on a throw the attribute is deleted).
  void AddAttribute(XMLAttribute* attribute);
  void AddAttribute(const std::string& name, const std::string& value);
  void AddAttribute(const std::string& name, double value);

  static void* operator new(std::size_t size);
  static void operator delete(void* block) noexcept;

 protected:
  explicit XMLElement(const std::string& name);

 private:
  // For Create: the name and `room` further bytes are in the memory behind
  // the element.
  XMLElement(std::string_view name, std::size_t room) noexcept;
  friend struct tsxml::XMLNodeAccess;

  // The name, then one record per attribute (node_writer.h tells their
  // form): in the room behind the element that Create made, or in a block
  // of its own.
  char* text_ = nullptr;
  std::size_t textSize_ = 0;
  std::size_t textCapacity_ = 0;
  std::size_t nameSize_ = 0;
  // The children, each a pointer with its lowest bit set for a text node, in
  // a block that begins with its capacity.
  std::uintptr_t* children_ = nullptr;
  std::size_t childCount_ = 0;
  std::uint32_t flags_ = 0;
};

// Puts the bytes of `text` to `os` unchanged. Returns 0.
TSXML_API int Write(std::ostream& os, const std::string& text);

// Converts `text` from the process's narrow character set (the LC_CTYPE
// locale) to UTF-8 and puts the result. A text that does not convert (in the
// "C" locale: any byte above 127) gives no output. Returns 0.
TSXML_API int WriteUTF(std::ostream& os, const std::string& text);

// Writes the prolog (`docType`, or the XML declaration and a line feed when it
// is null) and then `root` (nothing when null), raw bytes. `format` false
// puts the tree on one line. Returns 0.
TSXML_API int WriteTree(std::ostream& os, const XMLDocType* docType,
                        const XMLElement* root, bool format);

// As WriteTree, with every piece converted by WriteUTF. Returns 0.
TSXML_API int WriteTreeUTF8(std::ostream& os, const XMLDocType* docType,
                            const XMLElement* root, bool format);

}  // namespace OstraTimeXML

#endif  // TSXML_XML_XML_NODE_H
