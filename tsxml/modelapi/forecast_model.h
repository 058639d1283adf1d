// The model library's interface: everything a host needs to describe a fitted
// model to tsxml. Include this header to build models in code.
#ifndef TSXML_MODELAPI_FORECAST_MODEL_H
#define TSXML_MODELAPI_FORECAST_MODEL_H

#include "tsxml/base/missing_value.h"
#include "tsxml/base/status.h"
#include "tsxml/modelapi/arima_spec.h"
#include "tsxml/modelapi/arima_state.h"
#include "tsxml/modelapi/croston_model.h"
#include "tsxml/modelapi/estimation_info.h"
#include "tsxml/modelapi/forecast_state.h"
#include "tsxml/modelapi/model.h"
#include "tsxml/modelapi/model_spec.h"
#include "tsxml/modelapi/outlier_spec.h"
#include "tsxml/modelapi/ref_counted.h"
#include "tsxml/modelapi/span.h"
#include "tsxml/modelapi/sym_matrix.h"
#include "tsxml/modelapi/transform.h"

#endif  // TSXML_MODELAPI_FORECAST_MODEL_H
