#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo {
namespace {

/// Twips: 6.5 inches, what a Letter page leaves between one-inch margins.
constexpr std::size_t textWidth = 9360;

constexpr std::string_view documentPart = "word/document.xml";

/// About the size of a cell's markup and text.
constexpr std::size_t usualCellBytes = 256;

/// The remainder of the division is dropped: all columns are equally wide.
std::size_t columnWidth(const SourceTable& table) {
  return textWidth / table.columns.size();
}

/// Throws `DocumentError` resourceLimit "output part" as soon as the part is too large: cells of few
/// characters may have many bytes.
void appendCell(std::string& xml, std::string_view text, std::size_t width, bool header) {
  OOXML::append(xml, R"(<w:tc><w:tcPr><w:tcW w:w=")", width, R"(" w:type="dxa"/>)",
                header ? R"(<w:shd w:fill="EDEFF2"/>)" : "",
                R"(</w:tcPr><w:p><w:r><w:rPr><w:sz w:val="22"/>)", header ? "<w:b/>" : "",
                R"(</w:rPr><w:t xml:space="preserve">)", OOXML::escaped(text), "</w:t></w:r></w:p></w:tc>");
  BoundedZIP::OutputSize::checkPart(xml.size());
}

/// A row does not split across pages; the header row is repeated on each.
void appendRowStart(std::string& xml, bool header) {
  OOXML::append(xml, "<w:tr><w:trPr><w:cantSplit/>", header ? "<w:tblHeader/>" : "", "</w:trPr>");
}

void appendTable(std::string& xml, const SourceTable& table) {
  const std::size_t width = columnWidth(table);
  xml +=
      R"(<w:tbl><w:tblPr><w:tblW w:w="9360" w:type="dxa"/><w:tblLayout w:type="fixed"/><w:tblBorders>)"
      R"(<w:top w:val="single" w:sz="4" w:color="CCCCCC"/><w:left w:val="single" w:sz="4" w:color="CCCCCC"/>)"
      R"(<w:bottom w:val="single" w:sz="4" w:color="CCCCCC"/><w:right w:val="single" w:sz="4" w:color="CCCCCC"/>)"
      R"(<w:insideH w:val="single" w:sz="4" w:color="DDDDDD"/><w:insideV w:val="single" w:sz="4" w:color="DDDDDD"/>)"
      R"(</w:tblBorders><w:tblCellMar><w:top w:w="100" w:type="dxa"/><w:left w:w="100" w:type="dxa"/>)"
      R"(<w:bottom w:w="100" w:type="dxa"/><w:right w:w="100" w:type="dxa"/></w:tblCellMar></w:tblPr><w:tblGrid>)";
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    OOXML::append(xml, R"(<w:gridCol w:w=")", width, R"("/>)");
  }
  xml += "</w:tblGrid>";
  appendRowStart(xml, true);
  for (const std::string& title : table.columns)
    appendCell(xml, title, width, true);
  xml += "</w:tr>";
  for (const auto& row : table.rows) {
    appendRowStart(xml, false);
    for (const SourceCell& cell : row)
      appendCell(xml, cell.displayText(), width, false);
    xml += "</w:tr>";
  }
  xml += "</w:tbl>";
}

std::string documentXML(const SourceTable& table, std::string_view title) {
  const std::string provenance = "Source: " + table.sourceName + " · " + table.sheetName + "!" +
                                 table.selectedRange + " · saved snapshot";
  std::string xml;
  // So that it is not copied as it grows. Pages that are never written are never resident.
  xml.reserve((table.rows.size() + 2) * table.columns.size() * usualCellBytes);
  xml += R"(<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main"><w:body>)";
  OOXML::append(
      xml, "\n",
      R"(<w:p><w:pPr><w:spacing w:after="240"/></w:pPr><w:r><w:rPr><w:b/><w:sz w:val="36"/></w:rPr>)"
      R"(<w:t xml:space="preserve">)",
      OOXML::escaped(title), "</w:t></w:r></w:p>\n",
      R"(<w:p><w:r><w:rPr><w:sz w:val="18"/><w:color w:val="666666"/></w:rPr><w:t>)",
      OOXML::escaped(provenance), "</w:t></w:r></w:p>\n");
  appendTable(xml, table);
  xml += "\n";
  if (table.usesCachedFormulaValues()) {
    xml +=
        "<w:p><w:r><w:t>Formula results reproduce saved values; they have not been "
        "recalculated.</w:t></w:r></w:p>";
  }
  xml +=
      "\n"
      R"(<w:sectPr><w:pgSz w:w="12240" w:h="15840"/><w:pgMar w:top="1080" w:right="1440" w:bottom="1080" )"
      R"(w:left="1440" w:header="720" w:footer="720" w:gutter="0"/></w:sectPr>)"
      "\n</w:body></w:document>";
  return xml;
}

}  // namespace

ByteBuffer DocumentAuthor::docx(const SourceTable& table, std::string_view title,
                                const std::stop_token& stop) {
  PartMap parts;
  parts.set("[Content_Types].xml",
            OOXML::contentTypes(
                {{documentPart,
                  "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"}},
                false));
  parts.set("_rels/.rels", OOXML::relationships({{"rId1", "officeDocument", std::string(documentPart)}}));
  parts.set(std::string(documentPart), OOXML::data(documentXML(table, title)));
  return BoundedZIP::write(parts, stop);
}

}  // namespace zelvo
