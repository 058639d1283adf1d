// Date specifications registered with a tree, and the native "DataDictionary"
// that writes those its models use.
#include <gtest/gtest.h>

#include <sstream>

#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "tree_test_util.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/tree/tsxml_tree_imp.h"

namespace {

using testing_support::MakeSimpleModel;
using testing_support::MonthlyDateSpec;
using tree_testing::Write;

TSXDictionaryRefs RefsOn(int dateSpecID) {
  TSXDictionaryRefs refs("M", "", "y");
  refs.SetDateSpecID(dateSpecID);
  return refs;
}

// The "DataDictionary" part of a native document.
std::string Dictionary(const std::string& document) {
  const size_t begin = document.find("\n\t<DataDictionary");
  const size_t end = document.find("\n\t<ExpSmoothingModel");
  return document.substr(begin, end - begin);
}

TEST(DateSpecRegistryTest, EquivalentSpecificationKeepsItsIdentifier) {
  TSXMLTree tree;
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001), "first"), 1);
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(1990), "other start"), 2);
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001), "again"), 1);
  EXPECT_FALSE(tree.AddModelTree(MakeSimpleModel(), RefsOn(3)));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(1)));
  EXPECT_EQ(tree.GetModelCount(), 1);
  EXPECT_NE(Write(tree).find("dateSpecDescriptor=\"first\""),
            std::string::npos);
}

TEST(DateSpecRegistryTest, UsedSpecificationsInRegistrationOrder) {
  TSXMLTree tree;
  const int unused = tree.AddDateSpec(MonthlyDateSpec(1980), "unused");
  const int b = tree.AddDateSpec(MonthlyDateSpec(1990), "B");
  const int a = tree.AddDateSpec(MonthlyDateSpec(2001), "A");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(a)));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(a)));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(b)));
  const std::string document = Write(tree);
  const std::string dictionary = Dictionary(document);
  EXPECT_EQ(dictionary.find("dateSpecID=\"" + std::to_string(unused)),
            std::string::npos);
  const size_t atB = dictionary.find("\t\tdateSpecID=\"2\"");
  const size_t atA = dictionary.find("\t\tdateSpecID=\"3\"");
  ASSERT_NE(atB, std::string::npos);
  ASSERT_NE(atA, std::string::npos);
  EXPECT_LT(atB, atA);
  EXPECT_EQ(dictionary.find("\t<DateSpecification", atA + 1),
            std::string::npos);
  // The models carry the identifiers.
  EXPECT_NE(document.find("\t\tdateSpecID=\"3\">\n\t\t<ESSimple>"),
            std::string::npos);
}

TEST(DateSpecRegistryTest, WritesAndTheRegistry) {
  TSXMLTree tree;
  const int id = tree.AddDateSpec(MonthlyDateSpec(2001), "kept");
  // A write without models changes nothing, also with specifications.
  std::ostringstream nothing;
  EXPECT_FALSE(tree.WriteToStream(nothing));
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(id)));
  const std::string document = Write(tree);
  EXPECT_NE(Dictionary(document).find("dateSpecDescriptor=\"kept\""),
            std::string::npos);
  // A complete write empties the registry: the old identifier is gone and
  // numbering starts at 1 again.
  EXPECT_FALSE(tree.AddModelTree(MakeSimpleModel(), RefsOn(id)));
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(1990), "new"), 1);
}

TEST(DateSpecRegistryTest, BareWriteKeepsSpecificationsAndUsedFlags) {
  TSXMLTreeImp* imp = new TSXMLTreeImp;
  TSXMLTree tree(imp);
  const int id = tree.AddDateSpec(MonthlyDateSpec(2001), "kept");
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(id)));
  std::ostringstream bare;
  ASSERT_TRUE(imp->WriteToStream(bare, false));
  // Still registered and still used: a model without a date specification
  // now brings it into the document.
  EXPECT_EQ(tree.AddDateSpec(MonthlyDateSpec(2001), "x"), id);
  ASSERT_TRUE(tree.AddModelTree(MakeSimpleModel(), RefsOn(0)));
  EXPECT_NE(Dictionary(Write(tree)).find("dateSpecDescriptor=\"kept\""),
            std::string::npos);
}

}  // namespace
