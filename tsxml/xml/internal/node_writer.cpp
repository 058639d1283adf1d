#include "tsxml/xml/internal/node_writer.h"

#include <array>
#include <cstddef>
#include <typeinfo>
#include <utility>
#include <vector>

#include "tsxml/xml/internal/document_output.h"

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

void WriteEscapedText(const std::string& text, OutputBuffer& out) {
  const char* p = text.data();
  const char* const end = p + text.size();
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

void WriteEscapedAttributeValue(const std::string& value, OutputBuffer& out) {
  const char* const begin = value.data();
  const char* const end = begin + value.size();
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

void XMLNodeAccess::WriteAttribute(const XMLAttribute& attribute,
                                   OutputBuffer& out) {
  out.Write(attribute.name_);
  out.WriteLiteral("=\"");
  WriteEscapedAttributeValue(attribute.value_, out);
  out.Put('"');
  out.EndPiece();
}

void XMLNodeAccess::WriteText(const XMLString& text, ExportFormat& format,
                              OutputBuffer& out) {
  WriteEscapedText(text.text_, out);
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

  // Writes the start of `element` and its attributes. An element with
  // children goes on the stack; one without is closed at once.
  auto start = [&format, &out, &open](const XMLElement& element) {
    const int indent = format.GetLevel();
    LineStart(format, indent, out);
    out.Put('<');
    out.Write(element.name_);
    out.EndPiece();
    if (!element.attributes_.empty()) {
      format.SetLevel(Raised(format.GetLevel()));
      for (const XMLAttribute* attribute : element.attributes_) {
        if (attribute == nullptr) continue;
        out.Put(format.IsNewParagraph() ? '\n' : ' ');
        if (format.HasIndentation()) out.PutTabs(format.GetLevel());
        out.EndPiece();
        WriteAttribute(*attribute, out);
      }
      format.SetLevel(Lowered(format.GetLevel()));
    }
    if (element.children_.empty()) {
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
    const std::vector<XMLInterface*>& children = top.element->children_;
    if (top.next < children.size()) {
      const XMLInterface* child = children[top.next++];
      if (child == nullptr) continue;
      const std::type_info& type = typeid(*child);
      if (type == typeid(XMLElement)) {
        start(static_cast<const XMLElement&>(*child));
      } else if (type == typeid(XMLString)) {
        WriteText(static_cast<const XMLString&>(*child), format, out);
      } else {
        WriteForeign(*child, format, out);
      }
      continue;
    }
    const XMLElement& element = *top.element;
    const int indent = top.indent;
    open.pop_back();
    format.SetLevel(Lowered(format.GetLevel()));
    LineStart(format, indent, out);
    out.WriteLiteral("</");
    out.Write(element.name_);
    out.Put('>');
    out.EndPiece();
    RestoreLayout(format);
  }
}

void XMLNodeAccess::DeleteContents(XMLElement& element) noexcept {
  auto deleteAttributes = [](XMLElement& owner) {
    for (XMLAttribute* attribute : owner.attributes_) delete attribute;
    owner.attributes_.clear();
  };
  deleteAttributes(element);

  // Plain elements with children are emptied here, deepest first, before
  // they are deleted, so their destructors do not recurse.
  std::vector<std::pair<XMLElement*, std::size_t>> parents;
  XMLElement* current = &element;
  std::size_t next = 0;
  for (;;) {
    std::vector<XMLInterface*>& children = current->children_;
    if (next < children.size()) {
      XMLInterface* child = children[next++];
      if (child == nullptr) continue;
      auto* plain = typeid(*child) == typeid(XMLElement)
                        ? static_cast<XMLElement*>(child)
                        : nullptr;
      if (plain != nullptr && !plain->children_.empty()) {
        try {
          parents.emplace_back(current, next);
        } catch (...) {
          delete child;  // out of memory: let its own destructor recurse
          continue;
        }
        deleteAttributes(*plain);
        current = plain;
        next = 0;
        continue;
      }
      delete child;
      continue;
    }
    children.clear();
    if (parents.empty()) return;
    XMLElement* emptied = current;
    current = parents.back().first;
    next = parents.back().second;
    parents.pop_back();
    delete emptied;
  }
}

void XMLNodeAccess::ReserveChildren(XMLElement& element, size_t extra) {
  element.children_.reserve(element.children_.size() + extra);
}

size_t XMLNodeAccess::ChildCount(const XMLElement& element) {
  return element.children_.size();
}

void XMLNodeAccess::ReleaseChildrenFrom(XMLElement& element,
                                        size_t first) noexcept {
  if (first < element.children_.size()) {
    element.children_.resize(first);
  }
}

}  // namespace tsxml
