#include "tsxml/xml/internal/node_writer.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "tsxml/xml/internal/document_output.h"
#include "tsxml/xml/internal/node_pool.h"
#include "tsxml/xml/internal/number_format.h"

namespace tsxml {
namespace {

enum : unsigned char { kTextSpecial = 1, kAttributeSpecial = 2 };

constexpr std::array<unsigned char, 256> MakeEscapeTable() {
  std::array<unsigned char, 256> table{};
  table['&'] = kTextSpecial | kAttributeSpecial;
  table['<'] = kTextSpecial | kAttributeSpecial;
  table['>'] = kAttributeSpecial;
  table['"'] = kAttributeSpecial;
  table['\t'] = kAttributeSpecial;
  table['\n'] = kAttributeSpecial;
  table['\r'] = kAttributeSpecial;
  table[' '] = kAttributeSpecial;
  return table;
}
constexpr std::array<unsigned char, 256> kEscapeTable = MakeEscapeTable();

// The first byte at or after `p` whose table entry has `kind`, or `end`.
// Four bytes a round: most text is long runs of safe bytes.
const char* SkipSafe(const char* p, const char* end, unsigned char kind) {
  auto special = [kind](const char* at) {
    return (kEscapeTable[static_cast<unsigned char>(*at)] & kind) != 0;
  };
  while (end - p >= 4) {
    if (special(p)) return p;
    if (special(p + 1)) return p + 1;
    if (special(p + 2)) return p + 2;
    if (special(p + 3)) return p + 3;
    p += 4;
  }
  while (p != end && !special(p)) ++p;
  return p;
}

// Levels move in unsigned arithmetic so that no depth can overflow.
int Raised(int level) {
  return static_cast<int>(static_cast<unsigned>(level) + 1u);
}
int Lowered(int level) {
  return static_cast<int>(static_cast<unsigned>(level) - 1u);
}

// The line feed and indentation before an opening or closing tag.
void LineStart(const ExportFormat& format, int indent, OutputBuffer& out) {
  if (format.IsNewParagraph()) out.Put('\n');
  if (format.HasIndentation()) out.PutTabs(indent);
}

void RestoreLayout(ExportFormat& format) {
  format.SetIsNewParagraph(true);
  format.SetIndentation(true);
}

int ClampedSize(std::size_t size) {
  return size > static_cast<std::size_t>(INT_MAX) ? INT_MAX
                                                  : static_cast<int>(size);
}

// Element flags.
enum : std::uint32_t {
  kCreated = 1,           // made by Create: exactly an XMLElement
  kInlineText = 2,        // the text buffer is in the element's own block
  kAttributeObjects = 4,  // some record holds an XMLAttribute
  kEscapedValues = 8,     // some record's value needs escaping
};

constexpr std::uint32_t kObjectRecord = 0xFFFFFFFFu;
constexpr std::uint32_t kPlainValue = 0x80000000u;
constexpr std::size_t kRecordHeader = 8;
constexpr std::size_t kObjectRecordSize = kRecordHeader + sizeof(void*);
// Longer text than this is not asked of the pool.
constexpr std::size_t kMaxText = SIZE_MAX / 4;

std::uint32_t LoadU32(const char* at) {
  std::uint32_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

void StoreU32(char* at, std::uint32_t value) {
  std::memcpy(at, &value, sizeof value);
}

XMLAttribute* LoadObject(const char* at) {
  XMLAttribute* object;
  std::memcpy(&object, at + kRecordHeader, sizeof object);
  return object;
}

constexpr std::uintptr_t kTextTag = 1;

// Copies `size` bytes, sizeof(Word) to twice that many, as two words that
// may overlap.
template <typename Word>
inline char* CopyHeadAndTail(char* to, const char* from, std::size_t size) {
  Word head, tail;
  std::memcpy(&head, from, sizeof(Word));
  std::memcpy(&tail, from + size - sizeof(Word), sizeof(Word));
  std::memcpy(to, &head, sizeof(Word));
  std::memcpy(to + size - sizeof(Word), &tail, sizeof(Word));
  return to + size;
}

// Copies up to a few dozen bytes without a call.
inline char* CopyShort(char* to, const char* from, std::size_t size) {
  if (size > 16) {
    std::memcpy(to, from, size);
    return to + size;
  }
  if (size >= 8) return CopyHeadAndTail<std::uint64_t>(to, from, size);
  if (size >= 4) return CopyHeadAndTail<std::uint32_t>(to, from, size);
  for (std::size_t i = 0; i < size; ++i) to[i] = from[i];
  return to + size;
}

constexpr int kShortTabs = 16;
constexpr char kTabs[kShortTabs + 1] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";

// `count` tabs, 0 <= count <= kShortTabs, with room for kShortTabs.
inline char* PutShortTabs(char* to, int count) {
  std::memcpy(to, kTabs, kShortTabs);
  return to + count;
}

// Writes the start of an element whose attribute values all need no
// escaping, with the level below kShortTabs, into one claimed run of the
// buffer (raw output only: no pieces are marked). Leaves `format` as the
// general route does, but the level raised for the children when `open`.
bool StartPlain(const char* text, std::size_t nameSize, std::size_t textSize,
                ExportFormat& format, OutputBuffer& out, bool open) {
  const int indent = format.GetLevel();
  if (indent < 0 || indent >= kShortTabs) return false;
  // Line start and tabs, "<", the name and "/>"; each record's bytes less
  // its header, and a line start, a tab run, "=" and two quotes.
  const std::size_t attributes = textSize - nameSize;
  const std::size_t records = attributes / kRecordHeader;
  const std::size_t bound = 1 + kShortTabs + 1 + nameSize + 2 + attributes +
                            records * (kShortTabs + 4 - kRecordHeader);
  char* p = out.Claim(bound);
  if (format.IsNewParagraph()) *p++ = '\n';
  if (format.HasIndentation()) p = PutShortTabs(p, indent);
  *p++ = '<';
  p = CopyShort(p, text, nameSize);
  const char* record = text + nameSize;
  const char* const end = text + textSize;
  if (record != end) {
    const char separator = format.IsNewParagraph() ? '\n' : ' ';
    const int tabs = format.HasIndentation() ? indent + 1 : 0;
    do {
      const std::uint32_t nameBytes = LoadU32(record);
      const std::size_t valueBytes = LoadU32(record + 4) & ~kPlainValue;
      const char* name = record + kRecordHeader;
      *p++ = separator;
      p = PutShortTabs(p, tabs);
      p = CopyShort(p, name, nameBytes);
      *p++ = '=';
      *p++ = '"';
      p = CopyShort(p, name + nameBytes, valueBytes);
      *p++ = '"';
      record = name + nameBytes + valueBytes;
    } while (record != end);
  }
  if (open) {
    *p++ = '>';
    format.SetLevel(indent + 1);
  } else {
    *p++ = '/';
    *p++ = '>';
    RestoreLayout(format);
  }
  out.Commit(p);
  return true;
}

// A child of a type this file does not know writes itself.
void WriteForeign(const XMLInterface& node, ExportFormat& format,
                  OutputBuffer& out) {
  out.Flush();
  if (std::string* text = out.TargetString()) {
    node.ToString(*text, format);
  } else {
    node.ToStream(*out.TargetStream(), format, out.IsUtf8());
  }
  out.Resume();
}

}  // namespace

void WriteEscapedText(const char* text, std::size_t size, OutputBuffer& out) {
  const char* p = text;
  const char* const end = p + size;
  for (;;) {
    const char* run = p;
    p = SkipSafe(p, end, kTextSpecial);
    out.Write(run, static_cast<std::size_t>(p - run));
    if (p == end) return;
    if (*p == '&') {
      out.WriteLiteral("&amp;");
    } else {
      out.WriteLiteral("&lt;");
    }
    ++p;
  }
}

void WriteEscapedAttributeValue(const char* value, std::size_t size,
                                OutputBuffer& out) {
  const char* const begin = value;
  const char* const end = begin + size;
  const char* p = begin;
  for (;;) {
    const char* run = p;
    p = SkipSafe(p, end, kAttributeSpecial);
    out.Write(run, static_cast<std::size_t>(p - run));
    if (p == end) return;
    switch (*p) {
      case '&':
        out.WriteLiteral("&amp;");
        break;
      case '<':
        out.WriteLiteral("&lt;");
        break;
      case '>':
        out.WriteLiteral("&gt;");
        break;
      case '"':
        out.WriteLiteral("&quot;");
        break;
      case '\t':
        out.WriteLiteral("&#9;");
        break;
      case '\n':
        out.WriteLiteral("&#10;");
        break;
      case '\r':
        out.WriteLiteral("&#13;");
        break;
      default: {
        // A run of blanks: the second of each pair becomes "&#32;", and so
        // does a blank that begins or ends the whole value.
        const char* blank = p;
        while (p != end && *p == ' ') ++p;
        for (std::size_t i = 0; blank + i != p; ++i) {
          const char* at = blank + i;
          if (i % 2 == 1 || at == begin || at + 1 == end) {
            out.WriteLiteral("&#32;");
          } else {
            out.Put(' ');
          }
        }
        continue;
      }
    }
    ++p;
  }
}

// Building

XMLElement* XMLNodeAccess::CreateElement(std::string_view name,
                                         std::size_t attributeBytes) {
  if (name.size() > kMaxText || attributeBytes > kMaxText) {
    throw std::bad_alloc();
  }
  const std::size_t room = NodePool::RoundUp(name.size() + attributeBytes);
  void* block = NodePool::Allocate(sizeof(XMLElement) + room);
  return ::new (block) XMLElement(name, room);
}

XMLString* XMLNodeAccess::CreateText(std::string_view text) {
  if (text.size() > kMaxText) throw std::bad_alloc();
  const std::size_t room = NodePool::RoundUp(text.size());
  void* block = NodePool::Allocate(sizeof(XMLString) + room);
  char* inline_text = static_cast<char*>(block) + sizeof(XMLString);
  if (!text.empty()) std::memcpy(inline_text, text.data(), text.size());
  return ::new (block) XMLString(inline_text, text.size(), room);
}

void XMLNodeAccess::ReserveText(XMLElement& element, std::size_t extra) {
  if (extra > kMaxText - element.textSize_) throw std::bad_alloc();
  const std::size_t need = element.textSize_ + extra;
  if (need <= element.textCapacity_) return;
  const std::size_t grow = NodePool::RoundUp(need) - element.textCapacity_;
  if (NodePool::TryExtend(element.text_ + element.textCapacity_, grow)) {
    element.textCapacity_ += grow;
    return;
  }
  const std::size_t capacity = NodePool::RoundUp(
      std::max({need, element.textCapacity_ * 2, std::size_t{64}}));
  char* text = static_cast<char*>(NodePool::Allocate(capacity));
  std::memcpy(text, element.text_, element.textSize_);
  if ((element.flags_ & kInlineText) == 0) NodePool::Free(element.text_);
  element.flags_ &= ~std::uint32_t{kInlineText};
  element.text_ = text;
  element.textCapacity_ = capacity;
}

void XMLNodeAccess::AppendRecord(XMLElement& element, std::string_view name,
                                 std::string_view value, bool plainValue) {
  if (name.size() >= kObjectRecord || value.size() >= kPlainValue) {
    std::unique_ptr<XMLAttribute> object(
        XMLAttribute::Create(std::string(name.data(), name.size()),
                             std::string(value.data(), value.size())));
    AppendObjectRecord(element, object.get());
    object.release();
    return;
  }
  const std::size_t size = AttributeRecordSize(name.size(), value.size());
  ReserveText(element, size);
  char* at = element.text_ + element.textSize_;
  StoreU32(at, static_cast<std::uint32_t>(name.size()));
  StoreU32(at + 4, static_cast<std::uint32_t>(value.size()) |
                       (plainValue ? kPlainValue : 0));
  at += kRecordHeader;
  if (!name.empty()) std::memcpy(at, name.data(), name.size());
  if (!value.empty()) std::memcpy(at + name.size(), value.data(), value.size());
  element.textSize_ += size;
}

void XMLNodeAccess::AppendObjectRecord(XMLElement& element,
                                       XMLAttribute* attribute) {
  ReserveText(element, kObjectRecordSize);
  char* at = element.text_ + element.textSize_;
  StoreU32(at, kObjectRecord);
  StoreU32(at + 4, 0);
  std::memcpy(at + kRecordHeader, &attribute, sizeof attribute);
  element.textSize_ += kObjectRecordSize;
  element.flags_ |= kAttributeObjects;
}

void XMLNodeAccess::AddTextAttribute(XMLElement& element, std::string_view name,
                                     std::string_view value) {
  const char* end = value.data() + value.size();
  const bool plain = SkipSafe(value.data(), end, kAttributeSpecial) == end;
  AppendRecord(element, name, value, plain);
  if (!plain) element.flags_ |= kEscapedValues;
}

void XMLNodeAccess::AddNumberAttribute(XMLElement& element,
                                       std::string_view name, double value) {
  char text[kGeneral15Capacity];
  const char* end = WriteGeneral15(value, text);
  AppendRecord(element, name,
               std::string_view(text, static_cast<std::size_t>(end - text)),
               true);
}

void XMLNodeAccess::AppendTagged(XMLElement& element, std::uintptr_t child) {
  std::uintptr_t* children = element.children_;
  const std::size_t capacity = children != nullptr ? children[-1] : 0;
  if (element.childCount_ == capacity) {
    ReserveChildren(element, capacity < 4 ? 4 - capacity : capacity);
    children = element.children_;
  }
  children[element.childCount_++] = child;
}

int XMLNodeAccess::AppendChild(XMLElement& element, XMLElement* child) {
  std::unique_ptr<XMLElement> owned(child);
  AppendTagged(element, reinterpret_cast<std::uintptr_t>(child));
  owned.release();
  return ClampedSize(element.childCount_);
}

int XMLNodeAccess::AppendChild(XMLElement& element, XMLString* child) {
  std::unique_ptr<XMLString> owned(child);
  AppendTagged(element, reinterpret_cast<std::uintptr_t>(child) | kTextTag);
  owned.release();
  return ClampedSize(element.childCount_);
}

int XMLNodeAccess::AddChild(XMLElement& element, XMLElement* child) {
  return (element.flags_ & kCreated) != 0 ? AppendChild(element, child)
                                          : element.AddElement(child);
}

int XMLNodeAccess::AddChild(XMLElement& element, XMLString* child) {
  return (element.flags_ & kCreated) != 0 ? AppendChild(element, child)
                                          : element.AddElement(child);
}

// Writing

void XMLNodeAccess::WriteAttribute(const XMLAttribute& attribute,
                                   OutputBuffer& out) {
  out.Write(attribute.name_);
  out.WriteLiteral("=\"");
  WriteEscapedAttributeValue(attribute.value_.data(), attribute.value_.size(),
                             out);
  out.Put('"');
  out.EndPiece();
}

void XMLNodeAccess::WriteText(const XMLString& text, ExportFormat& format,
                              OutputBuffer& out) {
  WriteEscapedText(text.text_, text.size_, out);
  out.EndPiece();
  format.SetIsNewParagraph(false);
  format.SetIndentation(false);
}

void XMLNodeAccess::WriteDocType(const XMLDocType& docType, OutputBuffer& out) {
  out.Write(kXMLDeclaration, kXMLDeclarationLength);
  out.WriteLiteral("\n<!DOCTYPE ");
  out.Write(docType.name_);
  out.WriteLiteral(" SYSTEM \"");
  out.Write(docType.systemId_);
  out.Put('"');
  if (!docType.extensions_.empty()) {
    out.WriteLiteral("\n[");
    out.Write(docType.extensions_);
    out.WriteLiteral("\n]");
  }
  out.WriteLiteral(">\n");
  out.EndPiece();
}

void XMLNodeAccess::WriteElement(const XMLElement& root, ExportFormat& format,
                                 OutputBuffer& out) {
  // An element whose children are being written, and the level at its start.
  struct Open {
    const XMLElement* element;
    std::size_t next;
    int indent;
  };
  std::vector<Open> open;
  const bool raw = !out.IsUtf8();

  // Writes the start of `element` and its attributes. An element with
  // children goes on the stack; one without is closed at once.
  auto start = [&format, &out, &open, raw](const XMLElement& element) {
    const int indent = format.GetLevel();
    if (raw && (element.flags_ & (kAttributeObjects | kEscapedValues)) == 0 &&
        StartPlain(element.text_, element.nameSize_, element.textSize_, format,
                   out, element.childCount_ != 0)) {
      if (element.childCount_ != 0) open.push_back(Open{&element, 0, indent});
      return;
    }
    LineStart(format, indent, out);
    out.Put('<');
    out.Write(element.text_, element.nameSize_);
    out.EndPiece();
    const char* record = element.text_ + element.nameSize_;
    const char* const end = element.text_ + element.textSize_;
    if (record != end) {
      format.SetLevel(Raised(format.GetLevel()));
      for (; record != end;) {
        const std::uint32_t nameSize = LoadU32(record);
        if (nameSize == kObjectRecord) {
          const XMLAttribute* attribute = LoadObject(record);
          record += kObjectRecordSize;
          if (attribute == nullptr) continue;
          out.Put(format.IsNewParagraph() ? '\n' : ' ');
          if (format.HasIndentation()) out.PutTabs(format.GetLevel());
          out.EndPiece();
          WriteAttribute(*attribute, out);
          continue;
        }
        const std::uint32_t valueWord = LoadU32(record + 4);
        const std::size_t valueSize = valueWord & ~kPlainValue;
        const char* name = record + kRecordHeader;
        const char* value = name + nameSize;
        record = value + valueSize;
        out.Put(format.IsNewParagraph() ? '\n' : ' ');
        if (format.HasIndentation()) out.PutTabs(format.GetLevel());
        out.EndPiece();
        out.Write(name, nameSize);
        out.WriteLiteral("=\"");
        if ((valueWord & kPlainValue) != 0) {
          out.Write(value, valueSize);
        } else {
          WriteEscapedAttributeValue(value, valueSize, out);
        }
        out.Put('"');
        out.EndPiece();
      }
      format.SetLevel(Lowered(format.GetLevel()));
    }
    if (element.childCount_ == 0) {
      out.WriteLiteral("/>");
      out.EndPiece();
      RestoreLayout(format);
      return;
    }
    out.Put('>');
    out.EndPiece();
    format.SetLevel(Raised(format.GetLevel()));
    open.push_back(Open{&element, 0, indent});
  };

  start(root);
  while (!open.empty()) {
    Open& top = open.back();
    const XMLElement& parent = *top.element;
    if (top.next < parent.childCount_) {
      const std::uintptr_t tagged = parent.children_[top.next++];
      const std::uintptr_t address = tagged & ~kTextTag;
      if (address == 0) continue;
      if ((tagged & kTextTag) != 0) {
        WriteText(*reinterpret_cast<const XMLString*>(address), format, out);
        continue;
      }
      const auto* child = reinterpret_cast<const XMLElement*>(address);
      if ((child->flags_ & kCreated) != 0) {
        start(*child);
      } else {
        WriteForeign(*child, format, out);
      }
      continue;
    }
    const int indent = top.indent;
    open.pop_back();
    format.SetLevel(Lowered(format.GetLevel()));
    LineStart(format, indent, out);
    out.WriteLiteral("</");
    out.Write(parent.text_, parent.nameSize_);
    out.Put('>');
    out.EndPiece();
    RestoreLayout(format);
  }
}

// Deleting

void XMLNodeAccess::DeleteAttributes(XMLElement& element) noexcept {
  if ((element.flags_ & kAttributeObjects) != 0) {
    const char* record = element.text_ + element.nameSize_;
    const char* const end = element.text_ + element.textSize_;
    while (record != end) {
      const std::uint32_t nameSize = LoadU32(record);
      if (nameSize == kObjectRecord) {
        delete LoadObject(record);
        record += kObjectRecordSize;
      } else {
        record +=
            kRecordHeader + nameSize + (LoadU32(record + 4) & ~kPlainValue);
      }
    }
  }
  if ((element.flags_ & kInlineText) == 0) NodePool::Free(element.text_);
  element.text_ = nullptr;
  element.textSize_ = element.textCapacity_ = element.nameSize_ = 0;
  element.flags_ &= ~std::uint32_t{kAttributeObjects | kInlineText};
}

// An element made by Create whose children are gone: its destructor would
// do nothing more than this, so the storage is released without it.
void XMLNodeAccess::DestroyCreated(XMLElement* element) noexcept {
  if ((element->flags_ & (kAttributeObjects | kInlineText)) != kInlineText) {
    DeleteAttributes(*element);
  }
  if (element->children_ != nullptr) NodePool::Free(element->children_ - 1);
  NodePool::Free(element);
}

// Likewise for a text node, which only Create makes.
void XMLNodeAccess::DestroyText(XMLString* text) noexcept {
  if (text->text_ != reinterpret_cast<char*>(text + 1)) {
    NodePool::Free(text->text_);
  }
  NodePool::Free(text);
}

void XMLNodeAccess::DeleteContents(XMLElement& element) noexcept {
  DeleteAttributes(element);

  // Elements made by Create that have children are emptied here, deepest
  // first, before they are released, so that nothing recurses; the first
  // levels of the way down are kept on the stack.
  struct Parent {
    XMLElement* element;
    std::size_t next;
  };
  Parent near[32];
  std::size_t depth = 0;
  std::vector<Parent> far;
  XMLElement* current = &element;
  std::size_t next = 0;
  for (;;) {
    if (next < current->childCount_) {
      const std::uintptr_t tagged = current->children_[next++];
      const std::uintptr_t address = tagged & ~kTextTag;
      if (address == 0) continue;
      if ((tagged & kTextTag) != 0) {
        DestroyText(reinterpret_cast<XMLString*>(address));
        continue;
      }
      auto* child = reinterpret_cast<XMLElement*>(address);
      if ((child->flags_ & kCreated) == 0) {
        delete child;  // a subclass: its own destructor first
        continue;
      }
      if (child->childCount_ == 0) {
        DestroyCreated(child);
        continue;
      }
      if (depth < sizeof near / sizeof near[0]) {
        near[depth] = Parent{current, next};
      } else {
        try {
          far.push_back(Parent{current, next});
        } catch (...) {
          delete child;  // out of memory: let its own destructor recurse
          continue;
        }
      }
      ++depth;
      current = child;
      next = 0;
      continue;
    }
    if (depth == 0) break;
    XMLElement* emptied = current;
    --depth;
    const Parent parent =
        depth < sizeof near / sizeof near[0] ? near[depth] : far.back();
    if (depth >= sizeof near / sizeof near[0]) far.pop_back();
    current = parent.element;
    next = parent.next;
    DestroyCreated(emptied);
  }
  if (element.children_ != nullptr) NodePool::Free(element.children_ - 1);
  element.children_ = nullptr;
  element.childCount_ = 0;
}

void XMLNodeAccess::ReserveChildren(XMLElement& element, size_t extra) {
  std::uintptr_t* children = element.children_;
  const std::size_t capacity = children != nullptr ? children[-1] : 0;
  if (extra <= capacity - element.childCount_) return;
  constexpr std::size_t kMaxChildren = kMaxText / sizeof(std::uintptr_t);
  if (extra > kMaxChildren - element.childCount_) throw std::bad_alloc();
  const std::size_t wanted = element.childCount_ + extra;
  const std::size_t bytes = (wanted + 1) * sizeof(std::uintptr_t);
  if (children != nullptr &&
      NodePool::TryExtend(reinterpret_cast<char*>(children + capacity),
                          (wanted - capacity) * sizeof(std::uintptr_t))) {
    children[-1] = wanted;
    return;
  }
  auto* block = static_cast<std::uintptr_t*>(NodePool::Allocate(bytes));
  block[0] = wanted;
  if (element.childCount_ != 0) {
    std::memcpy(block + 1, children,
                element.childCount_ * sizeof(std::uintptr_t));
  }
  if (children != nullptr) NodePool::Free(children - 1);
  element.children_ = block + 1;
}

size_t XMLNodeAccess::ChildCount(const XMLElement& element) {
  return element.childCount_;
}

void XMLNodeAccess::ReleaseChildrenFrom(XMLElement& element,
                                        size_t first) noexcept {
  if (first < element.childCount_) element.childCount_ = first;
}

}  // namespace tsxml
