// TSRCObject: the intrusive reference count of the model library's objects.
#ifndef TSXML_MODELAPI_REF_COUNTED_H
#define TSXML_MODELAPI_REF_COUNTED_H

#include <atomic>

#include "tsxml/base/export.h"

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

// A counted handle on a TSRCObject-derived `Imp`: holds one reference, or
// none when empty. Copies share the object; the last reference to go
// deletes it. `Imp` must be complete where a handle is copied or destroyed.
template <typename Imp>
class TSRCHandle {
 public:
  TSRCHandle() = default;
  // Takes a reference on `imp`, which may be null.
  explicit TSRCHandle(Imp* imp) : imp_(imp) {
    if (imp_) imp_->addReference();
  }
  TSRCHandle(const TSRCHandle& other) : TSRCHandle(other.imp_) {}
  TSRCHandle& operator=(const TSRCHandle& other) {
    if (other.imp_) other.imp_->addReference();
    if (imp_) imp_->removeReference();
    imp_ = other.imp_;
    return *this;
  }
  ~TSRCHandle() {
    if (imp_) imp_->removeReference();
  }

  Imp* GetImp() const { return imp_; }
  bool IsEmpty() const { return imp_ == nullptr; }

 private:
  Imp* imp_ = nullptr;
};

#endif  // TSXML_MODELAPI_REF_COUNTED_H
