#pragma once

#include <cstddef>
#include <string>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

struct InputFile {
  std::string sourceName;  ///< the file name without folders; well-formed UTF-8
  ByteBuffer data;
};

/// Reads a file, or standard input for "-", but stops after `bound` bytes: a result of that size means that
/// the file is too large.
Result<InputFile> readFile(const std::string& path, std::size_t bound);

/// Reads the whole file as above. A file of more than `mebibytes` MiB is an error.
Result<ByteBuffer> readWholeFile(const std::string& path, std::size_t mebibytes);

}  // namespace zelvo
