#include "DocumentRuntime/Validation/TableReadBack.hpp"

#include <algorithm>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Validation/DocumentInputRules.hpp"

namespace zelvo {
namespace {

constexpr std::size_t maximumRows = 201;  ///< the header included
constexpr std::size_t maximumColumns = 8;

}  // namespace

void appendTableTexts(TableTexts& rows, XMLNode table) {
  std::string scratch;
  for (const XMLNode row : table.all("tr")) {
    auto& cells = rows.emplace_back();
    for (const XMLNode cell : row.all("tc")) {
      std::string& text = cells.emplace_back();
      for (const XMLNode piece : cell.descendants("t"))
        text += piece.content(scratch);
    }
  }
}

void checkTableDimensions(const TableTexts& rows) {
  const bool inBounds = !rows.empty() && rows.size() <= maximumRows && !rows.front().empty() &&
                        rows.front().size() <= maximumColumns;
  if (!inBounds ||
      std::ranges::any_of(rows, [&](const auto& row) { return row.size() != rows.front().size(); })) {
    throw DocumentError::validationFailed("table dimensions");
  }
}

void compareTable(const TableTexts& rows, const SourceTable& expected) {
  DocumentEngine::validateInput(expected, "Validation");
  TableTexts approved = {expected.columns};
  for (const auto& row : expected.rows) {
    auto& texts = approved.emplace_back();
    for (const SourceCell& cell : row)
      texts.push_back(cell.displayText());
  }
  if (rows != approved) throw DocumentError::validationFailed("table cells differ from frozen source values");
}

}  // namespace zelvo
