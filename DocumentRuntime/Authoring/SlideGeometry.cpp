#include "DocumentRuntime/Authoring/SlideGeometry.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

constexpr double wideCharacter = 1.0;  ///< ems
constexpr double otherCharacter = 0.65;
/// Combining marks, and all scripts from here on, are assumed to be full-width: a row that is too high is
/// better than a cut one.
constexpr char32_t firstWideScalar = U'\u0300';

constexpr double cellFontSize = 14;                 ///< points
constexpr double lineHeight = 18.9;                 ///< points
constexpr double cellPadding = 7.2;                 ///< points, above and below the text together
constexpr std::int64_t cellMargins = 182'880;       ///< EMU, left and right together
constexpr std::int64_t minimumRowHeight = 411'480;  ///< EMU

/// EMU available to the rows of one slide, the header included: from below the title to above the footer.
constexpr std::int64_t pageHeight = 4'650'000;
constexpr std::size_t maximumPages = 20;

bool isWide(char32_t scalar) {
  return scalar >= firstWideScalar || scalar == U'W' || scalar == U'M' || scalar == U'@' || scalar == U'%';
}

/// In ems.
double characterWidth(char32_t scalar) {
  return isWide(scalar) ? wideCharacter : otherCharacter;
}

double estimatedWidth(std::string_view line, double fontSize) {
  double width = 0;
  for (std::size_t at = 0; at < line.size();) {
    width += fontSize * characterWidth(Unicode::nextScalar(line, at));
  }
  return width;
}

}  // namespace

std::int64_t DocumentAuthor::estimatedLines(std::string_view text, double widthPoints, double fontSize) {
  std::int64_t lines = 0;
  for (const std::string_view line : Unicode::lines(text)) {
    const auto wrapped = static_cast<std::int64_t>(std::ceil(estimatedWidth(line, fontSize) / widthPoints));
    lines += std::max<std::int64_t>(1, wrapped);
  }
  return lines;
}

std::int64_t DocumentAuthor::rowHeight(const std::vector<std::string>& cells) {
  std::int64_t lines = 1;
  for (const std::string& cell : cells) {
    const std::int64_t columnWidth = contentWidth / static_cast<std::int64_t>(cells.size());
    const double usablePoints = static_cast<double>(columnWidth - cellMargins) / emuPerPoint;
    lines = std::max(lines, estimatedLines(cell, usablePoints, cellFontSize));
  }
  const double height = (static_cast<double>(lines) * lineHeight + cellPadding) * emuPerPoint;
  return std::max(minimumRowHeight, static_cast<std::int64_t>(height));
}

std::vector<DocumentAuthor::TablePage> DocumentAuthor::tablePages(const SourceTable& table) {
  const std::int64_t headerHeight = rowHeight(table.columns);
  std::vector<TablePage> pages;
  TablePage page{table.columns};
  std::int64_t used = headerHeight;
  for (const auto& row : table.rows) {
    std::vector<std::string> texts;
    texts.reserve(row.size());
    for (const SourceCell& cell : row)
      texts.push_back(cell.displayText());
    const std::int64_t height = rowHeight(texts);
    if (headerHeight + height > pageHeight) {
      throw DocumentError::unsupported(RefusalDetail::tallSlideRow);
    }
    if (used + height > pageHeight) {
      pages.push_back(std::exchange(page, {table.columns}));
      used = headerHeight;
    }
    page.push_back(std::move(texts));
    used += height;
  }
  if (page.size() > 1) pages.push_back(std::move(page));
  if (pages.size() > maximumPages) throw DocumentError::resourceLimit(RefusalDetail::slideCount);
  return pages;
}

}  // namespace zelvo
