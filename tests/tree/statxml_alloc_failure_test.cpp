// StatXML mode with every allocation of adding and writing made to fail in
// turn: the exception passes through, the tree keeps the document it had (or
// none) and nothing leaks.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <sstream>
#include <string>

#include "support/failing_allocator.h"
#include "tree/statxml_test_models.h"
#include "tsxml/tree/tsxml_tree.h"

namespace {

using namespace statxml_test;
using testing_support::gAllocationsUntilFailure;
using testing_support::gLiveAllocations;

std::string WriteAll(TSXMLTree& tree) {
  std::ostringstream out;
  tree.WriteToStream(out);
  return out.str();
}

// A StatXML tree with the sales residuals at 4 lags, holding the document of
// the Holt model when `withDocument`.
TSXMLTree MakeTree(bool withDocument) {
  TSXMLTree tree;
  tree.SetStatXMLOutput(&kSalesResiduals, 4, 0.95);
  if (withDocument) tree.AddModelTree(MakeHoltModel(), kHoltRefs);
  return tree;
}

// Runs `change` on the tree that `make` gives with every allocation failing
// in turn: a failure leaves the tree's document as it was and frees all it
// took; the run that completes writes and leaves what a run without failures
// does. Returns the number of failed runs. The stream has its room up front.
long CheckEveryFailure(
    const std::function<TSXMLTree()>& make,
    const std::function<void(TSXMLTree&, std::ostream&)>& change) {
  TSXMLTree before = make();
  const std::string document = WriteAll(before);
  TSXMLTree after = make();
  std::ostringstream written;
  change(after, written);
  const std::string documentAfter = WriteAll(after);

  long n = 0;
  for (;; ++n) {  // the n-th allocation (0-based) fails
    const long live = gLiveAllocations;
    bool failed = false;
    {
      TSXMLTree tree = make();
      std::ostringstream out(std::string(1 << 16, ' '));
      try {
        gAllocationsUntilFailure = n;
        change(tree, out);
        gAllocationsUntilFailure = -1;
      } catch (const std::bad_alloc&) {  // which disarmed the allocator
        failed = true;
      }
      if (failed) {
        EXPECT_EQ(WriteAll(tree), document);
      } else {
        EXPECT_EQ(out.str().substr(0, static_cast<size_t>(out.tellp())),
                  written.str());
        EXPECT_EQ(WriteAll(tree), documentAfter);
      }
    }
    EXPECT_EQ(gLiveAllocations, live);
    if (!failed) return n;
  }
}

TEST(StatXMLAllocationFailureTest, AddModelTreeKeepsThePreviousDocument) {
  const TSFModel sales = MakeSalesModel();
  for (bool withDocument : {false, true}) {
    SCOPED_TRACE(withDocument);
    const long failures =
        CheckEveryFailure([withDocument] { return MakeTree(withDocument); },
                          [&sales](TSXMLTree& tree, std::ostream&) {
                            EXPECT_TRUE(tree.AddModelTree(sales, kSalesRefs));
                          });
    EXPECT_GT(failures, 100);
  }
}

TEST(StatXMLAllocationFailureTest, WriteToStreamKeepsTheDocument) {
  const long failures = CheckEveryFailure(
      [] {
        TSXMLTree tree = MakeTree(false);
        tree.AddModelTree(MakeSalesModel(), kSalesRefs);
        return tree;
      },
      [](TSXMLTree& tree, std::ostream& out) {
        EXPECT_TRUE(tree.WriteToStream(out));
      });
  EXPECT_GT(failures, 0);
}

}  // namespace
