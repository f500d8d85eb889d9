#pragma once

#include <cstddef>

#include "DocumentRuntime/Coding/JsonValue.hpp"

/// Limits on the files that a host supplies with a model's result. A model's result has a limit in bytes. A
/// host's file has none, and a few of its bytes may become many when they are decoded or drawn on every
/// slide.
namespace zelvo::HostFileLimits {

/// The limit of a text that slides repeat, in bytes: 2,000 characters, the limit of a cell, of four bytes
/// each.
inline constexpr std::size_t maximumTextBytes = 8'000;

/// The value's elements. Throws `DecodingError` unless it is an array of at most `maximumCount`.
JsonArray array(JsonValue value, std::size_t maximumCount);

/// Throws `DecodingError` unless the value is a string of at most `maximumTextBytes`.
void checkText(JsonValue value);

/// The same, with a limit of 2,000 characters.
void checkCellText(JsonValue value);

}  // namespace zelvo::HostFileLimits
