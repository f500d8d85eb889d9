#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "DocumentRuntime/PackageIO/GrowingArray.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// The character data at and below one element, each character once, in the order of `XMLNode::content`. The
/// content of every element is a range of it, so nested elements share their text. Joining each element's
/// content separately would copy a text once for each of up to 64 levels.
class XMLContents {
 public:
  /// Copies the texts of the tree. The tree must outlive this.
  explicit XMLContents(XMLNode root);

  /// `element.content()`, for the root or an element below it. Valid while this lives.
  std::string_view of(XMLNode element) const;

 private:
  std::uint32_t first_;                 ///< the root's index
  std::string text_;                    ///< at most as long as the part
  GrowingArray<std::uint32_t> starts_;  ///< where each element's own text begins in `text_`, then its end
};

}  // namespace zelvo
