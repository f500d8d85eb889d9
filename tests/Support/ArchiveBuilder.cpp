#include "Support/ArchiveBuilder.hpp"

#include <stdexcept>
#include <utility>

#include <zlib.h>

namespace zelvo::testing {
namespace {

void put(std::string& out, std::uint16_t value) {
  out += static_cast<char>(value & 0xFF);
  out += static_cast<char>(value >> 8);
}

void put(std::string& out, std::uint32_t value) {
  put(out, static_cast<std::uint16_t>(value & 0xFFFF));
  put(out, static_cast<std::uint16_t>(value >> 16));
}

std::uint16_t size16(std::size_t size) {
  return static_cast<std::uint16_t>(size);
}
std::uint32_t size32(std::size_t size) {
  return static_cast<std::uint32_t>(size);
}

std::uint32_t crcOf(std::string_view content) {
  return size32(crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
}

std::string rawDeflated(std::string_view content) {
  z_stream stream{};
  if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, -15, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("deflateInit2");
  }
  std::string out(deflateBound(&stream, content.size()), '\0');
  std::string input(content);  // the library's pointers are not to const
  stream.next_in = reinterpret_cast<Bytef*>(input.data());
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  const int result = deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  if (result != Z_STREAM_END) throw std::runtime_error("deflate");
  return out;
}

void describe(ArchiveEntry& entry, std::string_view content) {
  entry.both([&](EntryHeader& header) {
    header.crc = crcOf(content);
    header.compressedSize = size32(entry.data.size());
    header.uncompressedSize = size32(content.size());
  });
}

void putSharedFields(std::string& out, const EntryHeader& header) {
  for (const auto value : {header.versionNeeded, header.flags, header.method, header.time, header.date}) {
    put(out, value);
  }
  for (const auto value : {header.crc, header.compressedSize, header.uncompressedSize})
    put(out, value);
  put(out, header.nameLength.value_or(size16(header.name.size())));
  put(out, header.extraLength.value_or(size16(header.extra.size())));
}

std::string localRecord(const ArchiveEntry& entry) {
  std::string out;
  put(out, entry.local.signature);
  putSharedFields(out, entry.local);
  return out + entry.local.name + entry.local.extra + entry.data + entry.descriptor;
}

std::string centralRecord(const CentralHeader& header, std::size_t localOffset) {
  std::string out;
  put(out, header.signature);
  put(out, header.versionMadeBy);
  putSharedFields(out, header);
  put(out, header.commentLength.value_or(size16(header.comment.size())));
  put(out, header.diskStart);
  put(out, header.internalAttributes);
  put(out, header.externalAttributes);
  put(out, header.localOffset.value_or(size32(localOffset)));
  return out + header.name + header.extra + header.comment;
}

std::string endRecord(const EndRecord& end, std::size_t entries, std::size_t offset, std::size_t size) {
  std::string out;
  put(out, end.signature);
  put(out, end.disk);
  put(out, end.directoryDisk);
  put(out, end.entriesOnDisk.value_or(size16(entries)));
  put(out, end.entries.value_or(size16(entries)));
  put(out, end.directorySize.value_or(size32(size)));
  put(out, end.directoryOffset.value_or(size32(offset)));
  put(out, end.commentLength.value_or(size16(end.comment.size())));
  return out + end.comment;
}

}  // namespace

void ArchiveEntry::both(const std::function<void(EntryHeader&)>& change) {
  change(local);
  change(central);
}

void ArchiveEntry::useDescriptor() {
  both([](EntryHeader& header) { header.flags |= 0x08; });
  put(descriptor, std::uint32_t{0x08074b50});
  for (std::uint32_t* field : {&local.crc, &local.compressedSize, &local.uncompressedSize}) {
    put(descriptor, std::exchange(*field, 0));
  }
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
