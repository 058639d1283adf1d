// The XML node model: a worked document by every route, a deep chain, and
// many generated trees, host subclasses among them, against the plain
// reference writer of reference_writer.h, told each step while the tree is
// built.
#include "tsxml/xml/xml_node.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/test_data.h"
#include "xml/reference_writer.h"

namespace OstraTimeXML {
namespace {

using reference_writer::Layout;
using reference_writer::PieceWriter;
using testing_support::ReadTestData;

const char kDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";

// The text of `node` by ToString for `route` 0, else by ToStream, as UTF-8
// for `route` 2.
std::string Out(const XMLInterface& node, ExportFormat& format, int route) {
  std::string text;
  std::ostringstream os;
  EXPECT_EQ(route == 0 ? node.ToString(text, format)
                       : node.ToStream(os, format, route == 2),
            0);
  return route == 0 ? text : os.str();
}

// One document with every kind of node and attribute, null entries among
// them, text before an element, and a document type with two extensions:
// formatted, flat, by string and by stream, raw and as UTF-8.
TEST(Document, EveryNodeKindFormattedAndFlat) {
  std::unique_ptr<XMLElement> root(XMLElement::Create("model"));
  root->AddAttribute("name", " a   b    c ");
  root->AddAttribute(XMLAttribute::Create("w", 0.25));
  root->AddAttribute(static_cast<XMLAttribute*>(nullptr));
  root->AddAttribute("n", 3.0);
  EXPECT_EQ(root->AddElement(XMLString::Create("x<y&z>")), 1);
  EXPECT_EQ(root->AddElement(XMLElement::Create("empty")), 2);
  EXPECT_EQ(root->AddElement(static_cast<XMLElement*>(nullptr)), 3);
  XMLElement* e = XMLElement::Create("e");
  e->AddAttribute("k", "v");
  EXPECT_EQ(root->AddElement(e), 4);
  XMLElement* p = XMLElement::Create("p");
  p->AddElement(XMLString::Create("text"));
  p->AddElement(XMLElement::Create("q"));
  EXPECT_EQ(root->AddElement(p), 5);
  EXPECT_EQ(root->AddElement(static_cast<XMLString*>(nullptr)), 6);

  std::unique_ptr<XMLDocType> doc(XMLDocType::Create("model", "model.dtd", 7));
  EXPECT_EQ(doc->AddExtension("E"), 2);
  EXPECT_EQ(doc->AddExtension("<!ENTITY a \"&\">"), 18);
  // Assignment copies everything that is written; the user value is not.
  std::unique_ptr<XMLDocType> copy(XMLDocType::Create("x", "y", -5));
  *copy = *doc;

  const std::string formatted = ReadTestData("xml/document.xml");
  for (const bool utf8 : {false, true}) {
    for (const bool format : {true, false}) {
      std::ostringstream os;
      EXPECT_EQ((utf8 ? WriteTreeUTF8 : WriteTree)(
                    os, utf8 ? copy.get() : doc.get(), root.get(), format),
                0);
      EXPECT_EQ(os.str(),
                format ? formatted : ReadTestData("xml/document_flat.xml"));
    }
  }
  ExportFormat format;
  EXPECT_EQ(Out(*copy, format, 0) + Out(*root, format, 0), formatted);
  EXPECT_EQ(Out(*doc, format, 1) + Out(*root, format, 2), formatted);
  EXPECT_EQ(format.GetLevel(), 0);
  // A text node on its own, as an element writes it: escaped, and the
  // layout flags cleared.
  std::unique_ptr<XMLString> text(XMLString::Create("a<b&c>d"));
  EXPECT_EQ(Out(*text, format, 0) + Out(*text, format, 2),
            "a&lt;b&amp;c>da&lt;b&amp;c>d");
  EXPECT_FALSE(format.IsNewParagraph() || format.HasIndentation());
  std::ostringstream prolog_only;
  WriteTree(prolog_only, nullptr, nullptr, true);
  EXPECT_EQ(prolog_only.str(), kDeclaration);
  const std::string bytes("a\0\xFF\n", 4);
  std::ostringstream raw;
  EXPECT_EQ(Write(raw, bytes), 0);
  EXPECT_EQ(raw.str(), bytes);
}

// A host element that logs its deletion and writes a marker of its own
// before its usual text.
class HostElement : public XMLElement {
 public:
  HostElement(const std::string& name, std::vector<std::string>* log)
      : XMLElement(name), name_(name), log_(log) {}
  ~HostElement() override { log_->push_back(name_); }
  int ToString(std::string& out, ExportFormat& format) const override {
    out += "[mark]";
    return XMLElement::ToString(out, format);
  }
  int ToStream(std::ostream& os, ExportFormat& format,
               bool utf8) const override {
    os << "[mark]";
    return XMLElement::ToStream(os, format, utf8);
  }

 private:
  std::string name_;
  std::vector<std::string>* log_;
};

// A chain of 100,000 elements, the innermost holding "&", is written and
// deleted without recursion.
TEST(DeepTree, LongChain) {
  constexpr int kDepth = 100000;
  std::unique_ptr<XMLElement> root(XMLElement::Create("e"));
  XMLElement* leaf = root.get();
  for (int i = 1; i < kDepth; ++i) {
    XMLElement* child = XMLElement::Create("e");
    leaf->AddElement(child);
    leaf = child;
  }
  leaf->AddElement(XMLString::Create("&"));
  std::string expected;
  for (int i = 0; i < kDepth; ++i) expected += "<e>";
  expected += "&amp;";
  for (int i = 0; i < kDepth; ++i) expected += "</e>";
  ExportFormat format;
  format.SetFormat(false);
  format.SetLevel(3);
  for (int route = 0; route < 3; ++route) {
    EXPECT_EQ(Out(*root, format, route), expected);
    EXPECT_EQ(format.GetLevel(), 3);
  }
}

class TreeGenerator {
 public:
  explicit TreeGenerator(unsigned seed) : rng_(seed) {}

  int Below(int n) {
    return std::uniform_int_distribution<int>(0, n - 1)(rng_);
  }
  bool Chance(int one_in) { return Below(one_in) == 0; }

  // The host elements made, and those deleted, in order.
  std::vector<std::string> created, deleted;

  // Builds an element and tells `reference` what it adds.
  XMLElement* Element(PieceWriter& reference, int depth) {
    const std::string name = Name();
    const bool host = Chance(10);
    std::unique_ptr<XMLElement> element(host ? new HostElement(name, &deleted)
                                             : XMLElement::Create(name));
    if (host) {
      created.push_back(name);
      reference.Raw("[mark]");
    }
    reference.Open(name);
    for (int i = Below(4); i > 0; --i) {
      const std::string key = Name(), value = Value();
      element->AddAttribute(key, value);
      reference.Attribute(key, value);
    }
    const int children = depth > 5 ? 0 : Below(5);
    reference.EndStart(children > 0);
    for (int i = 0; i < children; ++i) {
      if (!Chance(3)) {
        element->AddElement(Element(reference, depth + 1));
        continue;
      }
      const std::string text = Value();
      element->AddElement(XMLString::Create(text));
      reference.Text(text);
    }
    if (children > 0) reference.Close(name);
    return element.release();
  }

 private:
  std::string Name() {
    static const char* const kParts[] = {"a",  "b",        "x:y", "Model",
                                         "_1", "\xC3\xA9", "\xFF"};
    std::string name = kParts[Below(5)];
    for (int i = Below(3); i > 0; --i) name += kParts[Below(7)];
    return name;
  }

  // Bytes that need escaping, UTF-8 sequences and, last, four that are not
  // UTF-8 wherever they stand: a byte never used, an overlong form, a
  // surrogate, a sequence cut short. Now and then longer than a buffer chunk.
  std::string Value() {
    static const char kAscii[] = " &<>\"'\t\n\rab1.";
    static const char* const kBytes[] = {
        "\xC3\xA9", "\xDF\xBF", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
        "\xFF",     "\xC0\xAF", "\xED\xA0\x80", "\xE3\x81"};
    std::string value;
    if (Chance(40)) {
      value.assign(static_cast<size_t>(20000 + Below(5000)), 'L');
      value[static_cast<size_t>(Below(20000))] = '&';
    }
    for (int i = Below(12); i > 0; --i) {
      const int kind = Below(16);
      value += kind == 0   ? std::string(1, '\0')
               : kind == 1 ? std::string("  ")
               : kind < 4  ? std::string(kBytes[Below(8)])
                           : std::string(1, kAscii[Below(13)]);
    }
    return value;
  }

  std::mt19937 rng_;
};

// From random start layouts: ToString (appending to what the string holds),
// ToStream raw and as UTF-8, WriteTree and WriteTreeUTF8. As UTF-8 each piece
// converts on its own: one that does not convert in the locale vanishes.
TEST(GeneratedTrees, EveryRouteMatchesTheRules) {
  using Keep = bool (*)(const std::string&);
  const Keep any = [](const std::string&) { return true; };
  const Keep ascii = [](const std::string& text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return (c & 0x80) != 0; });
  };
  const Keep utf8 = [](const std::string& text) {
    return text.find_first_of("\xFF\xC0\xED\xE3") == std::string::npos;
  };
  struct Locale {
    const char* name;
    Keep converts;
    unsigned seed;
  };
  for (const Locale& locale :
       {Locale{"C", ascii, 20240601}, Locale{"C.UTF-8", utf8, 77}}) {
    const std::string old_locale = std::setlocale(LC_CTYPE, nullptr);
    ASSERT_NE(std::setlocale(LC_CTYPE, locale.name), nullptr) << locale.name;
    TreeGenerator generator(locale.seed);
    for (int n = 0; n < 1500 && !HasFailure(); ++n) {
      SCOPED_TRACE(std::string(locale.name) + " tree " + std::to_string(n));
      const Layout start{generator.Chance(2), generator.Chance(2),
                         !generator.Chance(4), generator.Below(6) - 2};
      PieceWriter reference(start);
      std::unique_ptr<XMLElement> tree(generator.Element(reference, 0));
      auto expect_layout = [&reference](const ExportFormat& format) {
        const Layout& end = reference.End();
        EXPECT_EQ(format.IsNewParagraph(), end.format && end.newParagraph);
        EXPECT_EQ(format.HasIndentation(), end.format && end.indentation);
        EXPECT_EQ(format.GetFormat(), end.format);
        EXPECT_EQ(format.GetLevel(), end.level);
      };
      auto start_format = [&start] {
        ExportFormat format;
        format.SetIsNewParagraph(start.newParagraph);
        format.SetIndentation(start.indentation);
        format.SetFormat(start.format);
        format.SetLevel(start.level);
        return format;
      };
      const std::string prefix = n % 2 == 0 ? "" : "<prefix>";
      ExportFormat format = start_format();
      std::string text = prefix;
      EXPECT_EQ(tree->ToString(text, format), 0);
      EXPECT_EQ(text, prefix + reference.Join(any));
      expect_layout(format);
      for (const bool as_utf8 : {false, true}) {
        format = start_format();
        std::ostringstream os, tree_only, whole;
        os << prefix;
        EXPECT_EQ(tree->ToStream(os, format, as_utf8), 0);
        EXPECT_EQ(os.str(),
                  prefix + reference.Join(as_utf8 ? locale.converts : any));
        expect_layout(format);
        // A whole document: the declaration, then the tree as from the
        // default layout with the start's format switch.
        format = ExportFormat();
        format.SetFormat(start.format);
        tree->ToStream(tree_only, format, as_utf8);
        (as_utf8 ? WriteTreeUTF8 : WriteTree)(whole, nullptr, tree.get(),
                                              start.format);
        EXPECT_EQ(whole.str(), kDeclaration + tree_only.str());
      }
      // Each host is deleted once, in document order: its own destructor
      // runs before its children are deleted.
      tree.reset();
      EXPECT_EQ(generator.deleted, generator.created);
      generator.created.clear();
      generator.deleted.clear();
    }
    std::setlocale(LC_CTYPE, old_locale.c_str());
  }
}

}  // namespace
}  // namespace OstraTimeXML
