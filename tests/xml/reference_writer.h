// A plain reference writer for node trees: the text of a tree that is
// described again, step by step, by a list of pieces, with every byte of an
// attribute value or a text node passed through an escaping switch one at a
// time and blank pairs replaced by a left-to-right search. Used to check the
// library's writer, which is built for speed, against the rules.
#ifndef TSXML_TESTS_XML_REFERENCE_WRITER_H
#define TSXML_TESTS_XML_REFERENCE_WRITER_H

#include <string>
#include <utility>
#include <vector>

namespace reference_writer {

// "&" and "<" replaced; nothing else.
inline std::string EscapeText(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else {
      out += c;
    }
  }
  return out;
}

inline std::string EscapeAttribute(const std::string& value) {
  std::string out;
  for (char c : value) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\t':
        out += "&#9;";
        break;
      case '\n':
        out += "&#10;";
        break;
      case '\r':
        out += "&#13;";
        break;
      default:
        out += c;
    }
  }
  // Each pair of blanks, searched from the left, the search going on
  // behind the inserted text.
  for (std::size_t at = out.find("  "); at != std::string::npos;
       at = out.find("  ", at + 6)) {
    out.replace(at, 2, " &#32;");
  }
  if (!out.empty() && out.front() == ' ') out.replace(0, 1, "&#32;");
  if (!out.empty() && out.back() == ' ')
    out.replace(out.size() - 1, 1, "&#32;");
  return out;
}

// The layout state that a writer passes down and changes.
struct Layout {
  bool newParagraph = true;
  bool indentation = true;
  bool format = true;
  int level = 0;
};

// Collects the text of a tree as the pieces that a UTF-8 write converts one
// by one. The caller walks its tree and reports each step.
class PieceWriter {
 public:
  explicit PieceWriter(Layout layout) : layout_(layout) {}

  // An element starts: its line start, "<" and name are one piece.
  void Open(const std::string& name) {
    indents_.push_back(layout_.level);
    pieces_.push_back(LineStart(layout_.level) + "<" + name);
    ++layout_.level;  // the attributes' level
  }
  // An attribute of the element just opened: separator and tabs, then
  // name="value" (the value escaped here).
  void Attribute(const std::string& name, const std::string& value) {
    std::string lead(layout_.format && layout_.newParagraph ? "\n" : " ");
    if (layout_.format && layout_.indentation) lead += Tabs(layout_.level);
    pieces_.push_back(lead);
    pieces_.push_back(name + "=\"" + EscapeAttribute(value) + "\"");
  }
  // After the attributes: whether children follow.
  void EndStart(bool hasChildren) {
    --layout_.level;
    if (hasChildren) {
      pieces_.push_back(">");
      ++layout_.level;
      return;
    }
    pieces_.push_back("/>");
    indents_.pop_back();
    layout_.newParagraph = layout_.indentation = true;
  }
  // The end of an element with children.
  void Close(const std::string& name) {
    --layout_.level;
    const int indent = indents_.back();
    indents_.pop_back();
    pieces_.push_back(LineStart(indent) + "</" + name + ">");
    layout_.newParagraph = layout_.indentation = true;
  }
  // A piece the caller writes itself, as a host subclass does.
  void Raw(const std::string& piece) { pieces_.push_back(piece); }

  void Text(const std::string& text) {
    pieces_.push_back(EscapeText(text));
    layout_.newParagraph = layout_.indentation = false;
  }

  const std::vector<std::string>& Pieces() const { return pieces_; }
  const Layout& End() const { return layout_; }

  // The pieces joined, each kept only if `keep` says so.
  template <typename Keep>
  std::string Join(Keep keep) const {
    std::string text;
    for (const std::string& piece : pieces_) {
      if (keep(piece)) text += piece;
    }
    return text;
  }

 private:
  static std::string Tabs(int n) {
    return std::string(n < 1 ? 0 : static_cast<std::size_t>(n), '\t');
  }
  std::string LineStart(int indent) const {
    std::string text;
    if (layout_.format && layout_.newParagraph) text += '\n';
    if (layout_.format && layout_.indentation) text += Tabs(indent);
    return text;
  }

  Layout layout_;
  std::vector<int> indents_;
  std::vector<std::string> pieces_;
};

}  // namespace reference_writer

#endif  // TSXML_TESTS_XML_REFERENCE_WRITER_H
