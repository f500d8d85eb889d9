#include "Support/PackageBuilder.hpp"

#include <algorithm>
#include <utility>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo::testing {
namespace {

const std::string officeTypes = "application/vnd.openxmlformats-officedocument.spreadsheetml.";

std::string partText(std::string_view xml) {
  return std::string(OOXML::data(xml).text());
}
std::string relationshipsText(const std::vector<OOXML::Relationship>& list) {
  return std::string(OOXML::relationships(list).text());
}

std::string contentTypes(std::string_view overrides) {
  std::string xml =
      R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
      R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
      R"(<Default Extension="xml" ContentType="application/xml"/>)";
  return partText(xml.append(overrides).append("</Types>"));
}

/// A root element of the workbook's main namespace.
std::string root(const std::string& name, const std::string& content) {
  return "<" + name + R"( xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main")" +
         R"( xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)" + content +
         "</" + name + ">";
}

std::string typeOverride(const std::string& name, const std::string& type) {
  return R"(<Override PartName="/)" + name + R"(" ContentType=")" + officeTypes + type + R"(+xml"/>)";
}

}  // namespace

TextPart& PackageBuilder::part(std::string_view name) {
  const auto found = std::ranges::find(parts, name, &TextPart::name);
  return found != parts.end() ? *found : parts.emplace_back(TextPart{std::string(name), {}});
}

void PackageBuilder::remove(std::string_view name) {
  std::erase_if(parts, [&](const TextPart& part) { return part.name == name; });
}

PartMap PackageBuilder::partMap() const {
  PartMap map;
  for (const auto& [name, text] : parts)
    map.set(name, ByteBuffer::copyOf(text));
  return map;
}

ByteBuffer PackageBuilder::bytes() const {
  return BoundedZIP::write(partMap());
}

ArchiveBuilder PackageBuilder::archive() const {
  ArchiveBuilder archive;
  for (const auto& [name, text] : parts)
    archive.deflated(name, text);
  return archive;
}

PackageBuilder minimalPackage() {
  return {{{"[Content_Types].xml", contentTypes("")},
           {"_rels/.rels", relationshipsText({{"rId1", "officeDocument", "part.xml"}})},
           {"part.xml", partText("<part/>")}}};
}

PackageBuilder workbookPackage(const WorkbookText& workbook) {
  std::vector<TextPart> parts;
  std::vector<OOXML::Relationship> relationships;
  std::string overrides;
  const auto add = [&](const std::string& identifier, const std::string& type, const std::string& path,
                       std::string_view xml) {
    parts.push_back({"xl/" + path, partText(xml)});
    relationships.push_back({identifier, type, path});
    overrides += typeOverride("xl/" + path, type);
  };
  std::string sheets;
  for (const WorksheetText& sheet : workbook.sheets) {
    const std::string number = std::to_string(parts.size() + 1);
    sheets += R"(<sheet name=")" + OOXML::escaped(sheet.name) + R"(" sheetId=")" + number + R"(" r:id="rId)" +
              number + '"' + sheet.attributes + "/>";
    add("rId" + number, "worksheet", "worksheets/sheet" + number + ".xml", root("worksheet", sheet.content));
  }
  std::string items;
  for (const std::string& item : workbook.sharedStrings)
    items.append("<si>").append(item).append("</si>");
  if (!items.empty()) add("rIdStrings", "sharedStrings", "sharedStrings.xml", root("sst", items));
  if (!workbook.styles.empty()) add("rIdStyles", "styles", "styles.xml", root("styleSheet", workbook.styles));
  const std::string book = workbook.properties + "<sheets>" + sheets + "</sheets>" + workbook.calculation;
  overrides += typeOverride("xl/workbook.xml", "sheet.main");
  PackageBuilder package{{{"[Content_Types].xml", contentTypes(overrides)},
                          {"_rels/.rels", relationshipsText({{"rId1", "officeDocument", "xl/workbook.xml"}})},
                          {"xl/workbook.xml", partText(root("workbook", book))},
                          {"xl/_rels/workbook.xml.rels", relationshipsText(relationships)}}};
  std::move(parts.begin(), parts.end(), std::back_inserter(package.parts));
  return package;
}

WorkbookText plainWorkbook(std::string_view rows) {
  return {.sheets = {{"Data", std::string("<sheetData>").append(rows).append("</sheetData>")}}};
}

WorkbookText sharedStringColumn(std::size_t rows) {
  std::string xml;
  for (std::size_t i = 1; i <= rows; ++i) {
    const std::string row = std::to_string(i);
    xml.append("<row r='").append(row).append("'><c r='A").append(row).append("' t='s'><v>0</v></c></row>");
  }
  return plainWorkbook(xml);
}

WorkbookText richWorkbook() {
  return {
      .sheets =
          {
              {"Sales",
               R"(<dimension ref="A1:H6"/><cols><col min="8" max="8" width="9" hidden="1"/></cols><sheetData>)"
               R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1" t="s"><v>1</v></c>)"
               R"(<c r="C1" t="inlineStr"><is><t>Open</t></is></c><c r="D1" t="str"><v>Due</v></c>)"
               R"(<c r="E1" t="inlineStr"><is><r><t>Sh</t></r><r><t>are</t></r></is></c></row>)"
               R"(<row r="2"><c r="A2" t="s"><v>2</v></c><c r="B2" s="1"><v>1234.5</v></c>)"
               R"(<c r="C2" t="b"><v>1</v></c><c r="D2" s="2"><v>45000</v></c><c r="E2" s="3"><v>0.25</v></c></row>)"
               R"(<row r="3" hidden="1"><c r="A3" t="s"><v>0</v></c><c r="B3" s="1"><v>-7</v></c></row>)"
               R"(<row r="4"><c r="A4"/><c r="B4" s="1"><f>SUM(B2:B3)</f><v>1227.5</v></c>)"
               R"(<c r="C4" t="b"><v>0</v></c><c r="D4" s="4"><v>0.75</v></c><c r="E4" t="e"><v>#N/A</v></c></row>)"
               R"(<row r="5"><c r="B5"><f>B4*2</f></c><c r="H5"><v>1e-3</v></c></row>)"
               R"(<row r="6"><c r="A6" t="inlineStr"><is><t>Merged &amp; "quoted"</t></is></c></row></sheetData>)"
               R"(<autoFilter ref="A1:E4"/><mergeCells count="1"><mergeCell ref="A6:B6"/></mergeCells>)"},
              {"Hidden", R"(<sheetData><row r="9"><c r="C9"><v>1</v></c></row></sheetData>)",
               R"( state="hidden")"},
              {"Empty & last", "<sheetData/>"},
          },
      .properties = R"(<workbookPr date1904="0"/>)",
      .calculation = R"(<calcPr calcMode="manual"/>)",
      .sharedStrings = {"<t>Region</t>", "<r><t>Rev</t></r><r><t xml:space=\"preserve\">enue </t></r>",
                        R"(<t>東京</t><rPh sb="0" eb="2"><t>トウキョウ</t></rPh>)"},
      .styles =
          R"(<numFmts count="1"><numFmt numFmtId="164" formatCode="&quot;$&quot;#,##0.00"/></numFmts>)"
          R"(<fonts count="1"><font/></fonts><fills count="1"><fill><patternFill/></fill></fills><borders count="1"><border/></borders>)"
          R"(<cellStyleXfs count="1"><xf/></cellStyleXfs><cellXfs count="5"><xf numFmtId="0"/>)"
          R"(<xf numFmtId="164"/><xf numFmtId="14"/><xf numFmtId="10"/><xf numFmtId="20"/></cellXfs>)",
  };
}

}  // namespace zelvo::testing
