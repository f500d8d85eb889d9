#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::describe;
using testing::errorOf;
using testing::minimalPackage;
using testing::PackageBuilder;

const DocumentError notAPackage = DocumentError::invalidArchive("not an OOXML package");
const DocumentError activeFeature =
    DocumentError::unsafeContent("active data connection or unsupported workbook feature");
const DocumentError embedded = DocumentError::unsafeContent("embedded object");
const DocumentError notXML = DocumentError::unsupported("non-XML package part");
const DocumentError relationshipsRoot = DocumentError::invalidArchive("relationships root");
const DocumentError ambiguous = DocumentError::unsafeContent("external or ambiguous relationship");
const DocumentError missingTarget = DocumentError::invalidArchive("missing relationship target");
const DocumentError activeType = DocumentError::unsafeContent("active content type");

/// A package whose last part in the list is the first in the order of names. It holds relationships, so that
/// one part can break every rule at once, in names and in content.
PackageBuilder good() {
  PackageBuilder package = minimalPackage();
  package.part("A/_rels/a.rels").text =
      R"(<r:Relationships xmlns:r="u"><Relationship Id="r1" Target="/_rels/.rels"/>)"
      R"(<r:Relationship Type="t" Id="r2" Target="../part.xml" TargetMode="Internal"/></r:Relationships>)";
  return package;
}

using Refusal = testing::Refusal<PackageBuilder>;

Refusal folder(const std::string& name, DocumentError expected) {
  return {name, [name](PackageBuilder& package) { package.parts.back().name.insert(0, name); },
          std::move(expected)};
}

void replace(std::string& text, std::string_view from, std::string_view to) {
  const std::size_t place = text.find(from);
  ASSERT_NE(place, std::string::npos) << from << " in " << text;
  text.replace(place, from.size(), to);
}

Refusal edit(std::string from, std::string to, DocumentError expected, std::string place = {}) {
  std::string name = from + " becomes " + to;
  const auto spoil = [from = std::move(from), to = std::move(to)](PackageBuilder& package) {
    replace(package.parts.back().text, from, to);
  };
  return {std::move(name), spoil, std::move(expected), std::move(place)};
}

Refusal contentType(const std::string& type) {
  const auto spoil = [type](PackageBuilder& package) {
    replace(package.part("[Content_Types].xml").text, "</Types>",
            "<Any/><Any ContentType='" + type + "'/></Types>");
  };
  return {type, spoil, activeType};
}

std::vector<Refusal> refusals() {
  return {
      {"content types", [](PackageBuilder& p) { p.part("[Content_Types].xml").name = "[content_types].xml"; },
       notAPackage, "types"},
      {"relationships", [](PackageBuilder& p) { p.part("_rels/.rels").name = "_rels/x.rels"; }, notAPackage,
       "types"},
      folder("VbaProject.bin/", activeFeature),
      folder("ActiveX/", activeFeature),
      folder("Externallin\u212As/", activeFeature),  // KELVIN SIGN is a k in lower case
      folder("Connections.xml/", activeFeature),
      folder("QueryTables/", activeFeature),
      folder("PivotCacheDefinitions/", activeFeature),
      folder("PIVOTTABLES/", activeFeature),
      folder("CustomUI/", activeFeature),
      folder("Embeddings/", embedded),
      {"a picture", [](PackageBuilder& p) { p.parts.back().name += ".png"; }, notXML},
      edit("</r:Relationships>", "", DocumentError::invalidArchive("malformed XML"), "root"),
      {"a root of another name",
       [](PackageBuilder& p) { p.parts.back().text = "<Links>" + p.parts.back().text + "</Links>"; },
       relationshipsRoot, "root"},
      edit("<r:Relationship ", "<Link ", ambiguous),
      edit(R"(Id="r2")", R"(Id="r1")", ambiguous, "id"),
      edit(R"(Id="r2")", R"(id="r2")", ambiguous, "id"),
      edit(R"(Target="../part.xml")", "", ambiguous, "target"),
      edit(R"("Internal")", R"("External")", ambiguous, "mode"),
      edit(R"("Internal")", R"("internal")", ambiguous, "mode"),
      edit("../part.xml", "http://host/", DocumentError::unsafeContent("relationship URI"), "target"),
      edit("../part.xml", "../PART.xml", missingTarget, "target"),
      contentType("application/vnd.ms-excel.sheet.macroEnabled.main+xml"),
      contentType("application/vnd.ms-office.VBAPROJECT"),
      contentType("application/vnd.ms-office.activeX+xml"),
      contentType("application/vnd.openxmlformats-officedocument.oleObject"),
      {"a later part", [](PackageBuilder& p) { p.part("part.xml").text = "<!DOCTYPE part>"; },
       DocumentError::unsafeContent("XML DTD or entity declaration")},
  };
}

TEST(PackageGate, RefusesInOrder) {
  testing::expectRefusals<PackageBuilder>(
      good, refusals(), [](const PackageBuilder& package) { OOXML::package(package.bytes().view()); });
}

TEST(PackageGate, LetsOnlyTheAllowedWorkbooksPass) {
  const OOXML::PackageAllowance none{};
  const OOXML::PackageAllowance chart{.chartWorkbook = true};
  const OOXML::PackageAllowance research{.researchChartWorkbooks = true};
  const struct {
    std::string name;
    OOXML::PackageAllowance allowance;
    std::optional<DocumentError> expected;
  } rows[] = {
      {"ppt/embeddings/chart-data.xlsx", none, embedded},
      {"ppt/embeddings/chart-data.xlsx", research, embedded},
      {"ppt/embeddings/chart-data.xlsx", chart, {}},
      {"ppt/embeddings/chart-data1.xlsx", none, embedded},
      {"ppt/embeddings/chart-data1.xlsx", chart, embedded},
      {"ppt/embeddings/chart-data0.xlsx", research, embedded},
      {"ppt/embeddings/chart-data1.xlsx", research, {}},
      {"ppt/embeddings/chart-data4.xlsx", research, {}},
      {"ppt/embeddings/chart-data5.xlsx", research, embedded},
      {"ppt/embeddings/chart-data11.xlsx", research, embedded},
      {"ppt/embeddings/Chart-data1.xlsx", research, embedded},
      {"a/ppt/embeddings/chart-data.xlsx", chart, embedded},
      {"ppt/embeddings/chart-data.xlsx.xml", chart, embedded},
      {"ppt/chart-data.xlsx", chart, notXML},
  };
  for (const auto& [name, allowance, expected] : rows) {
    PackageBuilder package = minimalPackage();
    package.part(name).text = "not read here";
    const auto error =
        errorOf([&, &allowed = allowance] { OOXML::package(package.bytes().view(), allowed); });
    EXPECT_TRUE(error == expected) << name << ": " << describe(error);
  }
}

TEST(PackageGate, HandsOnEveryTreeInOrder) {
  PackageBuilder package = testing::workbookPackage(testing::richWorkbook());
  package.part("ppt/embeddings/chart-data.xlsx").text = "passed over";
  std::string visited;
  std::map<std::string, XMLTree, std::less<>> kept;
  const auto visitor = [&](std::string_view name, XMLTree& tree) {
    visited.append(name).append(" ");
    kept.emplace(name, std::move(tree));
  };
  const PartMap parts = OOXML::package(bytesOf(package.archive().bytes()), {.chartWorkbook = true}, visitor);
  EXPECT_EQ(visited,
            "[Content_Types].xml _rels/.rels xl/_rels/workbook.xml.rels xl/sharedStrings.xml xl/styles.xml "
            "xl/workbook.xml xl/worksheets/sheet1.xml xl/worksheets/sheet2.xml xl/worksheets/sheet3.xml ");
  EXPECT_EQ(kept.find("xl/sharedStrings.xml")->second.root().children().size(), 3U);
  EXPECT_TRUE(parts == package.partMap());
}

TEST(PackageGate, StopsBetweenPartsWhenAsked) {
  const auto source = testing::stopSource();
  std::string visited;
  const auto visitor = [&](std::string_view name, XMLTree&) {
    visited += name;
    source->request_stop();
  };
  EXPECT_THROW(OOXML::vetted(minimalPackage().partMap(), {}, visitor, source->get_token()), Cancelled);
  EXPECT_EQ(visited, "[Content_Types].xml");
}

}  // namespace
}  // namespace zelvo
