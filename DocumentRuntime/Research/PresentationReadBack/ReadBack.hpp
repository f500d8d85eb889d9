#pragma once

#include <optional>
#include <stop_token>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// Reads a written deck through the same checks as untrusted input and compares it with the presentation: its
/// slides, their texts, their sources, and the data of their charts. The presentation must be valid.
///
/// Throws `DocumentError` validationFailed, for the first difference: "A slide is missing."; for each slide
/// in turn "Slide content did not survive delivery.", "Slide source identities did not survive delivery." or
/// "Trusted source coverage and observation time did not survive presentation delivery."; then "Slide chart
/// data did not survive delivery." Also what the package gate and `WorkbookReader` throw, and `Cancelled`.
void readBackResearchPresentation(ByteView deck, const ResearchPresentation& presentation,
                                  const std::optional<ResearchSourceScope>& scope,
                                  const std::stop_token& stop = {});

}  // namespace zelvo
