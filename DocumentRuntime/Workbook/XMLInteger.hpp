#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zelvo {

/// An integer as attributes hold it: ASCII digits with an optional "-", within 64 bits; none for anything
/// else.
inline std::optional<std::int64_t> xmlInteger(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

inline std::optional<std::int64_t> xmlInteger(std::optional<std::string_view> text) {
  return text ? xmlInteger(*text) : std::nullopt;
}

/// A flag as attributes hold it: set by exactly "1" and "true".
inline bool xmlFlag(std::optional<std::string_view> text) {
  return text == "1" || text == "true";
}

}  // namespace zelvo
