#include "fuzz/MemoryBound.hpp"

#include <algorithm>
#include <cstdint>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"

namespace zelvo::fuzzing {
namespace {

/// The documented bound is three times the input, three times the expanded bytes, and this.
constexpr std::size_t promisedBytes = 32 << 20;

/// For small parts: a tree has 54 bytes for the shortest element ("<a/>"), in addition to the part, its text
/// and the results.
constexpr std::size_t treeFactor = 10;
constexpr std::size_t documentBytes = 256 << 10;

/// For small messages: a list's elements are larger than their text, until the list is cut.
constexpr std::size_t messageBytes = 512 << 10;

/// The memory of a deck with the most slides and charts, without their texts.
constexpr std::size_t researchFactor = 6;
constexpr std::size_t researchBytes = 2 << 20;

/// The format of charts repeats each category label for every series of every chart, 16 times in a deck. The
/// part, the archive, and the trees of the read-back each have these copies.
constexpr std::size_t deckFactor = 128;
constexpr std::size_t promisedDeckBytes = 48 << 20;

std::uint64_t number(ByteView bytes, std::size_t at, std::size_t count) {
  std::uint64_t value = 0;
  for (std::size_t i = count; i-- > 0;)
    value = value << 8 | bytes[at + i];
  return value;
}

/// The sum of the expanded sizes that an archive's entries declare, up to the first size that the reader
/// refuses. Checks nothing else.
std::size_t claimedBytes(ByteView archive) {
  using namespace BoundedZIP;
  constexpr std::size_t endRecordBytes = 22;
  constexpr std::size_t headerBytes = 46;
  constexpr std::string_view endSignature = "PK\5\6";
  constexpr std::string_view headerSignature = "PK\1\2";
  const std::string_view text = textOf(archive);
  const std::size_t end = text.rfind(endSignature);
  if (end == std::string_view::npos || end + endRecordBytes > text.size()) return 0;

  std::size_t sum = 0;
  std::uint64_t at = number(archive, end + 16, 4);
  while (at + headerBytes <= end && text.substr(at).starts_with(headerSignature)) {
    const std::uint64_t compressed = number(archive, at + 20, 4);
    const std::uint64_t expanded = number(archive, at + 24, 4);
    if (expanded > maximumEntryBytes || sum + expanded > maximumExpandedBytes ||
        expanded > compressed * maximumExpansionRatio + expansionAllowanceBytes) {
      break;
    }
    sum += expanded;
    at +=
        headerBytes + number(archive, at + 28, 2) + number(archive, at + 30, 2) + number(archive, at + 32, 2);
  }
  return sum;
}

}  // namespace

std::size_t expandedBytes(ByteView archive) {
  std::size_t sum = claimedBytes(archive);
  try {
    for (const Part& part : BoundedZIP::read(archive)) {
      if (part.name.ends_with(".xlsx")) sum += claimedBytes(part.bytes.view());
    }
  } catch (const DocumentError&) {
    // The code under test refuses the archive too.
  }
  return sum;
}

testing::HeapLimit documentMemory(ByteView archive, std::size_t resultBytes) {
  const std::size_t expanded = expandedBytes(archive);
  return testing::HeapLimit(3 * (archive.size() + expanded) +
                            std::min(treeFactor * expanded + documentBytes, promisedBytes) + resultBytes);
}

testing::HeapLimit partMemory(std::size_t bytes) {
  return testing::HeapLimit(3 * bytes + std::min(treeFactor * bytes + documentBytes, promisedBytes));
}

testing::HeapLimit messageMemory(std::size_t bytes) {
  return testing::HeapLimit(3 * bytes + std::min(bytes + messageBytes, promisedBytes));
}

testing::HeapLimit researchMemory(std::size_t bytes) {
  return testing::HeapLimit(researchFactor * bytes + researchBytes);
}

testing::HeapLimit presentationMemory(std::size_t bytes) {
  return testing::HeapLimit(researchFactor * bytes +
                            std::min(deckFactor * bytes + researchBytes, promisedDeckBytes));
}

}  // namespace zelvo::fuzzing
