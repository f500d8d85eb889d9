#include "zelvo/WorkerExchange.hpp"

#include <utility>

#include "zelvo/DocumentFile.hpp"

namespace zelvo {
namespace {

Complaint complaintOf(const WorkerFailure& failure) {
  const bool isRefusal = failure.kind == WorkerFailure::Kind::requestTooLarge;
  return {isRefusal ? ExitStatus::refused : ExitStatus::workerFailed, failure.message()};
}

}  // namespace

std::variant<DocumentWorkerRequest, Complaint> requestAbout(const std::string& path) {
  auto file = readDocument(path, DocumentWorkerHost::unsendableBytes);
  if (auto* failure = std::get_if<std::string>(&file))
    return Complaint{ExitStatus::refused, std::move(*failure)};
  auto& document = *std::get_if<DocumentFile>(&file);
  return DocumentWorkerRequest{.data = std::move(document.data),
                               .sourceName = std::move(document.sourceName)};
}

std::variant<DocumentWorkerResponse, Complaint> ask(const DocumentWorkerHost& host,
                                                    const DocumentWorkerRequest& request) {
  WorkerReply reply = host.send(request);
  if (const auto* failure = std::get_if<WorkerFailure>(&reply)) return complaintOf(*failure);
  auto& response = *std::get_if<DocumentWorkerResponse>(&reply);
  if (response.error) return Complaint{ExitStatus::refused, *std::move(response.error)};
  return std::move(response);
}

}  // namespace zelvo
