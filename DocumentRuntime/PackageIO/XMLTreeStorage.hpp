#pragma once

#include <cstdint>
#include <string_view>

#include "DocumentRuntime/PackageIO/GrowingArray.hpp"

namespace zelvo {

/// The memory layout of a parsed part: five flat arrays that refer to each other by index. Elements are in
/// document order, so the children of element i are i + 1, then the element after each child's subtree, up to
/// the end of i's own.
///
/// Every byte of the part adds at most one byte to `characters` (a decoded reference is never longer), which
/// bounds all offsets and counts by the part's size and so by 32 bits.
struct XMLTreeStorage {
  struct Span {
    std::uint32_t offset;
    std::uint32_t length;
  };
  struct Name {
    Span qualified;
    std::uint32_t localOffset;  ///< from the start of the qualified name
    std::uint32_t localLength;
  };
  /// The name, followed by the value. Names are not shared like those of elements: a part may hold millions
  /// of attributes, and at twelve bytes each their tree stays small.
  struct Attribute {
    std::uint32_t offset;
    std::uint32_t nameLength;
    std::uint32_t valueLength;
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

  GrowingArray<char> characters;
  GrowingArray<Name> names;
  GrowingArray<Attribute> attributes;
  GrowingArray<MoreText> moreText;
  GrowingArray<Element> elements;

  std::string_view view(Span span) const { return {characters.data() + span.offset, span.length}; }
  std::string_view qualifiedName(std::uint32_t element) const {
    return view(names[elements[element].name].qualified);
  }
  std::string_view localName(std::uint32_t element) const {
    const Name& name = names[elements[element].name];
    return view({name.qualified.offset + name.localOffset, name.localLength});
  }
};

}  // namespace zelvo
