// Text against ICU with its data, for every scalar and for the sequences in which scalars influence each
// other. The code under test is linked without the data, as in the executables; the shared library brings its
// own.

#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/ubrk.h>
#include <unicode/ucasemap.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
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
  void* const address =
      library == nullptr ? nullptr : dlsym(library, (name + "_" U_ICU_VERSION_SHORT).c_str());
  if (address == nullptr) throw std::runtime_error(dlerror());
  return reinterpret_cast<Function*>(address);
}

std::vector<std::size_t> boundaries(const std::string& text) {
  std::vector<std::size_t> found;
  for (std::size_t at = 0; at < text.size();)
    found.push_back(at = Unicode::characterEnd(text, at));
  return found;
}

std::vector<std::size_t> boundariesByICU(const std::string& text) {
  static const auto next = shared<decltype(ubrk_next)>("ubrk_next");
  static UErrorCode status = U_ZERO_ERROR;
  static UBreakIterator* const breaks =
      shared<decltype(ubrk_open)>("ubrk_open")(UBRK_CHARACTER, "", nullptr, 0, &status);
  static const auto open = shared<decltype(utext_openUTF8)>("utext_openUTF8");
  static UText* const view = open(nullptr, "", 0, &status);
  open(view, text.data(), static_cast<std::int64_t>(text.size()), &status);
  static const auto setText = shared<decltype(ubrk_setUText)>("ubrk_setUText");
  setText(breaks, view, &status);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  std::vector<std::size_t> found;
  for (std::int32_t at = next(breaks); at != UBRK_DONE; at = next(breaks))
    found.push_back(static_cast<std::size_t>(at));
  return found;
}

std::string caseByICU(decltype(ucasemap_utf8ToLower)* mapping, const std::string& text) {
  static UErrorCode status = U_ZERO_ERROR;
  static UCaseMap* const root = shared<decltype(ucasemap_open)>("ucasemap_open")("", 0, &status);
  std::string result(3 * text.size(), '\0');
  const auto size = [](const std::string& string) { return static_cast<std::int32_t>(string.size()); };
  result.resize(
      static_cast<std::size_t>(mapping(root, result.data(), size(result), text.data(), size(text), &status)));
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  return result;
}

std::string composedByICU(const std::u32string& scalars) {
  static UErrorCode status = U_ZERO_ERROR;
  static const auto normalize = shared<decltype(unorm2_normalize)>("unorm2_normalize");
  static const UNormalizer2* const composition =
      shared<decltype(unorm2_getNFCInstance)>("unorm2_getNFCInstance")(&status);
  std::u16string text;
  for (const char32_t scalar : scalars) {
    if (scalar > 0xFFFF) text += U16_LEAD(scalar);
    text += static_cast<char16_t>(scalar > 0xFFFF ? U16_TRAIL(scalar) : scalar);
  }
  std::u16string composed(4 * text.size(), u'\0');
  composed.resize(static_cast<std::size_t>(normalize(composition, text.data(),
                                                     static_cast<std::int32_t>(text.size()), composed.data(),
                                                     static_cast<std::int32_t>(composed.size()), &status)));
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  std::string result;
  for (std::size_t at = 0; at < composed.size();) {
    char32_t scalar = 0;
    U16_NEXT(composed, at, composed.size(), scalar);
    Unicode::append(result, scalar);
  }
  return result;
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

std::u32string randomText(std::mt19937& random, std::u32string_view alphabet, std::size_t maximumLength) {
  std::u32string text(random() % maximumLength, U'\0');
  for (char32_t& scalar : text)
    scalar = alphabet[random() % alphabet.size()];
  return text;
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

TEST(UnicodeAgainstICU, OnlyTheReferenceHasData) {
  const auto reference = shared<decltype(u_hasBinaryProperty)>("u_hasBinaryProperty");
  EXPECT_TRUE(reference(U'\U0001F600', UCHAR_EMOJI));
  EXPECT_FALSE(u_hasBinaryProperty(U'\U0001F600', UCHAR_EMOJI));
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
  std::mt19937 random(1);
  for (int round = 0; round < 100'000; ++round)
    ASSERT_NO_FATAL_FAILURE(expectSameBoundaries(randomText(random, breakAlphabet, 30)));
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
  constexpr std::size_t bytes = 4U << 20U;
  const std::pair<const char*, std::size_t> rows[] = {
      {"\u0301\u0316", 0}, {"\U0001F1E6", 2},   {"\U0001F469\u200D", 0}, {"\u200D", 0},
      {"\u0915\u094D", 0}, {"\u0915\u093C", 1}, {"\u0600", 0},           {"\u1100", 0}};
  for (const auto& [piece, perCharacter] : rows) {
    const std::size_t pieces = bytes / std::strlen(piece);
    const std::string text = testing::repeated(piece, pieces);
    EXPECT_EQ(Unicode::characterCount(text), perCharacter == 0 ? 1 : pieces / perCharacter) << piece;
    EXPECT_EQ(Unicode::exceeds(text, 1), perCharacter != 0);
  }
}

TEST(UnicodeAgainstICU, Case) {
  const auto lower = shared<decltype(ucasemap_utf8ToLower)>("ucasemap_utf8ToLower");
  const auto upper = shared<decltype(ucasemap_utf8ToUpper)>("ucasemap_utf8ToUpper");
  const auto expectSameCase = [&](const std::u32string& scalars) {
    const std::string text = encoded(scalars);
    ASSERT_EQ(Unicode::lowercased(text), caseByICU(lower, text)) << text;
    ASSERT_EQ(Unicode::uppercased(text), caseByICU(upper, text)) << text;
  };
  // After a sigma and before it, whose lower case depends on what is around it.
  eachScalar([&](char32_t c) { expectSameCase(with(c, U"?\u03A3?\u03A3 A?\u03A3?A")); });
  std::mt19937 random(1);
  for (int round = 0; round < 50'000; ++round)
    ASSERT_NO_FATAL_FAILURE(expectSameCase(
        randomText(random, U"A\u03A3\u03A3\u0391\u0345\u0301\u0130Ii.'\u00AD\u2160\u01C51 \u00DF", 10)));
}

TEST(UnicodeAgainstICU, Composition) {
  const auto expectSameComposition = [](const std::u32string& scalars) {
    ASSERT_EQ(Unicode::composed(encoded(scalars)), composedByICU(scalars))
        << ::testing::PrintToString(scalars);
  };
  std::u32string active;
  eachScalar([&](char32_t c) {
    expectSameComposition(with(c, U"?\u0301\u0323?A?\u0302\u1100?\u11A8"));
    if (u_getCombiningClass(static_cast<UChar32>(c)) != 0 || Unicode::composed(encoded({c})) != encoded({c}))
      active += c;
  });
  active += U"AEaeo\u0915\u1100\u1161\u11A8\u0DD9";
  std::mt19937 random(1);
  for (int round = 0; round < 50'000; ++round)
    ASSERT_NO_FATAL_FAILURE(expectSameComposition(randomText(random, active, 12)));
}

TEST(UnicodeAgainstICU, TerminalWidths) {
  const auto has = shared<decltype(u_hasBinaryProperty)>("u_hasBinaryProperty");
  const auto value = shared<decltype(u_getIntPropertyValue)>("u_getIntPropertyValue");
  eachScalar([&](char32_t c) {
    const auto scalar = static_cast<UChar32>(c);
    if (c < 0x80) return;  // counted without properties
    const auto category = U_MASK(value(scalar, UCHAR_GENERAL_CATEGORY));
    const auto syllable = U_MASK(value(scalar, UCHAR_HANGUL_SYLLABLE_TYPE));
    const auto eastAsian = U_MASK(value(scalar, UCHAR_EAST_ASIAN_WIDTH));
    const bool isPicture = has(scalar, UCHAR_EXTENDED_PICTOGRAPHIC) != 0;
    const bool isModifier = has(scalar, UCHAR_EMOJI_MODIFIER) != 0;
    const bool isInvisible = (category & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0 ||
                             (syllable & (U_MASK(U_HST_VOWEL_JAMO) | U_MASK(U_HST_TRAILING_JAMO))) != 0 ||
                             has(scalar, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
    const bool isWide = (eastAsian & (U_MASK(U_EA_WIDE) | U_MASK(U_EA_FULLWIDTH))) != 0;
    const std::size_t columns = isInvisible && c != 0xAD ? 0 : isWide ? 2 : 1;
    ASSERT_EQ(terminalColumns(encoded({c})), columns) << scalar;
    ASSERT_EQ(terminalColumns(encoded({c, 0xFE0F})), isPicture && columns == 1 ? 2 : columns) << scalar;
    ASSERT_EQ(terminalColumns(encoded({0x1F469, c})), isModifier ? 2 : 2 + columns) << scalar;
    ASSERT_EQ(terminalColumns(encoded({0x1F469, 0x200D, c})), isPicture || isModifier ? 2 : 2 + columns);
  });
}

}  // namespace
}  // namespace zelvo
