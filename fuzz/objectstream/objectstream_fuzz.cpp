// Arbitrary bytes as an object stream, taken by a fixed sequence of reader
// calls. Every value that parsed is written again, read back and compared:
// integers and the missing value exactly, doubles to their 15-digit text,
// strings as their escaped form.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "tsxml/base/missing_value.h"
#include "tsxml/objectstream/xml_obj.h"
#include "tsxml/objectstream/xml_obj_reader.h"
#include "tsxml/xml/number_text.h"
#include "tsxml/xml/xml_node.h"

namespace {

using Value = std::variant<int, unsigned int, long, double, std::string, bool>;

void Check(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "objectstream_fuzz: %s\n", what);
    std::abort();
  }
}

// A file of this process for the given role: in TMPDIR if set, else in
// /dev/shm where it exists (memory, several times faster than a disk), else
// in /tmp.
const std::string& FilePath(int role) {
  static const std::string base = [] {
    const char* dir = std::getenv("TMPDIR");
    if (dir == nullptr || *dir == '\0') {
      dir = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    }
    return std::string(dir) + "/tsxml_objectstream_fuzz_" +
           std::to_string(::getpid()) + "_";
  }();
  static const std::string paths[2] = {base + "0", base + "1"};
  return paths[role];
}

// Writes `size` bytes to the file of `role` and opens it for reading into
// `in`; the file is unlinked at once, so none is left behind.
void PutInFile(int role, const char* data, std::size_t size,
               std::ifstream& in) {
  const std::string& path = FilePath(role);
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(data, static_cast<std::streamsize>(size));
  in.open(path, std::ios::binary);
  std::remove(path.c_str());
}

std::string Escaped(const std::string& value) {
  std::unique_ptr<OstraTimeXML::XMLAttribute> attribute(
      OstraTimeXML::XMLAttribute::Create("v", value));
  std::string text;
  OstraTimeXML::ExportFormat format;
  attribute->ToString(text, format);
  return text.substr(3, text.size() - 4);
}

std::string NumberText(double value) {
  return OstraTimeXML::Format(value, false, nullptr);
}

template <typename T>
void ReadValue(std::ifstream& in, std::vector<Value>& values) {
  T value{};
  if (!OstraTimeXML::ParseValue(in, value)) return;
  if constexpr (std::is_same_v<T, std::string>) {
    Check(value.find_first_of(std::string("\"\r\n\0", 4)) == std::string::npos,
          "string value holds a delimiter");
    // Longer ones would not fit a line once escaped.
    if (Escaped(value).size() > 200) return;
  }
  values.push_back(value);
}

// The calls of one pass over the input, in a fixed order.
void ReadStep(std::ifstream& in, int step, std::vector<Value>& values) {
  switch (step % 8) {
    case 0:
      OstraTimeXML::ParseStartObj(in, "A");
      break;
    case 1:
      ReadValue<int>(in, values);
      break;
    case 2:
      ReadValue<unsigned int>(in, values);
      break;
    case 3:
      ReadValue<long>(in, values);
      break;
    case 4:
      ReadValue<double>(in, values);
      break;
    case 5:
      ReadValue<std::string>(in, values);
      break;
    case 6:
      ReadValue<bool>(in, values);
      break;
    default:
      OstraTimeXML::ParseEndObj(in);
      break;
  }
}

// Reads back one value written from `want` and compares.
void CheckReadBack(std::ifstream& in, const Value& want) {
  std::visit(
      [&](const auto& expected) {
        using T = std::decay_t<decltype(expected)>;
        T got{};
        Check(OstraTimeXML::ParseValue(in, got), "written value not read");
        if constexpr (std::is_same_v<T, double>) {
          if (MV::IsMissing(expected)) {
            Check(MV::IsMissing(got), "missing value changed");
          } else {
            Check(NumberText(got) == NumberText(expected), "double changed");
          }
        } else if constexpr (std::is_same_v<T, std::string>) {
          Check(got == Escaped(expected), "string not read as escaped");
        } else {
          Check(got == expected, "integer changed");
        }
      },
      want);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<Value> values;
  {
    std::ifstream in;
    PutInFile(0, reinterpret_cast<const char*>(data), size, in);
    OstraTimeXML::ParseStartXML(in);
    for (int step = 0; step < 4096 && !in.eof(); ++step) {
      if (in.fail() && !in.bad()) in.clear();  // go on behind a long line
      ReadStep(in, step, values);
    }
  }

  const OstraTimeXML::XMLObj obj("A", 1);
  std::ostringstream written;
  for (const Value& value : values) {
    std::visit([&](const auto& v) { obj.WriteSubElement(written, v); }, value);
  }
  const std::string text = written.str();
  // Every member line begins with its line feed; the file begins behind it.
  std::ifstream in;
  PutInFile(1, text.data() + (text.empty() ? 0 : 1),
            text.empty() ? 0 : text.size() - 1, in);
  for (const Value& value : values) CheckReadBack(in, value);
  return 0;
}
