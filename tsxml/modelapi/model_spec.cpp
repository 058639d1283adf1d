#include "tsxml/modelapi/model_spec.h"

#include <cstddef>

TSModelSpec::~TSModelSpec() = default;

unsigned TSModelSpec::GetSeasonLength(bool) const { return seasonLength_; }

namespace {

// Which parameter kinds (level, trend, season, damping) each model type has.
constexpr bool kTypeHasKind[7][ESModelSpec::kParameterKindCount] = {
    {true, true, true, false},    // ESAdditiveWinters
    {true, false, false, false},  // ESBrown
    {true, true, false, true},    // ESDampedTrend
    {true, true, false, false},   // ESHolt
    {true, true, true, false},    // ESMultiplicativeWinters
    {true, false, true, false},   // ESSimpleSeasonal
    {true, false, false, false},  // ESSimple
};

}  // namespace

bool ESModelSpec::HasParameterKind(int type, int kind) {
  return type >= 0 && type < 7 && kind >= 0 && kind < kParameterKindCount &&
         kTypeHasKind[type][kind];
}

bool ESModelSpec::HasTrendState(int type) {
  return type != ESSimpleSeasonal && type != ESSimple;
}

ESModelSpec::ESModelSpec(int type, unsigned seasonLength)
    : type_(type), parameterCount_(0) {
  SetSeasonLength(seasonLength);
  for (int kind = 0; kind < kParameterKindCount; ++kind) {
    index_[static_cast<size_t>(kind)] =
        HasParameterKind(type, kind) ? static_cast<int>(parameterCount_++) : -1;
  }
}

int ESModelSpec::GetESParameterIndex(int kind) const {
  return kind >= 0 && kind < kParameterKindCount
             ? index_[static_cast<size_t>(kind)]
             : -1;
}

unsigned ESModelSpec::GetParameterCount(bool) const { return parameterCount_; }

void ESModelSpec::SetESParameterIndex(int kind, int index) {
  if (kind >= 0 && kind < kParameterKindCount) {
    index_[static_cast<size_t>(kind)] = index;
  }
}
