// Builds two fitted exponential smoothing models in code and writes the
// native model document for them to standard output.
//
//   write_models            the native document
#include <iostream>
#include <memory>
#include <valarray>

#include "modelapi/forecast_model.h"
#include "tree/tsxml_tree.h"

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

}  // namespace

int main() {
  TSXMLTree tree;
  tree.SetApplication("tsxml example", "1.0", "");

  bool added = tree.AddModelTree(
      MakeSimpleModel(), TSXDictionaryRefs("Calls", "Weekly call volume",
                                           "calls"));
  added = tree.AddModelTree(MakeWintersModel(),
                            TSXDictionaryRefs("Visitors", "", "visitors")) &&
          added;
  if (!added || !tree.WriteToStream(std::cout)) {
    std::cerr << "write_models: a model could not be written\n";
    return 1;
  }
  std::cout << '\n';
  return 0;
}
