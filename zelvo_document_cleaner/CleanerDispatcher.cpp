#include "zelvo_document_cleaner/CleanerDispatcher.hpp"

#include <utility>

#include "DocumentRuntime/Cleaning/WorkbookCleaner.hpp"
#include "DocumentRuntime/Coding/Base64.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentWorkerProtocol/DocumentCleanerMessage.hpp"
#include "zelvo_document_worker/WorkerEntry.hpp"

namespace zelvo {
namespace {

/// Estimated size of a response's other fields, to avoid copies.
constexpr std::size_t usualReportBytes = 16'384;

DocumentCleanerResponse clean(DocumentCleanerRequest request) {
  if (request.version != DocumentCleanerWire::version)
    throw DocumentError::unsupported("request version " + std::to_string(request.version));
  CleanedWorkbook cleaned = cleanWorkbook(std::move(request.data), request.sourceName,
                                          {.sheets = std::move(request.sheets),
                                           .unmerge = request.unmerge.value_or(false),
                                           .plainFormats = request.plainFormats.value_or(false)});
  DocumentCleanerResponse response;
  response.version = DocumentCleanerWire::version;
  response.document = CleanedDocument{.data = std::move(cleaned.data),
                                      .sourceSHA256 = std::move(cleaned.sourceSHA256),
                                      .outputSHA256 = std::move(cleaned.outputSHA256)};
  response.report = std::move(cleaned.report);
  return response;
}

}  // namespace

std::optional<std::string> answerCleaningRequest(std::string request) {
  auto decoded = fromJson<DocumentCleanerRequest>(std::move(request));
  try {
    const DocumentCleanerResponse response = clean(std::move(decoded));
    return toJson(response, Base64::encodedSize(response.document->data.size()) + usualReportBytes);
  } catch (const DocumentError& error) {
    if (error.errorCase() == DocumentError::Case::validationFailed) return std::nullopt;
    DocumentCleanerResponse response;
    response.error = reportedError(error);
    return toJson(response);
  }
}

}  // namespace zelvo
