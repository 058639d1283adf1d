// ToString, ToStream and the UTF-8 route against the step-by-step reference
// writer, over many generated trees.
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "xml/xml_node.h"
#include "xml_reference.h"

namespace OstraTimeXML {
namespace {

namespace ref = xml_reference;

// A host subclass that changes nothing; the writer must call its virtuals.
class HostElement : public XMLElement {
 public:
  static HostElement* Create(const std::string& name) {
    return new HostElement(name);
  }

 private:
  explicit HostElement(const std::string& name) : XMLElement(name) {}
};

class TreeGenerator {
 public:
  explicit TreeGenerator(unsigned seed) : rng_(seed) {}

  // Builds an element and its mirror.
  XMLElement* Element(ref::Node& mirror, int depth) {
    mirror.name = Name();
    std::unique_ptr<XMLElement> element(Chance(10)
                                            ? HostElement::Create(mirror.name)
                                            : XMLElement::Create(mirror.name));
    const int attributes = Below(4);
    for (int i = 0; i < attributes; ++i) {
      mirror.attributes.emplace_back(Name(), Value());
      element->AddAttribute(mirror.attributes.back().first,
                            mirror.attributes.back().second);
    }
    const int children = depth > 5 ? 0 : Below(5);
    for (int i = 0; i < children; ++i) {
      ref::Node child;
      if (Chance(3)) {
        child.is_text = true;
        child.name = Value();
        element->AddElement(XMLString::Create(child.name));
      } else {
        element->AddElement(Element(child, depth + 1));
      }
      mirror.children.push_back(std::move(child));
    }
    return element.release();
  }

  ref::Format RandomFormat() {
    ref::Format f;
    f.new_paragraph = Chance(2);
    f.indentation = Chance(2);
    f.format = !Chance(4);
    f.level = Below(6) - 2;
    return f;
  }

  std::string Prefix() { return Chance(2) ? "" : "<prefix>"; }

  // A tree, a start format, and the reference pieces with the end format.
  struct Case {
    ref::Node mirror;
    std::unique_ptr<XMLElement> tree;
    ref::Format start;
    ref::Format end;
    std::vector<std::string> pieces;
  };
  Case NextCase() {
    Case c;
    c.tree.reset(Element(c.mirror, 0));
    c.start = c.end = RandomFormat();
    ref::Write(c.mirror, c.end, c.pieces);
    return c;
  }

 private:
  int Below(int n) {
    return std::uniform_int_distribution<int>(0, n - 1)(rng_);
  }
  bool Chance(int one_in) { return Below(one_in) == 0; }

  std::string Name() {
    static const char* const kParts[] = {"a",  "b",        "x:y", "Model",
                                         "_1", "\xC3\xA9", "\xFF"};
    std::string name = kParts[Below(5)];
    const int more = Below(3);
    for (int i = 0; i < more; ++i) name += kParts[Below(7)];
    return name;
  }

  // Text full of bytes that need escaping or do not convert.
  std::string Value() {
    static const char* const kParts[] = {" ",
                                         " ",
                                         "  ",
                                         "&",
                                         "<",
                                         ">",
                                         "\"",
                                         "'",
                                         "\t",
                                         "\n",
                                         "\r",
                                         "a",
                                         "bc",
                                         "1.5",
                                         "\xC3\xA9",
                                         "\xE2\x82\xAC",
                                         "\xF0\x9F\x98\x80",
                                         "\x80",
                                         "\xFF",
                                         "\xC3"};
    constexpr int kCount = sizeof(kParts) / sizeof(kParts[0]);
    std::string value;
    if (Chance(40)) {  // longer than any buffer chunk
      value.assign(20000 + Below(5000), 'L');
      value[Below(20000)] = '&';
    }
    const int parts = Below(12);
    for (int i = 0; i < parts; ++i) {
      if (Chance(15)) {
        value += '\0';
      } else {
        value += kParts[Below(kCount)];
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
  for (unsigned char c : text) {
    if (c > 127) return false;
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
      const unsigned char c = static_cast<unsigned char>(text[i + k]);
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

// The pieces that convert, joined: what the UTF-8 route must write when
// every convertible piece is already in its target form.
std::string ConvertiblePieces(const std::vector<std::string>& pieces,
                              bool (*converts)(const std::string&)) {
  std::string text;
  for (const std::string& piece : pieces) {
    if (converts(piece)) text += piece;
  }
  return text;
}

constexpr int kTrees = 1500;

TEST(GeneratedTrees, ToStringAndToStreamMatchReference) {
  TreeGenerator generator(20240601);
  for (int n = 0; n < kTrees; ++n) {
    const TreeGenerator::Case c = generator.NextCase();
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
    ref::Format tree_format;
    tree_format.format = c.start.format;
    std::vector<std::string> tree_pieces;
    ref::Write(c.mirror, tree_format, tree_pieces);
    ASSERT_EQ(document.str(), "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n" +
                                  ref::Join(tree_pieces));
  }
}

// Each piece converts on its own: in the "C" locale a piece with a byte above
// 127 vanishes and the rest stays.
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
      const TreeGenerator::Case tc = generator.NextCase();
      ExportFormat format = ToExportFormat(tc.start);
      std::ostringstream os;
      ASSERT_EQ(tc.tree->ToStream(os, format, true), 0);
      ASSERT_EQ(os.str(), ConvertiblePieces(tc.pieces, c.converts))
          << c.locale << " tree " << n;
      ExpectSameState(format, tc.end);
    }
  }
}

TEST(GeneratedTrees, FormattedChainMatchesReference) {
  constexpr int kDepth = 3000;
  std::unique_ptr<XMLElement> root(XMLElement::Create("c"));
  ref::Node mirror;
  mirror.name = "c";
  XMLElement* leaf = root.get();
  ref::Node* leaf_mirror = &mirror;
  for (int i = 1; i < kDepth; ++i) {
    XMLElement* child = XMLElement::Create("c");
    child->AddAttribute("i", static_cast<double>(i));
    leaf->AddElement(child);
    leaf = child;
    leaf_mirror->children.emplace_back();
    leaf_mirror = &leaf_mirror->children.back();
    leaf_mirror->name = "c";
    leaf_mirror->attributes.emplace_back("i", std::to_string(i));
  }
  ref::Format f;
  std::vector<std::string> pieces;
  ref::Write(mirror, f, pieces);
  ExportFormat format;
  std::string text;
  root->ToString(text, format);
  EXPECT_EQ(text, ref::Join(pieces));
  EXPECT_EQ(format.GetLevel(), 0);
}

TEST(WriteUTF, CLocaleTakesAsciiOnly) {
  ref::ScopedCLocale locale(LC_CTYPE, "C");
  auto utf = [](const std::string& text) {
    std::ostringstream os;
    EXPECT_EQ(WriteUTF(os, text), 0);
    return os.str();
  };
  EXPECT_EQ(utf("plain <text>"), "plain <text>");
  EXPECT_EQ(utf(std::string("a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(utf(""), "");
  EXPECT_EQ(utf("caf\xC3\xA9"), "");
  EXPECT_EQ(utf("\x80"), "");
}

TEST(WriteUTF, Utf8LocaleKeepsWellFormedText) {
  ref::ScopedCLocale locale(LC_CTYPE, "C.UTF-8");
  ASSERT_TRUE(locale.ok());
  auto utf = [](const std::string& text) {
    std::ostringstream os;
    WriteUTF(os, text);
    return os.str();
  };
  const std::string mixed =
      std::string("a\0", 2) + "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
  EXPECT_EQ(utf(mixed), mixed);
  EXPECT_EQ(utf("ok\xFF"), "");
  EXPECT_EQ(utf("cut \xE2\x82"), "");
  EXPECT_EQ(utf("\xC0\xAF"), "");  // overlong
}

TEST(WriteUTF, TreePiecesInCLocale) {
  ref::ScopedCLocale locale(LC_CTYPE, "C");
  std::unique_ptr<XMLElement> r(XMLElement::Create("r"));
  r->AddAttribute("k", "caf\xC3\xA9");
  r->AddAttribute("n", "1");
  r->AddElement(XMLString::Create("ok"));
  std::unique_ptr<XMLElement> bad(XMLElement::Create("\xC3\xA9"));
  bad->AddElement(XMLString::Create("x"));
  r->AddElement(bad.release());

  std::ostringstream raw;
  WriteTree(raw, nullptr, r.get(), true);
  EXPECT_EQ(
      raw.str(),
      "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n\n<r\n\tk=\"caf\xC3\xA9\""
      "\n\tn=\"1\">ok<\xC3\xA9>x</\xC3\xA9>\n</r>");
  std::ostringstream converted;
  WriteTreeUTF8(converted, nullptr, r.get(), true);
  EXPECT_EQ(
      converted.str(),
      "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n\n<r\n\t\n\tn=\"1\">ok>x"
      "\n</r>");
}

}  // namespace
}  // namespace OstraTimeXML
