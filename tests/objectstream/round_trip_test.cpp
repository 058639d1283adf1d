// Generated streams written to a file and read back with the same calls, under
// the "C" locale and a decimal-comma locale, with LF and with CR LF line ends;
// and two streams read at once.
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <variant>
#include <vector>

#include "gtest/gtest.h"
#include "object_stream_test_util.h"
#include "tsxml/base/missing_value.h"
#include "tsxml/objectstream/xml_obj.h"
#include "tsxml/objectstream/xml_obj_reader.h"
#include "tsxml/xml/number_text.h"

namespace {

using objectstream_test::Escaped;
using objectstream_test::TempPath;
using OstraTimeXML::XMLObj;

using Value = std::variant<int, unsigned int, bool, long, double, std::string>;

// One call of the writer, to be matched by one call of the reader.
struct Event {
  enum Kind { kStart, kMember, kEnd } kind;
  std::string name;  // kStart
  Value value;       // kMember
};

class Generator {
 public:
  explicit Generator(std::uint32_t seed) : rng_(seed) {}

  // Appends one object with members and nested objects up to `depth` deep.
  void Object(int depth, std::vector<Event>& events) {
    events.push_back({Event::kStart, Name(), 0});
    for (int n = Below(8); n > 0; --n) {
      if (depth > 0 && Below(4) == 0) {
        Object(depth - 1, events);
      } else {
        events.push_back({Event::kMember, "", AnyValue()});
      }
    }
    events.push_back({Event::kEnd, "", 0});
  }

 private:
  int Below(int n) {
    return std::uniform_int_distribution<int>(0, n - 1)(rng_);
  }

  template <typename T>
  T Bits() {
    return static_cast<T>(rng_());
  }

  template <typename T>
  T Extreme() {
    const T choices[] = {std::numeric_limits<T>::min(),
                         std::numeric_limits<T>::max(), T(0), T(1),
                         static_cast<T>(-1)};
    return choices[Below(5)];
  }

  // Printable ASCII but the double quote, which ends a name.
  std::string Name() {
    std::string name;
    for (int n = 1 + Below(16); n > 0; --n) {
      char c = static_cast<char>(' ' + Below(95));
      name += c == '"' ? '_' : c;
    }
    return name;
  }

  // Any bytes but NUL, which ends a line in the reader; short enough that the
  // escaped line stays within 255 characters.
  std::string Text() {
    std::string text;
    for (int n = Below(31); n > 0; --n) {
      text +=
          static_cast<char>(Below(4) == 0 ? 1 + Below(255) : ' ' + Below(95));
    }
    return text;
  }

  double AnyDouble() {
    const double missing = MV::gMissingValue;
    const double below_missing = std::nextafter(missing, 0.0);
    const double tiny = std::numeric_limits<double>::denorm_min();
    const double specials[] = {0.0,     -0.0,    missing, below_missing,
                               DBL_MAX, DBL_MIN, tiny,    -tiny,
                               1e15,    1e-5,    1.0 / 3};
    switch (Below(3)) {
      case 0:
        return specials[Below(11)];
      case 1: {  // any magnitude, any bit pattern that is a number
        double value;
        do {
          const std::uint64_t bits = rng_();
          std::memcpy(&value, &bits, sizeof value);
        } while (!std::isfinite(value));
        return value;
      }
      default: {  // a short decimal of some magnitude
        const int digits = Below(2001) - 1000;
        return digits * std::pow(10.0, Below(41) - 20);
      }
    }
  }

  Value AnyValue() {
    switch (Below(6)) {
      case 0:
        return Below(2) ? Extreme<int>() : Bits<int>();
      case 1:
        return Below(2) ? Extreme<unsigned int>() : Bits<unsigned int>();
      case 2:
        return Below(2) == 1;
      case 3:
        return Below(2) ? Extreme<long>() : Bits<long>();
      case 4:
        return AnyDouble();
      default:
        return Text();
    }
  }

  std::mt19937_64 rng_;
};

// The stream that the writer makes of `events`.
std::string Written(const std::vector<Event>& events) {
  std::ostringstream out;
  out << objectstream_test::StreamHead("(c) round trip");
  std::vector<XMLObj> open;
  for (const Event& event : events) {
    switch (event.kind) {
      case Event::kStart:
        open.emplace_back(event.name, static_cast<int>(open.size()));
        open.back().StartObj(out);
        break;
      case Event::kMember:
        std::visit([&](const auto& v) { open.back().WriteSubElement(out, v); },
                   event.value);
        break;
      case Event::kEnd:
        open.back().EndObj(out);
        open.pop_back();
        break;
    }
  }
  OstraTimeXML::EndRoot(out);
  return out.str();
}

std::string NumberText(double value) {
  return OstraTimeXML::Format(value, false, nullptr);
}

// Reads one member of the type of `expected` and checks it came back.
void ExpectMember(std::ifstream& in, const Value& expected) {
  std::visit(
      [&](const auto& want) {
        using T = std::decay_t<decltype(want)>;
        T got{};
        ASSERT_TRUE(OstraTimeXML::ParseValue(in, got));
        if constexpr (std::is_same_v<T, double>) {
          if (MV::IsMissing(want)) {
            EXPECT_TRUE(MV::IsMissing(got));
          } else {
            EXPECT_EQ(NumberText(got), NumberText(want));
          }
        } else if constexpr (std::is_same_v<T, std::string>) {
          EXPECT_EQ(got, Escaped(want));
        } else {
          EXPECT_EQ(got, want);
        }
      },
      expected);
}

void ReadBack(std::ifstream& in, const std::vector<Event>& events) {
  ASSERT_TRUE(OstraTimeXML::ParseStartXML(in));
  for (const Event& event : events) {
    switch (event.kind) {
      case Event::kStart:
        ASSERT_TRUE(OstraTimeXML::ParseStartObj(in, event.name)) << event.name;
        break;
      case Event::kMember:
        ExpectMember(in, event.value);
        break;
      case Event::kEnd:
        ASSERT_TRUE(OstraTimeXML::ParseEndObj(in));
        break;
    }
    if (::testing::Test::HasFailure()) return;
  }
}

// Sets the global C and C++ locales for its lifetime.
class GlobalLocale {
 public:
  GlobalLocale() : cName_(std::setlocale(LC_ALL, nullptr)) {}
  ~GlobalLocale() {
    std::locale::global(saved_);
    std::setlocale(LC_ALL, cName_.c_str());
  }
  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

  // False when the machine lacks `name`.
  bool Set(const char* name) {
    try {
      std::locale::global(std::locale(name));
    } catch (const std::runtime_error&) {
      return false;
    }
    return std::setlocale(LC_ALL, name) != nullptr;
  }

 private:
  std::string cName_;
  std::locale saved_;
};

class ObjectStreamRoundTrip : public ::testing::TestWithParam<const char*> {};

TEST_P(ObjectStreamRoundTrip, GeneratedStreamsReadBackEqual) {
  GlobalLocale locale;
  if (!locale.Set(GetParam())) {
    GTEST_SKIP() << "locale " << GetParam() << " is not installed";
  }
  if (std::string(GetParam()) != "C") {
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  }
  Generator generate(424242);
  for (int round = 0; round < 200; ++round) {
    std::vector<Event> events;
    for (int objects = 1 + round % 3; objects > 0; --objects) {
      generate.Object(4, events);
    }
    std::string text = Written(events);
    if (round % 2 == 1) {  // CR LF line ends read like LF alone
      for (size_t at = text.find('\n'); at != std::string::npos;
           at = text.find('\n', at + 2)) {
        text.insert(at, 1, '\r');
      }
    }
    objectstream_test::StreamFile file(text);
    ReadBack(file.in(), events);
    if (HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(Locales, ObjectStreamRoundTrip,
                         ::testing::Values("C", "de_DE.UTF-8"));

// Each thread reads its own stream; the tokens of one never disturb the
// other's.
TEST(ObjectStreamThreads, TwoStreamsReadAtOnce) {
  constexpr int kMembers = 3000;
  TempPath files[2];
  for (int t = 0; t < 2; ++t) {
    std::ofstream out(files[t].path(), std::ios::binary);
    const XMLObj obj("T" + std::to_string(t), 0);
    for (int i = 0; i < kMembers; ++i) {
      obj.WriteSubElement(
          out, std::string(static_cast<size_t>(1 + i % 40), "ab"[t]));
      obj.WriteSubElement(out, i * 2 + t);
    }
  }
  int errors[2] = {0, 0};
  auto read = [&](int t) {
    std::ifstream in(files[t].path(), std::ios::binary);
    std::string line;
    std::getline(in, line);  // the empty first line
    for (int i = 0; i < kMembers; ++i) {
      std::string text;
      int number = -1;
      if (!OstraTimeXML::ParseValue(in, text) ||
          text != std::string(static_cast<size_t>(1 + i % 40), "ab"[t]) ||
          !OstraTimeXML::ParseValue(in, number) || number != i * 2 + t) {
        ++errors[t];
      }
    }
  };
  std::thread first(read, 0);
  std::thread second(read, 1);
  first.join();
  second.join();
  EXPECT_EQ(errors[0], 0);
  EXPECT_EQ(errors[1], 0);
}

}  // namespace
