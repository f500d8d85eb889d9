// Owns which operation runs, which fields it needs, and which fields of the response it sets.

#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "zelvo_document_worker/Dispatcher.hpp"

namespace zelvo {
namespace {

using enum DocumentWorkerRequest::Operation;

/// Has every field that an operation needs.
DocumentWorkerRequest completeRequest(DocumentWorkerRequest::Operation operation) {
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

TEST(Dispatcher, RefusesMissingFieldsBeforeAnyWork) {
  const auto outcome = [](DocumentWorkerRequest::Operation operation,
                          void (*change)(DocumentWorkerRequest&)) {
    DocumentWorkerRequest request = completeRequest(operation);
    request.data = ByteBuffer();  // the engine would fail with another error
    change(request);
    return testing::outcomeOf([&] { run(std::move(request)); });
  };
  const auto noSelection = [](auto& request) { request.selection.reset(); };
  const auto noFormat = [](auto& request) { request.format.reset(); };
  const char* const plan = "invalidSelection: The document plan is incomplete.";
  EXPECT_EQ(outcome(extract, noSelection), "invalidSelection: Choose a table.");
  EXPECT_EQ(outcome(create, noSelection), plan);
  EXPECT_EQ(outcome(create, noFormat), plan);
  EXPECT_EQ(outcome(create, [](auto& request) { request.title.reset(); }), plan);
  EXPECT_EQ(outcome(validate, noFormat), "validationFailed: Missing document format.");
}

TEST(Dispatcher, ExpectsWhatTheRequestNames) {
  const auto passesWith = [](void (*change)(DocumentWorkerRequest&)) {
    DocumentWorkerResponse created = run(completeRequest(create));
    DocumentWorkerRequest request = completeRequest(validate);
    request.data = std::move(created.document->data);
    request.expectedTable = created.table;
    change(request);
    return testing::outcomeOf([&] { run(std::move(request)); }) == "";
  };
  EXPECT_TRUE(passesWith([](auto&) {}));
  EXPECT_FALSE(passesWith([](auto& request) { request.format = DocumentFormat::docx; }));
  EXPECT_FALSE(passesWith([](auto& request) { request.chart.reset(); }));
  EXPECT_FALSE(passesWith([](auto& request) { request.expectedTable->columns[0] = "another"; }));
}

}  // namespace
}  // namespace zelvo
