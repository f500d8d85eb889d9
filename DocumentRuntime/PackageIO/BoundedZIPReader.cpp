#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIPArchive.hpp"
#include "DocumentRuntime/PackageIO/ZIPCodec.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::BoundedZIP {
namespace {

/// Positions and sizes are 64-bit. A position is at most 2^25 (the largest archive), a field is below 2^32.
/// Computed values are at most a position plus four fields, or a field times 200 plus 2^20: nothing can
/// overflow.
using Size = std::uint64_t;

/// The length of an archive's comment is a 16-bit field, so the end record starts no further from the end.
constexpr Size maximumCommentBytes = 0xFFFF;

/// Marks a size or offset that is stored in the ZIP64 record.
constexpr std::uint32_t zip64Marker = 0xFFFFFFFF;

constexpr std::uint32_t encryptionFlags = 0x41;  ///< bit 0: encrypted, bit 6: strongly
constexpr std::uint32_t descriptorFlag = 0x08;   ///< the local sizes and CRC follow the data

// Unix file types, in the upper half of the external attributes.
constexpr std::uint32_t fileTypeMask = 0xF000;
constexpr std::uint32_t noFileType = 0;  ///< written by programs for other systems
constexpr std::uint32_t directoryType = 0x4000;
constexpr std::uint32_t regularFileType = 0x8000;

std::uint32_t u16(ByteView bytes, Size at) {
  return bytes[at] | std::uint32_t{bytes[at + 1]} << 8;
}
std::uint32_t u32(ByteView bytes, Size at) {
  return u16(bytes, at) | u16(bytes, at + 2) << 16;
}

/// The position of the central directory, and its declared number of entries.
struct Directory {
  Size offset;
  Size end;  ///< the position of the end record
  Size entries;
};

using Entry = Archive::Entry;

/// The bytes of an archive that one entry takes up, from its local header to the end of its data.
struct Span {
  Size begin;
  Size end;
};

Size findEndRecord(ByteView archive) {
  const Size last = archive.size() - endRecordBytes;
  const Size first = last - std::min(last, maximumCommentBytes);
  for (Size at = last + 1; at-- > first;) {
    // Only a record whose comment ends with the archive counts, because a comment may hold the signature.
    if (u32(archive, at) == endSignature && at + endRecordBytes + u16(archive, at + 20) == archive.size())
      return at;
  }
  throw DocumentError::invalidArchive(RefusalDetail::missingDirectory);
}

Directory findDirectory(ByteView archive) {
  if (archive.size() < minimumArchiveBytes || archive.size() > maximumArchiveBytes) {
    throw DocumentError::resourceLimit(RefusalDetail::archiveSize);
  }
  const Size end = findEndRecord(archive);
  const ByteView record = archive.subspan(end, endRecordBytes);
  const std::uint32_t disk = u16(record, 4);
  const std::uint32_t directoryDisk = u16(record, 6);
  const std::uint32_t entriesOnDisk = u16(record, 8);
  const std::uint32_t entries = u16(record, 10);
  const std::uint32_t size = u32(record, 12);
  const std::uint32_t offset = u32(record, 16);

  if (disk != 0 || directoryDisk != 0 || entriesOnDisk != entries || entries < 1 ||
      entries > maximumEntries || size == zip64Marker || offset == zip64Marker) {
    throw DocumentError::unsupported(RefusalDetail::archiveForm);
  }
  if (offset > end || end - offset != size) throw DocumentError::invalidArchive("directory bounds");
  return {.offset = offset, .end = end, .entries = entries};
}

Entry directoryEntry(ByteView archive, const Directory& directory, Size cursor) {
  if (cursor + centralHeaderBytes > directory.end || u32(archive, cursor) != centralSignature) {
    throw DocumentError::invalidArchive("invalid directory entry");
  }
  const ByteView header = archive.subspan(cursor, centralHeaderBytes);
  const std::uint32_t nameLength = u16(header, 28);
  const std::uint32_t extraLength = u16(header, 30);
  const std::uint32_t commentLength = u16(header, 32);
  const std::uint32_t localOffset = u32(header, 42);

  const Size next = cursor + centralHeaderBytes + nameLength + extraLength + commentLength;
  if (nameLength == 0 || next > directory.end || Size{localOffset} + localHeaderBytes > directory.offset) {
    throw DocumentError::invalidArchive("entry bounds");
  }
  return {.flags = u16(header, 8),
          .method = u16(header, 10),
          .crc = u32(header, 16),
          .compressedSize = u32(header, 20),
          .uncompressedSize = u32(header, 24),
          .diskStart = u16(header, 34),
          .externalAttributes = u32(header, 38),
          .localOffset = localOffset,
          .name = textOf(archive.subspan(cursor + centralHeaderBytes, nameLength)),
          .next = next};
}

void checkMethod(const Entry& entry) {
  if ((entry.flags & encryptionFlags) != 0 ||
      (entry.method != storedMethod && entry.method != deflatedMethod) || entry.diskStart != 0) {
    throw DocumentError::unsupported(RefusalDetail::archiveMethod);
  }
}

void checkFileType(const Entry& entry) {
  const std::uint32_t fileType = (entry.externalAttributes >> 16) & fileTypeMask;
  if (fileType != noFileType && fileType != regularFileType && fileType != directoryType) {
    throw DocumentError::unsafeContent(RefusalDetail::archiveLink);
  }
}

/// Called before an entry is expanded, so that a ZIP bomb allocates nothing. Adds the entry's size to
/// `expandedBytes`.
void checkExpansion(const Entry& entry, Size& expandedBytes) {
  if (entry.uncompressedSize > maximumEntryBytes ||
      expandedBytes + entry.uncompressedSize > maximumExpandedBytes ||
      entry.uncompressedSize > entry.compressedSize * maximumExpansionRatio + expansionAllowanceBytes) {
    throw DocumentError::resourceLimit(RefusalDetail::expandedSize);
  }
  expandedBytes += entry.uncompressedSize;
}

class Reader {
 public:
  explicit Reader(ByteView archive) : archive_(archive), directory_(findDirectory(archive)) {}

  PartMap read(const std::stop_token& stop);
  std::vector<Entry> list(const std::stop_token& stop);

 private:
  /// Calls take(entry) for every entry of the directory.
  template <typename Take>
  void eachEntry(const std::stop_token& stop, const Take& take);
  void checkName(const Entry& entry);
  ByteView localData(const Entry& entry);

  ByteView archive_;
  Directory directory_;
  std::set<std::string> seenNames_;  ///< in lower case: some file systems and readers ignore case
  std::vector<Span> spans_;
};

void Reader::checkName(const Entry& entry) {
  if (!Unicode::isValid(entry.name) || !safeName(entry.name) ||
      !seenNames_.insert(Unicode::lowercased(entry.name)).second) {
    throw DocumentError::unsafeContent(RefusalDetail::archivePath);
  }
}

/// The entry's compressed bytes, after checking that the local header matches the central directory. Programs
/// that use only one of them must not see different files.
ByteView Reader::localData(const Entry& entry) {
  const ByteView header = archive_.subspan(entry.localOffset, localHeaderBytes);
  if (u32(header, 0) != localSignature || u16(header, 6) != entry.flags || u16(header, 8) != entry.method) {
    throw DocumentError::invalidArchive("local header mismatch");
  }

  const std::uint32_t nameLength = u16(header, 26);
  const Size nameStart = Size{entry.localOffset} + localHeaderBytes;
  const Size dataStart = nameStart + nameLength + u16(header, 28);
  if (dataStart > directory_.offset || directory_.offset - dataStart < entry.compressedSize ||
      textOf(archive_.subspan(nameStart, nameLength)) != entry.name) {
    throw DocumentError::invalidArchive("local entry bounds");
  }

  // Entries that share data make an archive expand far beyond its size although every single ratio is within
  // the limit. With at most 512 entries, comparing every pair is faster than sorting the spans. No span is
  // empty.
  const Span span{.begin = entry.localOffset, .end = dataStart + entry.compressedSize};
  if (std::any_of(spans_.begin(), spans_.end(), [&](const Span& earlier) {
        return span.begin < earlier.end && earlier.begin < span.end;
      })) {
    throw DocumentError::invalidArchive("overlapping entries");
  }
  spans_.push_back(span);

  if ((entry.flags & descriptorFlag) == 0 &&
      (u32(header, 14) != entry.crc || u32(header, 18) != entry.compressedSize ||
       u32(header, 22) != entry.uncompressedSize)) {
    throw DocumentError::invalidArchive("local size or CRC mismatch");
  }
  return archive_.subspan(dataStart, entry.compressedSize);
}

ByteBuffer expanded(const Entry& entry, ByteView data) {
  ByteBuffer bytes;
  if (entry.method == deflatedMethod) {
    bytes = inflateRaw(data, entry.uncompressedSize);
  } else if (entry.compressedSize == entry.uncompressedSize) {
    bytes = ByteBuffer::copyOf(data);
  } else {
    throw DocumentError::invalidArchive("stored size mismatch");
  }
  if (checksum(bytes.view()) != entry.crc) throw DocumentError::invalidArchive("CRC mismatch");
  return bytes;
}

template <typename Take>
void Reader::eachEntry(const std::stop_token& stop, const Take& take) {
  Size cursor = directory_.offset;
  for (Size i = 0; i < directory_.entries; ++i) {
    throwIfCancelled(stop);
    Entry entry = directoryEntry(archive_, directory_, cursor);
    cursor = entry.next;
    take(entry);
  }
  if (cursor != directory_.end) throw DocumentError::invalidArchive("directory size mismatch");
}

PartMap Reader::read(const std::stop_token& stop) {
  std::vector<Part> parts;
  Size expandedBytes = 0;
  eachEntry(stop, [&](const Entry& entry) {
    checkMethod(entry);
    checkFileType(entry);
    checkName(entry);
    checkExpansion(entry, expandedBytes);
    ByteBuffer bytes = expanded(entry, localData(entry));
    const bool isDirectory = entry.name.ends_with('/');
    if (!isDirectory) parts.push_back({.name = std::string(entry.name), .bytes = std::move(bytes)});
  });
  return PartMap(std::move(parts));
}

std::vector<Entry> Reader::list(const std::stop_token& stop) {
  std::vector<Entry> entries;
  eachEntry(stop, [&](Entry& entry) {
    checkFileType(entry);
    checkName(entry);
    entry.data = localData(entry);
    const bool isDirectory = entry.name.ends_with('/');
    if (!isDirectory) entries.push_back(entry);
  });
  return entries;
}

}  // namespace

PartMap read(ByteView archive, const std::stop_token& stop) {
  return Reader(archive).read(stop);
}

Archive::Archive(ByteView bytes, const std::stop_token& stop)
    : entries_(Reader(bytes).list(stop)), isCounted_(entries_.size()) {
  for (std::size_t i = 0; i < entries_.size(); ++i)
    byLowerCaseName_.emplace(Unicode::lowercased(entries_[i].name), i);
}

const Archive::Entry* Archive::find(std::string_view name) const {
  const auto found = byLowerCaseName_.find(Unicode::lowercased(name));
  return found == byLowerCaseName_.end() ? nullptr : &entries_[found->second];
}

ByteBuffer Archive::expand(const Entry& entry) {
  const auto index = static_cast<std::size_t>(&entry - entries_.data());
  checkMethod(entry);
  if (!isCounted_[index]) checkExpansion(entry, expandedBytes_);
  isCounted_[index] = true;
  return expanded(entry, entry.data);
}

}  // namespace zelvo::BoundedZIP
