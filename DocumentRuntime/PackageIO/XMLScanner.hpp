#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "DocumentRuntime/PackageIO/XMLTreeBuilder.hpp"

namespace zelvo::OOXML {

/// Reads one XML 1.0 document without a document type in a single pass, and passes its contents to a builder.
/// Time is linear in the text: only the names of one tag, at most 64, are compared with each other. Memory,
/// except the builder's, is fixed plus one tag's values: attributes above the limit of an element are
/// counted, not kept.
///
/// `text` must be valid UTF-8 without NUL bytes, and outlive the scanner.
class XMLScanner {
 public:
  XMLScanner(std::string_view text, XMLTreeBuilder& builder) : text_(text), builder_(builder) {}

  /// Throws `DocumentError` invalidArchive "malformed XML", and what the builder throws.
  void run();

 private:
  struct Attribute {
    std::string_view name;
    std::string_view value;    ///< if it needs no decoding
    std::size_t decodedStart;  ///< in `decodedValues_`, if it does
    std::size_t decodedLength;
    std::uint32_t nameHash;
  };

  // The document, top down.
  void declaration();
  void declaredValue(std::string_view name, bool (*isValid)(std::string_view));
  void miscellaneous();
  void root();
  void markup();
  void startTag();
  void attribute();
  Attribute attributeValue(char quote);
  void decodeInValue();
  void endTag();
  void characterData();
  void section();
  void comment();
  void instruction();

  // Pieces of it.
  std::string_view name();
  bool skipSpace();
  /// Decodes the reference at the position and moves past it. The view is valid until the next call.
  std::string_view reference();
  char32_t characterReference();
  /// Moves past the next `end` and returns the text before it.
  std::string_view upTo(std::string_view end);
  static void checkCharacters(std::string_view text);

  // The text.
  bool isAtEnd() const { return position_ == text_.size(); }
  /// The next byte; NUL at the end, since the text has no NUL.
  char peek() const { return isAtEnd() ? '\0' : text_[position_]; }
  std::string_view rest() const { return text_.substr(position_); }
  bool take(std::string_view expected);
  bool take(char expected) {
    if (peek() != expected) return false;
    ++position_;
    return true;
  }
  /// Moves over the bytes of these classes and returns them.
  std::string_view run(std::uint8_t classes);
  static void require(bool condition) {
    if (!condition) malformed();
  }
  [[noreturn]] static void malformed();

  std::string_view text_;
  XMLTreeBuilder& builder_;
  std::size_t position_ = 0;
  std::array<std::string_view, maximumXMLDepth> openNames_{};
  std::size_t depth_ = 0;
  std::array<Attribute, maximumXMLAttributes> attributes_{};  ///< of the tag being read
  std::size_t attributeCount_ = 0;
  std::string decodedValues_;  ///< of the tag being read
  std::string decodedReference_;
};

}  // namespace zelvo::OOXML
