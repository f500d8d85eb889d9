#pragma once

#include <cstdint>

namespace zelvo {

/// A number that no outsider can guess, the same throughout a process, against documents made to collide in a
/// hash table. Asks the operating system once, at the first call; never 0.
std::uint64_t hashSalt();

}  // namespace zelvo
