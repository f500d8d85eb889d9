#include "Text/Digest.hpp"

#include <array>
#include <string_view>

#include <nettle/sha2.h>

namespace zelvo::Digest {

std::string sha256(std::span<const std::uint8_t> bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), bytes.data());
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest = {};
  sha256_digest(&context, digest.size(), digest.data());

  constexpr std::string_view hexadecimal = "0123456789abcdef";
  std::string text;
  text.reserve(2 * digest.size());
  for (const std::uint8_t byte : digest) {
    text += hexadecimal[byte >> 4];
    text += hexadecimal[byte & 0xF];
  }
  return text;
}

}  // namespace zelvo::Digest
