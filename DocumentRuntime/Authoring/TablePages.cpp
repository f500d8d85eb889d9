#include "DocumentRuntime/Authoring/TablePages.hpp"

#include <cstdint>
#include <utility>

#include "DocumentRuntime/Authoring/TextEstimate.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {
namespace {

/// EMU that the rows of one slide may take, the header included: from below the title to above the footer.
constexpr std::int64_t pageHeight = 4'650'000;
constexpr std::size_t maximumPages = 20;

}  // namespace

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
      throw DocumentError::unsupported(
          "presentation cells need too much vertical space; use Word or fewer columns");
    }
    if (used + height > pageHeight) {
      pages.push_back(std::exchange(page, {table.columns}));
      used = headerHeight;
    }
    page.push_back(std::move(texts));
    used += height;
  }
  if (page.size() > 1) pages.push_back(std::move(page));
  if (pages.size() > maximumPages) throw DocumentError::resourceLimit("presentation exceeds 20 table slides");
  return pages;
}

}  // namespace zelvo
