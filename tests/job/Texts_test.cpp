#include "Texts.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cstring>
#include <random>

namespace platenest::detail {
namespace {

TEST(Texts, NumbersReadBackBitForBit) {
  std::mt19937_64 bits(7);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t pattern = bits();
    double value = 0;
    std::memcpy(&value, &pattern, sizeof value);
    if (!std::isfinite(value)) continue;
    EXPECT_EQ(NumberFromText(NumberText(value)), value) << NumberText(value);
  }
  const std::pair<double, const char*> cases[] = {{1e6, "1000000"},     {999999999999999, "999999999999999"},
                                                  {1e15, "1e+15"},      {1e-6, "0.000001"},
                                                  {9.9e-7, "9.9e-07"},  {-0.0, "0"},
                                                  {-2440.5, "-2440.5"}, {5e-324, "5e-324"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(NumberText(value), text);
}

TEST(Texts, OnlyWholeTokensAreNumbers) {
  for (const char* good : {"1", "+1", "-1.5", ".5", "1.", "1e3", "1E-3"}) EXPECT_TRUE(NumberFromText(good)) << good;
  for (const char* bad : {"", "+", "-", "+-1", "++1", "1,5", "1x", " 1", "1 ", "inf", "nan", "0x10", "1e999", "1e"}) {
    EXPECT_FALSE(NumberFromText(bad)) << bad;
  }
}

TEST(Texts, Utf8IsJudgedByTheBook) {
  for (const char* good : {"", "a", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEF\xBF\xBF",
                           "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_FALSE(FindBadUtf8(good)) << good;
  }
  // Stray and missing tails, overlong forms, surrogates, past U+10FFFF.
  for (const char* bad : {"\x80", "\xC2", "\xC2x", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xE2\x82",
                          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
    EXPECT_EQ(FindBadUtf8(bad), 0u) << bad;
  }
}

// Texts of the input reach terminals: nothing in them may act there.
TEST(Texts, QuotedTextStaysOnOneLineAndHarmless) {
  EXPECT_EQ(Quoted("a\n\x1B[2J\x7F\xC2\x9B\"\\"), R"("a\n\u001b[2J\u007f\u009b\"\\")");
  EXPECT_EQ(Quoted(std::string(39, 'a') + "\xC3\xA9"), "\"" + std::string(39, 'a') + "...\"");
}

}  // namespace
}  // namespace platenest::detail
