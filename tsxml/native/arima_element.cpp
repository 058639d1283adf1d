#include "tsxml/native/arima_element.h"

#include <cstdint>
#include <memory>
#include <string>

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/modelapi/arima_spec.h"
#include "tsxml/native/model_elements.h"

namespace tsxml {

namespace {

// The value at `position`, missing outside the vector.
double ValueAt(const std::valarray<double>& values, unsigned position) {
  return position < values.size() ? values[position] : MV::gMissingValue;
}

// Whether a group of parameters that ends before `last` fits in `values`.
bool Reaches(const std::valarray<double>& values, unsigned last) {
  return last <= values.size();
}

// Element `name` holding the factors of the lags; added to `parent` only
// when it has a factor.
void AddFactorGroup(XMLElement& parent, const char* name,
                    const AMPowers& nonSeasonal, const AMPowers& seasonal,
                    bool includeZeroLag, unsigned firstParameter,
                    const std::valarray<double>& parameters,
                    const std::valarray<double>& stdErrors) {
  std::unique_ptr<XMLElement> group(XMLElement::Create(name));
  if (AddLagFactors(*group, nonSeasonal, seasonal, includeZeroLag,
                    firstParameter, parameters, stdErrors)) {
    parent.AddElement(group.release());
  }
}

void AddPredictorEffect(XMLElement& model, const AMModelSpec& spec, unsigned i,
                        const std::string& variableID,
                        const std::valarray<double>& parameters,
                        const std::valarray<double>& stdErrors) {
  std::unique_ptr<XMLElement> effect(XMLElement::Create("PredictorEffect"));
  effect->AddAttribute("variableID", variableID);
  unsigned nonSeasonalDiff = 0;
  unsigned seasonalDiff = 0;
  unsigned delay = 0;
  spec.GetXDiffNDelay(i, nonSeasonalDiff, seasonalDiff, delay);
  AddTransformationElement(*effect, spec.GetXTransformSpec(i).function,
                           nonSeasonalDiff, seasonalDiff, delay);

  // The numerator's terms start at the regression coefficient.
  const AMPowers* nonSeasonal = nullptr;
  const AMPowers* seasonal = nullptr;
  const unsigned first = spec.GetXRegressionCoeff(i);
  spec.GetXNumerator(i, nonSeasonal, seasonal);
  AddFactorGroup(*effect, "Numerator", *nonSeasonal, *seasonal, true, first,
                 parameters, stdErrors);
  const unsigned denominator = spec.GetXDenominator(i, nonSeasonal, seasonal);
  AddFactorGroup(*effect, "Denominator", *nonSeasonal, *seasonal, false,
                 denominator, parameters, stdErrors);
  model.AddElement(effect.release());
}

}  // namespace

XMLElement* MakeARIMAElement(const AMModelSpec& spec,
                             const TSXDictionaryRefs& refs,
                             const std::valarray<double>& parameters,
                             const std::valarray<double>& stdErrors) {
  const unsigned predictors = spec.GetXCount();
  if (refs.GetPredictorIDs().size() != predictors) return nullptr;
  const unsigned parameterCount = spec.GetParameterCount(true);

  std::unique_ptr<XMLElement> model(XMLElement::Create("ARIMAModel"));
  AddModelAttributes(*model, refs);
  const unsigned seasonLength = spec.GetSeasonLength(true);
  if (seasonLength > 1) {
    model->AddAttribute("seasonLength", static_cast<double>(seasonLength));
  }
  unsigned nonSeasonalDiff = 0;
  unsigned seasonalDiff = 0;
  spec.GetYDiff(nonSeasonalDiff, seasonalDiff);
  AddTransformationElement(*model, spec.GetYTransformSpec().function,
                           nonSeasonalDiff, seasonalDiff, 0);

  bool present = false;
  const unsigned position = spec.GetMeanYPresent(present);
  if (present) {
    std::unique_ptr<XMLElement> constant(XMLElement::Create("ConstantTerm"));
    if (Reaches(parameters, parameterCount)) {
      AddEstimatedParameter(*constant, ValueAt(parameters, position),
                            Reaches(stdErrors, parameterCount)
                                ? ValueAt(stdErrors, position)
                                : MV::gMissingValue);
    }
    model->AddElement(constant.release());
  }

  const AMPowers* nonSeasonal = nullptr;
  const AMPowers* seasonal = nullptr;
  unsigned first = spec.GetARStruct(nonSeasonal, seasonal);
  AddFactorGroup(*model, "Autoregression", *nonSeasonal, *seasonal, false,
                 first, parameters, stdErrors);
  first = spec.GetMAStruct(nonSeasonal, seasonal);
  AddFactorGroup(*model, "MovingAverage", *nonSeasonal, *seasonal, false, first,
                 parameters, stdErrors);

  for (unsigned i = 0; i < predictors; ++i) {
    AddPredictorEffect(*model, spec, i, refs.GetPredictorIDs()[i], parameters,
                       stdErrors);
  }

  const TSOutlierSpecList& outliers = spec.GetOutliers();
  const unsigned outlierCount = outliers.GetOutlierSpecCount(false);
  for (unsigned i = 0; i < outlierCount; ++i) {
    AddOutlierEffect(
        *model, outliers.GetOutlierSpec(i),
        spec.GetOutlierParmIndex() + outliers.ParameterVectorIndex(i, 0),
        parameters, stdErrors);
  }
  return model.release();
}

bool AddLagFactors(XMLElement& parent, const AMPowers& nonSeasonal,
                   const AMPowers& seasonal, bool includeZeroLag,
                   unsigned firstParameter,
                   const std::valarray<double>& parameters,
                   const std::valarray<double>& stdErrors) {
  const unsigned last = firstParameter + nonSeasonal.PowerCount() +
                        seasonal.PowerCount() + (includeZeroLag ? 1u : 0u);
  const bool haveEstimates = Reaches(parameters, last);
  const bool haveErrors = haveEstimates && Reaches(stdErrors, last);

  unsigned position = firstParameter;
  double estimate = MV::gMissingValue;
  double stdError = MV::gMissingValue;
  auto addTerm = [&](XMLElement& factor, unsigned lag) {
    if (haveEstimates) {
      estimate = ValueAt(parameters, position);
      if (haveErrors) stdError = ValueAt(stdErrors, position);
      ++position;
    }
    AddLagTerm(factor, lag, estimate, stdError);
  };

  std::unique_ptr<XMLElement> nonSeasonalFactor;
  if (includeZeroLag || nonSeasonal.PowerCount() > 0) {
    nonSeasonalFactor.reset(XMLElement::Create("NonSeasonalFactor"));
    if (includeZeroLag) addTerm(*nonSeasonalFactor, 0);
    for (unsigned lag : nonSeasonal.PowerList())
      addTerm(*nonSeasonalFactor, lag);
  }
  std::unique_ptr<XMLElement> seasonalFactor;
  if (seasonal.PowerCount() > 0) {
    seasonalFactor.reset(XMLElement::Create("SeasonalFactor"));
    for (unsigned lag : seasonal.PowerList()) addTerm(*seasonalFactor, lag);
  }

  const bool added = nonSeasonalFactor || seasonalFactor;
  if (nonSeasonalFactor) parent.AddElement(nonSeasonalFactor.release());
  if (seasonalFactor) parent.AddElement(seasonalFactor.release());
  return added;
}

void AddLagTerm(XMLElement& parent, unsigned lag, double estimate,
                double stdError) {
  std::unique_ptr<XMLElement> term(
      XMLElement::Create(lag == 0 ? "ZeroLagTerm" : "LagTerm"));
  if (lag != 0) term->AddAttribute("lag", static_cast<double>(lag));
  AddEstimatedParameter(*term, estimate, stdError);
  parent.AddElement(term.release());
}

void AddOutlierEffect(XMLElement& parent, const TSOutlierSpec& outlier,
                      unsigned firstParameter,
                      const std::valarray<double>& parameters,
                      const std::valarray<double>& stdErrors) {
  const char* word = TSOutlierSpec::TypeName(outlier.type);
  if (word == nullptr || outlier.type == TSOutlierSpec::None) return;
  std::unique_ptr<XMLElement> effect(XMLElement::Create("OutlierEffect"));
  effect->AddAttribute("type", word);
  effect->AddAttribute("startIndex", static_cast<double>(outlier.startIndex));

  const unsigned count = outlier.GetParameterCount();
  const unsigned last = firstParameter + count;
  if (count != 0 && Reaches(parameters, last)) {
    const bool haveErrors = Reaches(stdErrors, last);
    unsigned position = firstParameter;
    for (uint64_t j = 0; j < count;) {
      if (position >= parameters.size()) {
        // Every position up to the 32-bit wrap lies outside the vector too
        // and would add nothing.
        j += (uint64_t{1} << 32) - position;
        position = 0;
        continue;
      }
      AddEstimatedParameter(
          *effect, parameters[position],
          haveErrors ? ValueAt(stdErrors, position) : MV::gMissingValue);
      ++position;
      ++j;
    }
  }
  parent.AddElement(effect.release());
}

}  // namespace tsxml
