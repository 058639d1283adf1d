#include "tsxml/objectstream/xml_obj_reader.h"

#include <climits>
#include <string>
#include <utility>

#include "gtest/gtest.h"
#include "object_stream_test_util.h"
#include "tsxml/base/missing_value.h"

namespace {

using objectstream_test::StreamFile;
using OstraTimeXML::ParseEndObj;
using OstraTimeXML::ParseStartObj;
using OstraTimeXML::ParseStartXML;
using OstraTimeXML::ParseValue;

// Reads the one member line `line` into a target that starts as `initial`;
// returns whether ParseValue found it, and the target afterwards.
template <typename T>
std::pair<bool, T> ReadOne(const std::string& line, T initial) {
  StreamFile file(line);
  T value = initial;
  const bool found = ParseValue(file.in(), value);
  return {found, value};
}

TEST(ObjectStreamReader, HeadLooksOnlyAtFirstTokens) {
  StreamFile any("<?xml whatever\n<!DOCTYPE\n<OstraXMLRoot a=\"1\" b='2'>");
  EXPECT_TRUE(ParseStartXML(any.in()));
  // A failed line ends the function; the lines read so far stay consumed.
  StreamFile bad("<?xml version=\"1.0\"?>\n<!doctype r>\n</Obj>");
  EXPECT_FALSE(ParseStartXML(bad.in()));
  EXPECT_TRUE(ParseEndObj(bad.in()));
  StreamFile noRoot("<?xml?>\n<!DOCTYPE r>\n<Root>");
  EXPECT_FALSE(ParseStartXML(noRoot.in()));  // "?xml?" is not "?xml"
}

TEST(ObjectStreamReader, LineLimitSetsStickyFailBit) {
  const std::string head = "<String value=\"";
  const std::string tail = "\"/>";
  const std::string fits(255 - head.size() - tail.size(), 'x');
  auto [found, value] = ReadOne(head + fits + tail, std::string());
  EXPECT_TRUE(found);
  EXPECT_EQ(value, fits);

  StreamFile file(head + fits + "y" + tail + "\n</Obj>\n</Obj>");
  std::string target = "kept";
  EXPECT_FALSE(ParseValue(file.in(), target));
  EXPECT_EQ(target, "kept");
  EXPECT_TRUE(file.in().fail());
  EXPECT_FALSE(ParseEndObj(file.in()));  // a good line, but the bit sticks
  file.in().clear();
  EXPECT_FALSE(ParseEndObj(file.in()));  // the rest of the long line
  EXPECT_TRUE(ParseEndObj(file.in()));
}

TEST(ObjectStreamReader, OneEmptyLineBeforeObjectIsSkipped) {
  StreamFile one("\n<Obj name=\"A\">\n\n<Obj name=\"B\">");
  EXPECT_TRUE(ParseStartObj(one.in(), "A"));
  EXPECT_TRUE(ParseStartObj(one.in(), "B"));
  StreamFile two("\n\n<Obj name=\"A\">");
  EXPECT_FALSE(ParseStartObj(two.in(), "A"));
  StreamFile crlf("\r\n<Obj name=\"A\">\r\n");
  EXPECT_TRUE(ParseStartObj(crlf.in(), "A"));
  // Members and end tags skip nothing.
  StreamFile member("\n<Int value=\"1\"/>\n\n</Obj>");
  int value = 5;
  EXPECT_FALSE(ParseValue(member.in(), value));
  EXPECT_EQ(value, 5);
  EXPECT_TRUE(ParseValue(member.in(), value));
  EXPECT_FALSE(ParseEndObj(member.in()));
  EXPECT_TRUE(ParseEndObj(member.in()));
}

TEST(ObjectStreamReader, ObjectNameMatchesExactly) {
  StreamFile file(
      "\t<Obj name=\"a b=<c>\">\n<Obj name=\"A\">\n<Obj name=\"\">\n"
      "<Obj  name=\"A\">\n<Obj id=\"A\">");
  EXPECT_TRUE(ParseStartObj(file.in(), "a b=<c>"));
  EXPECT_FALSE(ParseStartObj(file.in(), "a"));  // case-sensitive
  EXPECT_FALSE(ParseStartObj(file.in(), ""));   // the token is ">"
  EXPECT_TRUE(ParseStartObj(file.in(), "A"));   // blanks between tokens
  EXPECT_FALSE(ParseStartObj(file.in(), "A"));  // not "name"
  StreamFile nul(std::string("<Obj name=\"a\">"));
  EXPECT_FALSE(ParseStartObj(nul.in(), std::string("a\0b", 3)));
}

TEST(ObjectStreamReader, TagAndKeyMustMatch) {
  EXPECT_EQ(ReadOne("<Int value=\"4\"/>", 9), std::make_pair(true, 4));
  EXPECT_EQ(ReadOne("<int value=\"4\"/>", 9), std::make_pair(false, 9));
  EXPECT_EQ(ReadOne("<Int  value=\"4\"/>", 9), std::make_pair(false, 9));
  EXPECT_EQ(ReadOne("<Int val=\"4\"/>", 9), std::make_pair(false, 9));
  EXPECT_EQ(ReadOne("<Int value=", 9), std::make_pair(false, 9));
  EXPECT_EQ(ReadOne("<Int", 9), std::make_pair(false, 9));
  EXPECT_EQ(ReadOne("", 9), std::make_pair(false, 9));
  EXPECT_EQ(ReadOne("<Double value=\"4\"/>", 9L), std::make_pair(false, 9L));
}

TEST(ObjectStreamReader, IntReadOfLongLineConsumesTheLine) {
  StreamFile file("<Long value=\"12\"/>\n<Int value=\"3\"/>");
  int value = -1;
  EXPECT_FALSE(ParseValue(file.in(), value));
  EXPECT_EQ(value, -1);
  EXPECT_TRUE(ParseValue(file.in(), value));
  EXPECT_EQ(value, 3);
}

TEST(ObjectStreamReader, IntegerConversions) {
  EXPECT_EQ(ReadOne("<Int value=\"12abc\"/>", 0), std::make_pair(true, 12));
  EXPECT_EQ(ReadOne("<Int value=\"\"/>", 7), std::make_pair(true, 0));
  EXPECT_EQ(ReadOne("<Int value=\"-1\"/>", 0u), std::make_pair(true, UINT_MAX));
  EXPECT_EQ(ReadOne("<Int value=\"4294967298.7\"/>", 0u),
            std::make_pair(true, 2u));
  EXPECT_EQ(ReadOne("<Int value=\"1e300\"/>", 5u).first, true);
  EXPECT_EQ(ReadOne("<Int value=\"inf\"/>", 5u), std::make_pair(true, 0u));
  EXPECT_EQ(ReadOne("<Int value=\"nan\"/>", 5u), std::make_pair(true, 0u));
  EXPECT_EQ(ReadOne("<Long value=\"99999999999999999999\"/>", 0L),
            std::make_pair(true, LONG_MAX));
}

TEST(ObjectStreamReader, BoolTakesOnlyZeroAndOne) {
  EXPECT_EQ(ReadOne("<Int value=\"1\"/>", false), std::make_pair(true, true));
  EXPECT_EQ(ReadOne("<Int value=\"2\"/>", true), std::make_pair(false, true));
  EXPECT_EQ(ReadOne("<Int value=\"-1\"/>", true), std::make_pair(false, true));
}

TEST(ObjectStreamReader, DoubleValues) {
  EXPECT_EQ(ReadOne("<Double value=\"Missing\"/>", 0.0),
            std::make_pair(true, MV::gMissingValue));
  EXPECT_EQ(ReadOne("<Double value=\"1,5\"/>", 0.0), std::make_pair(true, 1.0));
  // A failed extraction still answers true; the target holds its result.
  EXPECT_EQ(ReadOne("<Double value=\"abc\"/>", 3.0), std::make_pair(true, 0.0));
  EXPECT_EQ(ReadOne("<Double value=\"Missing\"", 3.0).first, true);
  EXPECT_EQ(ReadOne("<Double value=", 3.0), std::make_pair(false, 3.0));
}

TEST(ObjectStreamReader, StringValues) {
  using S = std::string;
  EXPECT_EQ(ReadOne("<String value=\"\"/>", S("old")),
            std::make_pair(true, S()));
  EXPECT_EQ(ReadOne("<String value=\"/>\"/>", S()),
            std::make_pair(true, S("/>")));
  EXPECT_EQ(ReadOne("\t<String value=\"a b=c\"/>", S()),
            std::make_pair(true, S("a b=c")));
  // No value text at all is the empty string.
  EXPECT_EQ(ReadOne("<String value=", S("old")), std::make_pair(true, S()));
  EXPECT_EQ(ReadOne("<String value=\"\"", S("old")), std::make_pair(true, S()));
  EXPECT_EQ(ReadOne("<String value=\"\"/>x", S()),
            std::make_pair(true, S("/>x")));
  EXPECT_EQ(ReadOne("<String valu=\"a\"/>", S("old")),
            std::make_pair(false, S("old")));
}

TEST(ObjectStreamReader, LastLineWithoutLineEnd) {
  StreamFile file("<Long value=\"5\"/>\n</Obj>");
  long value = 0;
  EXPECT_TRUE(ParseValue(file.in(), value));
  EXPECT_EQ(value, 5);
  EXPECT_TRUE(ParseEndObj(file.in()));
  EXPECT_TRUE(file.in().eof());
  EXPECT_FALSE(ParseEndObj(file.in()));  // nothing left
}

}  // namespace
