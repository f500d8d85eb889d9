#include "DocumentRuntime/Research/Slides/Text.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

constexpr std::string_view ellipsis = "…";

using TextWidth::fullWidth;

/// How much of a line texts fill.
struct Estimate {
  double filledPart;     ///< of each line: office programs round the widths of glyphs
  double unusedAtBreak;  ///< in ems, where a line ends inside a word or a text without spaces
  double widest;         ///< the width to which characters are cut, in ems
};
/// Two full-width characters may be unused, because the second of them must not begin a line.
constexpr Estimate safe = {.filledPart = 0.985, .unusedAtBreak = 2, .widest = 100};
/// For the smallest size alone: no text is refused for widths that it may not have.
constexpr Estimate narrow = {.filledPart = 1, .unusedAtBreak = 1, .widest = fullWidth};

/// A paragraph's words, in ems.
struct Words {
  std::vector<double> widths;
  double space;
};

Words wordsOf(std::string_view paragraph, FontWeight weight, const Estimate& estimate) {
  Words words = {.widths = {0}, .space = TextWidth::of(U' ', weight)};
  for (std::size_t at = 0; at < paragraph.size();) {
    const char32_t scalar = Unicode::nextScalar(paragraph, at);
    if (scalar == U' ') {
      words.widths.push_back(0);
    } else {
      words.widths.back() += std::min(TextWidth::of(scalar, weight), estimate.widest);
    }
  }
  return words;
}

/// The number of lines of words that are wrapped greedily. A word that is longer than a line is broken at any
/// character. `wholeWidth` is in ems.
double wrappedLines(const Words& words, double wholeWidth, const Estimate& estimate) {
  const double lineWidth = wholeWidth * estimate.filledPart;
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
      const double usable = std::max(lineWidth - estimate.unusedAtBreak, fullWidth);
      const double full = std::floor(word / usable);
      lines += full + (used > 0 ? 1 : 0);
      used = word - full * usable;
    }
  }
  return lines;
}

/// Paragraphs of which the words were measured once.
class MeasuredText {
 public:
  MeasuredText(const std::vector<std::string>& paragraphs, FontWeight weight, const Estimate& estimate)
      : estimate_(estimate) {
    for (const std::string& paragraph : paragraphs)
      paragraphs_.push_back(wordsOf(paragraph, weight, estimate));
  }

  bool fits(const SlideText::Bounds& bounds, int size) const {
    double height = 0;
    for (const Words& words : paragraphs_) {
      const double gap = height > 0 ? SlideText::paragraphSpacing : 0;
      height += gap + wrappedLines(words, bounds.width / size, estimate_) * SlideText::lineSpacing;
    }
    return height * size <= bounds.height;
  }

 private:
  const Estimate& estimate_;
  std::vector<Words> paragraphs_;
};

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
  return wrappedLines(wordsOf(paragraph, weight, safe), lineWidth, safe);
}

double SlideText::widestWord(std::string_view text, FontWeight weight) {
  return std::ranges::max(wordsOf(text, weight, safe).widths);
}

std::optional<int> SlideText::largestFitting(const std::vector<std::string>& paragraphs,
                                             const Bounds& bounds) {
  const MeasuredText text(paragraphs, bounds.weight, safe);
  for (int size = bounds.largestSize; size >= smallestSize; --size) {
    if (text.fits(bounds, size)) return size;
  }
  if (MeasuredText(paragraphs, bounds.weight, narrow).fits(bounds, smallestSize)) return smallestSize;
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
  const double available = lineWidth * safe.filledPart / fontSize - TextWidth::of(ending, weight);
  double used = 0;
  std::size_t fitting = 0;  // the bytes that fit with the ellipsis
  for (std::size_t at = 0; at < text.size();) {
    if (used + fullWidth <= available) fitting = at;
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
