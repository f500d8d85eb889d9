#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/ZIPCodec.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::BoundedZIP {
namespace {

constexpr std::uint16_t version20 = 20;  ///< 2.0, the first version with folders; every reader supports it
constexpr std::uint16_t utf8NamesFlag = 0x0800;
constexpr std::uint16_t midnight = 0;
constexpr std::uint16_t january1st1980 = 0x21;  ///< the earliest date of the format

/// An entry and its position. Sizes and offsets fit 32 bits, because the whole archive is at most 32 MiB.
struct Record {
  std::string_view name;
  ByteView data;  ///< as stored in the archive
  std::size_t expandedBytes = 0;
  std::uint16_t method = storedMethod;
  std::uint32_t crc = 0;
  std::size_t localOffset = 0;
};

struct Layout {
  std::vector<Record> records;
  OutputSize size;
};

/// Sorts the parts and assigns their positions. All checks are here, before memory is allocated for the
/// archive.
Layout layOut(std::vector<Record> records, const std::stop_token& stop) {
  if (records.empty() || records.size() > maximumEntries) throw DocumentError::resourceLimit("part count");

  Layout layout{.records = std::move(records), .size = {}};
  std::stable_sort(layout.records.begin(), layout.records.end(),
                   [](const Record& a, const Record& b) { return Unicode::sortsBefore(a.name, b.name); });

  for (Record& record : layout.records) {
    throwIfCancelled(stop);
    if (!safeName(record.name) || record.expandedBytes > maximumEntryBytes)
      throw DocumentError::resourceLimit("output part");
    record.localOffset = layout.size.localBytes();
    layout.size.add(record.name.size(), record.data.size());
  }
  return layout;
}

/// Fills a buffer from front to back. Its size must be that of the layout.
class Output {
 public:
  explicit Output(ByteBuffer& buffer) : next_(buffer.data()) {}

  void le16(std::uint16_t value) {
    *next_++ = static_cast<std::uint8_t>(value);
    *next_++ = static_cast<std::uint8_t>(value >> 8);
  }
  void le32(std::size_t value) {
    le16(static_cast<std::uint16_t>(value));
    le16(static_cast<std::uint16_t>(value >> 16));
  }
  void append(ByteView bytes) { next_ = std::copy(bytes.begin(), bytes.end(), next_); }

 private:
  std::uint8_t* next_;
};

/// The sequence of fields that local and central headers share.
void appendSharedFields(Output& out, const Record& record) {
  out.le16(version20);  // needed to extract
  out.le16(utf8NamesFlag);
  out.le16(record.method);
  out.le16(midnight);
  out.le16(january1st1980);
  out.le32(record.crc);
  out.le32(record.data.size());
  out.le32(record.expandedBytes);
  out.le16(static_cast<std::uint16_t>(record.name.size()));
  out.le16(0);  // extra field length
}

void appendLocalEntry(Output& out, const Record& record) {
  out.le32(localSignature);
  appendSharedFields(out, record);
  out.append(bytesOf(record.name));
  out.append(record.data);
}

void appendCentralHeader(Output& out, const Record& record) {
  out.le32(centralSignature);
  out.le16(version20);  // made by
  appendSharedFields(out, record);
  out.le16(0);  // comment length
  out.le16(0);  // disk number
  out.le16(0);  // internal attributes
  out.le32(0);  // external attributes
  out.le32(record.localOffset);
  out.append(bytesOf(record.name));
}

void appendEndRecord(Output& out, const Layout& layout) {
  const auto entries = static_cast<std::uint16_t>(layout.records.size());
  out.le32(endSignature);
  out.le16(0);        // this disk
  out.le16(0);        // the directory's disk
  out.le16(entries);  // on this disk
  out.le16(entries);
  out.le32(layout.size.centralBytes());
  out.le32(layout.size.localBytes());
  out.le16(0);  // comment length
}

ByteBuffer archiveOf(const Layout& layout, const std::stop_token& stop) {
  ByteBuffer archive(layout.size.archiveBytes());
  Output out(archive);
  for (const Record& record : layout.records) {
    throwIfCancelled(stop);
    appendLocalEntry(out, record);
  }
  for (const Record& record : layout.records)
    appendCentralHeader(out, record);
  appendEndRecord(out, layout);
  return archive;
}

/// Whether the reader's rule on the ratio accepts these sizes.
bool keepsRatio(std::size_t expandedBytes, std::size_t compressedBytes) {
  return expandedBytes <= compressedBytes * maximumExpansionRatio + expansionAllowanceBytes;
}

}  // namespace

void OutputSize::checkPart(std::size_t bytes) {
  if (bytes > maximumEntryBytes) throw DocumentError::resourceLimit("output part");
}

void OutputSize::add(std::size_t nameBytes, std::size_t partBytes) {
  checkPart(partBytes);
  localBytes_ += localHeaderBytes + nameBytes + partBytes;
  centralBytes_ += centralHeaderBytes + nameBytes;
  if (archiveBytes() > maximumArchiveBytes) throw DocumentError::resourceLimit("output archive");
}

std::size_t OutputSize::archiveBytes() const {
  return localBytes_ + centralBytes_ + endRecordBytes;
}

ByteBuffer write(const PartMap& parts, const std::stop_token& stop) {
  std::vector<Record> records;
  records.reserve(parts.size());
  for (const auto& [name, bytes] : parts)
    records.push_back({.name = name, .data = bytes.view(), .expandedBytes = bytes.size()});
  Layout layout = layOut(std::move(records), stop);
  for (Record& record : layout.records)
    record.crc = checksum(record.data);
  return archiveOf(layout, stop);
}

PackedPart packed(std::string name, ByteView bytes) {
  PackedPart part{.name = std::move(name), .crc = checksum(bytes), .expandedBytes = bytes.size()};
  auto deflated = deflateRaw(bytes);
  if (deflated && keepsRatio(bytes.size(), deflated->size())) {
    part.isDeflated = true;
    part.data = *std::move(deflated);
  } else {
    part.data = ByteBuffer::copyOf(bytes);
  }
  return part;
}

ByteBuffer writePacked(const std::vector<PackedPart>& parts, const std::stop_token& stop) {
  std::vector<Record> records;
  records.reserve(parts.size());
  for (const PackedPart& part : parts) {
    records.push_back({.name = part.name,
                       .data = part.data.view(),
                       .expandedBytes = part.expandedBytes,
                       .method = part.isDeflated ? deflatedMethod : storedMethod,
                       .crc = part.crc});
  }
  return archiveOf(layOut(std::move(records), stop), stop);
}

}  // namespace zelvo::BoundedZIP
