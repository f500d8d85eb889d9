#include "Text/Unicode.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/rbbi.h>
#include <unicode/udata.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>

namespace zelvo::Unicode {
namespace {

/// The library counts bytes in 32 bits, and no text grows to more than three times its bytes by a change of
/// case or by composition (U+0390 in upper case is 2 bytes made 6, U+1D160 composed 4 bytes made 12).
constexpr std::size_t maximumBytes = std::numeric_limits<std::int32_t>::max() / 3;

void check(UErrorCode status) {
  if (U_SUCCESS(status)) return;
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  // The texts are valid and the data is linked in, so the program itself is broken: no result would be true.
  std::abort();
}

std::int32_t librarySize(std::string_view text) {
  if (text.size() > maximumBytes) throw std::bad_alloc();
  return static_cast<std::int32_t>(text.size());
}

icu::StringPiece piece(std::string_view text) {
  return {text.data(), librarySize(text)};
}

/// The rules of character boundaries, opened, and what leads them through a text.
struct CharacterRules {
  icu::LocalUTextPointer text;
  std::unique_ptr<icu::BreakIterator> iterator;

  /// The library reports memory that runs out in several ways, or not at all. The data is linked in, so that
  /// each of them means that.
  void open() {
    // Without this the library looks for files that could replace the rules.
    static const UErrorCode filesRefused = [] {
      UErrorCode status = U_ZERO_ERROR;
      udata_setFileAccess(UDATA_NO_FILES, &status);
      return status;
    }();
    check(filesRefused);
    // Not by a locale: without memory the library uses the one that it failed to make, or waits for itself.
    UErrorCode status = U_ZERO_ERROR;
    icu::LocalUDataMemoryPointer data(
        udata_open(U_ICUDATA_NAME U_TREE_SEPARATOR_STRING "brkitr", "brk", "char", &status));
    if (U_FAILURE(status)) throw std::bad_alloc();
    // The library's classes have an operator new that returns null.
    auto* const opened = new icu::RuleBasedBreakIterator(data.getAlias(), status);
    if (opened == nullptr) throw std::bad_alloc();
    data.orphan();
    std::unique_ptr<icu::BreakIterator> owner(opened);
    text.adoptInstead(utext_openUTF8(nullptr, "", 0, &status));
    check(status);
    iterator = std::move(owner);
  }
};

/// Finds the boundaries of a text's characters. Opening the rules costs far more than a text does, so that
/// they are kept; a thread that finds them in use opens its own. (With memory of its own a thread would
/// register a destructor, and when memory runs out in that, the C library ends the program.)
class CharacterBreaks {
 public:
  /// `text` must outlive this.
  explicit CharacterBreaks(std::string_view text)
      : lock_(mutex(), std::try_to_lock), rules_(lock_ ? keptRules() : ownRules_) {
    if (!rules_.iterator) rules_.open();
    UErrorCode status = U_ZERO_ERROR;
    utext_openUTF8(rules_.text.getAlias(), text.data(), librarySize(text), &status);
    rules_.iterator->setText(rules_.text.getAlias(), status);
    check(status);
  }

  /// The end of the next character in bytes, or `icu::BreakIterator::DONE`.
  std::int32_t next() { return rules_.iterator->next(); }

 private:
  static std::mutex& mutex() {
    static std::mutex mutex;
    return mutex;
  }
  static CharacterRules& keptRules() {
    static CharacterRules rules;
    return rules;
  }

  std::unique_lock<std::mutex> lock_;
  CharacterRules ownRules_;
  CharacterRules& rules_;
};

/// The byte behind the first `count` characters; the end of the text when it has no more than those.
std::size_t offsetBehind(std::string_view text, std::size_t count) {
  if (text.size() <= count) return text.size();  // a character has at least one byte
  if (count == 0) return 0;

  // No ASCII character is longer than two bytes, and to the one that is, CR LF, nothing joins: where these
  // bytes are ASCII, nothing behind them matters. `count` is below the size of a text, so twice it cannot
  // overflow.
  const std::string_view head = text.substr(0, 2 * count);
  if (isASCII(head)) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < count && at < head.size(); ++i)
      at += head.substr(at, 2) == "\r\n" ? 2 : 1;
    return at;
  }
  CharacterBreaks breaks(text);
  std::int32_t at = 0;
  for (std::size_t i = 0; i < count; ++i) {
    at = breaks.next();
    if (at == icu::BreakIterator::DONE) return text.size();
  }
  return static_cast<std::size_t>(at);
}

/// What `transform` writes into the sink, in a buffer that grows at most once.
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

/// The canonical decomposition. The library, when it composes or only checks, puts each mark in its place by
/// insertion, in time quadratic in the length of a run of marks; a text in this form leaves it nothing to
/// move.
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
  CharacterBreaks breaks(text);
  std::size_t count = 0;
  while (breaks.next() != icu::BreakIterator::DONE)
    ++count;
  return count;
}

bool exceeds(std::string_view text, std::size_t limit) {
  return offsetBehind(text, limit) < text.size();
}

std::string_view prefix(std::string_view text, std::size_t count) {
  return text.substr(0, offsetBehind(text, count));
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
  check(status);
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
