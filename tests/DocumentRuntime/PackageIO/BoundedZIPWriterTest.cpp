// Owns PackageIO/BoundedZIPWriter: the bytes and the limits of written archives, and the rules of names.
#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::PackageBuilder;

TEST(BoundedZIPWrite, StoresPartsInTheOrderOfTheirComposedNames) {
  testing::ArchiveBuilder expected;
  PackageBuilder package;
  for (const std::string name : {"a", "b", "f", "e\u0301", "\uFB03", "\U0001F600"}) {
    expected.stored(name, "<" + name + "/>").both([](auto& header) { header.flags = 0x0800; });
    package.parts.insert(package.parts.begin(), {name, "<" + name + "/>"});
  }
  ByteBuffer written = package.bytes();
  const ByteBuffer archive = std::move(written);
  EXPECT_TRUE(written.view().empty());  // NOLINT(bugprone-use-after-move): that is what is tested
  EXPECT_EQ(archive.text(), expected.bytes());
  EXPECT_TRUE(BoundedZIP::read(archive.view()) == package.partMap());
}

TEST(BoundedZIPWrite, RefusesInOrder) {
  // The size of part "a", the name and size of another, more parts without content, and what comes of it.
  // Beside their bytes, two parts take 176 bytes of headers.
  constexpr std::size_t entry = BoundedZIP::maximumEntryBytes;
  constexpr std::size_t rest = BoundedZIP::maximumArchiveBytes - entry - (2 * (30 + 1 + 46 + 1) + 22);
  const struct {
    std::size_t size;
    std::string other;
    std::size_t otherSize;
    std::size_t more;
    const char* refusal;
  } rows[] = {
      {0, "x", 0, 510, ""},
      {0, "/", 0, 511, "resourceLimit: part count"},
      {0, "a/../b", 0, 0, "resourceLimit: output part"},
      {entry + 1, "b", 0, 0, "resourceLimit: output part"},
      {entry, "b", rest, 0, ""},
      {entry, "b", rest + 1, 0, "resourceLimit: output archive"},
      {entry, "b\\", rest + 1, 0, "resourceLimit: output part"},
  };
  for (const auto& row : rows) {
    PackageBuilder package{{{"a", std::string(row.size, 'a')}, {row.other, std::string(row.otherSize, 'b')}}};
    for (std::size_t i = 0; i < row.more; ++i)
      package.part(std::to_string(i));
    EXPECT_EQ(testing::outcomeOf([&] { package.bytes(); }), row.refusal) << row.other << row.more;
  }
  EXPECT_THROW(BoundedZIP::write(PackageBuilder{{{"/", ""}}}.partMap(), testing::stopped()), Cancelled);
  EXPECT_EQ(testing::outcomeOf([] { PackageBuilder().bytes(); }), "resourceLimit: part count");
}

TEST(BoundedZIPWritePacked, DeflatesWhatShrinksWithinTheRatioAndStoresTheRest) {
  std::string varied;
  for (int i = 0; i < 50'000; ++i)
    varied += std::to_string(i * 7919) + ' ';
  // A million bytes are within what any ratio may add.
  const std::pair<std::string, bool> rows[] = {{"", false},
                                               {"a", false},
                                               {varied, true},
                                               {std::string(16'000'000, 'a'), false},
                                               {std::string(1'000'000, 'a'), true}};
  std::vector<BoundedZIP::PackedPart> parts;
  PartMap expected;
  for (const auto& [text, isDeflated] : rows) {
    const std::string name = std::to_string(parts.size());
    parts.push_back(BoundedZIP::packed(name, bytesOf(text)));
    EXPECT_EQ(parts.back().isDeflated, isDeflated) << name;
    expected.set(name, ByteBuffer::copyOf(text));
  }
  const ByteBuffer archive = BoundedZIP::writePacked(parts);
  EXPECT_TRUE(BoundedZIP::read(archive.view()) == expected);
  EXPECT_TRUE(BoundedZIP::writePacked(parts) == archive);
  EXPECT_EQ(testing::outcomeOf([] { BoundedZIP::writePacked({}); }), "resourceLimit: part count");
}

TEST(SafeName, FollowsTheRules) {
  for (const std::string& name : testing::words("a xl/a.xml xl/ ... ..a/.b/c. a␠b\x7F \u0085ü"))
    EXPECT_TRUE(BoundedZIP::safeName(name)) << name;
  for (const std::string& name :
       testing::words(R"(/ /a %a a//b a// . ./a .. a/.. a/../b a/./b a\b C: a%20b a␉b a␟ a␀)"))
    EXPECT_FALSE(BoundedZIP::safeName(name)) << name;
  EXPECT_FALSE(BoundedZIP::safeName(""));
}

}  // namespace
}  // namespace zelvo
