#pragma once

#include <optional>
#include <string>
#include <variant>

#include "DocumentRuntime/Research/ResearchSpreadsheet.hpp"
#include "zelvo/CommandLine.hpp"
#include "zelvo/WorkerExchange.hpp"

namespace zelvo {

/// A file's text, as it is, or why it cannot be had.
std::variant<std::string, Complaint> readText(const std::string& path);

/// What rows may cite, with the scope as its file's text: who confines itself decodes it later.
struct SourceInput {
  AllowedSources allowedSources;
  std::optional<std::string> scopeText;

  /// Throws `DecodingError`.
  std::optional<ResearchSourceScope> scope() const;
};

std::variant<SourceInput, Complaint> readSources(const SourceArguments& arguments);

}  // namespace zelvo
