// TSXDateSpecEntry: one date specification registered with a tree.
#ifndef TSXML_TREE_DATE_SPEC_ENTRY_H
#define TSXML_TREE_DATE_SPEC_ENTRY_H

#include <string>

#include "tsxml/datespec/date_spec.h"
#include "tsxml/tsxml_export.h"

struct TSXML_API TSXDateSpecEntry {
  TSXDateSpec spec;        // a deep copy of the caller's specification
  int id = 0;              // 1 or greater, unique in the tree
  std::string descriptor;  // written as "dateSpecDescriptor"
  bool used = false;       // a native model refers to it
};

#endif  // TSXML_TREE_DATE_SPEC_ENTRY_H
