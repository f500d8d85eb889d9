// Owns Cells/NumberText and Cells/DoubleText: number texts read from workbooks, and texts written for
// doubles.
#include <bit>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/NumberText.hpp"
#include "Support/Cases.hpp"

namespace zelvo {
namespace {

TEST(DoubleText, Notation) {
  for (const auto& [value, expected] : testing::cases<2>(R"(
      0 => 0.0 ; -0 => -0.0 ; 2024 => 2024.0 ; -12.5 => -12.5 ; 0.0001 => 0.0001 ; 0.00009999 => 9.999e-05
      1e-5 => 1e-05 ; 999999999999999 => 999999999999999.0 ; 0x1p53 => 9007199254740992.0 ; 1e17 => 1e+17
      0x1p54 => 18014398509481984.0 ; 18014398509481988 => 1.8014398509481988e+16 ; 5e-324 => 5e-324
      0.30000000000000004 => 0.30000000000000004 ; -1.7976931348623157e308 => -1.7976931348623157e+308)"))
    EXPECT_EQ(DoubleText::shortest(std::strtod(value.c_str(), nullptr)), expected);
}

TEST(NumberText, EveryDoubleComesBack) {
  std::mt19937_64 random(1);
  for (int round = 0; round < 200'000; ++round) {
    const auto value = std::bit_cast<double>(std::uint64_t{random()});
    if (!std::isfinite(value)) continue;
    const std::string text = DoubleText::shortest(value);
    ASSERT_EQ(NumberText::value(text), value) << text;
    ASSERT_EQ(std::strtod(text.c_str(), nullptr), value) << text;
  }
}

TEST(NumberText, Values) {
  for (const auto& [text, expected] : testing::cases<2>(R"(
      +1.5 => 1.5 ; -.5e+1 => -5.0 ; 5. => 5.0 ; 007E-2 => 0.07 ; -1e-400 => 0.0 ; 1e-99999999999999999999 => 0.0
      0e99999999999999999999 => 0.0 ; 99999999999999999999999999999999999999999999999999999999999e-400 => 0.0
      0.0000000000000000000000000000000000000000000000000000000001e58 => 1.0 ; 9007199254740993 => 9007199254740992.0
      1111111111111111111111111111111111111111111111111111111111111111 => 1.1111111111111112e+63)"))
    EXPECT_EQ(DoubleText::shortest(NumberText::value(text).value()), expected) << text;
  for (const std::string& text : testing::words(R"(+ - . e1 .e1 1e 1e+ 1e1.5 +-1 1␠ ␠1 1,000 0x1p3 1f inf nan
      1␊ １ 1..2 1e309 -1.8e308 1e99999999999999999999 1␀
      11111111111111111111111111111111111111111111111111111111111111111)"))
    EXPECT_FALSE(NumberText::isValid(text)) << text;
  EXPECT_FALSE(NumberText::isValid(""));
}

}  // namespace
}  // namespace zelvo
