#pragma once

#include "zelvo/CommandLine.hpp"
#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// `zelvo research check`: validates a dataset and prints it in its canonical form, with its resolved cells
/// and calculations.
ExitStatus researchCheck(const ResearchCheckArguments& arguments);

}  // namespace zelvo
