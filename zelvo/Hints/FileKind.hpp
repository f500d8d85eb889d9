#pragma once

#include <cstdint>
#include <string_view>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo {

/// What a file is, from its first bytes and, in an archive, from the content types. It need not be valid.
enum class FileKind : std::uint8_t {
  unknown,
  empty,
  archive,  ///< begins as an archive does, and nothing else is known
  workbook,
  binaryWorkbook,
  wordDocument,
  presentation,
  openDocument,
  compoundFile,
  pdf,
  gzip,
  html,
  xml,
  delimitedText,
  text,
};

/// Looks at the file in a confined child. Returns `unknown` if that fails.
FileKind kindOfFile(ByteView file);

/// A sentence that says what the file is and what to do about it; empty for `archive`.
std::string_view sentence(FileKind kind);

}  // namespace zelvo
