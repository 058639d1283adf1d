// Parts of native documents and a writer, for the tree tests.
#ifndef TSXML_TESTS_TREE_TREE_TEST_UTIL_H
#define TSXML_TESTS_TREE_TREE_TEST_UTIL_H

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/model_fixtures.h"
#include "tsxml/tree/tsxml_tree.h"

namespace tree_testing {

inline const std::string kDeclaration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";
inline const std::string kRootStart = testing_support::Lines(
    {"<TSCXML",
     "\txmlns=\"http://www.tsxml.example/software/analytics/corvane/xml/"
     "components/time-series\"",
     "\txmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"",
     "\txsi:schemaLocation=\"http://www.tsxml.example/software/analytics/"
     "corvane/xml/components/time-series www.tsxml.example/software/"
     "analytics/corvane/xml/components/time-series-1.0.xsd\">"});
// A document up to its first model, without an application or date
// specifications.
inline const std::string kDocumentStart =
    kDeclaration + kRootStart + "\n\t<Header/>\n\t<DataDictionary/>";
// "EstimationInfo" of BasicInfo() in a model.
inline const std::string kBasicInfo = testing_support::Lines(
    {"\t\t<EstimationInfo", "\t\t\tperiodStartIndex=\"0\"",
     "\t\t\tperiodLength=\"24\"", "\t\t\tdegreesOfFreedom=\"23\">",
     "\t\t\t<Statistic", "\t\t\t\ttype=\"errVariance\">2.5</Statistic>",
     "\t\t</EstimationInfo>"});

// The references of the simple models.
inline const TSXDictionaryRefs kRefs("S", "", "y");

// The document `tree` writes, which it must.
inline std::string Write(TSXMLTree& tree) {
  std::ostringstream out;
  EXPECT_TRUE(tree.WriteToStream(out));
  return out.str();
}

}  // namespace tree_testing

#endif  // TSXML_TESTS_TREE_TREE_TEST_UTIL_H
