// The model library's interface: everything a host needs to describe a fitted
// model to tsxml. Include this header to build models in code.
#ifndef TSXML_MODELAPI_FORECAST_MODEL_H
#define TSXML_MODELAPI_FORECAST_MODEL_H

#include "modelapi/arima_spec.h"
#include "modelapi/arima_state.h"
#include "modelapi/croston_model.h"
#include "modelapi/estimation_info.h"
#include "modelapi/forecast_state.h"
#include "modelapi/missing_value.h"
#include "modelapi/model.h"
#include "modelapi/model_spec.h"
#include "modelapi/outlier_spec.h"
#include "modelapi/ref_counted.h"
#include "modelapi/span.h"
#include "modelapi/status.h"
#include "modelapi/sym_matrix.h"
#include "modelapi/transform.h"

#endif  // TSXML_MODELAPI_FORECAST_MODEL_H
