#include "DocumentRuntime/PackageIO/ZIPCodec.hpp"

#define ZLIB_CONST  // the library's input pointer is then a pointer to const
#include <algorithm>
#include <memory>
#include <new>

#include <zlib.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo::BoundedZIP {
namespace {

/// Raw deflate with the full window: no header, no trailer.
constexpr int rawWindowBits = -15;

/// The fastest level: a quarter more bytes than the default level, in a quarter of its time.
constexpr int deflateLevel = 1;
constexpr int defaultMemoryLevel = 8;

struct InflateEnd {
  void operator()(z_stream* stream) const { inflateEnd(stream); }
};
struct DeflateEnd {
  void operator()(z_stream* stream) const { deflateEnd(stream); }
};

}  // namespace

ByteBuffer inflateRaw(ByteView input, std::size_t size) {
  z_stream stream{};
  const int initialized = inflateInit2(&stream, rawWindowBits);
  if (initialized == Z_MEM_ERROR) throw std::bad_alloc();
  if (initialized != Z_OK) throw DocumentError::invalidArchive("decompressor initialization");
  const std::unique_ptr<z_stream, InflateEnd> ending(&stream);

  ByteBuffer output(size);
  std::uint8_t spare = 0;  // an empty stream is read to its end only with space for a byte
  stream.next_in = input.data();
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = size == 0 ? &spare : output.data();
  stream.avail_out = static_cast<uInt>(std::max<std::size_t>(size, 1));

  const int result = inflate(&stream, Z_FINISH);
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
  // Bytes after the end of the stream could hide data from other readers.
  if (result != Z_STREAM_END || stream.total_out != size || stream.total_in != input.size()) {
    throw DocumentError::invalidArchive("deflate length mismatch");
  }
  return output;
}

std::optional<ByteBuffer> deflateRaw(ByteView input) {
  if (input.empty()) return std::nullopt;
  z_stream stream{};
  // The parameters are constant, so only an allocation can fail.
  if (deflateInit2(&stream, deflateLevel, Z_DEFLATED, rawWindowBits, defaultMemoryLevel,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
  const std::unique_ptr<z_stream, DeflateEnd> ending(&stream);

  ByteBuffer output(input.size() - 1);
  std::uint8_t spare = 0;  // the output pointer must not be null
  stream.next_in = input.data();
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = output.size() == 0 ? &spare : output.data();
  stream.avail_out = static_cast<uInt>(output.size());
  if (deflate(&stream, Z_FINISH) != Z_STREAM_END) return std::nullopt;
  return ByteBuffer::copyOf(output.view().first(stream.total_out));
}

std::uint32_t checksum(ByteView bytes) {
  return static_cast<std::uint32_t>(crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
}

}  // namespace zelvo::BoundedZIP
