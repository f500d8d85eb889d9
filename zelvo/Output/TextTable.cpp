#include "zelvo/Output/TextTable.hpp"

#include <algorithm>
#include <utility>

#include "Text/TerminalWidth.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

constexpr std::size_t indent = 2;

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
  std::vector<Cell>& row = rows_.emplace_back();
  for (std::size_t i = 0; i < aligns_.size(); ++i) {
    std::string text = printable(texts.at(i));
    const std::size_t columns = terminalColumns(text);
    widths_[i] = std::max(widths_[i], columns);
    row.push_back({std::move(text), columns});
  }
}

std::string TextTable::text() const {
  constexpr std::size_t gap = 2;
  std::string text;
  for (const std::vector<Cell>& row : rows_) {
    std::size_t due = indent;  // spaces before the next text
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::size_t padding = widths_[i] - row[i].columns;
      const bool isRight = aligns_[i] == Align::right;
      text.append(due + (isRight ? padding : 0), ' ').append(row[i].text);
      due = gap + (isRight ? 0 : padding);
    }
    text.erase(text.find_last_not_of(' ') + 1);  // no further than the previous line's line feed
    text += '\n';
  }
  return text;
}

}  // namespace zelvo
