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
using testing::errorOf;
using testing::PackageBuilder;
using testing::replace;
using testing::replaceAll;

constexpr const char* sheetPart = "xl/worksheets/sheet1.xml";

DocumentError failure(const char* detail) {
  return DocumentError::validationFailed(detail);
}

std::string& chart(EditedDocument& edited) {
  return edited.part("ppt/charts/chart1.xml");
}

/// A row's edit of one text of the chart part.
auto inChart(std::string from, std::string to) {
  return [from = std::move(from), to = std::move(to)](EditedDocument& edited) {
    replace(chart(edited), from, to);
  };
}

auto inWorkbook(std::string part, std::string from, std::string to) {
  return [part = std::move(part), from = std::move(from), to = std::move(to)](EditedDocument& edited) {
    edited.editWorkbook([&](PackageBuilder& workbook) { replace(workbook.part(part).text, from, to); });
  };
}

auto inSheet(std::string from, std::string to) {
  return inWorkbook(sheetPart, std::move(from), std::move(to));
}

void removeElement(EditedDocument& edited, const char* name) {
  replace(chart(edited), element(chart(edited), name), "");
}

std::string points(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text += R"(<c:pt idx=")" + std::to_string(i) + R"("><c:v>1</c:v></c:pt>)";
  return text;
}

/// Replaces the points of categories and values.
void putPoints(EditedDocument& edited, std::size_t categories, std::size_t values) {
  const std::string old = chart(edited);
  replace(chart(edited), element(element(old, "c:cat"), "c:strCache"),
          R"(<c:strCache><c:ptCount val="12"/>)" + points(categories) + "</c:strCache>");
  replace(chart(edited), element(old, "c:numCache"),
          R"(<c:numCache><c:ptCount val="12"/>)" + points(values) + "</c:numCache>");
}

TEST(ChartValidation, RefusesInTheOrderOfItsChecks) {
  const auto shape = failure("chart data");
  const auto values = failure("chart values");
  const auto references = failure("chart references or cache indexes");
  const auto disagree = failure("chart cache and embedded data disagree");
  const auto unapproved = failure("chart data differs from the approved columns");
  const std::vector<testing::Refusal<EditedDocument>> rows = {
      {"chart alone",
       [](EditedDocument& edited) {
         edited.package.remove("ppt/embeddings/chart-data.xlsx");
         edited.package.remove("ppt/charts/_rels/chart1.xml.rels");
       },
       failure("missing chart or orphaned chart workbook"), "workbook"},
      {"chart that nobody expects", [](EditedDocument& edited) { edited.chart.reset(); },
       failure("unexpected chart"), "expected chart"},
      {"workbook that is none",
       [](EditedDocument& edited) { edited.part("ppt/embeddings/chart-data.xlsx") = "xlsx"; },
       DocumentError::resourceLimit("archive size"), "workbook"},
      {"element outside the profile", inSheet("<sheetData>", "<drawing/><sheetData>"),
       failure("unexpected executable or unsupported document element")},
      {"sixth part in the workbook",
       [](EditedDocument& edited) {
         edited.editWorkbook(
             [](PackageBuilder& workbook) { workbook.part("docProps/app.xml").text = "<t/>"; });
       },
       failure("unexpected data in embedded chart workbook"), "workbook/part"},
      {"another root", [](EditedDocument& edited) { replaceAll(chart(edited), "c:chartSpace", "c:chart"); },
       shape, "chart/root"},
      {"two series",
       [](EditedDocument& edited) {
         const std::string series = element(chart(edited), "c:ser");
         replace(chart(edited), series, series + series);
       },
       shape, "chart/series"},
      {"no series", [](EditedDocument& edited) { removeElement(edited, "c:ser"); }, shape, "chart/series"},
      {"no categories", [](EditedDocument& edited) { removeElement(edited, "c:cat"); }, shape,
       "chart/series"},
      {"no values", [](EditedDocument& edited) { removeElement(edited, "c:val"); }, shape, "chart/series"},
      {"numbers as categories",
       [](EditedDocument& edited) {
         const std::string categories = element(chart(edited), "c:cat");
         std::string numbers = categories;
         replaceAll(numbers, "strCache", "numCache");
         replace(chart(edited), categories, numbers);
       },
       shape, "chart/series"},
      {"a cache outside the series", inChart("<c:plotArea>", "<c:plotArea><c:strCache/>"), shape},
      {"point without value", inChart("<c:v>0.25</c:v>", ""), shape, "chart/series/value"},
      {"text as value", inChart("<c:v>0.25</c:v>", "<c:v>0.25 </c:v>"), values, "chart/series/value"},
      {"infinite value", inChart("<c:v>0.25</c:v>", "<c:v>1e400</c:v>"), values, "chart/series/value"},
      {"no points", [](EditedDocument& edited) { putPoints(edited, 0, 0); }, values, "chart/series"},
      {"31 points", [](EditedDocument& edited) { putPoints(edited, 31, 31); }, values, "chart/series"},
      {"a category less", [](EditedDocument& edited) { putPoints(edited, 11, 12); }, values, "chart/series"},
      {"longer category reference", inChart("ChartData!$A$2:$A$13", "ChartData!$A$2:$A$14"), references},
      {"shorter value reference", inChart("ChartData!$B$2:$B$13", "ChartData!$B$2:$B$12"), references},
      {"another series reference", inChart("ChartData!$B$1", "ChartData!$A$1"), references},
      {"a fourth reference", inChart("<c:plotArea>", "<c:plotArea><c:f/>"), references},
      {"another count", inChart(R"(ptCount val="12")", R"(ptCount val="13")"), references},
      {"another index", inChart(R"(<c:pt idx="11">)", R"(<c:pt idx="12">)"), references},
      {"cell beside the data", inSheet(R"(<row r="2">)", R"(<row r="2"><c r="C2"><v>1</v></c>)"), shape},
      {"cell below the data",
       inSheet("</sheetData>", R"(<row r="14"/><row r="15"><c r="A15"/></row></sheetData>)"), shape},
      {"another sheet name", inWorkbook("xl/workbook.xml", R"("ChartData")", R"("Data")"), shape},
      {"series name of the cache alone", inChart("<c:v>Column 2</c:v>", "<c:v>Column</c:v>"), shape},
      {"value of the cache alone", inChart("<c:v>3.25</c:v>", "<c:v>3.250</c:v>"), disagree},
      {"value of the workbook alone", inSheet("<v>4.25</v>", "<v>5.25</v>"), disagree},
      {"category of the workbook alone", inSheet(">5,1<", ">5,1 <"), disagree},
      {"value as text", inSheet(R"(<c r="B8">)", R"(<c r="B8" t="str">)"), disagree},
      {"row missing",
       [](EditedDocument& edited) {
         edited.editWorkbook([](PackageBuilder& workbook) {
           std::string& sheet = workbook.part(sheetPart).text;
           sheet.erase(sheet.find(R"(<row r="13">)"));
           sheet += "</sheetData></worksheet>";
         });
       },
       disagree},
      {"impossible chart", [](EditedDocument& edited) { edited.chart->valueColumn = 3; },
       DocumentError::invalidSelection("chart needs two different columns and at most 30 rows"),
       "expected chart"},
      {"chart of a text column", [](EditedDocument& edited) { edited.chart->valueColumn = 2; },
       DocumentError::invalidSelection(
           "chart categories and numeric values must be present; missing values are not zero"),
       "expected chart"},
      {"another category column", [](EditedDocument& edited) { edited.chart->categoryColumn = 2; },
       unapproved, "expected chart/category"},
      {"another approved value",
       [](EditedDocument& edited) { edited.table->rows[6][1].value = SourceCellValue::number("6.250"); },
       unapproved},
      {"another approved category",
       [](EditedDocument& edited) { edited.table->rows[7][0].value = SourceCellValue::text("8"); },
       unapproved},
      {"another approved title", [](EditedDocument& edited) { edited.table->columns[1] = "2"; }, unapproved},
      {"a row more approved",
       [](EditedDocument& edited) {
         edited.table->rows.push_back(edited.table->rows.back());
         edited.table->rows.back()[0].address = "A14";
       },
       unapproved},
      {"table that breaks a rule",
       [](EditedDocument& edited) { edited.table->sheetName = std::string(65, 'x'); },
       DocumentError::invalidSelection("table, title, or source bounds")},
      {"a letter more",
       [](EditedDocument& edited) { replace(edited.part("ppt/slides/slide2.xml"), ">12,3<", ">12<"); },
       failure("table cells differ from frozen source values")},
  };
  testing::expectRefusals<EditedDocument>(testing::chartDeck, rows,
                                          [](const EditedDocument& edited) { edited.validate(); });
}

TEST(ChartValidation, NeedsTheWorkbook) {
  EditedDocument edited = testing::chartDeck();
  edited.package.remove("ppt/embeddings/chart-data.xlsx");
  edited.package.remove("ppt/charts/_rels/chart1.xml.rels");
  const GeneratedPackage package(edited.package.bytes().view(), {}, {});
  EXPECT_EQ(errorOf([&] { validateChartPackage(package, nullptr, *edited.chart, {}); }),
            failure("chart workbook"));
}

TEST(ChartValidation, ComparesWithAnyExpectedTableWithoutTrippingOverIt) {
  EditedDocument edited = testing::chartDeck();
  edited.table->rows.clear();
  EXPECT_EQ(errorOf([&] { edited.validate(); }),
            DocumentError::invalidSelection("chart values have mixed formats or units"));
  edited.table = testing::deckTable();
  edited.table->rows[11].clear();
  EXPECT_EQ(errorOf([&] { edited.validate(); }),
            DocumentError::invalidSelection(
                "chart categories and numeric values must be present; missing values are not zero"));
  edited.table.reset();
  EXPECT_FALSE(errorOf([&] { edited.validate(); }));
}

}  // namespace
}  // namespace zelvo
