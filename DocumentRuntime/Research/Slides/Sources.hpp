#pragma once

#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// One source of a slide.
struct SlideSource {
  std::string name;         ///< for the footer; may be cut at its end
  std::string observation;  ///< follows the name, never cut
  std::string identity;     ///< all metadata, for the description of the footer's line
};

/// A slide's sources, each once: with a scope, its records; without, its URLs in their order, then the
/// identifiers.
std::vector<SlideSource> slideSources(const ResearchPresentation::Slide& slide,
                                      const std::optional<ResearchSourceScope>& scope);

}  // namespace zelvo
