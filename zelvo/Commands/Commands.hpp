#pragma once

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/CommandLine.hpp"
#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// `zelvo inspect`: describes every workbook that can be read, complains about the others.
ExitStatus inspect(const DocumentWorkerHost& host, const InspectArguments& arguments);

}  // namespace zelvo
