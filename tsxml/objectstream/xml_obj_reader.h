// Object-stream reader: the counterpart of xml_obj.h. The caller calls these
// in the order in which it called the writers; each call takes the line of one
// expected token and answers whether it found it.
//
// Lines are read with getline into 256 bytes, so a line holds 255 characters
// at most: a longer one sets the fail bit and answers false, and every later
// call answers false until the caller clears the state. Only the fail and bad
// bits count, so a last line without a line end reads normally. After false
// the stream stands behind the lines read. No state is kept between calls or
// shared between streams: threads may read different streams at once.
//
// Tokens are split at blanks, tabs, CR, LF, '<', '>', '=' and double quotes
// as each token needs, so CR LF line ends read like LF. String values are
// taken as written, with their escapes unresolved ("a &amp; b").
#ifndef TSXML_OBJECTSTREAM_XML_OBJ_READER_H
#define TSXML_OBJECTSTREAM_XML_OBJ_READER_H

#include <iosfwd>
#include <string>

#include "tsxml/base/export.h"

namespace OstraTimeXML {

// Reads three lines whose first tokens must be "?xml", "!DOCTYPE" and
// "OstraXMLRoot"; the rest of each line is not looked at. Stops at the first
// line that differs and answers false.
TSXML_API bool ParseStartXML(std::ifstream& is);

// Reads <Obj name="NAME"> with NAME equal to `name` byte for byte. One empty
// line before it is skipped (a line of a lone CR counts as empty), two answer
// false. `<Obj name="">` matches no name, not even the empty one.
TSXML_API bool ParseStartObj(std::ifstream& is, const std::string& name);

// Each ParseValue reads one member line <TAG value="TEXT"/> and answers true
// with `value` set; on a wrong tag, a missing "value" key or no TEXT it answers
// false and leaves `value` untouched. Nothing is skipped: an empty line is
// false.
//
// Tag "Int"; TEXT as atoi: leading number, trailing text ignored.
TSXML_API bool ParseValue(std::ifstream& is, int& value);
// Tag "Int"; TEXT as atof, cut to an integer whose low 32 bits are stored (so
// -1 gives 4294967295); infinities and NaN give 0.
TSXML_API bool ParseValue(std::ifstream& is, unsigned int& value);
// Tag "Long"; TEXT as strtol, all 64 bits (out-of-range text gives the
// nearest limit).
TSXML_API bool ParseValue(std::ifstream& is, long& value);
// Tag "Double"; "Missing" gives MV::gMissingValue, other TEXT is extracted by a
// classic-locale stream and answers true even when that fails, `value` then
// holding what the extraction leaves (0 for a non-number, the largest
// magnitude on overflow).
TSXML_API bool ParseValue(std::ifstream& is, double& value);
// Tag "String"; the TEXT between the quotes, escapes unresolved. An empty
// value, and a line with no value text at all, give "" and true.
TSXML_API bool ParseValue(std::ifstream& is, std::string& value);
// Tag "Int"; TEXT as atoi: 0 gives false, 1 true, any other number answers
// false and leaves `value` untouched.
TSXML_API bool ParseValue(std::ifstream& is, bool& value);

// Reads </Obj>.
TSXML_API bool ParseEndObj(std::ifstream& is);

}  // namespace OstraTimeXML

#endif  // TSXML_OBJECTSTREAM_XML_OBJ_READER_H
