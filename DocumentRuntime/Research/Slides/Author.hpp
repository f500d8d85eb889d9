#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// One slide part of a research deck, without the XML declaration: the cover, which is the first, a slide of
/// points, or a slide with one chart and its insight. Every text is one run of one paragraph, in the largest
/// font size that fits.
///
/// Throws `DocumentError` unsupported "slide text needs too much space".
std::string researchSlide(const ResearchPresentation& presentation, std::size_t index,
                          const std::optional<ResearchSourceScope>& scope);

}  // namespace zelvo
