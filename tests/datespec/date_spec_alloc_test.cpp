// Allocation failures inside date specification operations: the failure
// passes through as std::bad_alloc, nothing leaks, and the specification is
// left exactly as it was. This binary replaces the global operator new to
// fail on request.
#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "date_spec_test_util.h"
#include "support/date_spec_fixtures.h"
#include "support/failing_allocator.h"

namespace datespec_test {
namespace {

using testing_support::gLiveAllocations;

TEST(DateSpecAllocation, FailedCallsChangeNothingAndLeakNothing) {
  const DS other = testing_support::MonthlyDateSpec(1990);
  const std::function<void(DS&)> calls[] = {
      [](DS& s) { ASSERT_TRUE(s.AddPeriod(DS::Obs, 2, 0, 0).IsOK()); },
      [](DS& s) { ASSERT_TRUE(s.AddPeriod(DS::Quarter, 4, 0, 0).IsOK()); },
      [](DS& s) { ASSERT_TRUE(s.AddGap(5).IsOK()); },
      [](DS& s) { ASSERT_TRUE(s.AddGap(s.IndexTuple(6)).IsOK()); },
      [](DS& s) { ASSERT_TRUE(s.SetFirstCaseIndex(s.IndexTuple(-2)).IsOK()); },
      [&other](DS& s) { s = other; },
      [](DS& s) { DS copy(s), fresh(DS::Month); },
  };
  for (const auto& call : calls) {
    // The n-th allocation fails, for n from 0 until the call goes through.
    const long failures =
        testing_support::ForEachFailingAllocation([&](long n) {
          const long live = gLiveAllocations;
          bool done = true;
          {
            // Years and months from 2001, month 2, with the gaps 3, 4 and 8.
            DS spec = testing_support::MonthlyDateSpec(2001, 2);
            for (int32_t gap : {8, 3, 4}) EXPECT_TRUE(spec.AddGap(gap).IsOK());
            const DS before(spec);
            const std::string shown = Show(spec);
            try {
              testing_support::FailingAllocations failing(n);
              call(spec);
            } catch (const std::bad_alloc&) {
              done = false;
            }
            if (!done) {
              EXPECT_TRUE(spec.IsEquivalent(before, true));
              EXPECT_EQ(Show(spec), shown);
            }
          }
          EXPECT_EQ(gLiveAllocations, live);
          return done;
        });
    EXPECT_GT(failures, 0) << &call - calls;
  }
}

}  // namespace
}  // namespace datespec_test
