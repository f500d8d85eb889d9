// Owns PackageIO/PackageGate: which packages pass, in the order of the rules, and what a visitor is shown.
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::minimalPackage;
using testing::outcomeOf;
using testing::PackageBuilder;
using Refusals = std::vector<testing::Refusal<PackageBuilder>>;
using P = PackageBuilder&;

/// A package whose last part in the list is the first in the order of names. It holds relationships, so that
/// one part can break every rule at once, in names and in content.
PackageBuilder good() {
  PackageBuilder package = minimalPackage();
  package.part("A/_rels/a.rels").text =
      R"(<r:Relationships xmlns:r="u"><Relationship Id="r1" Target="/_rels/.rels"/>)"
      R"(<r:Relationship Type="t" Id="r2" Target="../part.xml" TargetMode="Internal"/></r:Relationships>)";
  return package;
}

Refusals refusals() {
  const std::string noPackage = "invalidArchive: not an OOXML package";
  Refusals rows = {
      {"types", [](P p) { p.part("[Content_Types].xml").name = "[content_types].xml"; }, noPackage, "types"},
      {"relationships", [](P p) { p.part("_rels/.rels").name = "_rels/x.rels"; }, noPackage, "types"}};
  const auto folder = [&rows](const std::string& name, const std::string& refusal) {
    rows.push_back({name, [name](P p) { p.parts.back().name.insert(0, name); }, "unsafeContent: " + refusal});
  };
  // KELVIN SIGN is a k in lower case.
  for (const std::string& name :
       testing::words("VbaProject.bin/ ActiveX/ Externallin\u212As/ Connections.xml/ "
                      "QueryTables/ PivotCacheDefinitions/ PIVOTTABLES/ CustomUI/"))
    folder(name, "active data connection or unsupported workbook feature");
  folder("Embeddings/", "embedded object");
  rows.push_back(
      {"a picture", [](P p) { p.parts.back().name += ".png"; }, "unsupported: non-XML package part"});
  const auto links = [](P p) -> auto& {
    return p.parts.back().text;
  };
  rows.push_back({"cut", [=](P p) { links(p).pop_back(); }, "invalidArchive: malformed XML", "root"});
  rows.push_back({"root", [=](P p) { links(p) = "<Links>" + links(p) + "</Links>"; },
                  "invalidArchive: relationships root", "root"});
  const Refusals edits = testing::edits<PackageBuilder>(links, R"(
      <r:Relationship␠ => <Link␠ | unsafeContent: external or ambiguous relationship |
      Id="r2" => Id="r1" | unsafeContent: external or ambiguous relationship | id
      Id="r2" => id="r2" | unsafeContent: external or ambiguous relationship | id
      Target="../part.xml" => | unsafeContent: external or ambiguous relationship | target
      "Internal" => "External" | unsafeContent: external or ambiguous relationship | mode
      "Internal" => "internal" | unsafeContent: external or ambiguous relationship | mode
      ../part.xml => http://host/ | unsafeContent: relationship URI | target
      ../part.xml => ../PART.xml | invalidArchive: missing relationship target | target)");
  rows.insert(rows.end(), edits.begin(), edits.end());
  for (const std::string& type : testing::words(R"(
      application/vnd.ms-excel.sheet.macroEnabled.main+xml application/vnd.ms-office.VBAPROJECT
      application/vnd.ms-office.activeX+xml application/vnd.openxmlformats-officedocument.oleObject)")) {
    const auto spoil = [any = "<Any/><Any ContentType='" + type + "'/></Types>"](P p) {
      testing::replace(p.part("[Content_Types].xml").text, "</Types>", any);
    };
    rows.push_back({type, spoil, "unsafeContent: active content type"});
  }
  rows.push_back({"a later part", [](P p) { p.part("part.xml").text = "<!DOCTYPE part>"; },
                  "unsafeContent: XML DTD or entity declaration"});
  return rows;
}

TEST(PackageGate, RefusesInOrder) {
  testing::expectRefusals<PackageBuilder>(
      good, refusals(), [](const auto& package) { OOXML::package(package.bytes().view()); });
}

TEST(PackageGate, LetsOnlyTheAllowedWorkbooksPass) {
  // The part, what passes, and with which allowances it does.
  const OOXML::PackageAllowance chart = {.chartWorkbook = true};
  const OOXML::PackageAllowance research = {.researchChartWorkbooks = true};
  for (const auto& [name, allowed] : testing::cases<2>(R"(
      ppt/embeddings/chart-data.xlsx => chart ; ppt/embeddings/chart-data1.xlsx => research
      ppt/embeddings/chart-data4.xlsx => research ; ppt/embeddings/chart-data0.xlsx =>
      ppt/embeddings/chart-data5.xlsx => ; ppt/embeddings/chart-data11.xlsx =>
      ppt/embeddings/Chart-data1.xlsx => ; a/ppt/embeddings/chart-data.xlsx =>
      ppt/embeddings/chart-data.xlsx.xml => ; PPT/Embeddings/Chart-Data.XLSX => chart)")) {
    PackageBuilder package = minimalPackage();
    package.part(name).text = "not read";
    const auto outcome = [&](const OOXML::PackageAllowance& allowance) {
      return outcomeOf([&] { OOXML::package(package.bytes().view(), allowance); });
    };
    const std::string refusal = "unsafeContent: embedded object";
    EXPECT_EQ(outcome({}), refusal) << name;
    EXPECT_EQ(outcome(chart), allowed == "chart" ? "" : refusal) << name;
    EXPECT_EQ(outcome(research), allowed == "research" ? "" : refusal) << name;
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
