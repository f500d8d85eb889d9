#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

/// Standard base64: the alphabet with "+" and "/", padded with "=".
namespace zelvo::Base64 {

/// Decodes strictly. Returns nullopt for white space, missing or misplaced padding, other alphabets, and
/// nonzero bits after the last byte.
std::optional<ByteBuffer> decode(std::string_view text);

void append(std::string& out, ByteView bytes);

/// The number of characters that `append` writes for a number of bytes.
constexpr std::size_t encodedSize(std::size_t bytes) {
  return (bytes + 2) / 3 * 4;
}

}  // namespace zelvo::Base64
