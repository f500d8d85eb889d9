#pragma once

#include <string>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// Resolves the chart of the command line against columns with these titles. A title takes precedence over an
/// index that is written alike. An index is returned even if there is no such column. Titles may contain
/// colons.
Result<ChartSelection> chosenChart(const ChartArguments& arguments, const std::vector<std::string>& titles);

}  // namespace zelvo
