#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

namespace zelvo {

/// A vector for plain data that grows by `realloc`: large blocks are moved by remapping pages, so growing
/// never holds two copies, and reserved memory that is never written is never resident. Move-only.
template <typename T>
class GrowingArray {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  GrowingArray() = default;
  GrowingArray(GrowingArray&& other) noexcept
      : items_(std::exchange(other.items_, nullptr)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}
  GrowingArray& operator=(GrowingArray&& other) noexcept {
    std::swap(items_, other.items_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
    return *this;
  }
  GrowingArray(const GrowingArray&) = delete;
  GrowingArray& operator=(const GrowingArray&) = delete;
  ~GrowingArray() { std::free(items_); }

  void push(const T& item) {
    if (size_ == capacity_) reallocate(capacity_ == 0 ? initialCapacity : capacity_ * 2);
    items_[size_++] = item;
  }
  /// Appends `count` items.
  void append(const T* items, std::size_t count) {
    if (count > capacity_ - size_) reallocate(std::max(capacity_ * 2, size_ + count));
    for (std::size_t i = 0; i < count; ++i)
      items_[size_ + i] = items[i];
    size_ += count;
  }
  void reserve(std::size_t capacity) {
    if (capacity > capacity_) reallocate(capacity);
  }
  void shrinkToFit() {
    if (size_ > 0 && size_ < capacity_) reallocate(size_);
  }

  T& operator[](std::size_t index) { return items_[index]; }
  const T& operator[](std::size_t index) const { return items_[index]; }
  const T* data() const { return items_; }
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  std::size_t byteCount() const { return size_ * sizeof(T); }

 private:
  static constexpr std::size_t initialCapacity = 16;

  void reallocate(std::size_t capacity) {
    // The sizes here are bounded by those of archive parts, far from overflowing.
    void* const grown = std::realloc(items_, capacity * sizeof(T));
    if (grown == nullptr) throw std::bad_alloc();
    items_ = static_cast<T*>(grown);
    capacity_ = capacity;
  }

  T* items_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace zelvo
