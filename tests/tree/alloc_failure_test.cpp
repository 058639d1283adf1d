// Every allocation of adding and writing is made to fail in turn: the
// exception passes through, the tree is unchanged and nothing leaks (the
// sanitizer build checks the leaks).
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <sstream>

#include "support/arima_fixtures.h"
#include "support/date_spec_fixtures.h"
#include "support/failing_allocator.h"
#include "support/model_fixtures.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

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

// A tree with the first `count` of a simple model on "y", a seasonal one, an
// ARIMA one and a Croston one; in PMML mode, with a date specification, the
// seasonal one is on "z", so that adding it changes DataDictionary, and the
// PMML document is consistent when asked.
TSXMLTree MakeTree(int count, bool pmml = false, bool consistent = false) {
  TSXMLTree tree;
  tree.SetPMMLOutput(pmml);
  tree.SetPMMLConsistent(consistent);
  tree.SetApplication("app", "1", "");
  if (pmml) tree.AddDateSpec(testing_support::MonthlyDateSpec(2001), "m");
  const TSXDictionaryRefs refs("M", "", "y");
  if (count > 0) tree.AddModelTree(MakeSimpleModel(), refs);
  if (count > 1) {
    tree.AddModelTree(MakeSeasonalModel({5, 6, 7}),
                      TSXDictionaryRefs("M", "", pmml ? "z" : "y"));
  }
  if (count > 2) {
    tree.AddModelTree(MakeFullARIMAModel<ARMAMLSpForecastState>(),
                      TSXDictionaryRefs("A", "", "y", {"x"}));
  }
  if (count > 3) tree.AddModelTree(MakeCrostonModel(), refs);
  return tree;
}

// Runs `change` on the tree that `make` gives with every allocation failing
// in turn: each failure leaves the tree as it was (its model count and its
// document), and the run that completes writes what a run without failures
// writes and leaves the same tree. The stream has its room up front, so that
// it allocates nothing while armed.
void CheckEveryFailure(
    const std::function<TSXMLTree()>& make,
    const std::function<void(TSXMLTree&, std::ostream&)>& change) {
  TSXMLTree before = make();
  const int count = before.GetModelCount();
  const std::string document = WriteAll(before);
  TSXMLTree after = make();
  std::ostringstream written;
  change(after, written);
  const int countAfter = after.GetModelCount();
  const std::string documentAfter = WriteAll(after);

  const long failures = testing_support::ForEachFailingAllocation([&](long n) {
    TSXMLTree tree = make();
    std::ostringstream out(std::string(1 << 20, ' '));
    try {
      testing_support::FailingAllocations failing(n);
      change(tree, out);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(tree.GetModelCount(), count);
      EXPECT_EQ(WriteAll(tree), document);
      return false;
    }
    EXPECT_EQ(out.str().substr(0, static_cast<size_t>(out.tellp())),
              written.str());
    EXPECT_EQ(tree.GetModelCount(), countAfter);
    EXPECT_EQ(WriteAll(tree), documentAfter);
    return true;
  });
  EXPECT_GT(failures, 3);
}

template <typename Model>
std::function<void(TSXMLTree&, std::ostream&)> Add(
    const Model& model, const TSXDictionaryRefs& refs) {
  return [model, refs](TSXMLTree& tree, std::ostream&) {
    EXPECT_TRUE(tree.AddModelTree(model, refs));
  };
}

// Natively, and in PMML mode in both forms with the models on another
// variable, so that DataDictionary changes: a smoothing model and ARIMA
// models of each state; natively a Croston model too.
TEST(AllocationFailureTest, AddModelTreeLeavesTheTreeUnchanged) {
  for (const int form : {0, 1, 2}) {  // native, PMML, consistent PMML
    const auto make = [form] { return MakeTree(1, form > 0, form == 2); };
    const std::string y = form > 0 ? "z" : "y";
    CheckEveryFailure(
        make, Add(MakeSeasonalModel({5, 6, 7}), TSXDictionaryRefs("M", "", y)));
    const TSXDictionaryRefs refs("A", "d", y, {"x"});
    CheckEveryFailure(make,
                      Add(MakeFullARIMAModel<ARMACLSForecastState>(), refs));
    CheckEveryFailure(make,
                      Add(MakeFullARIMAModel<ARMAMLForecastState>(), refs));
    CheckEveryFailure(make,
                      Add(MakeFullARIMAModel<ARMAMLSpForecastState>(), refs));
  }
  CheckEveryFailure([] { return MakeTree(1); },
                    Add(MakeCrostonModel(BFSharedConst::Logarithm),
                        TSXDictionaryRefs("C", "", "demand")));
}

// A failed write keeps the models for a later one (a native tree of every
// kind of model; PMML models, an ARIMA one among them, are not counted and
// stay for another write, in both forms).
TEST(AllocationFailureTest, WriteToStreamLeavesTheTreeUnchanged) {
  const auto write = [](TSXMLTree& tree, std::ostream& out) {
    EXPECT_TRUE(tree.WriteToStream(out));
  };
  CheckEveryFailure([] { return MakeTree(4); }, write);
  for (const bool consistent : {false, true}) {
    CheckEveryFailure([consistent] { return MakeTree(3, true, consistent); },
                      write);
  }
}

}  // namespace
