#include "DocumentRuntime/Coding/Base64.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zelvo::Base64 {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// Marks an invalid character: a bit above the 24 of a group. It accumulates by "or" and is checked once.
constexpr std::uint32_t invalid = 1U << 31;

/// Maps a character to its bits in a group of 24, for one of the four positions.
using PlaceTable = std::array<std::uint32_t, 256>;

constexpr PlaceTable placeTable(unsigned shift) {
  PlaceTable table{};
  table.fill(invalid);
  for (std::uint32_t i = 0; i < alphabet.size(); ++i) {
    table[static_cast<unsigned char>(alphabet[i])] = i << shift;
  }
  return table;
}

constexpr PlaceTable place0 = placeTable(18);
constexpr PlaceTable place1 = placeTable(12);
constexpr PlaceTable place2 = placeTable(6);
constexpr PlaceTable place3 = placeTable(0);

/// The two characters of each half of a group.
constexpr auto halves = [] {
  std::array<std::array<char, 2>, 4096> table{};
  for (std::size_t bits = 0; bits < table.size(); ++bits)
    table[bits] = {alphabet[bits >> 6], alphabet[bits & 0x3F]};
  return table;
}();

void writeGroup(char* text, std::uint32_t bits) {
  std::memcpy(text, halves[bits >> 12].data(), 2);
  std::memcpy(text + 2, halves[bits & 0xFFF].data(), 2);
}

std::uint32_t group(const unsigned char* text) {
  return place0[text[0]] | place1[text[1]] | place2[text[2]] | place3[text[3]];
}

std::uint8_t byteOf(std::uint32_t group, unsigned shift) {
  return static_cast<std::uint8_t>(group >> shift);
}

}  // namespace

std::optional<ByteBuffer> decode(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  if (text.empty()) return ByteBuffer();
  const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  const std::size_t wholeGroups = text.size() / 4 - (padding > 0 ? 1 : 0);

  ByteBuffer bytes(text.size() / 4 * 3 - padding);
  const auto* in = reinterpret_cast<const unsigned char*>(text.data());
  std::uint8_t* out = bytes.data();
  std::uint32_t seen = 0;
  for (std::size_t i = 0; i < wholeGroups; ++i, in += 4, out += 3) {
    const std::uint32_t bits = group(in);
    seen |= bits;
    out[0] = byteOf(bits, 16);
    out[1] = byteOf(bits, 8);
    out[2] = byteOf(bits, 0);
  }
  if (padding > 0) {
    const std::uint32_t bits = place0[in[0]] | place1[in[1]] | (padding == 1 ? place2[in[2]] : 0);
    const std::uint32_t trailing = padding == 1 ? 0xFFU : 0xFFFFU;
    if ((bits & trailing) != 0) return std::nullopt;
    seen |= bits;
    out[0] = byteOf(bits, 16);
    if (padding == 1) out[1] = byteOf(bits, 8);
  }
  if ((seen & invalid) != 0) return std::nullopt;
  return bytes;
}

void append(std::string& out, ByteView bytes) {
  const std::size_t start = out.size();
  out.resize(start + encodedSize(bytes.size()));
  char* text = out.data() + start;
  const std::uint8_t* in = bytes.data();
  std::size_t left = bytes.size();
  for (; left >= 3; left -= 3, in += 3, text += 4) {
    writeGroup(text, std::uint32_t{in[0]} << 16 | std::uint32_t{in[1]} << 8 | in[2]);
  }
  if (left == 0) return;
  writeGroup(text, std::uint32_t{in[0]} << 16 | (left == 2 ? std::uint32_t{in[1]} << 8 : 0));
  text[3] = '=';
  if (left == 1) text[2] = '=';
}

}  // namespace zelvo::Base64
