// Owns rendered presentations: their bytes, how texts fit, and what their read-back finds.

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/ReadBack.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/Texts.hpp"
#include "DocumentRuntime/Research/Slides/Renderer.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

ResearchSourceScope scope() {
  using Record = ResearchSourceScope::Record;
  const std::chrono::sys_days day = std::chrono::year(2024) / 2 / 29;
  return {{"local-1"},
          {{"web-1", "https://example.org/2022"},
           {"web-2", "https://example.org/2023"},
           {"web-3", "https://example.org/2024"}},
          {{.id = "local-1",
            .kind = Record::Kind::localSnapshot,
            .label = "Notes\n& more",
            .observedAt = day,
            .coverage = "page 1",
            .provenanceURL = {}}}};
}

/// A cover, points, and the same chart twice; the chart has a gap, a value below zero and crowded labels.
ResearchPresentation deck() {
  ResearchSpreadsheet dataset = testing::yearlyProfit();
  dataset.rows[1].cells[2] = testing::blankCell();
  dataset.rows[2].cells[2] = testing::numberCell(-4.5);
  dataset.rows[2].cells[0] = testing::textCell(std::string(60, 'l'));
  dataset.rows[0].cells[2] = testing::numberCell(0.1);
  dataset.charts[0].kind = testing::Chart::Kind::bar;
  dataset.charts[0].valueColumns = {2};
  ResearchPresentation deck{
      .title = "Deck", .report = "Report", .slides = {}, .dataset = dataset, .datasets = {}};
  deck.slides = {
      {.title = "Cover\r\nof <two> lines", .body = {"First"}, .sources = {}, .sourceIDs = {{"local-1"}}},
      {.title = "Points", .body = {"One", "Two\tparts", "Three"}, .sources = {"https://example.org/2022"}},
      {.title = "Chart", .body = {"Insight"}, .sources = {}, .chartIndex = 0},
      {.title = "Again", .body = {"Insight"}, .sources = {}, .chartIndex = 0}};
  return deck;
}

TEST(ResearchPresentationRenderer, IsExactlyTheExpectedBytes) {
  const std::filesystem::path expected = EXPECTED_FOLDER;
  EXPECT_EQ(testing::differences(renderPresentation(deck(), 4, scope()), expected / "deck"), "");
}

/// A text that every slide repeats, far beyond what a host's file may hold. The last slide, which cannot be
/// drawn, shows whether drawing stopped before it.
TEST(ResearchPresentationRenderer, StopsWhereTheArchiveIsFull) {
  const auto outcome = [](std::size_t labelBytes) {
    ResearchPresentation crowded = deck();
    for (auto& slide : crowded.slides)
      slide.sourceIDs = {{"local-1"}};
    crowded.slides.resize(16, crowded.slides[2]);
    crowded.slides.back().title = "a" + testing::repeated("\u0301", 2000);
    ResearchSourceScope::Record record = scope().selectedRecords({"local-1"}, {}).at(0);
    record.label = std::string(labelBytes, '"');
    std::map<std::string, std::string> publicSources;
    for (const auto& row : crowded.dataset->rows)
      publicSources.emplace("p" + std::to_string(publicSources.size()), row.sources.at(0));
    return testing::outcomeOf(
        [&] { renderPresentation(crowded, 4, ResearchSourceScope({"local-1"}, publicSources, {record})); });
  };
  EXPECT_EQ(outcome(1000), "unsupported: slide text needs too much space");
  EXPECT_EQ(outcome(std::size_t{2} << 20), "resourceLimit: output archive");
  EXPECT_EQ(outcome(std::size_t{3} << 20), "resourceLimit: output part");
}

TEST(ResearchPresentationRenderer, FitsTextsOfAnyLength) {
  // Headings have 864 × 78 points.
  const auto size = [](const std::string& text) {
    return SlideText::fittedSize({text}, {.width = 864, .height = 78, .largestSize = 30});
  };
  EXPECT_EQ(size("Short"), 30);
  EXPECT_EQ(size(std::string(80, 'i')), 30);  // 52 ems on two lines of 28.8
  EXPECT_EQ(size(std::string(80, 'W')), 21);  // 80 ems on two lines of 41.1
  EXPECT_EQ(size("aaaaaaaaaaaaaaaaaaaaaaaaa aaaaaaaaaaaaaaaaaaaaaaaaa b"), 30);  // words stay whole
  EXPECT_EQ(size(std::string(25, 'W') + " " + std::string(25, 'W') + " " + std::string(25, 'W')), 21);
  EXPECT_EQ(SlideText::fittedSize({}, {.width = 864, .height = 78, .largestSize = 30}), 30);
  std::string stacked = "a";
  for (int i = 0; i < 2000; ++i)
    stacked += "\u0301";
  EXPECT_THROW(size(stacked), DocumentError);

  // 20 characters of 0.65 ems, an "m" of 0.9; what may be half a character goes, too.
  EXPECT_EQ(SlideText::abbreviated("https://example.org/", "", 133, 10), "https://example.org/");
  EXPECT_EQ(SlideText::abbreviated("https://example.org/", "", 132, 10), "https://example.o…");
  EXPECT_EQ(SlideText::abbreviated("https://example.org/", " · now", 132, 10), "https://ex… · now");
  EXPECT_EQ(SlideText::abbreviated("xa\u0301\u0301b", "", 35, 10), "x…");
}

TEST(ResearchPresentationReadBack, NamesTheDifference) {
  const std::map<std::string, std::string> messages = {
      {"slide", "A slide is missing."},
      {"content", "Slide content did not survive delivery."},
      {"identity", "Slide source identities did not survive delivery."},
      {"observation", "Trusted source coverage and observation time did not survive presentation delivery."},
      {"chart", "Slide chart data did not survive delivery."}};
  const ByteBuffer written = renderPresentation(deck(), 4, scope());
  const std::string embedded = "ppt/embeddings/chart-data1.xlsx";
  for (const auto& [part, from, to, message] : testing::cases<4>(R"(
      presentation | <p:sldId id="257" r:id="rId3"/>         |                                        => slide
      presentation | r:id="rId5"                             | r:id="rId55"                           => slide
      presentation | r:id="rId4"                             | r:id="rId3"                            => content
      slides/slide1 | Cover of                               | Cover off                              => content
      slides/slide2 | <a:t>Two parts</a:t>                   | <a:t>Two</a:t></a:r><a:r><a:t> parts</a:t> => content
      slides/slide2 | <a:t>Three</a:t>                       | <a:t>Trhee</a:t>                       => content
      slides/slide2 | type="slidenum"><a:rPr                 | ><a:t>2</a:t><a:rPr                    => content
      slides/slide1 | descr="local-1                         | descr="local-2                         => identity
      slides/slide2 | name="Source 1"                        | name="Sauce 1"                         => identity
      slides/slide3 | name="Footer rule"                     | name="Source 1"                        => identity
      slides/slide1 | page 1                                 | page 2                                 => observation
      slides/slide1 | 2024-02-29T00:00:00Z                   | 2024-03-01T00:00:00Z                   => observation
      slides/slide1 | ␠·␠2024-02-29T00:00:00Z</a:t>          | ␠·␠2024-02-28T00:00:00Z</a:t>          => observation
      slides/_rels/slide4.xml.rels | charts/chart1.xml       | slides/slide2.xml                      => chart
      slides/slide2 | </p:spTree>                            | <c:chart/></p:spTree>                  => chart
      charts/chart1 | <c:v>0.1</c:v>                         | <c:v>0.10</c:v>                        => chart
      charts/chart1 | <c:pt idx="2"><c:v>-4.5                | <c:pt idx="1"><c:v>-4.5                => chart
      charts/chart1 | <c:v>2023</c:v>                        | <c:v>2022</c:v>                        => chart
      charts/chart1 | <c:v>A (USD)</c:v>                     | <c:v>A</c:v>                           => chart
      charts/chart1 | $B$2:$B$4                              | $B$2:$B$5                              => chart
      charts/chart1 | <a:t>Profit</a:t>                      | <a:t>Loss</a:t>                        => chart
      charts/chart1 | <c:externalData                        | <c:ser/><c:externalData                => chart
      data         | <v>-4.5</v>                             | <v>4.5</v>                             => chart
      data         | A (USD)                                 | B (USD)                                => chart
      data         | <c r="B2"><v>0.1</v></c>                | <c r="B2"><v>0.1</v></c><c r="C2"><v>7</v></c> => chart
      data         | <row r="3">                             | <row r="3"><c r="B3"><v>0</v></c>      => chart)")) {
    PartMap parts = BoundedZIP::read(written.view());
    PartMap workbook = BoundedZIP::read(parts.find(embedded)->view());
    const bool inside = part == "data";
    PartMap& target = inside ? workbook : parts;
    const std::string name =
        inside ? "xl/worksheets/sheet1.xml" : "ppt/" + part + (part.ends_with(".rels") ? "" : ".xml");
    target.set(name, ByteBuffer::copyOf(testing::replaced(std::string(target.find(name)->text()), from, to)));
    if (inside) parts.set(embedded, BoundedZIP::write(workbook));
    EXPECT_EQ(testing::outcomeOf(
                  [&] { readBackResearchPresentation(BoundedZIP::write(parts).view(), deck(), scope()); }),
              "validationFailed: " + messages.at(message))
        << to;
  }
}

TEST(ResearchPresentationReadBack, ExpectsTextsByItsOwnRules) {
  const auto name = [](const std::optional<std::string>& unit) {
    return ReadBackTexts::seriesName({.name = "A", .kind = testing::Column::Kind::number, .unit = unit});
  };
  EXPECT_EQ(name("USD") + name("") + name({}), "A (USD)AA");
  const std::string text = "a\r\nb\tc\u2028\vd\u0085\r\re\x01\x1f\u007f\uFFFE\uFFFF";
  EXPECT_EQ(ReadBackTexts::onSlide(text), "a b c  d   e\u007f");
  EXPECT_EQ(ReadBackTexts::inChart(text), "abc\u2028d\u0085e\u007f");
}

}  // namespace
}  // namespace zelvo
