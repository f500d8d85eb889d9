#include <algorithm>
#include <cstddef>
#include <utility>

#include "DocumentRuntime/Research/Workbook/ReportWorkbook.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using ResearchWorkbook::ReportTable;
using Row = ReportTable::value_type;
using Lines = std::vector<std::string_view>;

constexpr std::size_t minimumRows = 2;  ///< a header and something below it
constexpr std::size_t maximumRows = 501;
constexpr std::size_t minimumCells = 2;
constexpr std::size_t maximumCells = 24;
constexpr std::size_t maximumCellCharacters = 2'000;  ///< the most that `WorkbookReader` accepts
constexpr std::size_t minimumDashes = 3;              ///< in each cell of the line below a header

constexpr std::string_view fence = "```";
constexpr char pipe = '|';

/// The text without leading and trailing spaces and tabs; all other white space is content.
std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// A candidate table; its rows are no longer kept once it is invalid.
class TableBlock {
 public:
  void append(Row row) {
    isInvalid_ = isInvalid_ || !fits(row);
    if (!isInvalid_) rows_.push_back(std::move(row));
  }

  /// The table, if this is one. The block must not be used afterwards.
  std::optional<ReportTable> take() {
    if (isInvalid_ || rows_.size() < minimumRows) return std::nullopt;
    return std::move(rows_);
  }

 private:
  bool fits(const Row& row) const {
    if (rows_.size() == maximumRows) return false;
    if (row.size() < minimumCells || row.size() > maximumCells) return false;
    if (!rows_.empty() && row.size() != rows_.front().size()) return false;
    return std::ranges::none_of(
        row, [](const std::string& cell) { return Unicode::exceeds(cell, maximumCellCharacters); });
  }

  ReportTable rows_;
  bool isInvalid_ = false;
};

/// The fields of a line; separators inside quotes are text. Stops after too many fields: the line then makes
/// its block invalid.
Row delimited(std::string_view line, char separator) {
  Row fields;
  std::string field;
  bool isQuoted = false;
  for (std::size_t i = 0; i < line.size() && fields.size() <= maximumCells; ++i) {
    if (isQuoted && line.substr(i, 2) == R"("")") {
      field += line[i++];
    } else if (line[i] == '"') {
      isQuoted = !isQuoted;
    } else if (line[i] == separator && !isQuoted) {
      fields.emplace_back(trimmed(field));
      field.clear();
    } else {
      field += line[i];
    }
  }
  fields.emplace_back(trimmed(field));
  return fields;
}

/// The semicolon has priority, even if every semicolon is quoted.
std::optional<char> separatorOf(std::string_view line) {
  for (const char separator : {';', '\t'})
    if (line.find(separator) != std::string_view::npos) return separator;
  return std::nullopt;
}

/// A fence that is not closed has no table.
std::optional<ReportTable> firstFencedTable(const Lines& lines) {
  std::optional<TableBlock> block;  // of the open fence
  for (const std::string_view line : lines) {
    if (line.starts_with(fence)) {
      if (auto table = block ? block->take() : std::nullopt) return table;
      block = block ? std::nullopt : std::optional<TableBlock>(std::in_place);
    } else if (const auto separator = separatorOf(line); separator && block) {
      block->append(delimited(line, *separator));
    }
  }
  return std::nullopt;
}

/// The text between the outer pipes; empty for a line of one pipe.
std::string_view betweenPipes(std::string_view line) {
  return line.size() < 2 ? std::string_view() : line.substr(1, line.size() - 2);
}

/// Whether `test` is true for every cell. Stops at the first for which it is false.
template <typename Test>
bool allCells(std::string_view cells, const Test& test) {
  for (;;) {
    const std::size_t end = cells.find(pipe);
    if (!test(trimmed(cells.substr(0, end)))) return false;
    if (end == std::string_view::npos) return true;
    cells.remove_prefix(end + 1);
  }
}

/// ":---", "---:" and the like.
bool isDashes(std::string_view cell) {
  if (cell.starts_with(':')) cell.remove_prefix(1);
  if (cell.ends_with(':')) cell.remove_suffix(1);
  return cell.size() >= minimumDashes && cell.find_first_not_of('-') == std::string_view::npos;
}

/// The cells of a line. Stops after too many cells, as above.
Row rowOf(std::string_view cells) {
  Row row;
  allCells(cells, [&](std::string_view cell) {
    row.emplace_back(cell);
    return row.size() <= maximumCells;
  });
  return row;
}

std::optional<ReportTable> firstPipeTable(const Lines& lines) {
  TableBlock block;
  for (const std::string_view line : lines) {
    if (line.starts_with(pipe) && line.ends_with(pipe)) {
      const std::string_view cells = betweenPipes(line);
      if (!cells.empty() && !allCells(cells, isDashes)) block.append(rowOf(cells));
    } else {
      if (auto table = block.take()) return table;
      block = TableBlock();
    }
  }
  return block.take();
}

}  // namespace

std::optional<ReportTable> ResearchWorkbook::firstTable(std::string_view text) {
  Lines lines = Unicode::lines(text);
  std::ranges::transform(lines, lines.begin(), trimmed);
  if (auto table = firstFencedTable(lines)) return table;
  return firstPipeTable(lines);
}

bool ResearchWorkbook::hasTable(std::string_view text) {
  return firstTable(text).has_value();
}

}  // namespace zelvo
