// Writes one document of a model description through TSXMLTree.
#ifndef TSXML_TOOLS_TSXML_WRITE_H
#define TSXML_TOOLS_TSXML_WRITE_H

#include <iosfwd>
#include <string_view>

#include "tools/tsxml/description.h"
#include "tsxml/tree/tsxml_tree.h"

// 1 when the library writes StatXML; CMake defines it.
#ifndef TSXML_TOOL_HAVE_STATXML
#define TSXML_TOOL_HAVE_STATXML 0
#endif

namespace tsxml_tool {

enum class Format { kNative, kPMML, kStatXML };

// The format's name on the command line ("native", "pmml", "statxml"), and
// back; false for an unknown name.
const char* FormatName(Format format);
bool ParseFormat(std::string_view name, Format& format);

struct WriteOptions {
  Format format = Format::kPMML;
  // PMML documents that other PMML tools accept
  // (TSXMLTree::SetPMMLConsistent).
  bool pmmlConsistent = false;
  // Exponential smoothing models in PMML carry their observed series.
  bool timeSeries = true;
};

// Whether this build's library can write `format`, and the PMML consistent
// option. StatXML needs the library's TSXMLTree::SetStatXMLOutput; the
// consistent option is there in every build.
bool FormatAvailable(Format format);
bool PMMLConsistentAvailable();

// A tree with everything of `description` added, ready for its one
// WriteToStream. The tree may point into `description` (the StatXML
// residuals), which must outlive it. Throws DescriptionError with the
// model's pointer when a model can't go into the document: the library
// refused it, the format has no form for its kind, or the format is not
// available in this build (pointer "").
TSXMLTree BuildTree(const Description& description,
                    const WriteOptions& options);

// BuildTree, then the document, exactly as the library writes it (no line
// feed after the root). Nothing is written when it throws.
void WriteDocument(const Description& description, const WriteOptions& options,
                   std::ostream& os);

}  // namespace tsxml_tool

#endif  // TSXML_TOOLS_TSXML_WRITE_H
