#pragma once

#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/Research/ResearchPresentation.hpp"

namespace zelvo {

/// The slide parts of a research deck, without the XML declaration, in order: a cover, then slides of points
/// or of one chart and what it says. Every text is one run of one paragraph; fonts are as large as lets the
/// texts fit.
///
/// Throws `DocumentError` unsupported "slide text needs too much space".
std::vector<std::string> researchSlides(const ResearchPresentation& presentation,
                                        const std::optional<ResearchSourceScope>& scope);

}  // namespace zelvo
