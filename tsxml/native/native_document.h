// TSXNativeDocument: the native model document, root "TSCXML". It holds the
// model elements waiting to be written and writes them under the root with
// its "Header" and a "DataDictionary" of the date specifications they use.
#ifndef TSXML_NATIVE_NATIVE_DOCUMENT_H
#define TSXML_NATIVE_NATIVE_DOCUMENT_H

#include <cstddef>
#include <deque>
#include <iosfwd>
#include <string>
#include <vector>

#include "tsxml/datespec/date_spec_entry.h"
#include "tsxml/xml/xml_node.h"

class TSFCrModel;
class TSFModel;
class TSXDictionaryRefs;

namespace tsxml {

using OstraTimeXML::XMLElement;

// "TSCXML" with its namespace attributes and its "Header", which holds
// "Application" when `name` is not empty. Caller owns the result.
XMLElement* MakeDocumentRoot(const std::string& name,
                             const std::string& version);

// Owns the model elements until a write gives them up; the destructor deletes
// those never written. The references are checked by the caller, not here.
class TSXNativeDocument {
 public:
  TSXNativeDocument() = default;
  ~TSXNativeDocument();
  TSXNativeDocument(const TSXNativeDocument&) = delete;
  TSXNativeDocument& operator=(const TSXNativeDocument&) = delete;

  // Builds and appends the element of `model`; false, with the document
  // unchanged, when the handle is empty or the model can't be written.
  bool AddModel(const TSFModel& model, const TSXDictionaryRefs& refs);
  bool AddModel(const TSFCrModel& model, const TSXDictionaryRefs& refs);

  size_t GetModelCount() const { return models_.size(); }

  // False, with nothing written, when no model is waiting. `complete` writes
  // the declaration and the root with "Header" (from `name` and `version`),
  // "DataDictionary" (the entries of `dateSpecs` marked used) and the models;
  // otherwise the bare model elements. Either way the models are gone after.
  bool Write(std::ostream& os, bool complete, const std::string& name,
             const std::string& version,
             const std::deque<TSXDateSpecEntry>& dateSpecs);

 private:
  // Appends `element`; false (nothing changed) for null.
  bool Append(XMLElement* element);

  std::vector<XMLElement*> models_;  // owned
};

}  // namespace tsxml

#endif  // TSXML_NATIVE_NATIVE_DOCUMENT_H
