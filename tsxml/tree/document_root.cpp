#include "tsxml/tree/document_root.h"

#include <memory>

#include "tsxml/native/vendor.h"

namespace tsxml {

using OstraTimeXML::XMLElement;

XMLElement* MakeDocumentRoot(const std::string& name,
                             const std::string& version) {
  const std::string namespaceURI =
      std::string(kVendorBaseURI) +
      "/software/analytics/corvane/xml/components/time-series";
  const std::string schemaLocation =
      std::string(kVendorHost) +
      "/software/analytics/corvane/xml/components/time-series-1.0.xsd";

  std::unique_ptr<XMLElement> root(XMLElement::Create("TSCXML"));
  root->AddAttribute("xmlns", namespaceURI);
  root->AddAttribute("xmlns:xsi", kXsiNamespaceURI);
  root->AddAttribute("xsi:schemaLocation", namespaceURI + " " + schemaLocation);

  std::unique_ptr<XMLElement> header(XMLElement::Create("Header"));
  if (!name.empty()) {
    std::unique_ptr<XMLElement> application(XMLElement::Create("Application"));
    application->AddAttribute("name", name);
    if (!version.empty()) application->AddAttribute("version", version);
    header->AddElement(application.release());
  }
  root->AddElement(header.release());
  return root.release();
}

}  // namespace tsxml
