#include "Text/Unicode.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include "Text/GraphemeBreak.hpp"

namespace zelvo::Unicode {
namespace {

/// The library counts bytes in 32 bits, and a change of case or a composition makes a text at most three
/// times as long (the upper case of U+0390 has 6 bytes instead of 2, the composition of U+1D160 12 instead of
/// 4).
constexpr std::size_t maximumBytes = std::numeric_limits<std::int32_t>::max() / 3;

void check(UErrorCode status) {
  if (U_SUCCESS(status)) return;
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  // The texts are valid and no data file is needed, so this is a defect of the program.
  std::abort();
}

std::int32_t librarySize(std::string_view text) {
  if (text.size() > maximumBytes) throw std::bad_alloc();
  return static_cast<std::int32_t>(text.size());
}

icu::StringPiece piece(std::string_view text) {
  return {text.data(), librarySize(text)};
}

/// The byte offset after the first `count` characters, or the text's size if it has fewer.
std::size_t offsetAfter(std::string_view text, std::size_t count) {
  if (text.size() <= count) return text.size();  // a character has at least one byte
  if (count == 0) return 0;

  // An ASCII character has at most two bytes (CR LF, which no following scalar extends). So if these bytes
  // are ASCII, the following ones do not matter. `count` is less than the size of a text, so 2 * count cannot
  // overflow.
  const std::string_view head = text.substr(0, 2 * count);
  if (isASCII(head)) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < count && at < head.size(); ++i)
      at += head.substr(at, 2) == "\r\n" ? 2 : 1;
    return at;
  }
  std::size_t at = 0;
  for (std::size_t i = 0; i < count && at < text.size(); ++i)
    at = characterEnd(text, at);
  return at;
}

/// The output of `transform`, in a buffer that grows at most once.
template <typename Transform>
std::string collected(std::string_view text, const Transform& transform) {
  std::string result(text.size(), '\0');
  for (;;) {
    icu::CheckedArrayByteSink sink(result.data(), static_cast<std::int32_t>(result.size()));
    UErrorCode status = U_ZERO_ERROR;
    transform(sink, status);
    check(status);
    const bool overflowed = sink.Overflowed() != 0;
    result.resize(static_cast<std::size_t>(sink.NumberOfBytesAppended()));
    if (!overflowed) return result;
  }
}

/// The canonical decomposition. When the library composes or checks, it sorts combining marks by insertion,
/// in time quadratic in the length of a run of marks. Decomposed text is already sorted.
std::string decomposed(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const decomposition = icu::Normalizer2::getNFDInstance(status);
  check(status);

  std::string result;
  result.reserve(text.size());
  // Combining classes and marks since the last base character.
  std::vector<std::pair<std::uint8_t, char32_t>> marks;
  const auto appendMarks = [&] {
    std::stable_sort(marks.begin(), marks.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& mark : marks)
      append(result, mark.second);
    marks.clear();
  };
  icu::UnicodeString pieces;  // of one scalar, so few that they need no allocation
  for (std::size_t position = 0; position < text.size();) {
    const auto scalar = static_cast<UChar32>(nextScalar(text, position));
    if (!decomposition->getDecomposition(scalar, pieces)) pieces.setTo(scalar);
    for (std::int32_t i = 0; i < pieces.length(); i = pieces.moveIndex32(i, 1)) {
      const UChar32 piece = pieces.char32At(i);
      const std::uint8_t combiningClass = decomposition->getCombiningClass(piece);
      if (combiningClass != 0) {
        marks.emplace_back(combiningClass, static_cast<char32_t>(piece));
        continue;
      }
      appendMarks();
      append(result, static_cast<char32_t>(piece));
    }
  }
  appendMarks();
  return result;
}

template <char First, char Last>
std::string withASCIICaseFlipped(std::string_view text) {
  std::string result(text);
  for (char& character : result) {
    if (character >= First && character <= Last) character = static_cast<char>(character ^ 0x20);
  }
  return result;
}

}  // namespace

std::size_t characterCount(std::string_view text) {
  if (isASCII(text)) {
    std::size_t count = text.size();
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string_view::npos; at += 2)
      --count;
    return count;
  }
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); ++count)
    at = characterEnd(text, at);
  return count;
}

bool exceeds(std::string_view text, std::size_t limit) {
  return offsetAfter(text, limit) < text.size();
}

std::string_view prefix(std::string_view text, std::size_t count) {
  return text.substr(0, offsetAfter(text, count));
}

std::string lowercased(std::string_view text) {
  if (isASCII(text)) return withASCIICaseFlipped<'A', 'Z'>(text);
  return collected(text, [source = piece(text)](icu::ByteSink& sink, UErrorCode& status) {
    icu::CaseMap::utf8ToLower("", 0, source, sink, nullptr, status);
  });
}

std::string uppercased(std::string_view text) {
  if (isASCII(text)) return withASCIICaseFlipped<'a', 'z'>(text);
  return collected(text, [source = piece(text)](icu::ByteSink& sink, UErrorCode& status) {
    icu::CaseMap::utf8ToUpper("", 0, source, sink, nullptr, status);
  });
}

std::string composed(std::string_view text) {
  if (isASCII(text)) return std::string(text);
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const composition = icu::Normalizer2::getNFCInstance(status);
  const std::string ordered = decomposed(text);
  return collected(ordered, [composition, source = piece(ordered)](icu::ByteSink& sink, UErrorCode& failure) {
    composition->normalizeUTF8(0, source, sink, nullptr, failure);
  });
}

bool sortsBefore(std::string_view a, std::string_view b) {
  // UTF-8 bytes sort as the scalars do.
  if (isASCII(a) && isASCII(b)) return a < b;
  return composed(a) < composed(b);
}

}  // namespace zelvo::Unicode
