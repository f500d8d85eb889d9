#pragma once

#include <optional>
#include <string>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo {

/// Writes a file beside its target and then renames it, so that whoever looks finds all of it or what was
/// there before. A failure is a message for people, and leaves nothing behind.
std::optional<std::string> writeFile(const std::string& path, ByteView content);

}  // namespace zelvo
