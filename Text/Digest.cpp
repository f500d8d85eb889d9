#include "Text/Digest.hpp"

#include <nettle/sha2.h>

#include "Text/ASCII.hpp"

namespace zelvo::Digest {

SHA256 sha256Bytes(std::span<const std::uint8_t> bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), bytes.data());
  SHA256 digest = {};
  sha256_digest(&context, digest.size(), digest.data());
  return digest;
}

std::string sha256(std::span<const std::uint8_t> bytes) {
  const SHA256 digest = sha256Bytes(bytes);
  std::string text;
  text.reserve(2 * digest.size());
  for (const std::uint8_t byte : digest) {
    const auto digits = ASCII::hexadecimal(byte);
    text.append(digits.data(), digits.size());
  }
  return text;
}

}  // namespace zelvo::Digest
