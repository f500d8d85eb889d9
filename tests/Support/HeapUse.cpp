#include "Support/HeapUse.hpp"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>

#if ZELVO_SANITIZE
#include <sanitizer/allocator_interface.h>
#endif

namespace zelvo::testing {
namespace {

constexpr std::ptrdiff_t never = PTRDIFF_MAX;

std::atomic<std::size_t> blocks = 0;
std::atomic<std::size_t> bytes = 0;
std::atomic<std::size_t> allowedBytes = SIZE_MAX;

/// Zero: the next allocation fails. Negative: one has failed.
std::atomic<std::ptrdiff_t> allocationsUntilFailure = never;

void count(std::size_t size) {
  ++blocks;
  if ((bytes += size) <= allowedBytes) return;
  allowedBytes = SIZE_MAX;  // reporting allocates, too
  std::fputs("more bytes are allocated than the limit allows\n", stderr);
  std::abort();
}

void discount(std::size_t size) {
  --blocks;
  bytes -= size;
}

}  // namespace

std::size_t liveBlocks() {
  return blocks;
}

FailingAllocation::FailingAllocation(std::size_t skipped) {
  allocationsUntilFailure = static_cast<std::ptrdiff_t>(skipped);
}
FailingAllocation::~FailingAllocation() {
  allocationsUntilFailure = never;
}
bool FailingAllocation::hasFailed() const {
  return allocationsUntilFailure < 0;
}

HeapLimit::HeapLimit(std::size_t more) {
  allowedBytes = bytes + more;
}
HeapLimit::~HeapLimit() {
  allowedBytes = SIZE_MAX;
}

#if ZELVO_SANITIZE

namespace {

void noteAllocation(const volatile void*, std::size_t size) {
  count(size);
}

void noteRelease(const volatile void* block) {
  if (block != nullptr) discount(__sanitizer_get_allocated_size(const_cast<const void*>(block)));
}

[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(noteAllocation, noteRelease);

}  // namespace
}  // namespace zelvo::testing

#else

namespace {

/// The block that `allocate` returns, or null if this allocation is to fail. It replaces a block of so many
/// bytes, if any, as if the two were never there at once: the system moves the pages of a large block.
template <typename Allocate>
void* counted(Allocate allocate, std::size_t replaced = 0) {
  void* const block =
      allocationsUntilFailure != never && allocationsUntilFailure-- == 0 ? nullptr : allocate();
  if (block == nullptr) {
    errno = ENOMEM;
    return nullptr;
  }
  if (replaced > 0) discount(replaced);
  count(malloc_usable_size(block));
  return block;
}

}  // namespace
}  // namespace zelvo::testing

// The allocation functions of the whole program, shared libraries included: the C library's own stay
// available under these names. Bytes are counted as the allocator rounds them. No library here uses the other
// functions that align.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the C library's names.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) noexcept {
  return zelvo::testing::counted([&] { return __libc_malloc(size); });
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  return zelvo::testing::counted([&] { return __libc_calloc(count, size); });
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return zelvo::testing::counted([&] { return __libc_memalign(alignment, size); });
}

void free(void* block) noexcept {
  if (block == nullptr) return;
  zelvo::testing::discount(malloc_usable_size(block));
  __libc_free(block);
}

void* realloc(void* block, std::size_t size) noexcept {
  if (block == nullptr) return malloc(size);
  const std::size_t before = malloc_usable_size(block);
  return zelvo::testing::counted([&] { return __libc_realloc(block, size); }, before);
}

}  // extern "C"
   // NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

#endif
