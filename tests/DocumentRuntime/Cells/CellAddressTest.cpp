#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::describe;
using testing::errorOf;

TEST(CellAddress, Parsing) {
  const struct {
    std::string text;
    CellAddress expected;
  } rows[] = {
      {"A1", {1, 1}},
      {"a1", {1, 1}},
      {"$A$1", {1, 1}},
      {"$$aB$0$5", {28, 5}},
      {"XFD1048576", {16384, 1'048'576}},
      {"A0000007", {1, 7}},
      {"ı1", {9, 1}},
      {"ﬀ2", {162, 2}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(CellAddress::parse(row.text), row.expected) << row.text;
}

TEST(CellAddress, Refusals) {
  const auto expectRefused = [](std::string_view text, const char* detail) {
    const auto error = errorOf([&] { CellAddress::parse(text); });
    EXPECT_TRUE(error == DocumentError::invalidSelection(detail)) << text << ": " << describe(error);
  };
  constexpr std::string_view outOfBounds[] = {
      "", "$$", "A", "A0", "7", "XFE1", "XFE!", "A1048577", "A00000001", "A00000001!",
  };
  for (const auto text : outOfBounds)
    expectRefused(text, "cell address bounds");
  constexpr std::string_view malformed[] = {
      "1A", "A1B", "A1000000!", "A-1", "A 1", "A1 ", "é1", "A１", {"A1\0", 3},
  };
  for (const auto text : malformed)
    expectRefused(text, "cell address");
}

TEST(CellAddress, NamesReadBack) {
  for (std::int64_t column = 1; column <= CellAddress::maximumColumn; ++column) {
    const CellAddress address = {column, column * 64};
    ASSERT_EQ(CellAddress::parse(address.name()), address) << address.name();
  }
  EXPECT_EQ((CellAddress{28, 5}.name()), "AB5");
  EXPECT_EQ((CellAddress{0, 5}.name()), "5");
  EXPECT_EQ(columnLetters(26), "Z");
  EXPECT_EQ(columnLetters(702), "ZZ");
  EXPECT_EQ(columnLetters(703), "AAA");
}

TEST(CellAddress, OrderIsRowMajor) {
  EXPECT_LT((CellAddress{2, 1}), (CellAddress{1, 2}));
  EXPECT_LT((CellAddress{1, 2}), (CellAddress{2, 2}));
}

TEST(CellRange, ParsingAndNames) {
  EXPECT_EQ(CellRange::parse("b2:$D$40"), (CellRange{{2, 2}, {4, 40}}));
  EXPECT_EQ(CellRange::parse("C3").name(), "C3:C3");
  const struct {
    std::string text;
    std::string detail;
  } rows[] = {
      {"A1:B2:C3", "use one rectangular A1 range"},
      {"!::", "use one rectangular A1 range"},
      {"A1:", "cell address bounds"},
      {":A1", "cell address bounds"},
      {"", "cell address bounds"},
      {"A1;B2", "cell address"},
      {"B1:A2", "reversed range"},
      {"A2:B1", "reversed range"},
  };
  for (const auto& row : rows) {
    const auto error = errorOf([&] { CellRange::parse(row.text); });
    EXPECT_TRUE(error == DocumentError::invalidSelection(row.detail)) << row.text << ": " << describe(error);
  }
}

TEST(CellRange, OverlapIsCellsInCommon) {
  const auto cellInCommon = [](const CellRange& a, const CellRange& b) {
    for (std::int64_t row = 1; row <= 4; ++row) {
      for (std::int64_t column = 1; column <= 4; ++column) {
        if (a.contains({column, row}) && b.contains({column, row})) return true;
      }
    }
    return false;
  };
  const CellRange middle = {{2, 2}, {3, 3}};
  EXPECT_TRUE(middle.contains({3, 2}));
  EXPECT_FALSE(middle.contains({4, 2}));
  EXPECT_FALSE(middle.contains({2, 1}));
  for (const auto* text :
       {"A1", "B2", "A1:D1", "A1:B2", "C3:D4", "D1:D4", "A4:D4", "A1:A4", "A3:D3", "A1:D4"}) {
    const CellRange other = CellRange::parse(text);
    EXPECT_EQ(middle.intersects(other), cellInCommon(middle, other)) << text;
    EXPECT_EQ(other.intersects(middle), cellInCommon(middle, other)) << text;
  }
}

}  // namespace
}  // namespace zelvo
