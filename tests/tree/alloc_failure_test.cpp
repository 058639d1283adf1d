// Every allocation of adding and writing is made to fail in turn: the
// exception passes through, the tree is unchanged and nothing leaks (the
// sanitizer build checks the leaks).
#include <gtest/gtest.h>

#include <ostream>
#include <sstream>

#include "support/arima_fixtures.h"
#include "support/date_spec_fixtures.h"
#include "support/failing_allocator.h"
#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

using testing_support::BasicInfo;
using testing_support::FailingAllocations;
using testing_support::ForEachFailingAllocation;
using testing_support::MakeCrostonModel;
using testing_support::MakeESModel;
using testing_support::MakeFullARIMAModel;
using testing_support::MakeSimpleModel;
using testing_support::ReservedBuffer;

TSFModel MakeSeasonalModel(const std::valarray<double>& history = {}) {
  ESModelSpec spec(ESModelSpec::ESAdditiveWinters, 4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  EstimationInfo info = BasicInfo();
  info.SetGOFStat(BFSharedConst::RMSE, 1.5);
  info.SetLBStat(3, 18, 15, 0.5);
  return MakeESModel(spec, {0.5, 0.25, 0.125}, {0.1, 0.2, 0.3},
                     WIESSmState(10, 1, 2, {1, 2, 3, 4}), info, history);
}

std::string WriteAll(TSXMLTree& tree) {
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

// A tree with `count` models, the first simple and the others seasonal.
TSXMLTree MakeTree(int count) {
  TSXMLTree tree;
  tree.SetApplication("app", "1", "");
  for (int i = 0; i < count; ++i) {
    tree.AddModelTree(i == 0 ? MakeSimpleModel() : MakeSeasonalModel(),
                      TSXDictionaryRefs("M", "", "y"));
  }
  return tree;
}

// Adds `model` to the tree that `make` gives with every allocation failing
// in turn: each failure leaves the tree as it was (its model count and its
// document), and the run that completes gives the tree with the model added.
template <typename MakeTreeFunction, typename Model>
void CheckAddToTree(MakeTreeFunction make, const Model& model,
                    const TSXDictionaryRefs& refs) {
  TSXMLTree expected = make();
  ASSERT_TRUE(expected.AddModelTree(model, refs));
  const int expectedCount = expected.GetModelCount();
  const std::string expectedText = WriteAll(expected);
  TSXMLTree unchanged = make();
  const int unchangedCount = unchanged.GetModelCount();
  const std::string unchangedText = WriteAll(unchanged);
  ASSERT_NE(expectedText, unchangedText);

  const long failures = ForEachFailingAllocation([&](long n) {
    TSXMLTree tree = make();
    try {
      FailingAllocations armed(n);
      EXPECT_TRUE(tree.AddModelTree(model, refs));
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(tree.GetModelCount(), unchangedCount);
      EXPECT_EQ(WriteAll(tree), unchangedText);
      return false;
    }
    EXPECT_EQ(tree.GetModelCount(), expectedCount);
    EXPECT_EQ(WriteAll(tree), expectedText);
    return true;
  });
  EXPECT_GT(failures, 10);
}

// Writes the tree that `make` gives, of `count` models, with every
// allocation failing in turn: each failure keeps the models for a later
// write, and the run that completes writes the whole document.
template <typename MakeTreeFunction>
void CheckWriteToStream(MakeTreeFunction make, int count) {
  TSXMLTree reference = make();
  const std::string expectedText = WriteAll(reference);

  const long failures = ForEachFailingAllocation([&](long n) {
    TSXMLTree tree = make();
    ReservedBuffer buffer(1 << 20);
    std::ostream out(&buffer);
    try {
      FailingAllocations armed(n);
      EXPECT_TRUE(tree.WriteToStream(out));
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(tree.GetModelCount(), count);
      EXPECT_EQ(WriteAll(tree), expectedText);
      return false;
    }
    EXPECT_EQ(tree.GetModelCount(), 0);
    EXPECT_EQ(buffer.str(), expectedText);
    return true;
  });
  EXPECT_GT(failures, 3);
}

// A PMML tree with a date specification and `count` models: a simple one on
// "y", then seasonal ones with a history on "z", so that the last add changes
// DataDictionary.
TSXMLTree MakePMMLTree(int count) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.SetApplication("app", "1", "");
  tree.AddDateSpec(testing_support::MonthlyDateSpec(2001), "monthly");
  for (int i = 0; i < count; ++i) {
    tree.AddModelTree(i == 0 ? MakeSimpleModel() : MakeSeasonalModel({5, 6, 7}),
                      TSXDictionaryRefs("M", "", i == 0 ? "y" : "z"));
  }
  return tree;
}

TEST(AllocationFailureTest, AddModelTreeLeavesTheTreeUnchanged) {
  const auto oneModel = [] { return MakeTree(1); };
  CheckAddToTree(oneModel, MakeSeasonalModel(),
                 TSXDictionaryRefs("M", "", "y"));
  const TSXDictionaryRefs refs("A", "d", "y", {"x"});
  CheckAddToTree(oneModel, MakeFullARIMAModel<ARMACLSForecastState>(), refs);
  CheckAddToTree(oneModel, MakeFullARIMAModel<ARMAMLForecastState>(), refs);
  CheckAddToTree(oneModel, MakeFullARIMAModel<ARMAMLSpForecastState>(), refs);
  CheckAddToTree(oneModel, MakeCrostonModel(BFSharedConst::Logarithm),
                 TSXDictionaryRefs("C", "", "demand"));
  CheckAddToTree([] { return MakePMMLTree(1); }, MakeSeasonalModel({5, 6, 7}),
                 TSXDictionaryRefs("M", "", "z"));
}

TEST(AllocationFailureTest, WriteToStreamLeavesTheTreeUnchanged) {
  // Simple, seasonal, ARIMA and Croston models.
  CheckWriteToStream(
      [] {
        TSXMLTree tree = MakeTree(2);
        tree.AddModelTree(MakeFullARIMAModel<ARMAMLSpForecastState>(),
                          TSXDictionaryRefs("A", "", "y", {"x"}));
        tree.AddModelTree(MakeCrostonModel(),
                          TSXDictionaryRefs("C", "", "demand"));
        return tree;
      },
      4);
  // PMML models are not counted, and the document stays for another write.
  CheckWriteToStream([] { return MakePMMLTree(2); }, 0);
}

}  // namespace
