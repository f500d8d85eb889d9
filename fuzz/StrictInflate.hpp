#pragma once

#include <cstdint>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

/// A slow decoder of raw deflate streams that names the first rule that a stream breaks.
namespace zelvo::fuzzing {

enum class StreamFault : std::uint8_t {
  none,
  // What the library of the archive reader accepts although the format forbids it.
  tooManyLiteralLengths,   ///< more than 286
  tooManyDistanceLengths,  ///< more than 30
  repeatBeyondLengths,     ///< a repeated code length continues behind the last code
  unknownLength,           ///< symbols 286 and 287 of the fixed code
  unknownDistance,         ///< symbols 30 and 31 of the fixed code
  matchWithoutDistances,   ///< a match although the distance code has no symbols
  unusedDistanceBit,       ///< the other bit of a distance code of one symbol
  unusedLiteralBit,        ///< the same of the literal and length code
  // What every reader refuses.
  malformed,
};

/// Reads until the end of the stream or its first fault.
StreamFault firstFault(ByteView stream);

}  // namespace zelvo::fuzzing
