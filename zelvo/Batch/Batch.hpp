#pragma once

#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// `zelvo batch`: inspects or cleans many files, several at once, and writes one line of JSON a file in the
/// order of completion. Returns the highest status of a file.
ExitStatus batch(const Hosts& hosts, const BatchArguments& arguments);

}  // namespace zelvo
