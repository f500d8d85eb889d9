#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

/// What archives need of the compression library. Arguments are below 4 GiB, which the limits on archives and
/// entries guarantee.
namespace zelvo::BoundedZIP {

/// Expands a raw deflate stream that must give exactly `size` bytes and use up all of `input`. Throws
/// `DocumentError` invalidArchive "decompressor initialization" or "deflate length mismatch".
ByteBuffer inflateRaw(ByteView input, std::size_t size);

/// A raw deflate stream of `input` at one fixed level; none unless it is shorter than `input`.
std::optional<ByteBuffer> deflateRaw(ByteView input);

/// The CRC-32 that archives store.
std::uint32_t checksum(ByteView bytes);

}  // namespace zelvo::BoundedZIP
