#include "tsxml/objectstream/internal/line_tokenizer.h"

#include <cstring>

namespace tsxml {

char* LineTokenizer::Next(const char* delims) {
  if (next_ == nullptr) return nullptr;
  char* start = next_ + std::strspn(next_, delims);
  if (*start == '\0') {
    next_ = nullptr;
    return nullptr;
  }
  char* end = start + std::strcspn(start, delims);
  if (*end == '\0') {
    next_ = end;
  } else {
    *end = '\0';
    next_ = end + 1;
  }
  return start;
}

}  // namespace tsxml
