#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zelvo {

/// Parses an integer of an attribute: ASCII digits with an optional "-", within 64 bits. Returns nullopt for
/// any other text.
inline std::optional<std::int64_t> xmlInteger(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

inline std::optional<std::int64_t> xmlInteger(std::optional<std::string_view> text) {
  return text ? xmlInteger(*text) : std::nullopt;
}

/// Parses a flag of an attribute: true for exactly "1" and "true".
inline bool xmlFlag(std::optional<std::string_view> text) {
  return text == "1" || text == "true";
}

}  // namespace zelvo
