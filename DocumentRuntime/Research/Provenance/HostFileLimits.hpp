#pragma once

#include <cstddef>

#include "DocumentRuntime/Coding/JsonValue.hpp"

/// Limits on the files that a host supplies with a model's result. A model's result has a limit in bytes; a
/// host's file has none, and a few of its bytes may become many when decoded or drawn on every slide.
namespace zelvo::HostFileLimits {

/// Bytes of a text that slides repeat: 2,000 characters, the most that a cell may hold, of four bytes each.
inline constexpr std::size_t maximumTextBytes = 8'000;

/// The value's elements. Throws `DecodingError`, also where there are more.
JsonArray array(JsonValue value, std::size_t maximumCount);

/// Throws `DecodingError` unless the value is a string of at most `maximumTextBytes`.
void checkText(JsonValue value);

/// The same, and of at most 2,000 characters.
void checkCellText(JsonValue value);

}  // namespace zelvo::HostFileLimits
