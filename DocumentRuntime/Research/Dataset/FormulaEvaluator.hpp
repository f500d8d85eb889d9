#pragma once

#include <cstddef>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

/// Computes a dataset's calculations from its frozen cells.
namespace zelvo::ResearchFormulaEvaluator {

inline constexpr std::size_t maximumCalculations = 1000;
/// The limit of nodes evaluated for one dataset, all calculations together.
inline constexpr std::size_t maximumNodes = 50'000;

/// The calculations' values and formula texts, in the order of the list, which need not be the order of
/// dependency. Throws `DocumentError` for the first rule that is broken. Limits bound the work for any
/// dataset, even one that was not validated.
std::vector<ResolvedCalculation> resolve(const ResearchSpreadsheet& spreadsheet);

/// The rows' cells with the values of the dataset's resolved calculations in their output cells; blank if
/// there is no value.
std::vector<std::vector<ResearchSpreadsheet::Cell>> cellsWith(
    const ResearchSpreadsheet& spreadsheet, const std::vector<ResolvedCalculation>& resolved);

}  // namespace zelvo::ResearchFormulaEvaluator
