// A global operator new that can be told to fail: include this header in
// exactly one source file of a test binary, since it replaces the global
// allocation functions.
#ifndef TSXML_TESTS_SUPPORT_FAILING_ALLOCATOR_H
#define TSXML_TESTS_SUPPORT_FAILING_ALLOCATOR_H

#include <cstdlib>
#include <new>
#include <streambuf>
#include <string>

namespace testing_support {

// Counts down allocations while armed; the allocation at which it reaches 0
// throws std::bad_alloc (and disarms). -1 means disarmed.
inline long gAllocationsUntilFailure = -1;
// While true, every allocation fails.
inline bool gFailAlways = false;
// Blocks allocated through operator new and not yet freed.
inline long gLiveAllocations = 0;

// Arms the allocator so that the n-th allocation from now (0-based) fails,
// and disarms it again when it goes out of scope.
class FailingAllocations {
 public:
  explicit FailingAllocations(long n) { gAllocationsUntilFailure = n; }
  ~FailingAllocations() { gAllocationsUntilFailure = -1; }
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

// Calls `step(n)` for n = 0, 1, ... until it returns true; `step` arms a
// FailingAllocations(n) around the call under test and returns whether that
// call completed. Returns the number of runs that failed.
template <typename Step>
long ForEachFailingAllocation(Step step) {
  long n = 0;
  while (!step(n)) ++n;
  return n;
}

// A stream buffer that stores into capacity reserved up front, so that
// writing to it never allocates (bytes beyond the capacity are dropped).
class ReservedBuffer : public std::streambuf {
 public:
  explicit ReservedBuffer(size_t capacity) { text_.reserve(capacity); }
  const std::string& str() const { return text_; }

 protected:
  int_type overflow(int_type c) override {
    if (c != traits_type::eof() && text_.size() < text_.capacity()) {
      text_.push_back(traits_type::to_char_type(c));
    }
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char* s, std::streamsize n) override {
    for (std::streamsize i = 0; i < n; ++i) overflow(s[i]);
    return n;
  }

 private:
  std::string text_;
};

}  // namespace testing_support

inline void* AllocateOrFail(std::size_t size) {
  using namespace testing_support;
  if (gFailAlways ||
      (gAllocationsUntilFailure >= 0 && gAllocationsUntilFailure-- == 0)) {
    throw std::bad_alloc();
  }
  void* block = std::malloc(size ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  ++gLiveAllocations;
  return block;
}

// Not inlined, so that an optimiser doesn't see free() meet a block from
// operator new and warn of a mismatch.
[[gnu::noinline]] inline void Release(void* block) noexcept {
  if (block == nullptr) return;
  --testing_support::gLiveAllocations;
  std::free(block);
}

void* operator new(std::size_t size) { return AllocateOrFail(size); }
void* operator new[](std::size_t size) { return AllocateOrFail(size); }
void operator delete(void* p) noexcept { Release(p); }
void operator delete[](void* p) noexcept { Release(p); }
void operator delete(void* p, std::size_t) noexcept { Release(p); }
void operator delete[](void* p, std::size_t) noexcept { Release(p); }

#endif  // TSXML_TESTS_SUPPORT_FAILING_ALLOCATOR_H
