// Number text: every number of every document reaches its text here.
//
// The default form is "%.15g" in the classic locale: at most 15 significant
// digits, a point as the decimal character, no grouping, whatever the process
// locale is.
#ifndef TSXML_XML_NUMBER_TEXT_H
#define TSXML_XML_NUMBER_TEXT_H

#include <string>

#include "tsxml/base/export.h"

namespace OstraTimeXML {

// With `useFormatString` true: snprintf of `value` with `formatString` ("%.15g"
// when null) into 112 bytes, following the process locale. With it false:
// ReplaceSep(value, formatString), which ignores the format.
TSXML_API std::string Format(double value, bool useFormatString,
                             char* formatString);

// The plain decimal text of an integer, via double and "%.15g": exact for
// every value up to 15 digits (all 32-bit values); a 64-bit value of 16 or
// more digits comes out rounded to 15 significant digits in exponent form,
// with a point whatever the process locale.
TSXML_API std::string Format(long value);

// The "%.15g" text of `value` in the classic locale; `formatString` is not
// read. Infinities and NaN read as the standard library prints them.
TSXML_API std::string ReplaceSep(double value, char* formatString);

// Always "%.15g".
TSXML_API std::string GetDefaultNumericFormat();

// Always ";", whatever the system settings.
TSXML_API std::string GetListSeparator();

// The decimal point of the process's current C locale (localeconv).
TSXML_API std::string GetDecimalCharacter();

}  // namespace OstraTimeXML

#endif  // TSXML_XML_NUMBER_TEXT_H
