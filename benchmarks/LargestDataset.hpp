#pragma once

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

namespace zelvo::benchmarks {

/// As much as a dataset may hold: every row, column, calculation, chart and series, eight sources of 300
/// characters a row, and a report of full length.
ResearchSpreadsheet largestDataset();

}  // namespace zelvo::benchmarks
