#pragma once

#include <cstddef>

/// What a program that links `HeapUse` has on the heap: every allocation of the program and its libraries is
/// counted, and can be made to fail. Under a sanitizer, whose allocator cannot be replaced, allocations are
/// counted only.
namespace zelvo::testing {

/// How many are allocated and not yet freed, by all threads.
std::size_t liveBlocks();

/// While this lives, an allocation fails: the first after `skipped` others.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t skipped);
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation();

  bool hasFailed() const;
};

/// While this lives, the program may allocate so many bytes more than it holds now. The allocation that takes
/// it above aborts the program, so that a debugger or a sanitizer shows where. One at a time.
class HeapLimit {
 public:
  explicit HeapLimit(std::size_t bytes);
  HeapLimit(const HeapLimit&) = delete;
  HeapLimit& operator=(const HeapLimit&) = delete;
  ~HeapLimit();
};

}  // namespace zelvo::testing
