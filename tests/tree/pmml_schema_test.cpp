// PMML documents of every model kind (smoothing types, ARIMA models of each
// state, both kinds, odd values, empty names, generated ARIMA models) against
// the PMML 4.2 schema with xmllint in both forms: the consistent form always
// validates; the default form does unless its case names why not, and then
// validates once mended in the parts that the reason names. With
// TSXML_PMML_CASE_DIR set, WriteCaseDocuments writes them to
// DIR/{consistent,default}/NAME.xml for pmml_consistency_test.py.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <limits>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <valarray>
#include <vector>

#include "pmml/pmml_test_util.h"
#include "support/arima_fixtures.h"
#include "support/date_spec_fixtures.h"
#include "support/xmllint.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

using pmml_test::ModelOptions;
using testing_support::MakeFullARIMAModel;
using testing_support::ModelList;
using Fill = std::function<void(TSXMLTree&)>;
using Vector = std::vector<double>;

struct Case {
  std::string name;           // letters, digits and "_": a file name
  Fill fill;                  // registers date specifications, adds models
  std::string outsideReason;  // empty: the default form is inside
  std::string holds;  // a text of the default form: the case is what it says
};

std::string WriteCase(const Case& c, bool consistent) {
  TSXMLTree tree;
  tree.SetPMMLOutput(true);
  tree.SetPMMLConsistent(consistent);
  c.fill(tree);
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

const char* const kTypeNames[] = {
    "ESAdditiveWinters",       "ESBrown",          "ESDampedTrend", "ESHolt",
    "ESMultiplicativeWinters", "ESSimpleSeasonal", "ESSimple"};

// The smoothing models of `types`, each named by its type, on "y"; with date
// specifications: years and months from March 2001, a five-day week with a
// gap and a first case day, and hours of the day (the last sets the time
// field, "time").
Fill Smoothing(std::vector<int> types, ModelOptions options = {},
               bool timeSeries = true, bool dateSpecs = true) {
  return [=](TSXMLTree& tree) {
    tree.SetESPMMLOutputTimeValue(timeSeries);
    if (dateSpecs) {
      tree.AddDateSpec(testing_support::MonthlyDateSpec(2001, 2),
                       "monthly & more");
      TSXDateSpec days(TSXDateSpec::Week), hours(TSXDateSpec::Day);
      days.AddPeriod(TSXDateSpec::Day, 7, 0, 5);
      days.AddGap(3);
      days.SetFirstCaseDay(5, 3, 2024);
      tree.AddDateSpec(days, "");
      hours.AddPeriod(TSXDateSpec::Hour, 24, 0, 0);
      hours.SetLowestIncrement(2);
      tree.AddDateSpec(hours, "every other hour");
    }
    for (const int type : types) {
      tree.AddModelTree(pmml_test::MakeTypeModel(type, options),
                        TSXDictionaryRefs(kTypeNames[type], "", "y"));
    }
  };
}

// `models` with their references, in order.
Fill Models(ModelList models) {
  return [models](TSXMLTree& tree) {
    for (const auto& [model, refs] : models) tree.AddModelTree(model, refs);
  };
}

Fill Then(Fill first, Fill second) {
  return [first, second](TSXMLTree& tree) {
    first(tree);
    second(tree);
  };
}

// ARIMA models of random structure and state. Values are mostly finite,
// otherwise missing, infinite, NaN or the largest double; one name in eight
// is empty, and now and then the references name fewer predictors than the
// model has or the estimates are too few for the structure.
class ModelGenerator {
 public:
  explicit ModelGenerator(unsigned seed) : random_(seed) {}

  unsigned Below(unsigned n) {
    return std::uniform_int_distribution<unsigned>(0, n - 1)(random_);
  }

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
      // Transformation, differences, delay, numerator and denominator lags.
      spec.AddPredictor({TSTransformSpec(Below(3)), Below(2), Below(2),
                         Below(4), Lags(3), Lags(2), Lags(2), Lags(1)});
    }
    TSOutlierSpecList outliers;
    for (unsigned i = Below(4); i > 0; --i) {
      outliers.Add(TSOutlierSpec(Below(9), Below(100)));
    }
    spec.SetOutliers(outliers);
    const unsigned count = spec.GetParameterCount(true);
    const std::valarray<double> e =
        Values(Below(6) == 0 ? Below(count + 1) : count);

    std::unique_ptr<ARMAForecastState> state;
    const unsigned kind = Below(3);
    if (kind == 0) state = std::make_unique<ARMAMLForecastState>(spec, e, e);
    if (kind == 1) state = std::make_unique<ARMACLSForecastState>(spec, e, e);
    if (kind == 2) state = std::make_unique<ARMAMLSpForecastState>(spec, e, e);
    if (auto* kalman = dynamic_cast<ARMAMLForecastState*>(state.get())) {
      const unsigned n = Below(4);
      kalman->SetFinalOmega(DSymMat(n, Values(n * (n + 1) / 2)));
      kalman->SetFinalStateV(Values(n));
    }
    if (auto* noise = dynamic_cast<ARMANoiseHistory*>(state.get())) {
      noise->SetActualN(Values(Below(3)));
      noise->SetPredN(Values(Below(3)));
    }
    if (auto* theta = dynamic_cast<ARMAMLSpForecastState*>(state.get())) {
      std::vector<Vector> thetas(Below(3));
      for (Vector& values : thetas) values = Values<Vector>(1 + Below(3));
      theta->SetFinalThetas(thetas);
      theta->SetFinalNu(Values<Vector>(Below(3)));
      theta->SetFinalIterCount(Below(20));
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
    const double inf = std::numeric_limits<double>::infinity();
    const double special[] = {MV::gMissingValue, inf, -inf,
                              std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::max()};
    const unsigned k = Below(12);
    return k < 5 ? special[k]
                 : std::uniform_real_distribution<double>(-4, 4)(random_);
  }

  template <typename List = std::valarray<double>>
  List Values(size_t n) {
    List values(n);
    for (double& value : values) value = Value();
    return values;
  }

  std::mt19937 random_;
};

std::vector<Case> AllCases() {
  const std::string incomplete =
      "a seasonal state without its level, trend or a seasonal value has no "
      "Array, which the schema requires";
  const std::string unnamed =
      "a field without a name has a MiningField and a DataField without "
      "\"name\", which the schema requires";
  const double inf = std::numeric_limits<double>::infinity();
  const double missing = MV::gMissingValue;
  std::vector<Case> cases;

  // Each smoothing type alone, with and without TimeSeries and date
  // specifications; all seven in one document; no model. Then a final state
  // without its level, trend or a seasonal value.
  ModelOptions observed;
  observed.history = {3, 4.5, missing, 6};
  const char* const parts[] = {"level", "trend", "seasonal"};
  for (int type = 0; type < 7; ++type) {
    const std::string name = std::string("es_") + kTypeNames[type];
    for (const bool series : {true, false}) {
      for (const bool dateSpecs : {true, false}) {
        cases.push_back(
            {name + (series ? "_series" : "") + (dateSpecs ? "_datespecs" : ""),
             Smoothing({type}, observed, series, dateSpecs), "",
             series ? "<TimeValue" : "<ExponentialSmoothing"});
      }
    }
    const bool seasonal = pmml_test::IsSeasonal(type);
    const bool trend =
        type != ESModelSpec::ESSimpleSeasonal && type != ESModelSpec::ESSimple;
    for (int part = 0; part < 3; ++part) {
      if ((part == 1 && !trend) || (part == 2 && !seasonal)) continue;
      ModelOptions options;
      options.missingLevel = part == 0;
      options.missingTrend = part == 1;
      options.missingSeasonal = part == 2;
      cases.push_back({name + "_no_" + parts[part], Smoothing({type}, options),
                       seasonal ? incomplete : "", "<Level"});
    }
  }
  ModelOptions seasons;
  seasons.seasonLength = 12;
  cases.push_back({"es_seven_models", Smoothing({0, 1, 2, 3, 4, 5, 6}, seasons),
                   "", "ESSimple"});
  cases.push_back({"no_model", Smoothing({}), "", "<DateSpecification"});
  cases.push_back(
      {"no_model_no_datespecs", Smoothing({}, {}, true, false), "", "<Header"});

  // Missing estimates, statistics and initial values, which the default
  // form writes as the missing value's number text (a valid xs:double past
  // the range of a double); infinite values and a NaN observation.
  EstimationInfo noVariance = testing_support::BasicInfo();
  noVariance.SetErrorVariance(missing);
  ESModelSpec noPhi(ESModelSpec::ESDampedTrend);
  noPhi.SetESParameterIndex(ESModelSpec::DampingTrend, -1);
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
                    infinite, {1, std::numeric_limits<double>::quiet_NaN(), 2},
                    WIESSmState(1, 0, 0, {1, inf})),
                TSXDictionaryRefs("Infinite", "", "y")}}),
       "an infinite RMSE and a NaN observation are written as the standard "
       "library prints them, which is no xs:double",
       "RMSE=\"inf\""});

  // ARIMA models of each state with every part (a predictor, an additive
  // and a transient outlier, every list of the state); the models of the
  // ARIMA element tests.
  const TSXDictionaryRefs full("A", "", "y", {"x"});
  cases.push_back(
      {"arima_states",
       Models({{MakeFullARIMAModel<ARMAMLForecastState>(), full},
               {MakeFullARIMAModel<ARMACLSForecastState>(), full},
               {MakeFullARIMAModel<ARMAMLSpForecastState>(), full}}),
       "", "finalIterationNumber=\"0\""});
  cases.push_back({"arima_edges", Models(testing_support::MakeEdgeModels()), "",
                   "<KalmanState/>"});
  cases.push_back(
      {"arima_odd_values", Models({testing_support::MakeOddValuesModel()}),
       unnamed + "; an infinite RMSE is written \"inf\"", "RMSE=\"inf\""});

  // Both kinds in one document, each kind last, with date specifications;
  // references that name fewer predictors than the model has, an empty
  // name, an empty model.
  const TSFModel seasonal = testing_support::MakeSeasonalKalmanModel();
  const TSXDictionaryRefs sales("S", "", "sales", {"price"});
  cases.push_back({"es_then_arima",
                   Then(Smoothing({0, 6}), Models({{seasonal, sales}})), "",
                   "algorithmName=\"ARIMA\""});
  cases.push_back(
      {"arima_then_es",
       Then(Models({{MakeFullARIMAModel<ARMAMLSpForecastState>(),
                     TSXDictionaryRefs("T", "", "visits", {"price"})},
                    {seasonal, sales}}),
            Smoothing({4})),
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
    ModelList models;
    bool anyUnnamed = false;
    for (unsigned i = 1 + generator.Below(3); i > 0; --i) {
      bool unnamedField = false;
      models.push_back(generator.Next(unnamedField));
      anyUnnamed = anyUnnamed || unnamedField;
    }
    const Fill fill = generator.Below(3) != 0
                          ? Models(models)
                          : Then(Smoothing({1}), Models(models));
    cases.push_back({"generated_" + std::to_string(document), fill,
                     anyUnnamed ? unnamed : "", "algorithmName=\"ARIMA\""});
  }
  return cases;
}

// The default document of a case outside the schema mended in the parts
// that the reasons name: an (empty) "Array" where a seasonal state lacks
// one, the schema's spellings of infinities and NaN in attributes, and an
// empty name in each field element without one.
std::string Mend(const std::string& text) {
  std::string mended =
      std::regex_replace(text, std::regex("(<Seasonality_ExpoSmooth[^>]*)/>"),
                         "$1><Array type=\"real\"/></Seasonality_ExpoSmooth>");
  mended = std::regex_replace(mended, std::regex("=\"(-?)inf\""), "=\"$1INF\"");
  mended = std::regex_replace(mended, std::regex("=\"-?nan\""), "=\"NaN\"");
  return std::regex_replace(
      mended, std::regex("<(MiningField|DataField)(?![^>]*name=)"),
      "<$1 name=\"\"");
}

// Every case in both forms. A default form outside the schema must fail, so
// that a reason that no longer holds is noticed, and validate once mended,
// so that the reason is the whole of what puts it outside.
TEST(PMMLSchemaTest, EveryCaseInBothForms) {
  TSXML_REQUIRE_XMLLINT();
  using testing_support::SchemaErrors;
  const std::string schema = testing_support::SchemaPath("pmml-4-2.xsd");
  const std::vector<Case> cases = AllCases();
  ASSERT_GE(cases.size(), 85u);
  int outside = 0;
  for (const Case& c : cases) {
    const std::string standard = WriteCase(c, false);
    EXPECT_NE(standard.find(c.holds), std::string::npos) << c.name;
    EXPECT_EQ(SchemaErrors(WriteCase(c, true), schema), "") << c.name;
    const std::string errors = SchemaErrors(standard, schema);
    if (c.outsideReason.empty()) {
      EXPECT_EQ(errors, "") << c.name << ", default";
      continue;
    }
    ++outside;
    EXPECT_NE(errors, "") << c.name << " is valid now: " << c.outsideReason;
    EXPECT_EQ(SchemaErrors(Mend(standard), schema), "") << c.name << ", mended";
  }
  EXPECT_GE(outside, 10);
}

TEST(PMMLSchemaTest, WriteCaseDocuments) {
  const char* dir = std::getenv("TSXML_PMML_CASE_DIR");
  if (dir == nullptr) return;
  for (const Case& c : AllCases()) {
    for (const bool consistent : {true, false}) {
      const std::string form = consistent ? "/consistent/" : "/default/";
      std::ofstream(dir + form + c.name + ".xml") << WriteCase(c, consistent);
    }
  }
}

}  // namespace
