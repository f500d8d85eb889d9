#include <functional>
#include <map>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/PresentationRendererVersion.hpp"
#include "DocumentRuntime/Research/ResearchPresentationCoding.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

const std::map<std::string, std::string> messages = {
    {"outline", "Use a short title, a report and 3–16 slides."},
    {"counts", "Use at most four unique canonical datasets and four chart references."},
    {"table", "Supply a report and a bounded table with unique column names."},
    {"slide", "Each slide needs a short heading and 1–4 concise points."},
    {"one binding", "Use one explicit chart binding per slide."},
    {"no scope", "Source IDs require the trusted local/public provenance scope."},
    {"scope",
     "Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public URL."},
    {"reference",
     "A chart slide needs its exact canonical dataset and chart, at most 40 periods and one insight."},
    {"chart",
     "A chart slide needs an attached dataset, a valid chart, at most 40 periods and one concise insight."},
    {"URL", "Slide sources must be returned research URLs."},
    {"replaced", "The presentation cannot replace the shared source dataset."},
    {"identities",
     "A collection presentation needs unique, bounded dataset identities and explicit chart references."},
    {"outside", "The presentation references a dataset outside its declared result scope."},
    {"changed", "Model content cannot add or change canonical dataset records."},
    {"missing", "A canonical dataset is missing."},
    {"unbound", "The chart's exact dataset binding is missing."},
};

Outcome refusal(const std::string& key) {
  return "validationFailed: " + messages.at(key);
}

const AllowedSources allSources = {{"http://h/", "https://h/p", "https://example.org/2022",
                                    "https://example.org/2023", "https://example.org/2024"}};

/// A cover, a chart slide and two points, over one dataset.
struct Single {
  std::string deck =
      R"({"title":"Deck","report":"Sum","slides":[{"title":"Cover","body":["c1"],"sources":["http://h/"],"sourceIDs":[]},)"
      R"({"title":"Chart","body":["k1"],"sources":[],"chartIndex":0},)"
      R"({"title":"Points","body":["p1","p2"],"sources":["https://h/p"]}]})";
  ResearchSpreadsheet dataset = yearlyProfit();
  AllowedSources allowedSources = allSources;
  std::optional<ResearchSourceScope> scope;

  ResearchPresentation decode() const {
    return ResearchPresentation::decode(deck, allowedSources, dataset, scope);
  }
};

/// A cover and three chart slides, over two datasets.
struct Collection {
  std::string deck =
      R"({"title":"Deck","report":"Sum","slides":[{"title":"Cover","body":["c1"],"sources":[]},)"
      R"({"title":"A","body":["k1"],"sources":[],"chartReference":{"datasetID":"a","chartIndex":0}},)"
      R"({"title":"B","body":["k2"],"sources":[],"chartReference":{"datasetID":"b","chartIndex":0}},)"
      R"({"title":"A again","body":["k3"],"sources":[],"chartReference":{"datasetID":"a","chartIndex":0}}]})";
  std::vector<ResearchPresentation::Dataset> datasets = {{"a", yearlyProfit()}, {"b", yearlyProfit()}};
  std::vector<std::string> allowedIDs = {"a", "b"};

  ResearchPresentation decode() const {
    return ResearchPresentation::decode(deck, {}, datasets, allowedIDs, {});
  }
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
void edit(Input& input, const std::function<void(ResearchPresentation&)>& change) {
  auto deck = fromJson<ResearchPresentation>(input.deck);
  change(deck);
  input.deck = deck.encoded();
}

template <typename Input>
Limit<Input> limit(std::string name, std::size_t last, const std::string& key,
                   std::function<void(ResearchPresentation&, std::size_t)> change) {
  return {std::move(name), last, refusal(key), [change](Input& input, std::size_t size) {
            edit(input, [&](ResearchPresentation& deck) { change(deck, size); });
          }};
}

const auto decodes = [](const auto& input) { return input.decode(); };

TEST(ResearchPresentation, RefusesInItsOrder) {
  const auto before = deckEdits<Single>(R"(
    "Deck"           => "\u2028 "                       | outline | title
    "Deck"           => "a\u001fb"                      | outline | title
    "Deck"           => "a\u0000b"                      | outline | title
    "Sum"            => " "                             | outline | report
    ,{"title":"Points","body":["p1","p2"],"sources":["https://h/p"]} => | outline | points
    {"title":"Deck"  => {"datasets":[],"title":"Deck"   | counts  | title)");
  const std::vector<Refusal<Single>> dataset = {
      {"the dataset's own rules", [](Single& i) { i.dataset.report = ""; }, refusal("table"), "dataset"}};
  const auto content = deckEdits<Single>(R"(
    "Cover"          => ""                              | slide   | cover/title
    "c1"             => "\u2003"                        | slide   | cover/body
    "c1"             => "\u0007"                        | slide   | cover/body
    "c1"             =>                                 | slide   | cover/body
    "sourceIDs":[]   => "sourceIDs":[""]                | slide   | cover/ids
    "sourceIDs":[]   => "sourceIDs":["a/b"]             | slide   | cover/ids
    "sourceIDs":[]   => "chartIndex":0,"chartReference":{"datasetID":"","chartIndex":0} | one binding | cover/ids
    "sourceIDs":[]   => "sourceIDs":["a"]               | no scope | cover/ids)");
  // The list allows the URL, but the scope does not.
  const std::map<std::string, std::string> known = {
      {"x", "https://example.org/2022"}, {"y", "https://example.org/2023"}, {"z", "https://example.org/2024"}};
  const std::vector<Refusal<Single>> scope = {
      {"a scope", [known](Single& i) { i.scope.emplace(std::vector<std::string>{}, known, std::vector<ResearchSourceScope::Record>{}); },
       refusal("scope"), "cover/ids"}};
  const auto after = deckEdits<Single>(R"(
    "sourceIDs":[]   => "chartIndex":0                  | chart   | cover/ids
    "http://h/"      => "http://h/off-the-list"         | URL     | cover/sources
    ["k1"]           => ["k1","k2"]                     | chart   | chart/body
    "chartIndex":0   => "chartIndex":1                  | chart   | cover/ids
    "sources":[]     => "sources":["ftp://h/"]          | URL     | chart/sources
    "p1"             => ""                              | slide   | points)");
  expectRefusals<Single>([] { return Single(); }, joined<Single>({before, dataset, content, scope, after}),
                         decodes);
}

TEST(ResearchPresentation, RefusesOnePastEachLimit) {
  expectLimits<Single>(
      {limit<Single>("title", 80, "outline", [](auto& deck, auto n) { deck.title = characters(n); }),
       limit<Single>("report", 30'000, "outline", [](auto& deck, auto n) { deck.report = characters(n); }),
       limit<Single>("slides", 16, "outline", [](auto& d, auto n) { d.slides.resize(n, d.slides.back()); }),
       limit<Single>("heading", 80, "slide", [](auto& d, auto n) { d.slides[2].title = characters(n); }),
       limit<Single>("points", 4, "slide", [](auto& d, auto n) { d.slides[2].body.resize(n, "p"); }),
       limit<Single>("point", 160, "slide", [](auto& d, auto n) { d.slides[2].body[1] = characters(n); }),
       limit<Single>("URLs", 3, "slide",
                     [](auto& d, auto n) { d.slides[2].sources.resize(n, "http://h/"); }),
       {"periods", 40, refusal("chart"),
        [](Single& i, std::size_t n) {
          i.dataset.calculations.reset();
          i.dataset.charts[0].valueColumns = {2};
          for (std::size_t row = i.dataset.rows.size(); row < n; ++row)
            i.dataset.rows.push_back(i.dataset.rows[0]), i.dataset.rows[row].cells[2] = blankCell();
        }},
       {"label", 60, refusal("chart"),
        [](Single& i, std::size_t n) { i.dataset.rows[2].cells[0] = textCell(characters(n)); }},
       {"bytes", 340'000, DocumentError::resourceLimit("presentation content"),
        [](Single& i, std::size_t n) { i.deck.resize(n, ' '); }}},
      decodes);
  const auto identified = [](std::size_t count, std::size_t length) {
    return std::vector<std::string>(count, std::string(length, 'i'));
  };
  // Without a list and a scope identifiers and URLs are checked for their form alone.
  const auto validates = [](const Single& input) { fromJson<ResearchPresentation>(input.deck).validate({}, {}); };
  const auto unbound = [](auto change) {
    return [change](ResearchPresentation& deck, std::size_t n) {
      deck.slides[1].chartIndex.reset();
      change(deck.slides[0], n);
    };
  };
  expectLimits<Single>(
      {limit<Single>("IDs", 3, "slide", unbound([=](auto& s, auto n) { s.sourceIDs = identified(n, 1); })),
       limit<Single>("ID", 160, "slide", unbound([=](auto& s, auto n) { s.sourceIDs = identified(1, n); })),
       limit<Single>("URL", 2000, "URL", unbound([](auto& s, auto n) {
                       s.sources[0] = "http://h/" + std::string(n - 9, 'u');
                     }))},
      validates);
  Single single;
  edit(single, [](ResearchPresentation& deck) { deck.slides[0].sources[0] = "HTTP://h/"; });
  EXPECT_EQ(outcomeOf([&] { validates(single); }), refusal("chart")) << "slide 1 has no dataset";
}

TEST(ResearchPresentation, RefusesWhatIsNoCollectionDeckInItsOrder) {
  std::vector<Refusal<Collection>> attaching = {
      {"single dataset", [](auto& i) { edit(i, [](auto& deck) { deck.dataset = yearlyProfit(); }); }, refusal("identities"), "model"},
      {"index", [](auto& i) { edit(i, [](auto& deck) { deck.slides[0].chartIndex = 0; }); }, refusal("identities"), "cover"},
      {"repeat", [](auto& i) { i.datasets[1].id = "a"; }, refusal("identities"), "host"},
      {"no ID", [](auto& i) { i.datasets[1].id = ""; }, refusal("identities"), "host"},
      {"allowed twice", [](auto& i) { i.allowedIDs[1] = "a"; }, refusal("identities"), "allowed"},
      {"allowed no ID", [](auto& i) { i.allowedIDs[1] = "b c"; }, refusal("identities"), "allowed"},
      {"outside", [](auto& i) { i.allowedIDs.pop_back(); }, refusal("outside"), "allowed"},
      {"added", [](auto& i) { edit(i, [](auto& deck) { deck.datasets = {{{"c", yearlyProfit()}}}; }); }, refusal("changed"), "model"},
      {"changed", [](auto& i) { edit(i, [&](auto& deck) { deck.datasets = i.datasets; deck.datasets->front().content.rows[0].cells[2] = numberCell(11); }); }, refusal("changed"), "model"},
      {"missing", [](auto& i) { i.datasets.pop_back(); }, refusal("missing"), "host"},
      {"the dataset's own rules", [](auto& i) { i.datasets[1].content.report = ""; }, refusal("table"), "host"}};
  const auto rules = deckEdits<Collection>(R"(
    "c1"],"sources":[] => "c1"],"sources":[],"chartReference":{"datasetID":"b","chartIndex":0} | reference | cover
    ["k1"]             => ["k1","k2"]                    | reference | a/body
    "a","chartIndex":0 => "a","chartIndex":1             | reference | a/index
    "a","chartIndex":0 => "a","chartIndex":-1            | reference | a/index)");
  // JSON text has its keys in another order once it was edited as a deck.
  for (auto row : rules) {
    row.place = "cover/" + row.place;
    attaching.push_back(row);
  }
  expectRefusals<Collection>([] { return Collection(); }, attaching, decodes);
}

}  // namespace
}  // namespace zelvo
