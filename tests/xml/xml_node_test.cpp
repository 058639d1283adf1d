#include "tsxml/xml/xml_node.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "xml_reference.h"

namespace OstraTimeXML {
namespace {

using xml_reference::Declaration;

std::string Text(const XMLInterface& node, ExportFormat& format) {
  std::string out;
  EXPECT_EQ(node.ToString(out, format), 0);
  return out;
}

std::string Text(const XMLInterface& node) {
  ExportFormat format;
  return Text(node, format);
}

std::string StreamText(const XMLInterface& node, ExportFormat& format,
                       bool utf8 = false) {
  std::ostringstream os;
  EXPECT_EQ(node.ToStream(os, format, utf8), 0);
  return os.str();
}

// Element `a` with attribute x="1", child `b`, and child `c` holding "t".
std::unique_ptr<XMLElement> SampleTree() {
  std::unique_ptr<XMLElement> a(XMLElement::Create("a"));
  a->AddAttribute("x", "1");
  a->AddElement(XMLElement::Create("b"));
  std::unique_ptr<XMLElement> c(XMLElement::Create("c"));
  c->AddElement(XMLString::Create("t"));
  a->AddElement(c.release());
  return a;
}

std::string AttributeText(const std::string& value) {
  std::unique_ptr<XMLAttribute> attribute(XMLAttribute::Create("v", value));
  std::string text = Text(*attribute);
  return text.substr(3, text.size() - 4);  // without v=" and "
}

TEST(ElementLayout, WorkedExampleDefaultAndUnformatted) {
  std::unique_ptr<XMLElement> a = SampleTree();
  ExportFormat format;
  EXPECT_EQ(Text(*a, format), "\n<a\n\tx=\"1\">\n\t<b/>\n\t<c>t</c>\n</a>");
  EXPECT_EQ(StreamText(*a, format),
            "\n<a\n\tx=\"1\">\n\t<b/>\n\t<c>t</c>\n</a>");

  ExportFormat flat;
  flat.SetFormat(false);
  EXPECT_EQ(Text(*a, flat), "<a x=\"1\"><b/><c>t</c></a>");
  EXPECT_EQ(StreamText(*a, flat), "<a x=\"1\"><b/><c>t</c></a>");
}

TEST(ElementLayout, EmptyElementsAndMixedContent) {
  std::unique_ptr<XMLElement> e(XMLElement::Create("e"));
  EXPECT_EQ(Text(*e), "\n<e/>");
  e->AddAttribute("y", "2");
  EXPECT_EQ(Text(*e), "\n<e\n\ty=\"2\"/>");
  e->AddElement(XMLString::Create("text"));
  EXPECT_EQ(Text(*e), "\n<e\n\ty=\"2\">text</e>");

  std::unique_ptr<XMLElement> p(XMLElement::Create("p"));
  p->AddElement(XMLString::Create("text"));
  p->AddElement(XMLElement::Create("q"));
  EXPECT_EQ(Text(*p), "\n<p>text<q/>\n</p>");

  std::unique_ptr<XMLElement> long_text(XMLElement::Create("l"));
  const std::string body = "line one\nline two\r\n" + std::string(5000, 'z');
  long_text->AddElement(XMLString::Create(body));
  EXPECT_EQ(Text(*long_text), "\n<l>" + body + "</l>");
}

TEST(ElementLayout, AddCountsBothKindsInOrderAndSkipsNull) {
  std::unique_ptr<XMLElement> e(XMLElement::Create("e"));
  EXPECT_EQ(e->AddElement(XMLString::Create("1")), 1);
  EXPECT_EQ(e->AddElement(XMLElement::Create("two")), 2);
  EXPECT_EQ(e->AddElement(XMLString::Create("3")), 3);
  e->AddAttribute(XMLAttribute::Create("w", 0.25));
  e->AddAttribute("n", 3.0);
  EXPECT_EQ(Text(*e), "\n<e\n\tw=\"0.25\"\n\tn=\"3\">1<two/>3</e>");

  std::unique_ptr<XMLElement> n(XMLElement::Create("e"));
  n->AddAttribute(static_cast<XMLAttribute*>(nullptr));
  n->AddAttribute("k", "v");
  n->AddElement(static_cast<XMLElement*>(nullptr));
  n->AddElement(XMLElement::Create("c"));
  n->AddElement(static_cast<XMLString*>(nullptr));
  ExportFormat format;
  EXPECT_EQ(Text(*n, format), "\n<e\n\tk=\"v\">\n\t<c/>\n</e>");
  EXPECT_EQ(StreamText(*n, format), "\n<e\n\tk=\"v\">\n\t<c/>\n</e>");
}

TEST(Escaping, TextAndAttributeCharacters) {
  std::unique_ptr<XMLString> t(XMLString::Create("a<b&c>d"));
  EXPECT_EQ(Text(*t), "a&lt;b&amp;c>d");
  EXPECT_EQ(AttributeText("a<b&c>d"), "a&lt;b&amp;c&gt;d");
  EXPECT_EQ(AttributeText("&lt;"), "&amp;lt;");
  EXPECT_EQ(AttributeText("a\nb"), "a&#10;b");
  EXPECT_EQ(AttributeText(""), "");

  std::unique_ptr<XMLAttribute> attribute(XMLAttribute::Create("n m", "v"));
  EXPECT_EQ(Text(*attribute), "n m=\"v\"");
}

TEST(Escaping, AttributeBlanks) {
  EXPECT_EQ(AttributeText(" "), "&#32;");
  EXPECT_EQ(AttributeText("  "), "&#32;&#32;");
  EXPECT_EQ(AttributeText("   "), "&#32;&#32;&#32;");
  EXPECT_EQ(AttributeText("    "), "&#32;&#32; &#32;");
  EXPECT_EQ(AttributeText("     "), "&#32;&#32; &#32;&#32;");
  EXPECT_EQ(AttributeText("a b"), "a b");
  EXPECT_EQ(AttributeText("a  b"), "a &#32;b");
  EXPECT_EQ(AttributeText("a   b"), "a &#32; b");
  EXPECT_EQ(AttributeText("a    b"), "a &#32; &#32;b");
}

TEST(DocType, DeclarationAndExtensions) {
  std::unique_ptr<XMLDocType> doc(XMLDocType::Create("r", "s", 7));
  EXPECT_EQ(Text(*doc), Declaration() + "<!DOCTYPE r SYSTEM \"s\">\n");

  EXPECT_EQ(doc->AddExtension("E"), 2);
  EXPECT_EQ(Text(*doc), Declaration() + "<!DOCTYPE r SYSTEM \"s\"\n[\nE\n]>\n");
  EXPECT_EQ(doc->AddExtension("<!ENTITY a \"&\">"), 18);
  const std::string both =
      Declaration() + "<!DOCTYPE r SYSTEM \"s\"\n[\nE\n<!ENTITY a \"&\">\n]>\n";
  EXPECT_EQ(Text(*doc), both);
  ExportFormat format;
  EXPECT_EQ(StreamText(*doc, format), both);

  // The user value is copied but never written.
  std::unique_ptr<XMLDocType> other(XMLDocType::Create("x", "y", -5));
  *other = *doc;
  EXPECT_EQ(Text(*other), both);
}

TEST(WriteTreeTest, DocTypeAndFlatLayout) {
  std::unique_ptr<XMLElement> a = SampleTree();
  std::unique_ptr<XMLDocType> doc(XMLDocType::Create("a", "a.dtd", 0));
  doc->AddExtension("E");
  std::ostringstream flat;
  EXPECT_EQ(WriteTree(flat, doc.get(), a.get(), false), 0);
  EXPECT_EQ(flat.str(), Declaration() +
                            "<!DOCTYPE a SYSTEM \"a.dtd\"\n[\nE\n]>\n"
                            "<a x=\"1\"><b/><c>t</c></a>");

  std::ostringstream utf8;
  EXPECT_EQ(WriteTreeUTF8(utf8, doc.get(), a.get(), false), 0);
  EXPECT_EQ(utf8.str(), flat.str());

  std::ostringstream prolog_only;
  WriteTree(prolog_only, nullptr, nullptr, true);
  EXPECT_EQ(prolog_only.str(), Declaration());

  const std::string bytes("a\0\xFF\n", 4);
  std::ostringstream os;
  EXPECT_EQ(Write(os, bytes), 0);
  EXPECT_EQ(os.str(), bytes);
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

TEST(Ownership, SubtreeDeletedOnceInNestedOrder) {
  std::vector<std::string> log;
  {
    std::unique_ptr<XMLElement> root(XMLElement::Create("root"));
    root->AddAttribute("a", "1");
    HostElement* one = new HostElement("1", &log);
    root->AddElement(one);
    std::unique_ptr<XMLElement> plain(XMLElement::Create("plain"));
    plain->AddElement(new HostElement("2", &log));
    std::unique_ptr<XMLElement> deeper(XMLElement::Create("deeper"));
    deeper->AddElement(new HostElement("3", &log));
    deeper->AddElement(XMLString::Create("t"));
    plain->AddElement(deeper.release());
    plain->AddElement(new HostElement("4", &log));
    root->AddElement(plain.release());
    one->AddElement(new HostElement("1.1", &log));
    root->AddElement(new HostElement("5", &log));
    root->AddElement(static_cast<XMLString*>(nullptr));
  }
  // A host element's own destructor runs before its children are deleted.
  EXPECT_EQ(log, (std::vector<std::string>{"1", "1.1", "2", "3", "4", "5"}));
}

TEST(Ownership, HostSubclassesWriteThemselvesInPlace) {
  std::vector<std::string> log;
  std::unique_ptr<XMLElement> root(XMLElement::Create("r"));
  root->AddElement(XMLString::Create("x"));
  HostElement* marked = new HostElement("m", &log);
  marked->AddElement(XMLElement::Create("inner"));
  root->AddElement(marked);
  root->AddElement(XMLElement::Create("after"));
  const std::string expected =
      "\n<r>x[mark]<m><inner/>\n\t</m>\n\t<after/>\n</r>";
  ExportFormat format;
  EXPECT_EQ(Text(*root, format), expected);
  EXPECT_EQ(StreamText(*root, format), expected);
  EXPECT_EQ(StreamText(*root, format, true), expected);
  EXPECT_EQ(format.GetLevel(), 0);
}

// A chain of `depth` elements "e", the innermost holding "&": 100,000 levels
// flat, and enough formatted levels for long runs of tabs.
TEST(DeepTree, FlatAndFormattedChains) {
  for (const int depth : {100000, 3000}) {
    std::unique_ptr<XMLElement> root(XMLElement::Create("e"));
    XMLElement* leaf = root.get();
    for (int i = 1; i < depth; ++i) {
      XMLElement* child = XMLElement::Create("e");
      leaf->AddElement(child);
      leaf = child;
    }
    leaf->AddElement(XMLString::Create("&"));
    const bool formatted = depth < 100000;
    auto line = [&](int level) {
      return formatted ? "\n" + std::string(static_cast<size_t>(level), '\t')
                       : std::string();
    };
    std::string expected;
    for (int i = 0; i < depth; ++i) expected += line(i) + "<e>";
    expected += "&amp;</e>";
    for (int i = depth - 1; i-- > 0;) expected += line(i) + "</e>";

    ExportFormat format;
    format.SetFormat(formatted);
    format.SetLevel(formatted ? 0 : 3);
    EXPECT_EQ(Text(*root, format), expected);
    EXPECT_EQ(format.GetLevel(), formatted ? 0 : 3);
    EXPECT_EQ(StreamText(*root, format), expected);
    EXPECT_EQ(StreamText(*root, format, true), expected);
    std::ostringstream os;
    WriteTree(os, nullptr, root.get(), formatted);
    EXPECT_EQ(os.str(), Declaration() + expected);
  }
}

}  // namespace
}  // namespace OstraTimeXML
