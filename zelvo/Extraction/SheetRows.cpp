#include "zelvo/Extraction/SheetRows.hpp"

#include <algorithm>
#include <functional>
#include <numeric>
#include <string_view>
#include <utility>

namespace zelvo {
namespace {

/// Spans that a sentence lists. A sheet can have tens of thousands.
constexpr std::size_t maximumListedSpans = 100;

using Kind = SourceCellValue::Kind;

bool hasContent(const SourceCell& cell) {
  return cell.value.kind() != Kind::missing &&
         (cell.value.kind() != Kind::text || !cell.value.payload().empty());
}

/// "Left out 501 hidden rows: 5-504, 700."
std::string sentence(const NumberSpans& spans, std::string_view noun,
                     const std::function<std::string(std::int64_t)>& name) {
  const std::int64_t count = countOf(spans);
  std::string text = "Left out " + std::to_string(count) + " hidden " + std::string(noun);
  text += count == 1 ? ": " : "s: ";
  for (std::size_t i = 0; i < std::min(spans.size(), maximumListedSpans); ++i) {
    const auto [first, last] = spans[i];
    text += (i == 0 ? "" : ", ") + name(first) + (first == last ? "" : "-" + name(last));
  }
  if (spans.size() > maximumListedSpans) text += " and others up to " + name(spans.back().last);
  return text + ".";
}

}  // namespace

void append(NumberSpans& spans, std::int64_t first, std::int64_t last) {
  if (!spans.empty() && first <= spans.back().last + 1) {
    spans.back().last = std::max(spans.back().last, last);
  } else {
    spans.push_back({first, last});
  }
}

std::int64_t countOf(const NumberSpans& spans) {
  return std::accumulate(
      spans.begin(), spans.end(), std::int64_t{0},
      [](std::int64_t count, const NumberSpan& span) { return count + span.last - span.first + 1; });
}

std::vector<std::int64_t> numbersWithout(const NumberSpans& spans, std::int64_t first, std::int64_t last) {
  std::vector<std::int64_t> numbers;
  auto span = spans.begin();
  for (std::int64_t number = first; number <= last; ++number) {
    while (span != spans.end() && span->last < number)
      ++span;
    if (span == spans.end() || number < span->first) numbers.push_back(number);
  }
  return numbers;
}

std::span<const SheetRows::Row> dataRows(const SheetRows& rows) {
  const std::span all(rows.rows);
  return rows.firstRowIsHeader && !all.empty() ? all.subspan(1) : all;
}

bool hasNumber(const SheetRows& rows, std::size_t column) {
  return std::ranges::any_of(dataRows(rows),
                             [&](const auto& row) { return row.cells[column].value.kind() == Kind::number; });
}

SheetRows rowsOf(SourceTable table, const TableSelection& selection) {
  SheetRows rows;
  rows.sheetName = std::move(table.sheetName);
  rows.sourceSHA256 = std::move(table.sourceSHA256);
  rows.range = CellRange::parse(selection.range);  // the table's own may be anything
  rows.columns = numbersWithout({}, rows.range.first.column, rows.range.last.column);
  rows.firstRowIsHeader = selection.firstRowIsHeader;
  rows.warnings = std::move(table.warnings);

  std::int64_t next = rows.range.first.row;
  const auto skipTo = [&](std::int64_t row) {
    if (next < row) append(rows.hiddenRows, next, row - 1);
    next = row + 1;
  };
  for (std::vector<SourceCell>& cells : table.rows) {
    if (cells.empty()) continue;
    const std::int64_t number = CellAddress::parse(cells.front().address).row;
    skipTo(number);
    cells.resize(rows.columns.size());
    rows.rows.push_back({number, std::move(cells)});
  }
  skipTo(rows.range.last.row + 1);
  removeTrailingRows(rows);
  return rows;
}

void removeTrailingRows(SheetRows& rows) {
  while (!rows.rows.empty() && std::ranges::none_of(rows.rows.back().cells, hasContent))
    rows.rows.pop_back();
}

std::vector<std::string> leftOut(const SheetRows& rows) {
  std::vector<std::string> sentences;
  if (!rows.hiddenRows.empty())
    sentences.push_back(
        sentence(rows.hiddenRows, "row", [](std::int64_t row) { return std::to_string(row); }) +
        " --include-hidden includes them.");
  if (!rows.hiddenColumns.empty()) sentences.push_back(sentence(rows.hiddenColumns, "column", columnLetters));
  return sentences;
}

}  // namespace zelvo
