// TSXDictionaryRefs: names a model and the fields of the host's data
// dictionary that it belongs to. Passed beside every model; validates nothing.
#ifndef TSXML_BASE_DICTIONARY_REFS_H
#define TSXML_BASE_DICTIONARY_REFS_H

#include <string>
#include <vector>

#include "tsxml/base/export.h"

class TSXML_API TSXDictionaryRefs {
 public:
  // Empty strings, no predictors, date spec identifier 0 (none).
  TSXDictionaryRefs();
  TSXDictionaryRefs(std::string modelName, std::string modelDescriptor,
                    std::string dependentVarID);
  TSXDictionaryRefs(std::string modelName, std::string modelDescriptor,
                    std::string dependentVarID,
                    const std::vector<std::string>& predictorIDs);
  TSXDictionaryRefs(const TSXDictionaryRefs& other);
  TSXDictionaryRefs& operator=(const TSXDictionaryRefs& other);
  ~TSXDictionaryRefs();

  const std::string& GetModelName() const { return modelName_; }
  const std::string& GetModelDescriptor() const { return modelDescriptor_; }
  const std::string& GetDependentVarID() const { return dependentVarID_; }
  const std::vector<std::string>& GetPredictorIDs() const {
    return predictorIDs_;
  }
  // The identifier that TSXMLTree::AddDateSpec returned; 0 means none.
  int GetDateSpecID() const { return dateSpecID_; }
  void SetDateSpecID(int id) { dateSpecID_ = id; }

 private:
  std::string modelName_;
  std::string modelDescriptor_;
  std::string dependentVarID_;
  std::vector<std::string> predictorIDs_;
  int dateSpecID_ = 0;
};

#endif  // TSXML_BASE_DICTIONARY_REFS_H
