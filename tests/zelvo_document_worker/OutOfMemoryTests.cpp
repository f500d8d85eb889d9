#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "FakeProcess.hpp"
#include "Support/PackageBuilder.hpp"

namespace {

constexpr std::size_t never = ~std::size_t{0};

/// How many allocations succeed before one fails; `never` again after it.
std::size_t allocationsUntilFailure = never;

void* allocate(std::size_t size) {
  if (allocationsUntilFailure != never && allocationsUntilFailure-- == 0) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

// The whole program's allocation functions, the worker's among them.
void* operator new(std::size_t size) {
  if (void* const memory = allocate(size)) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
  return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace zelvo {
namespace {

/// The status, or none when the run takes fewer allocations. The fake's own are among those that fail, as if
/// the worker had made them.
std::optional<int> runUntilFailure(testing::FakeProcess& process, std::size_t allocations) {
  allocationsUntilFailure = allocations;
  const int status = process.run();
  const bool hasFailed = allocationsUntilFailure == never;
  allocationsUntilFailure = never;
  return hasFailed ? std::optional(status) : std::nullopt;
}

TEST(OutOfMemory, WhicheverAllocationFailsNothingIsWritten) {
  DocumentWorkerRequest request;
  request.data = ByteBuffer::copyOf(testing::workbookPackage(testing::richWorkbook()).archive().bytes());
  request.sourceName = "a workbook with a name that is not short.xlsx";
  request.selection = {.sheetName = "Sales", .range = "A1:E4", .allowCachedFormulaValues = true};
  using enum DocumentWorkerRequest::Operation;
  for (const auto operation : {inspect, extract}) {
    request.operation = operation;
    const std::string input = toJson(request);
    for (std::size_t allocations = 0;; ++allocations) {
      testing::FakeProcess process;
      process.input = input;
      process.events.reserve(64);
      const std::optional<int> status = runUntilFailure(process, allocations);
      if (!status) {
        EXPECT_GT(allocations, 10U);
        break;
      }
      ASSERT_EQ(*status, 65) << "allocation " << allocations << " of operation "
                             << static_cast<int>(operation);
      ASSERT_EQ(process.count("write"), 0U) << allocations;
    }
  }
}

}  // namespace
}  // namespace zelvo
