#include "zelvo_document_worker/Dispatcher.hpp"

#include <utility>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "DocumentRuntime/Engine/DocumentEngine.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "zelvo_document_worker/WorkerEntry.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

template <typename T>
const T* pointerTo(const std::optional<T>& value) {
  return value ? &*value : nullptr;
}

/// About the size of a response, so that it is not copied as it grows. Memory that is never written is never
/// resident.
std::size_t expectedBytes(const DocumentWorkerResponse& response) {
  constexpr std::size_t otherFields = 16'384;
  constexpr std::size_t cell = 256;
  std::size_t bytes = otherFields;
  if (response.table) bytes += response.table->rows.size() * response.table->columns.size() * cell;
  if (response.document) bytes += Base64::encodedSize(response.document->data.size());
  return bytes;
}

DocumentWorkerResponse inspect(DocumentWorkerRequest request) {
  DocumentWorkerResponse response;
  response.inspection = DocumentEngine::inspectXLSX(std::move(request.data), request.sourceName);
  return response;
}

DocumentWorkerResponse extract(DocumentWorkerRequest request) {
  if (!missingKeys(request).empty()) throw DocumentError::invalidSelection("Choose a table.");
  DocumentWorkerResponse response;
  response.table =
      DocumentEngine::extractTable(std::move(request.data), request.sourceName, *request.selection);
  return response;
}

DocumentWorkerResponse create(DocumentWorkerRequest request) {
  if (!missingKeys(request).empty())
    throw DocumentError::invalidSelection("The document plan is incomplete.");
  DocumentWorkerResponse response;
  response.table =
      DocumentEngine::extractTable(std::move(request.data), request.sourceName, *request.selection);
  // A Word document never carries a chart: the request's is ignored.
  response.document = *request.format == DocumentFormat::docx
                          ? DocumentEngine::createDOCX(*response.table, *request.title)
                          : DocumentEngine::createPPTX(*response.table, *request.title, request.chart);
  return response;
}

DocumentWorkerResponse validate(DocumentWorkerRequest request) {
  if (!missingKeys(request).empty()) throw DocumentError::validationFailed("Missing document format.");
  DocumentWorkerResponse response;
  response.validation = DocumentEngine::validate(request.data.view(), *request.format,
                                                 pointerTo(request.expectedTable), pointerTo(request.chart));
  return response;
}

}  // namespace

DocumentWorkerResponse run(DocumentWorkerRequest&& request) {
  switch (request.operation) {
    case Operation::inspect:
      return inspect(std::move(request));
    case Operation::extract:
      return extract(std::move(request));
    case Operation::create:
      return create(std::move(request));
    case Operation::validate:
      return validate(std::move(request));
  }
  return {};
}

std::optional<std::string> answerDocumentRequest(std::string request) {
  auto decoded = fromJson<DocumentWorkerRequest>(std::move(request));
  try {
    const DocumentWorkerResponse response = run(std::move(decoded));
    return toJson(response, expectedBytes(response));
  } catch (const ResponseTooLarge&) {
    throw;
  } catch (const DocumentError& error) {
    DocumentWorkerResponse response;
    response.error = reportedError(error);
    return toJson(response);
  }
}

}  // namespace zelvo
