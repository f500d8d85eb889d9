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
using testing::errorOf;
using testing::replace;
using testing::replaceAll;

constexpr const char* presentationPart = "ppt/presentation.xml";
constexpr const char* presentationRelationships = "ppt/_rels/presentation.xml.rels";
constexpr const char* firstSlide = "ppt/slides/slide1.xml";
constexpr const char* secondSlide = "ppt/slides/slide2.xml";
constexpr const char* workbookPart = "ppt/embeddings/chart-data.xlsx";

DocumentError failure(const char* detail) {
  return DocumentError::validationFailed(detail);
}

/// The presentation part, whatever a row has renamed it to.
std::string& presentation(EditedDocument& edited) {
  const auto isThere = std::ranges::any_of(
      edited.package.parts, [](const testing::TextPart& part) { return part.name == presentationPart; });
  return edited.part(isThere ? presentationPart : "ppt/other.xml");
}

void removeTable(std::string& slide) {
  const auto start = slide.find("<a:tbl>");
  slide.erase(start, slide.find("</a:tbl>") + std::string("</a:tbl>").size() - start);
}

void putSlideList(EditedDocument& edited, const std::vector<std::string>& relationships) {
  std::string entries;
  for (const std::string& relationship : relationships)
    entries += R"(<p:sldId r:id=")" + relationship + R"("/>)";
  std::string& text = presentation(edited);
  replace(text, element(text, "p:sldIdLst"), "<p:sldIdLst>" + entries + "</p:sldIdLst>");
}

auto addPart(const char* name) {
  return [name](EditedDocument& edited) { edited.part(name) = "<Types/>"; };
}

TEST(PresentationValidation, RefusesInTheOrderOfItsChecks) {
  const auto unexpectedPart = failure("unexpected presentation package part");
  const auto slides = failure("presentation slides");
  const std::vector<testing::Refusal<EditedDocument>> rows = {
      {"element outside the profile",
       [](EditedDocument& edited) { replace(edited.part(firstSlide), "<p:spTree>", "<p:spTree><p:pic/>"); },
       failure("unexpected executable or unsupported document element")},
      {"main part of another name",
       [](EditedDocument& edited) { edited.renameMainPart(presentationPart, "ppt/other.xml"); },
       failure("main document part")},
      {"main relationship of another type",
       [](EditedDocument& edited) { replace(edited.part("_rels/.rels"), "/officeDocument\"", "/slide\""); },
       failure("main document relationship")},
      {"slide 0", addPart("ppt/slides/slide0.xml"), unexpectedPart},
      {"slide with a leading zero", addPart("ppt/slides/slide01.xml"), unexpectedPart},
      {"slide without number", addPart("ppt/slides/slide.xml"), unexpectedPart},
      {"slide with more than a number", addPart("ppt/slides/slide1a.xml"), unexpectedPart},
      {"slide in capital letters", addPart("ppt/slides/slide3.XML"), unexpectedPart},
      {"notes", addPart("ppt/notesSlides/notesSlide1.xml"), unexpectedPart},
      {"second layout", addPart("ppt/slideLayouts/slideLayout2.xml"), unexpectedPart},
      {"properties", addPart("docProps/app.xml"), unexpectedPart},
      {"another root",
       [](EditedDocument& edited) { replaceAll(presentation(edited), "p:presentation", "p:sp"); }, slides},
      {"another namespace",
       [](EditedDocument& edited) {
         replace(presentation(edited),
                 R"( xmlns:p="http://schemas.openxmlformats.org/presentationml/2006/main")", "");
       },
       slides},
      {"no slide list",
       [](EditedDocument& edited) { replaceAll(presentation(edited), "p:sldIdLst", "p:sldMasterIdLst"); },
       slides, "list"},
      {"empty slide list", [](EditedDocument& edited) { putSlideList(edited, {}); }, slides, "list"},
      {"22 slides",
       [](EditedDocument& edited) { putSlideList(edited, std::vector<std::string>(22, "rId2")); }, slides,
       "list"},
      {"slide without relationship",
       [](EditedDocument& edited) { replace(presentation(edited), R"( r:id="rId2")", ""); }, slides,
       "list/first"},
      {"slide with an unknown relationship",
       [](EditedDocument& edited) { replace(presentation(edited), R"(r:id="rId2")", R"(r:id="x")"); }, slides,
       "list/first"},
      {"one slide 21 times",
       [](EditedDocument& edited) { putSlideList(edited, std::vector<std::string>(21, "rId2")); },
       failure("duplicate slide"), "list"},
      {"two ways to a slide",
       [](EditedDocument& edited) {
         replace(edited.part(presentationRelationships), "slides/slide2.xml", "slides/../slides/slide1.xml");
       },
       failure("duplicate slide"), "second"},
      {"layout as slide",
       [](EditedDocument& edited) {
         replace(edited.part(presentationRelationships), "slides/slide2.xml",
                 "slideLayouts/slideLayout1.xml");
       },
       failure("slide root"), "second"},
      {"slide of another root",
       [](EditedDocument& edited) { replaceAll(edited.part(secondSlide), "p:sld", "p:sldLayout"); },
       failure("slide root"), "second"},
      {"first slide without rows", [](EditedDocument& edited) { removeTable(edited.part(firstSlide)); },
       failure("repeated table header"), "first"},
      {"second slide without rows", [](EditedDocument& edited) { removeTable(edited.part(secondSlide)); },
       failure("repeated table header"), "second"},
      {"second slide with another header",
       [](EditedDocument& edited) { replace(edited.part(secondSlide), ">Column 3<", ">Column 4<"); },
       failure("repeated table header"), "second"},
      {"a chart expected",
       [](EditedDocument& edited) {
         edited.chart = ChartSelection{.categoryColumn = 0, .valueColumn = 1, .title = ""};
       },
       failure("missing chart or orphaned chart workbook")},
      {"chart workbook without a chart", addPart(workbookPart),
       failure("missing chart or orphaned chart workbook")},
      {"row with a cell more",
       [](EditedDocument& edited) {
         replace(edited.part(firstSlide), "</a:tc></a:tr></a:tbl>", "</a:tc><a:tc/></a:tr></a:tbl>");
       },
       failure("table dimensions"), "first"},
      {"expected table that breaks a rule", [](EditedDocument& edited) { edited.table->sourceSHA256 = ""; },
       DocumentError::invalidSelection("table, title, or source bounds")},
      {"a letter more",
       [](EditedDocument& edited) { replace(edited.part(secondSlide), ">12,3<", ">12,3 <"); },
       failure("table cells differ from frozen source values"), "second"},
      {"slides in another order",
       [](EditedDocument& edited) {
         putSlideList(edited, {"rId3", "rId2"});
       },
       failure("table cells differ from frozen source values"), "list"},
  };
  testing::expectRefusals<EditedDocument>(testing::deck, rows,
                                          [](const EditedDocument& edited) { edited.validate(); });
}

TEST(PresentationValidation, ChecksOneSlideAfterTheOther) {
  EditedDocument edited = testing::deck();
  replaceAll(edited.part(firstSlide), "p:sld", "p:sldLayout");
  replace(edited.part(presentationRelationships), "slides/slide2.xml", "slides/slide1.xml");
  EXPECT_EQ(errorOf([&] { edited.validate(); }), failure("slide root"));
}

TEST(PresentationValidation, PassesOverTheChartSlideWhereverItStands) {
  EditedDocument edited = testing::chartDeck();
  putSlideList(edited, {"rId4", "rId2", "rId3"});
  EXPECT_TRUE(edited.validate().sourceValuesVerified);

  // A deck of nothing but the chart shows no table.
  putSlideList(edited, {"rId4"});
  EXPECT_EQ(errorOf([&] { edited.validate(); }), failure("table dimensions"));

  // Nor does a chart excuse a slide where the deck has none.
  EditedDocument chartless = testing::deck();
  removeTable(chartless.part(secondSlide));
  replace(chartless.part(secondSlide), "</p:spTree>", "<c:chart/></p:spTree>");
  EXPECT_EQ(errorOf([&] { chartless.validate(); }), failure("repeated table header"));
}

TEST(PresentationValidation, TakesDocumentsWithoutAnExpectedTable) {
  EditedDocument edited = testing::chartDeck();
  edited.table.reset();
  EXPECT_FALSE(edited.validate().sourceValuesVerified);
  EXPECT_EQ(edited.validate().warnings.size(), 1U);
  // 21 slides: twenty of the table, one of the chart.
  const SourceTable table = testing::tableOf(1, 200);
  EXPECT_FALSE(errorOf([&] {
    DocumentEngine::validate(DocumentAuthor::pptx(table, "Title", {}).view(), DocumentFormat::pptx, &table,
                             nullptr);
  }));
}

}  // namespace
}  // namespace zelvo
