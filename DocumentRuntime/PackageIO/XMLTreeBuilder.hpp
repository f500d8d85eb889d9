#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "DocumentRuntime/PackageIO/XMLName.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* xmlStructure = "XML structure";

}  // namespace zelvo::RefusalDetail

namespace zelvo::OOXML {

/// Turns a parser's events into a tree and enforces the limits on elements, depth and attributes. The events
/// must nest, as those of a conforming parser do.
///
/// Names, and texts that are not said to be decoded, must be views into the part.
class XMLTreeBuilder {
 public:
  /// Shares the part, which must not be changed any more and has at most 2^24 bytes: without a DTD no tree
  /// has more characters than that.
  explicit XMLTreeBuilder(const ByteBuffer& part);

  /// An attribute of the element that starts next. Must be called for the first `maximumXMLAttributes` only.
  void attribute(std::string_view name, std::string_view value) { add(name, inPart(value)); }
  void decodedAttribute(std::string_view name, std::string_view value) { add(name, copied(value)); }
  /// `attributeCount` counts all attributes of the element, those above the limit included. Throws
  /// `DocumentError` resourceLimit "XML structure".
  void start(const XMLName& qualifiedName, std::size_t attributeCount) {
    if (storage_->elements.size() >= maximumXMLElements || depth_ >= maximumXMLDepth ||
        attributeCount > maximumXMLAttributes) {
      refuseStructure();
    }
    const auto index = static_cast<std::uint32_t>(storage_->elements.size());
    const auto count = static_cast<std::uint32_t>(attributeCount);
    storage_->elements.push(
        {.name = nameIndex(qualifiedName),
         .end = index + 1,
         .firstAttribute = static_cast<std::uint32_t>(storage_->attributes.size()) - count,
         .attributeCount = count,
         .text = {0, 0},
         .moreText = Storage::none});
    open_[depth_++] = {index, Storage::none};
  }
  /// Character data directly inside the innermost open element.
  void characters(std::string_view text) {
    if (text.empty()) return;
    Span& last = lastText();
    const Span added = inPart(text);
    if (last.length == 0) {
      last = added;
    } else if (last.offset + last.length == added.offset) {
      last.length += added.length;
    } else {
      join(text);
    }
  }
  void decodedCharacters(std::string_view text);
  void end() {
    --depth_;
    storage_->elements[open_[depth_].element].end = static_cast<std::uint32_t>(storage_->elements.size());
  }

  /// The tree, once the root has ended. Leaves the builder empty.
  XMLTree finish();

 private:
  using Storage = XMLTreeStorage;
  using Span = Storage::Span;

  struct OpenElement {
    std::uint32_t element;
    std::uint32_t lastText;  ///< index into `moreText`; `none` while the text is one run
  };

  /// Names of elements repeat, so each is stored once if a few probes of this table find it, and otherwise
  /// again. So no choice of names makes a look-up slow.
  static constexpr std::size_t nameSlots = 1024;
  static constexpr std::size_t nameProbes = 4;

  [[noreturn]] static void refuseStructure();
  std::uint32_t nameIndex(const XMLName& qualifiedName);
  void add(std::string_view name, Span value) {
    storage_->attributes.push({inPart(name).offset, static_cast<std::uint32_t>(name.size()), value});
  }
  Span inPart(std::string_view text) const {
    return {static_cast<std::uint32_t>(text.data() - storage_->source()),
            static_cast<std::uint32_t>(text.size())};
  }
  Span copied(std::string_view text);
  /// The last piece of the innermost open element's text.
  Span& lastText() {
    const OpenElement& open = open_[depth_ - 1];
    return open.lastText == Storage::none ? storage_->elements[open.element].text
                                          : storage_->moreText[open.lastText].span;
  }
  /// Appends to a text that is not empty, and copies it, so that it is one view again if possible.
  void join(std::string_view text);

  std::unique_ptr<Storage> storage_;
  std::array<std::uint32_t, nameSlots> nameTable_;
  std::array<OpenElement, maximumXMLDepth> open_{};
  std::size_t depth_ = 0;
};

}  // namespace zelvo::OOXML
