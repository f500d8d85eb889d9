// Owns PackageIO/BoundedZIPReader: what archives are read, as a whole or entry by entry, and every rule in
// its order.
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIPArchive.hpp"
#include "Support/ArchiveBuilder.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

constexpr const char* archiveSize = "resourceLimit: archive size";
constexpr const char* noDirectory = "invalidArchive: missing ZIP directory";
constexpr const char* directoryKind = "unsupported: ZIP64, split archives, or excessive entries";
constexpr const char* directoryBounds = "invalidArchive: directory bounds";
constexpr const char* directoryEntry = "invalidArchive: invalid directory entry";
constexpr const char* entryBounds = "invalidArchive: entry bounds";
constexpr const char* entryKind = "unsupported: encrypted archive or compression method";
constexpr const char* specialFile = "unsafeContent: archive link or special file";
constexpr const char* path = "unsafeContent: duplicate or unsafe archive path";
constexpr const char* expansion = "resourceLimit: expanded archive size or compression ratio";
constexpr const char* localMismatch = "invalidArchive: local header mismatch";
constexpr const char* localBounds = "invalidArchive: local entry bounds";
constexpr const char* overlap = "invalidArchive: overlapping entries";
constexpr const char* localSizes = "invalidArchive: local size or CRC mismatch";
constexpr const char* storedSize = "invalidArchive: stored size mismatch";
constexpr const char* deflateLength = "invalidArchive: deflate length mismatch";
constexpr const char* crcMismatch = "invalidArchive: CRC mismatch";
constexpr const char* directorySize = "invalidArchive: directory size mismatch";

PartMap read(const ArchiveBuilder& archive) {
  return BoundedZIP::read(bytesOf(archive.bytes()));
}

/// The names and bytes of parts, in one line, or why they are refused.
template <typename Read>
std::string textOf(const Read& read) {
  std::string text;
  const auto refusal = outcomeOf([&] {
    for (const auto& [name, bytes] : read())
      text.append(name).append("=").append(bytes.text()).append(" ");
  });
  return refusal.text.empty() ? text : refusal.text;
}

std::string outcome(std::string_view archive) {
  return textOf([&] { return BoundedZIP::read(bytesOf(archive)); });
}

PartMap expandAll(std::string_view bytes) {
  BoundedZIP::Archive archive(bytesOf(bytes));
  PartMap parts;
  for (const auto& entry : archive.entries())
    parts.set(std::string(entry.name), archive.expand(entry));
  return parts;
}

/// Three entries; what the table spoils is the one in the middle, so that there is one to overlap and one to
/// leave out.
ArchiveBuilder good() {
  ArchiveBuilder archive;
  archive.stored("first.xml", "stored");
  archive.deflated("xl/Middle.xml", "deflated, deflated, deflated");
  archive.deflated("last.xml", "with a descriptor").useDescriptor();
  return archive;
}

using Refusals = std::vector<Refusal<ArchiveBuilder>>;

std::function<void(ArchiveBuilder&)> middle(std::function<void(ArchiveEntry&)> spoil) {
  return [spoil = std::move(spoil)](ArchiveBuilder& archive) { spoil(archive.entries[1]); };
}

/// The same change in both headers.
std::function<void(ArchiveBuilder&)> twice(std::function<void(EntryHeader&)> spoil) {
  return middle([spoil = std::move(spoil)](ArchiveEntry& entry) { entry.both(spoil); });
}

Refusals refusals() {
  using A = ArchiveBuilder&;
  using E = ArchiveEntry&;
  using H = EntryHeader&;
  return {
      {"cut short", [](A a) { a.keptBytes = 21; }, archiveSize},
      {"no end record", [](A a) { a.end.signature = 0; }, noDirectory},
      {"disk", [](A a) { a.end.disk = 1; }, directoryKind},
      {"no entries", [](A a) { a.end.entriesOnDisk = a.end.entries = 0; }, directoryKind},
      {"ZIP64 size", [](A a) { a.end.directorySize = 0xFFFFFFFF; }, directoryKind},
      {"directory size", [](A a) { a.end.directorySize = 46; }, directoryBounds},
      {"gap behind the directory", [](A a) { a.gap += '?'; }, directoryBounds},
      {"central signature", middle([](E e) { e.central.signature = 0; }), directoryEntry},
      {"no name", middle([](E e) { e.central.nameLength = 0; }), entryBounds},
      {"central lengths", middle([](E e) { e.central.commentLength = 0xFFFF; }), entryBounds},
      {"local offset", middle([](E e) { e.central.localOffset = 0xFFFFFFFF; }), entryBounds},
      {"encrypted", twice([](H h) { h.flags |= 0x01; }), entryKind},
      {"strongly encrypted", twice([](H h) { h.flags |= 0x40; }), entryKind},
      {"method", twice([](H h) { h.method = 12; }), entryKind},
      {"link", middle([](E e) { e.central.externalAttributes = 0xA1FF0000; }), specialFile},
      {"name that is no UTF-8", twice([](H h) { h.name = "\xC0\xAF"; }), path},
      {"name of another entry", twice([](H h) { h.name = "FIRST.xml"; }), path},
      {"entry size", twice([](H h) { h.uncompressedSize = 16'777'217; }), expansion},
      {"ratio", twice([](H h) { h.uncompressedSize = 1'100'000; }), expansion, "data"},
      {"local flags", middle([](E e) { e.local.flags ^= 0x02; }), localMismatch},
      {"local method", middle([](E e) { e.local.method ^= 0x01; }), localMismatch},
      {"data past the directory", middle([](E e) { e.central.compressedSize = 0xFFFFFFFF; }), localBounds,
       "data"},
      {"local name length", middle([](E e) { e.local.nameLength = 12; }), localBounds},
      {"local name", middle([](E e) { e.local.name.back() = 'k'; }), localBounds},
      {"overlap", middle([](E e) { e.nested = true; }), overlap},
      {"local CRC", middle([](E e) { e.local.crc ^= 1; }), localSizes},
      {"local compressed size", middle([](E e) { e.local.compressedSize ^= 1; }), localSizes},
      {"local uncompressed size", middle([](E e) { e.local.uncompressedSize ^= 1; }), localSizes},
      {"stored size", twice([](H h) { h.method = 0; }), storedSize},
      {"one byte too many declared", twice([](H h) { ++h.uncompressedSize; }), deflateLength, "declared"},
      {"trailing byte", middle([](E e) { e.data += '?', e.both([](auto& h) { ++h.compressedSize; }); }),
       deflateLength},
      {"broken stream", middle([](E e) { e.data[0] = '\xFF'; }), deflateLength},
      {"CRC", twice([](H h) { h.crc = 7; }), crcMismatch},
      {"an entry too many", [](A a) { a.end.entriesOnDisk = a.end.entries = 5; }, directoryEntry, "count"},
      {"an entry too few", [](A a) { a.end.entriesOnDisk = a.end.entries = 2; }, directorySize, "count"},
  };
}

TEST(BoundedZIPRead, RefusesInOrder) {
  testing::expectRefusals<ArchiveBuilder>(good, refusals(), read);
  EXPECT_THROW(BoundedZIP::read(bytesOf(good().bytes()), testing::stopped()), Cancelled);
}

TEST(BoundedZIPArchive, HoldsEveryEntryToTheStructureAndOnlyExpandedOnesToTheirContent) {
  const std::set<std::string> aboutContent = {entryKind, expansion, storedSize, deflateLength, crcMismatch};
  for (const auto& row : refusals()) {
    ArchiveBuilder builder = good();
    builder.stored("folder/", "");
    row.spoil(builder);
    const std::string bytes = builder.bytes();
    bool isOpen = false;
    const auto expand = [&] {
      BoundedZIP::Archive archive(bytesOf(bytes));
      isOpen = archive.expand(*archive.find("first.xml")).text() == "stored" && !archive.find("folder/");
      archive.expand(*archive.find("XL/middle.XML"));
    };
    EXPECT_EQ(outcomeOf(expand), row.expected) << row.name;
    EXPECT_EQ(isOpen, aboutContent.contains(row.expected.text)) << row.name;
  }
}

TEST(BoundedZIPRead, KeepsWhatAnArchiveHolds) {
  ArchiveBuilder archive = good();
  archive.prefix = "what a self-extracting archive starts with";
  archive.stored("Folder/", "").central.externalAttributes = 0x41ED0010;
  archive.stored("Folder/Ünïcode 名.xml", "").central.externalAttributes = 0x81A40000;
  archive.deflated("nothing.xml", "");
  archive.entries[0].local.extra = "local";
  archive.entries[0].central.extra = "another";
  archive.entries[0].central.comment = "comment";
  EXPECT_EQ(outcome(archive.bytes()),
            "Folder/Ünïcode 名.xml= first.xml=stored last.xml=with a descriptor nothing.xml= "
            "xl/Middle.xml=deflated, deflated, deflated ");
}

TEST(BoundedZIPRead, TakesTheLastEndRecordThatReachesTheEnd) {
  ArchiveBuilder inner = good();
  const std::string expected = outcome(inner.bytes());
  const auto withComment = [&](std::string comment) {
    inner.end.comment = std::move(comment);
    return outcome(inner.bytes());
  };
  const std::string emptyRecord = "PK\5\6" + std::string(16, '\0');
  EXPECT_EQ(withComment(emptyRecord + "\1" + '\0'), expected) << "claims a byte more than there is";
  EXPECT_EQ(withComment(emptyRecord + std::string(2, '\0')), directoryKind) << "reaches the end, is empty";
  for (const std::size_t length : {65'534U, 65'535U})
    EXPECT_EQ(withComment(std::string(length, 'c')), expected) << length;
  EXPECT_EQ(withComment(std::string(65'536, 'c')), noDirectory);
}

TEST(BoundedZIPRead, StopsAtItsLimits) {
  using A = ArchiveBuilder&;
  const auto expectLimit = [](ArchiveBuilder archive, const auto& exceed, const char* refusal) {
    EXPECT_EQ(outcomeOf([&] { read(archive); }), "") << refusal;
    exceed(archive);
    EXPECT_EQ(outcomeOf([&] { read(archive); }), refusal);
  };
  const auto addByte = [](A a) { a.stored("?", "?"); };
  ArchiveBuilder whole = good();
  whole.prefix.resize(BoundedZIP::maximumArchiveBytes - whole.bytes().size());
  const auto lengthen = [](A a) { a.prefix += '?'; };
  expectLimit(whole, lengthen, archiveSize);
  ArchiveBuilder named;
  named.stored(std::string(BoundedZIP::maximumNameBytes, 'n'), "");
  const auto rename = [](A a) { a.entries[0].both([](EntryHeader& header) { header.name += 'n'; }); };
  expectLimit(named, rename, path);
  ArchiveBuilder many;
  for (std::size_t i = 0; i < BoundedZIP::maximumEntries; ++i)
    many.stored(std::to_string(i), "");
  expectLimit(many, addByte, directoryKind);

  // Four entries at their limit are all that may be; every 64th byte is noise, which keeps the ratio down.
  std::string noisy(BoundedZIP::maximumEntryBytes, '\0');
  std::uint32_t noise = 1;
  for (std::size_t i = 0; i < noisy.size(); i += 64)
    noisy[i] = static_cast<char>((noise = noise * 1'664'525 + 1'013'904'223) >> 24);
  ArchiveBuilder expanded;
  expanded.deflated("1", noisy);
  const auto longer = [&](A a) { a.entries.clear(), a.deflated("1", noisy + '?'); };
  expectLimit(expanded, longer, expansion);
  for (const char* more : {"2", "3", "4"})
    expanded.entries.emplace_back(expanded.entries[0]).both([&](EntryHeader& header) { header.name = more; });
  expectLimit(expanded, addByte, expansion);

  // Zeros shrink to a thousandth: the size that just passes is a fixed point, found in a few steps.
  ArchiveBuilder zeros;
  std::size_t size = BoundedZIP::expansionAllowanceBytes;
  for (std::size_t previous = 0; std::exchange(previous, size) != size;) {
    zeros = {};
    size = zeros.deflated("zeros", std::string(size, '\0')).data.size() * BoundedZIP::maximumExpansionRatio +
           BoundedZIP::expansionAllowanceBytes;
  }
  const auto grow = [](A a) { a.entries[0].both([](auto& header) { ++header.uncompressedSize; }); };
  expectLimit(zeros, grow, expansion);
}

TEST(BoundedZIPRead, DamageNeverChangesTheBytesUnseen) {
  const std::string whole = good().bytes();
  const std::string expected = outcome(whole);
  for (std::size_t length = 0; length < whole.size(); ++length)
    EXPECT_NE(outcomeOf([&] { BoundedZIP::read(bytesOf(whole.substr(0, length))); }), "") << length;

  for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
    std::string damaged = whole;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
    const bool isRefused = outcomeOf([&] { BoundedZIP::read(bytesOf(damaged)); }).text != "";
    EXPECT_TRUE(isRefused || outcome(damaged) == expected) << "bit " << bit;
    EXPECT_EQ(outcomeOf([&] { expandAll(damaged); }).text != "", isRefused) << "bit " << bit;
    EXPECT_TRUE(isRefused || textOf([&] { return expandAll(damaged); }) == expected) << "bit " << bit;
  }
}

TEST(BoundedZIPWrite, RefusesInOrder) {
  // The size of part "a", the name and size of another, more parts without content, and the refusal. Beside
  // their bytes, two parts take 176 bytes of headers.
  constexpr std::size_t entry = BoundedZIP::maximumEntryBytes;
  constexpr std::size_t rest = BoundedZIP::maximumArchiveBytes - entry - (2 * (30 + 1 + 46 + 1) + 22);
  const std::tuple<std::size_t, std::string, std::size_t, std::size_t, const char*> rows[] = {
      {0, "x", 0, 510, ""},
      {0, "/", 0, 511, "resourceLimit: part count"},
      {0, "a/../b", 0, 0, "resourceLimit: output part"},
      {entry + 1, "b", 0, 0, "resourceLimit: output part"},
      {entry, "b", rest, 0, ""},
      {entry, "b", rest + 1, 0, "resourceLimit: output archive"},
  };
  for (const auto& [size, other, otherSize, more, refusal] : rows) {
    PackageBuilder package{{{"a", std::string(size, 'a')}, {other, std::string(otherSize, 'b')}}};
    for (std::size_t i = 0; i < more; ++i)
      package.part(std::to_string(i));
    EXPECT_EQ(outcomeOf([&] { package.bytes(); }), refusal) << other << more;
  }
  EXPECT_THROW(BoundedZIP::write(PackageBuilder{{{"/", ""}}}.partMap(), testing::stopped()), Cancelled);
  EXPECT_EQ(outcomeOf([] { PackageBuilder().bytes(); }), "resourceLimit: part count");
}

TEST(BoundedZIPWritePacked, DeflatesWhatShrinksWithinTheRatioAndStoresTheRest) {
  // A million bytes are within what any ratio may add.
  for (const auto& [bytes, isDeflated] : {std::pair(1U, false), {1'000'000U, true}, {16'000'000U, false}}) {
    const std::string text(bytes, 'a');
    std::vector<BoundedZIP::PackedPart> parts;
    parts.push_back(BoundedZIP::packed("a", bytesOf(text)));
    EXPECT_EQ(parts[0].isDeflated, isDeflated) << bytes;
    EXPECT_TRUE(BoundedZIP::read(BoundedZIP::writePacked(parts).view()).find("a")->text() == text);
  }
  EXPECT_EQ(outcomeOf([] { BoundedZIP::writePacked({}); }), "resourceLimit: part count");
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
