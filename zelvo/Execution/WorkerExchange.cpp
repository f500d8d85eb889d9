#include "zelvo/WorkerExchange.hpp"

#include <utility>

#include "zelvo/DocumentFile.hpp"

namespace zelvo {
namespace {

std::variant<DocumentWorkerResponse, Complaint> resultOf(WorkerReply reply) {
  if (const auto* failure = std::get_if<WorkerFailure>(&reply)) return complaintOf(*failure);
  auto& response = *std::get_if<DocumentWorkerResponse>(&reply);
  if (response.error) return Complaint{ExitStatus::refused, *std::move(response.error)};
  return std::move(response);
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
  return resultOf(host.send(request));
}

std::variant<DocumentWorkerResponse, Complaint> ask(const DocumentWorkerHost& host,
                                                    const DocumentWorkerRequest& request,
                                                    std::string members) {
  // The request's members come last, and of a key that stands twice the last one counts: nothing in
  // `members` takes the place of the document or the operation.
  members += ',';
  members += std::string_view(toJson(request)).substr(1);
  return resultOf(host.sendEncoded(members, request.operation));
}

}  // namespace zelvo
