#include "tools/tsxml/syntax_error.h"

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tsxml_tool {

namespace {

using json = nlohmann::json;

// A SAX handler that keeps the JSON Pointer of the value being read and
// stops at the first error: a syntax error from the parser, or an integer
// that has no 64-bit form (the parser reads those as doubles).
class Locator {
 public:
  bool null() { return Value(); }
  bool boolean(bool) { return Value(); }
  bool number_integer(json::number_integer_t) { return Value(); }
  bool number_unsigned(json::number_unsigned_t) { return Value(); }
  bool number_float(json::number_float_t, const std::string& text) {
    Value();
    if (text.find_first_of(".eE") == std::string::npos) {
      message_ = "number out of range: an integer beyond 64 bits";
      pointerAtError_ = Pointer();
      return false;
    }
    return true;
  }
  bool string(std::string&) { return Value(); }
  bool binary(json::binary_t&) { return Value(); }
  bool start_object(std::size_t) {
    Value();
    frames_.push_back(Frame{false, false, 0, std::string()});
    return true;
  }
  bool key(std::string& name) {
    frames_.back().hasKey = true;
    frames_.back().key = name;
    return true;
  }
  bool end_object() {
    frames_.pop_back();
    return true;
  }
  bool start_array(std::size_t) {
    Value();
    // The first element makes the index 0.
    frames_.push_back(Frame{true, false, SIZE_MAX, std::string()});
    return true;
  }
  bool end_array() {
    frames_.pop_back();
    return true;
  }
  bool parse_error(std::size_t position, const std::string&,
                   const json::exception& error) {
    position_ = position;
    message_ = error.what();
    // "[json.exception.parse_error.101] parse error at line 1, column 4: "
    // comes before the text; line and column are told apart.
    const std::size_t column = message_.find(", column ");
    const std::size_t text =
        message_.find(": ", column == std::string::npos ? 0 : column);
    const std::size_t bracket = message_.find("] ");
    if (column != std::string::npos && text != std::string::npos) {
      message_.erase(0, text + 2);
    } else if (bracket != std::string::npos) {
      message_.erase(0, bracket + 2);
    }
    pointerAtError_ = Pointer();
    return false;
  }

  std::size_t Position() const { return position_; }
  const std::string& Message() const { return message_; }
  const std::string& PointerAtError() const { return pointerAtError_; }

 private:
  struct Frame {
    bool array;
    bool hasKey;        // an object past its first key
    std::size_t index;  // SIZE_MAX in an array before its first element
    std::string key;
  };

  // A value starts: in an array it is the next element.
  bool Value() {
    if (!frames_.empty() && frames_.back().array) ++frames_.back().index;
    return true;
  }

  std::string Pointer() const {
    std::string pointer;
    for (const Frame& frame : frames_) {
      // An array or object with nothing in it yet: the pointer is its own.
      if (frame.array ? frame.index == SIZE_MAX : !frame.hasKey) continue;
      pointer += '/';
      if (frame.array) {
        pointer += std::to_string(frame.index);
        continue;
      }
      for (char c : frame.key) {
        if (c == '~') {
          pointer += "~0";
        } else if (c == '/') {
          pointer += "~1";
        } else {
          pointer += c;
        }
      }
    }
    return pointer;
  }

  std::vector<Frame> frames_;
  std::size_t position_ = 0;
  std::string message_;
  std::string pointerAtError_;
};

}  // namespace

DescriptionError LocateSyntaxError(std::string_view bytes,
                                   std::string_view fallback) {
  Locator locator;
  json::sax_parse(bytes.begin(), bytes.end(), &locator);
  if (locator.Message().empty()) {
    return DescriptionError("", std::string(fallback));
  }
  if (locator.Position() == 0) {
    return DescriptionError(locator.PointerAtError(), locator.Message());
  }
  // The parser counts the offending byte in its position.
  const std::size_t offset = locator.Position() - 1;
  std::size_t line = 1;
  std::size_t lineStart = 0;
  for (std::size_t i = 0; i < offset && i < bytes.size(); ++i) {
    if (bytes[i] == '\n') {
      ++line;
      lineStart = i + 1;
    }
  }
  return DescriptionError(locator.PointerAtError(), line,
                          offset - lineStart + 1, locator.Message());
}

}  // namespace tsxml_tool
