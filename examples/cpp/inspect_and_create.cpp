// A host: has a confined worker inspect a workbook, and write a table of it as a Word document.
//
//   inspect_and_create WORKER BOOK.xlsx OUT.docx

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <variant>

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"

namespace {

using Operation = zelvo::DocumentWorkerRequest::Operation;

/// The response, or nothing after the reason was printed.
std::optional<zelvo::DocumentWorkerResponse> ask(const zelvo::DocumentWorkerHost& host,
                                                 const zelvo::DocumentWorkerRequest& request) {
  zelvo::WorkerReply reply = host.send(request);
  if (const auto* failure = std::get_if<zelvo::WorkerFailure>(&reply)) {
    std::cerr << failure->message() << "\n";
    return std::nullopt;
  }
  auto& response = std::get<zelvo::DocumentWorkerResponse>(reply);
  if (!response.error) return std::move(response);
  std::cerr << *response.error << "\n";  // the document was refused
  return std::nullopt;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return 2;
  std::ifstream book(arguments[2], std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(book), {}};
  const zelvo::DocumentWorkerHost host(arguments[1]);
  zelvo::DocumentWorkerRequest request;
  request.data = zelvo::ByteBuffer::copyOf(bytes);
  request.sourceName = arguments[2];

  const auto inspected = ask(host, request);
  if (!inspected) return 1;
  const zelvo::WorksheetInspection& sheet = inspected->inspection->sheets.front();
  std::cout << sheet.name << ": " << sheet.populatedRange.value_or("empty") << "\n";

  request.operation = Operation::create;
  request.selection = {.sheetName = sheet.name,
                       .range = "A1:D5",
                       .firstRowIsHeader = true,
                       .includeHiddenRows = false,
                       .allowCachedFormulaValues = true};
  request.format = zelvo::DocumentFormat::docx;
  request.title = "Quarterly sales";
  const auto created = ask(host, request);
  if (!created) return 1;
  std::ofstream(arguments[3], std::ios::binary) << created->document->data.text();
  std::cout << arguments[3] << ": " << created->document->data.size() << " bytes\n";
}
