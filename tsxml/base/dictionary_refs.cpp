#include "tsxml/base/dictionary_refs.h"

#include <utility>

TSXDictionaryRefs::TSXDictionaryRefs() = default;

TSXDictionaryRefs::TSXDictionaryRefs(std::string modelName,
                                     std::string modelDescriptor,
                                     std::string dependentVarID)
    : modelName_(std::move(modelName)),
      modelDescriptor_(std::move(modelDescriptor)),
      dependentVarID_(std::move(dependentVarID)) {}

TSXDictionaryRefs::TSXDictionaryRefs(
    std::string modelName, std::string modelDescriptor,
    std::string dependentVarID, const std::vector<std::string>& predictorIDs)
    : modelName_(std::move(modelName)),
      modelDescriptor_(std::move(modelDescriptor)),
      dependentVarID_(std::move(dependentVarID)),
      predictorIDs_(predictorIDs) {}

TSXDictionaryRefs::TSXDictionaryRefs(const TSXDictionaryRefs& other) = default;

TSXDictionaryRefs& TSXDictionaryRefs::operator=(
    const TSXDictionaryRefs& other) = default;

TSXDictionaryRefs::~TSXDictionaryRefs() = default;
