// Where a JSON document that the fast reader refused goes wrong.
#ifndef TSXML_TOOLS_TSXML_SYNTAX_ERROR_H
#define TSXML_TOOLS_TSXML_SYNTAX_ERROR_H

#include <string_view>

#include "tools/tsxml/description.h"

namespace tsxml_tool {

// The error of `bytes`, a document the reader could not parse: the first
// syntax error with its line, column and the JSON Pointer of the value it is
// in, or a number beyond 64 bits with its pointer. `fallback` is the message
// when no such error is found (a document nested too deeply, say).
DescriptionError LocateSyntaxError(std::string_view bytes,
                                   std::string_view fallback);

}  // namespace tsxml_tool

#endif  // TSXML_TOOLS_TSXML_SYNTAX_ERROR_H
