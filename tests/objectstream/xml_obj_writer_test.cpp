#include <climits>
#include <cmath>
#include <sstream>
#include <string>

#include "gtest/gtest.h"
#include "object_stream_test_util.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/objectstream/xml_obj.h"

namespace {

using OstraTimeXML::XMLObj;

// The bytes that one member write of `value` puts out.
template <typename T>
std::string Member(const XMLObj& obj, const T& value) {
  std::ostringstream os;
  EXPECT_EQ(obj.WriteSubElement(os, value), 0);
  return os.str();
}

TEST(XMLObjWriter, ObjectWithOneMember) {
  const XMLObj obj("A", 1);
  std::ostringstream os;
  EXPECT_EQ(obj.StartObj(os), 0);
  EXPECT_EQ(obj.WriteSubElement(os, 3), 0);
  EXPECT_EQ(obj.EndObj(os), 0);
  EXPECT_EQ(os.str(), "\n\t<Obj name=\"A\">\n\t\t<Int value=\"3\"/>\n\t</Obj>");
  EXPECT_EQ(obj.GetName(), "A");
  EXPECT_EQ(obj.GetNTabs(), 1);
}

TEST(XMLObjWriter, TagsAndValueTextOfEachType) {
  const XMLObj obj("A", 1);
  EXPECT_EQ(Member(obj, true), "\n\t\t<Int value=\"1\"/>");
  EXPECT_EQ(Member(obj, INT_MIN), "\n\t\t<Int value=\"-2147483648\"/>");
  EXPECT_EQ(Member(obj, UINT_MAX), "\n\t\t<Int value=\"4294967295\"/>");
  EXPECT_EQ(Member(obj, LONG_MAX),
            "\n\t\t<Long value=\"9223372036854775807\"/>");
  EXPECT_EQ(Member(obj, LONG_MIN),
            "\n\t\t<Long value=\"-9223372036854775808\"/>");
  EXPECT_EQ(Member(obj, 1.5), "\n\t\t<Double value=\"1.5\"/>");
  EXPECT_EQ(Member(obj, MV::gMissingValue),
            "\n\t\t<Double value=\"Missing\"/>");
  // Only the missing value itself is "Missing"; its neighbour is a number.
  EXPECT_EQ(Member(obj, std::nextafter(MV::gMissingValue, 0.0)),
            "\n\t\t<Double value=\"-1.79769313486232e+308\"/>");
}

TEST(XMLObjWriter, StringValuesAreEscaped) {
  const XMLObj obj("A", 1);
  auto line = [&](const std::string& value) { return Member(obj, value); };
  EXPECT_EQ(line(""), "\n\t\t<String value=\"\"/>");
  EXPECT_EQ(line(" lead"), "\n\t\t<String value=\"&#32;lead\"/>");
  EXPECT_EQ(line("say \"hi\""), "\n\t\t<String value=\"say &quot;hi&quot;\"/>");
}

TEST(XMLObjWriter, IndentationFollowsNTabs) {
  auto whole = [](const XMLObj& obj) {
    std::ostringstream os;
    obj.StartObj(os);
    obj.WriteSubElement(os, 2.5);
    obj.EndObj(os);
    return os.str();
  };
  EXPECT_EQ(whole(XMLObj("top", 0)),
            "\n<Obj name=\"top\">\n\t<Double value=\"2.5\"/>\n</Obj>");
  EXPECT_EQ(whole(XMLObj("neg", -1)),
            "\n<Obj name=\"neg\">\n<Double value=\"2.5\"/>\n</Obj>");
  EXPECT_EQ(whole(XMLObj("deep", 3)),
            "\n\t\t\t<Obj name=\"deep\">\n\t\t\t\t<Double value=\"2.5\"/>"
            "\n\t\t\t</Obj>");
}

TEST(XMLObjWriter, RootLines) {
  std::ostringstream os;
  EXPECT_EQ(OstraTimeXML::StartRoot(os, "x"), 0);
  EXPECT_EQ(os.str(), "<OstraXMLRoot copyright=\"x\">");
  os.str("");
  OstraTimeXML::WriteHeader(os, "(c) A & \"B\"");
  EXPECT_EQ(os.str(), "<OstraXMLRoot copyright=\"(c) A &amp; &quot;B&quot;\">");
  os.str("");
  EXPECT_EQ(OstraTimeXML::EndRoot(os), 0);
  EXPECT_EQ(OstraTimeXML::EndHeader(os), 0);
  EXPECT_EQ(os.str(), "\n</OstraXMLRoot>\n</OstraXMLRoot>");
}

TEST(XMLObjWriter, WholeStreamWithDocTypeHead) {
  std::ostringstream os;
  os << objectstream_test::StreamHead("c");
  const XMLObj outer("Outer", 1);
  const XMLObj inner("Inner", 2);
  outer.StartObj(os);
  outer.WriteSubElement(os, std::string("s"));
  inner.StartObj(os);
  inner.WriteSubElement(os, 7L);
  inner.EndObj(os);
  outer.WriteSubElement(os, 4u);
  outer.EndObj(os);
  OstraTimeXML::EndRoot(os);
  EXPECT_EQ(os.str(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
            "<!DOCTYPE OstraXMLRoot SYSTEM \"savexml.dtd\">\n"
            "<OstraXMLRoot copyright=\"c\">\n"
            "\t<Obj name=\"Outer\">\n"
            "\t\t<String value=\"s\"/>\n"
            "\t\t<Obj name=\"Inner\">\n"
            "\t\t\t<Long value=\"7\"/>\n"
            "\t\t</Obj>\n"
            "\t\t<Int value=\"4\"/>\n"
            "\t</Obj>\n"
            "</OstraXMLRoot>");
}

}  // namespace
