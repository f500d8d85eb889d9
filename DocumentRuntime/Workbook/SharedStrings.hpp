#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "DocumentRuntime/PackageIO/GrowingArray.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* sharedStrings = "shared strings";

}  // namespace RefusalDetail

/// The strings that cells refer to by index. Owns one buffer with all of them.
class SharedStrings {
 public:
  static constexpr std::size_t maximumItems = 50'000;
  static constexpr std::size_t maximumCharacters = 32'768;  ///< of one item; the most that a cell can hold

  SharedStrings() = default;

  /// Reads the items of a shared strings part. Throws `DocumentError` resourceLimit "shared strings".
  static SharedStrings read(XMLNode root);

  std::size_t size() const { return ends_.size(); }
  /// The string at an index below `size()`; valid while this lives.
  std::string_view operator[](std::size_t index) const;

 private:
  std::string text_;
  GrowingArray<std::uint32_t> ends_;  ///< where each item ends in `text_`; a part is far below 4 GiB
};

}  // namespace zelvo
