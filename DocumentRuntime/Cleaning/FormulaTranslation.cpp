#include "DocumentRuntime/Cleaning/FormulaTranslation.hpp"

#include <optional>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Cleaning/FormulaScanner.hpp"

namespace zelvo::Cleaning {
namespace {

constexpr std::string_view outsideTheSheet = "#REF!";

/// Returns nullopt if the end leaves the sheet.
std::optional<ReferenceEnd> moved(ReferenceEnd end, std::int64_t rows, std::int64_t columns) {
  if (end.column > 0 && !end.isColumnAbsolute) {
    end.column += columns;
    if (end.column < 1 || end.column > CellAddress::maximumColumn) return std::nullopt;
  }
  if (end.row > 0 && !end.isRowAbsolute) {
    end.row += rows;
    if (end.row < 1 || end.row > CellAddress::maximumRow) return std::nullopt;
  }
  return end;
}

std::string textOf(const ReferenceEnd& end) {
  std::string text;
  if (end.column > 0) {
    if (end.isColumnAbsolute) text += '$';
    text += columnLetters(end.column);
  }
  if (end.row > 0) {
    if (end.isRowAbsolute) text += '$';
    text += std::to_string(end.row);
  }
  return text;
}

std::string movedReference(const FormulaToken& token, std::int64_t rows, std::int64_t columns) {
  const auto first = moved(token.first, rows, columns);
  if (!first) return std::string(outsideTheSheet);
  if (!token.last) return textOf(*first);
  const auto last = moved(*token.last, rows, columns);
  if (!last) return std::string(outsideTheSheet);
  return textOf(*first) + ':' + textOf(*last);
}

}  // namespace

bool appendMoved(std::string& out, std::string_view formula, std::int64_t rows, std::int64_t columns,
                 std::size_t maximumBytes) {
  const std::size_t start = out.size();
  FormulaScanner scanner(formula);
  while (const auto token = scanner.next()) {
    if (token->kind == FormulaToken::Kind::reference) {
      out += movedReference(*token, rows, columns);
    } else {
      out += token->text;
    }
    if (out.size() - start > maximumBytes) return false;
  }
  return true;
}

}  // namespace zelvo::Cleaning
