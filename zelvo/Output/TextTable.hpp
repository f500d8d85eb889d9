#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelvo {

/// The text as a line below a heading: two spaces, the text as it is, and a line feed.
std::string indentedLine(std::string_view text);

/// An empty line and one "Warning: ..." line per warning; empty if there are none.
std::string warningLines(const std::vector<std::string>& warnings);

/// A text table: each column is as wide on the terminal as its widest text, with two spaces between columns.
class TextTable {
 public:
  enum class Align { left, right };

  explicit TextTable(std::vector<Align> columns) : aligns_(std::move(columns)), widths_(aligns_.size()) {}

  /// Takes one text per column. Escapes them with `printable`.
  void addRow(const std::vector<std::string>& texts);

  /// The rows: each line is indented like `indentedLine`, has no trailing spaces and ends with a line feed.
  std::string text() const;

 private:
  struct Cell {
    std::string text;
    std::size_t columns;  ///< width on the terminal
  };

  std::vector<Align> aligns_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace zelvo
