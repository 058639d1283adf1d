#include "tsxml/xml/internal/narrow_to_utf8.h"

#include <langinfo.h>

#include <cstdint>
#include <cstring>
#include <cwchar>

namespace tsxml {
namespace {

// True when the LC_CTYPE codeset maps every byte below 128 to the same code
// point on its own, so runs of such bytes can be copied without the C library.
bool AsciiMapsToItself() {
  const char* codeset = nl_langinfo(CODESET);
  return codeset != nullptr && (std::strcmp(codeset, "UTF-8") == 0 ||
                                std::strcmp(codeset, "ANSI_X3.4-1968") == 0);
}

// Appends `cp` as UTF-8; a code point above 0xFFFF takes the four bytes that
// its UTF-16 surrogate pair would give. Returns false beyond UTF-16's range.
bool AppendCodePoint(std::uint32_t cp, std::string& out) {
  char bytes[4];
  std::size_t n;
  if (cp < 0x80) {
    bytes[0] = static_cast<char>(cp);
    n = 1;
  } else if (cp < 0x800) {
    bytes[0] = static_cast<char>(0xC0 | (cp >> 6));
    bytes[1] = static_cast<char>(0x80 | (cp & 0x3F));
    n = 2;
  } else if (cp < 0x10000) {
    bytes[0] = static_cast<char>(0xE0 | (cp >> 12));
    bytes[1] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    bytes[2] = static_cast<char>(0x80 | (cp & 0x3F));
    n = 3;
  } else if (cp < 0x110000) {
    bytes[0] = static_cast<char>(0xF0 | (cp >> 18));
    bytes[1] = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    bytes[2] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    bytes[3] = static_cast<char>(0x80 | (cp & 0x3F));
    n = 4;
  } else {
    return false;
  }
  out.append(bytes, n);
  return true;
}

}  // namespace

NarrowToUtf8::NarrowToUtf8() : copyAscii_(AsciiMapsToItself()) {}

bool NarrowToUtf8::Append(const char* data, std::size_t size,
                          std::string& out) const {
  const std::size_t start = out.size();
  const bool copyAscii = copyAscii_;
  std::mbstate_t state{};
  std::size_t i = 0;
  while (i < size) {
    if (copyAscii) {
      std::size_t run = i;
      while (run < size && static_cast<unsigned char>(data[run]) < 0x80) ++run;
      out.append(data + i, run - i);
      i = run;
      if (i == size) break;
    }
    wchar_t wide = 0;
    std::size_t used = std::mbrtowc(&wide, data + i, size - i, &state);
    if (used == static_cast<std::size_t>(-1) ||
        used == static_cast<std::size_t>(-2) ||
        !AppendCodePoint(static_cast<std::uint32_t>(wide), out)) {
      out.resize(start);
      return false;
    }
    i += used == 0 ? 1 : used;  // 0 reports a NUL byte
  }
  return true;
}

}  // namespace tsxml
