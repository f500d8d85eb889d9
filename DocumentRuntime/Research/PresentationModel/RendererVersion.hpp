#pragma once

#include <cstdint>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

/// The features of the versions of the presentation renderer. A host passes the version that it was built
/// for, so that a newer renderer does not change the appearance of its decks.
namespace zelvo::PresentationRendererVersion {

inline constexpr std::int64_t oldest = 1;
inline constexpr std::int64_t newest = 4;

/// Charts of a shared dataset are drawn from version 3 on, those of a collection from 4 on. Throws
/// `DocumentError` unsupported for a version that does not exist or cannot draw what the slides show.
void check(std::int64_t version, const ResearchPresentation& presentation);

}  // namespace zelvo::PresentationRendererVersion
