#include "Support/ArchiveBuilder.hpp"

#include <stdexcept>
#include <utility>

#include <zlib.h>

namespace zelvo::testing {
namespace {

constexpr std::uint16_t version20 = 20;
constexpr std::uint16_t midnight = 0;
constexpr std::uint16_t january1st1980 = 0x21;

/// Appends a number of that many bytes, the lowest first.
void put(std::string& out, std::size_t value, int bytes) {
  for (int i = 0; i < bytes; ++i)
    out += static_cast<char>(value >> 8 * i & 0xFF);
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

void putSharedFields(std::string& out, const EntryHeader& header) {
  for (const std::uint16_t value : {version20, header.flags, header.method, midnight, january1st1980})
    put(out, value, 2);
  for (const auto value : {header.crc, header.compressedSize, header.uncompressedSize})
    put(out, value, 4);
  put(out, header.nameLength.value_or(header.name.size()), 2);
  put(out, header.extraLength.value_or(header.extra.size()), 2);
}

std::string localRecord(const ArchiveEntry& entry) {
  std::string out;
  put(out, entry.local.signature, 4);
  putSharedFields(out, entry.local);
  return out + entry.local.name + entry.local.extra + entry.data + entry.descriptor;
}

std::string centralRecord(const CentralHeader& header, std::size_t localOffset) {
  std::string out;
  put(out, header.signature, 4);
  put(out, version20, 2);
  putSharedFields(out, header);
  put(out, header.commentLength.value_or(header.comment.size()), 2);
  put(out, header.diskStart, 2);
  put(out, 0, 2);  // internal attributes
  put(out, header.externalAttributes, 4);
  put(out, header.localOffset.value_or(localOffset), 4);
  return out + header.name + header.extra + header.comment;
}

std::string endRecord(const EndRecord& end, std::size_t entries, std::size_t offset, std::size_t size) {
  std::string out;
  put(out, end.signature, 4);
  put(out, end.disk, 2);
  put(out, end.directoryDisk, 2);
  put(out, end.entriesOnDisk.value_or(entries), 2);
  put(out, end.entries.value_or(entries), 2);
  put(out, end.directorySize.value_or(size), 4);
  put(out, end.directoryOffset.value_or(offset), 4);
  put(out, end.commentLength.value_or(end.comment.size()), 2);
  return out + end.comment;
}

}  // namespace

void ArchiveEntry::both(const std::function<void(EntryHeader&)>& change) {
  change(local);
  change(central);
}

void ArchiveEntry::useDescriptor() {
  both([](EntryHeader& header) { header.flags |= 0x08; });
  put(descriptor, 0x08074b50, 4);
  for (std::uint32_t* field : {&local.crc, &local.compressedSize, &local.uncompressedSize})
    put(descriptor, std::exchange(*field, 0), 4);
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
