#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"
#include "Support/Cancellation.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::EditedDocument;
using testing::element;
using testing::replace;
using testing::replaceAll;

const std::string layoutWarning = "Layout has not been rendered or checked in Word/PowerPoint.";

DocumentError failure(const char* detail) {
  return DocumentError::validationFailed(detail);
}

/// The document part, whatever a row has renamed it to.
std::string& document(EditedDocument& edited) {
  return edited.part(edited.package.parts.back().name);
}

void replaceTable(EditedDocument& edited, const std::string& by) {
  std::string& text = document(edited);
  replace(text, element(text, "w:tbl"), by);
}

std::string cells(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text += "<w:tc><w:t>x</w:t></w:tc>";
  return text;
}

std::string tableXML(std::size_t rows, std::size_t columns) {
  std::string text;
  for (std::size_t i = 0; i < rows; ++i)
    text += "<w:tr>" + cells(columns) + "</w:tr>";
  return "<w:tbl>" + text + "</w:tbl>";
}

TEST(WordValidation, RefusesInTheOrderOfItsChecks) {
  const std::vector<testing::Refusal<EditedDocument>> rows = {
      {"no package", [](EditedDocument& edited) { edited.package.remove("[Content_Types].xml"); },
       DocumentError::invalidArchive("not an OOXML package")},
      {"embedded workbook",
       [](EditedDocument& edited) {
         edited.package.parts.insert(edited.package.parts.begin(), {"ppt/embeddings/chart-data.xlsx", ""});
       },
       DocumentError::unsafeContent("embedded object")},
      {"element outside the profile",
       [](EditedDocument& edited) { replace(document(edited), "<w:sectPr>", "<w:hyperlink/><w:sectPr>"); },
       failure("unexpected executable or unsupported document element")},
      {"main part of another name",
       [](EditedDocument& edited) { edited.renameMainPart("word/document.xml", "word/other.xml"); },
       failure("main document part"), "target"},
      {"no relationship at all",
       [](EditedDocument& edited) {
         edited.part("_rels/.rels") =
             R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"/>)";
       },
       failure("main document relationship"), "target"},
      {"a second relationship",
       [](EditedDocument& edited) {
         replace(edited.part("_rels/.rels"), "</", R"(<Relationship Id="x" Target="_rels/.rels"/></)");
       },
       failure("main document relationship"), "target/second"},
      {"relationship of another type",
       [](EditedDocument& edited) { replace(edited.part("_rels/.rels"), "/officeDocument\"", "/styles\""); },
       failure("main document relationship"), "target/type"},
      {"relationship to another part",
       [](EditedDocument& edited) {
         replace(edited.part("_rels/.rels"), "word/document.xml", "_rels/.rels");
       },
       failure("main document relationship"), "target"},
      {"fourth part",
       [](EditedDocument& edited) {
         edited.package.parts.insert(edited.package.parts.begin(), {"docProps/core.xml", "<Types/>"});
       },
       failure("unexpected Word package part")},
      {"another root", [](EditedDocument& edited) { replaceAll(document(edited), "w:document", "w:p"); },
       failure("Word table"), "root"},
      {"no namespace",
       [](EditedDocument& edited) {
         replace(document(edited),
                 R"( xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main")", "");
       },
       failure("Word table"), "namespace"},
      {"no body", [](EditedDocument& edited) { replaceAll(document(edited), "w:body", "w:p"); },
       failure("Word table"), "body"},
      {"no table", [](EditedDocument& edited) { replaceTable(edited, ""); }, failure("Word table"), "table"},
      {"two tables",
       [](EditedDocument& edited) {
         const std::string table = element(document(edited), "w:tbl");
         replaceTable(edited, table + table);
       },
       failure("Word table"), "table"},
      {"table in a cell",
       [](EditedDocument& edited) { replace(document(edited), "</w:tc>", "<w:tbl/></w:tc>"); },
       failure("Word table"), "table"},
      {"no rows", [](EditedDocument& edited) { replaceTable(edited, "<w:tbl/>"); },
       failure("table dimensions"), "table"},
      {"no cells", [](EditedDocument& edited) { replaceTable(edited, tableXML(2, 0)); },
       failure("table dimensions"), "table"},
      {"nine columns", [](EditedDocument& edited) { replaceTable(edited, tableXML(2, 9)); },
       failure("table dimensions"), "table"},
      {"202 rows", [](EditedDocument& edited) { replaceTable(edited, tableXML(202, 1)); },
       failure("table dimensions"), "table"},
      {"header with a cell less",
       [](EditedDocument& edited) { replace(document(edited), element(document(edited), "w:tc"), ""); },
       failure("table dimensions"), "table"},
      {"expected table that breaks a rule",
       [](EditedDocument& edited) { edited.table->sourceName = "home/book.xlsx"; },
       DocumentError::invalidSelection("table, title, or source bounds")},
      {"a letter more", [](EditedDocument& edited) { replace(document(edited), ">2,2<", ">2,2 <"); },
       failure("table cells differ from frozen source values"), "table/row"},
      {"a header's letter less",
       [](EditedDocument& edited) { replace(document(edited), ">Column 3<", ">Column <"); },
       failure("table cells differ from frozen source values"), "table/header"},
      {"a row twice",
       [](EditedDocument& edited) {
         const std::string row = "<w:tr>" + cells(3) + "</w:tr>";
         replace(document(edited), "</w:tbl>", row + "</w:tbl>");
       },
       failure("table cells differ from frozen source values"), "table"},
      {"another expected value",
       [](EditedDocument& edited) { edited.table->rows[3][2].value = SourceCellValue::text("4,4"); },
       failure("table cells differ from frozen source values")},
  };
  testing::expectRefusals<EditedDocument>(testing::wordDocument, rows,
                                          [](const EditedDocument& edited) { edited.validate(); });
}

TEST(WordValidation, SaysWhatWasProved) {
  EditedDocument edited = testing::wordDocument();
  edited.table->warnings = {"first", "second"};
  DocumentValidation expected{.structurallyValid = true,
                              .sourceValuesVerified = true,
                              .visuallyVerified = false,
                              .validatorVersion = "zelvo-ooxml-profile-1",
                              .warnings = {layoutWarning, "first", "second"},
                              .outputSHA256 = OOXML::hash(edited.package.bytes().view())};
  EXPECT_EQ(edited.validate(), expected);

  edited.table.reset();
  expected.sourceValuesVerified = false;
  expected.warnings = {layoutWarning};
  EXPECT_EQ(edited.validate(), expected);

  // Nobody asked for a chart that a Word document could hold.
  edited.chart = ChartSelection{.categoryColumn = 9, .valueColumn = 9, .title = ""};
  EXPECT_EQ(edited.validate(), expected);
}

TEST(WordValidation, JoinsTheRunsOfACell) {
  EditedDocument edited = testing::wordDocument();
  replace(document(edited), ">2,2<", R"(>2</w:t></w:r><w:r><w:t>,</w:t><w:t/></w:r></w:p><w:p><w:r><w:t>2<)");
  EXPECT_TRUE(edited.validate().sourceValuesVerified);
}

TEST(WordValidation, TakesTablesUpToTheirBounds) {
  EditedDocument edited = testing::wordDocument();
  edited.table.reset();
  for (const auto& [rows, columns] : {std::pair{201U, 8U}, {1U, 1U}}) {
    replaceTable(edited, tableXML(rows, columns));
    EXPECT_TRUE(edited.validate().structurallyValid);
  }
}

TEST(WordValidation, IsCancelled) {
  const EditedDocument edited = testing::wordDocument();
  EXPECT_THROW(DocumentEngine::validate(edited.package.bytes().view(), DocumentFormat::docx, nullptr, nullptr,
                                        testing::stopped()),
               Cancelled);
}

}  // namespace
}  // namespace zelvo
