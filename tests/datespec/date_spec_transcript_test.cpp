// Hand-worked date specifications, run from transcripts under
// tests/data/datespec/: each line "command => result" runs its command on
// named specifications and tuples, and the transcript written anew from the
// results must equal the file. A command that gives neither "ok" nor "true"
// must leave its specification as it was. The commands are listed at the head
// of the transcript.
#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>

#include "date_spec_test_util.h"
#include "support/failing_allocator.h"
#include "support/test_data.h"

namespace datespec_test {
namespace {

using testing_support::FailingAllocations;
using testing_support::ForEachFailingAllocation;
using testing_support::gLiveAllocations;

std::string Text(bool value) { return value ? "true" : "false"; }

std::string Text(const OstraTime::OstraStatus& status) {
  if (status.IsOK()) return "ok";
  return std::to_string(status.GetCode()) + (status.IsWarning() ? " w" : "");
}

// The tuple's indexes, whether it is valid, and its virtual case offset,
// case offset and closest case offsets forward and backward.
std::string Describe(const Tuple& t) {
  return Join(t.GetIndexes()) + (t.IsValid() ? ", valid, " : ", invalid, ") +
         Join(std::vector<int32_t>{t.VirtualCaseOffset(), t.CaseOffset(),
                                   t.ClosestCaseOffset(true),
                                   t.ClosestCaseOffset(false)});
}

class Transcript {
 public:
  std::string Run(const std::string& text) {
    std::istringstream lines(text);
    std::string out, line;
    while (std::getline(lines, line)) {
      const size_t arrow = line.find(" => ");
      out += out.empty() ? "" : "\n";
      if (arrow == std::string::npos || line.rfind('#', 0) == 0) {
        out += line;
        continue;
      }
      SCOPED_TRACE(line);
      std::istringstream words(line.substr(0, arrow));
      w_.assign(std::istream_iterator<std::string>(words), {});
      std::string result;
      try {
        result = Do();
      } catch (const std::exception& e) {
        result = e.what();
      }
      out += line.substr(0, arrow) + " => " + result;
    }
    return out;
  }

 private:
  // Word `i` as a number; a negative one wraps, as the casts want it.
  uint64_t N(size_t i) const { return std::stoull(w_.at(i)); }
  Indexes From(size_t i) const {
    Indexes out;
    for (; i < w_.size(); ++i) out.push_back(unsigned(N(i)));
    return out;
  }
  DS& Spec(size_t i) { return specs_.at(w_.at(i)); }
  Tuple& TupleAt(size_t i) { return tuples_.at(w_.at(i)); }
  DS::PeriodType Type(size_t i) const {
    for (int32_t t = 0; t <= DS::Obs; ++t) {
      const char* name = DS::PeriodTypeName(t);
      if (name && w_.at(i) == name) return DS::PeriodType(t);
    }
    throw std::invalid_argument("no period type " + w_.at(i));
  }

  std::string Do() {
    const std::string& verb = w_.at(0);
    if (verb == "failing") return Failing();
    if (verb == "new") {
      try {
        specs_.insert_or_assign(w_.at(1), w_.size() > 2 ? DS(Type(2)) : DS());
      } catch (const OstraTime::OstraStatus& status) {
        return Text(status);
      }
      return "ok";
    }
    if (verb == "copy") specs_.insert_or_assign(w_.at(1), DS(Spec(2)));
    if (verb == "copy") return "ok";
    if (verb == "tuple") {
      Tuple& t = tuples_
                     .insert_or_assign(w_.at(1),
                                       w_.size() > 2 ? Tuple(Spec(2)) : Tuple())
                     .first->second;
      return w_.size() > 3 ? Text(t.SetIndexes(From(3))) : Describe(t);
    }
    if (verb == "set") return Text(TupleAt(1).SetIndexes(From(2)));
    if (verb == "look") return Describe(TupleAt(1));
    if (verb == "compare")
      return std::to_string(TupleAt(1).Compare(TupleAt(2)));
    DS& spec = Spec(1);
    const DS before(spec);
    const std::string shown = Show(spec);
    const std::string result = OnSpec(verb, spec);
    if (result != "ok" && result != "true") {
      EXPECT_TRUE(spec.IsEquivalent(before, true));
      EXPECT_EQ(Show(spec), shown);
    }
    return result;
  }

  // Runs the rest of the command with the n-th allocation failing, for n =
  // 0, 1, ... until it goes through; a failure must leave the named
  // specification as it was and free every block.
  std::string Failing() {
    w_.erase(w_.begin());
    const auto named = specs_.find(w_.at(1));
    const std::string shown = named == specs_.end() ? "" : Show(named->second);
    std::string result;
    const long failures = ForEachFailingAllocation([&](long n) {
      const long live = gLiveAllocations;
      try {
        FailingAllocations failing(n);
        result = Do();
        return true;
      } catch (const std::bad_alloc&) {
        EXPECT_EQ(gLiveAllocations, live);
        EXPECT_EQ(named == specs_.end() ? "" : Show(named->second), shown);
        return false;
      }
    });
    return (failures > 0 ? "failed, then " : "") + result;
  }

  std::string OnSpec(const std::string& verb, DS& spec) {
    const auto v = [this] { return int32_t(N(2)); };
    if (verb == "add") {
      return Text(spec.AddPeriod(Type(2), unsigned(N(3)), unsigned(N(4)),
                                 unsigned(N(5))));
    }
    if (verb == "increment")
      return Text(spec.SetLowestIncrement(unsigned(v())));
    if (verb == "gap") return Text(spec.AddGap(v()));
    if (verb == "gapat") return Text(spec.AddGap(TupleAt(2)));
    if (verb == "first") return Text(spec.SetFirstCaseIndex(TupleAt(2)));
    if (verb == "day") {
      return Text(
          spec.SetFirstCaseDay(unsigned(v()), unsigned(N(3)), unsigned(N(4))));
    }
    if (verb == "show") return Show(spec);
    if (verb == "period") return Period(spec, unsigned(v()));
    if (verb == "equivalent") {
      return Text(spec.IsEquivalent(Spec(2), false)) + " " +
             Text(spec.IsEquivalent(Spec(2), true));
    }
    if (verb == "number") return std::to_string(spec.NumberFromOffset(v()));
    if (verb == "offset") return std::to_string(spec.OffsetFromNumber(N(2)));
    if (verb == "offsets") {
      return Join(std::vector<int32_t>{
          spec.CaseOffset(v()), spec.ClosestCaseOffset(v(), true),
          spec.ClosestCaseOffset(v(), false), spec.VirtualCaseOffset(v())});
    }
    if (verb == "at") return Describe(spec.IndexTuple(v()));
    if (verb == "gapindex") return Describe(spec.GapIndex(size_t(v())));
    if (verb == "assign") spec = Spec(2);
    if (verb == "clear") spec.ClearGaps();
    if (verb == "season") spec.SetForcedSeasonLength(unsigned(v()));
    if (verb == "fiscal") spec.SetFiscalYearStart(unsigned(v()));
    const bool known = verb == "assign" || verb == "clear" ||
                       verb == "season" || verb == "fiscal";
    return known ? "ok" : "unknown command";
  }

  std::vector<std::string> w_;  // the words of the command
  std::map<std::string, DS> specs_;
  std::map<std::string, Tuple> tuples_;
};

TEST(DateSpecTranscript, BuildingAndCaseArithmetic) {
  const std::string text =
      testing_support::ReadTestData("datespec/transcript.txt");
  EXPECT_EQ(Transcript().Run(text), text);
}

}  // namespace
}  // namespace datespec_test
