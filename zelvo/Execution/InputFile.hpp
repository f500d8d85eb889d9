#pragma once

#include <cstddef>
#include <string>
#include <variant>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo {

struct DocumentFile {
  std::string sourceName;  ///< the file's own name, without folders; well-formed UTF-8
  ByteBuffer data;
};

/// Reads a file, or standard input for "-", but stops after `bound` bytes: whoever gets that many knows that
/// the file was too large. A failure is a message for people.
std::variant<DocumentFile, std::string> readDocument(const std::string& path, std::size_t bound);

}  // namespace zelvo
