#pragma once

#include <string>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo::DocumentAuthor {

/// One slide's rows of cell texts, the column titles first.
using TablePage = std::vector<std::vector<std::string>>;

/// Spreads a table over slides by the estimated heights of its rows. Throws `DocumentError` unsupported
/// "presentation cells need too much vertical space; use Word or fewer columns" or resourceLimit
/// "presentation exceeds 20 table slides".
std::vector<TablePage> tablePages(const SourceTable& table);

}  // namespace zelvo::DocumentAuthor
