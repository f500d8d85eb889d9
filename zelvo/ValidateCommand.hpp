#pragma once

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/CommandLine.hpp"
#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// `zelvo validate`: proves that a document is one that this system wrote, and of which table.
ExitStatus validate(const DocumentWorkerHost& host, const ValidateArguments& arguments);

}  // namespace zelvo
