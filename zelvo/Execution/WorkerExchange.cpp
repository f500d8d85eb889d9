#include "zelvo/Execution/WorkerExchange.hpp"

#include <chrono>
#include <cstdlib>
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

namespace fs = std::filesystem;

constexpr const char* workerName = "zelvo_document_worker";
constexpr const char* cleanerName = "zelvo_document_cleaner";

/// Where the programs are: where the user says, else beside the tool, else where they are installed.
fs::path folderOfPrograms(const std::string& libexec) {
  if (!libexec.empty()) return libexec;
  if (const char* variable = std::getenv("ZELVO_LIBEXEC"); variable != nullptr && *variable != '\0')
    return variable;
  // If the tool's path is unknown there is no folder. A name alone would be looked up in the current folder.
  const fs::path tool = runningExecutable();
  const fs::path beside = tool.empty() ? "/nonexistent" : tool.parent_path();
  const fs::path installed = beside.parent_path() / "libexec" / "zelvo";
  std::error_code ignored;
  return !fs::exists(beside / workerName, ignored) && fs::exists(installed / workerName, ignored) ? installed
                                                                                                  : beside;
}

Result<DocumentWorkerResponse> resultOf(WorkerReply reply) {
  if (const auto* failure = std::get_if<WorkerFailure>(&reply)) return errorOf(*failure);
  auto& response = std::get<DocumentWorkerResponse>(reply);
  if (response.error) return CommandError{ExitStatus::refused, *std::move(response.error)};
  return std::move(response);
}

}  // namespace

Hosts findHosts(const HostArguments& arguments) {
  const fs::path folder = folderOfPrograms(arguments.libexec);
  const std::chrono::milliseconds timeout = std::chrono::seconds(arguments.timeoutSeconds);
  return {DocumentWorkerHost((folder / workerName).string(), timeout),
          DocumentCleanerHost((folder / cleanerName).string(), timeout), folder.string()};
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

CommandError errorWithoutExplanation(const WorkerFailure& failure, const std::string& subject) {
  const bool isRefusal = failure.kind == WorkerFailure::Kind::requestTooLarge;
  return {isRefusal ? ExitStatus::refused : ExitStatus::workerFailed, failure.message(subject)};
}

CommandError errorOf(const WorkerFailure& failure, const std::string& subject) {
  using enum WorkerFailure::Kind;
  CommandError error = errorWithoutExplanation(failure, subject);
  if (failure.kind == notConfined || failure.kind == killedBeforeReading) {
    const std::string explanation = explainConfinementFailure();
    if (!explanation.empty()) error.message += " " + explanation;
  }
  return error;
}

}  // namespace zelvo
