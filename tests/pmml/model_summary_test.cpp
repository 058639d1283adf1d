// The record of the model added last: statistics by key, t statistics and
// what a later Fill keeps. Which estimate each row reads shows in the texts
// of es_model_test.cpp.
#include "tsxml/pmml/model_summary.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/model_fixtures.h"
#include "tsxml/base/dictionary_refs.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/modelapi/stat_util.h"

namespace {

using testing_support::BasicInfo;
using testing_support::MakeESModel;
using tsxml::TSXModelSummary;

constexpr double kMissing = MV::gMissingValue;

// Every statistic set to a distinct value, so that a mixed-up key shows.
EstimationInfo FullInfo() {
  EstimationInfo info = BasicInfo(0, 40, 37, 2.5);
  for (int type = 0; type < BFSharedConst::kGOFStatTypeCount; ++type) {
    info.SetGOFStat(static_cast<BFSharedConst::GOFStatType>(type), 100 + type);
  }
  info.SetLBStat(12.5, 18, 16, 0.75);
  return info;
}

std::string Names(const TSXModelSummary& summary) {
  return summary.modelName + "|" + summary.modelDescriptor + "|" +
         summary.dependentVarID;
}

TEST(ModelSummaryTest, FillReadsEveryStatisticByItsKeyAndLaterFillsReplace) {
  TSXModelSummary summary;
  const TSFModel winters = MakeESModel(
      ESModelSpec(ESModelSpec::ESAdditiveWinters, 4), {0.5, 0.25, 0.125},
      {0.1, 0.05, 0.0}, WIESSmState(10, 1, 2, {1, 2, 3, 4}), FullInfo());
  summary.Fill(winters, TSXDictionaryRefs("N", "D", "y"), {5, 6, 7});
  EXPECT_EQ(Names(summary), "N|D|y");
  EXPECT_EQ(summary.model.GetImp(), winters.GetImp());
  const std::pair<double, double> stats[] = {
      {summary.mse, 100},           {summary.rmse, 101},
      {summary.mape, 102},          {summary.mae, 103},
      {summary.maxAPE, 104},        {summary.maxAE, 105},
      {summary.rSquared, 106},      {summary.normalizedBIC, 107},
      {summary.logLikelihood, 109}, {summary.stationaryRSquared, 116},
      {summary.aic, 114},           {summary.bic, 115},
      {summary.ljungBoxQ, 12.5},    {summary.ljungBoxCount, 18},
      {summary.ljungBoxSig, 0.75}};
  for (const auto& [got, want] : stats) EXPECT_EQ(got, want) << want;
  EXPECT_EQ(summary.history.size(), 3u);

  // An empty model changes only the names.
  summary.Fill(TSFModel(), TSXDictionaryRefs("M", "", "z"), {1});
  EXPECT_EQ(Names(summary), "M||z");
  EXPECT_EQ(summary.rmse, 101);

  // An ARIMA model clears the rows and keeps the kinds; a type outside the
  // table leaves neither.
  summary.Fill(winters, TSXDictionaryRefs(), {});
  auto state = std::make_unique<ARMACLSForecastState>(AMModelSpec());
  summary.Fill(TSFModel(new TSFModelImp(std::move(state), FullInfo())),
               TSXDictionaryRefs(), {});
  EXPECT_TRUE(summary.esParameterRows.empty());
  EXPECT_EQ(summary.esParameterKinds, (std::vector<int32_t>{0, 1, 2}));
  summary.Fill(MakeESModel(ESModelSpec(9), {}, {}, WIESSmState(1, 1)),
               TSXDictionaryRefs(), {});
  EXPECT_TRUE(summary.esParameterKinds.empty());
  EXPECT_TRUE(summary.esParameterRows.empty());
}

TEST(ModelSummaryTest, TStatisticAndSignificance) {
  // Estimates 2 and -2 with one standard error: a t statistic of 2 and its
  // negative twin share one significance; a standard error of 0 or a missing
  // one leaves both missing and keeps the estimate.
  ESModelSpec spec(ESModelSpec::ESAdditiveWinters, 4);
  TSXModelSummary summary;
  summary.Fill(MakeESModel(spec, {2, -2, 0.5}, {1, 1, 0},
                           WIESSmState(1, 1, 0, {1, 2, 3, 4})),
               TSXDictionaryRefs(), {});
  using Rows = std::vector<std::vector<double>>;
  const double significance = 2 * TSStatUtil::CDFStudentsT(-2, 23);
  EXPECT_EQ(summary.esParameterRows, (Rows{{2, 1, 2, significance},
                                           {-2, 1, -2, significance},
                                           {0.5, 0, kMissing, kMissing}}));

  summary.Fill(MakeESModel(ESModelSpec(ESModelSpec::ESSimple), {0.5}, {},
                           WIESSmState(1, 0)),
               TSXDictionaryRefs(), {});
  EXPECT_EQ(summary.esParameterRows,
            (Rows{{0.5, kMissing, kMissing, kMissing}}));
}

}  // namespace
