#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
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

const std::filesystem::path expected = EXPECTED_FOLDER;

/// Every kind of cell in a table without charts and formulas; `sourceIDs` for the rows, if any.
ResearchSpreadsheet mixedTable() {
  ResearchSpreadsheet dataset;
  dataset.report = "First <line>\n\n\vLast \x01line";
  dataset.columns = {{.name = "Name & \"quotes\"", .kind = testing::Column::Kind::text, .unit = {}},
                     {.name = "Day", .kind = testing::Column::Kind::date, .unit = ""},
                     {.name = "Rate", .kind = testing::Column::Kind::number, .unit = "kWh/m²"}};
  dataset.rows = {
      {.cells = {textCell("a\tb\nc<d>"), textCell("2024-02-29"), numberCell(1e-5)},
       .sources = {"https://b.example/1", "https://a.example/?x=1&y=2"},
       .sourceIDs = {}},
      {.cells = {blankCell(), blankCell(), numberCell(-12)},
       .sources = {"https://b.example/1"},
       .sourceIDs = {}},
      {.cells = {textCell(""), textCell("1899-12-31"), blankCell()}, .sources = {}, .sourceIDs = {}}};
  return dataset;
}

/// A bar chart beside the line chart, and a formula that divides by a blank cell.
ResearchSpreadsheet chartedTable() {
  ResearchSpreadsheet dataset = testing::yearlyProfit();
  dataset.rows[1].cells[2] = blankCell();
  dataset.rows[2].cells[2] = numberCell(-4.5);
  dataset.charts.push_back({.title = "Cost \x02& \"more\"",
                            .kind = testing::Chart::Kind::bar,
                            .categoryColumn = 1,
                            .valueColumns = {3}});
  return dataset;
}

ResearchSourceScope scopeOfThree() {
  using Kind = ResearchSourceScope::Record::Kind;
  const std::chrono::sys_days day = std::chrono::year(2024) / 2 / 29;
  return {{"local-1", "local-2"},
          {{"web-1", "https://a.example/?x=1&y=2"}},
          {{.id = "local-1",
            .kind = Kind::localSnapshot,
            .label = "Notes",
            .observedAt = day,
            .coverage = "page 1",
            .provenanceURL = "https://notes.example/"},
           {.id = "local-2",
            .kind = Kind::localSnapshot,
            .label = std::string(60, 'w'),
            .observedAt = {},
            .coverage = "All\nof it",
            .provenanceURL = {}},
           {.id = "web-1",
            .kind = Kind::publicPage,
            .label = "A & B",
            .observedAt = day,
            .coverage = "excerpt",
            .provenanceURL = "https://a.example/?x=1&y=2"}}};
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
  EXPECT_EQ(
      testing::differences(ResearchWorkbook::make("Title <1>", mixedTable(), none, {}), expected / "plain"),
      "");
  EXPECT_EQ(
      testing::differences(ResearchWorkbook::make("Charts", chartedTable(), none, {}), expected / "charts"),
      "");
  EXPECT_EQ(testing::differences(ResearchWorkbook::make("Scope", scopedTable(), none, scopeOfThree()),
                                 expected / "scope"),
            "");
}

std::string partOf(const ByteBuffer& workbook, std::string_view name) {
  return std::string(BoundedZIP::read(workbook.view()).find(name)->text());
}

TEST(ResearchWorkbook, GivesRowsTheHeightOfTheirText) {
  ResearchSpreadsheet dataset = mixedTable();
  const auto line = [](std::size_t length) { return std::string(length, 'x'); };
  dataset.report =
      line(99) + "\n" + line(100) + "\r\n" + line(299) + "\u2028" + line(900) + "\n" + line(1100);
  const std::string report =
      partOf(ResearchWorkbook::make(line(150), dataset, {}, {}), "xl/worksheets/sheet2.xml");
  // 16 points for each full hundred characters, at most 156, on top of 24; the title's row has 32 in any
  // case.
  for (const char* row : {R"(r="1" ht="32")", R"(r="2" ht="24")", R"(r="3" ht="40")", R"(r="4" ht="56")",
                          R"(r="5" ht="168")", R"(r="6" ht="180")"}) {
    EXPECT_NE(report.find(row), std::string::npos) << row << report;
  }

  // A coverage column of 54 holds 52 characters a line; 25 lines are 412 points, above what a row may have.
  for (const auto& [coverage, height] : {std::pair(line(52), 32),
                                         {line(53), 44},
                                         {line(52 * 24 + 1), 409},
                                         {line(52 * 24), 396},
                                         {"a\n\nb", 60}}) {
    using Record = ResearchSourceScope::Record;
    const Record record{.id = "local-1",
                        .kind = Record::Kind::localSnapshot,
                        .label = "",
                        .observedAt = {},
                        .coverage = coverage,
                        .provenanceURL = {}};
    ResearchSpreadsheet one = testing::yearlyProfit();
    for (auto& row : one.rows) {
      row.sources.clear();
      row.sourceIDs = {"local-1"};
    }
    const auto workbook =
        ResearchWorkbook::make("T", one, {}, ResearchSourceScope({"local-1"}, {}, {record}));
    EXPECT_NE(
        partOf(workbook, "xl/worksheets/sheet4.xml").find("r=\"2\" ht=\"" + std::to_string(height) + "\""),
        std::string::npos)
        << coverage;
  }
}

/// The most that a dataset may hold: 12 columns, 500 rows, 8 sources of 300 characters in every row, 4
/// charts.
ResearchSpreadsheet largestTable() {
  ResearchSpreadsheet dataset = testing::numericTable(std::vector<std::optional<std::string>>(12));
  dataset.calculations.reset();
  for (int row = 0; row < 500; ++row) {
    dataset.rows.push_back(testing::numberRow(std::vector<std::optional<double>>(12, row + 0.1)));
    for (int source = 0; source < 8; ++source) {
      std::string url = "https://example.org/" + std::to_string(row * 8 + source) + "/";
      dataset.rows.back().sources.push_back(url.append(300 - url.size(), 'u'));
    }
  }
  for (std::int64_t column = 1; column <= 4; ++column) {
    dataset.charts.push_back(
        {.title = "C", .kind = testing::Chart::Kind::bar, .categoryColumn = 0, .valueColumns = {column}});
  }
  return dataset;
}

TEST(ResearchWorkbook, TakesTheLargestDatasetAndAnyNumberOfSources) {
  ResearchSpreadsheet dataset = largestTable();
  const ByteBuffer full = ResearchWorkbook::make("T", dataset, {}, {});
  EXPECT_NE(partOf(full, "xl/worksheets/sheet4.xml").find("<c r=\"A4001\""), std::string::npos);
  EXPECT_NE(partOf(full, "xl/tables/table1.xml").find("<autoFilter ref=\"A1:M501\"/>"), std::string::npos);
  for (const char* row : {"<xdr:row>3<", "<xdr:row>25<", "<xdr:row>47<", "<xdr:row>69<"})
    EXPECT_NE(partOf(full, "xl/drawings/drawing1.xml").find(row), std::string::npos) << row;

  for (auto& row : dataset.rows)
    row.sources.clear();
  for (const std::size_t count : {0U, 1U, 200U, 201U, 402U}) {
    std::vector<std::string> sources;
    for (std::size_t i = 0; i < count; ++i)
      sources.push_back("https://example.org/" + std::to_string(i));
    for (auto& row : dataset.rows)
      row.sources = {sources.begin(), sources.begin() + std::min<std::ptrdiff_t>(1, std::ssize(sources))};
    const auto workbook = ResearchWorkbook::make("T", dataset, sources, {});
    const std::string sheet = partOf(workbook, "xl/worksheets/sheet4.xml");
    EXPECT_NE(sheet.find("<row r=\"" + std::to_string(count + 1) + "\""), std::string::npos);
    EXPECT_EQ(sheet.find("<row r=\"" + std::to_string(count + 2) + "\""), std::string::npos);
  }
}

TEST(ResearchWorkbook, RefusesWhatTheDatasetsRulesRefuse) {
  ResearchSpreadsheet dataset = mixedTable();
  EXPECT_THROW(ResearchWorkbook::make("T", dataset, AllowedSources(std::vector<std::string>()), {}),
               DocumentError);
  dataset.columns.pop_back();
  EXPECT_THROW(ResearchWorkbook::make("T", dataset, {}, {}), DocumentError);
}

TEST(ResearchWorkbookReadBack, NamesWhatTheBytesDoNotSay) {
  struct Break {
    const char* part;
    const char* from;
    const char* to;
    const char* detail;
  };
  constexpr const char* data = "xl/worksheets/sheet2.xml";
  constexpr const char* sources = "xl/worksheets/sheet4.xml";
  const Break breaks[] = {
      {sources, "example.org/2023<", "example.org/2032<", "source provenance readback"},
      {sources, "Source URL", "Source", "source provenance readback"},
      {sources, R"(<c r="A4")", R"(<c r="B4")", "source provenance readback"},
      {sources, R"(r="A2" s="0" t="inlineStr")", R"(r="A2" s="0" t="str")", "source provenance readback"},
      {data, "<v>6.0</v>", "<v>6.1</v>", "formula readback"},
      {data, "<f>IF(COUNT(", "<f>IF(1+COUNT(", "formula readback"},
      {data, R"("E3" s="2" t="str"><f>IF)", R"("E3" s="2"><f>IF)", "formula readback"},
      {data, "<v></v>", "<v>0</v>", "formula readback"},
      {data, R"(<c r="E4" s="2"><f>)", R"(<c r="E4" s="2"><g>)", "formula readback"},
      {data, "<v>10.0</v>", "<v>10</v>", "numeric readback"},
      {data, R"("C2" s="2")", R"("C2" s="2" t="str")", "numeric readback"},
      {data, R"("C2" s="2">)", R"("C2" s="2"><f>1</f>)", "numeric readback"},
      {data, R"(<c r="D4" s="2"><v>4.0</v></c>)", "", "numeric readback"},
  };
  const ResearchSpreadsheet dataset = chartedTable();
  const auto content = ResearchWorkbookContent::of("T", dataset, {}, {});
  const ByteBuffer workbook = ResearchWorkbook::make("T", dataset, {}, {});
  EXPECT_NO_THROW(readBackResearchWorkbook(workbook.view(), content));
  for (const auto& [part, from, to, detail] : breaks) {
    PartMap parts = BoundedZIP::read(workbook.view());
    std::string xml(parts.find(part)->text());
    const std::size_t position = xml.find(from);
    ASSERT_NE(position, std::string::npos) << from;
    xml.replace(position, std::string_view(from).size(), to);
    if (std::string_view(to).find("<g>") != std::string_view::npos) xml.replace(xml.rfind("</f>"), 4, "</g>");
    parts.set(part, ByteBuffer::copyOf(xml));
    try {
      readBackResearchWorkbook(BoundedZIP::write(parts).view(), content);
      ADD_FAILURE() << "read back: " << to;
    } catch (const DocumentError& error) {
      EXPECT_EQ(error, DocumentError::validationFailed(detail)) << to;
    }
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
