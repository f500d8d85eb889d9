#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"

namespace zelvo {
namespace {

TEST(OOXMLSupport, EscapesEverythingOnce) {
  const struct {
    std::string text;
    std::string expected;
  } rows[] = {
      {"", ""},
      {"a<b & 'c'", "a&lt;b &amp; &apos;c&apos;"},
      {"\"&lt;\">", "&quot;&amp;lt;&quot;&gt;"},
      {"\t\n\r \x7F\u0085", "\t\n\r \x7F\u0085"},
      {std::string("\0a\x01\x08"
                   "b\x0B\x0C\x0E\x1F",
                   9),
       "ab"},
      {"\uFFFD\uFFFEx\uFFFF\uF000\U0001FFFE", "\uFFFDx\uF000\U0001FFFE"},
      {"\uFFFF&\uFFFE", "&amp;"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(OOXML::escaped(text), expected);
}

TEST(OOXMLSupport, WritesRelationships) {
  EXPECT_EQ(OOXML::relationships({{"r<1>", "worksheet", "a&b.xml"}, {"r2", "styles", "styles.xml"}}).text(),
            R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
            R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
            R"(<Relationship Id="r&lt;1&gt;" )"
            R"(Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" )"
            R"(Target="a&amp;b.xml"/>)"
            R"(<Relationship Id="r2" )"
            R"(Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles" )"
            R"(Target="styles.xml"/></Relationships>)");
}

TEST(OOXMLSupport, ResolvesTargets) {
  const std::string uri = DocumentError::unsafeContent("relationship URI").errorDescription();
  const std::string location = DocumentError::invalidArchive("relationship location").errorDescription();
  const std::string traversal = DocumentError::unsafeContent("relationship traversal").errorDescription();
  const std::string path = DocumentError::unsafeContent("relationship path").errorDescription();
  const std::string root = "_rels/.rels";
  const std::string book = "xl/_rels/workbook.xml.rels";
  const std::string slide = "ppt/slides/_rels/slide1.xml.rels";
  const struct {
    std::string target;
    std::string part;
    std::string expected;
  } rows[] = {
      {"xl/workbook.xml", root, "xl/workbook.xml"},
      {"sheet%201.xml", book, "xl/sheet 1.xml"},
      {"%E6%9d%b1.xml", book, "xl/東.xml"},
      {"../theme/theme1.xml", slide, "ppt/theme/theme1.xml"},
      {"..%2Ftheme/%2e%2e/a", slide, "ppt/a"},
      {"/xl/styles.xml", slide, "xl/styles.xml"},
      {"%2Fa", slide, "a"},
      {".//./a//b/", slide, "ppt/slides/a/b"},
      {"a/../../../b", slide, "b"},
      {"A.XML", "//xl//_rels/x.rels", "xl/A.XML"},
      {"", book, "xl"},
      // what a target must not be, whatever the place
      {"http://host/a", root, uri},
      {"C%3Aa", root, uri},
      {"a\\b", root, uri},
      {"a#b", root, uri},
      {"a%3fb", root, uri},
      {"a%00", root, uri},
      {"a\nb", root, uri},
      {"a%", root, uri},
      {"a%4", root, uri},
      {"a%4g", root, uri},
      {"a%g4", root, uri},
      {"%FF", root, uri},
      {"%C0%AF", root, uri},
      {"%ED%A0%80", root, uri},
      {"#a", "elsewhere", uri},
      // where relationships may stand
      {"..", "workbook.xml.rels", location},
      {"..", "", location},
      {"..", "_rels", location},
      {"..", "xl/rels/workbook.xml.rels", location},
      {"..", "xl/my_rels/workbook.xml.rels", location},
      {"..", "_rels/xl/workbook.xml.rels", location},
      // where a target may lead
      {"../../../x.xml", slide, traversal},
      {"..", root, traversal},
      {"/..", slide, traversal},
      {"%25/../..", root, traversal},
      {"", root, path},
      {"/", slide, path},
      {"a%2525", root, path},
      {std::string(257, 'a'), root, path},
  };
  for (const auto& [target, part, expected] : rows) {
    std::string outcome;
    try {
      outcome = OOXML::resolve(target, part);
    } catch (const DocumentError& error) {
      outcome = error.errorDescription();
    }
    EXPECT_EQ(outcome, expected) << target << " from " << part;
  }
}

}  // namespace
}  // namespace zelvo
