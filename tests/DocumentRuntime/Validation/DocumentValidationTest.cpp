// Owns the read-back of Word documents, presentations, their charts and the charts' workbooks, and the result
// record.
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/Validation/ChartReadBack.hpp"
#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "Support/Cancellation.hpp"

namespace zelvo {
namespace {

using namespace testing;

using E = EditedDocument&;
using Value = SourceCellValue;

TEST(WordValidation, RefusesInTheOrderOfItsChecks) {
  const DocumentChanges changes = {
      {"no package", [](E e) { e.package.remove("[Content_Types].xml"); }},
      {"main part of another name", [](E e) { e.renameMainPart("word/document.xml", otherMainPart); }},
      {"expected table that breaks a rule", [](E e) { e.table->sourceName = "home/book.xlsx"; }},
      {"a row more expected", [](E e) { e.table = tableOf(3, 5); }},
      {"expected value", [](E e) { e.table->rows[3][2].value = SourceCellValue::text("4,4"); }}};
  expectDocumentRefusals(wordDocument, R"(
no package | => | invalidArchive: not an OOXML package |
ppt/embeddings/chart-data.xlsx | => | unsafeContent: embedded object |
word/document.xml | <w:sectPr> => <w:hyperlink/><w:sectPr> | unexpected executable or unsupported document element |
main part of another name | => | main document part | target
_rels/.rels | <Relationship …/> => | main document relationship | target
_rels/.rels | /officeDocument" => /styles" | main document relationship | target/type
_rels/.rels | word/document.xml => _rels/.rels | main document relationship | target
docProps/core.xml | => <Types/> | unexpected Word package part |
word/document.xml* | w:document => w:p | Word table | root
word/document.xml | <w:tbl>…</w:tbl> => or <w:tbl/><w:tbl/> | Word table | table
word/document.xml | <w:tbl>…</w:tbl> => <w:tbl/> or <w:tbl>(2*<w:tr/>)</w:tbl> | table dimensions | table
word/document.xml | <w:tbl>…</w:tbl> => <w:tbl>(2*<w:tr>(9*<w:tc/>)</w:tr>)</w:tbl> | table dimensions | table
word/document.xml | <w:tbl>…</w:tbl> => <w:tbl>(202*<w:tr><w:tc/></w:tr>)</w:tbl> | table dimensions | table
expected table that breaks a rule | => | invalidSelection: table, title, or source bounds |
word/document.xml | >2,2< => >2,2 < | table cells differ from frozen source values | table/row
word/document.xml | </w:tbl> => <w:tr>(3*<w:tc><w:t>x</w:t></w:tc>)</w:tr></w:tbl> | table cells differ from frozen source values | table
expected value or a row more expected | => | table cells differ from frozen source values |)",
                         changes);
}

TEST(WordValidation, ReturnsTheVerifiedProperties) {
  const std::string layoutWarning = "Layout has not been rendered or checked in Word/PowerPoint.";
  EditedDocument edited = wordDocument();
  edited.table->warnings = {"first", "second"};
  DocumentValidation expected{.structurallyValid = true,
                              .sourceValuesVerified = true,
                              .visuallyVerified = false,
                              .validatorVersion = "zelvo-ooxml-profile-1",
                              .warnings = {layoutWarning, "first", "second"},
                              .outputSHA256 = OOXML::hash(edited.package.bytes().view())};
  EXPECT_EQ(edited.validate(), expected);
}

TEST(WordValidation, AcceptsRunsAndTheLargestAndSmallestTable) {
  EditedDocument edited = wordDocument();
  edit(edited.package, "word/document.xml", ">2,2<",
       R"(>2</w:t></w:r><w:r><w:t>,</w:t><w:t/></w:r></w:p><w:p><w:r><w:t>2<)");
  EXPECT_TRUE(edited.validate().sourceValuesVerified);
  edited.table.reset();
  for (const char* rows : {"(201*<w:tr>(8*<w:tc/>)</w:tr>)", "<w:tr><w:tc/></w:tr>"}) {
    edit(edited.package, "word/document.xml", "<w:tbl>…</w:tbl>", "<w:tbl>" + std::string(rows) + "</w:tbl>");
    EXPECT_TRUE(edited.validate().structurallyValid);
  }
  EXPECT_THROW(validateGeneratedDocument(edited.package.bytes().view(), DocumentFormat::docx, nullptr,
                                         nullptr, stopped()),
               Cancelled);
}

TEST(PresentationValidation, RefusesInTheOrderOfItsChecks) {
  const DocumentChanges changes = {{"a chart expected", [](E e) { e.chart = ChartSelection{0, 1, ""}; }}};
  expectDocumentRefusals([] { return deck(); },
                         R"(
ppt/slides/slide1.xml | <p:spTree> => <p:spTree><p:pic/> | unexpected executable or unsupported document element |
ppt/slides/slide0.xml or ppt/slides/slide01.xml or ppt/slides/slide.xml | => <Types/> | unexpected presentation package part |
ppt/presentation.xml* | p:presentation => p:sp | presentation slides |
ppt/presentation.xml | <p:sldIdLst>…</p:sldIdLst> => <p:sldIdLst/> | presentation slides | list
ppt/presentation.xml | <p:sldIdLst>…</ => <p:sldIdLst>(22*<p:sldId r:id="rId2"/>)</ | presentation slides | list
ppt/presentation.xml | r:id="rId2" => or r:id="x" | presentation slides | list/first
ppt/presentation.xml | <p:sldIdLst>…</ => <p:sldIdLst>(21*<p:sldId r:id="rId2"/>)</ | duplicate slide | list
ppt/_rels/presentation.xml.rels | slides/slide2.xml => slides/../slides/slide1.xml | duplicate slide | second
ppt/slides/slide2.xml* | p:sld => p:sldLayout | slide root | second
ppt/slides/slide2.xml | >Column 3< => >Column 4< | repeated table header | second
a chart expected | => | missing chart or orphaned chart workbook |
ppt/embeddings/chart-data.xlsx | => <Types/> | missing chart or orphaned chart workbook |
ppt/slides/slide1.xml | </a:tc></a:tr></a:tbl> => </a:tc><a:tc/></a:tr></a:tbl> | table dimensions | first
ppt/slides/slide2.xml | >12,3< => >12,3 < | table cells differ from frozen source values | second
ppt/presentation.xml | <p:sldIdLst>…</ => <p:sldIdLst><p:sldId r:id="rId3"/><p:sldId r:id="rId2"/></ )"
                         "| table cells differ from frozen source values | list",
                         changes);
}

TEST(PresentationValidation, ChecksSlidesInSlideOrderAndSkipsTheChart) {
  const auto change = [](E e, const std::string& name, const std::string& from, const std::string& to) {
    edit(e.package, "ppt/" + name, from, to);
  };
  EditedDocument edited = chartDeck();
  const std::string entry = R"(<p:sldId r:id="rId)";
  change(edited, "presentation.xml", "<p:sldIdLst>…</",
         "<p:sldIdLst>" + entry + "4\"/>" + entry + "2\"/>" + entry + "3\"/></");
  EXPECT_TRUE(edited.validate().sourceValuesVerified);
  edited.table.reset();
  EXPECT_FALSE(edited.validate().sourceValuesVerified);
  change(edited, "presentation.xml", "<p:sldIdLst>…</",
         "<p:sldIdLst>" + entry + "4\"/></");  // the chart alone
  EXPECT_EQ(outcomeOf([&] { edited.validate(); }), "validationFailed: table dimensions");

  const SourceTable table = tableOf(1, 200);  // twenty slides, the most for a table
  const ByteBuffer deck = DocumentAuthor::pptx(table, "Title", {});
  EXPECT_NO_THROW(validateGeneratedDocument(deck.view(), DocumentFormat::pptx, &table, nullptr));
}

void removeWorkbook(E edited) {
  edited.package.remove("ppt/embeddings/chart-data.xlsx");
  edited.package.remove("ppt/charts/_rels/chart1.xml.rels");
}

/// Sets so many cached points of categories and values.
auto points(const std::string& categories, const std::string& values) {
  return [=](E edited) {
    const auto set = [&](const std::string& element, const std::string& cache, const std::string& count) {
      edit(edited.package, "ppt/charts/chart1.xml", "<c:" + element + ">…</c:" + element + ">",
           "<c:" + element + "><c:" + cache + ">(" + count + "*<c:pt><c:v>1</c:v></c:pt>)</c:" + cache +
               "></c:" + element + ">");
    };
    set("cat", "strCache", categories);
    set("val", "numCache", values);
  };
}

void approveOneMoreRow(E edited) {
  edited.table->rows.push_back(edited.table->rows.back());
  edited.table->rows.back()[0].address = "A14";
}

const DocumentChanges changes = {
    {"chart alone", removeWorkbook},
    {"no chart expected", [](E e) { e.chart.reset(); }},
    {"no points", points("0", "0")},
    {"31 points", points("31", "31")},
    {"a category less", points("11", "12")},
    {"impossible chart", [](E e) { e.chart->valueColumn = 3; }},
    {"chart of a text column", [](E e) { e.chart->valueColumn = 2; }},
    {"approved value", [](E e) { e.table->rows[6][1].value = Value::number("6.250"); }},
    {"approved category", [](E e) { e.table->rows[7][0].value = Value::text("8"); }},
    {"a row more approved", approveOneMoreRow},
    {"table that breaks a rule", [](E e) { e.table->sheetName = std::string(65, 'x'); }},
    {"approved title", [](E e) { e.table->columns[1] = "2"; }}};

TEST(ChartValidation, RefusesInTheOrderOfItsChecks) {
  expectDocumentRefusals(chartDeck, R"(
chart alone | => | missing chart or orphaned chart workbook | book
no chart expected | => | unexpected chart | expected
ppt/embeddings/chart-data.xlsx | => xlsx | resourceLimit: archive size | book
book:xl/worksheets/sheet1.xml | <sheetData> => <drawing/><sheetData> | unexpected executable or unsupported document element |
book:docProps/app.xml | => <t/> | unexpected data in embedded chart workbook | book/part
ppt/charts/chart1.xml* | c:chartSpace => c:chart | chart data | chart/root
ppt/charts/chart1.xml | <c:ser>…</c:ser> or <c:cat>…</c:cat> or <c:val>…</c:val> or <c:numCache>…</c:numCache> => | chart data | chart/series
ppt/charts/chart1.xml | <c:cat>…</c:cat> => <c:cat><c:numCache/></c:cat> | chart data | chart/series
ppt/charts/chart1.xml | <c:plotArea> => <c:plotArea><c:strCache/> or <c:plotArea><c:numCache/> | chart data | chart/series/cache
ppt/charts/chart1.xml | <c:v>0.25</c:v> => or <c:v>0.25 </c:v> or <c:v>1e400</c:v> | chart values | chart/series/value
no points or 31 points or a category less | => | chart values | chart/series
ppt/charts/chart1.xml | <c:tx>…</c:tx> => | chart references or cache indexes | chart/series
ppt/charts/chart1.xml | $A$2:$A$13 => $A$2:$A$14 | chart references or cache indexes |
ppt/charts/chart1.xml | $B$2:$B$13 => $B$2:$B$12 | chart references or cache indexes |
ppt/charts/chart1.xml | ChartData!$B$1 => ChartData!$A$1 | chart references or cache indexes |
ppt/charts/chart1.xml | ptCount val="12" => ptCount val="13" | chart references or cache indexes |
ppt/charts/chart1.xml | <c:pt idx="11"> => <c:pt idx="12"> | chart references or cache indexes |
book:xl/worksheets/sheet1.xml | <row r="2"> => <row r="2"><c r="C2"><v>1</v></c> | chart data |
book:xl/workbook.xml | "ChartData" => "Data" | chart data |
ppt/charts/chart1.xml | <c:v>Column 2</c:v> => <c:v>Column</c:v> or <c:v>Column 2</c:v></c:pt><c:pt><c:v>x</c:v> | chart data |
ppt/charts/chart1.xml | <c:v>3.25</c:v> => <c:v>3.250</c:v> | chart cache and embedded data disagree |
book:xl/worksheets/sheet1.xml | <v>4.25</v> => <v>5.25</v> | chart cache and embedded data disagree |
impossible chart | => | invalidSelection: chart needs two different columns and at most 30 rows | expected
chart of a text column | => | invalidSelection: chart categories and numeric values must be present; missing values are not zero | expected
approved value or approved category or a row more approved | => | chart data differs from the approved columns |
table that breaks a rule | => | invalidSelection: table, title, or source bounds |
approved title | => | table cells differ from frozen source values |
ppt/slides/slide2.xml | >12,3< => >12< | table cells differ from frozen source values |)",
                         changes);
}

TEST(ChartValidation, RefusesAChartWithoutItsWorkbook) {
  EditedDocument edited = chartDeck();
  removeWorkbook(edited);
  const GeneratedPackage package(edited.package.bytes().view(), {}, {});
  EXPECT_EQ(outcomeOf([&] { validateChartPackage(package, nullptr, *edited.chart, {}); }),
            "validationFailed: chart workbook");
}

/// Nested texts count once for every level. The fuzz regressions bound the memory of their comparison.
TEST(NestedText, IsComparedWithTheExpectedTable) {
  for (const auto& [xml, title] : cases<2>(R"(
      >a<w:t>b</w:t>c< => acbb ; >a<w:t/><w:t>b<w:t>c</w:t></w:t>< => abcbcc ; >a< => a)")) {
    EditedDocument word = wordDocument();
    edit(word.package, "word/document.xml", ">Column 1<", xml);
    for (const std::string more : {"", "x"}) {
      word.table->columns[0] = title + more;
      EXPECT_EQ(outcomeOf([&] { word.validate(); }),
                more.empty() ? "" : "validationFailed: table cells differ from frozen source values")
          << xml;
    }
  }
}

TEST(NestedText, IsComparedInRepeatedHeaders) {
  const auto outcome = [](const std::string& a, const std::string& b) {
    EditedDocument edited = deck();
    edited.table.reset();
    edit(edited.package, "ppt/slides/slide1.xml", ">Column 1<", a);
    edit(edited.package, "ppt/slides/slide2.xml", ">Column 1<", b);
    return outcomeOf([&] { edited.validate(); });
  };
  for (const auto& [a, b, isSame] : cases<3>(R"(
      >x<a:t>x<a:t>x</a:t></a:t>< | >xxxxxx< | yes ; >x<a:t>x<a:t>x</a:t></a:t>< | >xxxxxxx< | no
      >x<a:t>y</a:t></a:t><a:t>y< | ><a:t>x</a:t><a:t>y</a:t>< | no
      >ab<a:t>ac</a:t>< | >ab<a:t>ab</a:t>< | no ; >a<a:t>b</a:t></a:t><a:t>c< | >a<a:t>b</a:t></a:t><a:t>d< | no)")) {
    const Outcome expected = isSame == "yes" ? "" : "validationFailed: repeated table header";
    EXPECT_EQ(outcome(a, b), expected) << a << ' ' << b;
    EXPECT_EQ(outcome(b, a), expected) << b << ' ' << a;
  }
}

}  // namespace
}  // namespace zelvo
