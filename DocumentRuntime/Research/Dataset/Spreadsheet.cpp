#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

#include <cstddef>

#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// The limit of a response in bytes of JSON: a small multiple of the text of a few pages.
constexpr std::size_t maximumResponseBytes = 240'000;

constexpr std::string_view fence = "```";

/// Removes a code fence, whose first line may name a language. The line feed is in neither mark, so the two
/// marks do not overlap.
std::string_view withoutFence(std::string_view text) {
  const std::size_t lineFeed = text.find('\n');
  if (!text.starts_with(fence) || lineFeed == std::string_view::npos || !text.ends_with(fence)) return text;
  text.remove_prefix(lineFeed + 1);
  text.remove_suffix(fence.size());
  return text;
}

}  // namespace

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

ResearchSpreadsheet ResearchSpreadsheet::decode(std::string_view text, bool requiresChart,
                                                const AllowedSources& allowedSources,
                                                const std::optional<ResearchSourceScope>& sourceScope) {
  if (!Unicode::isValid(text)) throw DecodingError("The text is not UTF-8.");
  const std::string_view json = withoutFence(Unicode::trimmed(text));
  if (json.size() > maximumResponseBytes) throw DocumentError::resourceLimit("spreadsheet response");
  auto spreadsheet = fromJson<ResearchSpreadsheet>(std::string(json));
  spreadsheet.validate(requiresChart, allowedSources, sourceScope);
  return spreadsheet;
}

std::vector<std::vector<ResearchSpreadsheet::Cell>> ResearchSpreadsheet::resolvedCells() const {
  return ResearchFormulaEvaluator::cellsWith(*this, ResearchFormulaEvaluator::resolve(*this));
}

std::string ResearchSpreadsheet::encoded() const {
  return toJson(*this);
}

bool ResearchSpreadsheet::validDate(std::string_view text) {
  return SerialDate::isoDateOnly(text);
}

const std::vector<Calculation>& ResearchSpreadsheet::calculationList() const {
  static const std::vector<Calculation> none;
  return calculations ? *calculations : none;
}

}  // namespace zelvo
