// The seasonal ARIMA model of the PMML tests under the name that the tree
// tests use; it and the other models of the PMML documents are in
// support/arima_fixtures.h.
#ifndef TSXML_TESTS_PMML_ARIMA_TEST_MODELS_H
#define TSXML_TESTS_PMML_ARIMA_TEST_MODELS_H

#include "support/arima_fixtures.h"

namespace pmml_test {
using testing_support::MakeSeasonalKalmanModel;
}  // namespace pmml_test

#endif  // TSXML_TESTS_PMML_ARIMA_TEST_MODELS_H
