#include "xml/xml_node.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace OstraTimeXML {
namespace {

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

TEST(ElementLayout, NestedLevelsAndStartLevel) {
  std::unique_ptr<XMLElement> a = SampleTree();
  ExportFormat format;
  format.SetLevel(2);
  EXPECT_EQ(Text(*a, format),
            "\n\t\t<a\n\t\t\tx=\"1\">\n\t\t\t<b/>\n\t\t\t<c>t</c>\n\t\t</a>");
  EXPECT_EQ(format.GetLevel(), 2);
  EXPECT_EQ(StreamText(*a, format, true),
            "\n\t\t<a\n\t\t\tx=\"1\">\n\t\t\t<b/>\n\t\t\t<c>t</c>\n\t\t</a>");
  EXPECT_EQ(format.GetLevel(), 2);

  // Levels below 1 indent nothing; the level comes back as it was.
  format.SetLevel(-1);
  EXPECT_EQ(Text(*a, format), "\n<a\nx=\"1\">\n<b/>\n<c>t</c>\n</a>");
  EXPECT_EQ(format.GetLevel(), -1);
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

  // An element behind a text node starts behind the text, attributes too.
  std::unique_ptr<XMLElement> r(XMLElement::Create("r"));
  r->AddElement(XMLString::Create("x"));
  std::unique_ptr<XMLElement> s(XMLElement::Create("s"));
  s->AddAttribute("k", "v");
  s->AddAttribute("l", "w");
  r->AddElement(s.release());
  r->AddElement(XMLString::Create("y"));
  EXPECT_EQ(Text(*r), "\n<r>x<s k=\"v\" l=\"w\"/>y</r>");

  std::unique_ptr<XMLElement> long_text(XMLElement::Create("l"));
  const std::string body = "line one\nline two\r\n" + std::string(5000, 'z');
  long_text->AddElement(XMLString::Create(body));
  EXPECT_EQ(Text(*long_text), "\n<l>" + body + "</l>");
}

TEST(ElementLayout, CallerFlagsLastUntilTheFirstClose) {
  std::unique_ptr<XMLElement> a = SampleTree();
  ExportFormat format;
  format.SetIndentation(false);
  // `a` and its attribute lose their tabs; after <b/> closes they are back.
  EXPECT_EQ(Text(*a, format), "\n<a\nx=\"1\">\n<b/>\n\t<c>t</c>\n</a>");
  EXPECT_TRUE(format.HasIndentation());

  ExportFormat no_break;
  no_break.SetIsNewParagraph(false);
  EXPECT_EQ(Text(*a, no_break), "<a \tx=\"1\">\t<b/>\n\t<c>t</c>\n</a>");
  EXPECT_TRUE(no_break.IsNewParagraph());

  // A text node leaves both flags cleared for the caller.
  std::unique_ptr<XMLString> t(XMLString::Create("t"));
  ExportFormat after_text;
  EXPECT_EQ(Text(*t, after_text), "t");
  EXPECT_FALSE(after_text.IsNewParagraph());
  EXPECT_FALSE(after_text.HasIndentation());
  EXPECT_TRUE(after_text.GetFormat());
}

TEST(ElementLayout, AddElementCountsBothKindsInOrder) {
  std::unique_ptr<XMLElement> e(XMLElement::Create("e"));
  EXPECT_EQ(e->AddElement(XMLString::Create("1")), 1);
  EXPECT_EQ(e->AddElement(XMLElement::Create("two")), 2);
  EXPECT_EQ(e->AddElement(XMLString::Create("3")), 3);
  XMLAttribute* weight = XMLAttribute::Create("w", 0.25);
  e->AddAttribute(weight);
  e->AddAttribute("n", 3.0);
  EXPECT_EQ(Text(*e), "\n<e\n\tw=\"0.25\"\n\tn=\"3\">1<two/>3</e>");
}

TEST(ElementLayout, NullEntriesAreSkipped) {
  std::unique_ptr<XMLElement> e(XMLElement::Create("e"));
  e->AddAttribute(static_cast<XMLAttribute*>(nullptr));
  e->AddAttribute("k", "v");
  e->AddElement(static_cast<XMLElement*>(nullptr));
  e->AddElement(XMLElement::Create("c"));
  e->AddElement(static_cast<XMLString*>(nullptr));
  ExportFormat format;
  EXPECT_EQ(Text(*e, format), "\n<e\n\tk=\"v\">\n\t<c/>\n</e>");
  EXPECT_EQ(StreamText(*e, format), "\n<e\n\tk=\"v\">\n\t<c/>\n</e>");
}

TEST(Escaping, TextNodeEscapesOnlyAmpersandAndLess) {
  std::unique_ptr<XMLString> t(XMLString::Create("a<b&c>d"));
  EXPECT_EQ(Text(*t), "a&lt;b&amp;c>d");
  std::unique_ptr<XMLString> rest(
      XMLString::Create("\"'\t\n\r  >\xC3\xA9\xFF&&<<"));
  EXPECT_EQ(Text(*rest), "\"'\t\n\r  >\xC3\xA9\xFF&amp;&amp;&lt;&lt;");
  std::unique_ptr<XMLString> empty(XMLString::Create(""));
  EXPECT_EQ(Text(*empty), "");
}

TEST(Escaping, AttributeCharacters) {
  EXPECT_EQ(AttributeText("a<b&c>d"), "a&lt;b&amp;c&gt;d");
  EXPECT_EQ(AttributeText("&lt;"), "&amp;lt;");
  EXPECT_EQ(AttributeText("a\nb"), "a&#10;b");
  EXPECT_EQ(AttributeText("\t\r\"'"), "&#9;&#13;&quot;'");
  EXPECT_EQ(AttributeText("\xC3\xA9\x80\xFF"), "\xC3\xA9\x80\xFF");
  EXPECT_EQ(AttributeText(std::string("a\0b", 3)), std::string("a\0b", 3));
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
  EXPECT_EQ(AttributeText(" a "), "&#32;a&#32;");
  EXPECT_EQ(AttributeText("a  "), "a &#32;");
  EXPECT_EQ(AttributeText("a   "), "a &#32;&#32;");
  EXPECT_EQ(AttributeText("   a"), "&#32;&#32; a");
  EXPECT_EQ(AttributeText("\n \n"), "&#10; &#10;");
}

TEST(DocType, DeclarationAndExtensions) {
  std::unique_ptr<XMLDocType> doc(XMLDocType::Create("r", "s", 7));
  const std::string declaration =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";
  EXPECT_EQ(Text(*doc), declaration + "<!DOCTYPE r SYSTEM \"s\">\n");

  EXPECT_EQ(doc->AddExtension("E"), 2);
  EXPECT_EQ(Text(*doc), declaration + "<!DOCTYPE r SYSTEM \"s\"\n[\nE\n]>\n");
  EXPECT_EQ(doc->AddExtension("<!ENTITY a \"&\">"), 18);
  const std::string both =
      declaration + "<!DOCTYPE r SYSTEM \"s\"\n[\nE\n<!ENTITY a \"&\">\n]>\n";
  EXPECT_EQ(Text(*doc), both);
  ExportFormat format;
  EXPECT_EQ(StreamText(*doc, format), both);

  // The user value is copied but never written.
  std::unique_ptr<XMLDocType> other(XMLDocType::Create("x", "y", -5));
  *other = *doc;
  EXPECT_EQ(Text(*other), both);

  std::unique_ptr<XMLDocType> ab(XMLDocType::Create("r", "s", 0));
  EXPECT_EQ(ab->AddExtension("A"), 2);
  EXPECT_EQ(ab->AddExtension("B"), 4);
}

TEST(NodeCopies, AssignmentCopiesFields) {
  std::unique_ptr<XMLAttribute> a(XMLAttribute::Create("a", "1"));
  std::unique_ptr<XMLAttribute> b(XMLAttribute::Create("b", "2"));
  *a = *b;
  EXPECT_EQ(Text(*a), "b=\"2\"");
  std::unique_ptr<XMLString> s(XMLString::Create("s"));
  std::unique_ptr<XMLString> t(XMLString::Create("t"));
  *s = *t;
  EXPECT_EQ(Text(*s), "t");
}

TEST(WriteTreeTest, PrologAndLayout) {
  std::unique_ptr<XMLElement> a = SampleTree();
  std::ostringstream os;
  EXPECT_EQ(WriteTree(os, nullptr, a.get(), true), 0);
  EXPECT_EQ(os.str(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
            "\n<a\n\tx=\"1\">\n\t<b/>\n\t<c>t</c>\n</a>");

  std::unique_ptr<XMLDocType> doc(XMLDocType::Create("a", "a.dtd", 0));
  doc->AddExtension("E");
  std::ostringstream flat;
  EXPECT_EQ(WriteTree(flat, doc.get(), a.get(), false), 0);
  EXPECT_EQ(flat.str(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
            "<!DOCTYPE a SYSTEM \"a.dtd\"\n[\nE\n]>\n"
            "<a x=\"1\"><b/><c>t</c></a>");

  std::ostringstream utf8;
  EXPECT_EQ(WriteTreeUTF8(utf8, doc.get(), a.get(), false), 0);
  EXPECT_EQ(utf8.str(), flat.str());

  std::ostringstream prolog_only;
  WriteTree(prolog_only, nullptr, nullptr, true);
  EXPECT_EQ(prolog_only.str(), "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n");
}

TEST(WriteTreeTest, WriteKeepsEveryByte) {
  const std::string text("a\0\xFF\n", 4);
  std::ostringstream os;
  EXPECT_EQ(Write(os, text), 0);
  EXPECT_EQ(os.str(), text);
}

// A host element that counts its deletions into a shared log.
class LoggedElement : public XMLElement {
 public:
  static LoggedElement* Create(const std::string& name,
                               std::vector<std::string>* log) {
    return new LoggedElement(name, log);
  }
  ~LoggedElement() override { log_->push_back(name_); }

 private:
  LoggedElement(const std::string& name, std::vector<std::string>* log)
      : XMLElement(name), name_(name), log_(log) {}
  std::string name_;
  std::vector<std::string>* log_;
};

TEST(Ownership, SubtreeDeletedOnceInNestedOrder) {
  std::vector<std::string> log;
  {
    std::unique_ptr<XMLElement> root(XMLElement::Create("root"));
    root->AddAttribute("a", "1");
    LoggedElement* one = LoggedElement::Create("1", &log);
    root->AddElement(one);
    std::unique_ptr<XMLElement> plain(XMLElement::Create("plain"));
    plain->AddElement(LoggedElement::Create("2", &log));
    std::unique_ptr<XMLElement> deeper(XMLElement::Create("deeper"));
    deeper->AddElement(LoggedElement::Create("3", &log));
    deeper->AddElement(XMLString::Create("t"));
    plain->AddElement(deeper.release());
    plain->AddElement(LoggedElement::Create("4", &log));
    root->AddElement(plain.release());
    one->AddElement(LoggedElement::Create("1.1", &log));
    root->AddElement(LoggedElement::Create("5", &log));
    root->AddElement(static_cast<XMLString*>(nullptr));
  }
  // A host element's own destructor runs before its children are deleted.
  EXPECT_EQ(log, (std::vector<std::string>{"1", "1.1", "2", "3", "4", "5"}));
}

// A host element that writes a marker of its own before its usual text.
class MarkedElement : public XMLElement {
 public:
  static MarkedElement* Create(const std::string& name) {
    return new MarkedElement(name);
  }
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
  explicit MarkedElement(const std::string& name) : XMLElement(name) {}
};

TEST(Ownership, HostSubclassesWriteThemselvesInPlace) {
  std::unique_ptr<XMLElement> root(XMLElement::Create("r"));
  root->AddElement(XMLString::Create("x"));
  MarkedElement* marked = MarkedElement::Create("m");
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

TEST(DeepTree, HundredThousandLevels) {
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

  ExportFormat flat;
  flat.SetFormat(false);
  flat.SetLevel(3);
  EXPECT_EQ(Text(*root, flat), expected);
  EXPECT_EQ(flat.GetLevel(), 3);
  EXPECT_EQ(StreamText(*root, flat), expected);
  EXPECT_EQ(StreamText(*root, flat, true), expected);
  std::ostringstream os;
  WriteTree(os, nullptr, root.get(), false);
  EXPECT_EQ(os.str(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n" + expected);
}

}  // namespace
}  // namespace OstraTimeXML
