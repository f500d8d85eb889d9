#pragma once

#include <cstddef>
#include <cstdint>

/// What the reader and the writer of archives must agree on: the three records of the format and their
/// constants. Every field is little-endian and unaligned.
namespace zelvo::BoundedZIP {

inline constexpr std::uint32_t localSignature = 0x04034b50;
inline constexpr std::uint32_t centralSignature = 0x02014b50;
inline constexpr std::uint32_t endSignature = 0x06054b50;

// The records without what varies in length behind them: name, extra field, comment.
inline constexpr std::size_t localHeaderBytes = 30;
inline constexpr std::size_t centralHeaderBytes = 46;
inline constexpr std::size_t endRecordBytes = 22;

inline constexpr std::uint16_t storedMethod = 0;
inline constexpr std::uint16_t deflatedMethod = 8;

}  // namespace zelvo::BoundedZIP
