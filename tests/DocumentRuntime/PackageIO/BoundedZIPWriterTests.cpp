#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::describe;
using testing::errorOf;
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
  const PackageBuilder package{{{"b", ""}, {"a", "hi"}}};
  EXPECT_EQ(hex(package.bytes().view()),
            "504b0304"
            "1400"
            "0008"
            "0000"
            "0000"
            "2100"
            "ac2a93d8"
            "02000000"
            "02000000"
            "0100"
            "0000"
            "61"
            "6869"
            "504b0304"
            "1400"
            "0008"
            "0000"
            "0000"
            "2100"
            "00000000"
            "00000000"
            "00000000"
            "0100"
            "0000"
            "62"
            "504b0102"
            "1400"
            "1400"
            "0008"
            "0000"
            "0000"
            "2100"
            "ac2a93d8"
            "02000000"
            "02000000"
            "0100"
            "0000"
            "0000"
            "0000"
            "0000"
            "00000000"
            "00000000"
            "61"
            "504b0102"
            "1400"
            "1400"
            "0008"
            "0000"
            "0000"
            "2100"
            "00000000"
            "00000000"
            "00000000"
            "0100"
            "0000"
            "0000"
            "0000"
            "0000"
            "00000000"
            "21000000"
            "62"
            "504b0506"
            "0000"
            "0000"
            "0200"
            "0200"
            "5e000000"
            "40000000"
            "0000");
}

TEST(BoundedZIPWrite, OrdersNamesByTheirComposedForms) {
  const PackageBuilder package{{{"e\u0301", ""}, {"f", ""}, {"\uFB03", ""}, {"\U0001F600", ""}}};
  const ByteBuffer archive = package.bytes();
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
  const auto ofBytes = [](std::size_t bytes) {
    return PackageBuilder{{{"a", std::string(BoundedZIP::maximumEntryBytes, 'a')},
                           {"b", std::string(bytes - BoundedZIP::maximumEntryBytes, 'b')}}};
  };
  const auto ofParts = [](std::size_t count) {
    PackageBuilder package;
    for (std::size_t i = 0; i < count; ++i)
      package.part(std::to_string(i));
    return package;
  };
  const auto count = DocumentError::resourceLimit("part count");
  const auto part = DocumentError::resourceLimit("output part");
  const auto whole = DocumentError::resourceLimit("output archive");
  PackageBuilder tooMany = ofParts(513);
  tooMany.parts[0].name = "/";
  PackageBuilder tooBigBehindUnsafe = ofBytes(BoundedZIP::maximumArchiveBytes);
  tooBigBehindUnsafe.parts[0].name = "a\\";

  const struct {
    PackageBuilder package;
    std::optional<DocumentError> expected;
  } rows[] = {
      {{}, count},
      {ofParts(512), {}},
      {tooMany, count},
      {{{{"a/../b", ""}}}, part},
      {{{{"a", std::string(BoundedZIP::maximumEntryBytes, 'a')}}}, {}},
      {{{{"a", std::string(BoundedZIP::maximumEntryBytes + 1, 'a')}}}, part},
      {ofBytes(BoundedZIP::maximumArchiveBytes - overhead), {}},
      {ofBytes(BoundedZIP::maximumArchiveBytes - overhead + 1), whole},
      {tooBigBehindUnsafe, part},
  };
  for (const auto& [package, expected] : rows) {
    const auto error = errorOf([&, &parts = package] { parts.bytes(); });
    EXPECT_TRUE(error == expected) << describe(error) << " instead of " << describe(expected);
  }
  EXPECT_THROW(BoundedZIP::write(tooBigBehindUnsafe.partMap(), testing::stopped()), Cancelled);
}

/// Python reads what this system writes, and this system what Python deflates.
TEST(BoundedZIPWrite, AgreesWithPython) {
  const std::string python = "/usr/bin/python3";
  if (!std::filesystem::exists(python)) GTEST_SKIP() << "no " << python;
  const PartMap parts = testing::workbookPackage(testing::richWorkbook()).partMap();
  const std::string start = ::testing::TempDir() + "zelvo-" + std::to_string(getpid());
  const std::string ours = start + "-stored.zip";
  const std::string theirs = start + "-deflated.zip";
  std::ofstream(ours, std::ios::binary) << BoundedZIP::write(parts).text();

  const std::string script =
      "import sys, zipfile\n"
      "with zipfile.ZipFile(sys.argv[1]) as a, zipfile.ZipFile(sys.argv[2], 'w', zipfile.ZIP_DEFLATED) as "
      "b:\n"
      "    for entry in a.infolist():\n"
      "        assert entry.date_time == (1980, 1, 1, 0, 0, 0)\n"
      "        b.writestr(entry.filename, a.read(entry))\n";
  ASSERT_EQ(std::system((python + " -c \"" + script + "\" " + ours + " " + theirs).c_str()), 0);
  std::ifstream file(theirs, std::ios::binary);
  const std::string archive{std::istreambuf_iterator<char>(file), {}};
  EXPECT_TRUE(BoundedZIP::read(bytesOf(archive)) == parts);
  std::filesystem::remove(ours);
  std::filesystem::remove(theirs);
}

TEST(SafeName, FollowsTheRules) {
  const struct {
    std::string name;
    bool safe;
  } rows[] = {
      {"", false},       {"a", true},       {"xl/a.xml", true}, {"xl/", true},
      {"/", false},      {"/a", false},     {"a//b", false},    {"a//", false},
      {".", false},      {"./a", false},    {"..", false},      {"a/..", false},
      {"a/../b", false}, {"a/./b", false},  {"...", true},      {"..a/.b/c.", true},
      {"a\\b", false},   {"C:", false},     {"a%20b", false},   {"a\tb", false},
      {"a\x1F", false},  {"a b\x7F", true}, {"\u0085ü", true},  {std::string("a\0", 2), false},
  };
  for (const auto& [name, safe] : rows)
    EXPECT_EQ(BoundedZIP::safeName(name), safe) << name;
}

}  // namespace
}  // namespace zelvo
