#include "tsxml/xml/xml_node.h"

#include <climits>
#include <cstring>
#include <memory>
#include <ostream>
#include <utility>

#include "tsxml/xml/internal/document_output.h"
#include "tsxml/xml/internal/narrow_to_utf8.h"
#include "tsxml/xml/internal/node_pool.h"
#include "tsxml/xml/internal/node_writer.h"
#include "tsxml/xml/internal/output_buffer.h"
#include "tsxml/xml/number_text.h"

namespace OstraTimeXML {
namespace {

using tsxml::NodePool;
using tsxml::OutputBuffer;
using tsxml::XMLNodeAccess;

int ClampedSize(std::size_t size) {
  return size > static_cast<std::size_t>(INT_MAX) ? INT_MAX
                                                  : static_cast<int>(size);
}

// Runs `write` on a buffer that appends to `out`.
template <typename WriteFn>
int WriteToString(std::string& out, WriteFn write) {
  OutputBuffer buffer(out);
  write(buffer);
  buffer.Flush();
  return 0;
}

// Runs `write` on a buffer that writes to `os`, converting pieces if `utf8`.
template <typename WriteFn>
int WriteToStream(std::ostream& os, bool utf8, WriteFn write) {
  OutputBuffer buffer(os, utf8);
  write(buffer);
  buffer.Flush();
  return 0;
}

int WriteDocument(std::ostream& os, const XMLDocType* docType,
                  const XMLElement* root, bool format, bool utf8) {
  ExportFormat exportFormat;
  exportFormat.SetFormat(format);
  if (docType != nullptr) {
    docType->ToStream(os, exportFormat, utf8);
  } else {
    const std::string line = std::string(tsxml::kXMLDeclaration) + '\n';
    if (utf8) {
      WriteUTF(os, line);
    } else {
      Write(os, line);
    }
  }
  if (root != nullptr) root->ToStream(os, exportFormat, utf8);
  return 0;
}

}  // namespace

XMLInterface::~XMLInterface() = default;

// XMLAttribute

XMLAttribute::XMLAttribute(const std::string& name, const std::string& value)
    : name_(name), value_(value) {}

XMLAttribute* XMLAttribute::Create(const std::string& name,
                                   const std::string& value) {
  return new XMLAttribute(name, value);
}

XMLAttribute* XMLAttribute::Create(const std::string& name, double value) {
  return new XMLAttribute(name, Format(value, false, nullptr));
}

XMLAttribute& XMLAttribute::operator=(const XMLAttribute& other) {
  std::string name = other.name_;
  std::string value = other.value_;
  name_.swap(name);
  value_.swap(value);
  return *this;
}

int XMLAttribute::ToString(std::string& out, ExportFormat&) const {
  return WriteToString(out, [this](OutputBuffer& buffer) {
    XMLNodeAccess::WriteAttribute(*this, buffer);
  });
}

int XMLAttribute::ToStream(std::ostream& os, ExportFormat&, bool utf8) const {
  return WriteToStream(os, utf8, [this](OutputBuffer& buffer) {
    XMLNodeAccess::WriteAttribute(*this, buffer);
  });
}

// XMLString

XMLString::XMLString(char* text, std::size_t size,
                     std::size_t capacity) noexcept
    : text_(text), size_(size), capacity_(capacity) {}

XMLString* XMLString::Create(const std::string& text) {
  return XMLNodeAccess::CreateText(text);
}

XMLString::~XMLString() {
  if (text_ != reinterpret_cast<char*>(this + 1)) NodePool::Free(text_);
}

XMLString& XMLString::operator=(const XMLString& other) {
  if (this == &other) return *this;
  if (other.size_ <= capacity_) {
    if (other.size_ != 0) std::memcpy(text_, other.text_, other.size_);
    size_ = other.size_;
    return *this;
  }
  char* text = static_cast<char*>(NodePool::Allocate(other.size_));
  std::memcpy(text, other.text_, other.size_);
  if (text_ != reinterpret_cast<char*>(this + 1)) NodePool::Free(text_);
  text_ = text;
  size_ = other.size_;
  capacity_ = NodePool::RoundUp(other.size_);
  return *this;
}

void* XMLString::operator new(std::size_t size) {
  return NodePool::AllocateAligned16(size);
}

void XMLString::operator delete(void* block) noexcept { NodePool::Free(block); }

int XMLString::ToString(std::string& out, ExportFormat& format) const {
  return WriteToString(out, [this, &format](OutputBuffer& buffer) {
    XMLNodeAccess::WriteText(*this, format, buffer);
  });
}

int XMLString::ToStream(std::ostream& os, ExportFormat& format,
                        bool utf8) const {
  return WriteToStream(os, utf8, [this, &format](OutputBuffer& buffer) {
    XMLNodeAccess::WriteText(*this, format, buffer);
  });
}

// XMLDocType

XMLDocType::XMLDocType(const std::string& name, const std::string& systemId,
                       long userValue)
    : name_(name), systemId_(systemId), userValue_(userValue) {}

XMLDocType* XMLDocType::Create(const std::string& name,
                               const std::string& systemId, long userValue) {
  return new XMLDocType(name, systemId, userValue);
}

XMLDocType& XMLDocType::operator=(const XMLDocType& other) {
  std::string name = other.name_;
  std::string systemId = other.systemId_;
  std::string extensions = other.extensions_;
  name_.swap(name);
  systemId_.swap(systemId);
  extensions_.swap(extensions);
  userValue_ = other.userValue_;
  return *this;
}

int XMLDocType::AddExtension(const std::string& text) {
  extensions_.reserve(extensions_.size() + 1 + text.size());
  extensions_ += '\n';
  extensions_ += text;
  return ClampedSize(extensions_.size());
}

int XMLDocType::ToString(std::string& out, ExportFormat&) const {
  return WriteToString(out, [this](OutputBuffer& buffer) {
    XMLNodeAccess::WriteDocType(*this, buffer);
  });
}

int XMLDocType::ToStream(std::ostream& os, ExportFormat&, bool utf8) const {
  return WriteToStream(os, utf8, [this](OutputBuffer& buffer) {
    XMLNodeAccess::WriteDocType(*this, buffer);
  });
}

// XMLElement

XMLElement::XMLElement(const std::string& name) {
  if (name.size() > SIZE_MAX / 4) throw std::bad_alloc();
  text_ = static_cast<char*>(NodePool::Allocate(name.size()));
  if (!name.empty()) std::memcpy(text_, name.data(), name.size());
  textSize_ = nameSize_ = name.size();
  textCapacity_ = NodePool::RoundUp(name.size());
}

XMLElement::XMLElement(std::string_view name, std::size_t room) noexcept
    : text_(reinterpret_cast<char*>(this + 1)),
      textSize_(name.size()),
      textCapacity_(room),
      nameSize_(name.size()),
      flags_(1 | 2) {  // made by Create, its text behind it
  if (!name.empty()) std::memcpy(text_, name.data(), name.size());
}

XMLElement* XMLElement::Create(const std::string& name) {
  return XMLNodeAccess::CreateElement(name);
}

XMLElement::~XMLElement() { XMLNodeAccess::DeleteContents(*this); }

void* XMLElement::operator new(std::size_t size) {
  return NodePool::AllocateAligned16(size);
}

void XMLElement::operator delete(void* block) noexcept {
  NodePool::Free(block);
}

int XMLElement::ToString(std::string& out, ExportFormat& format) const {
  return WriteToString(out, [this, &format](OutputBuffer& buffer) {
    XMLNodeAccess::WriteElement(*this, format, buffer);
  });
}

int XMLElement::ToStream(std::ostream& os, ExportFormat& format,
                         bool utf8) const {
  return WriteToStream(os, utf8, [this, &format](OutputBuffer& buffer) {
    XMLNodeAccess::WriteElement(*this, format, buffer);
  });
}

int XMLElement::AddElement(XMLString* child) {
  return XMLNodeAccess::AppendChild(*this, child);
}

int XMLElement::AddElement(XMLElement* child) {
  return XMLNodeAccess::AppendChild(*this, child);
}

void XMLElement::AddAttribute(XMLAttribute* attribute) {
  std::unique_ptr<XMLAttribute> owned(attribute);
  XMLNodeAccess::AppendObjectRecord(*this, attribute);
  owned.release();
}

void XMLElement::AddAttribute(const std::string& name,
                              const std::string& value) {
  XMLNodeAccess::AddTextAttribute(*this, name, value);
}

void XMLElement::AddAttribute(const std::string& name, double value) {
  XMLNodeAccess::AddNumberAttribute(*this, name, value);
}

// Free functions

int Write(std::ostream& os, const std::string& text) {
  os.write(text.data(), static_cast<std::streamsize>(text.size()));
  return 0;
}

int WriteUTF(std::ostream& os, const std::string& text) {
  std::string converted;
  tsxml::NarrowToUtf8().Append(text.data(), text.size(), converted);
  return Write(os, converted);
}

int WriteTree(std::ostream& os, const XMLDocType* docType,
              const XMLElement* root, bool format) {
  return WriteDocument(os, docType, root, format, false);
}

int WriteTreeUTF8(std::ostream& os, const XMLDocType* docType,
                  const XMLElement* root, bool format) {
  return WriteDocument(os, docType, root, format, true);
}

}  // namespace OstraTimeXML
