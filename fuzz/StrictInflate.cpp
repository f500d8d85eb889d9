#include "fuzz/StrictInflate.hpp"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace zelvo::fuzzing {
namespace {

constexpr std::size_t maximumCodeBits = 15;
constexpr unsigned endOfBlock = 256;
constexpr std::size_t literalCodes = 286;
constexpr std::size_t distanceCodes = 30;
constexpr std::size_t fixedLiteralCodes = 288;
constexpr std::size_t fixedDistanceCodes = 32;

/// A value that codes stand for, and the extra bits that are added to it.
struct Base {
  unsigned value;
  unsigned bits;
};
constexpr std::array<Base, 29> lengthBases = {
    {{3, 0},  {4, 0},  {5, 0},  {6, 0},   {7, 0},   {8, 0},   {9, 0},   {10, 0},  {11, 1}, {13, 1},
     {15, 1}, {17, 1}, {19, 2}, {23, 2},  {27, 2},  {31, 2},  {35, 3},  {43, 3},  {51, 3}, {59, 3},
     {67, 4}, {83, 4}, {99, 4}, {115, 4}, {131, 5}, {163, 5}, {195, 5}, {227, 5}, {258, 0}}};
constexpr std::array<Base, distanceCodes> distanceBases = {
    {{1, 0},     {2, 0},     {3, 0},     {4, 0},      {5, 1},      {7, 1},     {9, 2},     {13, 2},
     {17, 3},    {25, 3},    {33, 4},    {49, 4},     {65, 5},     {97, 5},    {129, 6},   {193, 6},
     {257, 7},   {385, 7},   {513, 8},   {769, 8},    {1025, 9},   {1537, 9},  {2049, 10}, {3073, 10},
     {4097, 11}, {6145, 11}, {8193, 12}, {12289, 12}, {16385, 13}, {24577, 13}}};

struct StreamError {
  StreamFault fault;
};

class Bits {
 public:
  explicit Bits(ByteView bytes) : bytes_(bytes) {}

  unsigned take(unsigned count) {
    unsigned value = 0;
    for (unsigned i = 0; i < count; ++i) {
      if (at_ / 8 >= bytes_.size()) throw StreamError{StreamFault::malformed};
      value |= (unsigned{bytes_[at_ / 8]} >> at_ % 8 & 1U) << i;
      ++at_;
    }
    return value;
  }
  void toByte() { at_ = (at_ + 7) / 8 * 8; }
  void skipBytes(std::size_t count) {
    if (count > bytes_.size() - at_ / 8) throw StreamError{StreamFault::malformed};
    at_ += 8 * count;
  }

 private:
  ByteView bytes_;
  std::size_t at_ = 0;
};

/// A canonical prefix code.
class Code {
 public:
  /// An incomplete code is allowed only without symbols, or with one of one bit. `unusedBit` is the fault of
  /// that bit's other value.
  Code(std::span<const unsigned> lengths, StreamFault unusedBit) : unusedBit_(unusedBit) {
    for (const unsigned length : lengths)
      ++counts_[length];
    counts_[0] = 0;
    std::size_t free = 1;
    for (std::size_t bits = 1; bits <= maximumCodeBits; ++bits) {
      free *= 2;
      if (counts_[bits] > free) throw StreamError{StreamFault::malformed};
      free -= counts_[bits];
      for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
        if (lengths[symbol] == bits) symbols_.push_back(static_cast<unsigned>(symbol));
      }
    }
    const bool isSingle = symbols_.size() == 1 && counts_[1] == 1;
    if (free != 0 && !symbols_.empty() && !isSingle) throw StreamError{StreamFault::malformed};
  }

  bool isEmpty() const { return symbols_.empty(); }

  unsigned symbol(Bits& bits) const {
    if (symbols_.size() == 1) {
      if (bits.take(1) == 1) throw StreamError{unusedBit_};
      return symbols_.front();
    }
    std::size_t code = 0;
    std::size_t first = 0;
    std::size_t index = 0;
    for (std::size_t length = 1; length <= maximumCodeBits; ++length) {
      code |= bits.take(1);
      if (code - first < counts_[length]) return symbols_[index + code - first];
      index += counts_[length];
      first = (first + counts_[length]) * 2;
      code *= 2;
    }
    throw StreamError{StreamFault::malformed};
  }

 private:
  std::array<std::size_t, maximumCodeBits + 1> counts_{};
  std::vector<unsigned> symbols_;  ///< sorted by length, then by value
  StreamFault unusedBit_;
};

struct Codes {
  Code literals;
  Code distances;
};

Codes codesOf(std::span<const unsigned> literals, std::span<const unsigned> distances) {
  return {.literals = Code(literals, StreamFault::unusedLiteralBit),
          .distances = Code(distances, StreamFault::unusedDistanceBit)};
}

Codes fixedCodes() {
  std::array<unsigned, fixedLiteralCodes> literals{};
  for (std::size_t i = 0; i < literals.size(); ++i)
    literals[i] = i < 144 ? 8 : i < 256 ? 9 : i < 280 ? 7 : 8;
  std::array<unsigned, fixedDistanceCodes> distances{};
  distances.fill(5);
  return codesOf(literals, distances);
}

Codes dynamicCodes(Bits& bits) {
  constexpr std::array<std::size_t, 19> order = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                 11, 4,  12, 3, 13, 2, 14, 1, 15};
  const std::size_t literals = bits.take(5) + 257;
  const std::size_t distances = bits.take(5) + 1;
  const std::size_t codeLengths = bits.take(4) + 4;
  if (literals > literalCodes) throw StreamError{StreamFault::tooManyLiteralLengths};
  if (distances > distanceCodes) throw StreamError{StreamFault::tooManyDistanceLengths};

  std::array<unsigned, order.size()> lengthsOfLengths{};
  for (std::size_t i = 0; i < codeLengths; ++i)
    lengthsOfLengths[order[i]] = bits.take(3);
  const Code lengthCode(lengthsOfLengths, StreamFault::malformed);
  if (lengthCode.isEmpty()) throw StreamError{StreamFault::malformed};

  std::vector<unsigned> lengths;
  while (lengths.size() < literals + distances) {
    const unsigned symbol = lengthCode.symbol(bits);
    if (symbol < 16) {
      lengths.push_back(symbol);
      continue;
    }
    if (symbol == 16 && lengths.empty()) throw StreamError{StreamFault::malformed};
    const unsigned repeated = symbol == 16 ? lengths.back() : 0;
    const std::size_t count = symbol == 16   ? 3 + bits.take(2)
                              : symbol == 17 ? 3 + bits.take(3)
                                             : 11 + bits.take(7);
    if (count > literals + distances - lengths.size()) throw StreamError{StreamFault::repeatBeyondLengths};
    lengths.insert(lengths.end(), count, repeated);
  }
  if (lengths[endOfBlock] == 0) throw StreamError{StreamFault::malformed};
  const std::span<const unsigned> all = lengths;
  return codesOf(all.first(literals), all.subspan(literals));
}

/// Reads a match and returns its length.
std::size_t match(Bits& bits, const Codes& codes, unsigned lengthSymbol, std::size_t written) {
  if (lengthSymbol >= literalCodes) throw StreamError{StreamFault::unknownLength};
  const Base& length = lengthBases[lengthSymbol - endOfBlock - 1];
  const std::size_t count = length.value + bits.take(length.bits);
  if (codes.distances.isEmpty()) throw StreamError{StreamFault::matchWithoutDistances};
  const unsigned distanceSymbol = codes.distances.symbol(bits);
  if (distanceSymbol >= distanceCodes) throw StreamError{StreamFault::unknownDistance};
  const Base& distance = distanceBases[distanceSymbol];
  if (distance.value + bits.take(distance.bits) > written) throw StreamError{StreamFault::malformed};
  return count;
}

/// Reads a block and returns the size of its content.
std::size_t compressedBlock(Bits& bits, const Codes& codes, std::size_t written) {
  const std::size_t start = written;
  while (true) {
    const unsigned symbol = codes.literals.symbol(bits);
    if (symbol == endOfBlock) return written - start;
    written += symbol < endOfBlock ? 1 : match(bits, codes, symbol, written);
  }
}

std::size_t storedBlock(Bits& bits) {
  bits.toByte();
  const unsigned size = bits.take(16);
  if (bits.take(16) != (size ^ 0xFFFFU)) throw StreamError{StreamFault::malformed};
  bits.skipBytes(size);
  return size;
}

}  // namespace

StreamFault firstFault(ByteView stream) {
  Bits bits(stream);
  std::size_t written = 0;
  try {
    for (bool isLast = false; !isLast;) {
      isLast = bits.take(1) == 1;
      const unsigned type = bits.take(2);
      if (type > 2) return StreamFault::malformed;
      written += type == 0 ? storedBlock(bits)
                           : compressedBlock(bits, type == 1 ? fixedCodes() : dynamicCodes(bits), written);
    }
  } catch (const StreamError& error) {
    return error.fault;
  }
  return StreamFault::none;
}

}  // namespace zelvo::fuzzing
