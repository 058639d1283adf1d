// TSXStatXMLDocument: the statistics document of one fitted model, root
// "StatXML": the algorithm, fit statistics, residual autocorrelations,
// outliers, the Ljung-Box test and the table of parameter estimates.
#ifndef TSXML_STATXML_STATXML_DOCUMENT_H
#define TSXML_STATXML_STATXML_DOCUMENT_H

#include <iosfwd>
#include <memory>
#include <string>
#include <valarray>
#include <vector>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/modelapi/model.h"
#include "tsxml/xml/xml_node.h"

namespace tsxml {

using OstraTimeXML::XMLElement;

// Adds "Statistic" with "name" and "value" to `parent`; nothing when either
// is empty.
void AddStatXMLStatistic(XMLElement& parent, std::string name,
                         std::string value);

// Adds "Coordinates" with feature "statistic" and "statistic" = `statistic`,
// holding one "Array" of `values` ("NaN" for a missing value). Returns it;
// `parent` owns it.
XMLElement* AddCoordinates(XMLElement& parent, std::string statistic,
                           const std::vector<double>& values);
XMLElement* AddCoordinates(XMLElement& parent, std::string statistic,
                           const std::valarray<double>& values);

// Holds the document of the model added last; each add builds a whole new
// document. An allocation failure passes through and leaves the document as
// it was.
class TSXStatXMLDocument {
 public:
  TSXStatXMLDocument() = default;
  ~TSXStatXMLDocument();
  TSXStatXMLDocument(const TSXStatXMLDocument&) = delete;
  TSXStatXMLDocument& operator=(const TSXStatXMLDocument&) = delete;

  // The residual series whose correlations the documents report, held by
  // pointer (null or empty: no correlations) until the last add; the number
  // of lags; the confidence level as a fraction (0.95).
  void SetOutput(const std::valarray<double>* series, int lagCount,
                 double confidenceLevel);

  // Replaces the document by that of `model`; `refs` names the dependent
  // variable and the predictors and is not checked. True, except for an
  // empty handle, which is refused (false) and changes nothing.
  bool AddModel(const TSFModel& model, const TSXDictionaryRefs& refs);

  // Writes the XML declaration and the document; true. Without a model added
  // the declaration alone is written and the answer is false. Repeatable.
  bool Write(std::ostream& os) const;

 private:
  std::unique_ptr<XMLElement> root_;  // "StatXML"; null until a model is added
  const std::valarray<double>* series_ = nullptr;  // not owned
  int lagCount_ = 0;
  double confidenceLevel_ = 0.95;
};

}  // namespace tsxml

#endif  // TSXML_STATXML_STATXML_DOCUMENT_H
