// The two routes to the "%.15g" text of a double in the classic locale.
#ifndef TSXML_XML_INTERNAL_NUMBER_FORMAT_H
#define TSXML_XML_INTERNAL_NUMBER_FORMAT_H

#include <cstddef>
#include <string>

namespace tsxml {

// Room for any "%.15g" text of a double: sign, 15 digits, point, "e-308".
constexpr std::size_t kGeneral15Capacity = 32;

// The reference route: an ostringstream imbued with the classic locale, with
// precision 15 and no other flags.
std::string FormatGeneral15ViaStream(double value);

// The route in use, which gives the same bytes: writes the text of `value`
// at `out` (room for kGeneral15Capacity bytes) and returns its end. Integers
// below 10^15 and every value from 10^-18 up to 10^15 are rounded here in
// exact integer arithmetic; other finite values go through std::to_chars
// (general, precision 15), infinities and NaN through the stream.
char* WriteGeneral15(double value, char* out);

// The same text as a string.
std::string FormatGeneral15(double value);

}  // namespace tsxml

#endif  // TSXML_XML_INTERNAL_NUMBER_FORMAT_H
