#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
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

TEST(DoubleText, ReadsBackAsTheSameDouble) {
  std::mt19937_64 random(1);
  for (int round = 0; round < 200'000; ++round) {
    const auto bits = random();
    const auto value = std::bit_cast<double>(bits);
    if (!std::isfinite(value)) continue;
    const std::string text = DoubleText::shortest(value);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)), bits) << text;
  }
}

TEST(NumberText, Values) {
  const std::pair<std::string, double> rows[] = {{"0", 0},         {"+1.5", 1.5}, {"-.5e+1", -5}, {"5.", 5},
                                                 {"007E-2", 0.07}, {"0.1", 0.1},  {"-1e-400", 0}};
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(NumberText::value(text), expected) << text;
  EXPECT_EQ(NumberText::value("1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_EQ(NumberText::value("4.9406564584124654e-324"), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(NumberText::value("9007199254740993"), 9007199254740992);
  for (const std::string& tiny : {std::string("1e-99999999999999999999"),
                                  std::string("0e99999999999999999999"), std::string(59, '9') + "e-400"})
    EXPECT_EQ(NumberText::value(tiny), 0) << tiny;
  EXPECT_EQ(NumberText::value("0." + std::string(57, '0') + "1e58"), 1);
}

TEST(NumberText, OtherTextsAreRefused) {
  for (const std::string& text : testing::words(R"(+ - . e1 .e1 1e 1e+ 1e1.5 +-1 1␠ ␠1 1,000 0x1p3 1f inf nan
      1␊ １ 1..2 1e309 -1.8e308 1e99999999999999999999 1␀)"))
    EXPECT_FALSE(NumberText::isValid(text)) << text;
  EXPECT_FALSE(NumberText::isValid(""));
  EXPECT_TRUE(NumberText::isValid(std::string(64, '1')));
  EXPECT_FALSE(NumberText::isValid(std::string(65, '1')));
}

}  // namespace
}  // namespace zelvo
