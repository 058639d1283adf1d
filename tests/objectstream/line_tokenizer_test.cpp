#include "tsxml/objectstream/internal/line_tokenizer.h"

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"

namespace {

using tsxml::LineTokenizer;

// Over random lines and random delimiter sets, the tokenizer gives the tokens
// of strtok at the same places and leaves the same bytes in the line.
TEST(LineTokenizer, AgreesWithStrtok) {
  const std::string alphabet = " \t\r\n<>=\"/ab?";
  std::mt19937 rng(20240611);
  auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(rng);
  };
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t n = pick(24); n > 0; --n) text += alphabet[pick(12)];
    std::vector<char> ours(text.begin(), text.end());
    ours.push_back('\0');
    std::vector<char> theirs = ours;

    LineTokenizer tokens(ours.data());
    for (int call = 0; call < 6; ++call) {
      std::string delims;
      for (char c : alphabet) {
        if (pick(3) == 0) delims += c;
      }
      const char* mine = tokens.Next(delims.c_str());
      const char* reference =
          std::strtok(call == 0 ? theirs.data() : nullptr, delims.c_str());
      ASSERT_EQ(mine == nullptr, reference == nullptr) << text;
      if (mine != nullptr) {
        ASSERT_EQ(mine - ours.data(), reference - theirs.data()) << text;
      }
    }
    ASSERT_EQ(ours, theirs) << text;
  }
}

}  // namespace
