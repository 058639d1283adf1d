#include "tsxml/xml/number_text.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <string>

#include "tsxml/xml/internal/number_format.h"
#include "tsxml/xml/xml_node.h"

namespace OstraTimeXML {
namespace {

std::string Plain(double value) { return Format(value, false, nullptr); }

TEST(NumberText, DefaultRoute) {
  std::string text;
  for (double value : {0.0, -0.0, 0.1, 1e5, 1e15, 1e-4, 1e-5, 1.0 / 3,
                       123456789012345.0, 1234567890123456.0, -DBL_MAX,
                       std::numeric_limits<double>::denorm_min(), -HUGE_VAL}) {
    text += Plain(value) + " ";
  }
  EXPECT_EQ(text,
            "0 -0 0.1 100000 1e+15 0.0001 1e-05 0.333333333333333 "
            "123456789012345 1.23456789012346e+15 -1.79769313486232e+308 "
            "4.94065645841247e-324 -inf ");
  // Values that are not finite read as the stream prints them.
  for (double value : {HUGE_VAL, std::nan(""), -std::nan("")}) {
    EXPECT_EQ(Plain(value), tsxml::FormatGeneral15ViaStream(value));
  }
}

TEST(NumberText, FormatStringRoute) {
  char two_decimals[] = "%.2f";
  EXPECT_EQ(Format(1.5, false, two_decimals), "1.5");
  EXPECT_EQ(Format(1.5, true, two_decimals), "1.50");
  EXPECT_EQ(ReplaceSep(1.5, two_decimals), "1.5");
  EXPECT_EQ(Format(0.1, true, nullptr), "0.1");
  char wide[] = "%200.3f";  // cut at 111 characters
  EXPECT_EQ(Format(2.0, true, wide), std::string(111, ' '));
}

TEST(NumberText, IntegerTextIsWhatPrintfMakesOfTheDouble) {
  auto expect = [](long value) {
    char text[112];
    std::snprintf(text, sizeof(text), "%.15g", static_cast<double>(value));
    EXPECT_EQ(Format(value), text) << value;
  };
  for (long value :
       {LONG_MIN, LONG_MAX, long{INT32_MIN}, long{INT32_MAX}, 0L, -7L,
        -999999999999999L, 999999999999999L, -1000000000000000L,
        1000000000000000L, 1000000000000001L}) {
    expect(value);
  }
  std::mt19937_64 rng(5);
  for (int i = 0; i < 20000 && !HasFailure(); ++i) {
    expect(static_cast<long>(rng() >> (rng() % 64)));
  }
}

// Over powers of 10 and 2 with their neighbours, random bit patterns (all
// magnitudes, subnormals), 15 digits with a tie or more digits behind,
// integers and short decimals; then where the text is rounded in integer
// arithmetic (10^-18 up to 10^15), random mantissas at every binary exponent
// and values whose 16th digit is an exact 5 (ties, rounded to even); each
// also negated. WriteGeneral15 and FormatGeneral15 give printf's "%.15g" and
// write no more than they return.
TEST(NumberText, FastRouteMatchesPrintfOnAMillionDoubles) {
  std::vector<double> values = {DBL_MAX, DBL_MIN, 999999999999999.5,
                                9.999999999999995e-5};
  for (int e = -1074; e <= 1023; ++e) {
    for (double p : {std::ldexp(1.0, e),
                     e >= -324 && e <= 308 ? std::pow(10.0, e) : 0.0}) {
      values.insert(values.end(),
                    {p, std::nextafter(p, 0.0), std::nextafter(p, HUGE_VAL)});
      if (p < 1e300)
        values.insert(values.end(),
                      {p * 0.99999999999999995, p * 9.9999999999999995});
    }
  }
  std::mt19937_64 rng(424242);
  for (int i = 0; i < 100000; ++i) {
    for (std::uint64_t bits : {rng(), rng() >> 12}) {
      double d;
      std::memcpy(&d, &bits, sizeof(d));
      values.push_back(d);
    }
    std::string text = std::to_string(1 + rng() % 9) + ".";
    for (int n = 14 + (i % 2 == 0 ? 0 : static_cast<int>(rng() % 4)); n > 0;
         --n) {
      text += static_cast<char>('0' + rng() % 10);
    }
    text += (i % 2 == 0 ? "5e" : "e") +
            std::to_string(static_cast<int>(rng() % 641) - 330);
    values.push_back(std::strtod(text.c_str(), nullptr));
    values.push_back(static_cast<double>(rng() >> (rng() % 64)));
    values.push_back(static_cast<double>(rng() % 1000000) /
                     std::pow(10.0, static_cast<int>(rng() % 8)));
  }
  for (int e = -62; e <= 52; ++e) {
    for (int i = 0; i < 3000; ++i) {
      values.push_back(std::ldexp(
          static_cast<double>(rng() >> 11 | std::uint64_t{1} << 52), e - 52));
    }
  }
  // u * 2^-j = u * 5^j * 10^-j: with u odd and u * 5^j of 16 digits, the
  // 16th digit is a 5 with nothing behind it.
  for (int j = 1; j <= 22; ++j) {
    const double five = std::pow(5.0, j);
    const double low = std::ceil(1e15 / five), high = std::floor(1e16 / five);
    for (int i = 0; i < 2000 && low < high; ++i) {
      double u = low + std::floor(static_cast<double>(rng() % (1u << 30)) /
                                  (1u << 30) * (high - low));
      if (std::fmod(u, 2.0) == 0.0) u += 1.0;
      if (u >= 9007199254740992.0) continue;
      values.push_back(std::ldexp(u, -j));
    }
  }
  for (std::size_t i = 0, n = values.size(); i < n; ++i)
    values.push_back(-values[i]);
  ASSERT_GE(values.size(), 1000000u);
  for (double value : values) {
    char expected[64];
    std::snprintf(expected, sizeof expected, "%.15g", value);
    char text[tsxml::kGeneral15Capacity + 8];
    std::memset(text, '#', sizeof text);
    char* end = tsxml::WriteGeneral15(value, text);
    ASSERT_EQ(std::string(text, end), expected) << std::hexfloat << value;
    ASSERT_EQ(*end, '#');
    ASSERT_EQ(tsxml::FormatGeneral15(value), expected)
        << std::hexfloat << value;
  }
}

// In a decimal-comma locale (made by CI with localedef), set for C and C++
// alike, only the format-string route and the decimal character follow it.
TEST(NumberTextLocale, DecimalCommaLeavesDefaultRouteAlone) {
  std::unique_ptr<XMLAttribute> before(XMLAttribute::Create("v", 1.5));
  const std::string old_c_locale = std::setlocale(LC_ALL, nullptr);
  std::locale old;
  try {
    old = std::locale::global(std::locale("de_DE.UTF-8"));
  } catch (const std::runtime_error&) {
    GTEST_SKIP() << "de_DE.UTF-8 is not installed";
  }
  EXPECT_EQ(Format(1.5, false, nullptr), "1.5");
  EXPECT_EQ(Format(1.5, true, nullptr), "1,5");
  EXPECT_EQ(Format(1234567.25, false, nullptr), "1234567.25");
  EXPECT_EQ(tsxml::FormatGeneral15ViaStream(1234.5), "1234.5");
  EXPECT_EQ(Format(long{INT32_MIN}), "-2147483648");
  EXPECT_EQ(Format(LONG_MIN), "-9.22337203685478e+18");
  EXPECT_EQ(GetDecimalCharacter(), ",");
  std::unique_ptr<XMLAttribute> during(XMLAttribute::Create("w", 2.25));
  ExportFormat format;
  std::string text;
  before->ToString(text, format);
  during->ToString(text, format);
  EXPECT_EQ(text, "v=\"1.5\"w=\"2.25\"");
  std::locale::global(old);
  std::setlocale(LC_ALL, old_c_locale.c_str());
}

}  // namespace
}  // namespace OstraTimeXML
