// Owns rendered presentations: their bytes, how texts fit, and what their read-back finds.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/PresentationModel/Coding.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/ReadBack.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/Texts.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "DocumentRuntime/Research/Slides/ChartPlan.hpp"
#include "DocumentRuntime/Research/Slides/Renderer.hpp"
#include "DocumentRuntime/Research/Slides/Script.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

ResearchSourceScope scope() {
  return researchSourceScopeFromJson(
      R"({"localSnapshotIDs":["local-1"],"publicSources":{"web-1":"https://example.org/2022",)"
      R"("web-2":"https://example.org/2023","web-3":"https://example.org/2024"},)"
      R"("records":[{"id":"local-1","kind":"localSnapshot","observedAt":"2024-02-29T00:00:00Z","coverage":"page 1",)"
      R"("label":"Notes\n& more"}]})");
}

/// A cover, points, and the same chart twice; the chart has a gap, a value below zero and crowded labels.
ResearchPresentation deck() {
  auto deck = fromJson<ResearchPresentation>(
      R"({"title":"Deck","report":"Report","slides":[)"
      R"({"title":"Cover\r\nof <two> lines, also where they are wrapped","body":["First"],"sources":[],"sourceIDs":["local-1"]},)"
      R"({"title":"Points","body":["One","Two\tparts","Three"],"sources":["https://example.org/2022"]},)"
      R"({"title":"Chart","body":["Insight"],"sources":[],"chartIndex":0},)"
      R"({"title":"Again","body":["Insight"],"sources":[],"chartIndex":0}]})");
  std::string dataset = yearlyProfit().encoded();
  edit(dataset,
       R"("kind":"line"→"kind":"bar" [2,4]→[2] 10,4,→0.1,4, 11,4,→null,4, 12,4,→-4.5,4, ["2024"→[")" +
           std::string(60, 'l') + '"');
  deck.dataset = fromJson<ResearchSpreadsheet>(dataset);
  return deck;
}

TEST(ResearchPresentationRenderer, IsExactlyTheExpectedBytes) {
  const std::filesystem::path expected = EXPECTED_FOLDER;
  EXPECT_EQ(differences(renderPresentation(deck(), 4, scope()), expected / "deck"), "");
  ResearchPresentation named = deck();
  named.dataset->columns[2].name = std::string(60, 'n');  // too long for the axis
  const PartMap parts = BoundedZIP::read(renderPresentation(named, 4, scope()).view());
  const std::string title = "<a:t>" + std::string(60, 'n') + " (USD)</a:t></a:r></a:p></c:rich>";
  for (const std::string& part : {title, std::string(R"(<c:y val="0.0927"/>)")})  // the axis is below
    EXPECT_NE(parts.find("ppt/charts/chart1.xml")->text().find(part), std::string::npos) << part;
}

TEST(ResearchPresentationRenderer, FitsTextsOfAnyLength) {
  const auto size = [](const std::vector<std::string>& texts) {
    return SlideText::fittedSize(texts, {.width = 864, .height = 78, .largestSize = 30});
  };
  EXPECT_EQ(size({}), 30);
  const std::string word(25, 'a'), wide(25, 'W');
  const std::pair<std::string, double> rows[] = {{"Short", 30},
                                                 {std::string(68, 'W'), 24},  // 64.2 ems on two lines of 35.5
                                                 {word + ' ' + word + " b", 30},  // words stay whole
                                                 {wide + ' ' + wide + ' ' + wide, 21}};
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(size({text}), expected) << text;
  EXPECT_THROW(size({"a" + repeated("\u0301", 2000)}), DocumentError);
  EXPECT_EQ(size({repeated("ﷺ", 1000)}), 6);  // not refused for its width

  // 132 points hold 13 ems: 1.93 of "…" and " · now", the others of letters.
  const std::string url = "https://example.org/" + std::string(20, 'm');
  EXPECT_EQ(SlideText::abbreviated(url, "", 132, 10), "https://example.org/mm…");
  EXPECT_EQ(SlideText::abbreviated(url, " · now", 132, 10), "https://example.org… · now");
}

/// A chart's arrangement of labels, and the format of values that it shows, in 864 × 320 points.
std::string arrangementOf(Chart::Kind kind, const std::string& label, std::size_t count, double value = 1.5) {
  ResearchSpreadsheet dataset = numericTable({"USD"});
  dataset.columns.push_back({.name = "K", .kind = Column::Kind::text, .unit = {}});
  dataset.charts.push_back({"T", kind, 1, {0}});
  std::vector<std::vector<Cell>> cells;
  for (std::size_t i = 0; i < count; ++i)
    cells.push_back({Cell(value), Cell(label)});
  const auto plan = chartPlan({.reference = {},
                               .partNumber = 1,
                               .dataset = &dataset,
                               .cells = std::make_shared<const std::vector<std::vector<Cell>>>(cells)},
                              {.width = 864, .height = 320});
  const char* const names[] = {"flat", "diagonal", "none"};
  return names[static_cast<int>(plan.labels)] + std::string(plan.isHorizontal ? " beside " : " ") +
         std::to_string(plan.labelSize) + (plan.showsValues ? " " + plan.valueFormat : "");
}

TEST(ResearchPresentationRenderer, ArrangesLabelsOfAnyLength) {
  for (const auto& [kind, label, count, expected] : cases<4>(R"(
      bar  | 2024                 | 20 | flat 12 #,##0.0 ; bar | 2024-02-29 | 20 | diagonal 12 #,##0.0
      bar  | Geothermal energy    | 8  | flat 12 #,##0.0 ; bar | Geothermal | 16 | flat beside 12 #,##0.0
      bar  | Geothermal energy    | 40 | diagonal 12 ; line | Geothermal | 16 | diagonal 12
      line | Q1 2024              | 40 | diagonal 12 ; line | Q1 2024 | 20 | flat 12)")) {
    EXPECT_EQ(arrangementOf(kind == "bar" ? Chart::Kind::bar : Chart::Kind::line, label, std::stoul(count)),
              expected)
        << label << count;
  }
  EXPECT_EQ(arrangementOf(Chart::Kind::bar, "2024", 13, 1'234'567), "flat 12");  // 12 would show them
  const std::string sentence = repeated("A longer label ", 4);
  EXPECT_EQ(arrangementOf(Chart::Kind::line, sentence, 40), "diagonal 8");
  EXPECT_EQ(arrangementOf(Chart::Kind::bar, sentence, 30), "flat beside 7");
  EXPECT_EQ(arrangementOf(Chart::Kind::bar, repeated(sentence, 9), 4, 5), "none 12 #,##0");
}

TEST(ResearchPresentationRenderer, NamesLanguageAndDirection) {
  const SlideScript::Languages languages({"Title", "東京の人口"}), none({});
  for (const auto& [text, tag, direction] : cases<3>(R"(
      Latin, 12 β | en-US | left ; Рост | ru-RU | left ; 人口 3 | ja-JP | left ; 12 שלום a | he-IL | right
      (السكان)   | ar-SA | right ; 12 % | en-US | left ; 인구 | ko-KR | left ; a שלום | he-IL | left)")) {
    EXPECT_EQ(languages.tagOf(text), tag) << text;
    EXPECT_EQ(SlideScript::isRightToLeft(text), direction == "right") << text;
  }
  EXPECT_EQ(none.tagOf("人口"), "zh-CN");
}

TEST(ResearchPresentationReadBack, NamesTheDifference) {
  const auto messages = cases<2>(R"(
      slide       | A slide is missing.
      content     | Slide content did not survive delivery.
      identity    | Slide source identities did not survive delivery.
      observation | Trusted source coverage and observation time did not survive presentation delivery.
      chart       | Slide chart data did not survive delivery.)");
  const ByteBuffer written = renderPresentation(deck(), 4, scope());
  const std::string embedded = "ppt/embeddings/chart-data1.xlsx";
  const auto expectRefusal = [&](const std::string& part, const std::string& from, const std::string& to,
                                 const std::string& key) {
    PartMap parts = BoundedZIP::read(written.view());
    PartMap workbook = BoundedZIP::read(parts.find(embedded)->view());
    const bool inside = part == "data";
    PartMap& target = inside ? workbook : parts;
    const std::string name =
        inside ? "xl/worksheets/sheet1.xml" : "ppt/" + part + (part.ends_with(".rels") ? "" : ".xml");
    target.set(name, ByteBuffer::copyOf(replaced(std::string(target.find(name)->text()), from, to)));
    if (inside) parts.set(embedded, BoundedZIP::write(workbook));
    const ByteBuffer edited = BoundedZIP::write(parts);
    EXPECT_EQ(outcomeOf([&] { readBackResearchPresentation(edited.view(), deck(), scope()); }),
              refusalIn(messages, key))
        << to;
  };
  for (const auto& [part, edits, key] : cases<3>(R"(
      presentation  | <p:sldId id="257" r:id="rId3"/>→ or r:id="rId5"→r:id="rId55" => slide
      presentation  | r:id="rId4"→r:id="rId3" => content
      slides/slide2 | <a:t>Two parts</a:t>→<a:t>Two</a:t></a:r><a:r><a:t> parts</a:t> or Three→Trhee => content
      slides/slide1 | name="Footer rule"→name="Slide number" => content
      slides/slide1 | descr="local-1→descr="local-2 or Source<→Sources< => identity
      slides/slide3 | name="Footer rule"→name="Source 1" => identity
      slides/slide1 | page 1→page 2 or 2024-02-29T→2024-03-01T or 29 February→28 February => observation
      slides/_rels/slide4.xml.rels | charts/chart2.xml→slides/slide2.xml or charts/chart2→charts/chart1 => chart
      slides/slide2 | </p:spTree>→<c:chart/></p:spTree> => chart
      charts/chart1 | <c:v>0.1</c:v>→<c:v>0.10</c:v> or <c:pt idx="2"><c:v>-4.5→<c:pt idx="1"><c:v>-4.5 => chart
      charts/chart1 | <c:v>2023</c:v>→<c:v>2022</c:v> or <c:v>A (USD)</c:v>→<c:v>A</c:v> or $B$1→$B$2 => chart
      charts/chart1 | $B$2:$B$4→$B$2:$B$5 or Profit→Loss or <c:externalData→<c:ser/><c:externalData => chart
      charts/chart1 | <a:t>A (USD)→<a:t>A or <c:plotVisOnly→<c:legend/><c:plotVisOnly or "gap"→"zero" => chart
      charts/chart1 | <c:delete val="0"/><c:axPos val="l→<c:delete val="1"/><c:axPos val="l => chart
      charts/chart1 | minMax"/></c:scaling><c:delete val="0"/><c:axPos val="l→minMax"/><c:min val="0"/></c:scaling><c:delete val="0"/><c:axPos val="l => chart
      data | <v>-4.5</v>→<v>4.5</v> or A (USD)→B (USD) or <row r="3">→<row r="3"><c r="B3"><v>0</v></c> => chart
      data | <c r="B2"><v>0.1</v></c>→<c r="B2"><v>0.1</v></c><c r="C2"><v>7</v></c> or </sheetData>→<row r="5"><c r="A5"><v>0</v></c></row></sheetData> => chart)")) {
    for (const std::string& edit : alternatives(edits)) {
      const std::size_t arrow = edit.find("→");
      expectRefusal(part, edit.substr(0, arrow), edit.substr(arrow + std::string("→").size()), key);
    }
  }
}

TEST(ResearchPresentationReadBack, ExpectsTextsByItsOwnRules) {
  const std::string text = "a\r\nb\tc\u2028\vd\u0085\r\re\x01\x1f\u007f\uFFFE\uFFFF";
  EXPECT_EQ(ReadBackTexts::onSlide(text), "a b c  d   e\u007f");
  EXPECT_EQ(ReadBackTexts::inChart(text), "abc\u2028d\u0085e\u007f");
  const auto midnight = *scope().selectedRecords({"local-1"}, {}).front().observedAt;
  EXPECT_EQ(ReadBackTexts::observation(midnight + std::chrono::minutes(7)),
            "observed 29 February 2024, 00:07 UTC");
  EXPECT_EQ(ReadBackTexts::observation({}), "observation time not recorded");
}

}  // namespace
}  // namespace zelvo
