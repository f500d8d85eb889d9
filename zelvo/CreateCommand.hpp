#pragma once

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/CommandLine.hpp"
#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// `zelvo create`: writes a document that shows a table, validated, to a file or standard output.
ExitStatus create(const DocumentWorkerHost& host, const CreateArguments& arguments);

}  // namespace zelvo
