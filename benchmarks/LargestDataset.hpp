#pragma once

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

namespace zelvo::benchmarks {

/// A dataset at its limits: rows, columns, charts, series, calculations and report length, with eight sources
/// of 300 characters per row.
ResearchSpreadsheet largestDataset();

}  // namespace zelvo::benchmarks
