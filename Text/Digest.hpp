#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace zelvo::Digest {

/// The SHA-256 digest as 64 lower-case hexadecimal digits.
std::string sha256(std::span<const std::uint8_t> bytes);

}  // namespace zelvo::Digest
