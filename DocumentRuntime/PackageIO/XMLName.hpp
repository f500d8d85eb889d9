#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zelvo {

/// The bytes that a word compares at once.
inline constexpr std::size_t nameWordBytes = sizeof(std::uint64_t);

/// A name with its first bytes, at most eight, as one word: most names of office formats are that short, and
/// then one comparison of numbers replaces one of texts. Shorter names are filled up with NUL bytes, which no
/// name contains, so names with equal words of less than eight bytes are equal.
///
/// A view: the text must outlive it. The word of a constant is a constant.
class XMLName {
 public:
  constexpr XMLName() = default;
  // NOLINTBEGIN(google-explicit-constructor): callers write names as texts.
  constexpr XMLName(std::string_view text) : text_(text), word_(wordOf(text)) {}
  constexpr XMLName(const char* text) : XMLName(std::string_view(text)) {}
  // NOLINTEND(google-explicit-constructor)

  /// The name of `length` bytes at `text`, from where at least eight bytes must be readable.
  static XMLName at(const char* text, std::size_t length) {
    std::uint64_t word = 0;
    std::memcpy(&word, text, nameWordBytes);
    return {{text, length}, length < nameWordBytes ? word & firstBytes(length) : word};
  }

  constexpr std::string_view text() const { return text_; }
  constexpr std::uint64_t word() const { return word_; }
  constexpr std::size_t size() const { return text_.size(); }

  friend constexpr bool operator==(const XMLName& a, const XMLName& b) {
    if (a.word_ != b.word_ || a.size() != b.size()) return false;
    return a.size() <= nameWordBytes || a.text_.substr(nameWordBytes) == b.text_.substr(nameWordBytes);
  }

 private:
  constexpr XMLName(std::string_view text, std::uint64_t word) : text_(text), word_(word) {}

  static constexpr std::uint64_t wordOf(std::string_view text) {
    std::array<char, nameWordBytes> bytes{};
    for (std::size_t i = 0; i < nameWordBytes && i < text.size(); ++i)
      bytes[i] = text[i];
    return std::bit_cast<std::uint64_t>(bytes);
  }

  /// A mask of the first `count` bytes in memory, fewer than eight.
  static constexpr std::uint64_t firstBytes(std::size_t count) {
    const std::uint64_t low = (std::uint64_t{1} << (8 * count)) - 1;
    if constexpr (std::endian::native == std::endian::little) return low;
    return count == 0 ? 0 : ~(~std::uint64_t{0} >> (8 * count));
  }

  std::string_view text_;
  std::uint64_t word_ = 0;
};

}  // namespace zelvo
