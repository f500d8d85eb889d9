#pragma once

#include <optional>
#include <string>
#include <utility>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"
#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// The unchanged text of a file.
Result<std::string> readText(const std::string& path);

/// A file of the host's. It is decoded in a confined child only.
struct HostFile {
  std::string path;
  std::string text;

  /// Moves the text to `decode`. Throws a `DecodingError` that names the file.
  template <typename Decode>
  auto decoded(const Decode& decode) {
    try {
      return decode(std::move(text));
    } catch (const DecodingError& error) {
      throw DecodingError(error.what(), path);
    }
  }
};

Result<HostFile> readHostFile(const std::string& path);

/// The texts of a model's result and of what it may cite. They are decoded in a confined child only.
struct ResearchInput {
  std::string text;
  AllowedSources allowedSources;
  std::optional<HostFile> scopeFile;

  /// Moves the scope file's text out. Throws `DecodingError`.
  std::optional<ResearchSourceScope> takeSourceScope();
};

Result<ResearchInput> readResearchInput(const std::string& path, const SourceArguments& sources);

}  // namespace zelvo
