// The TimeSeriesModel elements of the ARIMA models of arima_fixtures.h,
// compared whole with the files tests/data/pmml/arima_*.xml.
#include "tsxml/pmml/arima_model.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "pmml_test_util.h"
#include "support/arima_fixtures.h"
#include "support/test_data.h"
#include "tsxml/pmml/pmml_document.h"

namespace {

std::string ElementText(const TSFModel& model, const TSXDictionaryRefs& refs,
                        tsxml::PMMLMode mode = tsxml::PMMLMode::kDefault) {
  const std::unique_ptr<OstraTimeXML::XMLElement> element(
      tsxml::BuildARIMAModel(model, refs, mode));
  return testing_support::Text(*element);
}

std::string Expected(const std::string& name) {
  return "\n" + testing_support::ReadTestData("pmml/" + name + ".xml");
}

TEST(ARIMAModelTest, SeasonalModelWithEveryPartUnderTheKalmanState) {
  EXPECT_EQ(ElementText(testing_support::MakeSeasonalKalmanModel(),
                        TSXDictionaryRefs("Sales", "", "sales", {"price"})),
            Expected("arima_kalman"));
}

// DataDictionary lists the fields of the last model.
TEST(ARIMAModelTest, EdgesOfStructureAndStateInOneDocument) {
  tsxml::TSXPMMLDocument document;
  for (const auto& [model, refs] : testing_support::MakeEdgeModels()) {
    EXPECT_TRUE(document.AddModel(model, refs, {}));
  }
  EXPECT_EQ(pmml_test::WriteText(document, false), Expected("arima_models"));
}

// The default form writes the number text and leaves the empty names out;
// the consistent form writes the schema's spellings, "NaN" for the missing
// extension value, and empty names.
TEST(ARIMAModelTest, OddValuesInBothForms) {
  const auto [model, refs] = testing_support::MakeOddValuesModel();
  EXPECT_EQ(ElementText(model, refs), Expected("arima_odd_values"));
  EXPECT_EQ(ElementText(model, refs, tsxml::PMMLMode::kConsistent),
            Expected("arima_odd_values_consistent"));
}

}  // namespace
