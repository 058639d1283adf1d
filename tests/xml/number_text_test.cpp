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
#include <vector>

#include "tsxml/xml/internal/number_format.h"
#include "tsxml/xml/xml_node.h"
#include "xml_reference.h"

namespace OstraTimeXML {
namespace {

std::string Plain(double value) { return Format(value, false, nullptr); }

TEST(NumberText, DefaultRouteTable) {
  EXPECT_EQ(Plain(0.0), "0");
  EXPECT_EQ(Plain(-0.0), "-0");
  EXPECT_EQ(Plain(1.0), "1");
  EXPECT_EQ(Plain(0.1), "0.1");
  EXPECT_EQ(Plain(100000.0), "100000");
  EXPECT_EQ(Plain(1e15), "1e+15");
  EXPECT_EQ(Plain(1e-4), "0.0001");
  EXPECT_EQ(Plain(1e-5), "1e-05");
  EXPECT_EQ(Plain(1.0 / 3.0), "0.333333333333333");
  EXPECT_EQ(Plain(123456789012345.0), "123456789012345");
  EXPECT_EQ(Plain(1234567890123456.0), "1.23456789012346e+15");
  EXPECT_EQ(Plain(-DBL_MAX), "-1.79769313486232e+308");
  EXPECT_EQ(Plain(std::numeric_limits<double>::denorm_min()),
            "4.94065645841247e-324");
  // Values that are not finite read as the stream prints them.
  for (double value : {HUGE_VAL, -HUGE_VAL, std::nan(""), -std::nan("")}) {
    EXPECT_EQ(Plain(value), tsxml::FormatGeneral15ViaStream(value));
  }
  EXPECT_EQ(Plain(-HUGE_VAL), "-inf");
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
  EXPECT_EQ(Format(static_cast<long>(INT32_MIN)), "-2147483648");
  std::mt19937_64 rng(5);
  std::vector<long> values = {LONG_MIN,
                              LONG_MAX,
                              INT32_MAX,
                              0,
                              -7,
                              -999999999999999L,
                              999999999999999L,
                              -1000000000000000L,
                              1000000000000000L,
                              1000000000000001L};
  for (int i = 0; i < 20000; ++i) {
    const int shift = static_cast<int>(rng() % 64);
    values.push_back(static_cast<long>(rng() >> shift));
  }
  for (long value : values) {
    char expected[112];
    std::snprintf(expected, sizeof(expected), "%.15g",
                  static_cast<double>(value));
    ASSERT_EQ(Format(value), expected) << value;
  }
}

// Doubles of every kind: powers of 10 and 2 with their neighbours, random
// bit patterns, subnormals, 15 digits with a tie or more digits behind,
// integers, short decimals and log-uniform magnitudes, each also negated.
std::vector<double> ManyDoubles() {
  std::vector<double> values = {DBL_MAX, DBL_MIN, 999999999999999.5,
                                9.999999999999995e-5};
  auto with_neighbours = [&values](double p) {
    values.insert(values.end(),
                  {p, std::nextafter(p, 0.0), std::nextafter(p, HUGE_VAL)});
  };
  for (int e = -324; e <= 308; ++e) with_neighbours(std::pow(10.0, e));
  for (int e = -1074; e <= 1023; ++e) with_neighbours(std::ldexp(1.0, e));
  std::mt19937_64 rng(424242);
  auto bits_to_double = [](std::uint64_t bits) {
    double d;
    std::memcpy(&d, &bits, sizeof(d));
    return d;
  };
  auto digits = [&rng](int n) {
    std::string text;
    for (; n > 0; --n) text += static_cast<char>('0' + rng() % 10);
    return text;
  };
  std::uniform_int_distribution<int> exponent(-330, 310);
  std::uniform_real_distribution<double> unit(0.5, 1.0);
  std::uniform_int_distribution<int> binary_exponent(-1074, 1024);
  for (int i = 0; i < 100000; ++i) {
    values.push_back(bits_to_double(rng()));
    values.push_back(bits_to_double(rng() & ((std::uint64_t{1} << 52) - 1)));
    std::string text = std::to_string(1 + rng() % 9) + ".";
    text += digits(14);
    text += i % 2 == 0 ? "5" : digits(static_cast<int>(rng() % 4));
    values.push_back(std::strtod(
        (text + "e" + std::to_string(exponent(rng))).c_str(), nullptr));
    const int shift = static_cast<int>(rng() % 64);
    values.push_back(static_cast<double>(rng() >> shift));
    const double decimal = static_cast<double>(rng() % 1000000);
    values.push_back(decimal / std::pow(10.0, static_cast<int>(rng() % 8)));
    const double mantissa = unit(rng);
    values.push_back(std::ldexp(mantissa, binary_exponent(rng)));
  }
  const std::size_t positives = values.size();
  for (std::size_t i = 0; i < positives; ++i) values.push_back(-values[i]);
  return values;
}

TEST(NumberText, FastRouteMatchesStreamOnAMillionDoubles) {
  const std::vector<double> values = ManyDoubles();
  ASSERT_GE(values.size(), 1000000u);
  for (double value : values) {
    ASSERT_EQ(tsxml::FormatGeneral15(value),
              tsxml::FormatGeneral15ViaStream(value))
        << std::hexfloat << value;
  }
}

// The decimal-comma locale exists where CI made it with localedef.
constexpr const char* kCommaLocale = "de_DE.UTF-8";

TEST(NumberTextLocale, DecimalCommaLeavesDefaultRouteAlone) {
  std::unique_ptr<XMLAttribute> before(XMLAttribute::Create("v", 1.5));
  xml_reference::ScopedCLocale numeric(LC_NUMERIC, kCommaLocale);
  if (!numeric.ok()) GTEST_SKIP() << kCommaLocale << " is not installed";
  EXPECT_EQ(Format(1.5, false, nullptr), "1.5");
  EXPECT_EQ(Format(1.5, true, nullptr), "1,5");
  EXPECT_EQ(Format(1234567.25, false, nullptr), "1234567.25");
  EXPECT_EQ(Format(static_cast<long>(INT32_MIN)), "-2147483648");
  EXPECT_EQ(Format(LONG_MIN), "-9.22337203685478e+18");
  EXPECT_EQ(GetDecimalCharacter(), ",");

  std::unique_ptr<XMLAttribute> during(XMLAttribute::Create("w", 2.25));
  ExportFormat format;
  std::string text;
  before->ToString(text, format);
  during->ToString(text, format);
  EXPECT_EQ(text, "v=\"1.5\"w=\"2.25\"");
}

TEST(NumberTextLocale, GlobalStreamLocaleIsIgnored) {
  std::locale comma;
  try {
    comma = std::locale(kCommaLocale);
  } catch (const std::runtime_error&) {
    GTEST_SKIP() << kCommaLocale << " is not installed";
  }
  const std::locale old = std::locale::global(comma);
  const std::string plain = Format(1234.5, false, nullptr);
  const std::string stream = tsxml::FormatGeneral15ViaStream(1234.5);
  std::locale::global(old);
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(plain, "1234.5");
  EXPECT_EQ(stream, "1234.5");
}

}  // namespace
}  // namespace OstraTimeXML
