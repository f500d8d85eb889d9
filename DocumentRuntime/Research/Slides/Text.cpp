#include "DocumentRuntime/Research/Slides/Text.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// The width at the end of a line that may be unused, in ems, where the line ends inside a word or a text
/// without spaces: two full-width characters, of which the second must not begin a line.
constexpr double unusedAtBreak = 2.0;
/// The part of a line that is filled. Office programs round the widths of glyphs.
constexpr double filledPart = 0.985;
/// The widest character of the estimate for the smallest size, in ems. No text is refused because of
/// characters that may be wider.
constexpr double cappedWidth = 1.0;
constexpr std::string_view ellipsis = "…";

/// A paragraph's words, in ems.
struct Words {
  std::vector<double> widths;
  double space;
};

enum class Estimate { safe, capped };

Words wordsOf(std::string_view paragraph, FontWeight weight, Estimate estimate) {
  Words words = {.widths = {0}, .space = TextWidth::of(U' ', weight)};
  for (std::size_t at = 0; at < paragraph.size();) {
    const char32_t scalar = Unicode::nextScalar(paragraph, at);
    const double width = TextWidth::of(scalar, weight);
    if (scalar == U' ') {
      words.widths.push_back(0);
    } else {
      words.widths.back() += estimate == Estimate::capped ? std::min(width, cappedWidth) : width;
    }
  }
  return words;
}

/// The number of lines of words that are wrapped greedily. A word that is longer than a line is broken at any
/// character. `wholeWidth` is in ems.
double wrappedLines(const Words& words, double wholeWidth) {
  const double lineWidth = wholeWidth * filledPart;
  double lines = 1;
  double used = 0;
  for (const double word : words.widths) {
    const double gap = used > 0 ? words.space : 0;
    if (used + gap + word <= lineWidth) {
      used += gap + word;
    } else if (word <= lineWidth) {
      lines += 1;
      used = word;
    } else {
      const double usable = std::max(lineWidth - unusedAtBreak, cappedWidth);
      const double full = std::floor(word / usable);
      lines += full + (used > 0 ? 1 : 0);
      used = word - full * usable;
    }
  }
  return lines;
}

std::vector<Words> wordsOf(const std::vector<std::string>& paragraphs, FontWeight weight, Estimate estimate) {
  std::vector<Words> words;
  words.reserve(paragraphs.size());
  for (const std::string& paragraph : paragraphs)
    words.push_back(wordsOf(paragraph, weight, estimate));
  return words;
}

bool fits(const std::vector<Words>& paragraphs, const SlideText::Bounds& bounds, int size) {
  double lines = 0;
  for (const Words& words : paragraphs)
    lines += wrappedLines(words, bounds.width / size);
  const double gaps =
      paragraphs.empty() ? 0 : static_cast<double>(paragraphs.size() - 1) * SlideText::paragraphSpacing;
  return (lines * SlideText::lineSpacing + gaps) * size <= bounds.height;
}

}  // namespace

std::string SlideText::flattened(std::string_view text) {
  std::string flat;
  for (const std::string_view line : Unicode::lines(text)) {
    if (line.data() != text.data()) flat += ' ';
    flat += line;
  }
  std::ranges::replace(flat, '\t', ' ');
  return flat;
}

double SlideText::lines(std::string_view paragraph, double lineWidth, FontWeight weight) {
  return wrappedLines(wordsOf(paragraph, weight, Estimate::safe), lineWidth);
}

double SlideText::widestWord(std::string_view text, FontWeight weight) {
  return std::ranges::max(wordsOf(text, weight, Estimate::safe).widths);
}

std::optional<int> SlideText::largestFitting(const std::vector<std::string>& paragraphs,
                                             const Bounds& bounds) {
  const auto words = wordsOf(paragraphs, bounds.weight, Estimate::safe);
  for (int size = bounds.largestSize; size >= smallestSize; --size) {
    if (fits(words, bounds, size)) return size;
  }
  if (fits(wordsOf(paragraphs, bounds.weight, Estimate::capped), bounds, smallestSize)) return smallestSize;
  return std::nullopt;
}

int SlideText::fittedSize(const std::vector<std::string>& paragraphs, const Bounds& bounds) {
  const auto size = largestFitting(paragraphs, bounds);
  if (!size) throw DocumentError::unsupported("slide text needs too much space");
  return *size;
}

std::string SlideText::abbreviated(std::string_view text, std::string_view ending, double lineWidth,
                                   double fontSize) {
  constexpr auto weight = FontWeight::regular;
  const double available = lineWidth * filledPart / fontSize - TextWidth::of(ending, weight);
  double used = 0;
  std::size_t fitting = 0;  // the bytes that fit with the ellipsis
  for (std::size_t at = 0; at < text.size();) {
    if (used + cappedWidth <= available) fitting = at;
    used += TextWidth::of(Unicode::nextScalar(text, at), weight);
    if (used > available) {
      // The last character may be incomplete, so it is removed.
      const std::size_t whole = Unicode::characterCount(text.substr(0, fitting));
      std::string cut(Unicode::prefix(text, whole > 0 ? whole - 1 : 0));
      return cut.append(ellipsis).append(ending);
    }
  }
  return std::string(text).append(ending);
}

}  // namespace zelvo
