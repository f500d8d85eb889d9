// Owns the read-back of Word documents, and the result record of validation.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"
#include "Support/Cancellation.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::EditedDocument;
using testing::element;
using testing::repeated;
using testing::replace;
using E = EditedDocument&;

/// The document part, whatever a row has renamed it to.
std::string& document(E edited) {
  return edited.part(edited.package.parts.back().name);
}

std::string& relationships(E edited) {
  return edited.part("_rels/.rels");
}

auto table(std::string xml) {
  return [xml = std::move(xml)](E e) { replace(document(e), element(document(e), "w:tbl"), xml); };
}

std::string rowsXML(std::size_t rows, std::size_t columns) {
  return repeated("<w:tr>" + repeated("<w:tc><w:t>x</w:t></w:tc>", columns) + "</w:tr>", rows);
}

auto tableOf(std::size_t rows, std::size_t columns) {
  return table("<w:tbl>" + rowsXML(rows, columns) + "</w:tbl>");
}

auto renamed(const std::string& from, const std::string& to) {
  return [=](E edited) { testing::replaceAll(document(edited), from, to); };
}

/// A part before all others, so that the document stays the last.
auto part(const std::string& name, const std::string& text) {
  return [=](E edited) { edited.package.parts.insert(edited.package.parts.begin(), {name, text}); };
}

std::vector<testing::Refusal<EditedDocument>> refusals() {
  const auto inDocument = [](auto text) { return testing::edits<EditedDocument>(document, text); };
  const auto inRelationships = [](auto text) { return testing::edits<EditedDocument>(relationships, text); };
  const auto wordTable = DocumentError::validationFailed("Word table");
  const auto dimensions = DocumentError::validationFailed("table dimensions");
  const auto differ = DocumentError::validationFailed("table cells differ from frozen source values");
  return testing::joined<EditedDocument>({
      {{"no package", [](E e) { e.package.remove("[Content_Types].xml"); },
        "invalidArchive: not an OOXML package"},
       {"workbook", part("ppt/embeddings/chart-data.xlsx", ""), "unsafeContent: embedded object"}},
      inDocument(R"(<w:sectPr> => <w:hyperlink/><w:sectPr> | )"
                 R"(validationFailed: unexpected executable or unsupported document element |)"),
      {{"main part of another name", [](E e) { e.renameMainPart("word/document.xml", "word/other.xml"); },
        "validationFailed: main document part", "target"},
       {"no relationship at all",
        [](E e) {
          const std::string text = relationships(e).substr(0, relationships(e).find("<Relationship "));
          relationships(e) = text + "</Relationships>";
        },
        "validationFailed: main document relationship", "target"}},
      inRelationships(R"(
</ => <Relationship Id="x" Target="_rels/.rels"/></ | validationFailed: main document relationship | target/second
/officeDocument" => /styles" | validationFailed: main document relationship | target/type
word/document.xml => _rels/.rels | validationFailed: main document relationship | target)"),
      {{"part", part("docProps/core.xml", "<Types/>"), "validationFailed: unexpected Word package part"},
       {"another root", renamed("w:document", "w:p"), wordTable, "root"}},
      inDocument(R"( xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main" => )"
                 R"(| validationFailed: Word table | namespace)"),
      {{"no body", renamed("w:body", "w:p"), wordTable, "body"},
       {"no table", table(""), wordTable, "table"},
       {"two tables", table("<w:tbl/><w:tbl/>"), wordTable, "table"}},
      inDocument("</w:tc> => <w:tbl/></w:tc> | validationFailed: Word table | table"),
      {{"no rows", table("<w:tbl/>"), dimensions, "table"},
       {"no cells", tableOf(2, 0), dimensions, "table"},
       {"nine columns", tableOf(2, 9), dimensions, "table"},
       {"202 rows", tableOf(202, 1), dimensions, "table"},
       {"header with a cell less", [](E e) { replace(document(e), element(document(e), "w:tc"), ""); },
        dimensions, "table"},
       {"expected table that breaks a rule", [](E e) { e.table->sourceName = "home/book.xlsx"; },
        "invalidSelection: table, title, or source bounds"}},
      inDocument(R"(
>2,2< => >2,2 < | validationFailed: table cells differ from frozen source values | table/row
>Column 3< => >Column < | validationFailed: table cells differ from frozen source values | table/header)"),
      {{"a row more", [](E e) { replace(document(e), "</w:tbl>", rowsXML(1, 3) + "</w:tbl>"); }, differ,
        "table"},
       {"expected value", [](E e) { e.table->rows[3][2].value = SourceCellValue::text("4,4"); }, differ}},
  });
}

TEST(WordValidation, RefusesInTheOrderOfItsChecks) {
  testing::expectRefusals<EditedDocument>(testing::wordDocument, refusals(),
                                          [](const auto& edited) { edited.validate(); });
}

TEST(WordValidation, ReturnsTheVerifiedProperties) {
  const std::string layoutWarning = "Layout has not been rendered or checked in Word/PowerPoint.";
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

  // A chart is not expected of a Word document.
  edited.chart = ChartSelection{.categoryColumn = 9, .valueColumn = 9, .title = ""};
  EXPECT_EQ(edited.validate(), expected);
}

TEST(WordValidation, AcceptsRunsAndTheLargestAndSmallestTable) {
  EditedDocument edited = testing::wordDocument();
  replace(document(edited), ">2,2<", R"(>2</w:t></w:r><w:r><w:t>,</w:t><w:t/></w:r></w:p><w:p><w:r><w:t>2<)");
  EXPECT_TRUE(edited.validate().sourceValuesVerified);
  edited.table.reset();
  for (const auto& [rows, columns] : {std::pair{201U, 8U}, {1U, 1U}}) {
    tableOf(rows, columns)(edited);
    EXPECT_TRUE(edited.validate().structurallyValid);
  }
  EXPECT_THROW(validateGeneratedDocument(edited.package.bytes().view(), DocumentFormat::docx, nullptr,
                                         nullptr, testing::stopped()),
               Cancelled);
}

}  // namespace
}  // namespace zelvo
