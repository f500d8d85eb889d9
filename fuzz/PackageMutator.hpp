#pragma once

#include <cstddef>
#include <cstdint>

namespace zelvo::fuzzing {

/// Mutates an archive in place and gives its new size. Most mutations happen inside one layer (a part's XML,
/// a deflate stream, a name) and are sealed again by true headers, sizes and checksums above it, so that they
/// get past the checks of the outer layers; the rest go anywhere.
std::size_t mutatePackage(std::uint8_t* data, std::size_t size, std::size_t maximumSize, unsigned seed);

}  // namespace zelvo::fuzzing
