// The PMML documents of the schema tests: every smoothing type, ARIMA models
// with each state, with and without predictors and outliers, models of both
// kinds in one document, missing and odd values, and documents of generated
// ARIMA models. Each case says why its default form falls outside the PMML
// schema, if it does; its consistent form never does. Shared by the schema
// test and by the program that writes the documents for the consistency
// test.
#ifndef TSXML_TESTS_TREE_PMML_SCHEMA_CASES_H
#define TSXML_TESTS_TREE_PMML_SCHEMA_CASES_H

#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <valarray>
#include <vector>

#include "pmml/arima_test_models.h"
#include "pmml/pmml_test_util.h"
#include "support/arima_fixtures.h"
#include "support/date_spec_fixtures.h"
#include "support/model_fixtures.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/tree/tsxml_tree.h"

namespace pmml_cases {

struct Case {
  std::string name;  // letters, digits and "_": a file name
  // Registers date specifications and adds the models.
  std::function<void(TSXMLTree&)> fill;
  // Why the default form is outside the schema; empty when it is inside.
  std::string outsideReason;
  // A text that the default form holds, to show that the case is what its
  // name says.
  std::string holds;
};

// The document of `c` in the consistent or the default form.
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

inline bool HasTrend(int type) {
  return type != ESModelSpec::ESSimpleSeasonal && type != ESModelSpec::ESSimple;
}

// Registers three date specifications: years and months from March 2001, a
// five-day week with a gap and a first case day, and hours of the day (the
// last one sets the time field, of type "time").
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

// The smoothing models of `types`, each on its own variable.
inline std::function<void(TSXMLTree&)> Smoothing(
    std::vector<int> types, pmml_test::ModelOptions options = {},
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

// The three classes of ARIMA state.
enum class StateKind { kKalman, kLeastSquares, kThetaRecursion };

// An ARIMA(1,1,1)(0,1,1) model with season 4 and a constant, with each list
// of the state of `kind` filled; with a predictor (numerator lags 0 and 1,
// denominator lag 1, a history) and with outliers of types 1 to 7 when asked.
inline TSFModel StateModel(StateKind kind, bool predictor, bool outliers) {
  AMModelSpec spec;
  spec.SetSeasonLength(4);
  spec.SetYDiff(1, 1);
  spec.SetMeanYPresent(true);
  spec.SetARStruct({1}, {});
  spec.SetMAStruct({1}, {1});
  if (predictor) {
    AMPredictorSpec x;
    x.numeratorNonSeasonal = {1};
    x.denominatorNonSeasonal = {1};
    spec.AddPredictor(x);
  }
  if (outliers) {
    TSOutlierSpecList list;
    for (uint32_t type = 1; type <= 7; ++type) {
      list.Add(TSOutlierSpec(type, 10 * type));
    }
    spec.SetOutliers(list);
  }
  const std::valarray<double> estimates =
      testing_support::Sequence(spec.GetParameterCount(true), 0.5, 0.125);
  EstimationInfo info = testing_support::BasicInfo(0, 48, 40, 0.5);
  info.SetGOFStat(BFSharedConst::RMSE, 0.75);
  const auto common = [predictor](ARMAForecastState& state) {
    state.SetStateSpan(TSSpan(0, 48, 1));
    state.SetActualZ({0.5, -0.25});
    state.SetPredZ({0.25, -0.125});
    if (predictor) state.SetXHistory(0, {1, 2}, {0.5, 1});
  };
  switch (kind) {
    case StateKind::kKalman:
      return pmml_test::MakeARIMAModel<ARMAMLForecastState>(
          spec, estimates, info, [&](ARMAMLForecastState& state) {
            common(state);
            state.SetFinalOmega(DSymMat(2, {1, 0.5, 2}));
            state.SetFinalStateV({0.25, 0.125});
          });
    case StateKind::kLeastSquares:
      return pmml_test::MakeARIMAModel<ARMACLSForecastState>(
          spec, estimates, info, [&](ARMACLSForecastState& state) {
            common(state);
            state.SetActualN({0.1, -0.2});
            state.SetPredN({0.05, 0.15});
          });
    case StateKind::kThetaRecursion:
      break;
  }
  return pmml_test::MakeARIMAModel<ARMAMLSpForecastState>(
      spec, estimates, info, [&](ARMAMLSpForecastState& state) {
        common(state);
        state.SetActualN({0.1, -0.2});
        state.SetPredN({0.05, 0.15});
        state.SetFinalThetas({{0.5, 0.25}, {0.125}});
        state.SetFinalNu({1.5, 1.25});
        state.SetFinalIterCount(3);
      });
}

// Generated ARIMA models and their references. Values are finite mostly, and
// otherwise missing, infinite or NaN; names are empty now and then.
class ModelGenerator {
 public:
  explicit ModelGenerator(unsigned seed) : random_(seed) {}

  // A model of random structure and state, and references that name its
  // dependent variable and some or all of its predictors. `unnamed` is set
  // when a name is empty.
  TSFModel Next(TSXDictionaryRefs& refs, bool& unnamed) {
    AMModelSpec spec;
    spec.SetSeasonLength(Pick({1u, 4u, 12u}));
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

    // Now and then a parameter vector too short for the layout.
    const unsigned count = spec.GetParameterCount(true);
    const std::valarray<double> estimates =
        Values(Below(6) == 0 ? Below(count + 1) : count);
    EstimationInfo info = testing_support::BasicInfo(Below(10), 20 + Below(100),
                                                     Below(80), Value());
    info.SetGOFStat(BFSharedConst::RMSE, Value());

    const auto common = [this, predictors](ARMAForecastState& state) {
      state.SetStateSpan(TSSpan(0, 60, Below(3)));
      state.SetActualZ(Values(Below(3)));
      state.SetPredZ(Values(Below(3)));
      for (unsigned i = 0; i < predictors; ++i) {
        if (Below(3) != 0) state.SetXHistory(i, Values(2), Values(2));
      }
    };
    TSFModel model;
    switch (Below(3)) {
      case 0:
        model = pmml_test::MakeARIMAModel<ARMAMLForecastState>(
            spec, estimates, info, [&](ARMAMLForecastState& state) {
              common(state);
              const unsigned n = Below(4);
              state.SetFinalOmega(DSymMat(n, Values(n * (n + 1) / 2)));
              state.SetFinalStateV(Values(n));
            });
        break;
      case 1:
        model = pmml_test::MakeARIMAModel<ARMACLSForecastState>(
            spec, estimates, info, [&](ARMACLSForecastState& state) {
              common(state);
              state.SetActualN(Values(Below(3)));
              state.SetPredN(Values(Below(3)));
            });
        break;
      default:
        model = pmml_test::MakeARIMAModel<ARMAMLSpForecastState>(
            spec, estimates, info, [&](ARMAMLSpForecastState& state) {
              common(state);
              state.SetActualN(Values(Below(3)));
              state.SetPredN(Values(Below(3)));
              std::vector<std::vector<double>> thetas(Below(3));
              for (std::vector<double>& theta : thetas) {
                const std::valarray<double> values = Values(1 + Below(3));
                theta.assign(std::begin(values), std::end(values));
              }
              state.SetFinalThetas(thetas);
              const std::valarray<double> nu = Values(Below(3));
              state.SetFinalNu(
                  std::vector<double>(std::begin(nu), std::end(nu)));
              state.SetFinalIterCount(Below(20));
            });
        break;
    }

    unnamed = false;
    const auto name = [this, &unnamed](const std::string& word) {
      if (Below(8) != 0) return word;
      unnamed = true;
      return std::string();
    };
    std::vector<std::string> ids;
    const unsigned named = Below(4) == 0 ? Below(predictors + 1) : predictors;
    for (unsigned i = 0; i < named; ++i) {
      ids.push_back(name("x" + std::to_string(i)));
    }
    refs = TSXDictionaryRefs("M", "", name(Pick<std::string>({"y", "sales"})),
                             ids);
    return model;
  }

  unsigned Below(unsigned n) {
    return std::uniform_int_distribution<unsigned>(0, n - 1)(random_);
  }

 private:
  template <typename T>
  T Pick(std::initializer_list<T> choices) {
    return *(choices.begin() + Below(static_cast<unsigned>(choices.size())));
  }

  // Ascending lags from 1 to `max`, each present by chance.
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

  std::mt19937 random_;
};

inline std::vector<Case> AllCases() {
  using pmml_test::ModelOptions;
  std::vector<Case> cases;
  const std::string incomplete =
      "a seasonal state without its level, trend or a seasonal value has no "
      "Array, which the schema requires";
  const std::string unnamed =
      "a field without a name has a MiningField and a DataField without "
      "\"name\", which the schema requires";

  // Each smoothing type alone with and without TimeSeries and date
  // specifications, all seven in one document, and no model.
  ModelOptions observed;
  observed.history = {3, 4.5, MV::gMissingValue, 6};
  for (int type = 0; type < kTypeCount; ++type) {
    for (const bool timeSeries : {true, false}) {
      for (const bool dateSpecs : {true, false}) {
        cases.push_back({std::string("es_") + kTypeNames[type] +
                             (timeSeries ? "_series" : "") +
                             (dateSpecs ? "_datespecs" : ""),
                         Smoothing({type}, observed, timeSeries, dateSpecs), "",
                         timeSeries ? "<TimeValue" : "<ExponentialSmoothing"});
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
  const char* const missingParts[] = {"level", "trend", "seasonal"};
  for (int type = 0; type < kTypeCount; ++type) {
    for (int missing = 0; missing < 3; ++missing) {
      if ((missing == 1 && !HasTrend(type)) ||
          (missing == 2 && !pmml_test::IsSeasonal(type))) {
        continue;
      }
      ModelOptions options;
      options.missingLevel = missing == 0;
      options.missingTrend = missing == 1;
      options.missingSeasonal = missing == 2;
      cases.push_back({std::string("es_") + kTypeNames[type] + "_no_" +
                           missingParts[missing],
                       Smoothing({type}, options),
                       pmml_test::IsSeasonal(type) ? incomplete : "",
                       "<Level"});
    }
  }

  // Missing statistics, estimates and initial values, which the default
  // form writes as the missing value's number text; infinite and NaN values,
  // which it writes as the standard library prints them.
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  cases.push_back({"es_missing_values",
                   [](TSXMLTree& tree) {
                     EstimationInfo info = testing_support::BasicInfo();
                     info.SetErrorVariance(MV::gMissingValue);
                     ESModelSpec noPhi(ESModelSpec::ESDampedTrend);
                     noPhi.SetESParameterIndex(ESModelSpec::DampingTrend, -1);
                     tree.AddModelTree(
                         testing_support::MakeESModel(
                             noPhi, {MV::gMissingValue, MV::gMissingValue, 0.5},
                             {}, WIESSmState(10, 2), info,
                             {1, MV::gMissingValue},
                             WIESSmState(MV::gMissingValue, MV::gMissingValue)),
                         TSXDictionaryRefs("D", "", "y"));
                   },
                   "", "value=\"-1.79769313486232e+308\""});
  cases.push_back({"es_infinite_values",
                   [inf](TSXMLTree& tree) {
                     EstimationInfo info = testing_support::BasicInfo();
                     info.SetGOFStat(BFSharedConst::RMSE, inf);
                     info.SetErrorVariance(inf);
                     tree.AddModelTree(
                         testing_support::MakeESModel(
                             ESModelSpec(ESModelSpec::ESAdditiveWinters, 2),
                             {0.5, 0.25, 0.125}, {},
                             WIESSmState(1, 0, 0, {inf, -inf}), info, {},
                             WIESSmState(1, 0, 0, {1, inf})),
                         TSXDictionaryRefs("Inf", "", "y"));
                   },
                   "an infinite RMSE is written \"inf\", which is no xs:double",
                   "RMSE=\"inf\""});
  cases.push_back(
      {"es_nan_observation",
       [nan](TSXMLTree& tree) {
         ModelOptions options;
         options.history = {1, nan, 2};
         tree.AddModelTree(
             pmml_test::MakeTypeModel(ESModelSpec::ESSimple, options),
             TSXDictionaryRefs("N", "", "y"));
       },
       "a NaN observation is written as the standard library prints it, "
       "which is no xs:double",
       "<TimeValue"});

  // ARIMA models of each state, with and without a predictor and outliers,
  // on their own.
  const struct {
    StateKind kind;
    const char* name;
    const char* holds;
  } states[] = {
      {StateKind::kKalman, "kalman", "<KalmanState"},
      {StateKind::kLeastSquares, "cls", "<FinalNoise"},
      {StateKind::kThetaRecursion, "theta", "<FinalTheta"},
  };
  for (const auto& state : states) {
    for (const bool predictor : {false, true}) {
      for (const bool outliers : {false, true}) {
        const StateKind kind = state.kind;
        cases.push_back({std::string("arima_") + state.name +
                             (predictor ? "_predictor" : "") +
                             (outliers ? "_outliers" : ""),
                         [kind, predictor, outliers](TSXMLTree& tree) {
                           tree.AddModelTree(
                               StateModel(kind, predictor, outliers),
                               predictor
                                   ? TSXDictionaryRefs("A", "", "y", {"x"})
                                   : TSXDictionaryRefs("A", "", "y"));
                         },
                         "", state.holds});
      }
    }
  }

  // Models of both kinds in one document, each kind last, with date
  // specifications (registered with the smoothing models).
  cases.push_back({"es_then_arima",
                   [](TSXMLTree& tree) {
                     Smoothing({0, 6})(tree);
                     tree.AddModelTree(
                         pmml_test::MakeSeasonalKalmanModel(),
                         TSXDictionaryRefs("S", "", "sales", {"price"}));
                   },
                   "", "algorithmName=\"ARIMA\""});
  cases.push_back(
      {"arima_then_es",
       [](TSXMLTree& tree) {
         tree.AddModelTree(StateModel(StateKind::kThetaRecursion, true, true),
                           TSXDictionaryRefs("T", "", "sales", {"price"}));
         tree.AddModelTree(pmml_test::MakeSeasonalKalmanModel(),
                           TSXDictionaryRefs("S", "", "visits", {"price"}));
         Smoothing({4})(tree);
       },
       "", "<DateSpecification"});

  // References that name fewer predictors than the model has, or none; an
  // empty name; an empty model.
  cases.push_back({"arima_fewer_names",
                   [](TSXMLTree& tree) {
                     tree.AddModelTree(pmml_test::MakeSeasonalKalmanModel(),
                                       TSXDictionaryRefs("S", "", "sales"));
                   },
                   "", "<PredicterEffect"});
  cases.push_back({"arima_no_dependent",
                   [](TSXMLTree& tree) {
                     tree.AddModelTree(pmml_test::MakeSeasonalKalmanModel(),
                                       TSXDictionaryRefs("S", "", "", {"p"}));
                   },
                   unnamed, "<PredicterEffect"});
  cases.push_back({"arima_unnamed_predictor",
                   [](TSXMLTree& tree) {
                     tree.AddModelTree(
                         StateModel(StateKind::kKalman, true, false),
                         TSXDictionaryRefs("S", "", "y", {""}));
                   },
                   unnamed, "<PredicterEffect"});
  cases.push_back({"empty_model",
                   [](TSXMLTree& tree) {
                     tree.AddModelTree(TSFModel(),
                                       TSXDictionaryRefs("E", "", "e", {"x"}));
                   },
                   "", "name=\"x\""});

  // Documents of one to three generated ARIMA models, now and then after a
  // smoothing model.
  ModelGenerator generator(20240607);
  for (int document = 0; document < 30; ++document) {
    std::vector<std::pair<TSFModel, TSXDictionaryRefs>> models;
    bool anyUnnamed = false;
    const unsigned count = 1 + generator.Below(3);
    for (unsigned i = 0; i < count; ++i) {
      TSXDictionaryRefs refs;
      bool unnamedField = false;
      TSFModel model = generator.Next(refs, unnamedField);
      models.emplace_back(model, refs);
      anyUnnamed = anyUnnamed || unnamedField;
    }
    const bool smoothingFirst = generator.Below(3) == 0;
    cases.push_back({"generated_" + std::to_string(document),
                     [models, smoothingFirst](TSXMLTree& tree) {
                       if (smoothingFirst) Smoothing({1})(tree);
                       for (const auto& [model, refs] : models) {
                         tree.AddModelTree(model, refs);
                       }
                     },
                     anyUnnamed ? unnamed : "", "algorithmName=\"ARIMA\""});
  }
  return cases;
}

}  // namespace pmml_cases

#endif  // TSXML_TESTS_TREE_PMML_SCHEMA_CASES_H
