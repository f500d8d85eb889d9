#pragma once

#include "DocumentWorkerHost/DocumentCleanerHost.hpp"
#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// `zelvo batch`: inspects or cleans many files, several at once, and writes one line of JSON a file in the
/// order of completion. Returns the highest status of a file.
ExitStatus batch(const DocumentWorkerHost& worker, const DocumentCleanerHost& cleaner,
                 const BatchArguments& arguments);

}  // namespace zelvo
