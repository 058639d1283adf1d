// Conversion from the process's narrow character set to UTF-8: the one
// platform-dependent piece of the XML writer.
#ifndef TSXML_XML_INTERNAL_NARROW_TO_UTF8_H
#define TSXML_XML_INTERNAL_NARROW_TO_UTF8_H

#include <cstddef>
#include <string>

namespace tsxml {

// Converts from the character set of the LC_CTYPE locale, as it is when the
// converter is made, to UTF-8.
class NarrowToUtf8 {
 public:
  NarrowToUtf8();

  // Reads the `size` bytes at `data` (NUL bytes included) and appends their
  // UTF-8 form to `out`. Returns false and leaves `out` as it was when any
  // sequence does not convert; in the "C" locale that is every byte above 127.
  bool Append(const char* data, std::size_t size, std::string& out) const;

 private:
  // Bytes below 128 stand for themselves and are copied in runs.
  bool copyAscii_;
};

}  // namespace tsxml

#endif  // TSXML_XML_INTERNAL_NARROW_TO_UTF8_H
