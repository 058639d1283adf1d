// TSRCObject: the intrusive reference count of the model library's objects.
#ifndef TSXML_MODELAPI_REF_COUNTED_H
#define TSXML_MODELAPI_REF_COUNTED_H

#include <atomic>

#include "tsxml_export.h"

// Starts with no reference; the holder that takes the first reference owns
// the object, and the last removeReference deletes it. The count is atomic.
class TSXML_API TSRCObject {
 public:
  virtual ~TSRCObject();
  TSRCObject(const TSRCObject&) = delete;
  TSRCObject& operator=(const TSRCObject&) = delete;

  void addReference() const;
  // Deletes the object when the count reaches 0.
  void removeReference() const;

 protected:
  TSRCObject() = default;

 private:
  mutable std::atomic<long> references_{0};
};

#endif  // TSXML_MODELAPI_REF_COUNTED_H
