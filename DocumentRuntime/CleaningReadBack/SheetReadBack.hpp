#pragma once

#include <optional>
#include <string>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo::CleaningReadBack {

/// Compares two worksheets and says what differs first.
std::optional<std::string> compareSheets(XMLNode source, XMLNode result, bool keepsMerges);

}  // namespace zelvo::CleaningReadBack
