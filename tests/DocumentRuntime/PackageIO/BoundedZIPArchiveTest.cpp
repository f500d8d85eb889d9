// Single entries of archives, and archives of parts that were deflated one by one.

#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIPArchive.hpp"
#include "Support/ArchiveBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::ArchiveBuilder;
using testing::EntryHeader;
using testing::outcomeOf;

ArchiveBuilder good() {
  ArchiveBuilder archive;
  archive.stored("first.xml", "stored");
  archive.deflated("xl/Middle.xml", "deflated, deflated, deflated");
  archive.deflated("last.xml", "with a descriptor").useDescriptor();
  return archive;
}

PartMap expandAll(std::string_view bytes) {
  BoundedZIP::Archive archive(bytesOf(bytes));
  PartMap parts;
  for (const auto& entry : archive.entries())
    parts.set(std::string(entry.name), archive.expand(entry));
  return parts;
}

TEST(BoundedZIPArchive, ExpandsWhatReadingTheWholeGivesAndRefusesWhatItRefuses) {
  const std::string whole = good().bytes();
  for (std::size_t bit = 0; bit <= whole.size() * 8; ++bit) {
    std::string damaged = whole;
    if (bit < whole.size() * 8) damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
    PartMap read;
    PartMap expanded;
    const bool isRead = outcomeOf([&] { read = BoundedZIP::read(bytesOf(damaged)); }) == "";
    const bool isExpanded = outcomeOf([&] { expanded = expandAll(damaged); }) == "";
    EXPECT_EQ(isRead, isExpanded) << "bit " << bit;
    EXPECT_TRUE(!isRead || read == expanded) << "bit " << bit;
  }
}

TEST(BoundedZIPArchive, HoldsEveryEntryToTheStructureAndOnlyExpandedOnesToTheirContent) {
  const auto with = [](const auto& spoil) {
    ArchiveBuilder archive = good();
    archive.stored("folder/", "");
    spoil(archive.entries[1]);
    return archive.bytes();
  };
  const auto both = [&](void (*change)(EntryHeader&)) {
    return with([&](auto& entry) { entry.both(change); });
  };
  const std::pair<std::string, std::string> atOpening[] = {
      {with([](auto& e) { e.central.externalAttributes = 0xA1FF0000; }),
       "unsafeContent: archive link or special file"},
      {both([](EntryHeader& h) { h.name = "FIRST.xml"; }), "unsafeContent: duplicate or unsafe archive path"},
      {with([](auto& e) { e.local.flags ^= 2; }), "invalidArchive: local header mismatch"},
      {with([](auto& e) { e.nested = true; }), "invalidArchive: overlapping entries"},
  };
  for (const auto& [bytes, expected] : atOpening) {
    const std::string_view view = bytes;
    EXPECT_EQ(outcomeOf([&] { BoundedZIP::Archive archive(bytesOf(view)); }), expected);
  }
  const std::pair<std::string, std::string> atExpanding[] = {
      {both([](EntryHeader& h) { h.flags |= 1; }), "unsupported: encrypted archive or compression method"},
      {both([](EntryHeader& h) { h.method = 12; }), "unsupported: encrypted archive or compression method"},
      {both([](EntryHeader& h) { h.uncompressedSize = 16'777'217; }),
       "resourceLimit: expanded archive size or compression ratio"},
      {both([](EntryHeader& h) { ++h.uncompressedSize; }), "invalidArchive: deflate length mismatch"},
      {both([](EntryHeader& h) { h.crc = 7; }), "invalidArchive: CRC mismatch"},
  };
  for (const auto& [bytes, expected] : atExpanding) {
    BoundedZIP::Archive archive(bytesOf(bytes));
    EXPECT_EQ(archive.expand(*archive.find("first.xml")).text(), "stored");
    EXPECT_EQ(outcomeOf([&] { archive.expand(*archive.find("XL/middle.XML")); }), expected);
  }
  EXPECT_EQ(BoundedZIP::Archive(bytesOf(atExpanding[0].first)).find("folder/"), nullptr);
}

TEST(BoundedZIPArchive, CountsAnEntryOnceTowardsTheLimitOnAll) {
  ArchiveBuilder builder;
  builder.stored("1", std::string(BoundedZIP::maximumEntryBytes, 'a'));
  const std::string bytes = builder.bytes();
  BoundedZIP::Archive archive(bytesOf(bytes));
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(archive.expand(*archive.find("1")).size(), BoundedZIP::maximumEntryBytes);
}

TEST(BoundedZIPWritePacked, DeflatesWhatShrinksWithinTheRatioAndStoresTheRest) {
  std::string varied;
  for (int i = 0; i < 50'000; ++i)
    varied += std::to_string(i * 7919) + ' ';
  const std::pair<std::string, bool> rows[] = {
      {"", false},
      {"a", false},
      {varied, true},
      {std::string(16'000'000, 'a'), false},
      {std::string(1'000'000, 'a'), true},  // within what any ratio may add
  };
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
  EXPECT_EQ(outcomeOf([] { BoundedZIP::writePacked({}); }), "resourceLimit: part count");
}

}  // namespace
}  // namespace zelvo
