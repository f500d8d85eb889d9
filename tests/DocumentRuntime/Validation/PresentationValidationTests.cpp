// Owns the read-back of presentations: parts, slide list, slides.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::EditedDocument;
using testing::element;
using testing::outcomeOf;
using testing::replace;
using testing::replaceAll;
using E = EditedDocument&;

constexpr const char* presentationPart = "ppt/presentation.xml";
constexpr const char* presentationRelationships = "ppt/_rels/presentation.xml.rels";
constexpr const char* firstSlide = "ppt/slides/slide1.xml";
constexpr const char* secondSlide = "ppt/slides/slide2.xml";

/// The presentation part, whatever a row has renamed it to.
std::string& presentation(E edited) {
  const auto isThere = std::ranges::any_of(edited.package.parts,
                                           [](const auto& part) { return part.name == presentationPart; });
  return edited.part(isThere ? presentationPart : "ppt/other.xml");
}

auto withoutTable(const char* slide) {
  return [slide](E edited) {
    std::string& text = edited.part(slide);
    const auto start = text.find("<a:tbl>");
    text.erase(start, text.find("</a:tbl>") + std::string("</a:tbl>").size() - start);
  };
}

auto slideList(std::vector<std::string> relationships) {
  return [relationships = std::move(relationships)](E edited) {
    std::string entries;
    for (const std::string& relationship : relationships)
      entries += R"(<p:sldId r:id=")" + relationship + R"("/>)";
    std::string& text = presentation(edited);
    replace(text, element(text, "p:sldIdLst"), "<p:sldIdLst>" + entries + "</p:sldIdLst>");
  };
}

std::vector<testing::Refusal<EditedDocument>> refusals() {
  const auto in = [](const char* part, std::string_view table) {
    return testing::edits<EditedDocument>([part](E e) -> std::string& { return e.part(part); }, table);
  };
  const auto inPresentation = [](auto table) { return testing::edits<EditedDocument>(presentation, table); };
  const auto slides = DocumentError::validationFailed("presentation slides");
  const auto header = DocumentError::validationFailed("repeated table header");
  const auto orphan = DocumentError::validationFailed("missing chart or orphaned chart workbook");
  const auto differ = DocumentError::validationFailed("table cells differ from frozen source values");
  std::vector<testing::Refusal<EditedDocument>> unexpectedParts;
  for (const std::string& name : testing::words(R"(
      ppt/slides/slide0.xml ppt/slides/slide01.xml ppt/slides/slide.xml ppt/slides/slide1a.xml ppt/slides/slide3.XML
      ppt/notesSlides/notesSlide1.xml ppt/slideLayouts/slideLayout2.xml docProps/app.xml)")) {
    unexpectedParts.push_back({name, [name](E edited) { edited.part(name) = "<Types/>"; },
                               "validationFailed: unexpected presentation package part"});
  }
  return testing::joined<EditedDocument>({
      in(firstSlide, R"(<p:spTree> => <p:spTree><p:pic/> | )"
                     R"(validationFailed: unexpected executable or unsupported document element |)"),
      {{"main part of another name", [](E e) { e.renameMainPart(presentationPart, "ppt/other.xml"); },
        "validationFailed: main document part"}},
      in("_rels/.rels", R"(/officeDocument" => /slide" | validationFailed: main document relationship |)"),
      unexpectedParts,
      {{"root", [](E e) { replaceAll(presentation(e), "p:presentation", "p:sp"); }, slides}},
      inPresentation(R"(xmlns:p="http://schemas.openxmlformats.org/presentationml/2006/main" => )"
                     R"(| validationFailed: presentation slides |)"),
      {{"no slide list", [](E e) { replaceAll(presentation(e), "p:sldIdLst", "p:sldMasterIdLst"); }, slides,
        "list"},
       {"empty slide list", slideList({}), slides, "list"},
       {"22 slides", slideList(std::vector<std::string>(22, "rId2")), slides, "list"}},
      inPresentation(R"(r:id="rId2" => | validationFailed: presentation slides | list/first
                        r:id="rId2" => r:id="x" | validationFailed: presentation slides | list/first)"),
      {{"first slide without rows", withoutTable(firstSlide), header, "first"},
       {"one slide 21 times", slideList(std::vector<std::string>(21, "rId2")),
        "validationFailed: duplicate slide", "list"}},
      in(presentationRelationships, R"(
slides/slide2.xml => slides/../slides/slide1.xml | validationFailed: duplicate slide | second
slides/slide2.xml => slideLayouts/slideLayout1.xml | validationFailed: slide root | second)"),
      {{"slide of another root", [](E e) { replaceAll(e.part(secondSlide), "p:sld", "p:sldLayout"); },
        "validationFailed: slide root", "second"},
       {"second slide without rows", withoutTable(secondSlide), header, "second"}},
      in(secondSlide, ">Column 3< => >Column 4< | validationFailed: repeated table header | second"),
      {{"a chart expected",
        [](E e) {
          e.chart = ChartSelection{0, 1, ""};
        },
        orphan},
       {"lone workbook", [](E e) { e.part("ppt/embeddings/chart-data.xlsx") = "<Types/>"; }, orphan}},
      in(firstSlide, R"(
</a:tc></a:tr></a:tbl> => </a:tc><a:tc/></a:tr></a:tbl> | validationFailed: table dimensions | first)"),
      {{"expected table that breaks a rule", [](E e) { e.table->sourceSHA256 = ""; },
        "invalidSelection: table, title, or source bounds"},
       {"a letter more", [](E e) { replace(e.part(secondSlide), ">12,3<", ">12,3 <"); }, differ, "second"},
       {"slides in another order", slideList({"rId3", "rId2"}), differ, "list"}},
  });
}

TEST(PresentationValidation, RefusesInTheOrderOfItsChecks) {
  testing::expectRefusals<EditedDocument>([] { return testing::deck(); }, refusals(),
                                          [](const auto& edited) { edited.validate(); });
}

TEST(PresentationValidation, ChecksSlidesInSlideOrderAndSkipsTheChart) {
  EditedDocument edited = testing::deck();
  replaceAll(edited.part(firstSlide), "p:sld", "p:sldLayout");
  replace(edited.part(presentationRelationships), "slides/slide2.xml", "slides/slide1.xml");
  EXPECT_EQ(outcomeOf([&] { edited.validate(); }), "validationFailed: slide root");

  edited = testing::chartDeck();
  slideList({"rId4", "rId2", "rId3"})(edited);
  EXPECT_TRUE(edited.validate().sourceValuesVerified);
  edited.table.reset();
  EXPECT_FALSE(edited.validate().sourceValuesVerified);
  EXPECT_EQ(edited.validate().warnings.size(), 1U);
  slideList({"rId4"})(edited);  // the chart alone
  EXPECT_EQ(outcomeOf([&] { edited.validate(); }), "validationFailed: table dimensions");

  edited = testing::deck();  // without a chart part, the same slide is not skipped
  withoutTable(secondSlide)(edited);
  replace(edited.part(secondSlide), "</p:spTree>", "<c:chart/></p:spTree>");
  EXPECT_EQ(outcomeOf([&] { edited.validate(); }), "validationFailed: repeated table header");

  const SourceTable table = testing::tableOf(1, 200);  // twenty slides, the most for a table
  const ByteBuffer deck = DocumentAuthor::pptx(table, "Title", {});
  EXPECT_NO_THROW(validateGeneratedDocument(deck.view(), DocumentFormat::pptx, &table, nullptr));
}

}  // namespace
}  // namespace zelvo
