#pragma once

#include <optional>
#include <string>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo::CleaningReadBack {

/// Compares two worksheets. Returns the first difference, or nullopt.
std::optional<std::string> compareSheets(XMLNode source, XMLNode result, bool keepsMerges);

}  // namespace zelvo::CleaningReadBack
