#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Output/Result.hpp"

/// The destination of a document: a file, or "-" for standard output; with `noClobber` only a new file.
namespace zelvo::DocumentOutput {

/// Refuses standard output if it is a terminal, a file that is one of the inputs, under whatever name, and
/// one that must not be replaced. Called before anything is read.
Failure check(const OutputArguments& output, const std::vector<std::string>& inputs);

/// Writes the document. For a file, prints its name and then `description`; to standard output nothing but
/// the document is written. A file that cannot be written keeps its content.
Failure write(const OutputArguments& output, ByteView document, std::string_view description);

/// Writes the document to a file and prints nothing.
Failure writeFile(const OutputArguments& output, ByteView document);

/// Writes the document that `author` makes in a confined child (see `runConfinedChild`), or reports why there
/// is none. `format` is its name, like "Excel workbook".
ExitStatus writeAuthored(const OutputArguments& output, const std::string& format,
                         const std::function<ByteBuffer()>& author);

}  // namespace zelvo::DocumentOutput
