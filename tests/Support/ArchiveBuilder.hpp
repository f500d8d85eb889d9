#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// ZIP archives described record by record, so that a test can spoil any field: what is not set by hand tells
/// the truth.
namespace zelvo::testing {

/// What local and central headers have in common.
struct EntryHeader {
  std::uint16_t flags = 0;
  std::uint16_t method = 0;
  std::uint32_t crc = 0;
  std::uint32_t compressedSize = 0;
  std::uint32_t uncompressedSize = 0;
  std::optional<std::uint16_t> nameLength;
  std::optional<std::uint16_t> extraLength;
  std::string name;
  std::string extra;
};

struct LocalHeader : EntryHeader {
  std::uint32_t signature = 0x04034b50;
};

struct CentralHeader : EntryHeader {
  std::uint32_t signature = 0x02014b50;
  std::uint16_t diskStart = 0;
  std::uint32_t externalAttributes = 0;
  std::optional<std::uint16_t> commentLength;
  std::optional<std::uint32_t> localOffset;
  std::string comment;
};

struct EndRecord {
  std::uint32_t signature = 0x06054b50;
  std::uint16_t disk = 0;
  std::uint16_t directoryDisk = 0;
  std::optional<std::uint16_t> entriesOnDisk;
  std::optional<std::uint16_t> entries;
  std::optional<std::uint32_t> directorySize;
  std::optional<std::uint32_t> directoryOffset;
  std::optional<std::uint16_t> commentLength;
  std::string comment;
};

struct ArchiveEntry {
  LocalHeader local;
  CentralHeader central;
  std::string data;        ///< compressed
  std::string descriptor;  ///< what follows the data
  /// The whole local record is inside the data of the entry before it, which must be a stored one.
  bool nested = false;

  /// Applies a change to both headers.
  void both(const std::function<void(EntryHeader&)>& change);
  /// Leaves sizes and CRC of the local header zero and writes them behind the data.
  void useDescriptor();
};

struct ArchiveBuilder {
  std::string prefix;  ///< before the first entry
  std::vector<ArchiveEntry> entries;
  std::string gap;  ///< between the directory and the end record
  EndRecord end;
  std::size_t keptBytes = std::string::npos;  ///< what lies behind is cut off

  /// Each adds an entry at the end. The reference is valid until the next.
  ArchiveEntry& stored(std::string name, std::string content);
  ArchiveEntry& deflated(std::string name, std::string_view content);

  std::string bytes() const;
};

}  // namespace zelvo::testing
