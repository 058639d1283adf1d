// Every allocation of adding and writing is made to fail in turn: the
// exception passes through, the tree is unchanged and nothing leaks (the
// sanitizer build checks the leaks).
#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "support/arima_fixtures.h"
#include "support/date_spec_fixtures.h"
#include "support/failing_allocator.h"
#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

using testing_support::FailingAllocations;
using testing_support::ForEachFailingAllocation;
using testing_support::MakeCrostonModel;
using testing_support::MakeFullARIMAModel;
using testing_support::MakeSimpleModel;

TSFModel MakeSeasonalModel(const std::valarray<double>& history = {}) {
  ESModelSpec spec(ESModelSpec::ESAdditiveWinters, 4);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  EstimationInfo info = testing_support::BasicInfo();
  info.SetGOFStat(BFSharedConst::RMSE, 1.5);
  info.SetLBStat(3, 18, 15, 0.5);
  return testing_support::MakeESModel(spec, {0.5, 0.25, 0.125}, {0.1, 0.2, 0.3},
                                      WIESSmState(10, 1, 2, {1, 2, 3, 4}), info,
                                      history);
}

std::string WriteAll(TSXMLTree& tree) {
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

// A tree with `count` models, the first simple on "y" and the others
// seasonal; in PMML mode, with a date specification, the others have a
// history and are on "z", so that the last add changes DataDictionary.
TSXMLTree MakeTree(int count, bool pmml = false) {
  TSXMLTree tree;
  tree.SetPMMLOutput(pmml);
  tree.SetApplication("app", "1", "");
  if (pmml) tree.AddDateSpec(testing_support::MonthlyDateSpec(2001), "m");
  for (int i = 0; i < count; ++i) {
    tree.AddModelTree(i == 0 ? MakeSimpleModel() : MakeSeasonalModel({5, 6, 7}),
                      TSXDictionaryRefs("M", "", i == 0 || !pmml ? "y" : "z"));
  }
  return tree;
}

// Adds `model` to the tree that `make` gives with every allocation failing
// in turn: each failure leaves the tree as it was (its model count and its
// document), and the run that completes gives the tree with the model added.
template <typename Model>
void CheckAddToTree(const std::function<TSXMLTree()>& make, const Model& model,
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
// write, and the run that completes writes the whole document. The stream
// has its room before, so that it allocates nothing while armed.
void CheckWriteToStream(const std::function<TSXMLTree()>& make, int count) {
  TSXMLTree reference = make();
  const std::string expectedText = WriteAll(reference);

  const long failures = ForEachFailingAllocation([&](long n) {
    TSXMLTree tree = make();
    std::ostringstream out(std::string(1 << 20, ' '));
    try {
      FailingAllocations armed(n);
      EXPECT_TRUE(tree.WriteToStream(out));
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(tree.GetModelCount(), count);
      EXPECT_EQ(WriteAll(tree), expectedText);
      return false;
    }
    EXPECT_EQ(tree.GetModelCount(), 0);
    EXPECT_EQ(out.str().substr(0, static_cast<size_t>(out.tellp())),
              expectedText);
    return true;
  });
  EXPECT_GT(failures, 3);
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
  CheckAddToTree([] { return MakeTree(1, true); }, MakeSeasonalModel({5, 6, 7}),
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
  CheckWriteToStream([] { return MakeTree(2, true); }, 0);
}

}  // namespace
