// Allocation failures inside date specification operations: the failure
// passes through as std::bad_alloc, nothing leaks, and the specification is
// left exactly as it was. This binary replaces the global operator new to
// fail on request.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "date_spec_test_util.h"
#include "support/failing_allocator.h"

namespace datespec_test {
namespace {

// Runs `call` on a fresh Gapped() with the N-th allocation failing, for N
// from 0 until the call goes through; after each failure the specification
// must be unchanged and every block freed. Returns the failures injected.
int FailEachAllocation(const std::function<void(DS&)>& call) {
  int failures = 0;
  for (long allowed = 0;; ++allowed) {
    const long live = testing_support::gLiveAllocations;
    {
      DS spec = Gapped();
      const DS before(spec);
      const auto snapshot = Snapshot(spec);
      bool threw = false;
      testing_support::gAllocationsUntilFailure = allowed;
      try {
        call(spec);
      } catch (const std::bad_alloc&) {
        threw = true;
      }
      testing_support::gAllocationsUntilFailure = -1;
      if (!threw) break;
      ++failures;
      EXPECT_TRUE(spec.IsEquivalent(before, true));
      EXPECT_EQ(Snapshot(spec), snapshot);
    }
    EXPECT_EQ(testing_support::gLiveAllocations, live);
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
    const long live = testing_support::gLiveAllocations;
    testing_support::gAllocationsUntilFailure = allowed;
    try {
      DS copy(spec);
      DS fresh(DS::Month);
    } catch (const std::bad_alloc&) {
    }
    testing_support::gAllocationsUntilFailure = -1;
    EXPECT_EQ(testing_support::gLiveAllocations, live);
  }
}

}  // namespace
}  // namespace datespec_test
