#pragma once

#include <span>
#include <string_view>

namespace zelvo {

/// A JSON Schema of a message or a file.
struct Schema {
  std::string_view name;  ///< of its file, without the ending
  std::string_view text;  ///< its whole file
};

/// The files in schemas/, by name. They are part of the program.
std::span<const Schema> schemas();

}  // namespace zelvo
