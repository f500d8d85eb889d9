// Owns PackageIO/PackageGate, PartWriting and Relationships: which packages pass, in the order of the rules,
// when a visitor stops, what is escaped, and where targets of relationships lead.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;
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
      Target="../part.xml" => | unsafeContent: external or ambiguous relationship | target
      "Internal" => "External" | unsafeContent: external or ambiguous relationship | mode
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
      ppt/embeddings/chart-data5.xlsx => ; ppt/embeddings/chart-data11.xlsx =>
      ppt/embeddings/chart-data1.docx => ; ppt/embeddings/chart-data.xlsx.xml => ; PPT/Embeddings/Chart-Data.XLSX => chart)")) {
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

TEST(OOXMLSupport, EscapesEverythingOnce) {
  for (const auto& [text, escaped] :
       testing::cases<2>(R"(
      => ; a<b␠&␠'c' => a&lt;b &amp; &apos;c&apos; ; "&lt;"> => &quot;&amp;lt;&quot;&gt; ; ␀a␁␈b␋␌␎␟ => ab)"
                         "\n ␉␊␍␠\x7F\u0085 => ␉␊␍␠\x7F\u0085 ; \uFFFF&\uFFFE => &amp;"
                         "\n \uFFFD\uFFFEx\uFFFF\uF000\U0001FFFE => \uFFFDx\uF000\U0001FFFE"))
    EXPECT_EQ(OOXML::escaped(text), escaped);
}

/// Where a target of a relationships part leads, or why it does not.
std::string resolved(const std::string& target, const std::string& part) {
  std::string path;
  const auto outcome = outcomeOf([&] { path = OOXML::resolve(target, part); });
  return outcome.text.empty() ? path : outcome.text;
}

TEST(OOXMLSupport, ResolvesTargets) {
  for (const auto& [target, part, expected] : testing::cases<3>(R"(
      xl/workbook.xml | _rels/.rels => xl/workbook.xml
      sheet%201.xml | xl/_rels/workbook.xml.rels => xl/sheet 1.xml
      ../theme/theme1.xml | ppt/slides/_rels/slide1.xml.rels => ppt/theme/theme1.xml
      ..%2Ftheme/%2e%2e/a | ppt/slides/_rels/slide1.xml.rels => ppt/a
      /xl/styles.xml | ppt/slides/_rels/slide1.xml.rels => xl/styles.xml
      .//./a//b/ | ppt/slides/_rels/slide1.xml.rels => ppt/slides/a/b
      A.XML | //xl//_rels/x.rels => xl/A.XML ; | xl/_rels/workbook.xml.rels => xl
      ../../../x.xml | ppt/slides/_rels/slide1.xml.rels => unsafeContent: relationship traversal
      /.. | ppt/slides/_rels/slide1.xml.rels => unsafeContent: relationship traversal
      / | ppt/slides/_rels/slide1.xml.rels => unsafeContent: relationship path
      a%2525 | _rels/.rels => unsafeContent: relationship path
      #a | elsewhere => unsafeContent: relationship URI)"))
    EXPECT_EQ(resolved(target, part), expected) << target << " from " << part;
  for (const std::string& target : {std::string(), std::string(257, 'a')})
    EXPECT_EQ(resolved(target, "_rels/.rels"), "unsafeContent: relationship path") << target;
  for (const std::string& target :
       testing::words(R"(http://host/a C%3Aa a\b a#b a%3fb a%00 a␊b a% a%4 a%4g a%g4 %FF %C0%AF %ED%A0%80)"))
    EXPECT_EQ(resolved(target, "_rels/.rels"), "unsafeContent: relationship URI") << target;
  // Places that no relationships part may have.
  for (const std::string part : {"workbook.xml.rels", "", "xl/my_rels/workbook.xml.rels", "_rels/xl/w.rels"})
    EXPECT_EQ(resolved("..", part), "invalidArchive: relationship location") << part;
}

}  // namespace
}  // namespace zelvo
