// The tree in StatXML mode: whole documents, the mode's precedence, and what
// it keeps between adds.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/test_data.h"
#include "tree/statxml_test_models.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/tree/tsxml_tree_imp.h"

namespace {

using namespace statxml_test;
using testing_support::ReadTestData;
const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";

// What `tree` writes, and whether it answers `expected`.
std::string WriteText(TSXMLTree& tree, bool expected = true) {
  std::ostringstream out;
  EXPECT_EQ(tree.WriteToStream(out), expected);
  return out.str();
}

// A StatXML tree with `series` at `lags` and 95 %, and `model` added.
TSXMLTree TreeOf(const TSFModel& model, const TSXDictionaryRefs& refs,
                 const std::valarray<double>* series, int lags) {
  TSXMLTree tree;
  tree.SetStatXMLOutput(series, lags, 0.95);
  EXPECT_TRUE(tree.AddModelTree(model, refs));
  return tree;
}

TEST(StatXMLTreeTest, WholeDocuments) {
  TSXMLTree holt = TreeOf(MakeHoltModel(), kHoltRefs, &kHoltResiduals, 3);
  const std::string esDocument = ReadTestData("statxml/es_model.xml");
  EXPECT_EQ(WriteText(holt), esDocument);
  EXPECT_EQ(WriteText(holt), esDocument);  // writes are repeatable

  TSXMLTree sales = TreeOf(MakeSalesModel(), kSalesRefs, &kSalesResiduals, 4);
  EXPECT_EQ(WriteText(sales), ReadTestData("statxml/arima_model.xml"));
}

TEST(StatXMLTreeTest, NoResidualsNoCorrelations) {
  const std::string expected = ReadTestData("statxml/missing_statistics.xml");
  TSXMLTree none = TreeOf(MakeBareARModel(), kBareRefs, nullptr, 12);
  EXPECT_EQ(WriteText(none), expected);
  const std::valarray<double> empty;
  TSXMLTree emptySeries = TreeOf(MakeBareARModel(), kBareRefs, &empty, 12);
  EXPECT_EQ(WriteText(emptySeries), expected);
  // A series with no usable values, or no lags, leaves the blocks out too.
  const std::valarray<double> missing(MV::gMissingValue, 5);
  TSXMLTree missingSeries = TreeOf(MakeBareARModel(), kBareRefs, &missing, 12);
  EXPECT_EQ(WriteText(missingSeries), expected);
  TSXMLTree noLags = TreeOf(MakeBareARModel(), kBareRefs, &kHoltResiduals, 0);
  EXPECT_EQ(WriteText(noLags), expected);
}

TEST(StatXMLTreeTest, EachModelReplacesTheDocument) {
  TSXMLTree tree = TreeOf(MakeSalesModel(), kSalesRefs, &kHoltResiduals, 3);
  // The series is read at each add, through its pointer.
  std::valarray<double> residuals = kSalesResiduals;
  tree.SetStatXMLOutput(&residuals, 4, 0.95);
  ASSERT_TRUE(tree.AddModelTree(MakeHoltModel(), kHoltRefs));
  residuals = kHoltResiduals;
  tree.SetStatXMLOutput(&residuals, 3, 0.95);
  ASSERT_TRUE(tree.AddModelTree(MakeHoltModel(), kHoltRefs));
  EXPECT_EQ(WriteText(tree), ReadTestData("statxml/es_model.xml"));
  EXPECT_EQ(tree.GetModelCount(), 0);

  residuals = kSalesResiduals;
  tree.SetStatXMLOutput(&residuals, 4, 0.95);
  ASSERT_TRUE(tree.AddModelTree(MakeSalesModel(), kSalesRefs));
  EXPECT_EQ(WriteText(tree), ReadTestData("statxml/arima_model.xml"));

  // An empty handle is refused and the document stays.
  EXPECT_FALSE(tree.AddModelTree(TSFModel(), kSalesRefs));
  EXPECT_EQ(WriteText(tree), ReadTestData("statxml/arima_model.xml"));
}

TEST(StatXMLTreeTest, WithoutAModelOnlyTheDeclaration) {
  TSXMLTree tree;
  tree.SetStatXMLOutput(&kHoltResiduals, 3, 0.95);
  EXPECT_EQ(WriteText(tree, false), kDeclaration);
  EXPECT_EQ(WriteText(tree, false), kDeclaration);
}

TEST(StatXMLTreeTest, StatXMLBeforePMMLBeforeNative) {
  TSXMLTree tree;
  // A native model waits for a native write that never comes.
  ASSERT_TRUE(tree.AddModelTree(testing_support::MakeSimpleModel(),
                                TSXDictionaryRefs("S", "", "y")));
  tree.SetPMMLOutput(true);
  tree.SetStatXMLOutput(&kHoltResiduals, 3, 0.95);
  tree.SetPMMLOutput(false);  // StatXML mode stays
  EXPECT_EQ(WriteText(tree, false), kDeclaration);
  // References are not checked: the predictors need not match.
  ASSERT_TRUE(tree.AddModelTree(MakeHoltModel(),
                                TSXDictionaryRefs("", "", "visits", {"x"})));
  EXPECT_EQ(WriteText(tree), ReadTestData("statxml/es_model.xml"));
  EXPECT_EQ(tree.GetModelCount(), 1);

  TSXMLTreeImp imp;
  EXPECT_FALSE(imp.GetStatXMLOutputFlag());
  imp.SetStatXMLOutputFlag(nullptr, 0, 0.95);
  EXPECT_TRUE(imp.GetStatXMLOutputFlag());
}

TEST(StatXMLTreeTest, NullHandleDoesNothing) {
  TSXMLTree tree(nullptr);
  tree.SetStatXMLOutput(&kHoltResiduals, 3, 0.95);
  EXPECT_FALSE(tree.AddModelTree(MakeHoltModel(), kHoltRefs));
  EXPECT_EQ(WriteText(tree, false), "");
}

}  // namespace
