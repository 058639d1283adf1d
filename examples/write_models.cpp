// Builds fitted models in code (two exponential smoothing models, a seasonal
// ARIMA model with a predictor and outliers, and a Croston model) and writes
// the native model document for them to standard output; with --pmml, the
// PMML 4.2 document of the smoothing and ARIMA models instead (a Croston
// model has no PMML form); with --pmml-consistent, the same document as
// other PMML tools accept it; with --statxml, the statistics document of the
// ARIMA model.
//
//   write_models                    the native document
//   write_models --pmml             the PMML document
//   write_models --pmml-consistent  the consistent PMML document
//   write_models --statxml          the StatXML document
#include <cstring>
#include <iostream>
#include <memory>
#include <valarray>

#include "tsxml/base/missing_value.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

// Monthly visitors, 2019-2022, in thousands.
const std::valarray<double> kVisitors = {
    112, 118, 132, 129, 121, 135, 148, 148, 136, 119, 104, 118,
    115, 126, 141, 135, 125, 149, 170, 170, 158, 133, 114, 140,
    145, 150, 178, 163, 172, 178, 199, 199, 184, 162, 146, 166,
    171, 180, 193, 181, 183, 218, 230, 242, 209, 191, 172, 194};

// A simple model of weekly call volumes.
TSFModel MakeSimpleModel() {
  ESModelSpec spec(ESModelSpec::ESSimple);
  WIESSmState finalState(412.7, 0.0);
  auto state = std::make_unique<ESForecastState>(
      spec, std::valarray<double>{0.3171}, std::valarray<double>{0.0584},
      finalState, WIESSmState(398.0, 0.0));

  EstimationInfo info;
  info.SetSpan(TSSpan(0, 104));
  info.SetDegreesOfFreedom(103);
  info.SetErrorVariance(218.46);
  info.SetGOFStat(BFSharedConst::MSE, 218.46);
  info.SetGOFStat(BFSharedConst::RMSE, 14.78);
  info.SetGOFStat(BFSharedConst::MAPE, 2.91);
  info.SetGOFStat(BFSharedConst::MAE, 11.52);
  info.SetGOFStat(BFSharedConst::RSQ, 0.614);
  info.SetGOFStat(BFSharedConst::NRMBIC, 5.437);
  // The model has no stationary R squared: that statistic stays missing.
  info.SetLBStat(17.93, 18, 17, 0.394);
  return TSFModel(new TSFModelImp(std::move(state), info));
}

// A multiplicative Winters model of the monthly visitors, on the log scale.
TSFModel MakeWintersModel() {
  ESModelSpec spec(ESModelSpec::ESMultiplicativeWinters, 12);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  const std::valarray<double> seasonal = {0.912, 0.934, 1.021, 0.987,
                                          0.976, 1.063, 1.148, 1.152,
                                          1.041, 0.947, 0.861, 0.958};
  WIESSmState finalState(5.2781, 0.00917, 3, seasonal);
  WIESSmState initial(4.7362, 0.00841, 0, seasonal);
  auto state = std::make_unique<ESForecastState>(
      spec, std::valarray<double>{0.7542, 0.0001, 0.2213},
      std::valarray<double>{0.0911, 0.0032, 0.1187}, finalState, initial);

  EstimationInfo info;
  info.SetSpan(TSSpan(0, 48));
  info.SetDegreesOfFreedom(45);
  info.SetErrorVariance(0.00142);
  info.SetGOFStat(BFSharedConst::MSE, 38.61);
  info.SetGOFStat(BFSharedConst::RMSE, 6.214);
  info.SetGOFStat(BFSharedConst::MAPE, 3.118);
  info.SetGOFStat(BFSharedConst::MAE, 4.907);
  info.SetGOFStat(BFSharedConst::MAXAPE, 9.84);
  info.SetGOFStat(BFSharedConst::MAXAE, 15.02);
  info.SetGOFStat(BFSharedConst::RSQ, 0.9512);
  info.SetGOFStat(BFSharedConst::NRMBIC, 3.874);
  info.SetGOFStat(BFSharedConst::SRSQ, 0.6217);
  info.SetLBStat(21.05, 18, 15, 0.135);
  return TSFModel(new TSFModelImp(std::move(state), info, kVisitors));
}

// Monthly sales on the log scale: ARIMA(1,1,1)(0,1,1) with season 12, the
// advertising budget as a predictor with a transfer function, an additive
// outlier and a level shift. Fitted by exact maximum likelihood.
TSFModel MakeSalesARIMAModel() {
  AMModelSpec spec;
  spec.SetSeasonLength(12);
  spec.SetYTransformSpec(TSTransformSpec(BFSharedConst::Logarithm));
  spec.SetYDiff(1, 1);
  spec.SetARStruct({1}, {});
  spec.SetMAStruct({1}, {1});
  AMPredictorSpec advertising;
  advertising.nonSeasonalDiff = 1;
  advertising.seasonalDiff = 1;
  advertising.delay = 1;
  advertising.numeratorNonSeasonal = {1};
  advertising.denominatorNonSeasonal = {1};
  spec.AddPredictor(advertising);
  spec.SetOutliers({TSOutlierSpec(TSOutlierSpec::Additive, 17),
                    TSOutlierSpec(TSOutlierSpec::LevelShift, 38)});

  // AR 1, MA 1, seasonal MA 1, numerator lags 0 and 1, denominator lag 1,
  // the two outliers.
  auto state = std::make_unique<ARMAMLForecastState>(
      spec,
      std::valarray<double>{0.3124, 0.5871, 0.6342, 0.0215, 0.0087, 0.4512,
                            0.1873, -0.0941},
      std::valarray<double>{0.1287, 0.1093, 0.0978, 0.0052, 0.0049, 0.1625,
                            0.0412, 0.0367});
  state->SetStateSpan(TSSpan(0, 60, 0));
  state->SetXHistory(0, {42.5, 45.0, 47.5}, {0.9137, 0.9671, 1.0214});
  state->SetActualZ({0.0213, -0.0148, 0.0376, 0.0091});
  state->SetPredZ({0.0187, -0.0102, 0.0298, 0.0124});
  state->SetFinalOmega(
      DSymMat(3, {0.0031, 0.0012, 0.0027, 0.0004, 0.0009, 0.0022}));
  state->SetFinalStateV({0.0091, -0.0053, 0.0017});

  EstimationInfo info;
  info.SetSpan(TSSpan(0, 60));
  info.SetDegreesOfFreedom(39);
  info.SetErrorVariance(0.00184);
  info.SetGOFStat(BFSharedConst::MSE, 41.27);
  info.SetGOFStat(BFSharedConst::RMSE, 6.424);
  info.SetGOFStat(BFSharedConst::MAPE, 2.716);
  info.SetGOFStat(BFSharedConst::MAE, 5.083);
  info.SetGOFStat(BFSharedConst::RSQ, 0.9381);
  info.SetGOFStat(BFSharedConst::NRMBIC, 4.102);
  info.SetGOFStat(BFSharedConst::SRSQ, 0.4475);
  info.SetLBStat(14.62, 18, 15, 0.479);
  return TSFModel(new TSFModelImp(std::move(state), info));
}

// One simple smoothing sub-model of the Croston model: its level and its
// smoothing weight.
ESForecastState MakeSubmodel(double level, double alpha, double stdError) {
  return ESForecastState(
      ESModelSpec(ESModelSpec::ESSimple), std::valarray<double>{alpha},
      std::valarray<double>{stdError}, WIESSmState(level, 0.0));
}

// Weekly demand for a spare part, with many weeks without demand.
TSFCrModel MakeSparePartsModel() {
  EstimationInfo info;
  info.SetSpan(TSSpan(0, 156));
  info.SetDegreesOfFreedom(154);
  info.SetErrorVariance(5.31);
  info.SetGOFStat(BFSharedConst::MSE, 5.31);
  info.SetGOFStat(BFSharedConst::RMSE, 2.304);
  info.SetGOFStat(BFSharedConst::MAE, 1.872);
  info.SetGOFStat(BFSharedConst::MAXAE, 11.4);
  // Weeks without demand leave the percentage errors undefined: missing.
  return TSFCrModel(new TSFCrModelImp(MakeSubmodel(6.82, 0.15, 0.062),
                                      MakeSubmodel(3.41, 0.1, 0.048),
                                      MakeSubmodel(2.27, 0.2, 0.071), info));
}

// The native document of all four models.
int WriteNative() {
  TSXMLTree tree;
  tree.SetApplication("tsxml example", "1.0", "");

  bool added = tree.AddModelTree(
      MakeSimpleModel(),
      TSXDictionaryRefs("Calls", "Weekly call volume", "calls"));
  added = tree.AddModelTree(MakeWintersModel(),
                            TSXDictionaryRefs("Visitors", "", "visitors")) &&
          added;
  added = tree.AddModelTree(MakeSalesARIMAModel(),
                            TSXDictionaryRefs("Sales", "Monthly sales", "sales",
                                              {"advertising"})) &&
          added;
  added = tree.AddModelTree(MakeSparePartsModel(),
                            TSXDictionaryRefs("Spare parts", "", "demand")) &&
          added;
  if (!added || !tree.WriteToStream(std::cout)) {
    std::cerr << "write_models: a model could not be written\n";
    return 1;
  }
  std::cout << '\n';
  return 0;
}

// The PMML document of the smoothing and ARIMA models. The model added last
// decides the data dictionary, here the monthly visitors, and the date
// specification registered last names its time field ("Month"); the
// consistent document defines the fields of the other models too.
int WritePMML(bool consistent) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.SetPMMLConsistent(consistent);
  tree.SetApplication("tsxml example", "1.0", "");

  TSXDateSpec monthly(TSXDateSpec::Year);
  monthly.AddPeriod(TSXDateSpec::Month, 12, 0, 0);
  TSXDateSpec::TSXIndexTuple january2019(monthly);
  january2019.SetIndexes({2019, 0});
  monthly.SetFirstCaseIndex(january2019);
  TSXDictionaryRefs visitors("Visitors", "", "visitors");
  visitors.SetDateSpecID(tree.AddDateSpec(monthly, "Months from 2019"));

  tree.AddModelTree(MakeSimpleModel(),
                    TSXDictionaryRefs("Calls", "Weekly call volume", "calls"));
  tree.AddModelTree(
      MakeSalesARIMAModel(),
      TSXDictionaryRefs("Sales", "Monthly sales", "sales", {"advertising"}));
  tree.AddModelTree(MakeWintersModel(), visitors);
  tree.WriteToStream(std::cout);
  std::cout << '\n';
  return 0;
}

// The residuals of the sales model, after its differencing and its AR term
// (the first 13 months have none).
const std::valarray<double> kSalesResiduals = {
    -0.0337, -0.0657, -0.0271, 0.0145,  0.0530,  0.0189,  -0.0218, -0.0399,
    0.0216,  0.0781,  0.0321,  -0.0484, -0.0558, 0.0551,  0.0287,  -0.0702,
    -0.0253, -0.0499, -0.0411, -0.0284, -0.0361, 0.0143,  0.0043,  -0.0256,
    0.0098,  0.0400,  -0.0586, -0.0315, -0.0444, -0.0196, -0.0563, -0.0154,
    -0.0013, -0.0133, -0.0478, -0.0298, -0.0508, -0.0707, -0.0076, -0.0438,
    0.0352,  0.0448,  -0.0749, -0.0137, -0.0428, -0.0125, 0.0022};

// The StatXML document of the sales model: its fit, its parameters with 95 %
// confidence limits, its outliers and the correlations of its residuals at
// lags 1 to 12.
int WriteStatXML() {
  std::valarray<double> residuals(MV::gMissingValue, 60);
  residuals[std::slice(13, kSalesResiduals.size(), 1)] = kSalesResiduals;

  TSXMLTree tree;
  tree.SetStatXMLOutput(&residuals, 12, 0.95);
  if (!tree.AddModelTree(MakeSalesARIMAModel(),
                         TSXDictionaryRefs("Sales", "Monthly sales", "sales",
                                           {"advertising"})) ||
      !tree.WriteToStream(std::cout)) {
    std::cerr << "write_models: the model could not be written\n";
    return 1;
  }
  std::cout << '\n';
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1) return WriteNative();
  if (argc == 2 && std::strcmp(argv[1], "--pmml") == 0) {
    return WritePMML(false);
  }
  if (argc == 2 && std::strcmp(argv[1], "--pmml-consistent") == 0) {
    return WritePMML(true);
  }
  if (argc == 2 && std::strcmp(argv[1], "--statxml") == 0) {
    return WriteStatXML();
  }
  std::cerr << "usage: write_models [--pmml | --pmml-consistent | --statxml]\n";
  return 2;
}
