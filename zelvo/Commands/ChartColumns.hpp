#pragma once

#include <string>
#include <variant>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "zelvo/CommandLine.hpp"
#include "zelvo/Complaint.hpp"

namespace zelvo {

/// The chart that the command line names, over columns of these titles. A title comes before an index that
/// reads the same; an index is taken as it is, whether there is such a column or not. Titles may hold colons.
std::variant<ChartSelection, Complaint> chosenChart(const ChartArguments& arguments,
                                                    const std::vector<std::string>& titles);

}  // namespace zelvo
