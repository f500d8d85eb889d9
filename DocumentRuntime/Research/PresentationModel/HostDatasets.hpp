#pragma once

#include <string>
#include <vector>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

// Decode datasets from the JSON text of a host's file: one, or a list of {"id", "content"}. There is no code
// fence and no limit on the bytes of the text. Instead, a list that is longer than the rules of datasets
// allow is refused before it is decoded, and each text that slides repeat (names, units, titles and category
// labels) has at most 8,000 bytes. The rules themselves are not checked. Both throw `DecodingError`.

ResearchSpreadsheet hostDatasetFromJson(std::string text);
std::vector<ResearchPresentation::Dataset> hostDatasetsFromJson(std::string text);

}  // namespace zelvo
