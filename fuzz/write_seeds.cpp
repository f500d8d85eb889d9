// write_seeds TARGET FOLDER: writes the inputs that a fuzz target starts from, made by the builders of the
// tests.

#include <cstdio>
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
  explicit Seeds(std::string folder) : folder_(std::move(folder)) {}

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

void addWorkbooks(Seeds& seeds) {
  seeds.add(zelvo::testing::workbookPackage(zelvo::testing::richWorkbook()));
  seeds.add(zelvo::testing::workbookPackage(zelvo::testing::plainWorkbook(
      "<row r='1'><c r='A1' t='str'><v>a</v></c></row><row r='2'><c r='A2'><v>1</v></c></row>")));
  seeds.add(zelvo::testing::minimalPackage());
}

/// What the reader refuses and the cleaner takes.
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
}

void addXML(Seeds& seeds) {
  for (const auto& part : zelvo::testing::workbookPackage(zelvo::testing::richWorkbook()).parts)
    seeds.add(part.text);
  seeds.add("<a b='&#65;&lt;'>x<![CDATA[<&]]><!-- c --><?p i?><c:d xmlns:c='u'/>\r\n</a>");
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
}

/// The first byte says what the host asks for.
void addDatasets(Seeds& seeds) {
  using namespace zelvo::testing;
  zelvo::ResearchSpreadsheet dataset = yearlyProfit();
  seeds.add("\1" + dataset.encoded());
  seeds.add("\3```json\n" + dataset.encoded() + "\n```");
  dataset.calculations->front().formula = apply(
      Operation::average, {rangeOf(0, 2, 2, 3), apply(Operation::count, {cellAt(1, 4), constant(0.5)})});
  for (Row& row : dataset.rows) {
    row.sourceIDs = {"a", "b"};
    row.sources = {"http://h/"};
  }
  seeds.add("\4" + dataset.encoded());
  seeds.add(std::string("\0{}", 3));
}

/// The first byte says what the host gives.
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
}

void addReports(Seeds& seeds) {
  seeds.add("# Title\n\n|City|Sold|\n|:---|---:|\n| Bonn | 1,5 |\n|Graz|-0.25|\n\nText\n|a|b|\n");
  seeds.add(
      "```csv\r\nName;Value\r\n\"a;b\";\"c\"\"d\"\r\n01;99999999999999.123456\r\n```\r\n|a|b|\r\n|c|d|");
  seeds.add("```\na\tb\n\tc\td\n```\n```\na;b\nc;d;e\n```\n|\u00e9\u0301\x01|\uffff|\u2028|<&>|'\"|");
  // Wider than the reader's blocks, and higher.
  std::string wide = "```\n";
  for (int row = 0; row < 210; ++row)
    wide += "1;2;3;4;5;6;7;8;9\n";
  seeds.add(wide + "```\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: write_seeds TARGET FOLDER\n", stderr);
    return 2;
  }
  const std::string_view target = argv[1];
  Seeds seeds(argv[2]);
  if (target == "fuzz_clean") addUncleanWorkbooks(seeds);
  if (target == "fuzz_package" || target == "fuzz_extract") addWorkbooks(seeds);
  if (target == "fuzz_dataset") addDatasets(seeds);
  if (target == "fuzz_presentation") addPresentations(seeds);
  if (target == "fuzz_report") addReports(seeds);
  if (target == "fuzz_request") addRequests(seeds);
  if (target == "fuzz_validate") addDocuments(seeds);
  if (target == "fuzz_xml") addXML(seeds);
  return seeds.count() > 0 ? 0 : 1;
}
