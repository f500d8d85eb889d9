#pragma once

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/CommandLine.hpp"
#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// `zelvo extract`: shows a table. A selection that cannot be used is answered with what could be selected.
ExitStatus extract(const DocumentWorkerHost& host, const ExtractArguments& arguments);

}  // namespace zelvo
