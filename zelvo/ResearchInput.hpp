#pragma once

#include <optional>
#include <string>
#include <variant>

#include "DocumentRuntime/Research/ResearchSpreadsheet.hpp"
#include "zelvo/Complaint.hpp"
#include "zelvo/ResearchCommandLine.hpp"

namespace zelvo {

/// A file's text, as it is, or why it cannot be had.
std::variant<std::string, Complaint> readText(const std::string& path);

/// What a model has written and what it may cite, as the files' texts: only who is confined decodes them.
struct ResearchInput {
  std::string text;
  AllowedSources allowedSources;
  std::optional<std::string> scopeText;

  /// Throws `DecodingError`.
  std::optional<ResearchSourceScope> sourceScope() const;
};

std::variant<ResearchInput, Complaint> readResearchInput(const std::string& path,
                                                         const SourceArguments& sources);

}  // namespace zelvo
