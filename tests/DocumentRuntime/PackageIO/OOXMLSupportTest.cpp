// Owns PackageIO/OOXMLSupport: escaping, relationships, and where their targets lead.
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

TEST(OOXMLSupport, EscapesEverythingOnce) {
  for (const auto& [text, escaped] :
       testing::cases<2>(R"(
      => ; a<b␠&␠'c' => a&lt;b &amp; &apos;c&apos; ; "&lt;"> => &quot;&amp;lt;&quot;&gt; ; ␀a␁␈b␋␌␎␟ => ab)"
                         "\n ␉␊␍␠\x7F\u0085 => ␉␊␍␠\x7F\u0085 ; \uFFFF&\uFFFE => &amp;"
                         "\n \uFFFD\uFFFEx\uFFFF\uF000\U0001FFFE => \uFFFDx\uF000\U0001FFFE"))
    EXPECT_EQ(OOXML::escaped(text), escaped);
  EXPECT_NE(
      OOXML::relationships({{"r<1>", "worksheet", "a&b.xml"}})
          .text()
          .find(
              R"(<Relationship Id="r&lt;1&gt;" Type="http://schemas.openxmlformats.org/officeDocument/2006/)"
              R"(relationships/worksheet" Target="a&amp;b.xml"/></Relationships>)"),
      std::string::npos);
}

/// Where a target of a relationships part leads, or why it does not.
std::string resolved(const std::string& target, const std::string& part) {
  std::string path;
  const auto outcome = testing::outcomeOf([&] { path = OOXML::resolve(target, part); });
  return outcome.text.empty() ? path : outcome.text;
}

TEST(OOXMLSupport, ResolvesTargets) {
  for (const auto& [target, part, expected] : testing::cases<3>(R"(
      xl/workbook.xml | _rels/.rels => xl/workbook.xml
      sheet%201.xml | xl/_rels/workbook.xml.rels => xl/sheet 1.xml
      %E6%9d%b1.xml | xl/_rels/workbook.xml.rels => xl/東.xml
      ../theme/theme1.xml | ppt/slides/_rels/slide1.xml.rels => ppt/theme/theme1.xml
      ..%2Ftheme/%2e%2e/a | ppt/slides/_rels/slide1.xml.rels => ppt/a
      /xl/styles.xml | ppt/slides/_rels/slide1.xml.rels => xl/styles.xml
      %2Fa%4A | ppt/slides/_rels/slide1.xml.rels => aJ
      .//./a//b/ | ppt/slides/_rels/slide1.xml.rels => ppt/slides/a/b
      a/../../../b | ppt/slides/_rels/slide1.xml.rels => b
      A.XML | //xl//_rels/x.rels => xl/A.XML ; | xl/_rels/workbook.xml.rels => xl
      ../../../x.xml | ppt/slides/_rels/slide1.xml.rels => unsafeContent: relationship traversal
      .. | _rels/.rels => unsafeContent: relationship traversal
      /.. | ppt/slides/_rels/slide1.xml.rels => unsafeContent: relationship traversal
      %25/../.. | _rels/.rels => unsafeContent: relationship traversal
      / | ppt/slides/_rels/slide1.xml.rels => unsafeContent: relationship path
      a%2525 | _rels/.rels => unsafeContent: relationship path
      #a | elsewhere => unsafeContent: relationship URI)"))
    EXPECT_EQ(resolved(target, part), expected) << target << " from " << part;
  for (const std::string& target : {std::string(), std::string(257, 'a')})
    EXPECT_EQ(resolved(target, "_rels/.rels"), "unsafeContent: relationship path") << target;
  // What a target must not be, whatever the place.
  for (const std::string& target :
       testing::words(R"(http://host/a C%3Aa a\b a#b a%3fb a%00 a␊b a% a%4 a%4g a%g4 %FF %C0%AF %ED%A0%80)"))
    EXPECT_EQ(resolved(target, "_rels/.rels"), "unsafeContent: relationship URI") << target;
  // Where relationships may not stand.
  for (const std::string part : {"workbook.xml.rels", "", "_rels", "xl/rels/workbook.xml.rels",
                                 "xl/my_rels/workbook.xml.rels", "_rels/xl/workbook.xml.rels"})
    EXPECT_EQ(resolved("..", part), "invalidArchive: relationship location") << part;
}

}  // namespace
}  // namespace zelvo
