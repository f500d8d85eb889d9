#include <functional>
#include <string>
#include <vector>

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
std::vector<std::string> keysOf(const DocumentWorkerResponse& response) {
  const JsonDocument document(toJson(response));
  std::vector<std::string> keys;
  for (const JsonMember member : document.root().object()) {
    keys.emplace_back(member.key);
  }
  return keys;
}

using Keys = std::vector<std::string>;

TEST(Dispatcher, WhatIsMissingIsSaidBeforeAnyWork) {
  const auto plan = DocumentError::invalidSelection("The document plan is incomplete.");
  struct Row {
    Operation operation;
    std::function<void(DocumentWorkerRequest&)> spoil;
    DocumentError expected;
  };
  const std::vector<Row> rows = {
      {Operation::extract, [](auto& request) { request.selection.reset(); },
       DocumentError::invalidSelection("Choose a table.")},
      {Operation::create, [](auto& request) { request.selection.reset(); }, plan},
      {Operation::create, [](auto& request) { request.format.reset(); }, plan},
      {Operation::create, [](auto& request) { request.title.reset(); }, plan},
      {Operation::validate, [](auto& request) { request.format.reset(); },
       DocumentError::validationFailed("Missing document format.")},
  };
  for (const Row& row : rows) {
    DocumentWorkerRequest request = completeRequest(row.operation);
    request.data = ByteBuffer();  // an engine call would fail with another error
    row.spoil(request);
    const auto error = testing::errorOf([&] { run(std::move(request)); });
    EXPECT_TRUE(error == row.expected) << testing::describe(error);
  }
}

TEST(Dispatcher, EachOperationSetsItsOwnFields) {
  EXPECT_EQ(keysOf(run(completeRequest(Operation::inspect))), Keys{"inspection"});
  EXPECT_EQ(keysOf(run(completeRequest(Operation::extract))), Keys{"table"});

  DocumentWorkerResponse created = run(completeRequest(Operation::create));
  EXPECT_EQ(keysOf(created), (Keys{"table", "document"}));
  EXPECT_EQ(created.document->format, DocumentFormat::pptx);

  DocumentWorkerRequest request = completeRequest(Operation::validate);
  request.data = std::move(created.document->data);
  request.expectedTable = created.table;
  const DocumentWorkerResponse validated = run(std::move(request));
  EXPECT_EQ(keysOf(validated), Keys{"validation"});
  EXPECT_EQ(validated.validation, created.document->validation);
}

TEST(Dispatcher, AWordDocumentIgnoresTheChart) {
  DocumentWorkerRequest request = completeRequest(Operation::create);
  request.format = DocumentFormat::docx;
  request.chart = {.categoryColumn = 70, .valueColumn = 70, .title = "impossible"};
  EXPECT_EQ(run(std::move(request)).document->format, DocumentFormat::docx);
}

TEST(Dispatcher, ValidationExpectsWhatTheRequestSays) {
  const auto errorWith = [](const std::function<void(DocumentWorkerRequest&)>& change) {
    DocumentWorkerResponse created = run(completeRequest(Operation::create));
    DocumentWorkerRequest request = completeRequest(Operation::validate);
    request.data = std::move(created.document->data);
    request.expectedTable = std::move(created.table);
    change(request);
    const auto error = testing::errorOf([&] { run(std::move(request)); });
    return error.has_value();
  };
  EXPECT_FALSE(errorWith([](auto&) {}));
  EXPECT_FALSE(errorWith([](auto& request) { request.title = "ignored"; }));
  EXPECT_TRUE(errorWith([](auto& request) { request.format = DocumentFormat::docx; }));
  EXPECT_TRUE(errorWith([](auto& request) { request.chart.reset(); }));
  EXPECT_TRUE(errorWith(
      [](auto& request) { request.expectedTable->rows[0][1].value = SourceCellValue::number("9"); }));
}

}  // namespace
}  // namespace zelvo
