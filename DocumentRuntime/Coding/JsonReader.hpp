#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Coding/JsonValue.hpp"

namespace zelvo {

/// A parsed JSON text. Handles, and the views that they return, are valid while the document lives.
///
/// Strict JSON in UTF-8: no byte order mark, no comment, no lone surrogate, arrays and objects at most 512
/// deep.
///
/// Memory is the text and four bytes a value or key, at most three times the text. Strings are decoded in
/// place in the text, since they never become longer, so a long one is stored once.
class JsonDocument {
 public:
  static constexpr std::size_t maximumDepth = 512;
  /// The largest size that a token can store.
  static constexpr std::size_t maximumTextBytes = (1U << 29) - 1;

  /// Throws `DecodingError` for a text that is malformed or too long.
  explicit JsonDocument(std::string text);

  // Handles point to the document: it must not be moved.
  JsonDocument(const JsonDocument&) = delete;
  JsonDocument(JsonDocument&&) = delete;
  JsonDocument& operator=(const JsonDocument&) = delete;
  JsonDocument& operator=(JsonDocument&&) = delete;
  ~JsonDocument() = default;

  JsonValue root() const { return {*this, 0}; }

 private:
  friend class JsonValue;
  friend class JsonArray;
  friend class JsonObject;
  class Builder;

  /// One value, or one key of an object: its value is the next token. Small, because a hostile
  /// text can have a value in every two bytes ("0,").
  class Token {
   public:
    Token(JsonKind kind, std::size_t value)
        : bits_(static_cast<std::uint32_t>(value << kindBits) | static_cast<std::uint32_t>(kind)) {}

    JsonKind kind() const { return static_cast<JsonKind>(bits_ & ((1U << kindBits) - 1)); }
    /// string, number: offset in the text. boolean: 0 or 1. array, object: tokens inside, at any depth
    std::uint32_t value() const { return bits_ >> kindBits; }

   private:
    static constexpr unsigned kindBits = 3;
    static_assert(static_cast<unsigned>(JsonKind::object) < (1U << kindBits));
    // No offset and no count of tokens is larger than the text.
    static_assert(maximumTextBytes <= UINT32_MAX >> kindBits);

    std::uint32_t bits_;
  };
  static_assert(sizeof(Token) == 4);

  std::string_view text(const Token& token) const;
  /// The index of the first token after the value at `index` and everything inside it.
  std::uint32_t next(std::uint32_t index) const;
  /// The path of a value, cut to the length of a path in an error.
  std::string path(std::uint32_t index) const;

  std::string text_;
  std::vector<Token> tokens_;
};

}  // namespace zelvo
