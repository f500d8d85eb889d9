#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Support/ArchiveBuilder.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

constexpr std::string_view workbookSuffix = ".xlsx";

std::string contentOf(const std::filesystem::path& path);

/// The archive of a folder's files, built by the tests' own writer as packages are to be: stored, sorted,
/// UTF-8 names, one date. A folder named like a workbook stands for an archive within.
std::string archiveOf(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (auto it = std::filesystem::recursive_directory_iterator(folder);
       it != std::filesystem::recursive_directory_iterator(); ++it) {
    const std::string name = it->path().lexically_relative(folder).string();
    if (it->is_directory() && !name.ends_with(workbookSuffix)) continue;
    if (it->is_directory()) it.disable_recursion_pending();
    names.push_back(name);
  }
  std::ranges::sort(names);
  testing::ArchiveBuilder archive;
  for (const std::string& name : names) {
    archive.stored(name, contentOf(folder / name)).both([](testing::EntryHeader& header) {
      header.flags = 0x0800;
    });
  }
  return archive.bytes();
}

std::string contentOf(const std::filesystem::path& path) {
  if (std::filesystem::is_directory(path)) return archiveOf(path);
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Compares part by part first, so that a difference is shown as text.
void expectPackage(const ByteBuffer& bytes, const std::string& name) {
  const std::filesystem::path folder = std::filesystem::path(EXPECTED_FOLDER) / name;
  for (const Part& part : BoundedZIP::read(bytes.view())) {
    if (part.name.ends_with(workbookSuffix)) continue;
    EXPECT_EQ(part.bytes.text(), contentOf(folder / part.name)) << part.name;
  }
  EXPECT_TRUE(bytes.text() == archiveOf(folder)) << name;
}

TEST(AuthoredPackage, IsExactlyTheExpectedBytes) {
  const SourceTable table = testing::sampleTable();
  expectPackage(DocumentAuthor::docx(table, "Title <1> & \"2\""), "word");
  expectPackage(DocumentAuthor::pptx(table, "Title <1> & \"2\"", std::nullopt), "deck");

  SourceTable charted = table;
  charted.rows[1][0].value = SourceCellValue::text("Nord & Ost");
  expectPackage(DocumentAuthor::pptx(charted, "Sales",
                                     ChartSelection{.categoryColumn = 0, .valueColumn = 1, .title = ""}),
                "deck-with-chart");
}

TEST(AuthoredPackage, NotesStoredResultsOfTheHeaderAlone) {
  SourceTable table = testing::tableOf(3, 1);
  const auto holds = [](const ByteBuffer& bytes, std::string_view text) {
    return bytes.text().find(text) != std::string_view::npos;
  };
  EXPECT_FALSE(holds(DocumentAuthor::docx(table, "T"), "have not been recalculated"));
  EXPECT_FALSE(holds(DocumentAuthor::pptx(table, "T", {}), "cached formula results"));
  table.headerUsesCachedFormulaValues = true;
  EXPECT_TRUE(holds(DocumentAuthor::docx(table, "T"), "have not been recalculated"));
  EXPECT_TRUE(holds(DocumentAuthor::pptx(table, "T", {}), "cached formula results"));
  EXPECT_TRUE(holds(DocumentAuthor::docx(table, "T"),
                    R"(<w:gridCol w:w="3120"/><w:gridCol w:w="3120"/><w:gridCol w:w="3120"/></)"));
  EXPECT_TRUE(
      holds(DocumentAuthor::docx(testing::tableOf(7, 1), "T"), R"(<w:gridCol w:w="1337"/></w:tblGrid>)"));
}

}  // namespace
}  // namespace zelvo
