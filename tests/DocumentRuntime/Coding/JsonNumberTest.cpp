// Owns Coding/JsonNumber: exact integers and doubles from JSON numbers, and the notation of doubles.
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

TEST(JsonNumber, DoublesComeBackInTheirNotation) {
  const std::string zeros(500, '0');
  for (const auto& [text, notation] : testing::cases<2>(R"(
      0e400 => 0 ; -1e-400 => -0 ; 123456e-2000000000 => 0 ; 0.000e-999 => 0 ; 100000 => 100000 ; -2.5 => -2.5
      1e17 => 1e+17 ; 9.9e-5 => 9.9e-05 ; 4.9406564584124654e-324 => 5e-324
      1.7976931348623157e308 => 1.7976931348623157e+308 ; 0.)" +
                                                        zeros + "1e501 => 1")) {
    std::string out = "x";
    JsonNumber::append(out, JsonNumber::number(text).value());
    EXPECT_EQ(out, "x" + notation);
  }
  for (const std::string& huge : testing::words("1.8e308 -1e2000000000 0.1e310 1" + zeros))
    EXPECT_FALSE(JsonNumber::number(huge)) << huge;
}

}  // namespace
}  // namespace zelvo
