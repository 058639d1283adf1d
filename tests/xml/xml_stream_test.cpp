// ToString, ToStream, WriteTree and the UTF-8 route against the step-by-step
// reference writer, over many generated trees.
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tsxml/xml/xml_node.h"
#include "xml_reference.h"

namespace OstraTimeXML {
namespace {

namespace ref = xml_reference;

// A host subclass that changes nothing; the writer must call its virtuals.
class HostElement : public XMLElement {
 public:
  explicit HostElement(const std::string& name) : XMLElement(name) {}
};

class TreeGenerator {
 public:
  explicit TreeGenerator(unsigned seed) : rng_(seed) {}

  // A tree, a start format, the reference pieces with the end format, and
  // the pieces of the tree as WriteTree lays it out.
  struct Case {
    ref::Node mirror;
    std::unique_ptr<XMLElement> tree;
    ref::Format start, end, document;
    std::vector<std::string> pieces, document_pieces;
  };
  Case Next() {
    Case c;
    c.tree.reset(Element(c.mirror, 0));
    c.start.new_paragraph = Chance(2);
    c.start.indentation = Chance(2);
    c.start.format = !Chance(4);
    c.start.level = Below(6) - 2;
    c.end = c.start;
    ref::Write(c.mirror, c.end, c.pieces);
    c.document.format = c.start.format;
    ref::Write(c.mirror, c.document, c.document_pieces);
    return c;
  }

  std::string Prefix() { return Chance(2) ? "" : "<prefix>"; }

 private:
  int Below(int n) {
    return std::uniform_int_distribution<int>(0, n - 1)(rng_);
  }
  bool Chance(int one_in) { return Below(one_in) == 0; }

  // Builds an element and its mirror.
  XMLElement* Element(ref::Node& mirror, int depth) {
    mirror.name = Name();
    std::unique_ptr<XMLElement> element(Chance(10)
                                            ? new HostElement(mirror.name)
                                            : XMLElement::Create(mirror.name));
    for (int i = Below(4); i > 0; --i) {
      mirror.attributes.emplace_back(Name(), Value());
      element->AddAttribute(mirror.attributes.back().first,
                            mirror.attributes.back().second);
    }
    for (int i = depth > 5 ? 0 : Below(5); i > 0; --i) {
      ref::Node child;
      child.is_text = Chance(3);
      if (child.is_text) {
        child.name = Value();
        element->AddElement(XMLString::Create(child.name));
      } else {
        element->AddElement(Element(child, depth + 1));
      }
      mirror.children.push_back(std::move(child));
    }
    return element.release();
  }

  std::string Name() {
    static const char* const kParts[] = {"a",  "b",        "x:y", "Model",
                                         "_1", "\xC3\xA9", "\xFF"};
    std::string name = kParts[Below(5)];
    for (int i = Below(3); i > 0; --i) name += kParts[Below(7)];
    return name;
  }

  // Text full of bytes that need escaping or may not convert: well-formed
  // sequences, and stray, cut, overlong and surrogate ones.
  std::string Value() {
    static const char kAscii[] = " &<>\"'\t\n\rab1.";
    static const char* const kBytes[] = {
        "\xC3\xA9", "\xDF\xBF", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\x80",
        "\xFF",     "\xC3",     "\xC0\xAF",     "\xED\xA0\x80"};
    std::string value;
    if (Chance(40)) {  // longer than any buffer chunk
      value.assign(static_cast<size_t>(20000 + Below(5000)), 'L');
      value[static_cast<size_t>(Below(20000))] = '&';
    }
    for (int i = Below(12); i > 0; --i) {
      const int kind = Below(16);
      if (kind == 0) {
        value += '\0';
      } else if (kind < 4) {
        value += kind == 1 ? "  " : kBytes[Below(9)];
      } else {
        value += kAscii[Below(sizeof(kAscii) - 1)];
      }
    }
    return value;
  }

  std::mt19937 rng_;
};

ExportFormat ToExportFormat(const ref::Format& f) {
  ExportFormat format;
  format.SetIsNewParagraph(f.new_paragraph);
  format.SetIndentation(f.indentation);
  format.SetFormat(f.format);
  format.SetLevel(f.level);
  return format;
}

void ExpectSameState(const ExportFormat& format, const ref::Format& f) {
  EXPECT_EQ(format.IsNewParagraph(), f.format && f.new_paragraph);
  EXPECT_EQ(format.HasIndentation(), f.format && f.indentation);
  EXPECT_EQ(format.GetFormat(), f.format);
  EXPECT_EQ(format.GetLevel(), f.level);
}

bool IsAscii(const std::string& text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) > 127) return false;
  }
  return true;
}

// Well-formed UTF-8: no stray or overlong sequences, no surrogates, at most
// U+10FFFF.
bool IsUtf8(const std::string& text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const unsigned char lead = static_cast<unsigned char>(text[i]);
    const int extra = lead < 0x80                   ? 0
                      : lead >= 0xC2 && lead < 0xE0 ? 1
                      : lead >= 0xE0 && lead < 0xF0 ? 2
                      : lead >= 0xF0 && lead < 0xF5 ? 3
                                                    : -1;
    if (extra < 0 || text.size() - i <= static_cast<std::size_t>(extra)) {
      return false;
    }
    unsigned cp = extra == 0 ? lead : lead & (0x3F >> extra);
    for (int k = 1; k <= extra; ++k) {
      const unsigned char c =
          static_cast<unsigned char>(text[i + static_cast<size_t>(k)]);
      if ((c & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (c & 0x3F);
    }
    if ((extra == 2 && (cp < 0x800 || (cp >= 0xD800 && cp < 0xE000))) ||
        (extra == 3 && (cp < 0x10000 || cp > 0x10FFFF))) {
      return false;
    }
    i += static_cast<std::size_t>(extra) + 1;
  }
  return true;
}

constexpr int kTrees = 1500;

TEST(GeneratedTrees, ToStringAndToStreamMatchReference) {
  TreeGenerator generator(20240601);
  for (int n = 0; n < kTrees; ++n) {
    const TreeGenerator::Case c = generator.Next();
    const std::string expected = ref::Join(c.pieces);

    ExportFormat format = ToExportFormat(c.start);
    const std::string prefix = generator.Prefix();
    std::string text = prefix;
    ASSERT_EQ(c.tree->ToString(text, format), 0);
    ASSERT_EQ(text, prefix + expected) << "tree " << n;
    ExpectSameState(format, c.end);

    format = ToExportFormat(c.start);
    std::ostringstream os;
    os << prefix;
    ASSERT_EQ(c.tree->ToStream(os, format, false), 0);
    ASSERT_EQ(os.str(), prefix + expected) << "tree " << n;
    ExpectSameState(format, c.end);

    std::ostringstream document;
    WriteTree(document, nullptr, c.tree.get(), c.start.format);
    ASSERT_EQ(document.str(),
              ref::Declaration() + ref::Join(c.document_pieces));
  }
}

// Each piece converts on its own: a piece that does not convert in the
// locale vanishes and the rest stays.
TEST(GeneratedTrees, Utf8RouteConvertsPieceByPiece) {
  struct Case {
    const char* locale;
    bool (*converts)(const std::string&);
  };
  for (const Case& c : {Case{"C", IsAscii}, Case{"C.UTF-8", IsUtf8}}) {
    ref::ScopedCLocale locale(LC_CTYPE, c.locale);
    if (!locale.ok()) {
      ADD_FAILURE() << "no locale " << c.locale;
      continue;
    }
    TreeGenerator generator(77);
    for (int n = 0; n < kTrees; ++n) {
      const TreeGenerator::Case tc = generator.Next();
      ExportFormat format = ToExportFormat(tc.start);
      std::ostringstream os;
      ASSERT_EQ(tc.tree->ToStream(os, format, true), 0);
      ASSERT_EQ(os.str(), ref::Join(tc.pieces, c.converts))
          << c.locale << " tree " << n;
      ExpectSameState(format, tc.end);

      std::ostringstream document;
      WriteTreeUTF8(document, nullptr, tc.tree.get(), tc.start.format);
      ASSERT_EQ(document.str(),
                ref::Declaration() + ref::Join(tc.document_pieces, c.converts));
    }
  }
}

}  // namespace
}  // namespace OstraTimeXML
