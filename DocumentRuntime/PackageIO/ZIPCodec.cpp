#include "DocumentRuntime/PackageIO/ZIPCodec.hpp"

#include <memory>
#include <new>

#include <libdeflate.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo::BoundedZIP {
namespace {

/// The fastest level of the library that compresses at all.
constexpr int deflateLevel = 1;

/// The library does not use the last bytes of its output buffer.
constexpr std::size_t unusedOutputBytes = 8;

template <auto release>
struct Release {
  void operator()(auto* pointer) const { release(pointer); }
};
using Decompressor = std::unique_ptr<libdeflate_decompressor, Release<libdeflate_free_decompressor>>;
using Compressor = std::unique_ptr<libdeflate_compressor, Release<libdeflate_free_compressor>>;

}  // namespace

ByteBuffer inflateRaw(ByteView input, std::size_t size) {
  const Decompressor decompressor(libdeflate_alloc_decompressor());
  if (!decompressor) throw std::bad_alloc();

  ByteBuffer output(size);
  std::size_t consumed = 0;
  std::size_t produced = 0;
  const libdeflate_result result = libdeflate_deflate_decompress_ex(
      decompressor.get(), input.data(), input.size(), output.data(), size, &consumed, &produced);
  // Bytes after the end of the stream could hide data from other readers.
  if (result != LIBDEFLATE_SUCCESS || produced != size || consumed != input.size()) {
    throw DocumentError::invalidArchive("deflate length mismatch");
  }
  return output;
}

std::optional<ByteBuffer> deflateRaw(ByteView input) {
  if (input.empty()) return std::nullopt;
  const Compressor compressor(libdeflate_alloc_compressor(deflateLevel));
  if (!compressor) throw std::bad_alloc();

  ByteBuffer output(input.size() + unusedOutputBytes);
  const std::size_t size =
      libdeflate_deflate_compress(compressor.get(), input.data(), input.size(), output.data(), output.size());
  if (size == 0 || size >= input.size()) return std::nullopt;
  return ByteBuffer::copyOf(output.view().first(size));
}

std::uint32_t checksum(ByteView bytes) {
  return libdeflate_crc32(0, bytes.data(), bytes.size());
}

}  // namespace zelvo::BoundedZIP
