#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "DocumentRuntime/PackageIO/GrowingArray.hpp"
#include "DocumentRuntime/PackageIO/XMLName.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo {

/// The memory layout of a parsed part: the part itself and flat arrays that refer to it and to each other by
/// index. Elements are in document order, so the children of element i are i + 1, then the element after each
/// child's subtree, up to the end of i's own.
///
/// A part has at most 2^24 bytes, and every byte of it adds at most one byte to `decoded` (a decoded
/// reference is never longer), which bounds all offsets and counts.
struct XMLTreeStorage {
  /// A text in the part or, if it is not there as one piece, in `decoded`.
  struct Span {
    std::uint32_t offset;  ///< with `isDecoded`, into `decoded`
    std::uint32_t length;
  };
  static constexpr std::uint32_t isDecoded = std::uint32_t{1} << 31;

  /// A text of the part.
  struct Name {
    Span qualified;
    std::uint32_t localOffset;  ///< from the start of the qualified name
    std::uint32_t localLength;
  };
  /// The name is a text of the part. Names are not shared like those of elements: a part may hold millions of
  /// attributes, and at sixteen bytes each their tree stays small.
  struct Attribute {
    std::uint32_t nameOffset;
    std::uint32_t nameLength;
    Span value;
  };
  /// Character data that continues after a child element. Chained, so that no text is moved in order to be
  /// joined.
  struct MoreText {
    Span span;
    std::uint32_t next;  ///< index into `moreText`, `none` at the end
  };
  struct Element {
    std::uint32_t name;            ///< index into `names`
    std::uint32_t end;             ///< one past the last element of this subtree
    std::uint32_t firstAttribute;  ///< index into `attributes`
    std::uint32_t attributeCount;
    Span text;
    std::uint32_t moreText;  ///< index into `moreText`, `none` when the text is one run
  };

  static constexpr std::uint32_t none = UINT32_MAX;

  explicit XMLTreeStorage(ByteBuffer bytes) : part(std::move(bytes)) {}

  const ByteBuffer part;
  GrowingArray<char> decoded;
  GrowingArray<Name> names;
  GrowingArray<Attribute> attributes;
  GrowingArray<MoreText> moreText;
  GrowingArray<Element> elements;

  const char* source() const { return part.text().data(); }

  std::string_view view(Span span) const {
    const bool inPart = (span.offset & isDecoded) == 0;
    return {inPart ? source() + span.offset : decoded.data() + (span.offset & ~isDecoded), span.length};
  }
  // The spare bytes behind the part make every name's word readable.
  XMLName attributeName(const Attribute& attribute) const {
    return XMLName::at(source() + attribute.nameOffset, attribute.nameLength);
  }
  XMLName qualifiedName(const Name& name) const {
    return XMLName::at(source() + name.qualified.offset, name.qualified.length);
  }
  XMLName qualifiedName(std::uint32_t element) const { return qualifiedName(names[elements[element].name]); }
  XMLName localName(std::uint32_t element) const {
    const Name& name = names[elements[element].name];
    return XMLName::at(source() + name.qualified.offset + name.localOffset, name.localLength);
  }
};

}  // namespace zelvo
