// Owns Text/Unicode and Text/TerminalWidth against ICU with its data, for every scalar and for the sequences
// in which scalars influence each other. The code under test is linked without the data, as in the
// executables; the shared library has its own.

#include <algorithm>
#include <dlfcn.h>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include "Support/Texts.hpp"
#include "Text/GraphemeBreak.hpp"
#include "Text/TerminalWidth.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// The shared library's function of that name. Its symbols end in the version.
template <typename Function>
Function* shared(const std::string& name) {
  static void* const library = dlopen("libicuuc.so." U_ICU_VERSION_SHORT, RTLD_NOW | RTLD_LOCAL);
  void* const address = library ? dlsym(library, (name + "_" U_ICU_VERSION_SHORT).c_str()) : nullptr;
  if (address == nullptr) throw std::runtime_error(dlerror());
  return reinterpret_cast<Function*>(address);
}
#define SHARED(function) shared<decltype(function)>(#function)

std::vector<std::size_t> boundaries(const std::string& text) {
  std::vector<std::size_t> found;
  for (std::size_t at = 0; at < text.size();)
    found.push_back(at = Unicode::characterEnd(text, at));
  return found;
}

std::vector<std::size_t> boundariesByICU(const std::string& text) {
  static UErrorCode status = U_ZERO_ERROR;
  static UBreakIterator* const breaks = SHARED(ubrk_open)(UBRK_CHARACTER, "", nullptr, 0, &status);
  static const auto open = SHARED(utext_openUTF8);
  static const auto setText = SHARED(ubrk_setUText);
  static const auto next = SHARED(ubrk_next);
  static UText* const view = open(nullptr, "", 0, &status);
  open(view, text.data(), static_cast<std::int64_t>(text.size()), &status);
  setText(breaks, view, &status);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  std::vector<std::size_t> found;
  for (std::int32_t at = next(breaks); at != UBRK_DONE; at = next(breaks))
    found.push_back(static_cast<std::size_t>(at));
  return found;
}

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  return text.toUTF8String(result);
}

bool isValidByICU(std::string_view bytes) {
  UErrorCode validity = U_ZERO_ERROR;
  std::int32_t length = 0;
  u_strFromUTF8(nullptr, 0, &length, bytes.data(), static_cast<std::int32_t>(bytes.size()), &validity);
  return validity != U_INVALID_CHAR_FOUND;
}

std::string encoded(const std::u32string& scalars) {
  std::string text;
  for (const char32_t scalar : scalars)
    Unicode::append(text, scalar);
  return text;
}

template <typename Take>
void eachScalar(const Take& take) {
  for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
    if (scalar == 0xD800) scalar = 0xE000;
    take(scalar);
    if (::testing::Test::HasFatalFailure()) return;
  }
}

/// The text with the scalar in the places of its question marks.
std::u32string with(char32_t scalar, std::u32string_view text) {
  std::u32string result(text);
  std::replace(result.begin(), result.end(), U'?', scalar);
  return result;
}

/// Scalars of all classes that the rules of characters distinguish: line breaks, a control; Extend of
/// combining classes 0 and 230, ZWJ, SpacingMark, Prepend, flags; L, V, T, LV, LVT; emoji; a consonant, a
/// virama and a nukta, a consonant and a virama of another script, a consonant and a virama of a script
/// without conjuncts; other.
constexpr std::u32string_view breakAlphabet =
    U"\r\n\u0001\u034F\u0301\u200D\u0903\u0600\U0001F1E6\u1100\u1161\u11A8\uAC00\uAC01\U0001F469"
    U"\u0915\u094D\u093C\u0A95\u0ACD\u0B95\u0BCD"
    U"a";

void expectSameBoundaries(const std::u32string& scalars) {
  const std::string text = encoded(scalars);
  ASSERT_EQ(boundaries(text), boundariesByICU(text)) << ::testing::PrintToString(scalars);
}

TEST(UnicodeAgainstICU, EveryScalarIsValidAndDecodes) {
  eachScalar([](char32_t scalar) {
    const std::string text = utf8(static_cast<UChar32>(scalar));
    std::size_t position = 0;
    ASSERT_TRUE(Unicode::isValid(text)) << text;
    ASSERT_TRUE(Unicode::nextScalar(text, position) == scalar) << text;
    ASSERT_EQ(position, text.size());
    ASSERT_EQ(encoded({scalar}), text);
    const bool isSpace = u_isUWhiteSpace(static_cast<UChar32>(scalar)) != 0;
    const std::string inner = "x" + text + "x";
    ASSERT_EQ(Unicode::trimmed(text + text + inner + text) == inner, isSpace) << text;
    ASSERT_EQ(Unicode::trimmed(text) == "", isSpace) << text;
  });
}

TEST(UnicodeAgainstICU, Validity) {
  // Bytes from the edges of the allowed ranges, at every alignment to the words in which ASCII is skipped.
  constexpr std::string_view edges =
      "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xED\xEF\xF0\xF4\xF5\xFF";
  std::mt19937 random(1);
  for (int round = 0; round < 300'000; ++round) {
    std::string bytes(random() % 32, 'a');
    for (auto length = random() % 5; length > 0; --length)
      bytes += edges[random() % edges.size()];
    bytes.append(random() % 32, 'b');
    for (const auto& text : {bytes, bytes.substr(0, random() % (bytes.size() + 1))})
      ASSERT_EQ(Unicode::isValid(text), isValidByICU(text)) << ::testing::PrintToString(text);
  }
}

TEST(UnicodeAgainstICU, BoundariesAroundEveryScalar) {
  // Next to what each class joins with. Characters end at the line feeds.
  constexpr std::u32string_view contexts =
      U"\U0001F469\u200D?\n\U0001F469?\u200D\U0001F469\n\u0915\u094D?\n\u0915?\u0915\n\u0915?\u094D\u0915\n"
      U"\U0001F1E6?\U0001F1E6\U0001F1E6\n\u1100?\u1161?\u11A8?\r?a?a";
  eachScalar([&](char32_t c) { expectSameBoundaries(with(c, contexts)); });
}

TEST(UnicodeAgainstICU, BoundariesInSequences) {
  const std::size_t count = breakAlphabet.size();
  for (std::size_t i = 0; i < count * count * count * count; ++i) {
    ASSERT_NO_FATAL_FAILURE(expectSameBoundaries({breakAlphabet[i % count], breakAlphabet[i / count % count],
                                                  breakAlphabet[i / count / count % count],
                                                  breakAlphabet[i / count / count / count]}));
  }
}

TEST(UnicodeAgainstICU, BoundariesOfUnicodesTestFile) {
  // Lines like `÷ 0061 × 0308 ÷ 0062 ÷ # comment`.
  std::ifstream file("/usr/share/unicode/auxiliary/GraphemeBreakTest.txt");
  ASSERT_TRUE(file) << "Debian's package unicode-data is not installed";
  int cases = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    std::string text;
    std::vector<std::size_t> expected;
    for (std::string word; words >> word;) {
      if (word == "÷" && !text.empty()) expected.push_back(text.size());
      if (word != "÷" && word != "×")
        Unicode::append(text, static_cast<char32_t>(std::stoul(word, nullptr, 16)));
    }
    EXPECT_EQ(boundaries(text), expected) << line;
    cases += text.empty() ? 0 : 1;
  }
  EXPECT_EQ(cases, 602);
}

TEST(UnicodeAgainstICU, LongCharactersTakeLinearTime) {
  // With quadratic work none of these would end within the time-out.
  for (const std::string piece : {"\u0301\u0316", "\U0001F469\u200D", "\u0915\u094D", "\u0600", "\u1100"})
    EXPECT_EQ(Unicode::characterCount(testing::repeated(piece, 1'000'000)), 1) << piece;
  EXPECT_EQ(Unicode::characterCount(testing::repeated("\U0001F1E6", 1'000'000)), 500'000);
  // Marks of two classes in turn have to be sorted.
  constexpr int count = 300'000;
  EXPECT_TRUE(Unicode::composed("a" + testing::repeated("\u0301\u0316", count)) ==
              "\u00E1" + testing::repeated("\u0316", count) + testing::repeated("\u0301", count - 1));
}

TEST(UnicodeAgainstICU, Case) {
  const auto expectSameCase = [](const std::u32string& scalars) {
    const std::string text = encoded(scalars);
    const auto wide = icu::UnicodeString::fromUTF8(text);
    ASSERT_EQ(Unicode::lowercased(text), utf8(icu::UnicodeString(wide).toLower(icu::Locale::getRoot())));
    ASSERT_EQ(Unicode::uppercased(text), utf8(icu::UnicodeString(wide).toUpper(icu::Locale::getRoot())));
  };
  eachScalar([&](char32_t c) {
    expectSameCase({c});
    // After a sigma and before it, whose lower case depends on what is around it.
    expectSameCase(with(c, U"?\u03A3?\u03A3 A?\u03A3?A"));
  });
}

TEST(UnicodeAgainstICU, Composition) {
  const auto expectSameComposition = [](const std::u32string& scalars) {
    static UErrorCode status = U_ZERO_ERROR;
    static const icu::Normalizer2* const composition = icu::Normalizer2::getNFCInstance(status);
    const std::string text = encoded(scalars);
    const auto expected = utf8(composition->normalize(icu::UnicodeString::fromUTF8(text), status));
    ASSERT_EQ(Unicode::composed(text), expected) << ::testing::PrintToString(scalars);
  };
  eachScalar([&](char32_t c) { expectSameComposition(with(c, U"?\u0301\u0323?A?\u0302\u1100?\u11A8")); });
}

TEST(UnicodeAgainstICU, TerminalWidths) {
  const auto has = SHARED(u_hasBinaryProperty);
  const auto value = SHARED(u_getIntPropertyValue);
  eachScalar([&](char32_t c) {
    const auto scalar = static_cast<UChar32>(c);
    if (c < 0x80) return;  // counted without properties
    const auto category = U_MASK(value(scalar, UCHAR_GENERAL_CATEGORY));
    const auto syllable = U_MASK(value(scalar, UCHAR_HANGUL_SYLLABLE_TYPE));
    const auto eastAsian = U_MASK(value(scalar, UCHAR_EAST_ASIAN_WIDTH));
    const bool isInvisible = (category & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0 ||
                             (syllable & (U_MASK(U_HST_VOWEL_JAMO) | U_MASK(U_HST_TRAILING_JAMO))) != 0 ||
                             has(scalar, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
    const bool isWide = (eastAsian & (U_MASK(U_EA_WIDE) | U_MASK(U_EA_FULLWIDTH))) != 0;
    const std::size_t columns = isInvisible && c != 0xAD ? 0 : isWide ? 2 : 1;
    ASSERT_EQ(terminalColumns(encoded({c})), columns) << std::uint32_t{c};
  });
}

}  // namespace
}  // namespace zelvo
