#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "zelvo_document_worker/Dispatcher.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

/// Has all that any operation needs.
DocumentWorkerRequest completeRequest(Operation operation) {
  DocumentWorkerRequest request;
  request.operation = operation;
  request.data = ByteBuffer::copyOf(testing::workbookPackage(testing::richWorkbook()).archive().bytes());
  request.sourceName = "sales.xlsx";
  request.selection = {.sheetName = "Sales", .range = "A1:B2", .firstRowIsHeader = true};
  request.format = DocumentFormat::pptx;
  request.title = "Sales";
  request.chart = {.categoryColumn = 0, .valueColumn = 1, .title = "Revenue"};
  return request;
}

/// The keys of the response's JSON object.
std::string keysOf(const DocumentWorkerResponse& response) {
  const JsonDocument document(toJson(response));
  std::string keys;
  for (const JsonMember member : document.root().object())
    keys.append(member.key).append(" ");
  return keys;
}

TEST(Dispatcher, WhatIsMissingIsSaidBeforeAnyWork) {
  const auto outcome = [](Operation operation, void (*spoil)(DocumentWorkerRequest&)) {
    DocumentWorkerRequest request = completeRequest(operation);
    request.data = ByteBuffer();  // an engine call would fail with another error
    spoil(request);
    return testing::outcomeOf([&] { run(std::move(request)); });
  };
  const auto noSelection = [](auto& request) { request.selection.reset(); };
  const auto noFormat = [](auto& request) { request.format.reset(); };
  const char* const plan = "invalidSelection: The document plan is incomplete.";
  EXPECT_EQ(outcome(Operation::extract, noSelection), "invalidSelection: Choose a table.");
  EXPECT_EQ(outcome(Operation::create, noSelection), plan);
  EXPECT_EQ(outcome(Operation::create, noFormat), plan);
  EXPECT_EQ(outcome(Operation::create, [](auto& request) { request.title.reset(); }), plan);
  EXPECT_EQ(outcome(Operation::validate, noFormat), "validationFailed: Missing document format.");
}

/// A request to validate what a complete request creates.
DocumentWorkerRequest validation(DocumentWorkerResponse& created) {
  DocumentWorkerRequest request = completeRequest(Operation::validate);
  request.data = std::move(created.document->data);
  request.expectedTable = created.table;
  return request;
}

TEST(Dispatcher, EachOperationSetsItsOwnFields) {
  EXPECT_EQ(keysOf(run(completeRequest(Operation::inspect))), "inspection ");
  EXPECT_EQ(keysOf(run(completeRequest(Operation::extract))), "table ");

  DocumentWorkerResponse created = run(completeRequest(Operation::create));
  EXPECT_EQ(keysOf(created), "table document ");
  EXPECT_EQ(created.document->format, DocumentFormat::pptx);

  const DocumentWorkerResponse validated = run(validation(created));
  EXPECT_EQ(keysOf(validated), "validation ");
  EXPECT_EQ(validated.validation, created.document->validation);
}

TEST(Dispatcher, AWordDocumentIgnoresTheChart) {
  DocumentWorkerRequest request = completeRequest(Operation::create);
  request.format = DocumentFormat::docx;
  request.chart = {.categoryColumn = 70, .valueColumn = 70, .title = "impossible"};
  EXPECT_EQ(run(std::move(request)).document->format, DocumentFormat::docx);
}

TEST(Dispatcher, ValidationExpectsWhatTheRequestSays) {
  const auto passesWith = [](void (*change)(DocumentWorkerRequest&)) {
    DocumentWorkerResponse created = run(completeRequest(Operation::create));
    DocumentWorkerRequest request = validation(created);
    change(request);
    return testing::outcomeOf([&] { run(std::move(request)); }) == "";
  };
  EXPECT_TRUE(passesWith([](auto&) {}));
  EXPECT_TRUE(passesWith([](auto& request) { request.title = "ignored"; }));
  EXPECT_FALSE(passesWith([](auto& request) { request.format = DocumentFormat::docx; }));
  EXPECT_FALSE(passesWith([](auto& request) { request.chart.reset(); }));
  EXPECT_FALSE(passesWith([](auto& request) { request.expectedTable->columns[0] = "another"; }));
}

}  // namespace
}  // namespace zelvo
