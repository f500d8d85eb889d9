#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/PackageIO/DeclarationScan.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/XMLDump.hpp"

namespace zelvo {
namespace {

using std::string_literals::operator""s;
using testing::dump;
using testing::errorOf;

const DocumentError encodingOrSize = DocumentError::unsupported("XML encoding or size");
const DocumentError declaration = DocumentError::unsafeContent("XML DTD or entity declaration");
const DocumentError structure = DocumentError::resourceLimit("XML structure");
const DocumentError malformed = DocumentError::invalidArchive("malformed XML");

std::string repeated(std::string_view piece, std::size_t count) {
  std::string out;
  out.reserve(piece.size() * count);
  for (std::size_t i = 0; i < count; ++i)
    out += piece;
  return out;
}

std::string nested(std::size_t depth) {
  return repeated("<a>", depth) + repeated("</a>", depth);
}

std::string withElements(std::size_t count) {
  return "<a>" + repeated("<b/>", count - 1) + "</a>";
}

std::string withAttributes(std::size_t count) {
  std::string out = "<a";
  for (std::size_t i = 0; i < count; ++i)
    out += " n" + std::to_string(i) + "='v'";
  return out + "/>";
}

/// A part of exactly that many bytes.
std::string ofSize(std::size_t size) {
  return "<a>" + std::string(size - 7, 'x') + "</a>";
}

TEST(BoundedXML, KeepsWhatAPartSays) {
  const struct {
    std::string xml;
    std::string expected;
  } rows[] = {
      {"<a/>", "a"},
      {"\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?><a/>", "a"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>é</a>", "a\"é\""},
      {"<!-- c --><?pi d?><a><!-- c -->x<?pi d?>y</a>\n", "a\"xy\""},
      {"<w:tbl xmlns:w='u' w:x='1' y='2'/>", "w:tbl(xmlns:w=u w:x=1 y=2)"},
      {"<undeclared:a/>", "undeclared:a"},
      {"<a b='&lt;&amp;&#x41;&#10;&quot;' c='x\n\ty'/>", "a(b=<&A\n\" c=x  y)"},
      {"<a>1&lt;2&#x1F600;<![CDATA[<&]]>3</a>", "a\"1<2\U0001F600<&3\""},
      {"<a>one\r\ntwo\rthree</a>", "a\"one\ntwo\nthree\""},
      {"<a>x<b>y</b>z<c/>&gt;w</a>", "a\"xz>w\"{b\"y\" c}"},
      {"<a><b><c/></b><d/></a>", "a{b{c} d}"},
      {"<a> <b/> </a>", "a\"  \"{b}"},
  };
  for (const auto& row : rows) {
    const auto error =
        errorOf([&] { EXPECT_EQ(dump(OOXML::xml(bytesOf(row.xml)).root()), row.expected) << row.xml; });
    EXPECT_FALSE(error) << row.xml << ": " << testing::describe(error);
  }
}

TEST(BoundedXML, RefusesInTheOrderOfItsChecks) {
  const struct {
    std::string name;
    std::string xml;
    DocumentError expected;
  } rows[] = {
      {"one byte too many", ofSize(OOXML::maximumXMLBytes + 1), encodingOrSize},
      {"not UTF-8", "<a>\xFF</a>", encodingOrSize},
      {"not UTF-8 in CDATA", "<a><![CDATA[\xC0\x80]]></a>", encodingOrSize},
      {"not UTF-8 before a declaration", "<!DOCTYPE a><a>\xED\xA0\x80</a>", encodingOrSize},
      {"UTF-16 with a byte order mark", "\xFF\xFE<\0a\0/\0>\0"s, encodingOrSize},
      {"document type", "<!DOCTYPE a><a/>", declaration},
      {"document type after too many attributes", withAttributes(65) + "<!DocType", declaration},
      {"entity in a comment", "<a><!-- <!entity --></a>", declaration},
      {"document type in CDATA", "<a><![CDATA[<!DOCTYPE]]></a>", declaration},
      {"declaration with a NUL byte", "<!DOCTYPE a>\0<a/>"s, declaration},
      {"UTF-16 without a byte order mark", "<\0a\0/\0>\0"s, malformed},
      {"NUL byte", "<a>\0</a>"s, malformed},
      {"one element too many", withElements(OOXML::maximumXMLElements + 1), structure},
      {"one level too deep", nested(OOXML::maximumXMLDepth + 1), structure},
      {"one attribute too many", withAttributes(OOXML::maximumXMLAttributes + 1), structure},
      {"too deep before malformed", repeated("<a>", OOXML::maximumXMLDepth + 1) + "<", structure},
      {"malformed before too deep", "<a b=1>" + nested(OOXML::maximumXMLDepth), malformed},
      {"empty", "", malformed},
      {"no root", "<?xml version='1.0'?><!-- nothing -->", malformed},
      {"unclosed", "<a><b></b>", malformed},
      {"crossed", "<a><b></a></b>", malformed},
      {"second root", "<a/><b/>", malformed},
      {"text after the root", "<a/>x", malformed},
      {"repeated attribute", "<a b='1' b='2'/>", malformed},
      {"undeclared entity", "<a>&nbsp;</a>", malformed},
      {"control character", "<a>\x01</a>", malformed},
      {"reference to a control character", "<a>&#1;</a>", malformed},
      {"section end in text", "<a>]]></a>", malformed},
  };
  for (const auto& row : rows) {
    const auto error = errorOf([&] { OOXML::xml(bytesOf(row.xml)); });
    EXPECT_TRUE(error == row.expected) << row.name << ": " << testing::describe(error);
  }
}

TEST(BoundedXML, TakesEveryLimitAndOneLess) {
  for (const std::size_t less : {0U, 1U}) {
    EXPECT_EQ(OOXML::xml(bytesOf(withElements(OOXML::maximumXMLElements - less))).root().children().size(),
              OOXML::maximumXMLElements - less - 1);
    EXPECT_FALSE(errorOf([&] { OOXML::xml(bytesOf(nested(OOXML::maximumXMLDepth - less))); }));
    EXPECT_EQ(OOXML::xml(bytesOf(withAttributes(OOXML::maximumXMLAttributes - less))).root().attributeCount(),
              OOXML::maximumXMLAttributes - less);
    EXPECT_EQ(OOXML::xml(bytesOf(ofSize(OOXML::maximumXMLBytes - less))).root().content().size(),
              OOXML::maximumXMLBytes - less - 7);
  }
}

TEST(BoundedXML, TruncationAtEveryByteIsRefused) {
  const std::string xml = "<?xml version='1.0'?><a b='c'>d&amp;<e:f/><![CDATA[g]]><!--h--></a>";
  for (std::size_t length = 0; length < xml.size(); ++length) {
    EXPECT_TRUE(errorOf([&] { OOXML::xml(bytesOf(xml.substr(0, length))); }) == malformed) << length;
  }
}

TEST(BoundedXML, TextLongerThanASliceStaysWhole) {
  const std::string text = repeated("0123456789\xC3\xA9", 150'000);
  EXPECT_EQ(OOXML::xml(bytesOf("<a b='" + text + "'/>")).root().attribute("b"), text);
  EXPECT_EQ(OOXML::xml(bytesOf("<a>" + text + "<b/>" + text + "</a>")).root().content(), text + text);
}

TEST(XMLNode, LooksUpByLocalName) {
  const XMLTree tree = OOXML::xml(bytesOf("<r><w:t>1</w:t><t>2<t>3</t></t><x:y:z:/><u/></r>"));
  const XMLNode root = tree.root();
  std::string found;
  for (const XMLNode node : root.all("t"))
    found += dump(node) + ';';
  EXPECT_EQ(found, "w:t\"1\";t\"2\"{t\"3\"};");
  found.clear();
  for (const XMLNode node : root.descendants("t"))
    found += dump(node) + ';';
  EXPECT_EQ(found, "w:t\"1\";t\"2\"{t\"3\"};t\"3\";");
  EXPECT_EQ(root.child("t")->qualifiedName(), "w:t");
  EXPECT_EQ(root.child("z")->qualifiedName(), "x:y:z:");
  EXPECT_FALSE(root.child("T"));
  EXPECT_EQ(root.content(), "123");
}

TEST(XMLNode, OwnTextComesBeforeThatOfChildren) {
  XMLTree tree = OOXML::xml(bytesOf("<a><b/>x<c>y</c>z</a>"));
  const XMLNode root = tree.root();
  const XMLTree moved = std::move(tree);
  std::string storage;
  EXPECT_EQ(root.content(storage), "xzy");
  EXPECT_FALSE(root.child("b")->hasContent());
  EXPECT_TRUE(root.hasContent());
}

TEST(XMLTree, ManyNamesStayApartAndSmall) {
  std::string xml = "<r>";
  for (int i = 0; i < 20'000; ++i)
    xml += "<n" + std::to_string(i) + " a" + std::to_string(i) + "='" + std::to_string(i) + "'/>";
  xml += "</r>";
  const XMLTree tree = OOXML::xml(bytesOf(xml));
  int i = 0;
  for (const XMLNode node : tree.root().children()) {
    const std::string number = std::to_string(i++);
    ASSERT_EQ(node.name(), "n" + number);
    ASSERT_EQ(node.attribute("a" + number), number);
  }
  EXPECT_EQ(i, 20'000);
  EXPECT_LT(tree.byteCount(), 5 * xml.size());
}

TEST(DeclarationScan, ComparesInUpperCase) {
  const struct {
    std::string text;
    bool expected;
  } rows[] = {
      {"<!DOCTYPE", true},
      {"<!doctype", true},
      {"<!EnTiTy", true},
      {"<!ent\u0131ty", true},
      {"<!ENTIT\u1E99", true},
      {"<!DOCT\u1E99PE", false},
      {"<!DOCTYP", false},
      {"!DOCTYPE", false},
      {"< !DOCTYPE", false},
      {"<!!DOCTYPE", false},
      {"<<!DOCTYPE x", true},
      {"<!ELEMENT <!ENTITY", true},
      {"", false},
      {"!", false},
      {"<! ENTITY", false},
  };
  for (const auto& row : rows)
    EXPECT_EQ(OOXML::holdsDeclaration(row.text), row.expected) << row.text;
}

}  // namespace
}  // namespace zelvo
