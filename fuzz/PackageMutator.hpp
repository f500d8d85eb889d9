#pragma once

#include <cstddef>
#include <cstdint>

namespace zelvo::fuzzing {

/// Mutates an archive in place and returns its new size. Most mutations change one layer (a part's XML, a
/// deflate stream, a name) and write correct headers, sizes and checksums around it, so that they pass the
/// checks of the outer layers. The rest change any bytes.
std::size_t mutatePackage(std::uint8_t* data, std::size_t size, std::size_t maximumSize, unsigned seed);

}  // namespace zelvo::fuzzing
