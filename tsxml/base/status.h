// OstraTime::OstraStatus: the status that date specification operations
// return and that the TSXDateSpec constructor throws.
#ifndef TSXML_BASE_STATUS_H
#define TSXML_BASE_STATUS_H

#include "tsxml/base/export.h"

namespace OstraTime {

// Default-constructed it is OK; made from a code it is a failure carrying that
// code. Copied and thrown by value (exported, so a host can catch it).
class TSXML_API OstraStatus {
 public:
  OstraStatus() = default;
  // A failure with `code`. `warning` marks a failure that the caller may
  // treat as advisory; no operation of this library makes one.
  OstraStatus(long code, bool warning) : code_(code), warning_(warning) {}

  bool IsOK() const { return code_ == 0; }
  long GetCode() const { return code_; }
  bool IsWarning() const { return warning_; }

 private:
  long code_ = 0;
  bool warning_ = false;
};

}  // namespace OstraTime

#endif  // TSXML_BASE_STATUS_H
