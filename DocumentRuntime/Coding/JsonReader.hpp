#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Coding/JsonValue.hpp"

namespace zelvo {

/// A JSON text, read whole. Handles, and the views that they give, are valid while the document lives.
///
/// Strict JSON in UTF-8: no byte order mark, no comment, no lone surrogate, arrays and objects at most 512
/// deep.
///
/// Memory is the text and eight bytes a value. The text is the document's own storage: a string is decoded
/// where it stands, because it never gets longer, so a long one is held once.
class JsonDocument {
 public:
  static constexpr std::size_t maximumDepth = 512;
  /// What the sizes in a token can count.
  static constexpr std::size_t maximumTextBytes = (1U << 29) - 1;

  /// Throws `DecodingError` for a text that is malformed or too long.
  explicit JsonDocument(std::string text);

  // Handles point here: a document stays where it is.
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

  /// One value, or one key of an object: its value is the next token.
  struct Token {
    std::uint32_t start =
        0;  ///< string, number: offset in the text. boolean: 0 or 1. array, object: count of members
    JsonKind kind : 3 = JsonKind::null;
    std::uint32_t extent : 29 =
        0;  ///< string, number: bytes of text. array, object: tokens inside, at any depth
  };

  std::string_view text(const Token& token) const { return {text_.data() + token.start, token.extent}; }
  /// The index of the token behind the value at `index` and all that it holds.
  std::uint32_t next(std::uint32_t index) const;
  std::string path(std::uint32_t index) const;

  std::string text_;
  std::vector<Token> tokens_;
};

}  // namespace zelvo
