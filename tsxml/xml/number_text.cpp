#include "tsxml/xml/number_text.h"

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <locale>
#include <sstream>

#include "tsxml/xml/internal/number_format.h"

namespace tsxml {

std::string FormatGeneral15ViaStream(double value) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream.precision(15);
  stream << value;
  return stream.str();
}

namespace {

using Wide = unsigned __int128;

constexpr std::uint64_t kTen14 = 100000000000000ULL;
constexpr std::uint64_t kTen15 = 1000000000000000ULL;
constexpr int kMaxPow5 = 32;  // 2^53 * 5^32 < 2^128

struct Pow5Table {
  Wide value[kMaxPow5 + 1];
  constexpr Pow5Table() : value() {
    Wide p = 1;
    for (int k = 0; k <= kMaxPow5; ++k, p *= 5) value[k] = p;
  }
};
constexpr Pow5Table kPow5;

// floor(e * log10(2)) for |e| below 1650.
int FloorLog10Pow2(int e) {
  const int scaled = e * 78913;
  return scaled >= 0 ? scaled >> 18 : -((-scaled + (1 << 18) - 1) >> 18);
}

char* WriteVia(double value, char* out) {
  return std::to_chars(out, out + kGeneral15Capacity, value,
                       std::chars_format::general, 15)
      .ptr;
}

// Lays out the 15 digits of `q` (10^14 <= q < 10^15), the value being
// q * 10^(exponent - 14), as "%.15g" does: trailing zeros dropped, the
// exponent form below 10^-4 and from 10^15 on.
char* LayOut(std::uint64_t q, int exponent, char* out) {
  char digits[16];
  std::to_chars(digits, digits + sizeof digits, q);
  int count = 15;
  while (count > 1 && digits[count - 1] == '0') --count;
  const auto n = static_cast<std::size_t>(count);
  if (exponent < -4 || exponent >= 15) {
    *out++ = digits[0];
    if (n > 1) {
      *out++ = '.';
      std::memcpy(out, digits + 1, n - 1);
      out += n - 1;
    }
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    const int magnitude = exponent < 0 ? -exponent : exponent;
    *out++ = static_cast<char>('0' + magnitude / 10);
    *out++ = static_cast<char>('0' + magnitude % 10);
    return out;
  }
  if (exponent >= 0) {
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    std::memcpy(out, digits, whole);
    out += whole;
    if (n > whole) {
      *out++ = '.';
      std::memcpy(out, digits + whole, n - whole);
      out += n - whole;
    }
    return out;
  }
  *out++ = '0';
  *out++ = '.';
  const auto zeros = static_cast<std::size_t>(-exponent - 1);
  std::memset(out, '0', zeros);
  out += zeros;
  std::memcpy(out, digits, n);
  return out + n;
}

}  // namespace

char* WriteGeneral15(double value, char* out) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  const int biased = static_cast<int>((bits >> 52) & 0x7FF);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1);
  if (biased == 0x7FF) {
    const std::string text = FormatGeneral15ViaStream(value);
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
  }
  char* p = out;
  if ((bits >> 63) != 0) *p++ = '-';
  if (biased == 0) {
    if (fraction != 0) return WriteVia(value, out);  // subnormal
    *p++ = '0';
    return p;
  }
  // value = m * 2^e2, m below 2^53.
  const std::uint64_t m = fraction | (std::uint64_t{1} << 52);
  const int e2 = biased - 1075;
  if (e2 < 0 && e2 > -53) {
    const unsigned shift = static_cast<unsigned>(-e2);
    if ((m & ((std::uint64_t{1} << shift) - 1)) == 0) {
      // An integer: below 10^15 its text is its digits.
      const std::uint64_t n = m >> shift;
      if (n < kTen15) return std::to_chars(p, p + 16, n).ptr;
    }
  }
  // q = m * 5^k * 2^(e2 + k) = value * 10^k, rounded half to even, with k
  // chosen so that q has 15 digits. The estimate of the decimal exponent
  // from the binary one is the exponent or one below it.
  const int estimate = FloorLog10Pow2(e2 + 52);
  for (int k = 14 - estimate; k >= 0 && k <= kMaxPow5; --k) {
    const int s = -(e2 + k);
    if (s <= 0 || s >= 128) break;
    const Wide n = static_cast<Wide>(m) * kPow5.value[k];
    const auto shift = static_cast<unsigned>(s);
    std::uint64_t q = static_cast<std::uint64_t>(n >> shift);
    if (q >= kTen15) continue;  // the exponent is one more
    if (q < kTen14) break;
    const Wide rest = n & ((Wide{1} << shift) - 1);
    const Wide half = Wide{1} << (shift - 1);
    if (rest > half || (rest == half && (q & 1) != 0)) ++q;
    int exponent = 14 - k;
    if (q == kTen15) {
      q = kTen14;
      ++exponent;
    }
    return LayOut(q, exponent, p);
  }
  return WriteVia(value, out);
}

std::string FormatGeneral15(double value) {
  char text[kGeneral15Capacity];
  return std::string(text, WriteGeneral15(value, text));
}

}  // namespace tsxml

namespace OstraTimeXML {

namespace {
constexpr char kDefaultNumericFormat[] = "%.15g";
}  // namespace

std::string Format(double value, bool useFormatString, char* formatString) {
  if (!useFormatString) return ReplaceSep(value, formatString);
  char text[112];
  const int length = std::snprintf(
      text, sizeof(text),
      formatString != nullptr ? formatString : kDefaultNumericFormat, value);
  return length < 0 ? std::string() : std::string(text);
}

std::string Format(long value) {
  // Below 10^15 in magnitude "%.15g" prints the plain integer, which needs
  // neither printf nor the locale.
  constexpr long kPlainLimit = 1000000000000000L;
  if (value > -kPlainLimit && value < kPlainLimit) {
    char text[24];
    const std::to_chars_result result =
        std::to_chars(text, text + sizeof(text), value);
    return std::string(text, result.ptr);
  }
  return ReplaceSep(static_cast<double>(value), nullptr);
}

std::string ReplaceSep(double value, char*) {
  return tsxml::FormatGeneral15(value);
}

std::string GetDefaultNumericFormat() { return kDefaultNumericFormat; }

std::string GetListSeparator() { return ";"; }

std::string GetDecimalCharacter() { return std::localeconv()->decimal_point; }

}  // namespace OstraTimeXML
