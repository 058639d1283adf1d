#include "tsxml/modelapi/arima_state.h"

#include <utility>

void ARMAForecastState::GetXHistory(
    unsigned i, const std::valarray<double>*& first,
    const std::valarray<double>*& second) const {
  first = nullptr;
  second = nullptr;
  if (i < xHistory_.size() && xHistory_[i].present) {
    first = &xHistory_[i].predictor;
    second = &xHistory_[i].transferFunction;
  }
}

void ARMAForecastState::SetXHistory(
    unsigned i, const std::valarray<double>& predictor,
    const std::valarray<double>& transferFunction) {
  XHistory history{true, predictor, transferFunction};
  if (i >= xHistory_.size()) xHistory_.resize(size_t{i} + 1);
  xHistory_[i] = std::move(history);
}
