// Allocation failures inside date specification operations: the failure
// passes through as std::bad_alloc, nothing leaks, and the specification is
// left exactly as it was. This binary replaces the global operator new to
// fail on request.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "date_spec_test_util.h"

namespace {

long g_live = 0;            // blocks allocated and not yet freed
long g_until_failure = -1;  // allocations left before one fails; -1: never

}  // namespace

void* operator new(std::size_t size) {
  if (g_until_failure == 0) {
    g_until_failure = -1;
    throw std::bad_alloc();
  }
  if (g_until_failure > 0) --g_until_failure;
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++g_live;
  return block;
}

// Not inlined, so that an optimiser doesn't see free() meet a block from
// operator new and warn of a mismatch.
[[gnu::noinline]] void operator delete(void* block) noexcept {
  if (block == nullptr) return;
  --g_live;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}

namespace datespec_test {
namespace {

// Runs `call` on a fresh Gapped() with the N-th allocation failing, for N
// from 0 until the call goes through; after each failure the specification
// must be unchanged and every block freed. Returns the failures injected.
int FailEachAllocation(const std::function<void(DS&)>& call) {
  int failures = 0;
  for (long allowed = 0;; ++allowed) {
    const long live = g_live;
    {
      DS spec = Gapped();
      const DS before(spec);
      const auto snapshot = Snapshot(spec);
      bool threw = false;
      g_until_failure = allowed;
      try {
        call(spec);
      } catch (const std::bad_alloc&) {
        threw = true;
      }
      g_until_failure = -1;
      if (!threw) break;
      ++failures;
      EXPECT_TRUE(spec.IsEquivalent(before, true));
      EXPECT_EQ(Snapshot(spec), snapshot);
    }
    EXPECT_EQ(g_live, live);
  }
  return failures;
}

TEST(DateSpecAllocation, FailedCallsChangeNothing) {
  EXPECT_GT(FailEachAllocation([](DS& s) {
              ASSERT_TRUE(s.AddPeriod(DS::Obs, 2, 0, 0).IsOK());
            }),
            0);
  EXPECT_GT(FailEachAllocation([](DS& s) {
              ASSERT_TRUE(s.AddPeriod(DS::Quarter, 4, 0, 0).IsOK());
            }),
            0);
  EXPECT_GT(FailEachAllocation([](DS& s) { ASSERT_TRUE(s.AddGap(5).IsOK()); }),
            0);
  EXPECT_GT(FailEachAllocation(
                [](DS& s) { ASSERT_TRUE(s.AddGap(s.IndexTuple(6)).IsOK()); }),
            0);
  EXPECT_GT(FailEachAllocation([](DS& s) {
              ASSERT_TRUE(s.SetFirstCaseIndex(s.IndexTuple(-2)).IsOK());
            }),
            0);
  EXPECT_GT(FailEachAllocation([](DS& s) {
              DS other(DS::Cycle);
              ASSERT_TRUE(other.AddPeriod(DS::Day, 7, 0, 5).IsOK());
              s = other;
            }),
            0);
}

TEST(DateSpecAllocation, FailedCopyAndConstructionLeakNothing) {
  const DS spec = Gapped();
  for (long allowed = 0; allowed < 4; ++allowed) {
    const long live = g_live;
    g_until_failure = allowed;
    try {
      DS copy(spec);
      DS fresh(DS::Month);
    } catch (const std::bad_alloc&) {
    }
    g_until_failure = -1;
    EXPECT_EQ(g_live, live);
  }
}

}  // namespace
}  // namespace datespec_test
