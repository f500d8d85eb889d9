#pragma once

#include <cstddef>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Support/HeapUse.hpp"

/// Memory limits of inputs. A target keeps one during the code under test; an allocation above it aborts.
/// Each limit is at most the documented bound for inputs of any size, and tighter for the small inputs of a
/// fuzzer.
namespace zelvo::fuzzing {

/// The expanded sizes that the entries of an archive and of the workbooks in it declare, up to the reader's
/// limits.
std::size_t expandedBytes(ByteView archive);

/// For archives of documents, with `resultBytes` for the result.
testing::HeapLimit documentMemory(ByteView archive, std::size_t resultBytes = 0);

/// For XML outside an archive.
testing::HeapLimit partMemory(std::size_t bytes);

/// For messages between host and worker.
testing::HeapLimit messageMemory(std::size_t bytes);

/// For the JSON of research results.
testing::HeapLimit researchMemory(std::size_t bytes);

/// For decks that are rendered and read back.
testing::HeapLimit presentationMemory(std::size_t bytes);

}  // namespace zelvo::fuzzing
