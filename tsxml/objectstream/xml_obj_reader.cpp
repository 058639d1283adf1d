#include "tsxml/objectstream/xml_obj_reader.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <locale>
#include <sstream>
#include <string>

#include "tsxml/base/missing_value.h"
#include "tsxml/objectstream/internal/line_tokenizer.h"

namespace OstraTimeXML {
namespace {

// Delimiter sets, by the tokens they split.
constexpr char kHeadSet[] = " \t\r\n<>=\"";   // first token of the head lines
constexpr char kObjectSet[] = " \t\r\n<=\"";  // "Obj" and "name"
constexpr char kQuoteSet[] = "\"";            // the object's name
constexpr char kMemberSet[] = " \t\r\n=<\"";  // tag and non-string value
constexpr char kKeySet[] = "=\"";             // "value"
constexpr char kStringSet[] = "\r\n\"";       // string value
constexpr char kEndSet[] = " \t\r\n<>";       // "/Obj"

// The text of `<String value=""/>` from the first quote on: an empty value.
constexpr char kEmptyStringTail[] = "\"\"/>";

// One line of the stream and the tokens taken from it so far.
class Line {
 public:
  Line() : tokens_(nullptr) {}  // no token before the first Read
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  // Reads the next line into 256 bytes; false when the fail or bad bit is set
  // afterwards (a line of 256 characters or more sets the fail bit).
  bool Read(std::istream& is) {
    is.getline(text_, sizeof text_);
    tokens_ = tsxml::LineTokenizer(text_);
    return !is.fail();
  }

  // True for a line with no character, or a lone CR left by a CR LF end.
  bool IsEmpty() const {
    return text_[0] == '\0' || (text_[0] == '\r' && text_[1] == '\0');
  }

  // The next token up to a byte of `delims`, or null.
  char* Next(const char* delims) { return tokens_.Next(delims); }

  // True when the next token exists and equals `word`.
  bool NextIs(const char* delims, const char* word) {
    const char* token = Next(delims);
    return token != nullptr && std::strcmp(token, word) == 0;
  }

  // True when the text that begins two bytes before `token` reads exactly
  // `tail`.
  bool LooksBackTo(const char* token, const char* tail) const {
    return token - text_ >= 2 && std::strcmp(token - 2, tail) == 0;
  }

 private:
  char text_[256];
  tsxml::LineTokenizer tokens_;
};

// Reads a member line up to its value: the tag `tag` with the member set, then
// "value" with the key set. False if the read or either token fails.
bool ReadMember(std::istream& is, Line& line, const char* tag) {
  return line.Read(is) && line.NextIs(kMemberSet, tag) &&
         line.NextIs(kKeySet, "value");
}

// ReadMember and then the value token with the member set; null on failure.
const char* ReadMemberValue(std::istream& is, Line& line, const char* tag) {
  return ReadMember(is, line, tag) ? line.Next(kMemberSet) : nullptr;
}

// As atoi, with its out-of-range case defined: strtol, cut to int.
int ToInt(const char* text) {
  return static_cast<int>(std::strtol(text, nullptr, 10));
}

// The low 32 bits of the integer part of `value`; 0 for infinities and NaN.
unsigned int LowBits(double value) {
  constexpr double kTwoTo32 = 4294967296.0;
  if (!std::isfinite(value)) return 0;
  double low = std::fmod(std::trunc(value), kTwoTo32);  // exact
  if (low < 0) low += kTwoTo32;  // exact: an integer below 2^32
  return static_cast<unsigned int>(low);
}

}  // namespace

bool ParseStartXML(std::ifstream& is) {
  Line line;
  return line.Read(is) && line.NextIs(kHeadSet, "?xml") && line.Read(is) &&
         line.NextIs(kHeadSet, "!DOCTYPE") && line.Read(is) &&
         line.NextIs(kHeadSet, "OstraXMLRoot");
}

bool ParseStartObj(std::ifstream& is, const std::string& name) {
  Line line;
  if (!line.Read(is)) return false;
  if (line.IsEmpty() && !line.Read(is)) return false;
  if (!line.NextIs(kObjectSet, "Obj") || !line.NextIs(kObjectSet, "name")) {
    return false;
  }
  const char* token = line.Next(kQuoteSet);
  return token != nullptr && name == token;
}

bool ParseValue(std::ifstream& is, int& value) {
  Line line;
  const char* text = ReadMemberValue(is, line, "Int");
  if (text == nullptr) return false;
  value = ToInt(text);
  return true;
}

bool ParseValue(std::ifstream& is, unsigned int& value) {
  Line line;
  const char* text = ReadMemberValue(is, line, "Int");
  if (text == nullptr) return false;
  value = LowBits(std::strtod(text, nullptr));
  return true;
}

bool ParseValue(std::ifstream& is, long& value) {
  Line line;
  const char* text = ReadMemberValue(is, line, "Long");
  if (text == nullptr) return false;
  value = std::strtol(text, nullptr, 10);
  return true;
}

bool ParseValue(std::ifstream& is, double& value) {
  Line line;
  const char* text = ReadMemberValue(is, line, "Double");
  if (text == nullptr) return false;
  if (std::strcmp(text, "Missing") == 0) {
    value = MV::gMissingValue;
    return true;
  }
  std::istringstream number(text);
  number.imbue(std::locale::classic());
  number >> value;
  return true;
}

bool ParseValue(std::ifstream& is, std::string& value) {
  Line line;
  if (!ReadMember(is, line, "String")) return false;
  const char* text = line.Next(kStringSet);
  // The empty value: both quotes were skipped and the token is the "/>" that
  // follows them. A real value "/>" has the key's '=' (now NUL) before it.
  if (text == nullptr || line.LooksBackTo(text, kEmptyStringTail)) {
    value.clear();
  } else {
    value = text;
  }
  return true;
}

bool ParseValue(std::ifstream& is, bool& value) {
  Line line;
  const char* text = ReadMemberValue(is, line, "Int");
  if (text == nullptr) return false;
  const int number = ToInt(text);
  if (number != 0 && number != 1) return false;
  value = number == 1;
  return true;
}

bool ParseEndObj(std::ifstream& is) {
  Line line;
  return line.Read(is) && line.NextIs(kEndSet, "/Obj");
}

}  // namespace OstraTimeXML
