#include "objectstream/internal/line_tokenizer.h"

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"

namespace {

using OstraTimeXML::internal::LineTokenizer;

TEST(LineTokenizer, SkipsLeadingDelimitersAndEndsTokensInPlace) {
  char line[] = "\t\t<Int value=\"3\"/>";
  LineTokenizer tokens(line);
  EXPECT_STREQ(tokens.Next(" \t<=\""), "Int");
  EXPECT_STREQ(tokens.Next("=\""), "value");
  EXPECT_STREQ(tokens.Next(" \t<=\""), "3");
  EXPECT_STREQ(tokens.Next(" \t<=\""), "/>");
  EXPECT_EQ(tokens.Next(" "), nullptr);
  EXPECT_EQ(tokens.Next(" "), nullptr);
  // Each delimiter that ended a token is now NUL; skipped ones are kept.
  EXPECT_EQ(std::string(line, sizeof line - 1),
            std::string("\t\t<Int\0value\0\"3\0/>", 18));
}

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
