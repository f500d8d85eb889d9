// Owns workbooks of datasets: their bytes, their limits, and what their read-back finds.

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"
#include "DocumentRuntime/Research/WorkbookReadBack/ReadBack.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::blankCell;
using testing::numberCell;
using testing::textCell;

/// Every kind of cell in a table without charts and formulas.
ResearchSpreadsheet mixedTable() {
  using enum testing::Column::Kind;
  ResearchSpreadsheet dataset;
  dataset.report = "First <line>\n\n\vLast \x01line";
  dataset.columns = {{"Name & \"quotes\"", text, {}}, {"Day", date, ""}, {"Rate", number, "kWh/m²"}};
  dataset.rows = {{{textCell("a\tb\nc<d>"), textCell("2024-02-29"), numberCell(1e-5)},
                   {"https://b.example/1", "https://a.example/?x=1&y=2"},
                   {}},
                  {{blankCell(), blankCell(), numberCell(-12)}, {"https://b.example/1"}, {}},
                  {{textCell(""), textCell("1899-12-31"), blankCell()}, {}, {}}};
  return dataset;
}

/// A bar chart beside the line chart, and a formula that divides by a blank cell.
ResearchSpreadsheet chartedTable() {
  ResearchSpreadsheet dataset = testing::yearlyProfit();
  dataset.rows[1].cells[2] = blankCell();
  dataset.rows[2].cells[2] = numberCell(-4.5);
  dataset.charts.push_back({"Cost \x02& \"more\"", testing::Chart::Kind::bar, 1, {3}});
  return dataset;
}

ResearchSourceScope scopeOfThree() {
  using enum ResearchSourceScope::Record::Kind;
  const std::chrono::sys_days day = std::chrono::year(2024) / 2 / 29;
  const std::string url = "https://a.example/?x=1&y=2";
  return {{"local-1", "local-2"},
          {{"web-1", url}},
          {{"local-1", localSnapshot, "Notes", day, "page 1", "https://notes.example/"},
           {"local-2", localSnapshot, std::string(60, 'w'), {}, "All\nof it", {}},
           {"web-1", publicPage, "A & B", day, "excerpt", url}}};
}

ResearchSpreadsheet scopedTable() {
  ResearchSpreadsheet dataset = mixedTable();
  dataset.rows[0].sources = {"https://a.example/?x=1&y=2"};
  dataset.rows[1].sources = {};
  dataset.rows[1].sourceIDs = {"local-2", "local-1"};
  dataset.rows[2].sourceIDs = {"local-1"};
  return dataset;
}

TEST(ResearchWorkbook, IsExactlyTheExpectedBytes) {
  const AllowedSources none;
  const auto differences = [](const ByteBuffer& workbook, const char* folder) {
    return testing::differences(workbook, std::filesystem::path(EXPECTED_FOLDER) / folder);
  };
  EXPECT_EQ(differences(ResearchWorkbook::make("Title <1>", mixedTable(), none, {}), "plain"), "");
  EXPECT_EQ(differences(ResearchWorkbook::make("Charts", chartedTable(), none, {}), "charts"), "");
  EXPECT_EQ(differences(ResearchWorkbook::make("Scope", scopedTable(), none, scopeOfThree()), "scope"), "");
}

TEST(ResearchWorkbookReadBack, NamesTheDifference) {
  const ResearchSpreadsheet dataset = chartedTable();
  const auto content = ResearchWorkbookContent::of("T", dataset, {}, {});
  const ByteBuffer workbook = ResearchWorkbook::make("T", dataset, {}, {});
  for (const auto& [part, from, to, detail] : testing::cases<4>(R"(
      sheet4 | example.org/2023<                  | example.org/2032<                => source provenance
      sheet4 | Source URL                         | Source                           => source provenance
      sheet4 | <c r="A4"                          | <c r="B4"                        => source provenance
      sheet4 | r="A2" s="0" t="inlineStr"         | r="A2" s="0" t="str"             => source provenance
      sheet2 | <v>6.0</v>                         | <v>6.1</v>                       => formula
      sheet2 | <f>IF(COUNT(                       | <f>IF(1+COUNT(                   => formula
      sheet2 | "E3" s="2" t="str"><f>IF           | "E3" s="2"><f>IF                 => formula
      sheet2 | <v></v>                            | <v>0</v>                         => formula
      sheet2 | <v>10.0</v>                        | <v>10</v>                        => numeric
      sheet2 | "C2" s="2"                         | "C2" s="2" t="str"               => numeric
      sheet2 | "C2" s="2">                        | "C2" s="2"><f>1</f>              => numeric
      sheet2 | <c r="D4" s="2"><v>4.0</v></c>     |                                  => numeric)")) {
    PartMap parts = BoundedZIP::read(workbook.view());
    const std::string name = "xl/worksheets/" + part + ".xml";
    parts.set(name, ByteBuffer::copyOf(testing::replaced(std::string(parts.find(name)->text()), from, to)));
    EXPECT_EQ(testing::outcomeOf([&] { readBackResearchWorkbook(BoundedZIP::write(parts).view(), content); }),
              "validationFailed: " + detail + " readback")
        << to;
  }
}

ResearchSourceScope scopeWithLabel(const std::string& label) {
  return {{"local-1", "local-2"},
          {{"web-1", "https://a.example/?x=1&y=2"}},
          {{.id = "local-1", .label = label, .observedAt = {}, .coverage = "", .provenanceURL = {}}}};
}

TEST(ResearchWorkbookReadBack, TakesCarriageReturnsForLineFeeds) {
  for (const char* label : {"a\rb", "a\r\nb", "a\r\x01\n\r"})
    EXPECT_NO_THROW(ResearchWorkbook::make("T", scopedTable(), {}, scopeWithLabel(label))) << label;
}

/// The lines of a report and the length of a row's URL.
struct Extent {
  std::size_t lines = 5;
  std::size_t urlLength = 20;
};

TEST(ResearchWorkbook, NamesWhatASheetCannotHold) {
  const auto make = [](const Extent& extent) {
    ResearchSpreadsheet dataset = mixedTable();
    dataset.report = "R" + std::string(extent.lines - 1, '\n');
    dataset.rows[0].sources[0].resize(extent.urlLength, 'u');
    ResearchWorkbook::make("T", dataset, {}, {});
  };
  testing::expectLimits<Extent>(
      {{"lines", 49'997, "resourceLimit: too many report lines for a sheet of 49998 rows",
        [](Extent& extent, std::size_t count) { extent.lines = count; }},
       {"URL", 2000,
        "resourceLimit: the source URL \"https://b.example/1" + std::string(61, 'u') +
            "…\" has more than 2000 characters, too many for a cell",
        [](Extent& extent, std::size_t length) { extent.urlLength = length; }}},
      make);
  const ResearchSpreadsheet dataset = testing::yearlyProfit();
  std::vector<std::string> sources;
  for (std::size_t i = 0; i < 49'998; ++i)
    sources.push_back(i < 3 ? dataset.rows[i].sources[0] : std::to_string(i));
  EXPECT_EQ(testing::outcomeOf([&] { ResearchWorkbook::make("T", dataset, sources, {}); }),
            "resourceLimit: too many sources for a sheet of 49998 rows");
  EXPECT_EQ(
      testing::outcomeOf(
          [] { ResearchWorkbook::make("T", scopedTable(), {}, scopeWithLabel(std::string(2001, 'l'))); }),
      "resourceLimit: the label of record \"local-1\" has more than 2000 characters, too many for a cell");
}

}  // namespace
}  // namespace zelvo
