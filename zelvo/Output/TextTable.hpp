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
///
/// Where the rows must fit into a width, columns are narrowed, the widest first, and texts that are longer
/// end with "…". If the columns would become too narrow to read, they are printed in groups, one below the
/// other, each after the first column. Numbers, which are what is aligned to the right below a first row of
/// titles, are not cut.
class TextTable {
 public:
  enum class Align { left, right };

  explicit TextTable(std::vector<Align> columns)
      : aligns_(std::move(columns)), widths_(aligns_.size()), uncuttable_(aligns_.size()) {}

  /// Takes one text per column. Escapes them with `printable`.
  void addRow(const std::vector<std::string>& texts);

  /// The rows: each line is indented like `indentedLine`, has no trailing spaces and ends with a line feed.
  /// `width` is in columns of the terminal; 0 for no limit.
  std::string text(std::size_t width = 0) const;

  /// Whether a text is cut in that width.
  bool isCut(std::size_t width) const { return fitted(width) != widths_; }

 private:
  struct Cell {
    std::string text;
    std::size_t columns;  ///< width on the terminal
  };
  using Widths = std::vector<std::size_t>;

  Widths capped(std::size_t cap) const;
  Widths fitted(std::size_t width) const;
  std::string group(const Widths& widths, std::size_t first, std::size_t last) const;

  std::vector<Align> aligns_;
  Widths widths_;
  Widths uncuttable_;  ///< of each column, what must not be cut
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace zelvo
