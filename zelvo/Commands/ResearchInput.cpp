#include "zelvo/ResearchInput.hpp"

#include <cstddef>
#include <utility>

#include "DocumentRuntime/Research/ResearchSourceScopeCoding.hpp"
#include "zelvo/DocumentFile.hpp"

namespace zelvo {
namespace {

/// Far above what any research input may hold, and little enough to read before knowing what it is.
constexpr std::size_t maximumFileBytes = 16U << 20;

}  // namespace

std::variant<std::string, Complaint> readText(const std::string& path) {
  auto file = readDocument(path, maximumFileBytes + 1);
  if (auto* failure = std::get_if<std::string>(&file))
    return Complaint{ExitStatus::refused, std::move(*failure)};
  const auto& document = *std::get_if<DocumentFile>(&file);
  if (document.data.size() > maximumFileBytes)
    return Complaint{ExitStatus::refused, "The file is larger than 16 MiB: " + path};
  return std::string(document.data.text());
}

std::variant<HostFile, Complaint> readHostFile(const std::string& path) {
  auto text = readText(path);
  if (auto* complaint = std::get_if<Complaint>(&text)) return std::move(*complaint);
  return HostFile{path, std::move(*std::get_if<std::string>(&text))};
}

std::optional<ResearchSourceScope> ResearchInput::takeSourceScope() {
  if (!scopeFile) return std::nullopt;
  return scopeFile->decoded(researchSourceScopeFromJson);
}

std::variant<ResearchInput, Complaint> readResearchInput(const std::string& path,
                                                         const SourceArguments& sources) {
  ResearchInput input;
  auto text = readText(path);
  if (auto* complaint = std::get_if<Complaint>(&text)) return std::move(*complaint);
  input.text = std::move(*std::get_if<std::string>(&text));

  if (sources.noSources || !sources.sources.empty()) input.allowedSources = sources.sources;
  if (sources.scopeFile.empty()) return input;
  auto scope = readHostFile(sources.scopeFile);
  if (auto* complaint = std::get_if<Complaint>(&scope)) return std::move(*complaint);
  input.scopeFile = std::move(*std::get_if<HostFile>(&scope));
  return input;
}

}  // namespace zelvo
