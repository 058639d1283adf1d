// The vendor's names in the documents: one place for the namespace host and
// the extender text that every document uses.
#ifndef TSXML_BASE_VENDOR_H
#define TSXML_BASE_VENDOR_H

namespace tsxml {

// Scheme and host of the vendor's namespaces; a reserved, neutral domain.
inline constexpr const char kVendorBaseURI[] = "http://www.tsxml.example";
// The same host without a scheme, where schemas are found.
inline constexpr const char kVendorHost[] = "www.tsxml.example";
// The `extender` text of every vendor Extension element.
inline constexpr const char kExtenderText[] = "tsxml.example";
// The W3C XML Schema instance namespace.
inline constexpr const char kXsiNamespaceURI[] =
    "http://www.w3.org/2001/XMLSchema-instance";

}  // namespace tsxml

#endif  // TSXML_BASE_VENDOR_H
