// Object-stream writer: named objects with typed scalar members, saved one
// token a line under the root element "OstraXMLRoot" (document type system
// identifier "savexml.dtd"); xml_obj_reader.h reads them back.
//
// Every line after the first is begun by the line feed that its writer puts in
// front of it; no writer ends its own line, so a stream has no line feed after
// its last line. Each call gathers its text in one string and hands it to the
// stream in one unformatted write: no byte is converted. Every writer returns
// 0 and does not look at the stream's state.
//
// A stream head: XMLDocType::Create("OstraXMLRoot", "savexml.dtd", 0) written
// with ToStream (it ends with the line feed the root needs), then WriteHeader.
#ifndef TSXML_OBJECTSTREAM_XML_OBJ_H
#define TSXML_OBJECTSTREAM_XML_OBJ_H

#include <iosfwd>
#include <string>

#include "tsxml/base/export.h"

namespace OstraTimeXML {

// The scope of one named object: its start tag, its members and its end tag.
// Nesting is the caller's: a nested object gets a larger `nTabs`. A plain
// value, copyable and movable.
class TSXML_API XMLObj {
 public:
  // Stores the object's name and its indentation in tabs.
  XMLObj(std::string name, int nTabs);

  const std::string& GetName() const { return name_; }
  int GetNTabs() const { return nTabs_; }

  // Writes LF, nTabs tabs (none when nTabs <= 0) and <Obj name="NAME">, the
  // name verbatim and unescaped. Returns 0.
  int StartObj(std::ostream& os) const;

  // Each WriteSubElement writes one member line: LF, nTabs + 1 tabs (none when
  // nTabs < 0) and <TAG value="TEXT"/>, TEXT escaped as an attribute value.
  // Returns 0.
  //
  // Tag "Int", the number.
  int WriteSubElement(std::ostream& os, int value) const;
  // Tag "Int", the number (all 32 bits, read back by ParseValue(unsigned&)).
  int WriteSubElement(std::ostream& os, unsigned int value) const;
  // Tag "Int", 1 for true and 0 for false.
  int WriteSubElement(std::ostream& os, bool value) const;
  // Tag "Long", the exact decimal digits of all 64 bits (the same text as the
  // 15-digit number route for every |value| < 1e15, so every 32-bit value is
  // written as the format has it); ParseValue(long&) reads all 64 bits back.
  int WriteSubElement(std::ostream& os, long value) const;
  // Tag "Double", "Missing" for MV::gMissingValue (the negated largest
  // double), else Format(value, false, nullptr): 15 digits, a point.
  int WriteSubElement(std::ostream& os, double value) const;
  // Tag "String", the string in its escaped form (e.g. `"` as &quot;).
  int WriteSubElement(std::ostream& os, const std::string& value) const;
  // A string literal would silently pick the bool overload: pass std::string.
  int WriteSubElement(std::ostream& os, const char* value) const = delete;

  // Writes LF, nTabs tabs (none when nTabs <= 0) and </Obj>. Returns 0.
  int EndObj(std::ostream& os) const;

 private:
  std::string name_;
  int nTabs_;
};

// Writes <OstraXMLRoot copyright="TEXT">, TEXT escaped as an attribute value,
// with no line feed before or after. Returns 0.
TSXML_API int StartRoot(std::ostream& os, const std::string& copyrightText);

// The same as StartRoot. Returns 0.
TSXML_API int WriteHeader(std::ostream& os, const std::string& copyrightText);

// Writes LF and </OstraXMLRoot>. Returns 0.
TSXML_API int EndRoot(std::ostream& os);

// The same as EndRoot. Returns 0.
TSXML_API int EndHeader(std::ostream& os);

}  // namespace OstraTimeXML

#endif  // TSXML_OBJECTSTREAM_XML_OBJ_H
