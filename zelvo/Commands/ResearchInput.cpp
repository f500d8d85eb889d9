#include "zelvo/Commands/ResearchInput.hpp"

#include <cstddef>

#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "zelvo/Execution/InputFile.hpp"

namespace zelvo {
namespace {

/// Far more than any valid research input, and little enough to read before its kind is known.
constexpr std::size_t maximumFileMebibytes = 16;

}  // namespace

Result<std::string> readText(const std::string& path) {
  const auto file = readWholeFile(path, maximumFileMebibytes);
  if (!file) return file.error();
  return std::string(file->text());
}

Result<HostFile> readHostFile(const std::string& path) {
  auto text = readText(path);
  if (!text) return text.error();
  return HostFile{path, *std::move(text)};
}

std::optional<ResearchSourceScope> ResearchInput::takeSourceScope() {
  if (!scopeFile) return std::nullopt;
  return scopeFile->decoded(researchSourceScopeFromJson);
}

Result<ResearchInput> readResearchInput(const std::string& path, const SourceArguments& sources) {
  ResearchInput input;
  auto text = readText(path);
  if (!text) return text.error();
  input.text = *std::move(text);

  if (sources.noSources || !sources.sources.empty()) input.allowedSources = sources.sources;
  if (sources.scopeFile.empty()) return input;
  auto scope = readHostFile(sources.scopeFile);
  if (!scope) return scope.error();
  input.scopeFile = *std::move(scope);
  return input;
}

}  // namespace zelvo
