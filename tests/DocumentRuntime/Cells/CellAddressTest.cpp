#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::outcomeOf;

TEST(CellAddress, Parsing) {
  // The address, its column and its row.
  for (const auto& [text, column, row] : testing::cases<3>(R"(
      A1 | 1 | 1 ; a1 | 1 | 1 ; $A$1 | 1 | 1 ; $$aB$0$5 | 28 | 5 ; XFD1048576 | 16384 | 1048576
      A0000007 | 1 | 7 ; ı1 | 9 | 1 ; ﬀ2 | 162 | 2)"))
    EXPECT_EQ(CellAddress::parse(text), (CellAddress{std::stoi(column), std::stoi(row)})) << text;
}

TEST(CellAddress, Refusals) {
  const auto outcome = [](const std::string& text) { return outcomeOf([&] { CellAddress::parse(text); }); };
  for (const std::string text :
       {"", "$$", "A", "A0", "7", "XFE1", "XFE!", "A1048577", "A00000001", "A00000001!"})
    EXPECT_EQ(outcome(text), "invalidSelection: cell address bounds") << text;
  for (const std::string& text : testing::words("1A A1B A1000000! A-1 A␠1 A1␠ é1 A１ A1␀"))
    EXPECT_EQ(outcome(text), "invalidSelection: cell address") << text;
}

TEST(CellAddress, NamesReadBack) {
  for (std::int64_t column = 1; column <= CellAddress::maximumColumn; ++column) {
    const CellAddress address = {column, column * 64};
    ASSERT_EQ(CellAddress::parse(address.name()), address) << address.name();
  }
  EXPECT_EQ((CellAddress{28, 5}.name()), "AB5");
  EXPECT_EQ((CellAddress{0, 5}.name()), "5");
  EXPECT_EQ(columnLetters(26) + columnLetters(702) + columnLetters(703), "ZZZAAA");
}

TEST(CellAddress, OrderIsRowMajor) {
  EXPECT_LT((CellAddress{2, 1}), (CellAddress{1, 2}));
  EXPECT_LT((CellAddress{1, 2}), (CellAddress{2, 2}));
}

TEST(CellRange, ParsingAndNames) {
  EXPECT_EQ(CellRange::parse("b2:$D$40"), (CellRange{{2, 2}, {4, 40}}));
  EXPECT_EQ(CellRange::parse("C3").name(), "C3:C3");
  for (const auto& [text, detail] : testing::cases<2>(R"(
      A1:B2:C3 => use one rectangular A1 range ; !:: => use one rectangular A1 range
      A1: => cell address bounds ; :A1 => cell address bounds ; => cell address bounds ; A1;B2 => cell address
      B1:A2 => reversed range ; A2:B1 => reversed range)"))
    EXPECT_EQ(outcomeOf([&, &range = text] { CellRange::parse(range); }), "invalidSelection: " + detail)
        << text;
}

TEST(CellRange, OverlapIsCellsInCommon) {
  const auto cellInCommon = [](const CellRange& a, const CellRange& b) {
    for (std::int64_t place = 0; place < 16; ++place) {
      const CellAddress cell = {place % 4 + 1, place / 4 + 1};
      if (a.contains(cell) && b.contains(cell)) return true;
    }
    return false;
  };
  const CellRange middle = {{2, 2}, {3, 3}};
  EXPECT_TRUE(middle.contains({3, 2}));
  EXPECT_FALSE(middle.contains({4, 2}));
  EXPECT_FALSE(middle.contains({2, 1}));
  for (const auto& text : testing::words("A1 B2 A1:D1 A1:B2 C3:D4 D1:D4 A4:D4 A1:A4 A3:D3 A1:D4")) {
    const CellRange other = CellRange::parse(text);
    EXPECT_EQ(middle.intersects(other), cellInCommon(middle, other)) << text;
    EXPECT_EQ(other.intersects(middle), cellInCommon(middle, other)) << text;
  }
}

}  // namespace
}  // namespace zelvo
