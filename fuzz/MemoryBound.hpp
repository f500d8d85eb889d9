#pragma once

#include <cstddef>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Support/HeapUse.hpp"

/// How much memory an input may cost, for targets to hold around the code under test. What takes more aborts
/// where it allocates it. Each is at most what the program promises for inputs of any size, and as much less
/// for the small inputs that a fuzzer makes as correct code allows.
namespace zelvo::fuzzing {

/// What the entries of an archive and of the workbooks in it claim to expand to, as far as the reader lets
/// them.
std::size_t expandedBytes(ByteView archive);

/// For archives of documents, and a result of so many bytes.
testing::HeapLimit documentMemory(ByteView archive, std::size_t resultBytes = 0);

/// For XML outside an archive.
testing::HeapLimit partMemory(std::size_t bytes);

/// For messages between host and worker.
testing::HeapLimit messageMemory(std::size_t bytes);

/// For what research results are decoded from.
testing::HeapLimit researchMemory(std::size_t bytes);

/// For decks, drawn and read back.
testing::HeapLimit presentationMemory(std::size_t bytes);

}  // namespace zelvo::fuzzing
