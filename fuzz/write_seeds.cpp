// write_seeds TARGET FOLDER: writes the inputs that a fuzz target starts from, made by the builders of the
// tests. Some have repeated or nested content, which is most likely to need superlinear time or memory.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/Datasets.hpp"
#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/Texts.hpp"

namespace {

using zelvo::testing::PackageBuilder;

class Seeds {
 public:
  explicit Seeds(std::string folder) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
  }

  void add(std::string_view bytes) {
    std::ofstream file(folder_ + "/seed-" + std::to_string(count_++), std::ios::binary);
    file << bytes;
  }
  void add(const PackageBuilder& package) {
    add(package.bytes().text());
    add(package.archive().bytes());
  }

  int count() const { return count_; }

 private:
  std::string folder_;
  int count_ = 0;
};

/// `inner` inside that many nested elements of one name.
std::string nested(const std::string& name, std::size_t depth, const std::string& inner) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i)
    text.append("<").append(name).append(">");
  text += inner;
  for (std::size_t i = 0; i < depth; ++i)
    text.append("</").append(name).append(">");
  return text;
}

const std::string longText = zelvo::testing::repeated("text of some length ", 100);

/// One string for many cells, each kind of text nested, and many sheets on one relationship with a long
/// target.
void addRepetitiveWorkbooks(Seeds& seeds) {
  using namespace zelvo::testing;
  std::string cells;
  for (const char column : {'A', 'B', 'C', 'D', 'E'})
    cells.append("<c r='").append(1, column).append("1' t='s'><v>0</v></c>");
  cells = "<row r='1'>" + cells + "</row><row r='2'><c r='A2' t='inlineStr'><is>" +
          nested("t", 40, longText) + nested("r", 40, "<t>x</t>") + "</is></c><c r='B2'>" +
          nested("f", 40, longText) + nested("v", 40, "1") + "</c></row>";
  WorkbookText workbook = plainWorkbook(cells);
  workbook.sharedStrings = {"<t>" + longText + "</t>", nested("r", 40, "<t>" + longText + "</t>")};
  workbook.styles = "<cellXfs>" + repeated("<xf numFmtId='0'/>", 200) + "</cellXfs>";
  seeds.add(workbookPackage(workbook));

  PackageBuilder package = workbookPackage(plainWorkbook(""));
  std::string& book = package.part("xl/workbook.xml").text;
  const std::string sheet = book.substr(book.find("<sheet "), book.find("</sheets>") - book.find("<sheet "));
  std::string sheets;
  for (int i = 0; i < 100; ++i)
    sheets += replaced(sheet, "Data", "S" + std::to_string(i));
  replace(book, sheet, sheets);
  replace(package.part("xl/_rels/workbook.xml.rels").text, "worksheets/",
          repeated("./", 2'000) + "worksheets/");
  seeds.add(package);
}

void addWorkbooks(Seeds& seeds) {
  seeds.add(zelvo::testing::workbookPackage(zelvo::testing::richWorkbook()));
  seeds.add(zelvo::testing::workbookPackage(zelvo::testing::plainWorkbook(
      "<row r='1'><c r='A1' t='str'><v>a</v></c></row><row r='2'><c r='A2'><v>1</v></c></row>")));
  seeds.add(zelvo::testing::minimalPackage());
}

/// A table of categories and numbers that a chart can show, and one of many tall rows.
void addTables(Seeds& seeds) {
  const auto add = [&](int rows, const std::string& text) {
    std::string xml = "<row r='1'><c r='A1' t='str'><v>City</v></c><c r='B1' t='str'><v>Sold</v></c></row>";
    for (int row = 2; row <= rows + 1; ++row) {
      const std::string number = std::to_string(row);
      xml.append("<row r='").append(number).append("'><c r='A").append(number);
      xml.append("' t='str'><v>").append(text).append("</v></c><c r='B").append(number);
      xml.append("'><v>").append(number).append("</v></c></row>");
    }
    seeds.add(zelvo::testing::workbookPackage(zelvo::testing::plainWorkbook(xml)));
  };
  add(10, "K\u00f6ln &amp; Graz");
  add(39, "a\nb\nc\nd\ne\nf");
}

/// Workbooks that the reader refuses and the cleaner accepts.
void addUncleanWorkbooks(Seeds& seeds) {
  using namespace zelvo::testing;
  addWorkbooks(seeds);
  PackageBuilder package = workbookPackage(plainWorkbook(
      "<row><c><f t='shared' si='0' ref='A1:A3'>SUM(A$1:$B2)+S!A1+'a "
      "b'!B:C+[1]x!A1+T[[a]]&amp;\"A1\"</f><v>1</v></c></row>"
      "<row ht='9'><c r='B2' t='str'><f t='shared' si='0'/><v> x</v></c><c "
      "t='inlineStr'><is><r><t>r</t></r></is></c></row>"
      "<row r='9' hidden='1'/><row><c t='b' vm='1'><f t='array' ref='A10:A11'>1</f><v>1</v></c></row>"));
  package.part("xl/media/image1.png").text = "picture";
  replace(
      package.part("xl/worksheets/sheet1.xml").text, "</worksheet>",
      "<mergeCells><mergeCell ref='A1:B2'/></mergeCells><hyperlinks><hyperlink/></hyperlinks></worksheet>");
  replace(package.part("xl/workbook.xml").text, "</sheets>",
          "<sheet name='C' r:id='rId1' state='x'/></sheets>");
  seeds.add(package);
}

void addDocuments(Seeds& seeds) {
  using namespace zelvo::testing;
  seeds.add(unpacked(zelvo::DocumentAuthor::docx(deckTable(), "Title").view()));
  seeds.add(deck().package);
  seeds.add(chartDeck().package);

  // Texts, tables and references inside others of their kind.
  const auto nestFirst = [&](PackageBuilder package, const char* part, const char* around, const char* inner,
                             const char* name) {
    std::string& xml = package.part(part).text;
    const std::string outer = element(xml, around);
    const std::string first = element(outer, inner);
    replace(xml, outer, replaced(outer, first, nested(name, 20, first)));
    seeds.add(package);
  };
  nestFirst(wordDocument().package, "word/document.xml", "w:tbl", "w:r", "w:t");
  nestFirst(wordDocument().package, "word/document.xml", "w:body", "w:tbl", "w:tbl");
  nestFirst(deck().package, "ppt/slides/slide1.xml", "a:tbl", "a:t", "a:t");
  nestFirst(deck().package, "ppt/slides/slide1.xml", "p:graphicFrame", "a:tbl", "a:tbl");
  nestFirst(chartDeck().package, "ppt/charts/chart1.xml", "c:ser", "c:f", "c:f");
  nestFirst(chartDeck().package, "ppt/charts/chart1.xml", "c:ser", "c:v", "c:v");
}

void addXML(Seeds& seeds) {
  for (const auto& part : zelvo::testing::workbookPackage(zelvo::testing::richWorkbook()).parts)
    seeds.add(part.text);
  seeds.add("<a b='&#65;&lt;'>x<![CDATA[<&]]><!-- c --><?p i?><c:d xmlns:c='u'/>\r\n</a>");
  using zelvo::testing::repeated;
  seeds.add(nested("a", 64, longText));
  seeds.add("<a>" + repeated("x<b/>", 2'000) + "</a>");
  std::string attributes;
  for (int i = 0; i < 64; ++i)
    attributes += " n" + std::to_string(i) + "=''";
  seeds.add("<a>" + repeated("<b" + attributes + "/>", 50) + repeated("&amp;", 2'000) + "</a>");
}

void addRequests(Seeds& seeds) {
  seeds.add(R"({"operation":"inspect","data":"","sourceName":"a"})");
  seeds.add(
      R"({"operation":"create","data":"QQ==","sourceName":"a","selection":{"sheetName":"S","range":"A1:B2",)"
      R"("firstRowIsHeader":true,"includeHiddenRows":false,"allowCachedFormulaValues":true},"format":"pptx",)"
      R"("title":"T\u00e9\ud83d\ude00","chart":{"categoryColumn":0,"valueColumn":1.0,"title":""}})");
  seeds.add(
      R"({"operation":"validate","data":"QUI=","sourceName":"a","format":"docx","expectedTable":{"sourceName":"a",)"
      R"("sourceSHA256":"b","sheetName":"S","selectedRange":"A1","columns":["c"],"rows":[[{"address":"A2","value":)"
      R"({"number":{"_0":"1"}},"usesCachedFormulaValue":true,"formula":"x","numberFormat":"0","hidden":false},)"
      R"({"address":"B2","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":true}]],"warnings":["w"],)"
      R"("headerUsesCachedFormulaValues":false}})");
  const std::string table =
      R"({"operation":"validate","data":"","sourceName":"a","expectedTable":{"sourceName":"a","sourceSHA256":"",)"
      R"("sheetName":"S","selectedRange":"A1","headerUsesCachedFormulaValues":false,"warnings":[],)";
  using zelvo::testing::repeated;
  seeds.add(table + R"("columns":[)" + repeated(R"("",)", 3'000) + R"(""],"rows":[)" +
            repeated("[],", 3'000) + "[]]}}");
  seeds.add(R"({"ignored":)" + repeated("[", 500) + repeated("]", 500) + R"(,"numbers":[)" +
            repeated("0,", 5'000) + R"(0],"members":{)" + repeated(R"("":0,)", 2'000) + R"("":0}})");
}

/// The first byte selects the host's options.
void addDatasets(Seeds& seeds) {
  using namespace zelvo::testing;
  zelvo::ResearchSpreadsheet dataset = yearlyProfit();
  seeds.add("\1" + dataset.encoded());
  seeds.add("\3```json\n" + dataset.encoded() + "\n```");
  dataset.calculations->front() = calculations("0,4=average([0,2,2,3],count([1,4],#0.5))")[0];
  for (Row& row : dataset.rows) {
    row.sourceIDs = {"a", "b"};
    row.sources = {"http://h/"};
  }
  seeds.add("\4" + dataset.encoded());
  seeds.add(std::string("\0{}", 3));
  for (Row& row : dataset.rows)
    row.sources.assign(16, "http://h/" + repeated("a", 500));
  dataset.calculations->front() = calculations("0,4=sum(" + repeated("[0,2,2,3],", 199) + "[0,2,2,3])")[0];
  seeds.add(std::string(1, '\0') + dataset.encoded());
  seeds.add(std::string(1, '\0') + R"({"columns":[],"rows":[{"cells":[)" + repeated("0,", 5'000) + "0]}]}");
}

/// Many identifiers of one URL, some of them long, and similar records.
void addScopes(Seeds& seeds) {
  using zelvo::testing::repeated;
  const std::string record =
      R"({"id":"a","kind":"publicPage","label":")" + repeated(R"(\")", 500) +
      R"(","observedAt":"2024-02-29T12:00:00+01:00","coverage":"All","provenanceURL":"http://h/"})";
  const auto scope = [&](const std::string& local, const std::string& sources, const std::string& records) {
    seeds.add(R"({"localSnapshotIDs":[)" + local + R"(],"publicSources":{)" + sources + R"(},"records":[)" +
              records + "]}");
  };
  scope(R"("a")", R"("b":"http://h/")", record);
  std::string sources = "\"" + repeated("\u00e9", 300) + R"(":"http://h/")";
  for (int i = 0; i < 300; ++i)
    sources += ",\"\u00ea" + std::to_string(i) + R"(":"http://h/")";
  scope(R"("a","a","b")", sources, record + "," + record);
}

/// The first byte selects the host's options.
void addPresentations(Seeds& seeds) {
  const auto deck = [](const std::string& cover, const std::string& chart, const std::string& more) {
    return R"({"title":"Deck","report":"Sum","slides":[{"title":"Cover","body":["c"],)" + cover +
           R"(},{"title":"Chart","body":["k"],"sources":[],)" + chart +
           R"(},{"title":"Points","body":["p","q"],"sources":["http://h/"]}])" + more + "}";
  };
  const std::string sources = R"("sources":["http://h/"])";
  seeds.add("\2" + deck(sources, R"("chartIndex":0)", ""));
  seeds.add("\6" + deck(sources, R"("chartIndex":0)", ""));
  seeds.add("\12" + deck(sources + R"(,"sourceIDs":["a","b"])", R"("chartIndex":0)", ""));
  seeds.add(std::string(1, '\0') +
            deck(sources, R"("chartIndex":0)", R"(,"dataset":)" + zelvo::testing::yearlyProfit().encoded()));
  const std::string reference = R"("chartReference":{"datasetID":"b","chartIndex":0})";
  seeds.add("\1" + deck(sources, reference, R"(,"datasets":[])"));
  seeds.add("\11" + deck(sources + R"(,"sourceIDs":["b"])", reference, ""));

  // After a NUL the host's scope, after another its dataset. Each slide cites one record, and all charts show
  // one column.
  using zelvo::testing::repeated;
  const std::string scope =
      R"({"localSnapshotIDs":["a"],"publicSources":{},"records":[{"id":"a","kind":"publicPage","label":")" +
      repeated(R"(\")", 1'000) + R"(","coverage":"All"}]})";
  const std::string slide = R"({"title":"T","body":["k"],"sources":[],"sourceIDs":["a"])";
  const std::string before = R"({"title":"Deck","report":"Sum","slides":[)";
  seeds.add(std::string(1, '\0') + before + repeated(slide + "},", 15) + slide + "}]}" + '\0' + scope);
  zelvo::ResearchSpreadsheet dataset = zelvo::testing::yearlyProfit();
  dataset.rows.front().cells.front() = zelvo::testing::Cell("e" + repeated("\u0301", 1'000));
  const std::string chart = R"({"title":"T","body":["k"],"sources":[],"chartIndex":0})";
  seeds.add("\2" + before + R"({"title":"T","body":["k"],"sources":[]},)" + repeated(chart + ",", 14) +
            chart + "]}" + '\0' + '\0' + dataset.encoded());
}

void addReports(Seeds& seeds) {
  seeds.add("# Title\n\n|City|Sold|\n|:---|---:|\n| Bonn | 1,5 |\n|Graz|-0.25|\n\nText\n|a|b|\n");
  seeds.add(
      "```csv\r\nName;Value\r\n\"a;b\";\"c\"\"d\"\r\n01;99999999999999.123456\r\n```\r\n|a|b|\r\n|c|d|");
  seeds.add("```\na\tb\n\tc\td\n```\n```\na;b\nc;d;e\n```\n|\u00e9\u0301\x01|\uffff|\u2028|<&>|'\"|");
  // Larger than the reader's blocks in both directions.
  std::string wide = "```\n";
  for (int row = 0; row < 210; ++row)
    wide += "1;2;3;4;5;6;7;8;9\n";
  seeds.add(wide + "```\n");
  using zelvo::testing::repeated;
  seeds.add(repeated("```\na;b\nc;d\n```\n", 300) +
            repeated("|a|b|\n|-|-|\n|" + repeated("\u0301", 100) + "|d|\n", 50));
}

/// Raw deflate streams: one without faults, and one for each fault that the reader accepts.
void addStreams(Seeds& seeds) {
  using namespace std::string_literals;
  seeds.add("\x0D\xE0\x01\x09\0\0\0\x80\x20\x6C\xF5\xFF\x89\xD2\x02"s);
  // Too many lengths of literals, then of distances; a repeat behind the last length.
  seeds.add("\xF5\xE0\x01\x09\0\0\0\x80\x20\x6C\xF5\xFF\x09\x9F\x28"s);
  seeds.add("\x05\xFE\x01\x09\0\0\0\x80\x20\x6C\xF5\xFF\x09\x7D\x22"s);
  seeds.add("\x05\xF3\x01\x09\0\0\0\x80\x20\x6C\xF5\xFF\x09\xBD\x21"s);
  // Length symbol 286 and distance symbol 30 of the fixed codes.
  seeds.add("\x4B\x1C\x03\0"s);
  seeds.add("\x4B\x4C\x4C\x4C\x04\x3E\0\0\0"s);
  // A match with a distance code without symbols; the unused bit of a distance and of a literal code.
  seeds.add("\x0D\xE0\x01\x09\0\0\0\x80\x20\x6C\xF5\xFF\x89\xC2\x02"s);
  seeds.add("\x0D\xE0\x01\x09\0\0\0\x80\x20\x6C\xF5\xFF\x89\xD2\x03"s);
  seeds.add("\x05\xE0\x01\x09\0\0\0\x80\x20\xFC\x7F\xAD\x01"s);
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): a seed that cannot be made must end the tests
int main(int argc, char** argv) {
  if (argc != 3) {
    static_cast<void>(std::fputs("usage: write_seeds TARGET FOLDER\n", stderr));
    return 2;
  }
  const std::string_view target = argv[1];
  Seeds seeds(argv[2]);
  if (target == "fuzz_clean") addUncleanWorkbooks(seeds);
  if (target == "fuzz_create") addTables(seeds);
  if (target == "fuzz_package" || target == "fuzz_extract" || target == "fuzz_create") {
    addWorkbooks(seeds);
    addRepetitiveWorkbooks(seeds);
  }
  if (target == "fuzz_dataset") addDatasets(seeds);
  if (target == "fuzz_inflate") addStreams(seeds);
  if (target == "fuzz_presentation") addPresentations(seeds);
  if (target == "fuzz_report") addReports(seeds);
  if (target == "fuzz_request") addRequests(seeds);
  if (target == "fuzz_scope") addScopes(seeds);
  if (target == "fuzz_validate") addDocuments(seeds);
  if (target == "fuzz_xml") addXML(seeds);
  return seeds.count() > 0 ? 0 : 1;
}
