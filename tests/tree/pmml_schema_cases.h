// The PMML documents of the schema tests: every smoothing type, ARIMA models
// of each state, both kinds in one document, missing and odd values, empty
// names, and documents of generated ARIMA models. A case says why its
// default form falls outside the PMML schema, if it does; its consistent
// form never does. Shared by the schema test and by the program that writes
// the documents for the consistency test.
#ifndef TSXML_TESTS_TREE_PMML_SCHEMA_CASES_H
#define TSXML_TESTS_TREE_PMML_SCHEMA_CASES_H

#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <valarray>
#include <vector>

#include "pmml/arima_test_models.h"
#include "pmml/pmml_test_util.h"
#include "support/arima_fixtures.h"
#include "support/date_spec_fixtures.h"
#include "tsxml/tree/tsxml_tree.h"

namespace pmml_cases {

using Fill = std::function<void(TSXMLTree&)>;

struct Case {
  std::string name;           // letters, digits and "_": a file name
  Fill fill;                  // registers date specifications, adds models
  std::string outsideReason;  // empty: the default form is inside
  std::string holds;  // a text of the default form: the case is what it says
};

inline std::string WriteCase(const Case& c, bool consistent) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.SetPMMLConsistent(consistent);
  c.fill(tree);
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

constexpr int kTypeCount = 7;
inline const char* const kTypeNames[kTypeCount] = {
    "ESAdditiveWinters",       "ESBrown",          "ESDampedTrend", "ESHolt",
    "ESMultiplicativeWinters", "ESSimpleSeasonal", "ESSimple"};

// Years and months from March 2001, a five-day week with a gap and a first
// case day, and hours of the day (the last sets the time field, "time").
inline void AddDateSpecs(TSXMLTree& tree) {
  tree.AddDateSpec(testing_support::MonthlyDateSpec(2001, 2), "monthly & more");
  TSXDateSpec days(TSXDateSpec::Week);
  days.AddPeriod(TSXDateSpec::Day, 7, 0, 5);
  days.AddGap(3);
  days.SetFirstCaseDay(5, 3, 2024);
  tree.AddDateSpec(days, "");
  TSXDateSpec hours(TSXDateSpec::Day);
  hours.AddPeriod(TSXDateSpec::Hour, 24, 0, 0);
  hours.SetLowestIncrement(2);
  tree.AddDateSpec(hours, "every other hour");
}

// The smoothing models of `types`, each named by its type, on "y".
inline Fill Smoothing(std::vector<int> types,
                      pmml_test::ModelOptions options = {},
                      bool timeSeries = true, bool dateSpecs = true) {
  return [=](TSXMLTree& tree) {
    tree.SetESPMMLOutputTimeValue(timeSeries);
    if (dateSpecs) AddDateSpecs(tree);
    for (const int type : types) {
      tree.AddModelTree(pmml_test::MakeTypeModel(type, options),
                        TSXDictionaryRefs(kTypeNames[type], "", "y"));
    }
  };
}

// `models` with their references, in order.
inline Fill Models(std::vector<std::pair<TSFModel, TSXDictionaryRefs>> models) {
  return [models](TSXMLTree& tree) {
    for (const auto& [model, refs] : models) tree.AddModelTree(model, refs);
  };
}

// ARIMA models of random structure and state. Values are mostly finite,
// otherwise missing, infinite, NaN or the largest double; one name in eight
// is empty, and now and then the references name fewer predictors than the
// model has or the estimates are too few for the structure.
class ModelGenerator {
 public:
  explicit ModelGenerator(unsigned seed) : random_(seed) {}

  // A model and its references; `unnamed` tells whether a name is empty.
  std::pair<TSFModel, TSXDictionaryRefs> Next(bool& unnamed) {
    AMModelSpec spec;
    spec.SetSeasonLength(1 + 3 * Below(5));
    spec.SetYTransformSpec(TSTransformSpec(Below(3)));
    spec.SetYDiff(Below(3), Below(2));
    spec.SetMeanYPresent(Below(2) == 1);
    spec.SetARStruct(Lags(4), Lags(2));
    spec.SetMAStruct(Lags(3), Lags(2));
    const unsigned predictors = Below(3);
    for (unsigned i = 0; i < predictors; ++i) {
      AMPredictorSpec x;
      x.transform = TSTransformSpec(Below(3));
      x.nonSeasonalDiff = Below(2);
      x.seasonalDiff = Below(2);
      x.delay = Below(4);
      x.numeratorNonSeasonal = Lags(3);
      x.numeratorSeasonal = Lags(2);
      x.denominatorNonSeasonal = Lags(2);
      x.denominatorSeasonal = Lags(1);
      spec.AddPredictor(x);
    }
    TSOutlierSpecList outliers;
    for (unsigned i = Below(4); i > 0; --i) {
      outliers.Add(TSOutlierSpec(Below(9), Below(100)));
    }
    spec.SetOutliers(outliers);
    const unsigned count = spec.GetParameterCount(true);
    const std::valarray<double> estimates =
        Values(Below(6) == 0 ? Below(count + 1) : count);

    std::unique_ptr<ARMAForecastState> state;
    if (const unsigned kind = Below(3); kind == 0) {
      auto kalman =
          std::make_unique<ARMAMLForecastState>(spec, estimates, estimates);
      const unsigned n = Below(4);
      kalman->SetFinalOmega(DSymMat(n, Values(n * (n + 1) / 2)));
      kalman->SetFinalStateV(Values(n));
      state = std::move(kalman);
    } else if (kind == 1) {
      auto cls =
          std::make_unique<ARMACLSForecastState>(spec, estimates, estimates);
      cls->SetActualN(Values(Below(3)));
      cls->SetPredN(Values(Below(3)));
      state = std::move(cls);
    } else {
      auto theta =
          std::make_unique<ARMAMLSpForecastState>(spec, estimates, estimates);
      theta->SetActualN(Values(Below(3)));
      theta->SetPredN(Values(Below(3)));
      std::vector<std::vector<double>> thetas(Below(3));
      for (std::vector<double>& values : thetas) values = Vector(1 + Below(3));
      theta->SetFinalThetas(thetas);
      theta->SetFinalNu(Vector(Below(3)));
      theta->SetFinalIterCount(Below(20));
      state = std::move(theta);
    }
    state->SetStateSpan(TSSpan(0, 60, Below(3)));
    state->SetActualZ(Values(Below(3)));
    state->SetPredZ(Values(Below(3)));
    for (unsigned i = 0; i < predictors; ++i) {
      if (Below(3) != 0) state->SetXHistory(i, Values(2), Values(2));
    }
    EstimationInfo info = testing_support::BasicInfo(Below(10), 20 + Below(100),
                                                     Below(80), Value());
    info.SetGOFStat(BFSharedConst::RMSE, Value());

    unnamed = false;
    const auto name = [this, &unnamed](std::string word) {
      if (Below(8) == 0) word.clear();
      unnamed = unnamed || word.empty();
      return word;
    };
    std::vector<std::string> ids;
    const unsigned named = Below(4) == 0 ? Below(predictors + 1) : predictors;
    for (unsigned i = 0; i < named; ++i) {
      ids.push_back(name("x" + std::to_string(i)));
    }
    return {TSFModel(new TSFModelImp(std::move(state), info)),
            TSXDictionaryRefs("M", "", name(Below(2) ? "y" : "sales"), ids)};
  }

  unsigned Below(unsigned n) {
    return std::uniform_int_distribution<unsigned>(0, n - 1)(random_);
  }

 private:
  // Lags 1 to `max`, each present by chance.
  AMPowers Lags(unsigned max) {
    std::vector<unsigned> lags;
    for (unsigned lag = 1; lag <= max; ++lag) {
      if (Below(3) == 0) lags.push_back(lag);
    }
    return AMPowers(lags);
  }

  double Value() {
    switch (Below(12)) {
      case 0:
        return MV::gMissingValue;
      case 1:
        return std::numeric_limits<double>::infinity();
      case 2:
        return -std::numeric_limits<double>::infinity();
      case 3:
        return std::numeric_limits<double>::quiet_NaN();
      case 4:
        return std::numeric_limits<double>::max();
      default:
        return std::uniform_real_distribution<double>(-4, 4)(random_);
    }
  }

  std::valarray<double> Values(size_t n) {
    std::valarray<double> values(n);
    for (double& value : values) value = Value();
    return values;
  }

  std::vector<double> Vector(size_t n) {
    const std::valarray<double> values = Values(n);
    return std::vector<double>(std::begin(values), std::end(values));
  }

  std::mt19937 random_;
};

inline std::vector<Case> AllCases() {
  using pmml_test::IsSeasonal;
  using pmml_test::ModelOptions;
  const std::string incomplete =
      "a seasonal state without its level, trend or a seasonal value has no "
      "Array, which the schema requires";
  const std::string unnamed =
      "a field without a name has a MiningField and a DataField without "
      "\"name\", which the schema requires";
  const double inf = std::numeric_limits<double>::infinity();
  std::vector<Case> cases;

  // Each smoothing type alone, with and without TimeSeries and date
  // specifications; all seven in one document; no model.
  ModelOptions observed;
  observed.history = {3, 4.5, MV::gMissingValue, 6};
  for (int type = 0; type < kTypeCount; ++type) {
    for (const bool series : {true, false}) {
      for (const bool dateSpecs : {true, false}) {
        cases.push_back({std::string("es_") + kTypeNames[type] +
                             (series ? "_series" : "") +
                             (dateSpecs ? "_datespecs" : ""),
                         Smoothing({type}, observed, series, dateSpecs), "",
                         series ? "<TimeValue" : "<ExponentialSmoothing"});
      }
    }
  }
  ModelOptions seasons;
  seasons.seasonLength = 12;
  cases.push_back({"es_seven_models", Smoothing({0, 1, 2, 3, 4, 5, 6}, seasons),
                   "", "ESSimple"});
  cases.push_back({"no_model", Smoothing({}), "", "<DateSpecification"});
  cases.push_back(
      {"no_model_no_datespecs", Smoothing({}, {}, true, false), "", "<Header"});

  // A final state without its level, trend or a seasonal value.
  const char* const parts[] = {"level", "trend", "seasonal"};
  for (int type = 0; type < kTypeCount; ++type) {
    for (int missing = 0; missing < 3; ++missing) {
      const bool trend = type != ESModelSpec::ESSimpleSeasonal &&
                         type != ESModelSpec::ESSimple;
      if ((missing == 1 && !trend) || (missing == 2 && !IsSeasonal(type))) {
        continue;
      }
      ModelOptions options;
      options.missingLevel = missing == 0;
      options.missingTrend = missing == 1;
      options.missingSeasonal = missing == 2;
      cases.push_back(
          {std::string("es_") + kTypeNames[type] + "_no_" + parts[missing],
           Smoothing({type}, options), IsSeasonal(type) ? incomplete : "",
           "<Level"});
    }
  }

  // Missing estimates, statistics and initial values, which the default
  // form writes as the missing value's number text (a valid xs:double past
  // the range of a double); infinite and NaN values, as the standard library
  // prints them.
  EstimationInfo noVariance = testing_support::BasicInfo();
  noVariance.SetErrorVariance(MV::gMissingValue);
  ESModelSpec noPhi(ESModelSpec::ESDampedTrend);
  noPhi.SetESParameterIndex(ESModelSpec::DampingTrend, -1);
  const double missing = MV::gMissingValue;
  cases.push_back(
      {"es_missing_values",
       Models({{testing_support::MakeESModel(
                    noPhi, {missing, missing, 0.5}, {}, WIESSmState(10, 2),
                    noVariance, {1, missing}, WIESSmState(missing, missing)),
                TSXDictionaryRefs("D", "", "y")}}),
       "", "value=\"-1.79769313486232e+308\""});
  EstimationInfo infinite = testing_support::BasicInfo();
  infinite.SetGOFStat(BFSharedConst::RMSE, inf);
  infinite.SetErrorVariance(inf);
  cases.push_back(
      {"es_infinite_values",
       Models({{testing_support::MakeESModel(
                    ESModelSpec(ESModelSpec::ESAdditiveWinters, 2),
                    {0.5, 0.25, 0.125}, {}, WIESSmState(1, 0, 0, {inf, -inf}),
                    infinite, {}, WIESSmState(1, 0, 0, {1, inf})),
                TSXDictionaryRefs("Infinite", "", "y")}}),
       "an infinite RMSE is written \"inf\", which is no xs:double",
       "RMSE=\"inf\""});
  ModelOptions nanObservation;
  nanObservation.history = {1, std::numeric_limits<double>::quiet_NaN(), 2};
  cases.push_back(
      {"es_nan_observation",
       Models({{pmml_test::MakeTypeModel(ESModelSpec::ESSimple, nanObservation),
                TSXDictionaryRefs("N", "", "y")}}),
       "a NaN observation is written as the standard library prints it, "
       "which is no xs:double",
       "<TimeValue"});

  // ARIMA models of each state: with every part (a predictor, an additive
  // and a transient outlier, every list of the state), and with an AR term
  // alone.
  AMModelSpec ar1;
  ar1.SetARStruct({1}, {});
  const TSXDictionaryRefs full("A", "", "y", {"x"}), plain("A", "", "y");
  using pmml_test::MakeARIMAModel;
  using testing_support::MakeFullARIMAModel;
  cases.push_back({"arima_kalman",
                   Models({{MakeFullARIMAModel<ARMAMLForecastState>(), full}}),
                   "", "<FinalOmega"});
  cases.push_back({"arima_cls",
                   Models({{MakeFullARIMAModel<ARMACLSForecastState>(), full}}),
                   "", "finalIterationNumber=\"0\""});
  cases.push_back(
      {"arima_theta",
       Models({{MakeFullARIMAModel<ARMAMLSpForecastState>(), full}}), "",
       "<FinalTheta"});
  cases.push_back(
      {"arima_kalman_plain",
       Models({{MakeARIMAModel<ARMAMLForecastState>(ar1, {0.5}), plain}}), "",
       "<KalmanState/>"});
  cases.push_back(
      {"arima_cls_plain",
       Models({{MakeARIMAModel<ARMACLSForecastState>(ar1, {0.5}), plain}}), "",
       "<ThetaRecursionState"});
  cases.push_back(
      {"arima_theta_plain",
       Models({{MakeARIMAModel<ARMAMLSpForecastState>(ar1, {0.5}), plain}}), "",
       "<ThetaRecursionState"});

  // Both kinds in one document, each kind last, with date specifications;
  // references that name fewer predictors than the model has, an empty
  // name, an empty model.
  const TSFModel seasonal = pmml_test::MakeSeasonalKalmanModel();
  const TSXDictionaryRefs sales("S", "", "sales", {"price"});
  cases.push_back({"es_then_arima",
                   [seasonal, sales](TSXMLTree& tree) {
                     Smoothing({0, 6})(tree);
                     tree.AddModelTree(seasonal, sales);
                   },
                   "", "algorithmName=\"ARIMA\""});
  cases.push_back({"arima_then_es",
                   [seasonal, sales](TSXMLTree& tree) {
                     tree.AddModelTree(
                         MakeFullARIMAModel<ARMAMLSpForecastState>(),
                         TSXDictionaryRefs("T", "", "visits", {"price"}));
                     tree.AddModelTree(seasonal, sales);
                     Smoothing({4})(tree);
                   },
                   "", "<DateSpecification"});
  cases.push_back({"arima_fewer_names",
                   Models({{seasonal, TSXDictionaryRefs("S", "", "sales")}}),
                   "", "<PredicterEffect"});
  cases.push_back(
      {"arima_no_dependent",
       Models({{seasonal, TSXDictionaryRefs("S", "", "", {"price"})}}), unnamed,
       "<PredicterEffect"});
  cases.push_back(
      {"arima_unnamed_predictor",
       Models({{seasonal, TSXDictionaryRefs("S", "", "sales", {""})}}), unnamed,
       "<PredicterEffect"});
  cases.push_back(
      {"empty_model",
       Models({{TSFModel(), TSXDictionaryRefs("E", "", "e", {"x"})}}), "",
       "name=\"x\""});

  // Documents of one to three generated ARIMA models, now and then after a
  // smoothing model.
  ModelGenerator generator(20240607);
  for (int document = 0; document < 30; ++document) {
    std::vector<std::pair<TSFModel, TSXDictionaryRefs>> models;
    bool anyUnnamed = false;
    for (unsigned i = 1 + generator.Below(3); i > 0; --i) {
      bool unnamedField = false;
      models.push_back(generator.Next(unnamedField));
      anyUnnamed = anyUnnamed || unnamedField;
    }
    const Fill arima = Models(models);
    const Fill fill =
        generator.Below(3) != 0 ? arima : Fill([arima](TSXMLTree& tree) {
          Smoothing({1})(tree);
          arima(tree);
        });
    cases.push_back({"generated_" + std::to_string(document), fill,
                     anyUnnamed ? unnamed : "", "algorithmName=\"ARIMA\""});
  }
  return cases;
}

}  // namespace pmml_cases

#endif  // TSXML_TESTS_TREE_PMML_SCHEMA_CASES_H
