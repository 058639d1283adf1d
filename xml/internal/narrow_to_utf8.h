// Conversion from the process's narrow character set to UTF-8: the one
// platform-dependent piece of the XML writer.
#ifndef TSXML_XML_INTERNAL_NARROW_TO_UTF8_H
#define TSXML_XML_INTERNAL_NARROW_TO_UTF8_H

#include <cstddef>
#include <string>

namespace OstraTimeXML {
namespace internal {

// Reads the `size` bytes at `data` (NUL bytes included) in the character set
// of the LC_CTYPE locale and appends their UTF-8 form to `out`. Returns false
// and leaves `out` as it was when any sequence does not convert; in the "C"
// locale that is every byte above 127.
bool AppendNarrowAsUtf8(const char* data, std::size_t size, std::string& out);

}  // namespace internal
}  // namespace OstraTimeXML

#endif  // TSXML_XML_INTERNAL_NARROW_TO_UTF8_H
