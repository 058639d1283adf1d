// Allocation failures while building, writing and deleting trees: nothing
// leaks, nothing is deleted twice, and a failed assignment keeps the old
// value. This binary replaces the global operator new to fail on request.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <sstream>
#include <string>

#include "support/failing_allocator.h"
#include "tsxml/xml/xml_node.h"

namespace OstraTimeXML {
namespace {

using testing_support::gFailAlways;
using testing_support::gLiveAllocations;

struct CountedElement : XMLElement {
  explicit CountedElement(int* deletions)
      : XMLElement("counted"), deletions_(deletions) {}
  ~CountedElement() override { ++*deletions_; }
  int* deletions_;
};

std::string Text(const XMLInterface& node) {
  ExportFormat format;
  std::string text;
  node.ToString(text, format);
  return text;
}

// Builds a small document the way the library's builders do and writes it
// by both routes.
std::string BuildAndWrite() {
  std::unique_ptr<XMLElement> root(XMLElement::Create("root"));
  root->AddAttribute("a", "x  y");
  root->AddAttribute("n", 2.5);
  for (int i = 0; i < 5; ++i) {
    std::unique_ptr<XMLElement> child(XMLElement::Create("c"));
    child->AddAttribute("i", static_cast<double>(i));
    child->AddElement(XMLString::Create("t<"));
    root->AddElement(child.release());
  }
  std::unique_ptr<XMLDocType> doc(XMLDocType::Create("root", "r.dtd", 0));
  doc->AddExtension("E");
  std::ostringstream os;
  os.exceptions(std::ios::badbit);  // let a failed allocation through
  WriteTree(os, doc.get(), root.get(), true);
  return os.str() + Text(*root);
}

// Runs `build` with the n-th allocation failing, for n = 0, 1, ... until it
// goes through: a failure leaves no block behind, and the run that goes
// through gives what a run without failures gives. Returns the failed runs.
template <typename Build>
long FailEachAllocationOf(Build build) {
  const std::string expected = build();
  return testing_support::ForEachFailingAllocation([&](long n) {
    const long live = gLiveAllocations;
    std::string text;
    try {
      testing_support::FailingAllocations failing(n);
      text = build();
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(gLiveAllocations, live) << "failure at allocation " << n;
      return ::testing::Test::HasFailure();
    }
    EXPECT_EQ(text, expected);
    return true;
  });
}

// The run goes through many failure points: the pool's page, the document
// type, the streams and strings of the writers.
TEST(AllocationFailure, EveryFailurePointLeaksNothing) {
  EXPECT_GT(FailEachAllocationOf(BuildAndWrite), 10);
}

// A tree that spans several pool pages and a children list allocated on its
// own: a failure at any page or list allocation leaves nothing behind.
TEST(AllocationFailure, FailureAtEveryPageOfALargeTree) {
  EXPECT_GT(FailEachAllocationOf([] {
              std::unique_ptr<XMLElement> root(XMLElement::Create("series"));
              for (int i = 0; i < 3000; ++i) {
                std::unique_ptr<XMLElement> child(XMLElement::Create("v"));
                child->AddAttribute("index", static_cast<double>(i));
                child->AddAttribute("text",
                                    std::string(static_cast<size_t>(i % 50),
                                                i % 2 == 0 ? 'a' : '&'));
                child->AddElement(XMLString::Create(std::string(1, '<')));
                root->AddElement(child.release());
              }
              return Text(*root);
            }),
            5);
}

TEST(AllocationFailure, AssignmentKeepsTheOldValueOnFailure) {
  std::unique_ptr<XMLAttribute> a(XMLAttribute::Create("a", "1"));
  std::unique_ptr<XMLAttribute> b(
      XMLAttribute::Create(std::string(100, 'n'), std::string(100, 'v')));
  for (long n = 0; n < 2; ++n) {
    {
      testing_support::FailingAllocations failing(n);
      EXPECT_THROW(*a = *b, std::bad_alloc);
    }
    EXPECT_EQ(Text(*a), "a=\"1\"");
  }
}

TEST(AllocationFailure, DeepDeletionWithoutMemoryStillDeletesAll) {
  int deletions = 0;
  const long live = gLiveAllocations;
  {
    std::unique_ptr<XMLElement> root(XMLElement::Create("r"));
    XMLElement* leaf = root.get();
    for (int i = 0; i < 200; ++i) {
      XMLElement* child = XMLElement::Create("e");
      leaf->AddElement(child);
      leaf->AddElement(new CountedElement(&deletions));
      leaf = child;
    }
    gFailAlways = true;  // the deleter's own stack cannot grow
  }
  gFailAlways = false;
  EXPECT_EQ(deletions, 200);
  EXPECT_EQ(gLiveAllocations, live);
}

}  // namespace
}  // namespace OstraTimeXML
