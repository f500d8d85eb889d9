// Owns PackageIO/BoundedXML: what parts are read, their limits, and agreement with libxml2.
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "Support/ReferenceXML.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace std::string_literals;
using namespace testing;

using Size = std::size_t;

std::string nested(Size depth) {
  return repeated("<a>", depth) + repeated("</a>", depth);
}
std::string withElements(Size count) {
  return "<a>" + repeated("<b/>", count - 1) + "</a>";
}
std::string withAttributes(Size count) {
  std::string out = "<a";
  for (Size i = 0; i < count; ++i)
    out += " n" + std::to_string(i) + "='v'";
  return out + "/>";
}
std::string ofBytes(Size size) {
  return "<a>" + std::string(size - 7, 'x') + "</a>";
}

testing::Outcome outcome(const std::string& xml) {
  return outcomeOf([&] { OOXML::xml(ByteBuffer::copyOf(xml)); });
}

TEST(BoundedXML, KeepsWhatAPartSays) {
  for (const auto& [xml, expected] :
       testing::cases<2>(R"(
      <?xml version='1.0' encoding='ISO-8859-1'?><a>é</a> => a"é"
      <w:tbl xmlns:w='u' w:x='1' y='2'/> => w:tbl(xmlns:w=u w:x=1 y=2)
      <undeclared:a b='&lt;&amp;&#x41;&#10;&quot;' c='x␊␉y'/> => undeclared:a(b=<&A␊" c=x␠␠y)
      <a>1&lt;2&#x1F600;<![CDATA[<&]]>3</a> => a"1<2😀<&3" ; <a>one␍␊two␍three</a> => a"one␊two␊three"
      <a>x<b>y</b>z<c/>&gt;w</a> => a"xz>w"{b"y" c} ; <a>␠<b><c/></b>␠<d/></a> => a"␠␠"{b{c} d})"
                         "\n \xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?><a/> => a"))
    EXPECT_EQ(outcome(xml) == "" ? dump(OOXML::xml(ByteBuffer::copyOf(xml)).root()) : "refused", expected)
        << xml;
  std::string joined;
  EXPECT_EQ(OOXML::xml(ByteBuffer::copyOf("<a>x<b>y</b></a>")).root().content(joined), "xy");
}

TEST(BoundedXML, RefusesInTheOrderOfItsChecks) {
  constexpr Size depth = OOXML::maximumXMLDepth;
  const std::pair<const char*, std::vector<std::string>> rows[] = {
      {"unsupported: XML encoding or size",
       {"<a>\xFF</a>", "<a><![CDATA[\xC0\x80]]></a>", "<!DOCTYPE a><a>\xED\xA0\x80</a>",
        "\xFF\xFE<\0a\0/\0>\0"s}},
      {"unsafeContent: XML DTD or entity declaration",
       {"<!DOCTYPE a><a/>", withAttributes(65) + "<!DocType", "<a><!-- <!entity --></a>",
        "<a><![CDATA[<!DOCTYPE]]></a>", "<!DOCTYPE a>\0<a/>"s}},
      {"resourceLimit: XML structure", {repeated("<a>", depth + 1) + "<"}},
      // Among them a fault before the limit, and UTF-16 without a byte order mark.
      {"invalidArchive: malformed XML",
       {"<a b=1>" + nested(depth), "<\0a\0/\0>\0"s, "<a>\0</a>"s, "<a>\x01</a>", "",
        "<?xml version='1.0'?><!-- nothing -->", "<a><b></b>", "<a><b></a></b>", "<a/><b/>",
        "<a b='1' b='2'/>", "<a>&#x100000041;</a>", "<a\u00D7/>"}},
  };
  for (const auto& [expected, texts] : rows) {
    for (const std::string& xml : texts)
      EXPECT_EQ(outcome(xml), expected) << xml.substr(0, 80);
  }
  const std::tuple<std::string (*)(Size), Size, const char*> limits[] = {
      {ofBytes, OOXML::maximumXMLBytes, "unsupported: XML encoding or size"},
      {withElements, OOXML::maximumXMLElements, "resourceLimit: XML structure"},
      {withAttributes, OOXML::maximumXMLAttributes, "resourceLimit: XML structure"},
      {nested, depth, "resourceLimit: XML structure"}};
  for (const auto& [make, last, beyond] : limits) {
    EXPECT_EQ(outcome(make(last)), "") << last;
    EXPECT_EQ(outcome(make(last + 1)), beyond) << last;
  }
}

TEST(DeclarationScan, ComparesInUpperCase) {
  for (const std::string text : {"<!DOCTYPE", "<!doctype", "<!EnTiTy", "<!ent\u0131ty", "<!ENTIT\u1E99",
                                 "<<!DOCTYPE x", "<!ELEMENT <!ENTITY"})
    EXPECT_TRUE(OOXML::holdsDeclaration(text)) << text;
  for (const std::string text :
       {"<!DOCT\u1E99PE", "<!DOCTYP", "!DOCTYPE", "< !DOCTYPE", "<!!DOCTYPE", "", "!", "<! ENTITY"})
    EXPECT_FALSE(OOXML::holdsDeclaration(text)) << text;
}

TEST(BoundedXML, AgreesWithLibxml2OnEveryOneByteChange) {
  const std::string everything =
      "<?xml version='1.0'?><!-- c --><a:b c='&#65;&lt;\t\r\n' "
      "a:d=\"e'f\">g<\u00E9\u00B7/>&amp;i\r\nj<![CDATA[<&]]]]>"
      "<![CDATA[>]]><?k l?><Zz xmlns='u' xmlns:a='v'>n</Zz >\xC3\xA9&#x1F600;</a:b>\n";
  for (std::size_t at = 0; at < everything.size(); ++at) {
    for (const char byte : std::string("<>&;'\"/=:!?-]x1 \n\x01\x7F")) {
      std::string changed = everything;
      changed[at] = byte;
      ASSERT_EQ(disagreement(changed), std::nullopt) << changed;
      changed = everything;
      changed.insert(at, 1, byte);
      ASSERT_EQ(disagreement(changed), std::nullopt) << changed;
    }
    ASSERT_EQ(disagreement(everything.substr(0, at)), std::nullopt) << at;
    ASSERT_EQ(disagreement(std::string(everything).erase(at, 1)), std::nullopt) << at;
  }
}

}  // namespace
}  // namespace zelvo
