// Test helpers for the object stream: temporary files to read from, the head
// of a stream, and the escaped form in which a string value comes back.
#ifndef TSXML_TESTS_OBJECTSTREAM_OBJECT_STREAM_TEST_UTIL_H
#define TSXML_TESTS_OBJECTSTREAM_OBJECT_STREAM_TEST_UTIL_H

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "gtest/gtest.h"
#include "tsxml/objectstream/xml_obj.h"
#include "tsxml/xml/xml_node.h"

namespace objectstream_test {

// A temporary file path, unique within the machine's running tests; the file
// is removed with the object.
class TempPath {
 public:
  TempPath() {
    static std::atomic<unsigned> counter{0};
    path_ = ::testing::TempDir() + "tsxml_objectstream_" +
            std::to_string(::getpid()) + "_" + std::to_string(++counter);
  }
  ~TempPath() { std::remove(path_.c_str()); }
  TempPath(const TempPath&) = delete;
  TempPath& operator=(const TempPath&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// A temporary file holding `bytes`, open for reading from its start.
class StreamFile {
 public:
  explicit StreamFile(const std::string& bytes) {
    std::ofstream(file_.path(), std::ios::binary) << bytes;
    in_.open(file_.path(), std::ios::binary);
  }

  std::ifstream& in() { return in_; }

 private:
  TempPath file_;
  std::ifstream in_;
};

// The text of `value` as a string member's value is written and read back:
// escaped as an attribute value.
inline std::string Escaped(const std::string& value) {
  std::unique_ptr<OstraTimeXML::XMLAttribute> attribute(
      OstraTimeXML::XMLAttribute::Create("v", value));
  std::string text;
  OstraTimeXML::ExportFormat format;
  attribute->ToString(text, format);
  return text.substr(3, text.size() - 4);  // v="...", without the quotes
}

// The head of a stream as a host writes it: the document type node with
// "OstraXMLRoot" and "savexml.dtd", then WriteHeader(copyright).
inline std::string StreamHead(const std::string& copyright) {
  std::unique_ptr<OstraTimeXML::XMLDocType> docType(
      OstraTimeXML::XMLDocType::Create("OstraXMLRoot", "savexml.dtd", 0));
  std::ostringstream os;
  OstraTimeXML::ExportFormat format;
  docType->ToStream(os, format, false);
  OstraTimeXML::WriteHeader(os, copyright);
  return os.str();
}

}  // namespace objectstream_test

#endif  // TSXML_TESTS_OBJECTSTREAM_OBJECT_STREAM_TEST_UTIL_H
