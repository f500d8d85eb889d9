// Owns the rules of decks, their datasets and bindings.

#include <algorithm>
#include <functional>
#include <map>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/PresentationModel/Coding.hpp"
#include "DocumentRuntime/Research/PresentationModel/RendererVersion.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

using Deck = ResearchPresentation;

const auto messages = cases<2>(R"(
    outline    | Use a short title, a report and 3–16 slides.
    counts     | Use at most four unique canonical datasets and four chart references.
    table      | Supply a report and a bounded table with unique column names.
    slide      | Each slide needs a short heading and 1–4 concise points.
    binding    | Use one explicit chart binding per slide.
    no scope   | Source IDs require the trusted local/public provenance scope.
    scope      | Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public URL.
    reference  | A chart slide needs its exact canonical dataset and chart, at most 40 periods and one insight.
    chart      | A chart slide needs an attached dataset, a valid chart, at most 40 periods and one concise insight.
    URL        | Slide sources must be returned research URLs.
    replaced   | The presentation cannot replace the shared source dataset.
    identities | A collection presentation needs unique, bounded dataset identities and explicit chart references.
    outside    | The presentation references a dataset outside its declared result scope.
    changed    | Model content cannot add or change canonical dataset records.
    missing    | A canonical dataset is missing.
    unbound    | The chart's exact dataset binding is missing.)");

Outcome refusal(const std::string& key) {
  const auto row = std::ranges::find(messages, key, [](const auto& message) { return message[0]; });
  return "validationFailed: " + row->at(1);
}

/// A cover, a chart slide and two points, over one dataset.
struct Single {
  std::string deck =
      R"({"title":"Deck","report":"Sum","slides":[{"title":"Cover","body":["c1"],"sources":["http://h/"],"sourceIDs":[]},)"
      R"({"title":"Chart","body":["k1"],"sources":[],"chartIndex":0},)"
      R"({"title":"Points","body":["p1","p2"],"sources":["https://h/p"]}]})";
  ResearchSpreadsheet dataset = yearlyProfit();
  AllowedSources allowedSources;
  std::optional<ResearchSourceScope> scope;

  Deck decode() const { return Deck::decode(deck, allowedSources, dataset, scope); }
};

/// A cover and three chart slides, over two datasets.
struct Collection {
  std::string deck =
      R"({"title":"Deck","report":"Sum","slides":[{"title":"Cover","body":["c1"],"sources":[]},)"
      R"({"title":"A","body":["k1"],"sources":[],"chartReference":{"datasetID":"a","chartIndex":0}},)"
      R"({"title":"B","body":["k2"],"sources":[],"chartReference":{"datasetID":"b","chartIndex":0}},)"
      R"({"title":"A again","body":["k3"],"sources":[],"chartReference":{"datasetID":"a","chartIndex":0}}]})";
  std::vector<Deck::Dataset> datasets = {{"a", yearlyProfit()}, {"b", yearlyProfit()}};
  std::vector<std::string> allowedIDs = {"a", "b"};

  Deck decode() const { return Deck::decode(deck, {}, datasets, allowedIDs, {}); }
};

/// Edits of the deck's text, `from => to | message | place`.
template <typename Input>
std::vector<Refusal<Input>> deckEdits(std::string_view table) {
  auto rows = edits<Input>([](Input& input) -> std::string& { return input.deck; }, table);
  for (auto& row : rows)
    row.expected = refusal(row.expected.text);
  return rows;
}

/// A change of the decoded deck.
template <typename Input>
void edit(Input& input, const std::function<void(Deck&)>& change) {
  auto deck = fromJson<Deck>(input.deck);
  change(deck);
  input.deck = deck.encoded();
}

Limit<Single> limit(std::string name, std::size_t last, const std::string& key,
                    std::function<void(Deck&, std::size_t)> change) {
  const auto reach = [change](Single& input, std::size_t size) {
    edit(input, [&](Deck& deck) { change(deck, size); });
  };
  return {std::move(name), last, refusal(key), reach};
}

const auto pad = [](auto& input, std::size_t bytes) { input.deck.resize(bytes, ' '); };
const auto lengthen = [](ResearchSpreadsheet& dataset, std::size_t rows) {
  dataset.rows.resize(rows, numberRow({{}, {}, {}, {}, {}}));
};
const auto decodes = [](const auto& input) { return input.decode(); };

TEST(ResearchPresentation, RefusesInItsOrder) {
  const auto rows = deckEdits<Single>(R"(
    "Deck"           => "\u2028 "                       | outline  | title
    "Deck"           => "a\u001fb"                      | outline  | title
    "Sum"            => " "                             | outline  | report
    ,{"title":"Points","body":["p1","p2"],"sources":["https://h/p"]} => | outline | points
    {"title":"Deck"  => {"datasets":[],"title":"Deck"   | counts   | title
    "Cover"          => ""                              | slide    | cover/title
    "c1"             => "\u2003"                        | slide    | cover/body
    "c1"             => "\u0000"                        | slide    | cover/body
    "c1"             =>                                 | slide    | cover/body
    "sourceIDs":[]   => "sourceIDs":[""]                | slide    | cover/ids
    "sourceIDs":[]   => "sourceIDs":["a/b"]             | slide    | cover/ids
    "sourceIDs":[]   => "chartIndex":0,"chartReference":{"datasetID":"","chartIndex":0} | binding | cover/ids
    "sourceIDs":[]   => "sourceIDs":["a"]               | no scope | cover/ids
    "sourceIDs":[]   => "chartIndex":0                  | chart    | cover/ids
    "http://h/"      => "http://h/off-the-list"         | URL      | cover/sources
    ["k1"]           => ["k1","k2"]                     | chart    | chart/body
    "chartIndex":0   => "chartIndex":1                  | chart    | cover/ids
    "sources":[]     => "sources":["ftp://h/"]          | URL      | chart/sources
    "p1"             => ""                              | slide    | points)");
  const auto good = [] {
    Single input;
    input.allowedSources = {{"http://h/", "https://h/p"}};
    for (const Row& row : input.dataset.rows)
      input.allowedSources->push_back(row.sources[0]);
    return input;
  };
  expectRefusals<Single>(good, rows, decodes);

  Single input;
  edit(input, [](Deck& deck) { deck.dataset = numericTable({{}, {}}); });
  EXPECT_EQ(outcomeOf([&] { input.decode(); }), refusal("replaced"));
}

/// With a scope and a list, slides must satisfy both, the scope first.
TEST(ResearchPresentation, ChecksTheScopeBeforeTheList) {
  std::map<std::string, std::string> known = {{"x", "http://h/"}, {"y", "https://h/p"}};
  for (const Row& row : yearlyProfit().rows)
    known.emplace("i" + std::to_string(known.size()), row.sources[0]);
  Single input;
  input.allowedSources.emplace();
  replace(input.deck, R"("sources":["http://h/"],"sourceIDs":[])", R"("sources":[],"sourceIDs":["x"])");
  for (const char* expected : {"URL", "scope"}) {
    input.scope.emplace(std::vector<std::string>(), known, std::vector<ResearchSourceScope::Record>());
    EXPECT_EQ(outcomeOf([&] { input.decode(); }), refusal(expected));
    known.erase("y");
  }
  const Deck::Slide cover = fromJson<Deck>(input.deck).slides[0];
  EXPECT_EQ(Deck::sourceRecords(cover, input.scope), input.scope->selectedRecords({"x"}, {}));
  EXPECT_TRUE(Deck::sourceRecords(cover, {}).empty());
}

/// Without a list and a scope, identifiers and URLs are checked for their form alone.
TEST(ResearchPresentation, RefusesOnePastEachLimit) {
  const auto letters = [](std::size_t count) { return std::string(count, 'i'); };
  const auto label = [](Single& input, std::size_t length) {
    input.dataset.rows[2].cells[0] = textCell(characters(length));
  };
  expectLimits<Single>(
      {limit("title", 80, "outline", [](Deck& d, auto n) { d.title = characters(n); }),
       limit("report", 30'000, "outline", [](Deck& d, auto n) { d.report = characters(n); }),
       limit("slides", 16, "outline", [](Deck& d, auto n) { d.slides.resize(n, d.slides[2]); }),
       limit("heading", 80, "slide", [](Deck& d, auto n) { d.slides[2].title = characters(n); }),
       limit("points", 4, "slide", [](Deck& d, auto n) { d.slides[2].body.resize(n, "p"); }),
       limit("point", 160, "slide", [](Deck& d, auto n) { d.slides[2].body[1] = characters(n); }),
       limit("URLs", 3, "slide", [](Deck& d, auto n) { d.slides[2].sources.resize(n, "http://h/"); }),
       limit("IDs", 3, "slide", [](Deck& d, auto n) { d.slides[0].sourceIDs.emplace(n, "i"); }),
       limit("ID", 160, "slide", [=](Deck& d, auto n) { d.slides[0].sourceIDs = {letters(n)}; }),
       limit("URL", 2000, "URL", [=](Deck& d, auto n) { d.slides[0].sources[0] += letters(n - 9); }),
       {"periods", 40, refusal("chart"), [](Single& i, auto n) { lengthen(i.dataset, n); }},
       {"label", 60, refusal("chart"), label},
       {"bytes", 340'000, DocumentError::resourceLimit("presentation content"), pad}},
      decodes);
}

TEST(ResearchPresentation, RefusesCollectionsInItsOrder) {
  const auto onDeck = [](const std::function<void(Deck&)>& change) {
    return [change](Collection& input) { edit(input, change); };
  };
  const auto repeatOne = [onDeck](const char* id, double value) {
    return onDeck([=](Deck& deck) {
      deck.datasets = {{{id, yearlyProfit()}}};
      deck.datasets->front().content.rows[0].cells[2] = numberCell(value);
    });
  };
  const std::vector<Refusal<Collection>> attaching = {
      {"dataset", onDeck([](auto& d) { d.dataset = yearlyProfit(); }), refusal("identities"), "model"},
      {"index", onDeck([](auto& d) { d.slides[0].chartIndex = 0; }), refusal("identities"), "cover"},
      {"same ID", [](auto& i) { i.datasets[1].id = "a"; }, refusal("identities"), "host"},
      {"no ID", [](auto& i) { i.datasets[1].id = ""; }, refusal("identities"), "host"},
      {"allowed twice", [](auto& i) { i.allowedIDs[1] = "a"; }, refusal("identities"), "allowed"},
      {"allowed no ID", [](auto& i) { i.allowedIDs[1] = "b c"; }, refusal("identities"), "allowed"},
      {"outside", [](auto& i) { i.allowedIDs.pop_back(); }, refusal("outside"), "allowed"},
      {"added", repeatOne("c", 10), refusal("changed"), "model"},
      {"changed", repeatOne("a", 11), refusal("changed"), "model"},
      {"missing", [](auto& i) { i.datasets.pop_back(); }, refusal("missing"), "host"},
      {"dataset's rules", [](auto& i) { i.datasets[1].content.report = ""; }, refusal("table"), "host"}};
  const auto rules = deckEdits<Collection>(R"(
    "c1"],"sources":[] => "c1"],"sources":[],"chartReference":{"datasetID":"b","chartIndex":0} | reference | cover
    ["k1"]             => ["k1","k2"]                    | reference | body
    "a","chartIndex":0 => "a","chartIndex":1             | reference | index
    "a","chartIndex":0 => "a","chartIndex":-1            | reference | index)");
  expectRefusals<Collection>([] { return Collection(); }, joined<Collection>({attaching, rules}), decodes);

  Collection repeating;
  repeatOne("a", 10)(repeating);
  repeating.datasets[1].content.rows[0].cells[0] = textCell(characters(61));
  EXPECT_EQ(repeating.decode().datasets, repeating.datasets);

  const auto refer = [](Collection& input, std::size_t count) {
    for (auto& dataset : input.datasets)
      dataset.content.charts.resize(4, dataset.content.charts[0]);
    edit(input, [count](Deck& deck) {
      deck.slides.resize(1 + count, deck.slides[1]);
      for (std::size_t i = 0; i < count; ++i)
        deck.slides[1 + i].chartReference = {i < 4 ? "a" : "b", static_cast<std::int64_t>(i % 4)};
    });
  };
  const auto add = [](Collection& input, std::size_t count) {
    while (input.datasets.size() < count)
      input.datasets.push_back({"d" + std::to_string(input.datasets.size()), yearlyProfit()});
  };
  expectLimits<Collection>(
      {{"datasets", 4, refusal("identities"), add},
       {"ID", 160, refusal("identities"), [](auto& i, auto n) { i.allowedIDs.emplace_back(n, 'i'); }},
       {"references", 4, refusal("counts"), refer},
       {"periods", 40, refusal("reference"), [](auto& i, auto n) { lengthen(i.datasets[1].content, n); }},
       {"bytes", 400'000, DocumentError::resourceLimit("presentation collection content"), pad}},
      decodes);
}

/// Decks that the host builds itself are subject to the same rules.
TEST(ResearchPresentation, ValidatesWhatWasNeverAttached) {
  auto deck = fromJson<Deck>(Collection().deck);
  const auto validates = [&deck] { deck.validate({}, {}); };
  EXPECT_EQ(outcomeOf(validates), refusal("reference"));
  EXPECT_EQ(outcomeOf([&deck] { deck.resolvedChartBindings(); }), refusal("unbound"));
  deck.datasets = std::vector<Deck::Dataset>(2, {"a", yearlyProfit()});
  EXPECT_EQ(outcomeOf(validates), refusal("counts"));
  deck = fromJson<Deck>(Single().deck);
  EXPECT_EQ(outcomeOf(validates), refusal("chart"));
}

TEST(ResearchPresentation, ResolvesOneBindingAChartSlide) {
  const Deck deck = Collection().decode();
  std::string parts;
  for (const auto& binding : deck.resolvedChartBindings()) {
    parts += binding.reference.datasetID + std::to_string(binding.partNumber) + " ";
    EXPECT_EQ(*binding.dataset, yearlyProfit());
    EXPECT_EQ((*binding.cells)[2][4], numberCell(8));
  }
  EXPECT_EQ(parts, "a1 b2 a1 ");
  const auto bindings = deck.resolvedChartBindings();
  EXPECT_EQ(bindings[0].dataset, &deck.datasets->at(0).content);
  EXPECT_EQ(bindings[0].cells, bindings[2].cells) << "copied for each slide";
  EXPECT_EQ(deck.referencedChartDatasetIDs(), (std::set<std::string>{"a", "b"}));

  const Deck single = Single().decode();
  ASSERT_EQ(single.resolvedChartBindings().size(), 1);
  EXPECT_EQ(single.resolvedChartBindings()[0].reference, (Deck::ChartReference{"", 0}));
}

TEST(ResearchPresentation, TheCanonicalEncodingIsAFixedPoint) {
  const std::string canonical =
      R"({"datasets":[{"content":{"charts":[],"columns":[],"report":"","rows":[]},"id":"a"}],"report":"R","slides":[)"
      R"({"body":["p"],"chartIndex":0,"chartReference":{"chartIndex":-1,"datasetID":"a"},"sourceIDs":[],"sources":["u"],)"
      R"("title":"S"},{"body":[],"sources":[],"title":""}],"title":"T"})";
  EXPECT_EQ(fromJson<Deck>(canonical).encoded(), canonical);
}

TEST(PresentationRendererVersion, DrawsWhatItCan) {
  const std::map<std::string, Deck> decks = {
      {"points", {}}, {"single", Single().decode()}, {"collection", Collection().decode()}};
  for (const auto& row : cases<3>(R"(
    points     | 0 => unsupported: presentation renderer version
    points     | 1 =>                                                    ; points | 4 =>
    collection | 5 => unsupported: presentation renderer version
    single     | 2 => unsupported: chart datasets require presentation renderer 3 ; single | 3 =>
    collection | 3 => unsupported: multiple dataset charts require presentation renderer 4
    collection | 4 => )")) {
    const auto check = [&] { PresentationRendererVersion::check(std::stoi(row[1]), decks.at(row[0])); };
    EXPECT_EQ(outcomeOf(check), row[2]) << row[0] << " " << row[1];
  }
}

}  // namespace
}  // namespace zelvo
