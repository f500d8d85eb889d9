// Owns the hints after refusals and wrong commands.

#include "Support/PackageBuilder.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

using Hints = ToolTest;

const std::string cleanHint =
    "--clean reads a copy of the workbook that holds only its cells; zelvo clean writes it to a file.\n";

std::string package(const std::string& types, const std::string& part) {
  PackageBuilder builder;
  builder.part("[Content_Types].xml").text =
      "<Types><Override PartName='/x' ContentType='application/" + types + "'/></Types>";
  builder.part(part).text = "<x/>";
  return builder.archive().bytes();
}

TEST_F(Hints, SayWhatAFileIs) {
  PackageBuilder spreadsheet;
  spreadsheet.part("mimetype").text = "application/vnd.oasis.opendocument.spreadsheet";
  const std::string archive = package("x", "x");
  const std::pair<std::string, std::string> rows[] = {
      {"", "The file is empty."},
      {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + characters(100),
       "It is a compound file: an encrypted document, "},
      {"\x1F\x8B\x08" + characters(100), "It is a gzip file."},
      {"%PDF-1.7\n" + characters(100), "It is a PDF file."},
      {"\xEF\xBB\xBF\n<!DOCTYPE HTML>" + characters(100), "It is a web page (HTML)"},
      {"<?xml version='1.0'?>" + characters(100), "It is an XML file."},
      {"a;b\n1;2\n", "It is text with separators, such as CSV"},
      {characters(100), "It is a text file."},
      {std::string(100, '\0'), "It is not an Office document."},
      {archive.substr(0, archive.size() - 1), "The file begins like a document, but its end is missing."},
      {archive, "It is an archive, but not an Office document."},
      {spreadsheet.archive().bytes(), "It is an OpenDocument file"},
      {package("vnd.ms-excel.sheet.binary.macroEnabled.main", "xl/workbook.bin"), "It is a binary workbook"},
      {package("vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml", "word/a.xml"),
       "It is a Word document."},
  };
  for (const auto& [content, start] : rows) {
    const ToolRun refused = zelvo("inspect -", content);
    EXPECT_TRUE(refused.status == 1 && refused.hints.starts_with(start)) << refused;
    EXPECT_EQ(std::ranges::count(refused.hints, '\n'), 1) << refused;
  }
  folder.write("a.docx", contentOf(book));
  EXPECT_EQ(zelvo("validate @a.docx").hints, "It is a workbook.\n");
}

TEST_F(Hints, SayWhetherCleaningHelps) {
  auto dirty = workbookPackage(richWorkbook());
  dirty.part("xl/media/image1.png").text = "picture";
  dirty.part("xl/media/image2.png").text = "picture";
  const std::string found = "It holds 2 pictures (xl/media/image1.png and 1 more), 1 phonetic run.\n";
  EXPECT_EQ(zelvo("inspect -", dirty.archive().bytes()).hints, found + cleanHint);
  EXPECT_EQ(zelvo("extract - --sheet Sales --range A4:B5 --no-header", dirty.archive().bytes()).hints,
            found + cleanHint +
                "After --clean: Cell B4 needs a verified formula result. This reader does not "
                "recalculate formulas.\n");

  auto large = workbookPackage(plainWorkbook(repeated("<row><c><v>1</v></c></row>", 50'001)));
  EXPECT_EQ(
      zelvo("inspect -", large.archive().bytes()).hints,
      "Cleaning does not help: The document exceeds a safe processing limit: more than 50,000 cells in sheet "
      "Data\nzelvo clean --sheet NAME writes a workbook of the named worksheets only, without this one.\n");
  // What is wrong in a cell stays wrong.
  const auto wrong = workbookPackage(plainWorkbook("<row r='1'><c r='A1' s='99'><v>1</v></c></row>"));
  const ToolRun refused = zelvo("extract - --sheet Data --range A1 --no-header", wrong.archive().bytes());
  EXPECT_EQ(refused.hints.find("--clean"), std::string::npos);
}

TEST_F(Hints, NameTheOptionThatHelps) {
  folder.write("rich.xlsx", workbookPackage(richWorkbook()).archive().bytes());
  for (const auto& [arguments, hint] : cases<2>(R"(
      extract $book --sheet quarter --range A1:B2 => --sheet takes the exact name
      extract $book --sheet Quarter --range B1:A2 => Write --range like A1:D20
      extract $book --json --sheet Quarter --range A1:I2 => Choose a smaller --range
      extract $book --json --sheet Quarter --range A1 => The range has one row, which is the header. --no-header
      extract $book --sheet Quarter --range A1:B2 => --cached-formulas takes
      extract @rich.xlsx --sheet Sales --range A5:B5 --no-header --cached-formulas => No result is saved for this formula.
      extract @rich.xlsx --sheet Sales --range A6:B6 --no-header => --unmerge removes
      extract @rich.xlsx --json --sheet Sales --range G5:H5 --no-header => Choose a --range without hidden columns.
      extract @rich.xlsx --json --sheet Sales --range A3:B3 --no-header => --include-hidden takes
      create $book --sheet Quarter --range A1:F5 --cached-formulas --title t --chart 1:0 -o @a.pptx => In every row the category
      clean @rich.xlsx --sheet None -o @a.xlsx => zelvo inspect --clean lists
      research check - --no-sources => Cite only URLs of --source.)")) {
    const ToolRun run = zelvo(arguments, contentOf(EXAMPLES "/research-dataset.json"));
    EXPECT_EQ(run.status, 1) << arguments << run;
    EXPECT_TRUE(run.hints.starts_with(hint)) << arguments << run;
  }
}

TEST_F(Hints, NameTheCellThatDocumentsCannotKeep) {
  const std::string text = " t='inlineStr'><is><t>a&#13;b</t></is></c>";
  const WorkbookText lines =
      plainWorkbook("<row r='1'><c r='A1'><v>1</v></c><c r='B1'" + text + "<c r='C1'" + text + "</row>");
  const ToolRun refused =
      zelvo("create - --no-header --title t -o @a.docx", workbookPackage(lines).archive().bytes());
  EXPECT_TRUE(refused.hints.starts_with("Cell B1 has a carriage return, ")) << refused;
}

TEST_F(Hints, NameTheNearestCommandOrOption) {
  for (const auto& [arguments, message, hint] : cases<3>(R"(
      insepct x => There is no command "insepct" => The nearest command is inspect.
      research chekc x => There is no command "chekc" => The nearest command is check.
      dean x => There is no command "dean" => The commands are inspect, extract, create, validate, clean, batch, research, doctor, help, schema, completion.
      inspect --jsno x => The following argument was not expected: --jsno => The nearest option is --json.
      extract x --sheett S => The following arguments were not expected: S --sheett => The nearest option is --sheet.
      --json inspect x => The following argument was not expected: --json => Write --json after inspect.)")) {
    const ToolRun wrong = zelvo(arguments);
    EXPECT_EQ(wrong, failure(2, message + " (see zelvo --help)"));
    EXPECT_EQ(wrong.hints, hint + "\n");
  }
}

}  // namespace
}  // namespace zelvo::testing
