#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Research/ResearchSpreadsheet.hpp"
#include "zelvo/Complaint.hpp"
#include "zelvo/ResearchCommandLine.hpp"

namespace zelvo {

/// A file's text, as it is, or why it cannot be had.
std::variant<std::string, Complaint> readText(const std::string& path);

/// A file that the host gives beside the model's result: only who is confined decodes it.
struct HostFile {
  std::string path;
  std::string text;

  /// Gives the text up to `decode`. Throws `DecodingError`, which names the file.
  template <typename Decode>
  auto decoded(const Decode& decode) {
    try {
      return decode(std::move(text));
    } catch (const DecodingError& error) {
      throw DecodingError(error.what(), path);
    }
  }
};

std::variant<HostFile, Complaint> readHostFile(const std::string& path);

/// What a model has written and what it may cite, as the files' texts: only who is confined decodes them.
struct ResearchInput {
  std::string text;
  AllowedSources allowedSources;
  std::optional<HostFile> scopeFile;

  /// Gives up the file's text. Throws `DecodingError`.
  std::optional<ResearchSourceScope> takeSourceScope();
};

std::variant<ResearchInput, Complaint> readResearchInput(const std::string& path,
                                                         const SourceArguments& sources);

}  // namespace zelvo
