#pragma once

#if !ZELVO_REPLAY
#include "fuzz/PackageMutator.hpp"

// A fuzz target whose source includes this is given mutated packages: libFuzzer looks for this name in the
// target itself, not in libraries, where nothing else would call it.
extern "C" [[gnu::used]] inline std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                                                    std::size_t maximumSize, unsigned seed) {
  return zelvo::fuzzing::mutatePackage(data, size, maximumSize, seed);
}
#endif
