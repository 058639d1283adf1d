#include "tsxml/modelapi/ref_counted.h"

TSRCObject::~TSRCObject() = default;

void TSRCObject::addReference() const {
  references_.fetch_add(1, std::memory_order_relaxed);
}

void TSRCObject::removeReference() const {
  if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}
