#pragma once

#include <cstdint>
#include <optional>
#include <stop_token>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// Draws a deck as a 16:9 presentation with native, editable charts, and verifies it by reading it back
/// before returning it. The same deck always gives the same bytes.
///
/// Throws `DocumentError`: what `ResearchPresentation::validate` throws with this scope and no list; what
/// `PresentationRendererVersion::check` throws; unsupported "slide text needs too much space"; what the ZIP
/// writer throws; and what `readBackResearchPresentation` throws. Throws `Cancelled`.
ByteBuffer renderPresentation(const ResearchPresentation& presentation, std::int64_t rendererVersion,
                              const std::optional<ResearchSourceScope>& sourceScope,
                              const std::stop_token& stop = {});

}  // namespace zelvo
