// Owns the rules of decks, their datasets and bindings.

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
    outline | Use a short title, a report and 3–16 slides.
    counts | Use at most four unique canonical datasets and four chart references.
    table | Supply a report and a bounded table with unique column names.
    slide | Each slide needs a short heading and 1–4 concise points.
    binding | Use one explicit chart binding per slide.
    no scope | Source IDs require the trusted local/public provenance scope.
    scope | Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public URL.
    reference | A chart slide needs its exact canonical dataset and chart, at most 40 periods and one insight.
    chart | A chart slide needs an attached dataset, a valid chart, at most 40 periods and one concise insight.
    URL | Slide sources must be returned research URLs.
    replaced | The presentation cannot replace the shared source dataset.
    identities | A collection presentation needs unique, bounded dataset identities and explicit chart references.
    outside | The presentation references a dataset outside its declared result scope.
    changed | Model content cannot add or change canonical dataset records.
    missing | A canonical dataset is missing. ; unbound | The chart's exact dataset binding is missing.)");

/// A cover, a chart slide and two points; then the dataset of the host.
struct Single {
  std::string text =
      R"({"title":"Deck","report":"Sum","slides":[{"title":"Cover","body":["c1"],"sources":["http://h/"],"sourceIDs":[]},)"
      R"({"title":"Chart","body":["k1"],"sources":[],"chartIndex":0},)"
      R"({"title":"Points","body":["p1","p2"],"sources":["https://h/p"]}],"host":)" +
      json + '}';
  static inline const std::string json = yearlyProfit().encoded();
  AllowedSources allowedSources;
  std::optional<ResearchSourceScope> scope;

  Deck decode() const {
    const JsonDocument document(text);
    std::optional<ResearchSpreadsheet> dataset;
    zelvo::decode(document.root().object().required("host"), dataset.emplace());
    return Deck::decode(text, allowedSources, dataset, scope);
  }
};

/// A cover and three chart slides; then the datasets of the host, the rows and the report of the last one,
/// and the datasets that may be referenced. PROFIT is the dataset "a" of the host.
struct Collection {
  std::string text =
      R"({"title":"Deck","report":"Sum","slides":[{"title":"Cover","body":["c1"],"sources":[]},)"
      R"({"title":"A","body":["k1"],"sources":[],"chartReference":{"datasetID":"a","chartIndex":0}},)"
      R"({"title":"B","body":["k2"],"sources":[],"chartReference":{"datasetID":"b","chartIndex":0}},)"
      R"({"title":"A again","body":["k3"],"sources":[],"chartReference":{"datasetID":"a","chartIndex":0}}],)"
      R"("hosts":["a","b"],"rows":3,"hostReport":"R","allowed":["a","b"]})";

  Deck decode() const {
    static const ResearchSpreadsheet profit = [] {
      ResearchSpreadsheet dataset = yearlyProfit();
      dataset.charts.resize(4, dataset.charts[0]);
      return dataset;
    }();
    static const std::string json = profit.encoded();
    const std::string expanded = std::regex_replace(text, std::regex("PROFIT"), json);
    const JsonDocument document(expanded);
    const JsonObject object = document.root().object();
    std::vector<std::string> hosts, allowed;
    zelvo::decode(object.required("hosts"), hosts);
    zelvo::decode(object.required("allowed"), allowed);
    std::vector<Deck::Dataset> datasets;
    for (const std::string& id : hosts)
      datasets.push_back({id, profit});
    ResearchSpreadsheet& last = datasets.back().content;
    last.report = object.required("hostReport").string();
    last.rows.resize(static_cast<std::size_t>(object.required("rows").integer()),
                     numberRow({{}, {}, {}, {}, {}}));
    last.rows[0].cells[0] = Cell(characters(61));  // only categories of a shared dataset have a limit
    return Deck::decode(expanded, {}, datasets, allowed, {});
  }
};

const auto pad = [](auto& input, std::size_t bytes) { input.text.resize(bytes, ' '); };
const auto decodes = [](const auto& input) { return input.decode(); };

TEST(ResearchPresentation, RefusesInItsOrder) {
  const auto good = [] {
    Single input;
    input.allowedSources = {{"http://h/", "https://h/p"}};
    for (const Row& row : yearlyProfit().rows)
      input.allowedSources->push_back(row.sources[0]);
    return input;
  };
  expectEditRefusals<Single>(good, messages, R"(
    "Deck"→"\u2028\u0020" or "Deck"→"a\u001fb" | outline | title ; "Sum"→"\u0020" | outline | report
    ,{"title":"Points","body":["p1","p2"],"sources":["https://h/p"]}→ | outline | points
    {"title":"Deck"→{"datasets":[],"title":"Deck" | counts | title ; "Cover"→"" | slide | cover/title
    "c1"→"\u2003" or "c1"→"\u0000" or "c1"→ | slide | cover/body
    "sourceIDs":[]→"sourceIDs":[""] or "sourceIDs":[]→"sourceIDs":["a/b"] | slide | cover/ids
    "sourceIDs":[]→"chartIndex":0,"chartReference":{"datasetID":"","chartIndex":0} | binding | cover/ids
    "sourceIDs":[]→"sourceIDs":["a"] | no scope | cover/ids
    "sourceIDs":[]→"chartIndex":0 | chart | cover/ids
    "http://h/"→"http://h/off-the-list" | URL | cover/sources ; ["k1"]→["k1","k2"] | chart | chart/body
    "sources":[]→"sources":["ftp://h/"] | URL | chart/sources ; "p1"→"" | slide | points)",
                             decodes);

  Single input;
  edit(input.text,
       R"({"title":"Deck"→{"dataset":)" + numericTable({{}, {}}).encoded() + R"(,"title":"Deck")");
  EXPECT_EQ(outcomeOf([&] { input.decode(); }), refusalIn(messages, "replaced"));
}

/// With a scope and a list, slides must satisfy both, the scope first.
TEST(ResearchPresentation, ChecksTheScopeBeforeTheList) {
  std::map<std::string, std::string> known = {{"x", "http://h/"}, {"y", "https://h/p"}};
  for (const Row& row : yearlyProfit().rows)
    known.emplace("i" + std::to_string(known.size()), row.sources[0]);
  Single input;
  input.allowedSources.emplace();
  edit(input.text, R"("sources":["http://h/"],"sourceIDs":[]→"sources":[],"sourceIDs":["x"])");
  for (const char* expected : {"URL", "scope"}) {
    input.scope.emplace(std::vector<std::string>(), known, std::vector<ResearchSourceScope::Record>());
    EXPECT_EQ(outcomeOf([&] { input.decode(); }), refusalIn(messages, expected));
    known.erase("y");
  }
}

/// Without a list and a scope, identifiers and URLs are checked for their form alone.
TEST(ResearchPresentation, RefusesOneMoreThanEachLimit) {
  expectEditLimits<Single>(messages, R"(
    "Deck"→"#e\u0301#" | 80 | outline ; "Sum"→"#e\u0301#" | 30000 | outline
    {"title":"Points"→#{"title":"P","body":["p"],"sources":[]},#{"title":"Points" | 13 | outline
    "Points"→"#e\u0301#" | 80 | slide ; ["p1","p2"]→[#"p"#] | 4 | slide ; "p2"→"#e\u0301#" | 160 | slide
    ["https://h/p"]→[#"http://h/"#] | 3 | slide ; "sourceIDs":[]→"sourceIDs":[#"i"#] | 3 | slide
    "sourceIDs":[]→"sourceIDs":["#i#"] | 160 | slide ; "http://h/"→"http://h/#i#" | 1991 | URL
    2024"]}]→2024"]}#,{"cells":[null,null,null,null,null],"sources":[]}#] | 37 | chart
    ["2024"→["#e\u0301#" | 60 | chart)",
                           decodes);
  expectLimits<Single>({{"bytes", 340'000, "resourceLimit: presentation content", pad}}, decodes);
}

TEST(ResearchPresentation, RefusesCollectionsInItsOrder) {
  expectEditRefusals<Collection>([] { return Collection(); }, messages, R"(
    {"title":"Deck"→{"dataset":PROFIT,"title":"Deck" | identities | model
    "c1"]→"c1"],"chartIndex":0 | identities | cover
    "allowed":["a","b"]→"allowed":["a","a"] | identities | allowed
    "allowed":["a","b"]→"allowed":["a"] | outside | allowed
    {"title":"Deck"→{"datasets":[{"id":"c","content":PROFIT}],"title":"Deck" | changed | model
    "hosts":["a","b"]→"hosts":["a"] | missing | hosts ; "hostReport":"R"→"hostReport":"" | table | hosts
    "c1"]→"c1"],"chartReference":{"datasetID":"b","chartIndex":0} | reference | cover
    "a","chartIndex":0→"a","chartIndex":4 or "a","chartIndex":0→"a","chartIndex":-1 | reference | index)",
                                 decodes);

  Collection repeating;
  edit(repeating.text, R"({"title":"Deck"→{"datasets":[{"id":"a","content":PROFIT}],"title":"Deck")");
  EXPECT_EQ(repeating.decode().datasets, Collection().decode().datasets);

  expectEditLimits<Collection>(messages,
                               R"(
    "hosts":["a","b"→"hosts":["a","b"#,"d%"# | 2 | identities
    "allowed":["a"→"allowed":["a","#i#" | 160 | identities
    {"title":"A",→#{"title":"C","body":["k"],"sources":[],"chartReference":{"datasetID":"b","chartIndex":%}},#)"
                               R"({"title":"A",                                   | 3     | counts)",
                               decodes);
  expectLimits<Collection>(
      {{"bytes", 400'000, "resourceLimit: presentation collection content", pad},
       {"periods", 40, refusalIn(messages, "reference"),
        [](auto& i, auto n) { edit(i.text, "\"rows\":3→\"rows\":" + std::to_string(n)); }}},
      decodes);
}

TEST(ResearchPresentation, ResolvesOneBindingForEachChartSlide) {
  const Deck deck = Collection().decode();
  const auto bindings = deck.resolvedChartBindings();
  std::string parts;
  for (const auto& binding : bindings)
    parts += binding.reference.datasetID + std::to_string(binding.partNumber) + " ";
  EXPECT_EQ(parts, "a1 b2 a1 ");
  EXPECT_EQ(deck.referencedChartDatasetIDs(), (std::set<std::string>{"a", "b"}));
  EXPECT_EQ(bindings[0].cells, bindings[2].cells) << "copied for each slide";
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
    points | 0 => unsupported: presentation renderer version ; points | 1 => ; points | 4 =>
    single | 2 => unsupported: chart datasets require presentation renderer 3 ; single | 3 =>
    collection | 3 => unsupported: multiple dataset charts require presentation renderer 4
    collection | 4 =>)")) {
    const auto check = [&] { PresentationRendererVersion::check(std::stoi(row[1]), decks.at(row[0])); };
    EXPECT_EQ(outcomeOf(check), row[2]) << row[0] << " " << row[1];
  }
}

}  // namespace
}  // namespace zelvo
