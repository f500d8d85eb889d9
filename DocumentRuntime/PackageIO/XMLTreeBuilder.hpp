#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* xmlStructure = "XML structure";

}  // namespace zelvo::RefusalDetail

namespace zelvo::OOXML {

/// Turns a parser's events into a tree and enforces the limits on elements, depth and attributes, each before
/// anything is stored for it. The events must nest, as those of a conforming parser do.
class XMLTreeBuilder {
 public:
  /// `partBytes` is the size of the part being parsed: without a DTD no tree has more characters than
  /// that.
  explicit XMLTreeBuilder(std::size_t partBytes);

  /// Throws `DocumentError` resourceLimit "XML structure". Followed by `attribute`, `attributeCount` times.
  void start(std::string_view qualifiedName, std::size_t attributeCount);
  void attribute(std::string_view qualifiedName, std::string_view value);
  void characters(std::string_view text);
  void end();

  /// The tree, once the root has ended. Leaves the builder empty.
  XMLTree finish();

 private:
  using Storage = XMLTreeStorage;

  struct OpenElement {
    std::uint32_t element;
    std::uint32_t lastText;  ///< index into `moreText`; `none` while the text is one run
  };

  /// Names of elements repeat, so each is stored once if a few probes of this table find it, and otherwise
  /// again. So no choice of names makes a look-up slow.
  static constexpr std::size_t nameSlots = 1024;
  static constexpr std::size_t nameProbes = 4;

  std::uint32_t nameIndex(std::string_view qualifiedName);
  Storage::Span store(std::string_view text);

  std::unique_ptr<Storage> storage_;
  std::array<std::uint32_t, nameSlots> nameTable_;
  std::array<OpenElement, maximumXMLDepth> open_{};
  std::size_t depth_ = 0;
};

}  // namespace zelvo::OOXML
