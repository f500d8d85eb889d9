#include "Support/ArchiveBuilder.hpp"

#include <initializer_list>
#include <stdexcept>
#include <utility>

#include <zlib.h>

namespace zelvo::testing {
namespace {

constexpr std::uint16_t version20 = 20;
constexpr std::uint16_t midnight = 0;
constexpr std::uint16_t january1st1980 = 0x21;

/// Numbers of that many bytes each, the lowest first.
std::string numbers(int bytes, std::initializer_list<std::size_t> values) {
  std::string out;
  for (const std::size_t value : values) {
    for (int i = 0; i < bytes; ++i)
      out += static_cast<char>(value >> 8 * i & 0xFF);
  }
  return out;
}

std::uint32_t crcOf(std::string_view content) {
  const auto* bytes = reinterpret_cast<const Bytef*>(content.data());
  return static_cast<std::uint32_t>(crc32(0, bytes, static_cast<uInt>(content.size())));
}

std::string rawDeflated(std::string_view content) {
  uLongf size = compressBound(content.size());
  std::string out(size, '\0');
  const auto* bytes = reinterpret_cast<const Bytef*>(content.data());
  if (compress2(reinterpret_cast<Bytef*>(out.data()), &size, bytes, content.size(), Z_BEST_SPEED) != Z_OK)
    throw std::runtime_error("compress2");
  return out.substr(2, size - 6);  // without zlib's header and checksum
}

void describe(ArchiveEntry& entry, std::string_view content) {
  entry.both([&](EntryHeader& header) {
    header.crc = crcOf(content);
    header.compressedSize = static_cast<std::uint32_t>(entry.data.size());
    header.uncompressedSize = static_cast<std::uint32_t>(content.size());
  });
}

std::string sharedFields(const EntryHeader& header) {
  return numbers(2, {version20, header.flags, header.method, midnight, january1st1980}) +
         numbers(4, {header.crc, header.compressedSize, header.uncompressedSize}) +
         numbers(2, {header.nameLength.value_or(header.name.size()),
                     header.extraLength.value_or(header.extra.size())});
}

std::string localRecord(const ArchiveEntry& entry) {
  return numbers(4, {entry.local.signature}) + sharedFields(entry.local) + entry.local.name +
         entry.local.extra + entry.data + entry.descriptor;
}

std::string centralRecord(const CentralHeader& header, std::size_t localOffset) {
  constexpr std::size_t internalAttributes = 0;
  return numbers(4, {header.signature}) + numbers(2, {version20}) + sharedFields(header) +
         numbers(2, {header.commentLength.value_or(header.comment.size()), header.diskStart,
                     internalAttributes}) +
         numbers(4, {header.externalAttributes, header.localOffset.value_or(localOffset)}) + header.name +
         header.extra + header.comment;
}

std::string endRecord(const EndRecord& end, std::size_t entries, std::size_t offset, std::size_t size) {
  return numbers(4, {end.signature}) +
         numbers(2, {end.disk, end.directoryDisk, end.entriesOnDisk.value_or(entries),
                     end.entries.value_or(entries)}) +
         numbers(4, {end.directorySize.value_or(size), end.directoryOffset.value_or(offset)}) +
         numbers(2, {end.commentLength.value_or(end.comment.size())}) + end.comment;
}

}  // namespace

void ArchiveEntry::both(const std::function<void(EntryHeader&)>& change) {
  change(local);
  change(central);
}

void ArchiveEntry::useDescriptor() {
  both([](EntryHeader& header) { header.flags |= 0x08; });
  descriptor += numbers(4, {0x08074b50, local.crc, local.compressedSize, local.uncompressedSize});
  local.crc = local.compressedSize = local.uncompressedSize = 0;
}

ArchiveEntry& ArchiveBuilder::stored(std::string name, std::string content) {
  ArchiveEntry& entry = entries.emplace_back();
  entry.both([&](EntryHeader& header) { header.name = name; });
  entry.data = std::move(content);
  describe(entry, entry.data);
  return entry;
}

ArchiveEntry& ArchiveBuilder::deflated(std::string name, std::string_view content) {
  ArchiveEntry& entry = stored(std::move(name), rawDeflated(content));
  entry.both([](EntryHeader& header) { header.method = 8; });
  describe(entry, content);
  return entry;
}

std::string ArchiveBuilder::bytes() const {
  std::vector<ArchiveEntry> placed = entries;
  for (std::size_t i = placed.size(); i-- > 1;) {
    if (!placed[i].nested) continue;
    placed[i - 1].data += localRecord(placed[i]);
    describe(placed[i - 1], placed[i - 1].data);
  }

  std::string out = prefix;
  std::string directory;
  for (const ArchiveEntry& entry : placed) {
    const std::string record = localRecord(entry);
    if (!entry.nested) out += record;
    directory += centralRecord(entry.central, out.size() - record.size());
  }
  const std::size_t offset = out.size();
  out += directory + gap + endRecord(end, entries.size(), offset, directory.size());
  if (keptBytes < out.size()) out.resize(keptBytes);
  return out;
}

}  // namespace zelvo::testing
