// Test helpers for the XML node model: a plain recursive writer that follows
// the documented layout and escaping rules step by step (replace-all loops,
// no tables), a mirror tree to drive it, and a scoped C locale switch.
#ifndef TSXML_TESTS_XML_XML_REFERENCE_H
#define TSXML_TESTS_XML_XML_REFERENCE_H

#include <clocale>
#include <string>
#include <utility>
#include <vector>

namespace xml_reference {

// The declaration line that every document begins with.
inline std::string Declaration() {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";
}

// Replaces every `from` in `text`, scanning on behind each inserted `to`.
inline std::string ReplaceAll(std::string text, const std::string& from,
                              const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

inline std::string EscapeAttribute(std::string text) {
  const std::pair<const char*, const char*> steps[] = {
      {"&", "&amp;"}, {"<", "&lt;"},   {">", "&gt;"},   {"\"", "&quot;"},
      {"\t", "&#9;"}, {"\n", "&#10;"}, {"\r", "&#13;"}, {"  ", " &#32;"}};
  for (const auto& step : steps) {
    text = ReplaceAll(text, step.first, step.second);
  }
  if (!text.empty() && text.front() == ' ') text.replace(0, 1, "&#32;");
  if (!text.empty() && text.back() == ' ') {
    text.replace(text.size() - 1, 1, "&#32;");
  }
  return text;
}

// A node as the test sees it: a text node, or an element.
struct Node {
  bool is_text = false;
  std::string name;  // the text of a text node
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<Node> children;
};

struct Format {
  bool new_paragraph = true;
  bool indentation = true;
  bool format = true;
  int level = 0;
};

// Appends the text of `node` to `pieces`, cut where ToStream converts.
inline void Write(const Node& node, Format& f,
                  std::vector<std::string>& pieces) {
  if (node.is_text) {
    pieces.push_back(
        ReplaceAll(ReplaceAll(node.name, "&", "&amp;"), "<", "&lt;"));
    f.new_paragraph = f.indentation = false;
    return;
  }
  const std::string tabs(f.level < 1 ? 0 : static_cast<size_t>(f.level), '\t');
  const std::string inner_tabs(
      f.level < 0 ? 0 : static_cast<size_t>(f.level) + 1, '\t');
  // A line feed (or `otherwise`) and `t`, as far as the flags ask for them.
  auto lead = [&f](const char* otherwise, const std::string& t) {
    return std::string(f.format && f.new_paragraph ? "\n" : otherwise) +
           (f.format && f.indentation ? t : "");
  };
  pieces.push_back(lead("", tabs) + "<" + node.name);
  for (const auto& attribute : node.attributes) {
    pieces.push_back(lead(" ", inner_tabs));
    pieces.push_back(attribute.first + "=\"" +
                     EscapeAttribute(attribute.second) + "\"");
  }
  if (node.children.empty()) {
    pieces.push_back("/>");
  } else {
    pieces.push_back(">");
    ++f.level;
    for (const Node& child : node.children) Write(child, f, pieces);
    --f.level;
    pieces.push_back(lead("", tabs) + "</" + node.name + ">");
  }
  f.new_paragraph = f.indentation = true;
}

// The pieces joined, keeping only those `keep` accepts if it is given.
inline std::string Join(const std::vector<std::string>& pieces,
                        bool (*keep)(const std::string&) = nullptr) {
  std::string text;
  for (const std::string& piece : pieces) {
    if (keep == nullptr || keep(piece)) text += piece;
  }
  return text;
}

// Sets one C locale category for the scope; ok() is false when the locale
// does not exist here.
class ScopedCLocale {
 public:
  ScopedCLocale(int category, const char* name) : category_(category) {
    const char* old = std::setlocale(category, nullptr);
    old_ = old != nullptr ? old : "C";
    ok_ = std::setlocale(category, name) != nullptr;
  }
  ~ScopedCLocale() { std::setlocale(category_, old_.c_str()); }
  ScopedCLocale(const ScopedCLocale&) = delete;
  ScopedCLocale& operator=(const ScopedCLocale&) = delete;
  bool ok() const { return ok_; }

 private:
  int category_;
  std::string old_;
  bool ok_ = false;
};

}  // namespace xml_reference

#endif  // TSXML_TESTS_XML_XML_REFERENCE_H
