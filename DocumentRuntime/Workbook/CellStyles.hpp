#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// The number format code of each cell style, by the index that cells refer to.
class CellStyles {
 public:
  static constexpr std::size_t maximumCodeCharacters = 256;

  CellStyles() = default;

  /// Reads the formats and cell styles of a styles part. Throws `DocumentError` invalidArchive "number
  /// format".
  static CellStyles read(XMLNode root);

  std::size_t size() const { return codeOfStyle_.size(); }
  /// The code of the style at an index below `size()`. Returns nullopt if the style has no format. For an
  /// unknown id returns "unsupported-format-" and the id, which is refused if a cell uses it. Valid while
  /// this lives.
  std::optional<std::string_view> operator[](std::size_t index) const;

 private:
  static constexpr std::uint32_t noCode = UINT32_MAX;

  /// Each code once: thousands of styles may share a long one.
  std::vector<std::string> codes_;
  std::vector<std::uint32_t> codeOfStyle_;  ///< index into `codes_`
};

}  // namespace zelvo
