#pragma once

#if !ZELVO_REPLAY
#include "fuzz/PackageMutator.hpp"

// A fuzz target whose source includes this header gets mutated packages. The function is defined in the
// target because libFuzzer finds it by name, and a library's copy, which nothing calls, would not be linked.
extern "C" [[gnu::used]] inline std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                                                    std::size_t maximumSize, unsigned seed) {
  return zelvo::fuzzing::mutatePackage(data, size, maximumSize, seed);
}
#endif
