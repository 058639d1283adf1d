// TSXMLTreeImp: the counted object behind a TSXMLTree. It holds the registry
// of date specifications, the application strings and one document per
// dialect, and decides for each model and each write which dialect does the
// work: StatXML before PMML before native.
#ifndef TSXML_TREE_TSXML_TREE_IMP_H
#define TSXML_TREE_TSXML_TREE_IMP_H

#include <deque>
#include <iosfwd>
#include <memory>
#include <string>
#include <valarray>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/base/export.h"
#include "tsxml/datespec/date_spec_entry.h"
#include "tsxml/modelapi/croston_model.h"
#include "tsxml/modelapi/model.h"
#include "tsxml/modelapi/ref_counted.h"

namespace tsxml {
class TSXNativeDocument;
class TSXPMMLDocument;
class TSXStatXMLDocument;
}  // namespace tsxml

// Deleted by the last removeReference (TSXMLTree handles hold references).
class TSXML_API TSXMLTreeImp : public TSRCObject {
 public:
  TSXMLTreeImp();
  ~TSXMLTreeImp() override;

  // An empty `name` clears all three strings.
  void SetApplication(std::string name, std::string version,
                      std::string copyright);

  void SetPMMLOutputFlag(bool on) { pmmlOutput_ = on; }
  bool GetPMMLOutputFlag() const { return pmmlOutput_; }
  // Whether exponential smoothing models added to the PMML document from now
  // on carry their observed series; on by default.
  void SetESPMMLOutputTimeValue(bool on);
  // Whether the PMML models added from now on and the PMML writes take the
  // consistent form (see TSXMLTree::SetPMMLConsistent); off by default.
  void SetPMMLConsistent(bool on);

  // Selects StatXML mode for good and keeps the three settings for the
  // models added from now on: the residual series (held by pointer, so it
  // must outlive the last add; null or empty: no correlations), the number
  // of lags and the confidence level as a fraction.
  void SetStatXMLOutputFlag(const std::valarray<double>* series, int lagCount,
                            double confidenceLevel);
  bool GetStatXMLOutputFlag() const { return statXMLOutput_; }

  // Adds by the mode in force; false, with the tree unchanged, when the
  // model is refused. PMML mode takes every model (true) without checking
  // the references, and GetModelCount doesn't count it. StatXML mode
  // replaces its document by that of the model, without checking the
  // references either, and refuses only an empty handle.
  bool AddModelTree(TSFModel model, const TSXDictionaryRefs& refs);
  // Adds a Croston model to the native models whatever the mode; PMML and
  // StatXML writes leave it out. False, with the tree unchanged, when the
  // references fail (they must name no predictor) or the handle is empty.
  bool AddModelTree(TSFCrModel model, const TSXDictionaryRefs& refs);
  int GetModelCount() const;

  // Registers a date specification and returns its identifier: that of the
  // first strictly equivalent entry (whose descriptor stays), or a new one,
  // one above the largest so far.
  int AddDateSpec(const TSXDateSpec& spec, std::string descriptor);

  // Writes by the mode in force. Native mode: false (nothing written) when no
  // model is waiting. `complete` false writes the bare model elements.
  bool WriteToStream(std::ostream& os, bool complete);
  bool WriteXMLToStream(std::ostream& os, bool complete);
  // Writes the PMML document of every model added in PMML mode, also of none;
  // the declaration only when `complete`. Always true. Repeatable: the tree
  // keeps its models, and a second write gives the same document.
  bool WritePMMLToStream(std::ostream& os, bool complete);
  // Writes the declaration and the StatXML document of the model added last,
  // whatever `complete` says; true. Without such a model, the declaration
  // alone and false. Repeatable.
  bool WriteStatXMLToStream(std::ostream& os, bool complete);

 private:
  bool AddXMLModelTree(TSFModel& model, const TSXDictionaryRefs& refs);
  // Adds to the PMML document; `history` (null: none) is the observed series.
  bool AddPMMLModelTree(TSFModel& model, const TSXDictionaryRefs& refs,
                        std::valarray<double>* history);
  // Replaces the StatXML document; `history` is not used.
  bool AddStatXMLModelTree(TSFModel& model, const TSXDictionaryRefs& refs,
                           std::valarray<double>* history);
  // Marks the date spec entry at `index` (from CheckDictRefs) used when
  // `refs` names one.
  void MarkDateSpecUsed(const TSXDictionaryRefs& refs, unsigned int index);
  // Whether `refs` may be written with `model` (null: a model without
  // predictors); `index` is set to the position of its date spec entry.
  bool CheckDictRefs(const TSFModel* model, const TSXDictionaryRefs& refs,
                     unsigned int& index) const;

  std::unique_ptr<tsxml::TSXNativeDocument> nativeDocument_;  // never null
  std::deque<TSXDateSpecEntry> dateSpecs_;
  std::string applicationName_;
  std::string applicationVersion_;
  std::string applicationCopyright_;
  bool pmmlOutput_ = false;
  bool statXMLOutput_ = false;
  std::unique_ptr<tsxml::TSXPMMLDocument> pmmlDocument_;        // never null
  std::unique_ptr<tsxml::TSXStatXMLDocument> statXMLDocument_;  // never null
};

#endif  // TSXML_TREE_TSXML_TREE_IMP_H
