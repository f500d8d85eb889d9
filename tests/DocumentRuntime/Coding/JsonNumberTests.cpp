#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/JsonNumber.hpp"
#include "Support/Cases.hpp"

namespace zelvo {
namespace {

TEST(JsonNumber, IntegersAreExactHoweverTheyAreWritten) {
  for (const auto& [text, value] : testing::cases<2>(R"(
      0 => 0 ; -0 => 0 ; -0.0e5 => 0 ; 0e2000000000 => 0 ; 1.0 => 1 ; 1e0 => 1 ; 1E+2 => 100 ; 10e-1 => 1
      -1200.500e1 => -12005 ; 0.00123e5 => 123 ; 9223372036854775807 => 9223372036854775807
      9223372036854775807.000 => 9223372036854775807 ; 0.9223372036854775807e19 => 9223372036854775807
      -9223372036854775808 => -9223372036854775808 ; -922337203685477580800e-2 => -9223372036854775808)"))
    EXPECT_EQ(JsonNumber::integer(text), std::stoll(value)) << text;
  for (const std::string& text : testing::words(R"(
      9223372036854775808 -9223372036854775809 9223372036854775808.0 1e19 1e2000000000 1e-2000000000 0.5 10.01
      123e-1 9223372036854775806.5)"))
    EXPECT_EQ(JsonNumber::integer(text), std::nullopt) << text;
  EXPECT_EQ(JsonNumber::integer("1" + std::string(100'000, '0') + "e-100000"), 1);
  EXPECT_EQ(JsonNumber::integer("0." + std::string(100'000, '0') + "1e100001"), 1);
}

TEST(JsonNumber, DoublesBeyondTheLargestAreNoneAndTinyOnesAreZero) {
  EXPECT_EQ(JsonNumber::number("1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_EQ(JsonNumber::number("4.9406564584124654e-324"), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(JsonNumber::number("0." + std::string(500, '0') + "1e501"), 1.0);
  for (const std::string huge : {"1.8e308", "-1e309", "1e2000000000", "0.1e310"}) {
    EXPECT_FALSE(JsonNumber::number(huge)) << huge;
  }
  EXPECT_FALSE(JsonNumber::number(std::string(400, '9')));
  for (const std::string tiny : {"1e-400", "123456e-2000000000", "0e400", "0.000e-999"}) {
    EXPECT_EQ(JsonNumber::number(tiny), 0.0) << tiny;
  }
  const auto negative = JsonNumber::number("-1e-400");
  ASSERT_TRUE(negative);
  EXPECT_TRUE(std::signbit(*negative));
}

TEST(JsonNumber, NotationOfDoubles) {
  for (const auto& [value, text] : testing::cases<2>(R"(
      0 => 0 ; -0 => -0 ; 1 => 1 ; -2.5 => -2.5 ; 0.1 => 0.1 ; 100000 => 100000 ; 1e15 => 1000000000000000
      0x1p54 => 18014398509481984 ; 18014398509481988 => 1.8014398509481988e+16 ; 1e17 => 1e+17 ; 1e-4 => 0.0001
      0.00012345678901234567 => 0.00012345678901234567 ; 9.9e-5 => 9.9e-05 ; 5e-324 => 5e-324
      -1.7976931348623157e308 => -1.7976931348623157e+308)")) {
    std::string out = "x";
    JsonNumber::append(out, std::strtod(value.c_str(), nullptr));
    EXPECT_EQ(out, "x" + text);
  }
}

TEST(JsonNumber, DoublesComeBackAndReadAsTheSystemReadsThem) {
  std::mt19937_64 random(7);  // a fixed seed: the test is the same every time
  for (int i = 0; i < 20'000; ++i) {
    const auto value = std::bit_cast<double>(std::uint64_t{random()});
    if (!std::isfinite(value)) continue;
    std::string text;
    JsonNumber::append(text, value);
    EXPECT_EQ(JsonNumber::number(text), value) << text;
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), value) << text;
  }
}

}  // namespace
}  // namespace zelvo
