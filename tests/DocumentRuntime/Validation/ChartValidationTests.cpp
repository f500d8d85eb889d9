// Owns the read-back of charts and their embedded workbooks.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Validation/ChartReadBack.hpp"
#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::EditedDocument;
using testing::element;
using testing::outcomeOf;
using testing::PackageBuilder;
using testing::replace;
using E = EditedDocument&;
using Value = SourceCellValue;

constexpr const char* sheetPart = "xl/worksheets/sheet1.xml";
constexpr const char* bookPart = "ppt/embeddings/chart-data.xlsx";

const auto unexpected =
    DocumentError::validationFailed("unexpected executable or unsupported document element");
const auto shape = DocumentError::validationFailed("chart data");
const auto values = DocumentError::validationFailed("chart values");
const auto references = DocumentError::validationFailed("chart references or cache indexes");
const auto disagree = DocumentError::validationFailed("chart cache and embedded data disagree");
const auto unapproved = DocumentError::validationFailed("chart data differs from the approved columns");
const auto columns = DocumentError::invalidSelection("chart needs two different columns and at most 30 rows");
const auto absent = DocumentError::invalidSelection(
    "chart categories and numeric values must be present; missing values are not zero");

std::string& chart(E edited) {
  return edited.part("ppt/charts/chart1.xml");
}

auto inBook(std::string part, std::string from, std::string to) {
  return [part = std::move(part), from = std::move(from), to = std::move(to)](E edited) {
    edited.editWorkbook([&](PackageBuilder& workbook) { replace(workbook.part(part).text, from, to); });
  };
}

auto inSheet(std::string from, std::string to) {
  return inBook(sheetPart, std::move(from), std::move(to));
}

/// A row's edit that removes an element of the chart.
auto without(const char* name) {
  return [name](E edited) { replace(chart(edited), element(chart(edited), name), ""); };
}

std::string cache(const std::string& name, std::size_t count) {
  std::string text = "<c:" + name + R"(><c:ptCount val="12"/>)";
  for (std::size_t i = 0; i < count; ++i)
    text += R"(<c:pt idx=")" + std::to_string(i) + R"("><c:v>1</c:v></c:pt>)";
  return text + "</c:" + name + ">";
}

/// A row's edit that replaces the points of categories and values.
auto points(std::size_t categories, std::size_t numbers) {
  return [=](E edited) {
    const std::string old = chart(edited);
    const std::string strings = element(element(old, "c:cat"), "c:strCache");
    replace(chart(edited), strings, cache("strCache", categories));
    replace(chart(edited), element(old, "c:numCache"), cache("numCache", numbers));
  };
}

void removeWorkbook(E edited) {
  edited.package.remove(bookPart);
  edited.package.remove("ppt/charts/_rels/chart1.xml.rels");
}

void addPart(E edited) {
  edited.editWorkbook([](PackageBuilder& workbook) { workbook.part("docProps/app.xml").text = "<t/>"; });
}

void repeatSeries(E edited) {
  const std::string series = element(chart(edited), "c:ser");
  replace(chart(edited), series, series + series);
}

void makeCategoriesNumbers(E edited) {
  const std::string categories = element(chart(edited), "c:cat");
  std::string numbers = categories;
  testing::replaceAll(numbers, "strCache", "numCache");
  replace(chart(edited), categories, numbers);
}

void cutLastRow(E edited) {
  edited.editWorkbook([](PackageBuilder& workbook) {
    std::string& sheet = workbook.part(sheetPart).text;
    sheet.erase(sheet.find(R"(<row r="13">)"));
    sheet += "</sheetData></worksheet>";
  });
}

void approveARowMore(E edited) {
  edited.table->rows.push_back(edited.table->rows.back());
  edited.table->rows.back()[0].address = "A14";
}

std::vector<testing::Refusal<EditedDocument>> refusals() {
  const auto inChart = [](std::string_view table) { return testing::edits<EditedDocument>(chart, table); };
  return testing::joined<EditedDocument>({
      {{"chart alone", removeWorkbook, "validationFailed: missing chart or orphaned chart workbook", "book"},
       {"nobody expects it", [](E e) { e.chart.reset(); }, "validationFailed: unexpected chart", "expected"},
       {"no workbook", [](E e) { e.part(bookPart) = "xlsx"; }, "resourceLimit: archive size", "book"},
       {"element outside the profile", inSheet("<sheetData>", "<drawing/><sheetData>"), unexpected},
       {"sixth part", addPart, "validationFailed: unexpected data in embedded chart workbook", "book/part"},
       {"root", [](E e) { testing::replaceAll(chart(e), "c:chartSpace", "c:chart"); }, shape, "chart/root"},
       {"two series", repeatSeries, shape, "chart/series"},
       {"no series", without("c:ser"), shape, "chart/series"},
       {"no categories", without("c:cat"), shape, "chart/series"},
       {"no values", without("c:val"), shape, "chart/series"},
       {"no cached values", without("c:numCache"), shape, "chart/series"},
       {"numbers as categories", makeCategoriesNumbers, shape, "chart/series"}},
      inChart(R"(<c:plotArea> => <c:plotArea><c:strCache/> | validationFailed: chart data | chart/series/cache
                 <c:v>0.25</c:v> => | validationFailed: chart values | chart/series/value
                 <c:v>0.25</c:v> => <c:v>0.25 </c:v> | validationFailed: chart values | chart/series/value
                 <c:v>0.25</c:v> => <c:v>1e400</c:v> | validationFailed: chart values | chart/series/value)"),
      {{"no points", points(0, 0), values, "chart/series"},
       {"31 points", points(31, 31), values, "chart/series"},
       {"a category less", points(11, 12), values, "chart/series"}},
      {{"no series name", without("c:tx"), references, "chart/series"}},
      inChart(R"($A$2:$A$13 => $A$2:$A$14 | validationFailed: chart references or cache indexes |
                 $B$2:$B$13 => $B$2:$B$12 | validationFailed: chart references or cache indexes |
                 ChartData!$B$1 => ChartData!$A$1 | validationFailed: chart references or cache indexes |
                 <c:plotArea> => <c:plotArea><c:f/> | validationFailed: chart references or cache indexes |
                 ptCount val="12" => ptCount val="13" | validationFailed: chart references or cache indexes |
                 <c:pt idx="11"> => <c:pt idx="12"> | validationFailed: chart references or cache indexes |)"),
      {{"beside the data", inSheet(R"(<row r="2">)", R"(<row r="2"><c r="C2"><v>1</v></c>)"), shape},
       {"below", inSheet("</sheetData>", R"(<row r="14"/><row r="15"><c r="A15"/></row></sheetData>)"),
        shape},
       {"another sheet name", inBook("xl/workbook.xml", R"("ChartData")", R"("Data")"), shape}},
      {{"no cached series name", without("c:strCache"), shape, "chart/series"}},
      inChart(R"(<c:v>Column 2</c:v> => <c:v>Column</c:v> | validationFailed: chart data |
                 <c:v>3.25</c:v> => <c:v>3.250</c:v> | validationFailed: chart cache and embedded data disagree |)"),
      {{"value of the workbook alone", inSheet("<v>4.25</v>", "<v>5.25</v>"), disagree},
       {"category of the workbook alone", inSheet(">5,1<", ">5,1 <"), disagree},
       {"value as text", inSheet(R"(<c r="B8">)", R"(<c r="B8" t="str">)"), disagree},
       {"row missing", cutLastRow, disagree},
       {"impossible chart", [](E e) { e.chart->valueColumn = 3; }, columns, "expected"},
       {"chart of a text column", [](E e) { e.chart->valueColumn = 2; }, absent, "expected"},
       {"other categories", [](E e) { e.chart->categoryColumn = 2; }, unapproved, "expected/category"},
       {"approved value", [](E e) { e.table->rows[6][1].value = Value::number("6.250"); }, unapproved},
       {"approved category", [](E e) { e.table->rows[7][0].value = Value::text("8"); }, unapproved},
       {"a row more approved", approveARowMore, unapproved},
       {"table that breaks a rule", [](E e) { e.table->sheetName = std::string(65, 'x'); },
        "invalidSelection: table, title, or source bounds"},
       {"approved title", [](E e) { e.table->columns[1] = "2"; },
        "validationFailed: table cells differ from frozen source values"},
       {"a letter more", [](E e) { replace(e.part("ppt/slides/slide2.xml"), ">12,3<", ">12<"); },
        "validationFailed: table cells differ from frozen source values"}},
  });
}

TEST(ChartValidation, RefusesInTheOrderOfItsChecks) {
  testing::expectRefusals<EditedDocument>(testing::chartDeck, refusals(),
                                          [](const auto& e) { e.validate(); });
}

TEST(ChartValidation, AcceptsAnyExpectedTableAndPointsWithSeveralValues) {
  EditedDocument edited = testing::chartDeck();
  replace(chart(edited), "<c:v>0.25</c:v>", "<c:v>0.25</c:v><c:v>7</c:v>");  // the first one counts
  const auto outcome = [&] { return outcomeOf([&] { edited.validate(); }); };
  EXPECT_EQ(outcome(), "");
  edited.table->rows[11].clear();
  EXPECT_EQ(outcome(), absent);
  edited.table->rows.clear();
  EXPECT_EQ(outcome(), "invalidSelection: chart values have mixed formats or units");
  edited.table.reset();
  EXPECT_EQ(outcome(), "");

  removeWorkbook(edited);
  const GeneratedPackage package(edited.package.bytes().view(), {}, {});
  EXPECT_EQ(outcomeOf([&] { validateChartPackage(package, nullptr, *edited.chart, {}); }),
            "validationFailed: chart workbook");
}

}  // namespace
}  // namespace zelvo
