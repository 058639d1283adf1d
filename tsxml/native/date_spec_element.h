// The "DateSpecification" element: one registered date specification.
#ifndef TSXML_NATIVE_DATE_SPEC_ELEMENT_H
#define TSXML_NATIVE_DATE_SPEC_ELEMENT_H

#include <string>

#include "tsxml/xml/xml_node.h"

class TSXDateSpec;

namespace tsxml {

// The element for `spec` as registered under `id` with `descriptor`: its
// periods with their first case, its gaps and its first case day. Caller
// owns the result. The year of "FirstCaseDay" is its attribute "year".
OstraTimeXML::XMLElement* MakeDateSpecificationElement(
    const TSXDateSpec& spec, const std::string& descriptor, int id);

}  // namespace tsxml

#endif  // TSXML_NATIVE_DATE_SPEC_ELEMENT_H
