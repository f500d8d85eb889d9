#include "DocumentRuntime/Authoring/WorkbookPackage.hpp"

#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo {
namespace {

using DocumentAuthor::WorkbookPart;
using DocumentAuthor::WorkbookPlan;

std::string sheetName(std::size_t index) {
  return "sheet" + std::to_string(index + 1) + ".xml";
}

ByteBuffer packageContentTypes(const WorkbookPlan& plan) {
  std::vector<std::string> names;  // the overrides have views into them
  for (std::size_t i = 0; i < plan.sheets.size(); ++i)
    names.push_back("xl/worksheets/" + sheetName(i));
  for (const WorkbookPart& part : plan.parts)
    names.push_back("xl/" + part.folder + "/" + part.name);

  std::vector<OOXML::ContentTypeOverride> overrides = {
      {"xl/workbook.xml", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"}};
  if (!plan.stylesXML.empty()) {
    overrides.push_back(
        {"xl/styles.xml", "application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml"});
  }
  if (!plan.themeXML.empty())
    overrides.push_back({"xl/theme/theme1.xml", "application/vnd.openxmlformats-officedocument.theme+xml"});
  auto name = names.begin();
  for (std::size_t i = 0; i < plan.sheets.size(); ++i) {
    overrides.push_back(
        {*name++, "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"});
  }
  for (const WorkbookPart& part : plan.parts)
    overrides.push_back({*name++, part.contentType});
  return OOXML::contentTypes(overrides, false);
}

std::string workbookXML(const WorkbookPlan& plan) {
  std::string xml;
  OOXML::append(xml, R"(<workbook xmlns=")", DocumentAuthor::spreadsheetNamespace,
                R"(" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)",
                plan.beforeSheets, "<sheets>");
  for (std::size_t i = 0; i < plan.sheets.size(); ++i) {
    OOXML::append(xml, R"(<sheet name=")", OOXML::escaped(plan.sheets[i].name), R"(" sheetId=")", i + 1,
                  R"(" r:id="rId)", i + 1, R"("/>)");
  }
  OOXML::append(xml, "</sheets>", plan.afterSheets, "</workbook>");
  return xml;
}

ByteBuffer workbookRelationships(const WorkbookPlan& plan) {
  std::vector<OOXML::Relationship> relationships;
  for (std::size_t i = 0; i < plan.sheets.size(); ++i) {
    relationships.push_back({"rId" + std::to_string(i + 1), "worksheet", "worksheets/" + sheetName(i)});
  }
  if (!plan.stylesXML.empty()) relationships.push_back({"rIdStyles", "styles", "styles.xml"});
  if (!plan.themeXML.empty()) relationships.push_back({"rIdTheme", "theme", "theme/theme1.xml"});
  return OOXML::relationships(relationships);
}

/// Stores a part within xl/ and its relationships, if any.
void add(PartMap& parts, const std::string& folder, const std::string& name, std::string_view xml,
         const std::vector<OOXML::Relationship>& relationships) {
  parts.set("xl/" + folder + "/" + name, OOXML::data(xml));
  if (relationships.empty()) return;
  parts.set("xl/" + folder + "/_rels/" + name + ".rels", OOXML::relationships(relationships));
}

}  // namespace

PartMap DocumentAuthor::workbookPackage(const WorkbookPlan& plan) {
  PartMap parts;
  parts.set("[Content_Types].xml", packageContentTypes(plan));
  parts.set("_rels/.rels", OOXML::relationships({{"rId1", "officeDocument", "xl/workbook.xml"}}));
  parts.set("xl/workbook.xml", OOXML::data(workbookXML(plan)));
  parts.set("xl/_rels/workbook.xml.rels", workbookRelationships(plan));
  if (!plan.stylesXML.empty()) parts.set("xl/styles.xml", OOXML::data(plan.stylesXML));
  if (!plan.themeXML.empty()) add(parts, "theme", "theme1.xml", plan.themeXML, {});
  for (std::size_t i = 0; i < plan.sheets.size(); ++i)
    add(parts, "worksheets", sheetName(i), plan.sheets[i].xml, plan.sheets[i].relationships);
  for (const WorkbookPart& part : plan.parts)
    add(parts, part.folder, part.name, part.xml, part.relationships);
  return parts;
}

void DocumentAuthor::appendTextCell(std::string& xml, const CellAddress& address, std::string_view attributes,
                                    std::string_view text) {
  OOXML::append(xml, R"(<c r=")", address.name(), "\"", attributes,
                R"( t="inlineStr"><is><t xml:space="preserve">)", text, "</t></is></c>");
}

void DocumentAuthor::appendValueCell(std::string& xml, const CellAddress& address,
                                     std::string_view attributes, std::string_view value) {
  OOXML::append(xml, R"(<c r=")", address.name(), "\"", attributes, "><v>", value, "</v></c>");
}

}  // namespace zelvo
