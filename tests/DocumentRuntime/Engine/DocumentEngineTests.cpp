#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Engine/DocumentEngine.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"
#include "Support/Cost.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

using testing::outcomeOf;
using Value = SourceCellValue;

const DocumentError longCells =
    DocumentError::unsupported("long slide cells; use a Word table or a smaller presentation selection");

struct Request {
  SourceTable table = testing::tableOf(2, 5);
  std::string title = "Title";
  std::optional<ChartSelection> chart =
      ChartSelection{.categoryColumn = 0, .valueColumn = 1, .title = "Chart"};

  SourceCell& cell(std::size_t row) { return table.rows[row][0]; }

  Request() {
    for (auto& row : table.rows)
      row[1].value = Value::number("2.5");
  }
};

void createDeck(const Request& request) {
  DocumentEngine::createPPTX(request.table, request.title, request.chart);
}

TEST(DocumentEngine, RefusesDecksInTheOrderOfTheRules) {
  using R = Request&;
  const std::string long95(95, 'i');
  const std::vector<testing::Refusal<Request>> rows = {
      {"rule", [](R r) { r.table.rows[4][0].address = "A2"; }, "invalidSelection: cell lineage or bounds"},
      {"long title", [](R r) { r.table.columns[1] = std::string(61, 'i'); }, longCells},
      {"long cell", [](R r) { r.cell(2).value = Value::text(std::string(81, 'i')); }, longCells},
      {"chart rule", [](R r) { r.chart->valueColumn = 2; },
       "invalidSelection: chart needs two different columns and at most 30 rows"},
      {"tall row", [](R r) { r.cell(3).value = Value::text(std::string(19, '\n')); },
       "unsupported: presentation cells need too much vertical space; use Word or fewer columns"},
      {"three lines of title", [&](R r) { r.title = long95; },
       "unsupported: presentation title is too long for two lines"},
      {"three lines of chart title", [&](R r) { r.chart->title = long95; },
       "unsupported: chart title is too long for two lines"},
      // Written without it, and read back as another text.
      {"control character", [](R r) { r.cell(1).value = Value::text("a\x01"); },
       "validationFailed: chart data differs from the approved columns"},
  };
  testing::expectRefusals<Request>([] { return Request(); }, rows, createDeck);
}

TEST(DocumentEngine, MeasuresSlideCellsAsTheyAreShown) {
  Request request;
  request.chart.reset();
  request.table.columns[0] = std::string(60, 'i');
  request.cell(0).value = Value::text(std::string(80, 'i'));
  // 60 digits with their 19 separators are 79 characters, with "%" 80; 61 digits are 82.
  SourceCell& number = request.table.rows[0][1];
  number.value = Value::number(std::string(60, '1'));
  number.numberFormat = "#,##0";
  EXPECT_EQ(outcomeOf([&] { createDeck(request); }), "");
  number.numberFormat = "#,##0.0";
  EXPECT_EQ(outcomeOf([&] { createDeck(request); }), longCells);
  EXPECT_NO_THROW(DocumentEngine::createDOCX(request.table, request.title));
}

TEST(DocumentEngine, RefusesWordDocumentsThatWouldShowOtherTexts) {
  SourceTable table = testing::tableOf(1, 2);
  const auto outcome = [&](const char* title) {
    return outcomeOf([&] { DocumentEngine::createDOCX(table, title); });
  };
  for (const char* text : {"a\x01", "a\rb", "a\uFFFE"}) {
    table.rows[0][0].value = Value::text(text);
    EXPECT_EQ(outcome("Title"), "validationFailed: table cells differ from frozen source values");
  }
  EXPECT_EQ(outcome(" "), "invalidSelection: table, title, or source bounds");
}

TEST(DocumentEngine, MakesDocumentsThatShowWhatWasExtracted) {
  const ByteBuffer workbook = testing::workbookPackage(testing::richWorkbook()).bytes();
  EXPECT_EQ(DocumentEngine::inspectXLSX(ByteBuffer::copyOf(workbook.view()), "folder/book.xlsx").sourceSHA256,
            OOXML::hash(workbook.view()));
  const SourceTable table = DocumentEngine::extractTable(
      ByteBuffer::copyOf(workbook.view()), "folder/book.xlsx", {"Sales", "A1:E4", true, true, true});
  ASSERT_EQ(table.rows.size(), 3U);

  const GeneratedDocument word = DocumentEngine::createDOCX(table, "Sales");
  const GeneratedDocument deck = DocumentEngine::createPPTX(table, "Sales", {});
  EXPECT_EQ(word.format, DocumentFormat::docx);
  EXPECT_EQ(deck.format, DocumentFormat::pptx);
  for (const GeneratedDocument* document : {&word, &deck}) {
    EXPECT_EQ(document->sourceSHA256, OOXML::hash(workbook.view()));
    EXPECT_TRUE(document->validation.sourceValuesVerified);
    EXPECT_EQ(document->validation,
              DocumentEngine::validate(document->data.view(), document->format, &table, nullptr));
    // Each shows this table and no other.
    SourceTable other = table;
    other.rows[0][1].value = Value::number("1234.51");
    EXPECT_THROW(DocumentEngine::validate(document->data.view(), document->format, &other, nullptr),
                 DocumentError);
  }

  SourceTable charted = testing::tableOf(2, 30);
  for (auto& row : charted.rows)
    row[1].value = Value::number("-1E-3");
  const ChartSelection chart{.categoryColumn = 0, .valueColumn = 1, .title = ""};
  EXPECT_TRUE(DocumentEngine::createPPTX(charted, "Sales", chart).validation.sourceValuesVerified);
}

TEST(DocumentEngine, StopsWritingWhenTheDocumentIsTooLarge) {
  constexpr std::size_t mebibyte = std::size_t{1024} * 1024;
  SourceTable table = testing::tableOf(8, 200);
  const auto expectRefusal = [&](const auto& create, const char* expected, std::size_t mostBytes) {
    const auto cost = testing::costOf([&] { EXPECT_EQ(outcomeOf(create), expected); });
    EXPECT_LT(cost.peakBytes, mostBytes);
  };
  // Twenty slides repeat a sheet name of one character.
  table.sheetName = "e" + testing::repeated("\u0301", 2 * mebibyte);
  expectRefusal([&] { DocumentEngine::createPPTX(table, "Title", {}); }, "resourceLimit: output archive",
                60 * mebibyte);
  table.sheetName = "Data";
  const std::string mark = testing::repeated("\u0301", 10'000);
  for (auto& row : table.rows) {
    for (SourceCell& cell : row)
      cell.value = Value::text("e" + mark);
  }
  expectRefusal([&] { DocumentEngine::createDOCX(table, "Title"); }, "resourceLimit: output part",
                40 * mebibyte);
}

}  // namespace
}  // namespace zelvo
