// Owns Cells/CellAddress: A1 addresses and ranges, their names and overlap.
#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

/// The canonical name of an address or a range, or why there is none.
template <typename Place>
std::string nameOf(const std::string& text) {
  std::string name;
  const auto refusal = testing::outcomeOf([&] { name = Place::parse(text).name(); });
  return refusal == "" ? name : refusal.text;
}

TEST(CellAddress, ParsesAndNames) {
  for (const auto& [text, name] : testing::cases<2>(R"(
      a1 => A1 ; $A$1 => A1 ; $$aB$0$5 => AB5 ; XFD1048576 => XFD1048576 ; A0000007 => A7 ; ı1 => I1 ; ﬀ2 => FF2)"))
    EXPECT_EQ(nameOf<CellAddress>(text), name);
  for (const std::string text :
       {"", "$$", "A", "A0", "7", "XFE1", "XFE!", "A1048577", "A00000001", "A00000001!"})
    EXPECT_EQ(nameOf<CellAddress>(text), "invalidSelection: cell address bounds") << text;
  for (const std::string& text : testing::words("1A A1B A1000000! A-1 A␠1 A1␠ é1 A１ A1␀"))
    EXPECT_EQ(nameOf<CellAddress>(text), "invalidSelection: cell address") << text;
  EXPECT_EQ(CellAddress::parse("AB5"), (CellAddress{28, 5}));
  for (std::int64_t column = 1; column <= CellAddress::maximumColumn; ++column) {
    const CellAddress address = {column, column * 64};
    ASSERT_EQ(CellAddress::parse(address.name()), address) << address.name();
    ASSERT_LT(address, (CellAddress{1, address.row + 1}));
    ASSERT_LT(address, (CellAddress{column + 1, address.row}));
  }
}

TEST(CellRange, ParsesAndNames) {
  for (const auto& [text, name] : testing::cases<2>(R"(
      b2:$D$40 => B2:D40 ; C3 => C3:C3 ; A1:B2:C3 => invalidSelection: use one rectangular A1 range
      !:: => invalidSelection: use one rectangular A1 range ; A1: => invalidSelection: cell address bounds
      :A1 => invalidSelection: cell address bounds ; => invalidSelection: cell address bounds
      A1;B2 => invalidSelection: cell address ; B1:A2 => invalidSelection: reversed range
      A2:B1 => invalidSelection: reversed range)"))
    EXPECT_EQ(nameOf<CellRange>(text), name);
}

TEST(CellRange, OverlapIsCellsInCommon) {
  const CellRange middle = CellRange::parse("B2:C3");
  for (const auto& text : testing::words("A1 B2 A1:D1 A1:B2 C3:D4 D1:D4 A4:D4 A1:A4 A3:D3 A1:D4")) {
    const CellRange other = CellRange::parse(text);
    bool shared = false;
    for (const CellAddress cell : {CellAddress{2, 2}, {2, 3}, {3, 2}, {3, 3}})
      shared = shared || other.contains(cell);
    EXPECT_TRUE(middle.intersects(other) == shared && other.intersects(middle) == shared) << text;
  }
  for (const auto& cell : testing::words("A2 B1 D2 B4"))
    EXPECT_FALSE(middle.contains(CellAddress::parse(cell))) << cell;
}

}  // namespace
}  // namespace zelvo
