// Everything a host uses, in one include: the document tree, the model
// classes it is given and the autocorrelations of a series, date
// specifications, the XML node model and number text, the object stream, the
// distribution functions and the version.
#ifndef TSXML_TSXML_H
#define TSXML_TSXML_H

#include "tsxml/base/dictionary_refs.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/base/status.h"
#include "tsxml/datespec/date_spec.h"
#include "tsxml/modelapi/autocorrelation.h"
#include "tsxml/modelapi/forecast_model.h"
#include "tsxml/native/model_xml_tree_maker.h"
#include "tsxml/objectstream/xml_obj.h"
#include "tsxml/objectstream/xml_obj_reader.h"
#include "tsxml/stats/distributions.h"
#include "tsxml/tree/tsxml_tree.h"
#include "tsxml/tree/tsxml_tree_imp.h"
#include "tsxml/version.h"
#include "tsxml/xml/number_text.h"
#include "tsxml/xml/xml_node.h"

#endif  // TSXML_TSXML_H
