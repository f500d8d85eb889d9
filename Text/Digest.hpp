#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace zelvo::Digest {

using SHA256 = std::array<std::uint8_t, 32>;

SHA256 sha256Bytes(std::span<const std::uint8_t> bytes);

/// The SHA-256 digest as 64 lower-case hexadecimal digits.
std::string sha256(std::span<const std::uint8_t> bytes);

}  // namespace zelvo::Digest
