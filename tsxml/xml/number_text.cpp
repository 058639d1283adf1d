#include "tsxml/xml/number_text.h"

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <locale>
#include <sstream>

#include "tsxml/xml/internal/number_format.h"

namespace tsxml {

std::string FormatGeneral15ViaStream(double value) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream.precision(15);
  stream << value;
  return stream.str();
}

std::string FormatGeneral15(double value) {
  if (!std::isfinite(value)) return FormatGeneral15ViaStream(value);
  char text[kGeneral15Capacity];
  const std::to_chars_result result = std::to_chars(
      text, text + sizeof(text), value, std::chars_format::general, 15);
  return std::string(text, result.ptr);
}

}  // namespace tsxml

namespace OstraTimeXML {

namespace {
constexpr char kDefaultNumericFormat[] = "%.15g";
}  // namespace

std::string Format(double value, bool useFormatString, char* formatString) {
  if (!useFormatString) return ReplaceSep(value, formatString);
  char text[112];
  const int length = std::snprintf(
      text, sizeof(text),
      formatString != nullptr ? formatString : kDefaultNumericFormat, value);
  return length < 0 ? std::string() : std::string(text);
}

std::string Format(long value) {
  // Below 10^15 in magnitude "%.15g" prints the plain integer, which needs
  // neither printf nor the locale.
  constexpr long kPlainLimit = 1000000000000000L;
  if (value > -kPlainLimit && value < kPlainLimit) {
    char text[24];
    const std::to_chars_result result =
        std::to_chars(text, text + sizeof(text), value);
    return std::string(text, result.ptr);
  }
  return ReplaceSep(static_cast<double>(value), nullptr);
}

std::string ReplaceSep(double value, char*) {
  return tsxml::FormatGeneral15(value);
}

std::string GetDefaultNumericFormat() { return kDefaultNumericFormat; }

std::string GetListSeparator() { return ";"; }

std::string GetDecimalCharacter() { return std::localeconv()->decimal_point; }

}  // namespace OstraTimeXML
