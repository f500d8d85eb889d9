#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/DoubleText.hpp"

namespace zelvo {
namespace {

TEST(DoubleText, Notation) {
  const struct {
    double value;
    std::string expected;
  } rows[] = {
      {0, "0.0"},
      {-0.0, "-0.0"},
      {2024, "2024.0"},
      {-12.5, "-12.5"},
      {0.1 + 0.2, "0.30000000000000004"},
      {0.0001, "0.0001"},
      {0.00009999, "9.999e-05"},
      {1e-5, "1e-05"},
      {1e15 - 1, "999999999999999.0"},
      {0x1p53, "9007199254740992.0"},
      {0x1p54, "18014398509481984.0"},
      {0x1p54 + 4, "1.8014398509481988e+16"},
      {1e17, "1e+17"},
      {5e-324, "5e-324"},
      {-1.7976931348623157e308, "-1.7976931348623157e+308"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(DoubleText::shortest(row.value), row.expected);
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

}  // namespace
}  // namespace zelvo
