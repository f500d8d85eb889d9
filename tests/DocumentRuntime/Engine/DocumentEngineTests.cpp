// Owns the order of the engine's steps, the limits of slide cells, and its results from workbook to document.
#include <gtest/gtest.h>

#include "DocumentRuntime/Engine/DocumentEngine.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "Support/Cost.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

using Value = SourceCellValue;

struct Request {
  SourceTable table = testing::tableOf(2, 5);
  std::string title = "Title";
  std::optional<ChartSelection> chart = ChartSelection{0, 1, "Chart"};

  Request() {
    for (auto& row : table.rows)
      row[1].value = Value::number("2.5");
  }
  void setText(std::size_t row, std::string text) { table.rows[row][0].value = Value::text(std::move(text)); }
};
using R = Request&;

void createDeck(const Request& request) {
  DocumentEngine::createPPTX(request.table, request.title, request.chart);
}

TEST(DocumentEngine, RefusesDecksInTheOrderOfTheRules) {
  const auto longCells =
      DocumentError::unsupported("long slide cells; use a Word table or a smaller presentation selection");
  testing::expectRefusals<Request>(
      [] { return Request(); },
      {{"rule", [](R r) { r.table.rows[4][0].address = "A2"; }, "invalidSelection: cell lineage or bounds"},
       {"long title", [](R r) { r.table.columns[1] = std::string(61, 'i'); }, longCells},
       {"long cell", [](R r) { r.setText(2, std::string(81, 'i')); }, longCells},
       {"chart rule", [](R r) { r.chart->valueColumn = 2; },
        "invalidSelection: chart needs two different columns and at most 30 rows"},
       {"tall row", [](R r) { r.setText(3, std::string(19, '\n')); },
        "unsupported: presentation cells need too much vertical space; use Word or fewer columns"},
       {"title of three lines", [](R r) { r.title = std::string(95, 'i'); },
        "unsupported: presentation title is too long for two lines"},
       {"chart title of three lines", [](R r) { r.chart->title = std::string(95, 'i'); },
        "unsupported: chart title is too long for two lines"},
       {"control character", [](R r) { r.setText(1, "a\x01"); },  // not written, so another text is read back
        "validationFailed: chart data differs from the approved columns"}},
      createDeck);
  // 60 digits with 19 separators have 79 characters, with a decimal 81.
  testing::expectLimits<Request>(
      {{"column title", 60, longCells, [](R r, std::size_t n) { r.table.columns[0] = std::string(n, 'i'); }},
       {"cell", 80, longCells,
        [](R r, std::size_t n) { r.chart.reset(), r.setText(0, std::string(n, 'i')); }},
       {"number as displayed", 60, longCells,
        [](R r, std::size_t n) {
          r.table.rows[0][1] = {
              "B2", Value::number(std::string(60, '1')), {}, false, n > 60 ? "#,##0.0" : "#,##0"};
          r.chart.reset();
        }}},
      createDeck);
}

TEST(DocumentEngine, RefusesWordDocumentsThatWouldShowOtherTexts) {
  Request request;
  const auto create = [&] { DocumentEngine::createDOCX(request.table, request.title); };
  request.setText(0, std::string(81, 'i'));
  EXPECT_EQ(testing::outcomeOf(create), "");
  for (const char* text : {"a\x01", "a\rb", "a\uFFFE"}) {
    request.setText(0, text);
    EXPECT_EQ(testing::outcomeOf(create), "validationFailed: table cells differ from frozen source values");
  }
  request.title = " ";
  EXPECT_EQ(testing::outcomeOf(create), "invalidSelection: table, title, or source bounds");
}

TEST(DocumentEngine, WritesDocumentsOfTheExtractedTableOnly) {
  const ByteBuffer workbook = testing::workbookPackage(testing::richWorkbook()).bytes();
  const std::string digest = OOXML::hash(workbook.view());
  EXPECT_EQ(DocumentEngine::inspectXLSX(ByteBuffer::copyOf(workbook.view()), "b.xlsx").sourceSHA256, digest);
  const SourceTable table = DocumentEngine::extractTable(ByteBuffer::copyOf(workbook.view()), "b.xlsx",
                                                         {"Sales", "A1:E4", true, true, true});
  SourceTable other = table;
  other.rows.at(0)[1].value = Value::number("1234.51");
  for (const bool word : {true, false}) {
    const GeneratedDocument made =
        word ? DocumentEngine::createDOCX(table, "T") : DocumentEngine::createPPTX(table, "T", {});
    EXPECT_EQ(made.format, word ? DocumentFormat::docx : DocumentFormat::pptx);
    EXPECT_EQ(made.sourceSHA256, digest);
    EXPECT_TRUE(made.validation.sourceValuesVerified);
    EXPECT_EQ(made.validation, DocumentEngine::validate(made.data.view(), made.format, &table, nullptr));
    EXPECT_THROW(DocumentEngine::validate(made.data.view(), made.format, &other, nullptr), DocumentError);
  }
}

TEST(DocumentEngine, StopsWritingWhenTheDocumentIsTooLarge) {
  constexpr std::size_t mebibyte = std::size_t{1024} * 1024;
  SourceTable table = testing::tableOf(8, 200);
  const auto expectRefusal = [&](const auto& create, const char* expected, std::size_t mostBytes) {
    const auto cost = testing::costOf([&] { EXPECT_EQ(testing::outcomeOf(create), expected); });
    EXPECT_LT(cost.peakBytes, mostBytes);
  };
  table.sheetName = "e" + testing::repeated("\u0301", 2 * mebibyte);  // one character, on each of 20 slides
  expectRefusal([&] { DocumentEngine::createPPTX(table, "Title", {}); }, "resourceLimit: output archive",
                60 * mebibyte);
  table.sheetName = "Data";
  const std::string text = "e" + testing::repeated("\u0301", 10'000);
  for (auto& row : table.rows) {
    for (SourceCell& cell : row)
      cell.value = Value::text(text);
  }
  expectRefusal([&] { DocumentEngine::createDOCX(table, "Title"); }, "resourceLimit: output part",
                40 * mebibyte);
}

}  // namespace
}  // namespace zelvo
