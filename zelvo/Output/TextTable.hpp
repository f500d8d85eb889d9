#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zelvo {

/// A table for people: columns as wide on the terminal as their widest text, two spaces between them.
class TextTable {
 public:
  enum class Align { left, right };

  explicit TextTable(std::vector<Align> columns) : aligns_(std::move(columns)), widths_(aligns_.size()) {}

  /// One text a column. Whatever could drive a terminal is made harmless here.
  void addRow(const std::vector<std::string>& texts);

  /// The rows, every line indented by so many spaces, without trailing ones, and ended by a line feed.
  std::string text(std::size_t indent) const;

 private:
  struct Cell {
    std::string text;
    std::size_t columns;  ///< of the terminal
  };

  std::vector<Align> aligns_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace zelvo
