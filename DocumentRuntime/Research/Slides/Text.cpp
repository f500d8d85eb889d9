#include "DocumentRuntime/Research/Slides/Text.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "DocumentRuntime/Authoring/SlideGeometry.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

constexpr int smallestSize = 6;

/// Capitals, "m" and "w" in bold; the estimate for tables is narrower.
constexpr double broadCharacter = 0.9;
/// Ligatures, fractions and the like.
constexpr double broadestCharacter = 1.0;
constexpr std::string_view ellipsis = "…";

double characterWidth(char32_t scalar) {
  const double estimate = DocumentAuthor::characterWidth(scalar);
  if (scalar > U'~') return std::max(estimate, broadestCharacter);
  const bool broad = (scalar >= U'A' && scalar <= U'Z') || scalar == U'm' || scalar == U'w';
  return broad ? std::max(estimate, broadCharacter) : estimate;
}

/// The widths of a paragraph's words, in ems.
std::vector<double> wordWidths(std::string_view paragraph) {
  std::vector<double> widths;
  for (std::size_t start = 0; start <= paragraph.size();) {
    const std::size_t end = std::min(paragraph.find(' ', start), paragraph.size());
    widths.push_back(SlideText::width(paragraph.substr(start, end - start)));
    start = end + 1;
  }
  return widths;
}

/// The number of lines of words that are wrapped greedily. A word that is longer than a line is broken at any
/// character. `lineWidth` is in ems.
double wrappedLines(const std::vector<double>& words, double lineWidth) {
  double lines = 1;
  double used = 0;
  for (const double word : words) {
    const double gap = used > 0 ? characterWidth(U' ') : 0;
    if (used + gap + word <= lineWidth) {
      used += gap + word;
    } else if (word <= lineWidth) {
      lines += 1;
      used = word;
    } else {
      // If a line ends inside a word, up to the width of one character is unused.
      const double usable = std::max(lineWidth - broadestCharacter, broadestCharacter);
      const double full = std::floor(word / usable);
      lines += full + (used > 0 ? 1 : 0);
      used = word - full * usable;
    }
  }
  return lines;
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

double SlideText::width(std::string_view text) {
  double sum = 0;
  for (std::size_t at = 0; at < text.size();)
    sum += characterWidth(Unicode::nextScalar(text, at));
  return sum;
}

double SlideText::lines(std::string_view paragraph, double lineWidth) {
  return wrappedLines(wordWidths(paragraph), lineWidth);
}

int SlideText::fittedSize(const std::vector<std::string>& paragraphs, const Bounds& bounds) {
  std::vector<std::vector<double>> widths;
  widths.reserve(paragraphs.size());
  for (const std::string& paragraph : paragraphs)
    widths.push_back(wordWidths(paragraph));
  const double gaps = paragraphs.empty() ? 0 : static_cast<double>(paragraphs.size() - 1) * paragraphSpacing;
  for (int size = bounds.largestSize; size >= smallestSize; --size) {
    double lines = 0;
    for (const auto& words : widths)
      lines += wrappedLines(words, bounds.width / size);
    if ((lines * lineSpacing + gaps) * size <= bounds.height) return size;
  }
  throw DocumentError::unsupported("slide text needs too much space");
}

std::string SlideText::abbreviated(std::string_view text, std::string_view ending, double lineWidth,
                                   double fontSize) {
  const double available = lineWidth / fontSize - SlideText::width(ending);
  double used = 0;
  std::size_t fitting = 0;  // the bytes that fit with the ellipsis
  for (std::size_t at = 0; at < text.size();) {
    if (used + broadestCharacter <= available) fitting = at;
    used += characterWidth(Unicode::nextScalar(text, at));
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
