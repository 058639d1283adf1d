#include "tools/tsxml/write.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace tsxml_tool {

namespace {

[[noreturn]] void Fail(const std::string& pointer, std::string message) {
  throw DescriptionError(pointer, std::move(message));
}

// Why the native document refused `model`, by the rules the tree checks its
// references with; the library itself says only no.
[[noreturn]] void FailRefused(const ModelDescription& model) {
  const TSXDictionaryRefs& refs = model.refs;
  if (refs.GetModelName().empty()) {
    Fail(model.pointer + "/name", "the native document needs a model name");
  }
  if (refs.GetDependentVarID().empty()) {
    Fail(model.pointer + "/dependentVariable",
         "the native document needs a dependent variable");
  }
  const std::size_t transferFunctions =
      model.kind == ModelKind::kCroston ? 0 : model.model.GetPredictorCount();
  const std::vector<std::string>& predictors = refs.GetPredictorIDs();
  if (predictors.size() != transferFunctions) {
    Fail(model.pointer + "/predictors",
         "expected one predictor name per transfer function (" +
             std::to_string(transferFunctions) + "), got " +
             std::to_string(predictors.size()));
  }
  for (std::size_t i = 0; i < predictors.size(); ++i) {
    if (predictors[i].empty()) {
      Fail(model.pointer + "/predictors/" + std::to_string(i),
           "a predictor name must not be empty");
    }
  }
  Fail(model.pointer, "the library refused the model");
}

}  // namespace

const char* FormatName(Format format) {
  switch (format) {
    case Format::kNative:
      return "native";
    case Format::kPMML:
      return "pmml";
    case Format::kStatXML:
      return "statxml";
  }
  return "";
}

bool ParseFormat(std::string_view name, Format& format) {
  for (Format candidate : {Format::kNative, Format::kPMML, Format::kStatXML}) {
    if (name == FormatName(candidate)) {
      format = candidate;
      return true;
    }
  }
  return false;
}

// StatXML comes with the library's TSXMLTree::SetStatXMLOutput, which CMake
// looks for when it configures the tool (TSXML_TOOL_HAVE_STATXML).
bool FormatAvailable(Format format) {
  return TSXML_TOOL_HAVE_STATXML || format != Format::kStatXML;
}

// The library has TSXMLTree::SetPMMLConsistent; front ends may still ask.
bool PMMLConsistentAvailable() { return true; }

TSXMLTree BuildTree(const Description& description,
                    const WriteOptions& options) {
  if (!FormatAvailable(options.format)) {
    Fail("", std::string("the ") + FormatName(options.format) +
                 " format is not available in this build");
  }
  const bool pmml = options.format == Format::kPMML;
  for (const ModelDescription& model : description.models) {
    if (pmml && model.kind == ModelKind::kCroston) {
      Fail(model.pointer,
           "a Croston model has no PMML form; write it as a native document");
    }
  }
  if (options.format == Format::kNative && description.models.empty()) {
    Fail("/models", "the native document needs at least one model");
  }
  const bool statXML = options.format == Format::kStatXML;
  if (statXML) {
    if (!description.statXML.present) {
      Fail("",
           "missing field \"statXML\": the statxml format needs the "
           "residuals, the lag count and the confidence level");
    }
    // The library keeps the document of the model added last.
    if (description.models.size() != 1) {
      Fail("/models", "a StatXML document holds one model, not " +
                          std::to_string(description.models.size()));
    }
    if (description.models[0].kind == ModelKind::kCroston) {
      Fail(description.models[0].pointer,
           "a Croston model has no StatXML form; write it as a native "
           "document");
    }
  }

  TSXMLTree tree;
#if TSXML_TOOL_HAVE_STATXML
  if (statXML) {
    const StatXMLDescription& settings = description.statXML;
    tree.SetStatXMLOutput(settings.hasResiduals ? &settings.residuals : nullptr,
                          settings.lagCount, settings.confidenceLevel);
  }
#endif
  tree.SetPMMLOutput(pmml);
  tree.SetPMMLConsistent(options.pmmlConsistent);
  tree.SetESPMMLOutputTimeValue(options.timeSeries);
  if (description.application.present) {
    tree.SetApplication(description.application.name,
                        description.application.version,
                        description.application.copyright);
  }
  std::vector<int> ids;
  ids.reserve(description.dateSpecs.size());
  for (const DateSpecDescription& spec : description.dateSpecs) {
    ids.push_back(tree.AddDateSpec(spec.spec, spec.descriptor));
  }
  for (const ModelDescription& model : description.models) {
    TSXDictionaryRefs refs = model.refs;
    if (model.dateSpec >= 0) {
      refs.SetDateSpecID(ids[static_cast<std::size_t>(model.dateSpec)]);
    }
    const bool added = model.kind == ModelKind::kCroston
                           ? tree.AddModelTree(model.croston, refs)
                           : tree.AddModelTree(model.model, refs);
    if (!added) FailRefused(model);
  }
  return tree;
}

void WriteDocument(const Description& description, const WriteOptions& options,
                   std::ostream& os) {
  TSXMLTree tree = BuildTree(description, options);
  if (!tree.WriteToStream(os)) {
    Fail("", "the library wrote no document");
  }
}

}  // namespace tsxml_tool
