#include "zelvo/Execution/WorkerExchange.hpp"

#include <filesystem>
#include <system_error>
#include <utility>
#include <variant>

#if defined(__APPLE__)
#include <array>
#include <mach-o/dyld.h>
#endif

#include "Sandbox/ConfinedRun.hpp"
#include "zelvo/Execution/InputFile.hpp"

namespace zelvo {
namespace {

std::filesystem::path runningExecutable() {
  std::error_code ignored;
#if defined(__APPLE__)
  std::array<char, 4096> path = {};
  auto size = static_cast<std::uint32_t>(path.size());
  if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
  return std::filesystem::canonical(path.data(), ignored);
#else
  return std::filesystem::read_symlink("/proc/self/exe", ignored);
#endif
}

Result<DocumentWorkerResponse> resultOf(WorkerReply reply) {
  if (const auto* failure = std::get_if<WorkerFailure>(&reply)) return errorOf(*failure);
  auto& response = std::get<DocumentWorkerResponse>(reply);
  if (response.error) return CommandError{ExitStatus::refused, *std::move(response.error)};
  return std::move(response);
}

}  // namespace

Hosts hostsBesideTool() {
  // If the tool's path is unknown there is no folder. A name alone would be looked up in the current folder.
  const std::filesystem::path tool = runningExecutable();
  const std::filesystem::path folder = tool.empty() ? "/nonexistent" : tool.parent_path();
  return {DocumentWorkerHost((folder / "zelvo_document_worker").string()),
          DocumentCleanerHost((folder / "zelvo_document_cleaner").string())};
}

Result<DocumentWorkerRequest> requestAbout(const std::string& path) {
  Result<InputFile> file = readFile(path, DocumentWorkerHost::unsendableBytes);
  if (!file) return file.error();
  return DocumentWorkerRequest{.data = std::move(file->data), .sourceName = std::move(file->sourceName)};
}

Result<DocumentWorkerResponse> ask(const DocumentWorkerHost& host, const DocumentWorkerRequest& request) {
  return resultOf(host.send(request));
}

Result<DocumentWorkerResponse> ask(const DocumentWorkerHost& host, const DocumentWorkerRequest& request,
                                   std::string members) {
  // The request's own members come last. Of a duplicate key the last one counts, so `members` cannot replace
  // the document or the operation.
  members += ',';
  members += std::string_view(toJson(request)).substr(1);
  return resultOf(host.sendEncoded(members, request.operation));
}

Result<DocumentCleanerResponse> ask(const DocumentCleanerHost& host, const DocumentCleanerRequest& request) {
  CleanerReply reply = host.send(request);
  if (const auto* failure = std::get_if<WorkerFailure>(&reply)) return errorOf(*failure, "The cleaner");
  auto& response = std::get<DocumentCleanerResponse>(reply);
  if (response.error) return CommandError{ExitStatus::refused, *std::move(response.error)};
  return std::move(response);
}

CommandError errorOf(const WorkerFailure& failure, const std::string& subject) {
  using enum WorkerFailure::Kind;
  std::string message = failure.message(subject);
  if (failure.kind == notConfined || failure.kind == killedBeforeReading) {
    const std::string explanation = explainConfinementFailure();
    if (!explanation.empty()) message += " " + explanation;
  }
  return {failure.kind == requestTooLarge ? ExitStatus::refused : ExitStatus::workerFailed, message};
}

}  // namespace zelvo
