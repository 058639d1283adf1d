#include "native/croston_element.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "modelapi/forecast_model.h"
#include "support/arima_fixtures.h"
#include "support/model_fixtures.h"
#include "tree/dictionary_refs.h"

namespace {

using OstraTimeXML::XMLElement;
using testing_support::BasicInfo;
using testing_support::Lines;
using testing_support::MakeSubmodelState;
using testing_support::Text;

constexpr double kMissing = MV::gMissingValue;

std::string Build(unsigned function) {
  // The elapsed time sub-model has lost its level.
  std::unique_ptr<XMLElement> element(tsxml::MakeCrostonElement(
      MakeSubmodelState(12.5, 0.2), MakeSubmodelState(kMissing, 0.1),
      MakeSubmodelState(4, 0.3), TSXDictionaryRefs("C", "", "demand"), function,
      BasicInfo()));
  return Text(*element);
}

const std::string kHead =
    Lines({"<CrostonModel", "\tmodelName=\"C\"", "\tvariableID=\"demand\">"});
const std::string kBody = Lines({
    "\t<ActualDemandSubmodel>",
    "\t\t<ESSimple>",
    "\t\t\t<ParmLevel>",
    "\t\t\t\t<EstimatedParameter>0.2 0.05</EstimatedParameter>",
    "\t\t\t</ParmLevel>",
    "\t\t\t<StateLevel>12.5</StateLevel>",
    "\t\t</ESSimple>",
    "\t</ActualDemandSubmodel>",
    "\t<ElapsedTimeSubmodel>",
    "\t\t<ESSimple>",
    "\t\t\t<ParmLevel>",
    "\t\t\t\t<EstimatedParameter>0.1 0.05</EstimatedParameter>",
    "\t\t\t</ParmLevel>",
    "\t\t</ESSimple>",
    "\t</ElapsedTimeSubmodel>",
    "\t<AbsoluteErrorSubmodel>",
    "\t\t<ESSimple>",
    "\t\t\t<ParmLevel>",
    "\t\t\t\t<EstimatedParameter>0.3 0.05</EstimatedParameter>",
    "\t\t\t</ParmLevel>",
    "\t\t\t<StateLevel>4</StateLevel>",
    "\t\t</ESSimple>",
    "\t</AbsoluteErrorSubmodel>",
    "\t<EstimationInfo",
    "\t\tperiodStartIndex=\"0\"",
    "\t\tperiodLength=\"24\"",
    "\t\tdegreesOfFreedom=\"23\">",
    "\t\t<Statistic",
    "\t\t\ttype=\"errVariance\">2.5</Statistic>",
    "\t</EstimationInfo>",
    "</CrostonModel>",
});

TEST(CrostonElementTest, SubmodelWithMissingLevelKeepsItsElements) {
  // No transformation: the first child is the actual demand sub-model.
  EXPECT_EQ(Build(BFSharedConst::NoTransform), kHead + kBody);
}

TEST(CrostonElementTest, TransformationComesFirst) {
  EXPECT_EQ(Build(BFSharedConst::Logarithm),
            kHead +
                Lines({"\t<Transformation", "\t\tfunction=\"logarithm\"/>"}) +
                kBody);
  EXPECT_EQ(Build(7),
            kHead +
                Lines({"\t<Transformation", "\t\tfunction=\"squareRoot\"/>"}) +
                kBody);
}

}  // namespace
