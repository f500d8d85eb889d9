#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::BoundedZIP {

/// An archive whose entries are expanded one at a time, for readers that need only some of them.
///
/// Opening the archive checks every entry of its directory against the rules of `read` on size, count,
/// bounds, names, duplicates, links, local headers and overlaps. Expanding an entry checks it against the
/// rules on encryption, method, sizes, ratio and checksum.
class Archive {
 public:
  /// One entry as the central directory describes it.
  struct Entry {
    std::uint32_t flags;
    std::uint32_t method;
    std::uint32_t crc;
    std::uint32_t compressedSize;
    std::uint32_t uncompressedSize;
    std::uint32_t diskStart;
    std::uint32_t externalAttributes;
    std::uint32_t localOffset;
    std::string_view name;
    std::uint64_t next;  ///< the position of the following directory entry
    ByteView data;       ///< compressed
  };

  /// `bytes` must outlive this. Throws the `DocumentError`s of `read` for the rules above, and `Cancelled`
  /// (checked once per entry).
  explicit Archive(ByteView bytes, const std::stop_token& stop = {});

  /// In the order of the directory, without folders.
  const std::vector<Entry>& entries() const { return entries_; }

  /// The entry of that name, in any letter case, or null. Valid while this lives.
  const Entry* find(std::string_view name) const;

  /// The content of an entry of this archive. An entry counts once towards the limit on all expanded bytes,
  /// however often it is expanded. Throws `DocumentError` as `read` does.
  ByteBuffer expand(const Entry& entry);

 private:
  std::vector<Entry> entries_;
  std::map<std::string, std::size_t, std::less<>> byLowerCaseName_;
  std::vector<bool> isCounted_;  ///< by entry: whether `expandedBytes_` holds it
  std::uint64_t expandedBytes_ = 0;
};

}  // namespace zelvo::BoundedZIP
