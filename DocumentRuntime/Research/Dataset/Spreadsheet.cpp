#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

#include <cstddef>

#include "DocumentRuntime/Cells/DoubleText.hpp"
#include "DocumentRuntime/Cells/SerialDate.hpp"

namespace zelvo {

std::string ResearchSpreadsheet::Column::headerLabel() const {
  return unit ? name + " (" + *unit + ")" : name;
}

std::string ResearchSpreadsheet::Cell::displayText() const {
  if (text() != nullptr) return *text();
  if (number() != nullptr) return DoubleText::shortest(*number());
  return {};
}

std::string ResearchSpreadsheet::Row::provenanceText() const {
  std::string text;
  if (sourceIDs) {
    for (const std::string& id : *sourceIDs)
      text.append("Source ID: ").append(id).append("\n");
  }
  for (const std::string& source : sources)
    text.append(source).append("\n");
  if (!text.empty()) text.pop_back();
  return text;
}

std::vector<std::vector<ResearchSpreadsheet::Cell>> ResearchSpreadsheet::cellsWith(
    const std::vector<ResolvedCalculation>& resolved) const {
  std::vector<std::vector<Cell>> cells;
  cells.reserve(rows.size());
  for (const Row& row : rows)
    cells.push_back(row.cells);
  for (const ResolvedCalculation& calculation : resolved) {
    cells[static_cast<std::size_t>(calculation.row)][static_cast<std::size_t>(calculation.column)] =
        calculation.value ? Cell(*calculation.value) : Cell();
  }
  return cells;
}

bool ResearchSpreadsheet::validDate(std::string_view text) {
  return SerialDate::isoDateOnly(text);
}

const std::vector<Calculation>& ResearchSpreadsheet::calculationList() const {
  static const std::vector<Calculation> none;
  return calculations ? *calculations : none;
}

}  // namespace zelvo
