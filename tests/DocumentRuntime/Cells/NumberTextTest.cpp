#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/NumberText.hpp"

namespace zelvo {
namespace {

TEST(NumberText, Values) {
  const struct {
    std::string text;
    double expected;
  } rows[] = {
      {"0", 0},
      {"+1.5", 1.5},
      {"-.5e+1", -5},
      {"5.", 5},
      {"007E-2", 0.07},
      {"0.1", 0.1},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
      {"-1e-400", 0},
      {"1e-99999999999999999999", 0},
      {"0e99999999999999999999", 0},
      {"0." + std::string(57, '0') + "1e58", 1},
      {std::string(59, '9') + "e-400", 0},
      {"9007199254740993", 9007199254740992},
  };
  for (const auto& row : rows)
    EXPECT_EQ(NumberText::value(row.text), row.expected) << row.text;
}

TEST(NumberText, OtherTextsAreRefused) {
  const auto expectRefused = [](const auto&... texts) {
    for (const std::string_view text : {std::string_view(texts)...})
      EXPECT_FALSE(NumberText::isValid(text)) << text;
  };
  expectRefused("", "+", "-", ".", "e1", ".e1", "1e", "1e+", "1e1.5", "+-1", "1 ", " 1", "1,000", "0x1p3",
                "1f", "inf", "nan", "1\n", "１", "1..2", "1e309", "-1.8e308", "1e99999999999999999999");
  EXPECT_TRUE(NumberText::isValid(std::string(64, '1')));
  EXPECT_FALSE(NumberText::isValid(std::string(65, '1')));
  EXPECT_FALSE(NumberText::isValid(std::string("1\0", 2)));
}

}  // namespace
}  // namespace zelvo
