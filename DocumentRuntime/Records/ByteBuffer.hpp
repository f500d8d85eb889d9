#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace zelvo {

using ByteView = std::span<const std::uint8_t>;

inline ByteView bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}
inline std::string_view textOf(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Owned bytes of a fixed size: a document, an archive entry. Moved or shared, compared by content.
///
/// Fresh storage is not zeroed, because everything here is filled at once by a decoder, and pages that are
/// never written are never resident.
class ByteBuffer {
 public:
  /// NUL bytes that can be read behind the last byte of a buffer that is not empty: a parser needs no test
  /// for the end, and may read whole words.
  static constexpr std::size_t spareBytes = 16;

  ByteBuffer() = default;
  explicit ByteBuffer(std::size_t size)
      : bytes_(std::make_shared_for_overwrite<std::uint8_t[]>(size + spareBytes)), size_(size) {
    std::fill_n(bytes_.get() + size, spareBytes, std::uint8_t{0});
  }
  /// A buffer that was moved from is empty.
  ByteBuffer(ByteBuffer&& other) noexcept
      : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
  ByteBuffer& operator=(ByteBuffer&& other) noexcept {
    bytes_ = std::move(other.bytes_);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }
  ByteBuffer(const ByteBuffer&) = delete;
  ByteBuffer& operator=(const ByteBuffer&) = delete;
  ~ByteBuffer() = default;

  /// Another owner of the same bytes, which must not be changed any more.
  ByteBuffer shared() const {
    ByteBuffer other;
    other.bytes_ = bytes_;
    other.size_ = size_;
    return other;
  }

  static ByteBuffer copyOf(ByteView bytes) {
    ByteBuffer buffer(bytes.size());
    std::copy(bytes.begin(), bytes.end(), buffer.data());
    return buffer;
  }
  static ByteBuffer copyOf(std::string_view text) { return copyOf(bytesOf(text)); }

  std::uint8_t* data() { return bytes_.get(); }
  const std::uint8_t* data() const { return bytes_.get(); }
  std::size_t size() const { return size_; }

  /// Valid while this buffer lives and is not assigned to.
  ByteView view() const { return {bytes_.get(), size_}; }
  std::string_view text() const { return textOf(view()); }

  friend bool operator==(const ByteBuffer& a, const ByteBuffer& b) { return a.text() == b.text(); }

 private:
  std::shared_ptr<std::uint8_t[]> bytes_;
  std::size_t size_ = 0;
};

}  // namespace zelvo
