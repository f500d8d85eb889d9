// Owns nested texts, which count once for every level: their comparison, and its cost.

#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "Support/Cost.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::EditedDocument;
using testing::element;
using testing::outcomeOf;
using testing::repeated;
using testing::replace;

constexpr std::size_t mebibyte = std::size_t{1024} * 1024;

std::string nested(const std::string& name, std::size_t levels, const std::string& text) {
  return repeated("<" + name + ">", levels) + text + repeated("</" + name + ">", levels);
}

void setTable(std::string& part, const std::string& prefix, const std::string& rows) {
  const std::string name = prefix + "tbl";
  replace(part, element(part, name), "<" + name + ">" + rows + "</" + name + ">");
}

TEST(NestedText, CountsForEveryLevelAndCostsOne) {
  const std::string text(mebibyte, 'x');
  const std::string cell = nested("a:t", 30, text);
  const auto tables = [&](std::size_t count) {
    std::string xml = cell;
    for (std::size_t i = 0; i < count; ++i)
      xml = "<a:tbl><a:tr><a:tc>" + xml + "</a:tc></a:tr></a:tbl>";
    return xml;
  };
  EditedDocument word = testing::wordDocument();
  word.table.reset();
  setTable(word.part("word/document.xml"), "w:", "<w:tr><w:tc>" + nested("w:t", 58, text) + "</w:tc></w:tr>");

  EditedDocument deck = testing::deck();
  deck.table.reset();
  for (const char* slide : {"ppt/slides/slide1.xml", "ppt/slides/slide2.xml"}) {
    std::string& part = deck.part(slide);
    const auto start = part.find("<p:graphicFrame>");
    part.replace(start, part.find("</p:graphicFrame>") - start, "<p:graphicFrame>" + tables(9));
  }

  EditedDocument chart = testing::chartDeck();
  replace(chart.part("ppt/charts/chart1.xml"), "<c:plotArea>", "<c:plotArea>" + nested("c:f", 50, text));

  for (const EditedDocument* edited : {&word, &deck, &chart}) {
    const ByteBuffer bytes = edited->package.bytes();
    const auto* selection = edited->chart ? &*edited->chart : nullptr;
    testing::Outcome outcome("");
    const auto cost = testing::costOf([&] {
      outcome =
          outcomeOf([&] { validateGeneratedDocument(bytes.view(), edited->format, nullptr, selection); });
    });
    EXPECT_EQ(outcome, selection ? "validationFailed: chart references or cache indexes" : "");
    EXPECT_LT(cost.peakBytes, 16 * mebibyte);
  }
}

TEST(NestedText, IsComparedWithTheExpectedTable) {
  for (const auto& [xml, title] : testing::cases<2>(R"(
      >a<w:t>b</w:t>c< => acbb ; >a<w:t/><w:t>b<w:t>c</w:t></w:t>< => abcbcc ; >a< => a)")) {
    EditedDocument word = testing::wordDocument();
    replace(word.part("word/document.xml"), ">Column 1<", xml);
    word.table->columns[0] = title;
    EXPECT_EQ(outcomeOf([&] { word.validate(); }), "") << xml;
    word.table->columns[0] += "x";
    EXPECT_EQ(outcomeOf([&] { word.validate(); }),
              "validationFailed: table cells differ from frozen source values")
        << xml;
  }
}

TEST(NestedText, IsComparedInRepeatedHeaders) {
  const auto outcome = [](const std::string& a, const std::string& b) {
    EditedDocument deck = testing::deck();
    deck.table.reset();
    replace(deck.part("ppt/slides/slide1.xml"), ">Column 1<", a);
    replace(deck.part("ppt/slides/slide2.xml"), ">Column 1<", b);
    return outcomeOf([&] { deck.validate(); });
  };
  for (const auto& [a, b, expected] : testing::cases<3>(R"(
      >x<a:t>x<a:t>x</a:t></a:t>< | >xxxxxx< |
      >x<a:t>x<a:t>x</a:t></a:t>< | >xxxxxxx< | validationFailed: repeated table header
      >x<a:t>x<a:t>x</a:t></a:t>< | ><a:t>xxx</a:t>< |
      >ab<a:t>ab</a:t>< | >ab<a:t>ab</a:t>< |
      >ab<a:t>ab</a:t>< | >abab<a:t/></a:t><a:t>ab< |
      >ab<a:t>ab</a:t>< | >aba<a:t>b</a:t>< | validationFailed: repeated table header
      >ab<a:t>ac</a:t>< | >ab<a:t>ab</a:t>< | validationFailed: repeated table header
      >a<a:t>b</a:t></a:t><a:t>c< | >a<a:t>b</a:t></a:t><a:t>d< | validationFailed: repeated table header)")) {
    EXPECT_EQ(outcome(a, b), expected) << a << ' ' << b;
    EXPECT_EQ(outcome(b, a), expected) << b << ' ' << a;
  }
}

}  // namespace
}  // namespace zelvo
