// Owns which operation runs, which fields it needs, and which fields of the response it sets.

#include <string>

#include <gtest/gtest.h>

#include "FakeProcess.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using enum DocumentWorkerRequest::Operation;

TEST(Dispatcher, RefusesMissingFieldsBeforeAnyWork) {
  const auto outcome = [](DocumentWorkerRequest::Operation operation, auto field) {
    DocumentWorkerRequest request = testing::completeRequest(operation);
    request.data = ByteBuffer();  // the engine would fail with another error
    (request.*field).reset();
    return testing::outcomeOf([&] { run(std::move(request)); });
  };
  const char* const plan = "invalidSelection: The document plan is incomplete.";
  using Request = DocumentWorkerRequest;
  EXPECT_EQ(outcome(extract, &Request::selection), "invalidSelection: Choose a table.");
  EXPECT_EQ(outcome(create, &Request::selection), plan);
  EXPECT_EQ(outcome(create, &Request::format), plan);
  EXPECT_EQ(outcome(create, &Request::title), plan);
  EXPECT_EQ(outcome(validate, &Request::format), "validationFailed: Missing document format.");
}

TEST(Dispatcher, ExpectsWhatTheRequestNames) {
  const auto passesWith = [](void (*change)(DocumentWorkerRequest&)) {
    DocumentWorkerRequest request = testing::validationOfCreated();
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
