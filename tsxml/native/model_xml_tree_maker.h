// ModelXMLTreeMaker: the visitor that turns a forecast state into the element
// of its model in the native document.
#ifndef TSXML_NATIVE_MODEL_XML_TREE_MAKER_H
#define TSXML_NATIVE_MODEL_XML_TREE_MAKER_H

#include "tsxml/base/export.h"
#include "tsxml/modelapi/forecast_state_visitor.h"

class EstimationInfo;
class TSXDictionaryRefs;
namespace OstraTimeXML {
class XMLElement;
}

// Serves one Accept. Keeps references to `refs` and `info`, which must
// outlive it, and owns the element it built until ReleaseTree.
class TSXML_API ModelXMLTreeMaker : public ForecastStateVisitor {
 public:
  ModelXMLTreeMaker(const TSXDictionaryRefs& refs, const EstimationInfo& info);
  ~ModelXMLTreeMaker() override;
  ModelXMLTreeMaker(const ModelXMLTreeMaker&) = delete;
  ModelXMLTreeMaker& operator=(const ModelXMLTreeMaker&) = delete;

  void Visit(const ARMAMLSpForecastState& state) override;
  void Visit(const ARMAMLForecastState& state) override;
  void Visit(const ARMACLSForecastState& state) override;
  void Visit(const ESForecastState& state) override;

  // The element built, or null if the visit built none; the caller owns it
  // and the maker holds null afterwards.
  OstraTimeXML::XMLElement* ReleaseTree();

 private:
  const TSXDictionaryRefs& refs_;
  const EstimationInfo& info_;
  OstraTimeXML::XMLElement* element_ = nullptr;
};

#endif  // TSXML_NATIVE_MODEL_XML_TREE_MAKER_H
