// The tree in StatXML mode: whole documents (tests/data/statxml/*.xml), the
// mode's precedence, what it keeps between adds; and every allocation of
// adding and writing made to fail in turn (this binary's operator new can
// fail): the tree keeps its document, or none, and nothing leaks. The
// documents' numbers were computed with scipy and statsmodels (t, 2 *
// t.sf(|t|, df), estimate -+ t.ppf(0.975, df) * standard error; acf and pacf
// as in tests/modelapi); the library's last digits were kept where they lie
// within the tested accuracy of its t quantile (about 3e-10 relative) and of
// rounding (1e-14).
#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>
#include <valarray>

#include "support/arima_fixtures.h"
#include "support/failing_allocator.h"
#include "support/test_data.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

using testing_support::BasicInfo;
constexpr double kNA = MV::gMissingValue;
const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";

// Sets the fit statistics `values` of `types` in `info`.
void SetStatistics(EstimationInfo& info,
                   std::initializer_list<BFSharedConst::GOFStatType> types,
                   std::initializer_list<double> values) {
  auto value = values.begin();
  for (const auto type : types) info.SetGOFStat(type, *value++);
}

// es_model.xml: a Holt model of "visits" with every statistic that the
// document reports (and NRMBIC, which it does not), a Ljung-Box test, and
// kHoltResiduals at 3 lags.
TSFModel MakeHoltModel() {
  namespace S = BFSharedConst;
  EstimationInfo info = BasicInfo(0, 36, 34);
  SetStatistics(
      info,
      {S::MSE, S::RMSE, S::RMSPE, S::MAPE, S::MAXAPE, S::MAE, S::MAXAE, S::AIC,
       S::BIC, S::RSQ, S::SRSQ, S::NRMBIC},
      {4.5, 2.125, 4.75, 3.25, 9.5, 1.75, 5.25, 60.5, 64.25, 0.875, 0.5, 1.5});
  info.SetLBStat(10.5, 18, 16, 0.881);
  return testing_support::MakeESModel(ESModelSpec(ESModelSpec::ESHolt),
                                      {0.4, 0.1}, {0.08, 0.05},
                                      WIESSmState(20, 0.5), info);
}
const std::valarray<double> kHoltResiduals = {0.5,  -1.25, 0.75, 1.5,   -0.5,
                                              -1.0, 0.25,  1.25, -0.75, 0.5};
const TSXDictionaryRefs kHoltRefs("Visits", "", "visits");

// arima_model.xml: ARIMA(1,1,1)(0,1,1) with season 12 of "sales", the
// predictor "advertising" with numerator and denominator lag 1, an additive
// outlier, a level shift and a transient; kSalesResiduals at 4 lags. The
// estimates: AR 1, MA 1, seasonal MA 1, numerator lags 0 and 1, denominator
// lag 1, the additive outlier, the level shift, the transient's magnitude
// and damping.
TSFModel MakeSalesModel() {
  namespace S = BFSharedConst;
  AMModelSpec spec;
  spec.SetSeasonLength(12);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  spec.SetYDiff(1, 1);
  spec.SetARStruct({1}, {});
  spec.SetMAStruct({1}, {1});
  // Transformation, differences, delay, numerator and denominator lags.
  spec.AddPredictor({{}, 1, 1, 1, {1}, {}, {1}, {}});
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Additive, 17),
                    TSOutlierSpec(TSOutlierSpec::LevelShift, 38),
                    TSOutlierSpec(TSOutlierSpec::Transient, 45)});
  EstimationInfo info = BasicInfo(0, 60, 38, 0.00184);
  SetStatistics(
      info, {S::MSE, S::RMSE, S::MAPE, S::MAE, S::BIC, S::AIC, S::RSQ, S::SRSQ},
      {41.27, 6.424, 2.716, 5.083, 312.5, 301.25, 0.9381, 0.4475});
  info.SetLBStat(14.62, 18, 15, 0.479);
  return testing_support::MakeARIMAModel<ARMAMLForecastState>(
      spec,
      {0.3124, 0.5871, 0.6342, 0.0215, 0.0087, 0.4512, 0.1873, -0.0941, 0.2205,
       0.6125},
      {0.1287, 0.1093, 0.0978, 0.0052, 0.0049, 0.1625, 0.0412, 0.0367, 0.0534,
       0.1475},
      info,
      [](ARMAMLForecastState& state) { state.SetStateSpan(TSSpan(0, 60, 0)); });
}
const std::valarray<double> kSalesResiduals = {
    kNA,   kNA,    0.021,  -0.034, 0.012,  0.045, -0.027, -0.008,
    0.031, -0.042, 0.019,  0.006,  -0.015, 0.038, -0.021, -0.033,
    0.027, 0.014,  -0.009, 0.041,  -0.036, 0.002, 0.017,  -0.024};
const TSXDictionaryRefs kSalesRefs("Sales", "Monthly sales", "sales",
                                   {"advertising"});

// missing_statistics.xml: AR(1) of "y" without fit statistics, with a
// Ljung-Box statistic whose significance is missing; no residuals.
TSFModel MakeBareARModel() {
  AMModelSpec spec;
  spec.SetARStruct({1}, {});
  EstimationInfo info = BasicInfo();
  info.SetLBStat(7.5, 6, 4, kNA);
  return testing_support::MakeARIMAModel<ARMACLSForecastState>(spec, {0.5},
                                                               {0.1}, info);
}
const TSXDictionaryRefs kBareRefs("AR", "", "y");

// What `tree` writes, and whether it answers `expected`.
std::string WriteText(TSXMLTree& tree, bool expected = true) {
  std::ostringstream out;
  EXPECT_EQ(tree.WriteToStream(out), expected);
  return out.str();
}

std::string Doc(const std::string& name) {
  return testing_support::ReadTestData("statxml/" + name + ".xml");
}

// No series, an empty one, one without usable values, or no lags: no
// correlation blocks.
TEST(StatXMLTreeTest, NoResidualsNoCorrelations) {
  const std::valarray<double> empty, missing(kNA, 5);
  const std::pair<const std::valarray<double>*, int> series[] = {
      {nullptr, 12}, {&empty, 12}, {&missing, 12}, {&kHoltResiduals, 0}};
  for (const auto& [values, lags] : series) {
    TSXMLTree tree;
    tree.SetStatXMLOutput(values, lags, 0.95);
    ASSERT_TRUE(tree.AddModelTree(MakeBareARModel(), kBareRefs));
    EXPECT_EQ(WriteText(tree), Doc("missing_statistics"));
  }
}

// Each add replaces the document (and keeps no model); the series is read
// at each add, through its pointer; writes are repeatable.
TEST(StatXMLTreeTest, EachModelReplacesTheDocument) {
  TSXMLTree tree;
  tree.SetStatXMLOutput(&kHoltResiduals, 3, 0.95);
  ASSERT_TRUE(tree.AddModelTree(MakeSalesModel(), kSalesRefs));
  std::valarray<double> residuals = kSalesResiduals;
  tree.SetStatXMLOutput(&residuals, 4, 0.95);
  ASSERT_TRUE(tree.AddModelTree(MakeHoltModel(), kHoltRefs));
  residuals = kHoltResiduals;
  tree.SetStatXMLOutput(&residuals, 3, 0.95);
  ASSERT_TRUE(tree.AddModelTree(MakeHoltModel(), kHoltRefs));
  EXPECT_EQ(WriteText(tree), Doc("es_model"));
  EXPECT_EQ(WriteText(tree), Doc("es_model"));
  EXPECT_EQ(tree.GetModelCount(), 0);

  residuals = kSalesResiduals;
  tree.SetStatXMLOutput(&residuals, 4, 0.95);
  ASSERT_TRUE(tree.AddModelTree(MakeSalesModel(), kSalesRefs));
  EXPECT_EQ(WriteText(tree), Doc("arima_model"));
  // An empty handle is refused and the document stays.
  EXPECT_FALSE(tree.AddModelTree(TSFModel(), kSalesRefs));
  EXPECT_EQ(WriteText(tree), Doc("arima_model"));
}

// Without a model only the declaration; a native model waits for a native
// write that never comes; StatXML mode stays when PMML mode is turned off;
// references are not checked (the predictors need not match); a null
// handle does nothing.
TEST(StatXMLTreeTest, ModeAndHandles) {
  TSXMLTree tree;
  ASSERT_TRUE(tree.AddModelTree(testing_support::MakeSimpleModel(),
                                TSXDictionaryRefs("S", "", "y")));
  tree.SetPMMLOutput(true);
  tree.SetStatXMLOutput(&kHoltResiduals, 3, 0.95);
  tree.SetPMMLOutput(false);
  EXPECT_EQ(WriteText(tree, false), kDeclaration);
  EXPECT_EQ(WriteText(tree, false), kDeclaration);
  ASSERT_TRUE(tree.AddModelTree(MakeHoltModel(),
                                TSXDictionaryRefs("", "", "visits", {"x"})));
  EXPECT_EQ(WriteText(tree), Doc("es_model"));
  EXPECT_EQ(tree.GetModelCount(), 1);

  TSXMLTree null(nullptr);
  null.SetStatXMLOutput(&kHoltResiduals, 3, 0.95);
  EXPECT_FALSE(null.AddModelTree(MakeHoltModel(), kHoltRefs));
  EXPECT_EQ(WriteText(null, false), "");
}

std::string AnyText(TSXMLTree& tree) {
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

// Adding the sales model to a StatXML tree without a document and to one with
// the Holt model's, and writing the sales model's, with the n-th allocation
// failing, n = 0, 1, ..., until a run completes: a failure leaves the
// tree's document as it was and frees all it took; the run that completes
// writes and leaves what a run without failures does. The stream has its
// room up front.
TEST(StatXMLAllocationFailureTest, AddAndWriteKeepTheDocument) {
  const TSFModel holt = MakeHoltModel(), sales = MakeSalesModel();
  for (const int run : {0, 1, 2}) {
    SCOPED_TRACE(run);
    const auto make = [run, &holt, &sales] {
      TSXMLTree tree;
      tree.SetStatXMLOutput(&kSalesResiduals, 4, 0.95);
      if (run == 1) tree.AddModelTree(holt, kHoltRefs);
      if (run == 2) tree.AddModelTree(sales, kSalesRefs);
      return tree;
    };
    const auto change = [run, &sales](TSXMLTree& tree, std::ostream& out) {
      EXPECT_TRUE(run == 2 ? tree.WriteToStream(out)
                           : tree.AddModelTree(sales, kSalesRefs));
    };
    TSXMLTree before = make(), after = make();
    std::ostringstream written;
    change(after, written);
    const std::string documents[] = {AnyText(before), AnyText(after)};
    const long failures =
        testing_support::ForEachFailingAllocation([&](long n) {
          const long live = testing_support::gLiveAllocations;
          bool completed = true;
          {
            TSXMLTree tree = make();
            std::ostringstream out(std::string(1 << 16, ' '));
            try {
              testing_support::FailingAllocations failing(n);
              change(tree, out);
            } catch (const std::bad_alloc&) {
              completed = false;
            }
            EXPECT_EQ(AnyText(tree), documents[completed]);
            if (completed) {
              EXPECT_EQ(out.str().substr(0, static_cast<size_t>(out.tellp())),
                        written.str());
            }
          }
          EXPECT_EQ(testing_support::gLiveAllocations, live);
          return completed;
        });
    EXPECT_GE(failures, run == 2 ? 1 : 100);
  }
}

}  // namespace
