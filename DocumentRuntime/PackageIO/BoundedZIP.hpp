#pragma once

#include <cstddef>
#include <cstdint>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* archiveSize = "archive size";
inline constexpr const char* missingDirectory = "missing ZIP directory";
inline constexpr const char* archiveForm = "ZIP64, split archives, or excessive entries";
inline constexpr const char* archiveMethod = "encrypted archive or compression method";
inline constexpr const char* archiveLink = "archive link or special file";
inline constexpr const char* archivePath = "duplicate or unsafe archive path";
inline constexpr const char* expandedSize = "expanded archive size or compression ratio";

}  // namespace zelvo::RefusalDetail

/// The subset of ZIP that OOXML packages use: no ZIP64, no encryption, no methods except stored and raw
/// deflate, no links, no ambiguous or overlapping entries. Sizes are checked before memory is allocated.
namespace zelvo::BoundedZIP {

inline constexpr std::size_t minimumArchiveBytes = 22;  ///< one end-of-central-directory record
inline constexpr std::size_t maximumArchiveBytes = 33'554'432;
inline constexpr std::size_t maximumEntries = 512;
inline constexpr std::size_t maximumEntryBytes = 16'777'216;     ///< one entry, expanded
inline constexpr std::size_t maximumExpandedBytes = 67'108'864;  ///< all entries, expanded
inline constexpr std::uint64_t maximumExpansionRatio = 200;  ///< expanded bytes for each compressed byte …
inline constexpr std::uint64_t expansionAllowanceBytes = 1'048'576;  ///< … and this much more
inline constexpr std::size_t maximumNameBytes = 256;

/// Reads a whole archive. Directories are dropped. Throws `DocumentError` (the first rule that fails) or
/// `Cancelled` (checked once per entry). The result owns its bytes.
PartMap read(ByteView archive, const std::stop_token& stop = {});

/// Computes the size of an archive of stored entries. Authors that repeat a text add each part as they write
/// it, so that they fail where `write` would fail, before the parts fill memory.
class OutputSize {
 public:
  /// Throws `DocumentError` resourceLimit "output part".
  static void checkPart(std::size_t bytes);

  /// Adds a part. Throws `DocumentError` resourceLimit "output part" or "output archive".
  void add(std::size_t nameBytes, std::size_t partBytes);

  std::size_t localBytes() const { return localBytes_; }      ///< the local headers, names and data
  std::size_t centralBytes() const { return centralBytes_; }  ///< the central directory
  std::size_t archiveBytes() const;

 private:
  // The sums cannot wrap: they grow by less than 17 MiB a part and are compared with the limit after each.
  std::size_t localBytes_ = 0;
  std::size_t centralBytes_ = 0;
};

/// Writes stored entries in name order, all dated 1 January 1980: the same parts always give the same bytes.
/// The names must be valid UTF-8. Throws `DocumentError` resourceLimit "part count", "output part" or "output
/// archive", or `Cancelled` (checked once per entry).
ByteBuffer write(const PartMap& parts, const std::stop_token& stop = {});

/// One part as `writePacked` stores it.
struct PackedPart {
  std::string name;
  std::uint32_t crc = 0;
  std::size_t expandedBytes = 0;
  bool isDeflated = false;  ///< otherwise stored
  ByteBuffer data;
};

/// Deflates a part at one fixed level: the same bytes always give the same result. A part that does not
/// shrink, or that would break the reader's rule on the ratio, is stored. At most `maximumEntryBytes`.
PackedPart packed(std::string name, ByteView bytes);

/// As `write`, for packed parts.
ByteBuffer writePacked(const std::vector<PackedPart>& parts, const std::stop_token& stop = {});

/// Whether a name is allowed in an archive: 1 to 256 bytes, relative, no "\", ":", "%" or control character,
/// no empty piece except the last, no "." or ".." piece. `name` must be valid UTF-8.
bool safeName(std::string_view name);

}  // namespace zelvo::BoundedZIP
