// Owns workbooks of datasets and their charts: bytes, limits, and what the read-back finds.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"
#include "DocumentRuntime/Research/WorkbookReadBack/ReadBack.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

ResearchSpreadsheet edited(std::string json, const std::string& edits) {
  edit(json, edits);
  return fromJson<ResearchSpreadsheet>(json);
}

/// Every kind of cell in a table without charts and formulas.
const std::string mixedTable =
    R"({"report":"First <line>\n\n\u000bLast \u0001line","charts":[],"columns":[{"name":"Name & \"quotes\"","kind":"text"},)"
    R"({"name":"Day","kind":"date","unit":""},{"name":"Rate","kind":"number","unit":"kWh/m²"}],"rows":[)"
    R"({"cells":["a\tb\nc<d>","2024-02-29",1e-5],"sources":["https://b.example/1","https://a.example/?x=1&y=2"]},)"
    R"({"cells":[null,null,-12],"sources":["https://b.example/1"]},{"cells":["","1899-12-31",null],"sources":[]}]})";

/// Of its rows, the first cites a URL, the others local records.
ResearchSpreadsheet scopedTable() {
  return edited(mixedTable,
                R"("https://b.example/1",→ "https://b.example/1"]→],"sourceIDs":["local-2","local-1"] )"
                R"(null],"sources":[]→null],"sources":[],"sourceIDs":["local-1"])");
}

/// A bar chart beside the line chart, and a formula that divides by a blank cell.
ResearchSpreadsheet chartedTable() {
  return edited(
      yearlyProfit().encoded(),
      R"(11,4,→null,4, 12,4,→-4.5,4, [2,4]}→[2,4]},)"
      R"({"categoryColumn":1,"kind":"bar","title":"Cost\u0020\u0002&\u0020\"more\"","valueColumns":[3]})");
}

/// With that label of its first record.
ResearchSourceScope scope(const std::string& label = "Notes") {
  const std::string url = "https://a.example/?x=1&y=2";
  auto records =
      researchSourceScopeFromJson(
          R"({"localSnapshotIDs":[],"publicSources":{},"records":[{"id":"local-1","kind":"localSnapshot","label":"",)"
          R"("observedAt":"2024-02-29T00:00:00Z","coverage":"page 1","provenanceURL":"https://notes.example/"},)"
          R"({"id":"local-2","kind":"localSnapshot","label":")" +
          std::string(60, 'w') +
          R"(","coverage":"All\nof it"},)"
          R"({"id":"web-1","kind":"publicPage","label":"A & B","observedAt":"2024-02-29T00:00:00Z",)"
          R"("coverage":"excerpt","provenanceURL":")" +
          url + "\"}]}")
          .selectedRecords({"local-1", "local-2", "web-1"}, {});
  records[0].label = label;
  return {{"local-1", "local-2"}, {{"web-1", url}}, records};
}

TEST(ResearchWorkbook, IsExactlyTheExpectedBytes) {
  const auto expectBytes = [](const char* folder, const char* title, const ResearchSpreadsheet& dataset,
                              const std::optional<ResearchSourceScope>& scope) {
    const ByteBuffer workbook = ResearchWorkbook::make(title, dataset, {}, scope);
    EXPECT_EQ(differences(workbook, std::filesystem::path(EXPECTED_FOLDER) / folder), "");
  };
  expectBytes("plain", "Title <1>", edited(mixedTable, ""), {});
  expectBytes("charts", "Charts", chartedTable(), {});
  expectBytes("scope", "Scope", scopedTable(), scope());
}

TEST(ResearchWorkbookReadBack, NamesTheDifference) {
  const ResearchSpreadsheet dataset = chartedTable();
  const auto content = ResearchWorkbookContent::of("T", dataset, {}, {});
  const ByteBuffer workbook = ResearchWorkbook::make("T", dataset, {}, {});
  for (const auto& [part, from, to, detail] : cases<4>(R"(
      sheet4 | example.org/2023<                  | example.org/2032<                => source provenance
      sheet4 | <c r="A4"                          | <c r="B4"                        => source provenance
      sheet2 | <v>6.0</v>                         | <v>6.1</v>                       => formula
      sheet2 | "E3" s="2" t="str"><f>IF           | "E3" s="2"><f>IF                 => formula
      sheet2 | <v>10.0</v>                        | <v>10</v>                        => numeric
      sheet2 | <c r="D4" s="2"><v>4.0</v></c>     |                                  => numeric)")) {
    PartMap parts = BoundedZIP::read(workbook.view());
    const std::string name = "xl/worksheets/" + part + ".xml";
    parts.set(name, ByteBuffer::copyOf(replaced(std::string(parts.find(name)->text()), from, to)));
    EXPECT_EQ(outcomeOf([&] { readBackResearchWorkbook(BoundedZIP::write(parts).view(), content); }),
              "validationFailed: " + detail + " readback")
        << to;
  }
}

struct Extent {
  std::size_t lines = 5, urlLength = 19, otherSources = 0, label = 1;
};

TEST(ResearchWorkbook, NamesWhatASheetCannotHold) {
  const auto make = [](const Extent& extent) {
    ResearchSpreadsheet dataset = yearlyProfit();
    dataset.report = "R" + std::string(extent.lines - 1, '\n');
    std::vector<std::string> sources = {dataset.rows[0].sources[0], dataset.rows[1].sources[0],
                                        "http://h/" + std::string(extent.urlLength - 9, 'u')};
    dataset.rows[2].sources = {sources.back()};
    for (std::size_t i = 0; i < extent.otherSources; ++i)
      sources.push_back(std::to_string(i));
    ResearchWorkbook::make("T", dataset, sources, {});
    ResearchWorkbook::make("T", scopedTable(), {}, scope(std::string(extent.label, 'l')));
  };
  expectLimits<Extent>(
      {{"lines", 49'996, "resourceLimit: too many report lines for a sheet of 49998 rows",
        [](Extent& e, auto n) { e.lines = n; }},
       {"URL", 2000,
        "resourceLimit: the source URL \"http://h/" + std::string(71, 'u') +
            "…\" has more than 2000 characters, too many for a cell",
        [](Extent& e, auto n) { e.urlLength = n; }},
       {"label", 2000,
        "resourceLimit: the label of record \"local-1\" has more than 2000 characters, too many for a cell",
        [](Extent& e, auto n) { e.label = n; }},
       {"sources", 49'994, "resourceLimit: too many sources for a sheet of 49998 rows",
        [](Extent& e, auto n) { e.otherSources = n; }}},
      make);
}

TEST(ResearchCharts, ReferToAWorkbookOfTheirOwn) {
  const auto table = yearlyProfit();
  const auto xml = [&](bool embedded, const std::map<std::int64_t, std::int64_t>& columnMap) {
    return ResearchChartAuthor::xml(table, table.resolvedCells(), table.charts[0], embedded, columnMap, true);
  };
  std::string expected = xml(false, {});
  edit(expected,
       R"(/main">→/main"␠xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"> )"
       R"($C$2:$C$4→$B$2:$B$4 $E$2:$E$4→$C$2:$C$4 </c:chartSpace>→<c:externalData␠r:id="rId1">)"
       R"(<c:autoUpdate␠val="0"/></c:externalData></c:chartSpace>)");
  EXPECT_EQ(xml(true, {{0, 0}, {2, 1}, {4, 2}}), expected);
}

// The expected packages pin all other bytes of charts.
TEST(ResearchCharts, PinBarsAtZeroIfAllValuesAreOnOneSide) {
  for (const auto& [kind, values, zeroBaseline, limit] : cases<4>(R"(
      bar  | [[0,0]]                  | yes | <c:min val="0"/>
      bar  | [[-0.5,0],[null,null]]   | yes | <c:max val="0"/>
      bar  | [[-1,1]] | yes | ; bar | [[null,null]] | yes | ; bar | [[3,5]] | no | ; line | [[3,5]] | yes |)")) {
    const auto cells = fromJson<std::vector<std::vector<Cell>>>(values);
    const auto chart =
        fromJson<Chart>(R"({"title":"T","categoryColumn":0,"valueColumns":[1,0],"kind":")" + kind + "\"}");
    const std::string xml = ResearchChartAuthor::xml(numericTable({"USD", "USD"}), cells, chart, false, {},
                                                     zeroBaseline == "yes");
    const std::string expected = R"("minMax"/>)" + limit + R"(</c:scaling><c:axPos val="l"/>)";
    EXPECT_NE(xml.find(expected), std::string::npos) << xml;
  }
}

}  // namespace
}  // namespace zelvo
