// TSXMLTree: the library's entry point. A host makes a tree, chooses the
// output mode, registers date specifications, adds fitted models with their
// dictionary references, and writes one document to a stream it owns.
//
//   TSXMLTree tree;
//   tree.SetApplication("Forecaster", "2.1", "");
//   tree.AddModelTree(model, TSXDictionaryRefs("Sales", "", "sales"));
//   tree.WriteToStream(std::cout);
#ifndef TSXML_TREE_TSXML_TREE_H
#define TSXML_TREE_TSXML_TREE_H

#include <iosfwd>
#include <string>
#include <valarray>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/base/export.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/modelapi/croston_model.h"
#include "tsxml/modelapi/model.h"
#include "tsxml/modelapi/ref_counted.h"

class TSXMLTreeImp;

// A counted handle on a TSXMLTreeImp (a TSRCHandle, which counts the
// references): the last handle to go deletes the implementation. A handle on
// null answers false or 0 to everything and does nothing.
class TSXML_API TSXMLTree {
 public:
  // Makes a new, empty tree in native mode.
  TSXMLTree();
  // Adopts `imp` (may be null) and takes a reference on it.
  explicit TSXMLTree(TSXMLTreeImp* imp);
  TSXMLTree(const TSXMLTree& other);
  TSXMLTree& operator=(const TSXMLTree& other);
  ~TSXMLTree();

  // Name, version and copyright of the writing application. An empty name
  // clears all three.
  void SetApplication(std::string name, std::string version,
                      std::string copyright);

  // Selects PMML output for the models added and the write that follow.
  void SetPMMLOutput(bool on);
  // Whether exponential smoothing models added in PMML mode from now on carry
  // their observed series ("TimeSeries"); on by default.
  void SetESPMMLOutputTimeValue(bool on);
  // Whether the PMML document is one that other PMML tools accept without
  // complaint; off by default, which writes the library's own PMML byte for
  // byte. It applies to the models added in PMML mode from now on and to the
  // write, so set it before adding models. With it on:
  // - DataDictionary defines every field that a "MiningField" of the
  //   document names (the dependent variables and predictors of all models
  //   and the time fields), each once, after the fields that it lists
  //   without the option, and "numberOfFields" counts them;
  // - an empty field name is written as name="", which the schema requires,
  //   rather than left out;
  // - numbers are spelled as the schema's xs:double ("NaN", "INF", "-INF"),
  //   and the missing value is never written as a number: an optional
  //   attribute is left out, and a required attribute, an extension value or
  //   an array entry is "NaN";
  // - a smoothing model whose seasonal state is incomplete has the "Array"
  //   that the schema requires, with "NaN" for each seasonal value.
  // Nothing else changes, and every document is valid against the PMML 4.2
  // schema.
  void SetPMMLConsistent(bool on);

  // Selects StatXML output, for good: each model added from now on replaces
  // the tree's statistics document by its own (PMML and native adds no
  // longer happen). `residuals` is the series whose autocorrelations at lags
  // 1 to `lagCount` the document reports; it is held by pointer and must stay
  // alive until the last model has been added (null or empty: no
  // correlations). `confidenceLevel` is a fraction (0.95) for the parameters'
  // confidence limits and the correlations' bounds.
  void SetStatXMLOutput(const std::valarray<double>* residuals, int lagCount,
                        double confidenceLevel);

  // Adds a fitted model; false when the references don't fit the model or
  // the model can't be written. A failed add leaves the tree unchanged. In
  // PMML mode every model is taken (true) and the references aren't checked;
  // in StatXML mode too, except that an empty handle is refused.
  bool AddModelTree(TSFModel model, const TSXDictionaryRefs& refs);
  // Adds a Croston model to the native document whatever the output mode;
  // false, with the tree unchanged, when the references fail (they must name
  // no predictor) or the handle is empty.
  bool AddModelTree(TSFCrModel model, const TSXDictionaryRefs& refs);

  // Registers a date specification (a deep copy) and returns the identifier
  // to give TSXDictionaryRefs::SetDateSpecID; an equivalent specification
  // registered before keeps its identifier and descriptor. 0 on a null handle.
  int AddDateSpec(const TSXDateSpec& spec, std::string descriptor);

  // The number of models waiting for a native write.
  int GetModelCount() const;

  // Writes the whole document; false when there is nothing to write. In PMML
  // mode always true: the document is written also without models, and a
  // later write repeats it. In StatXML mode the document of the model added
  // last, repeatable; with no model added, the XML declaration alone and
  // false. The stream's state is not examined.
  bool WriteToStream(std::ostream& os);

 private:
  TSRCHandle<TSXMLTreeImp> imp_;
};

#endif  // TSXML_TREE_TSXML_TREE_H
