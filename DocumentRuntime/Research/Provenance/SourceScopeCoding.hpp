#pragma once

#include <string>

#include "DocumentRuntime/Research/Provenance/SourceScope.hpp"

namespace zelvo {

/// Decodes a scope from the JSON text of a host's file:
///
///     {"localSnapshotIDs": [id …], "publicSources": {id: url …},
///      "records": [{"id", "kind", "label", "observedAt"?, "coverage", "provenanceURL"?} …]}
///
/// with `observedAt` as an ISO 8601 date and time with zone, cut to the second. Each list has at most 20,000
/// entries, labels and coverages at most 2,000 characters, and every text at most 8,000 bytes. Throws
/// `DecodingError`.
ResearchSourceScope researchSourceScopeFromJson(std::string text);

}  // namespace zelvo
