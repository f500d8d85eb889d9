#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "zelvo/Output/Result.hpp"

/// The destination of a document: a file, or "-" for standard output.
namespace zelvo::DocumentOutput {

/// Refuses standard output if it is a terminal. Called before anything is read.
Failure check(const std::string& path);

/// Writes the document. For a file, prints its name and then `description`; to standard output nothing but
/// the document is written. A file that cannot be written keeps its content.
Failure write(const std::string& path, ByteView document, std::string_view description);

/// Writes the document to a file and prints nothing.
Failure writeFile(const std::string& path, ByteView document);

/// Writes the document that `author` makes in a confined child (see `runConfinedChild`), or reports why there
/// is none. `format` is its name, like "Excel workbook".
ExitStatus writeAuthored(const std::string& path, const std::string& format,
                         const std::function<ByteBuffer()>& author);

}  // namespace zelvo::DocumentOutput
