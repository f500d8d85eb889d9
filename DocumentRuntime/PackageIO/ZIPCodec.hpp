#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

/// The constants of the format that the reader and the writer share, and the functions of the compression
/// library. Every field of a record is little-endian and unaligned. Sizes are below 4 GiB, which the limits
/// on archives and entries guarantee.
namespace zelvo::BoundedZIP {

inline constexpr std::uint32_t localSignature = 0x04034b50;
inline constexpr std::uint32_t centralSignature = 0x02014b50;
inline constexpr std::uint32_t endSignature = 0x06054b50;

// The fixed parts of the records, without name, extra field and comment.
inline constexpr std::size_t localHeaderBytes = 30;
inline constexpr std::size_t centralHeaderBytes = 46;
inline constexpr std::size_t endRecordBytes = 22;

inline constexpr std::uint16_t storedMethod = 0;
inline constexpr std::uint16_t deflatedMethod = 8;

/// Expands a raw deflate stream that must yield exactly `size` bytes and consume all of `input`. Throws
/// `DocumentError` invalidArchive "deflate length mismatch", or `std::bad_alloc`.
ByteBuffer inflateRaw(ByteView input, std::size_t size);

/// A raw deflate stream of `input` at one fixed level. Returns nullopt unless it is shorter than `input`.
std::optional<ByteBuffer> deflateRaw(ByteView input);

/// The CRC-32 that archives store.
std::uint32_t checksum(ByteView bytes);

}  // namespace zelvo::BoundedZIP
