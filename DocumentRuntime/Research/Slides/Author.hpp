#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// One slide part of a research deck, without the XML declaration: the cover, which is the first, or a slide
/// of points, or of one chart and what it says. Every text is one run of one paragraph; fonts are as large as
/// lets the texts fit.
///
/// Throws `DocumentError` unsupported "slide text needs too much space".
std::string researchSlide(const ResearchPresentation& presentation, std::size_t index,
                          const std::optional<ResearchSourceScope>& scope);

}  // namespace zelvo
