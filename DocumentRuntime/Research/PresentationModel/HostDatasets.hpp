#pragma once

#include <string>
#include <vector>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

// Datasets from the JSON text in which a host keeps them: one, or a list of {"id", "content"}. There is no
// code fence and no limit on the response's bytes. Instead, a list that is longer than the rules of datasets
// allow is refused before it is decoded; and what slides repeat (names, units, titles and category labels)
// has at most 8,000 bytes each. The rules themselves are not checked. Both throw `DecodingError`.

ResearchSpreadsheet hostDatasetFromJson(std::string text);
std::vector<ResearchPresentation::Dataset> hostDatasetsFromJson(std::string text);

}  // namespace zelvo
