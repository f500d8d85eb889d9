#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "DocumentRuntime/PackageIO/XMLCharacters.hpp"
#include "DocumentRuntime/PackageIO/XMLName.hpp"
#include "DocumentRuntime/PackageIO/XMLTreeBuilder.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::OOXML {

/// Reads one XML 1.0 document without a document type in a single pass, and passes its contents to a builder.
/// Time is linear in the text: only the names of one tag, at most 64, are compared with each other. Memory,
/// except the builder's, is fixed plus one decoded value: attributes above the limit of an element are
/// counted, not kept.
///
/// `part` must be valid UTF-8 without NUL bytes and not empty, and outlive the scanner. The NUL bytes behind
/// it end every loop, so the scanner reads without comparing its position with the end.
class XMLScanner {
 public:
  XMLScanner(const ByteBuffer& part, XMLTreeBuilder& builder)
      : at_(part.text().data()), end_(at_ + part.size()), builder_(builder) {}

  /// Throws `DocumentError` invalidArchive "malformed XML", and what the builder throws.
  void run();

 private:
  // The document, top down.
  void declaration();
  void declaredValue(std::string_view name, bool (*isValid)(std::string_view));
  void miscellaneous();
  void root();
  void markup();
  void startTag();
  void attribute();
  void checkIsNew(const XMLName& attributeName);
  void decodedValue(std::string_view attributeName, std::string_view plain, char quote);
  void decodeInValue();
  void endTag();
  void characterData();
  void section();
  void comment();
  void instruction();

  // Pieces of it.
  XMLName name();
  void restOfName(const char* start);
  bool skipSpace() { return !run(whiteSpace).empty(); }
  /// Decodes the reference at the position and moves past it. The view is valid until the next call.
  std::string_view reference();
  char32_t characterReference();
  /// Moves past the next `end` and returns the text before it.
  std::string_view upTo(std::string_view end);
  static void checkCharacters(std::string_view text);

  // The text.
  std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }
  bool take(std::string_view expected);
  bool take(char expected) {
    if (*at_ != expected) return false;
    ++at_;
    return true;
  }
  /// Moves over the bytes of these classes, which never include NUL, and returns them.
  std::string_view run(std::uint8_t classes) {
    const char* const start = at_;
    while (isOf(classes, *at_))
      ++at_;
    return {start, static_cast<std::size_t>(at_ - start)};
  }
  static void require(bool condition) {
    if (!condition) malformed();
  }
  [[noreturn]] static void malformed();

  const char* at_;  ///< the next byte; NUL at the end
  const char* end_;
  XMLTreeBuilder& builder_;
  std::array<XMLName, maximumXMLDepth> openNames_{};
  std::size_t depth_ = 0;
  std::array<XMLName, maximumXMLAttributes> attributeNames_{};  ///< of the tag being read
  std::size_t attributeCount_ = 0;
  std::string decodedValue_;
  std::string decodedReference_;
};

}  // namespace zelvo::OOXML
