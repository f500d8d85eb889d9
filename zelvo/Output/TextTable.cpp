#include "zelvo/Output/TextTable.hpp"

#include <algorithm>
#include <numeric>
#include <utility>

#include "Text/TerminalWidth.hpp"
#include "Text/Unicode.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

constexpr std::size_t indent = 2;
constexpr std::size_t gap = 2;

/// The narrowest that a column of texts becomes beside all others, in columns of the terminal.
constexpr std::size_t narrowColumn = 8;
/// The widest that one is where the columns are printed in groups.
constexpr std::size_t groupedColumn = 24;

std::size_t lineWidth(const std::vector<std::size_t>& widths) {
  return std::accumulate(widths.begin(), widths.end(), indent) + gap * (widths.size() - 1);
}

/// The start of a text, and "…", in at most `columns` columns of the terminal, which is fewer than it has.
std::string cut(const std::string& text, std::size_t columns) {
  std::size_t count = columns - 1;  // of characters, most of which have one column
  while (count > 0 && terminalColumns(Unicode::prefix(text, count)) > columns - 1)
    --count;
  return std::string(Unicode::prefix(text, count)) + "…";
}

}  // namespace

std::string indentedLine(std::string_view text) {
  return std::string(indent, ' ').append(text) + '\n';
}

std::string warningLines(const std::vector<std::string>& warnings) {
  std::string text = warnings.empty() ? "" : "\n";
  for (const std::string& warning : warnings)
    text += indentedLine("Warning: " + printable(warning));
  return text;
}

void TextTable::addRow(const std::vector<std::string>& texts) {
  const bool isTitles = rows_.empty();
  std::vector<Cell>& row = rows_.emplace_back();
  for (std::size_t i = 0; i < aligns_.size(); ++i) {
    std::string text = printable(texts.at(i));
    const std::size_t columns = terminalColumns(text);
    widths_[i] = std::max(widths_[i], columns);
    if (aligns_[i] == Align::right && !isTitles)
      uncuttable_[i] = std::max(uncuttable_[i], std::min(columns, groupedColumn));
    row.push_back({std::move(text), columns});
  }
}

std::string TextTable::text(std::size_t width) const {
  const Widths widths = fitted(width);
  if (width == 0 || lineWidth(widths) <= width) return group(widths, 1, widths.size());
  std::string text;
  for (std::size_t first = 1; first < widths.size();) {
    std::size_t used = indent + widths[0];
    std::size_t last = first;
    while (last < widths.size() && (last == first || used + gap + widths[last] <= width))
      used += gap + widths[last++];
    text += (first == 1 ? "" : "\n") + group(widths, first, last);
    first = last;
  }
  return text;
}

/// The widths of the columns with those of texts limited to `cap`.
TextTable::Widths TextTable::capped(std::size_t cap) const {
  Widths widths = widths_;
  for (std::size_t i = 0; i < widths.size(); ++i)
    widths[i] = std::min(widths[i], std::max(cap, uncuttable_[i]));
  return widths;
}

/// The widths with which the rows fit, or those for groups.
TextTable::Widths TextTable::fitted(std::size_t width) const {
  if (width == 0 || lineWidth(widths_) <= width) return widths_;
  for (std::size_t cap = width; cap >= narrowColumn; --cap) {
    if (Widths widths = capped(cap); lineWidth(widths) <= width) return widths;
  }
  const std::size_t taken = indent + widths_[0] + gap;
  return capped(std::clamp(width - std::min(width, taken), narrowColumn, groupedColumn));
}

/// The first column and those from `first` to before `last`.
std::string TextTable::group(const Widths& widths, std::size_t first, std::size_t last) const {
  std::string text;
  for (const std::vector<Cell>& row : rows_) {
    std::size_t due = indent;  // spaces before the next text
    for (std::size_t i = 0; i < last; i = i == 0 ? first : i + 1) {
      const bool isCut = row[i].columns > widths[i];
      const std::string shown = isCut ? cut(row[i].text, widths[i]) : row[i].text;
      const std::size_t padding = widths[i] - (isCut ? terminalColumns(shown) : row[i].columns);
      const bool isRight = aligns_[i] == Align::right;
      text.append(due + (isRight ? padding : 0), ' ').append(shown);
      due = gap + (isRight ? 0 : padding);
    }
    text.erase(text.find_last_not_of(' ') + 1);  // no further than the previous line's line feed
    text += '\n';
  }
  return text;
}

}  // namespace zelvo
