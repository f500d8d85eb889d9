// Texts inside each other, which count once for every level: what they show, and what they cost.

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

  const std::pair<const EditedDocument*, const char*> rows[] = {
      {&word, ""}, {&deck, ""}, {&chart, "validationFailed: chart references or cache indexes"}};
  for (const auto& [edited, expected] : rows) {
    const ByteBuffer bytes = edited->package.bytes();
    const auto cost = testing::costOf([&] {
      EXPECT_EQ(outcomeOf([&] {
                  validateGeneratedDocument(bytes.view(), edited->format, nullptr,
                                            edited->chart ? &*edited->chart : nullptr);
                }),
                expected);
    });
    EXPECT_LT(cost.peakBytes, 16 * mebibyte);
  }
}

TEST(NestedText, IsComparedWithTheExpectedTable) {
  EditedDocument word = testing::wordDocument();
  std::string& part = word.part("word/document.xml");
  const std::string cell = ">Column 1<";
  for (const auto& [xml, title] : testing::cases<2>(R"(
      >a<w:t>b</w:t>c< => acbb ; >a<w:t/><w:t>b<w:t>c</w:t></w:t>< => abcbcc ; ><w:t/>< => ; >a< => a)")) {
    const std::string before = part;
    replace(part, cell, xml);
    word.table->columns[0] = title;
    const bool isEmpty = title.empty();  // no expected table has an empty title
    EXPECT_EQ(outcomeOf([&] { word.validate(); }),
              isEmpty ? "invalidSelection: table, title, or source bounds" : "")
        << xml;
    word.table->columns[0] = title + "x";
    EXPECT_EQ(outcomeOf([&] { word.validate(); }),
              "validationFailed: table cells differ from frozen source values")
        << xml;
    part = before;
  }
}

TEST(NestedText, RepeatsAHeaderHoweverItNests) {
  EditedDocument deck = testing::deck();
  deck.table.reset();
  std::string& first = deck.part("ppt/slides/slide1.xml");
  std::string& second = deck.part("ppt/slides/slide2.xml");
  const auto outcome = [&](const std::string& a, const std::string& b) {
    const std::string kept[] = {first, second};
    replace(first, ">Column 1<", a);
    replace(second, ">Column 1<", b);
    const auto result = outcomeOf([&] { deck.validate(); });
    first = kept[0];
    second = kept[1];
    return result;
  };
  const auto differ = "validationFailed: repeated table header";
  for (const auto& [a, b, expected] : testing::cases<3>(R"(
      >x<a:t>x<a:t>x</a:t></a:t>< | >xxxxxx< | same
      >x<a:t>x<a:t>x</a:t></a:t>< | >xxxxxxx< | differ
      >x<a:t>x<a:t>x</a:t></a:t>< | ><a:t>xxx</a:t>< | same
      >ab<a:t>ab</a:t>< | >ab<a:t>ab</a:t>< | same
      >ab<a:t>ab</a:t>< | >abab<a:t/></a:t><a:t>ab< | same
      >ab<a:t>ab</a:t>< | >aba<a:t>b</a:t>< | differ
      >ab<a:t>ac</a:t>< | >ab<a:t>ab</a:t>< | differ
      >a<a:t>b</a:t></a:t><a:t>c< | >a<a:t>b</a:t></a:t><a:t>d< | differ)")) {
    EXPECT_EQ(outcome(a, b), expected == "same" ? "" : differ) << a << ' ' << b;
    EXPECT_EQ(outcome(b, a), expected == "same" ? "" : differ) << b << ' ' << a;
  }
}

}  // namespace
}  // namespace zelvo
