#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "zelvo/Complaint.hpp"

/// Where a command writes the document that it was asked for: a file, or "-" for standard output.
namespace zelvo::DocumentOutput {

bool isStandardOutput(const std::string& path);

/// Why no document may be written there: to be looked at before anything is read.
std::optional<Complaint> check(const std::string& path);

/// Writes the document. Below the file's name, `description` is printed; on standard output nothing else
/// stands. A file that cannot be written stays what it was.
std::optional<Complaint> deliver(const std::string& path, ByteView document, std::string_view description);

/// Delivers what `author` makes in a confined child (see `runConfined`); `format` names it to people. Says
/// why there is no document, if so.
ExitStatus deliverAuthored(const std::string& path, const std::string& format,
                           const std::function<ByteBuffer()>& author);

}  // namespace zelvo::DocumentOutput
