#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/TemporaryFolder.hpp"

namespace zelvo {
namespace {

using testing::outcomeOf;
using testing::PackageBuilder;

std::string hex(ByteView bytes) {
  std::string out;
  for (const std::uint8_t byte : bytes) {
    for (const int digit : {byte >> 4, byte & 15})
      out += "0123456789abcdef"[digit];
  }
  return out;
}

TEST(BoundedZIPWrite, GivesTheseBytes) {
  std::string expected;
  for (const std::string& field : testing::words(R"(
      504b0304 1400 0008 0000 0000 2100 ac2a93d8 02000000 02000000 0100 0000 61 6869
      504b0304 1400 0008 0000 0000 2100 00000000 00000000 00000000 0100 0000 62
      504b0102 1400 1400 0008 0000 0000 2100 ac2a93d8 02000000 02000000
        0100 0000 0000 0000 0000 00000000 00000000 61
      504b0102 1400 1400 0008 0000 0000 2100 00000000 00000000 00000000
        0100 0000 0000 0000 0000 00000000 21000000 62
      504b0506 0000 0000 0200 0200 5e000000 40000000 0000)"))
    expected += field;
  const PackageBuilder package{{{"b", ""}, {"a", "hi"}}};
  EXPECT_EQ(hex(package.bytes().view()), expected);
}

TEST(BoundedZIPWrite, OrdersNamesByTheirComposedForms) {
  const PackageBuilder package{{{"e\u0301", ""}, {"f", ""}, {"\uFB03", ""}, {"\U0001F600", ""}}};
  ByteBuffer written = package.bytes();
  const ByteBuffer archive = std::move(written);
  EXPECT_TRUE(written.view().empty());  // NOLINT(bugprone-use-after-move): that is what is tested
  const std::size_t directory = archive.text().find("PK\1\2");
  std::vector<std::size_t> positions;
  for (const char* name : {"f", "e\u0301", "\uFB03", "\U0001F600"})
    positions.push_back(archive.text().find(name, directory));
  EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
  EXPECT_TRUE(BoundedZIP::read(archive.view()) == package.partMap());
}

TEST(BoundedZIPWrite, RefusesInOrder) {
  // Two parts, and what an archive of them takes besides their bytes.
  constexpr std::size_t overhead = 2 * (30 + 1 + 46 + 1) + 22;
  constexpr std::size_t entry = BoundedZIP::maximumEntryBytes;
  constexpr std::size_t whole = BoundedZIP::maximumArchiveBytes;
  const auto of = [](const std::string& name, std::size_t bytes) {
    return PackageBuilder{{{name, std::string(bytes, 'a')}}};
  };
  const auto two = [&](std::size_t bytes, const std::string& name) {
    PackageBuilder package = of(name, entry);
    package.part("b").text.assign(bytes - entry, 'b');
    return package;
  };
  const auto parts = [](std::size_t count, const std::string& last) {
    PackageBuilder package;
    for (std::size_t i = 1; i < count; ++i)
      package.part(std::to_string(i));
    package.part(last);
    return package;
  };
  const std::pair<PackageBuilder, const char*> rows[] = {
      {{}, "resourceLimit: part count"},
      {parts(512, "x"), ""},
      {parts(513, "/"), "resourceLimit: part count"},
      {of("a/../b", 0), "resourceLimit: output part"},
      {of("a", entry), ""},
      {of("a", entry + 1), "resourceLimit: output part"},
      {two(whole - overhead, "a"), ""},
      {two(whole - overhead + 1, "a"), "resourceLimit: output archive"},
      {two(whole, "a\\"), "resourceLimit: output part"},
  };
  for (const auto& [package, expected] : rows)
    EXPECT_EQ(outcomeOf([&, &builder = package] { builder.bytes(); }), expected);
  EXPECT_THROW(BoundedZIP::write(two(whole, "a\\").partMap(), testing::stopped()), Cancelled);
}

/// Python reads what this system writes, and this system what Python deflates.
TEST(BoundedZIPWrite, AgreesWithPython) {
  const std::string python = "/usr/bin/python3";
  if (!std::filesystem::exists(python)) GTEST_SKIP() << "no " << python;
  const PackageBuilder package = testing::workbookPackage(testing::richWorkbook());
  const testing::TemporaryFolder folder;
  const std::string script = folder.write("script.py", R"(
import sys, zipfile
with zipfile.ZipFile(sys.argv[1]) as a, zipfile.ZipFile(sys.argv[2], 'w', zipfile.ZIP_DEFLATED) as b:
    for entry in a.infolist():
        assert entry.date_time == (1980, 1, 1, 0, 0, 0)
        b.writestr(entry.filename, a.read(entry))
)");
  const std::string ours = folder.write("stored.zip", package.bytes().text());
  const std::string theirs = folder.path("deflated.zip");
  ASSERT_EQ(std::system((python + " " + script + " " + ours + " " + theirs).c_str()), 0);
  EXPECT_TRUE(BoundedZIP::read(bytesOf(testing::contentOf(theirs))) == package.partMap());
}

TEST(SafeName, FollowsTheRules) {
  for (const std::string& name : testing::words("a xl/a.xml xl/ ... ..a/.b/c. a␠b\x7F \u0085ü"))
    EXPECT_TRUE(BoundedZIP::safeName(name)) << name;
  for (const std::string& name :
       testing::words(R"(/ /a a//b a// . ./a .. a/.. a/../b a/./b a\b C: a%20b a␉b a␟ a␀)"))
    EXPECT_FALSE(BoundedZIP::safeName(name)) << name;
  EXPECT_FALSE(BoundedZIP::safeName(""));
}

}  // namespace
}  // namespace zelvo
