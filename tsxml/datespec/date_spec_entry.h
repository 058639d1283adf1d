// TSXDateSpecEntry: one date specification registered with a tree.
#ifndef TSXML_DATESPEC_DATE_SPEC_ENTRY_H
#define TSXML_DATESPEC_DATE_SPEC_ENTRY_H

#include <string>

#include "tsxml/base/export.h"
#include "tsxml/datespec/date_spec.h"

struct TSXML_API TSXDateSpecEntry {
  TSXDateSpec spec;        // a deep copy of the caller's specification
  int id = 0;              // 1 or greater, unique in the tree
  std::string descriptor;  // written as "dateSpecDescriptor"
  bool used = false;       // a native model refers to it
};

#endif  // TSXML_DATESPEC_DATE_SPEC_ENTRY_H
