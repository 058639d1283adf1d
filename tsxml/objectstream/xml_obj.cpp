#include "tsxml/objectstream/xml_obj.h"

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "tsxml/base/missing_value.h"
#include "tsxml/xml/xml_node.h"

namespace OstraTimeXML {
namespace {

// A line feed and `tabs` tabs: how every line but the first begins.
std::string LineStart(std::size_t tabs) {
  std::string text(1, '\n');
  text.append(tabs, '\t');
  return text;
}

// Tabs of an object's start and end tags: none for nTabs <= 0.
std::size_t ObjectTabs(int nTabs) {
  return nTabs > 0 ? static_cast<std::size_t>(nTabs) : 0;
}

// Tabs of a member: one more than the object's, none for nTabs < 0. Counted
// in size_t, so INT_MAX does not overflow.
std::size_t MemberTabs(int nTabs) {
  return nTabs >= 0 ? static_cast<std::size_t>(nTabs) + 1 : 0;
}

// Appends the escaped text name="value" of `attribute` to `text`; takes
// ownership of `attribute`.
void AppendAttribute(std::string& text, XMLAttribute* attribute) {
  std::unique_ptr<XMLAttribute> owned(attribute);
  ExportFormat format;
  owned->ToString(text, format);
}

int Put(std::ostream& os, const std::string& text) {
  os.write(text.data(), static_cast<std::streamsize>(text.size()));
  return 0;
}

// Writes the member line <tag value="..."/>; takes ownership of `value`, the
// attribute named "value".
int PutMember(std::ostream& os, int nTabs, const char* tag,
              XMLAttribute* value) {
  std::unique_ptr<XMLAttribute> owned(value);
  std::string text = LineStart(MemberTabs(nTabs));
  text += '<';
  text += tag;
  text += ' ';
  AppendAttribute(text, owned.release());
  text += "/>";
  return Put(os, text);
}

int PutNumber(std::ostream& os, int nTabs, const char* tag, double value) {
  return PutMember(os, nTabs, tag, XMLAttribute::Create("value", value));
}

int PutText(std::ostream& os, int nTabs, const char* tag,
            const std::string& value) {
  return PutMember(os, nTabs, tag, XMLAttribute::Create("value", value));
}

}  // namespace

XMLObj::XMLObj(std::string name, int nTabs)
    : name_(std::move(name)), nTabs_(nTabs) {}

int XMLObj::StartObj(std::ostream& os) const {
  std::string text = LineStart(ObjectTabs(nTabs_));
  text += "<Obj name=\"";
  text += name_;
  text += "\">";
  return Put(os, text);
}

int XMLObj::WriteSubElement(std::ostream& os, int value) const {
  return PutNumber(os, nTabs_, "Int", static_cast<double>(value));
}

int XMLObj::WriteSubElement(std::ostream& os, unsigned int value) const {
  return PutNumber(os, nTabs_, "Int", static_cast<double>(value));
}

int XMLObj::WriteSubElement(std::ostream& os, bool value) const {
  return PutNumber(os, nTabs_, "Int", value ? 1.0 : 0.0);
}

int XMLObj::WriteSubElement(std::ostream& os, long value) const {
  return PutText(os, nTabs_, "Long", std::to_string(value));
}

int XMLObj::WriteSubElement(std::ostream& os, double value) const {
  if (MV::IsMissing(value)) return PutText(os, nTabs_, "Double", "Missing");
  return PutNumber(os, nTabs_, "Double", value);
}

int XMLObj::WriteSubElement(std::ostream& os, const std::string& value) const {
  return PutText(os, nTabs_, "String", value);
}

int XMLObj::EndObj(std::ostream& os) const {
  return Put(os, LineStart(ObjectTabs(nTabs_)) + "</Obj>");
}

int StartRoot(std::ostream& os, const std::string& copyrightText) {
  std::string text = "<OstraXMLRoot ";
  AppendAttribute(text, XMLAttribute::Create("copyright", copyrightText));
  text += '>';
  return Put(os, text);
}

int WriteHeader(std::ostream& os, const std::string& copyrightText) {
  return StartRoot(os, copyrightText);
}

int EndRoot(std::ostream& os) { return Put(os, "\n</OstraXMLRoot>"); }

int EndHeader(std::ostream& os) { return EndRoot(os); }

}  // namespace OstraTimeXML
