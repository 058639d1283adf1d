// Arbitrary bytes as a model description. A description is either read, and
// then written as a native and a PMML document (or refused by the writer
// with an error), or refused with an error whose position lies within the
// input.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string_view>

#include "tools/tsxml/description.h"
#include "tools/tsxml/write.h"

namespace {

void Check(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "description_fuzz: %s\n", what);
    std::abort();
  }
}

void Write(const tsxml_tool::Description& description,
           tsxml_tool::Format format) {
  tsxml_tool::WriteOptions options;
  options.format = format;
  std::ostringstream out;
  try {
    tsxml_tool::WriteDocument(description, options, out);
    Check(!out.str().empty(), "a written document is empty");
  } catch (const tsxml_tool::DescriptionError& error) {
    Check(out.str().empty(), "a refused document was written in part");
    Check(error.Line() == 0, "the writer gave a line");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    const tsxml_tool::Description description =
        tsxml_tool::ReadDescription(bytes);
    Write(description, tsxml_tool::Format::kNative);
    Write(description, tsxml_tool::Format::kPMML);
  } catch (const tsxml_tool::DescriptionError& error) {
    Check(!error.Message().empty(), "an error without a message");
    Check(error.Pointer().empty() || error.Pointer()[0] == '/',
          "a pointer that doesn't start with /");
    if (error.Line() != 0) {
      std::size_t lines = 1;
      for (char c : bytes) lines += c == '\n';
      Check(error.Line() <= lines, "a line past the input");
      Check(error.Column() >= 1 && error.Column() <= size + 1,
            "a column past the input");
    }
  }
  return 0;
}
