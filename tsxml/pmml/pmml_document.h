// TSXPMMLDocument: gathers the "TimeSeriesModel" elements of one PMML 4.2
// document and writes the whole document, with its "Header" and
// "DataDictionary", to a stream.
#ifndef TSXML_PMML_PMML_DOCUMENT_H
#define TSXML_PMML_PMML_DOCUMENT_H

#include <cstddef>
#include <deque>
#include <iosfwd>
#include <memory>
#include <string>
#include <valarray>
#include <vector>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/datespec/date_spec_entry.h"
#include "tsxml/modelapi/model.h"
#include "tsxml/pmml/model_summary.h"
#include "tsxml/pmml/pmml_elements.h"
#include "tsxml/xml/xml_node.h"

class TSXDateSpec;

namespace tsxml {

using OstraTimeXML::XMLElement;

// The time field of a date specification period type, such as "Month" and
// "date"; false, with `name` and `type` untouched, for a type outside 0..10.
bool TimeFieldOfPeriod(int periodType, std::string& name, std::string& type);

// The time field of the last period of `spec` whose type has one; false, with
// `name` and `type` untouched, when no period has one.
bool TimeFieldOfDateSpec(const TSXDateSpec& spec, std::string& name,
                         std::string& type);

// An "Extension" holding one "DateSpecification" per entry of `dateSpecs`,
// used by a model or not, in order; null when there are none. Caller owns the
// result.
XMLElement* MakeDateSpecExtension(
    const std::deque<TSXDateSpecEntry>& dateSpecs);

// Owns the model elements it built and deletes them with itself. Nothing here
// reports a failure; an allocation failure passes through and leaves the
// document as it was.
class TSXPMMLDocument {
 public:
  // Application "TimeSeriesApp" version "4.0", no copyright, no time field,
  // TimeSeries on, and the exponential smoothing form of DataDictionary.
  TSXPMMLDocument();
  ~TSXPMMLDocument();
  TSXPMMLDocument(const TSXPMMLDocument&) = delete;
  TSXPMMLDocument& operator=(const TSXPMMLDocument&) = delete;

  // Replaces all three strings when `name` is not empty (an empty version or
  // copyright included); an empty `name` changes nothing.
  void SetApplication(std::string name, std::string version,
                      std::string copyright);

  // The time field, such as "Month" and "date"; moves only, so nothing can
  // fail. Until both are set the documents name the field "Month", of type
  // "date".
  void SetDateField(std::string name, std::string type) noexcept;
  void SetDateFieldType(std::string type) noexcept;

  // Whether exponential smoothing models added from now on carry their
  // observed series in a "TimeSeries" element.
  void SetESPMMLOutputTimeValue(bool on) { esPMMLOutputTimeValue_ = on; }

  // Whether the models added from now on, and every write, take the
  // consistent form (see PMMLMode): numbers that the schema reads, and a
  // DataDictionary that lists, after the fields of its default form, every
  // other field that a model's "MiningField" names, each once. Off by
  // default; the default form is written byte for byte as ever.
  void SetConsistent(bool on) {
    mode_ = on ? PMMLMode::kConsistent : PMMLMode::kDefault;
  }

  // Adds the element of `model` and makes it the model that decides
  // DataDictionary. Always true. A model with an exponential smoothing state
  // gets the smoothing element, any other model the ARIMA element, and both
  // kinds select the DataDictionary form of their own; an empty handle adds
  // no element and selects the ARIMA form.
  bool AddModel(const TSFModel& model, const TSXDictionaryRefs& refs,
                const std::valarray<double>& history);

  // Writes the document, with the XML declaration when `complete`. Takes
  // `dateSpecExtension` (may be null), which becomes the first child of an
  // exponential smoothing DataDictionary and is dropped by the ARIMA form.
  // Always true. Writes are repeatable: the model elements are only lent to
  // the root for the write, so a second write gives the same bytes.
  bool Write(std::ostream& stream, bool complete,
             XMLElement* dateSpecExtension);

 private:
  // A field of DataDictionary: its name and data type.
  struct Field {
    std::string name;
    std::string dataType;
  };

  // What the model added last decides; replaced as a whole by each add.
  struct LastModel {
    TSXModelSummary summary;
    TSXDictionaryRefs dictionaryRefs;
    bool lastModelIsES = true;
  };

  // The root "PMML" with its "Header". Caller owns the result.
  XMLElement* MakeRoot() const;
  // Adds "DataDictionary" in the form that the model added last selects.
  void AddDataDictionary(XMLElement& root,
                         std::unique_ptr<XMLElement> dateSpecExtension) const;
  // The fields of the default DataDictionary, then those of miningFields_
  // not among them, each name once.
  std::vector<Field> ConsistentFields() const;
  // The time field of the documents: the one set, or "Month" of type "date".
  const std::string& TimeFieldName() const;
  const std::string& TimeFieldType() const;

  std::string applicationName_;
  std::string applicationVersion_;
  std::string copyright_;
  std::string dateFieldName_;
  std::string dateFieldType_;
  std::vector<XMLElement*> modelElements_;  // owned
  // The fields that the models' "MiningField" elements name, model by model.
  std::vector<Field> miningFields_;
  std::unique_ptr<LastModel> last_;  // never null
  bool esPMMLOutputTimeValue_ = true;
  PMMLMode mode_ = PMMLMode::kDefault;
};

}  // namespace tsxml

#endif  // TSXML_PMML_PMML_DOCUMENT_H
