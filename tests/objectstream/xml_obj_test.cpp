// The object-stream writer and reader: a whole written stream, the reader's
// edge cases and its tokenizer, and generated objects written to a file and
// read back with the same calls, in the "C" locale and a decimal-comma one, by
// two threads at once: one reads the stream with LF line ends, the other with
// CR LF.
#include "tsxml/objectstream/xml_obj.h"

#include <unistd.h>

#include <atomic>
#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "support/test_data.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/objectstream/internal/line_tokenizer.h"
#include "tsxml/objectstream/xml_obj_reader.h"
#include "tsxml/xml/number_text.h"
#include "tsxml/xml/xml_node.h"

namespace OstraTimeXML {
namespace {

// A temporary file holding `bytes`, its path unique within the machine's
// running tests, open for reading from its start; removed with the object.
class StreamFile {
 public:
  explicit StreamFile(const std::string& bytes) {
    static std::atomic<unsigned> counter{0};
    path_ = ::testing::TempDir() + "tsxml_objectstream_" +
            std::to_string(::getpid()) + "_" + std::to_string(++counter);
    std::ofstream(path_, std::ios::binary) << bytes;
    in_.open(path_, std::ios::binary);
  }
  ~StreamFile() { std::remove(path_.c_str()); }
  StreamFile(const StreamFile&) = delete;
  StreamFile& operator=(const StreamFile&) = delete;

  std::ifstream& in() { return in_; }

 private:
  std::string path_;
  std::ifstream in_;
};

// A whole stream: the head as a host writes it, every member type with its
// extremes, the missing value and its neighbour, escaped strings, an object
// name written verbatim, and objects at 0, 3 and -1 tabs.
TEST(XMLObjWriter, WholeStream) {
  std::ostringstream os;
  std::unique_ptr<XMLDocType> docType(
      XMLDocType::Create("OstraXMLRoot", "savexml.dtd", 0));
  ExportFormat format;
  docType->ToStream(os, format, false);
  EXPECT_EQ(StartRoot(os, "(c) A & \"B\""), 0);
  const XMLObj outer("Outer", 0);
  EXPECT_EQ(outer.StartObj(os), 0);
  EXPECT_EQ(outer.WriteSubElement(os, true), 0);
  outer.WriteSubElement(os, false);
  outer.WriteSubElement(os, INT_MIN);
  outer.WriteSubElement(os, UINT_MAX);
  outer.WriteSubElement(os, LONG_MAX);
  outer.WriteSubElement(os, LONG_MIN);
  outer.WriteSubElement(os, 1.5);
  outer.WriteSubElement(os, MV::gMissingValue);
  outer.WriteSubElement(os, std::nextafter(MV::gMissingValue, 0.0));
  for (const char* text : {"", " lead", "say \"hi\""}) {
    outer.WriteSubElement(os, std::string(text));
  }
  const XMLObj inner("a b=<c>", 3);
  inner.StartObj(os);
  inner.WriteSubElement(os, 7L);
  inner.EndObj(os);
  const XMLObj negative("neg", -1);
  negative.StartObj(os);
  negative.WriteSubElement(os, 2.5);
  negative.EndObj(os);
  EXPECT_EQ(outer.EndObj(os), 0);
  EXPECT_EQ(EndRoot(os), 0);
  EXPECT_EQ(EndHeader(os), 0);
  EXPECT_EQ(os.str(), testing_support::ReadTestData("objectstream/writer.xml"));
  std::ostringstream header;
  WriteHeader(header, "x");
  EXPECT_EQ(header.str(), "<OstraXMLRoot copyright=\"x\">");
}

// Over random lines and random delimiter sets, the tokenizer gives the tokens
// of strtok at the same places and leaves the same bytes in the line.
TEST(LineTokenizer, AgreesWithStrtok) {
  const std::string alphabet = " \t\r\n<>=\"/ab?";
  std::mt19937 rng(20240611);
  auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(rng);
  };
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t n = pick(24); n > 0; --n) text += alphabet[pick(12)];
    std::vector<char> ours(text.begin(), text.end());
    ours.push_back('\0');
    std::vector<char> theirs = ours;

    tsxml::LineTokenizer tokens(ours.data());
    for (int call = 0; call < 6; ++call) {
      std::string delims;
      for (char c : alphabet) {
        if (pick(3) == 0) delims += c;
      }
      const char* mine = tokens.Next(delims.c_str());
      const char* reference =
          std::strtok(call == 0 ? theirs.data() : nullptr, delims.c_str());
      ASSERT_EQ(mine == nullptr, reference == nullptr) << text;
      if (mine != nullptr) {
        ASSERT_EQ(mine - ours.data(), reference - theirs.data()) << text;
      }
    }
    ASSERT_EQ(ours, theirs) << text;
  }
}

// Reads the one member line `line` into `target`: "found" or "not found",
// and the target afterwards.
template <typename T>
std::string ReadOne(const std::string& line, T target) {
  StreamFile file(line);
  std::ostringstream out;
  out << (ParseValue(file.in(), target) ? "found " : "not found ");
  if constexpr (std::is_same_v<T, std::string>) {
    out << '"' << target << '"';
  } else if constexpr (std::is_same_v<T, double>) {
    if (target == MV::gMissingValue) return out.str() + "missing";
    out << target;
  } else {
    out << target;
  }
  return out.str();
}

// A command of tests/data/objectstream/values.txt: "TYPE INITIAL LINE".
std::string ReadCommand(const std::string& command) {
  std::istringstream words(command);
  std::string type, initial;
  words >> type >> initial;
  std::string line = command.substr(type.size() + initial.size() + 2);
  if (line.rfind("\\t", 0) == 0) line.replace(0, 2, "\t");
  if (type == "int") return ReadOne(line, std::stoi(initial));
  if (type == "unsigned") return ReadOne(line, unsigned(std::stoul(initial)));
  if (type == "long") return ReadOne(line, std::stol(initial));
  if (type == "bool") return ReadOne(line, initial == "1");
  if (type == "double") return ReadOne(line, std::stod(initial));
  return ReadOne(line, initial == "-" ? std::string() : initial);
}

TEST(ObjectStreamReader, ValueTexts) {
  const std::string text =
      testing_support::ReadTestData("objectstream/values.txt");
  EXPECT_EQ(testing_support::RunTranscript(text, ReadCommand), text);
}

TEST(ObjectStreamReader, HeadAndObjectLines) {
  StreamFile any("<?xml whatever\n<!DOCTYPE\n<OstraXMLRoot a=\"1\" b='2'>");
  EXPECT_TRUE(ParseStartXML(any.in()));
  // A failed line ends the call; the lines read so far stay consumed.
  StreamFile bad("<?xml version=\"1.0\"?>\n<!doctype r>\n</Obj>");
  EXPECT_FALSE(ParseStartXML(bad.in()));
  EXPECT_TRUE(ParseEndObj(bad.in()));
  StreamFile no_root("<?xml?>\n<!DOCTYPE r>\n<Root>");
  EXPECT_FALSE(ParseStartXML(no_root.in()));  // "?xml?" is not "?xml"

  // One empty line before an object is skipped, two are not.
  StreamFile one(
      "\n<Obj name=\"A\">\n\n<Obj name=\"B\">\r\n\r\n<Obj name=\"C\">");
  EXPECT_TRUE(ParseStartObj(one.in(), "A"));
  EXPECT_TRUE(ParseStartObj(one.in(), "B"));
  EXPECT_TRUE(ParseStartObj(one.in(), "C"));
  StreamFile two("\n\n<Obj name=\"A\">");
  EXPECT_FALSE(ParseStartObj(two.in(), "A"));
  // Names match byte for byte, with blanks between the tokens.
  StreamFile names(
      "\t<Obj name=\"a b=<c>\">\n<Obj name=\"A\">\n<Obj name=\"\">\n"
      "<Obj  name=\"A\">\n<Obj id=\"A\">\n<Obj name=\"a\">");
  EXPECT_TRUE(ParseStartObj(names.in(), "a b=<c>"));
  EXPECT_FALSE(ParseStartObj(names.in(), "a"));  // case-sensitive
  EXPECT_FALSE(ParseStartObj(names.in(), ""));   // the token is ">"
  EXPECT_TRUE(ParseStartObj(names.in(), "A"));
  EXPECT_FALSE(ParseStartObj(names.in(), "A"));  // not "name"
  EXPECT_FALSE(ParseStartObj(names.in(), std::string("a\0b", 3)));
}

// Members and end tags skip nothing; a failed member leaves the target alone
// but consumes its line; a last line without a line end reads.
TEST(ObjectStreamReader, MemberAndEndLines) {
  StreamFile file(
      "\n<Int value=\"1\"/>\n\n</Obj>\n<Long value=\"12\"/>\n<Int value=\"3\"/>"
      "\n<Long value=\"5\"/>\n</Obj>");
  int number = 9;
  EXPECT_FALSE(ParseValue(file.in(), number));
  EXPECT_EQ(number, 9);
  EXPECT_TRUE(ParseValue(file.in(), number));
  EXPECT_EQ(number, 1);
  EXPECT_FALSE(ParseEndObj(file.in()));
  EXPECT_TRUE(ParseEndObj(file.in()));
  EXPECT_FALSE(ParseValue(file.in(), number));
  EXPECT_TRUE(ParseValue(file.in(), number));
  EXPECT_EQ(number, 3);
  long wide = 0;
  EXPECT_TRUE(ParseValue(file.in(), wide));
  EXPECT_EQ(wide, 5);
  EXPECT_TRUE(ParseEndObj(file.in()));
  EXPECT_FALSE(ParseEndObj(file.in()));  // nothing left
}

// A line holds 255 characters; a longer one fails, and so does every later
// call until the state is cleared.
TEST(ObjectStreamReader, LineLimitSetsStickyFailBit) {
  const std::string head = "<String value=\"";
  const std::string fits(255 - head.size() - 3, 'x');
  EXPECT_EQ(ReadOne(head + fits + "\"/>", std::string()),
            "found \"" + fits + "\"");
  StreamFile file(head + fits + "y\"/>\n</Obj>\n</Obj>");
  std::string target = "kept";
  EXPECT_FALSE(ParseValue(file.in(), target));
  EXPECT_EQ(target, "kept");
  EXPECT_FALSE(ParseEndObj(file.in()));  // a good line, but the bit sticks
  file.in().clear();
  EXPECT_FALSE(ParseEndObj(file.in()));  // the rest of the long line
  EXPECT_TRUE(ParseEndObj(file.in()));
}

// An object with a member of every type.
struct Object {
  std::string name;
  int tabs;
  int i;
  unsigned u;
  bool b;
  long l;
  double d;
  std::string s;
};

// Names of printable ASCII but the double quote (which ends a name);
// integers that are extremes or any bits; doubles that are special, short
// decimals or any finite bits; strings of any bytes but NUL (which ends a
// line in the reader), short enough that the escaped line stays within 255
// characters.
std::vector<Object> Generate(int count) {
  std::mt19937_64 rng(424242);
  auto below = [&rng](int n) {
    return static_cast<int>(rng() % static_cast<std::uint64_t>(n));
  };
  auto integer = [&] {
    const std::uint64_t extremes[] = {
        0, 1, ~0ull, 1ull << 63, ~0ull >> 1, 1ull << 31, ~0ull >> 33};
    return below(2) ? extremes[below(7)] : rng() >> below(64);
  };
  auto text = [&](int min_length, int lengths, int low, int range) {
    std::string s;
    for (int n = min_length + below(lengths); n > 0; --n) {
      const char c = static_cast<char>(below(4) == 0 ? low + below(range)
                                                     : ' ' + below(95));
      s += c == '"' && low == ' ' ? '_' : c;
    }
    return s;
  };
  const double missing = MV::gMissingValue;
  const double next = std::nextafter(missing, 0.0);
  const double tiny = std::numeric_limits<double>::denorm_min();
  const double specials[] = {0.0,     -0.0, missing, next, DBL_MAX,
                             DBL_MIN, tiny, 1e15,    1e-5, 1.0 / 3};
  std::vector<Object> objects;
  for (int n = 0; n < count; ++n) {
    Object o{text(1, 16, ' ', 95),
             below(7) - 1,
             static_cast<int>(integer()),
             static_cast<unsigned>(integer()),
             below(2) == 1,
             static_cast<long>(integer()),
             specials[below(10)],
             text(0, 31, 1, 255)};
    if (below(3) == 0) {
      o.d = (below(2001) - 1000) * std::pow(10.0, below(41) - 20);
    } else if (below(2) == 0) {
      do {
        const std::uint64_t bits = rng();
        std::memcpy(&o.d, &bits, sizeof o.d);
      } while (!std::isfinite(o.d));
    }
    objects.push_back(o);
  }
  return objects;
}

// The stream that the writer makes of `objects`, with the head a host writes.
std::string Written(const std::vector<Object>& objects) {
  std::ostringstream out;
  std::unique_ptr<XMLDocType> docType(
      XMLDocType::Create("OstraXMLRoot", "savexml.dtd", 0));
  ExportFormat format;
  docType->ToStream(out, format, false);
  WriteHeader(out, "(c) round trip");
  for (const Object& o : objects) {
    const XMLObj obj(o.name, o.tabs);
    obj.StartObj(out);
    obj.WriteSubElement(out, o.i);
    obj.WriteSubElement(out, o.u);
    obj.WriteSubElement(out, o.b);
    obj.WriteSubElement(out, o.l);
    obj.WriteSubElement(out, o.d);
    obj.WriteSubElement(out, o.s);
    obj.EndObj(out);
  }
  EndRoot(out);
  return out.str();
}

// A string member comes back as written: escaped as an attribute value.
std::string Escaped(const std::string& value) {
  std::unique_ptr<XMLAttribute> attribute(XMLAttribute::Create("v", value));
  std::string text;
  ExportFormat format;
  attribute->ToString(text, format);
  return text.substr(3, text.size() - 4);  // v="...", without the quotes
}

void ReadBack(std::ifstream& in, const std::vector<Object>& objects) {
  ASSERT_TRUE(ParseStartXML(in));
  for (const Object& o : objects) {
    Object got{"", 0, ~o.i, ~o.u, !o.b, ~o.l, std::nan(""), o.s + "x"};
    ASSERT_TRUE(ParseStartObj(in, o.name) && ParseValue(in, got.i) &&
                ParseValue(in, got.u) && ParseValue(in, got.b) &&
                ParseValue(in, got.l) && ParseValue(in, got.d) &&
                ParseValue(in, got.s) && ParseEndObj(in))
        << o.name;
    EXPECT_EQ(got.i, o.i);
    EXPECT_EQ(got.u, o.u);
    EXPECT_EQ(got.b, o.b);
    EXPECT_EQ(got.l, o.l);
    // The missing value's neighbour reads back as the missing value.
    EXPECT_EQ(Format(got.d, false, nullptr), Format(o.d, false, nullptr));
    EXPECT_EQ(got.s, Escaped(o.s));
  }
}

class ObjectStreamRoundTrip : public ::testing::TestWithParam<const char*> {};

TEST_P(ObjectStreamRoundTrip, GeneratedObjectsReadBackInTwoThreadsAtOnce) {
  const std::string old_c_locale = std::setlocale(LC_ALL, nullptr);
  std::locale old;
  try {
    old = std::locale::global(std::locale(GetParam()));  // and the C locale
  } catch (const std::runtime_error&) {
    GTEST_SKIP() << "locale " << GetParam() << " is not installed";
  }
  EXPECT_STREQ(std::localeconv()->decimal_point,
               std::string(GetParam()) == "C" ? "." : ",");
  const std::vector<Object> objects = Generate(3000);
  std::string text = Written(objects);
  StreamFile lf(text);
  for (size_t at = text.find('\n'); at != std::string::npos;
       at = text.find('\n', at + 2)) {
    text.insert(at, 1, '\r');
  }
  StreamFile crlf(text);
  std::thread other([&] { ReadBack(crlf.in(), objects); });
  ReadBack(lf.in(), objects);
  other.join();
  std::locale::global(old);
  std::setlocale(LC_ALL, old_c_locale.c_str());
}

INSTANTIATE_TEST_SUITE_P(Locales, ObjectStreamRoundTrip,
                         ::testing::Values("C", "de_DE.UTF-8"));

}  // namespace
}  // namespace OstraTimeXML
