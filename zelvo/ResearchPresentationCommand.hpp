#pragma once

#include "zelvo/ExitStatus.hpp"
#include "zelvo/ResearchCommandLine.hpp"

namespace zelvo {

/// `zelvo research presentation`: validates a deck with the host's datasets, and prints it in its canonical
/// form or draws it.
ExitStatus researchPresentation(const ResearchPresentationArguments& arguments);

}  // namespace zelvo
