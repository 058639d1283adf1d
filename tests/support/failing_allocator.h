// A global operator new that can be told to fail. It replaces the global
// allocation functions: include it in one source file of a test binary.
#ifndef TSXML_TESTS_SUPPORT_FAILING_ALLOCATOR_H
#define TSXML_TESTS_SUPPORT_FAILING_ALLOCATOR_H

#include <cstdlib>
#include <new>

namespace testing_support {

// Allocations left before one throws std::bad_alloc (and disarms); -1 is
// disarmed. gFailAlways fails them all. gLiveAllocations counts the blocks
// not yet freed.
inline long gAllocationsUntilFailure = -1;
inline bool gFailAlways = false;
inline long gLiveAllocations = 0;

// Makes the n-th allocation from now (0-based) fail while in scope.
class FailingAllocations {
 public:
  explicit FailingAllocations(long n) { gAllocationsUntilFailure = n; }
  ~FailingAllocations() { gAllocationsUntilFailure = -1; }
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

// Calls `step(n)` for n = 0, 1, ... until it returns true (the call under
// test, with FailingAllocations(n), completed); returns the failed runs.
template <typename Step>
long ForEachFailingAllocation(Step step) {
  long n = 0;
  while (!step(n)) ++n;
  return n;
}

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

// Not inlined, lest an optimiser warn that free() meets operator new.
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
