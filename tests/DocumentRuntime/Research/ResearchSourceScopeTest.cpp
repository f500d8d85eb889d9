#include <ctime>
#include <functional>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/Texts.hpp"

namespace zelvo {
namespace {

using namespace testing;
using Texts = std::vector<std::string>;

const std::string scopeJson =
    R"({"localSnapshotIDs":["local-1","local-2","local-2"],)"
    R"("publicSources":{"web.2":"https://w/shared","web.1":"https://w/shared","web.3":"https://w/3","é":"https://w/é"},)"
    R"("records":[)"
    R"({"id":"local-1","kind":"localSnapshot","label":"Page","observedAt":"2024-02-29T23:30:00.9-01:30",)"
    R"("coverage":"Half","provenanceURL":"https://l/1"},)"
    R"({"id":"web.3","kind":"publicPage","label":"First","coverage":"All","provenanceURL":"https://w/3"},)"
    R"({"id":"web.3","kind":"publicSearch","label":"Second","coverage":"All"},)"
    R"({"id":"shadow","kind":"publicURL","label":"Shadow","coverage":"All","provenanceURL":"https://w/3"}]})";

ResearchSourceScope scope() {
  return researchSourceScopeFromJson(scopeJson);
}

TEST(ResearchSourceScope, ChecksReferences) {
  const std::string longest(160, 'x');
  const Texts nine = words("local-1 local-2 web.1 web.2 web.3 a b c d");
  const Texts eight(nine.begin(), nine.end() - 1);
  const ResearchSourceScope odd({longest, longest + "x", "a b", ""}, {{"a/b", "https://h"}}, {});
  const ResearchSourceScope withNine(nine, {}, {});
  const ResearchSourceScope withPublic({}, {{"a", "https://h"}}, {});
  const ResearchSourceScope empty({}, {}, {});
  const struct {
    const char* name;
    ResearchSourceScope scope;
    std::optional<Texts> ids;
    Texts urls;
    bool holds;
  } rows[] = {
      {"both kinds of ID", scope(), Texts{"local-1", "web.1"}, {}, true},
      {"a URL alone", scope(), {}, {"https://w/3"}, true},
      {"a URL twice", scope(), {}, {"https://w/3", "https://w/3"}, true},
      {"an ID twice", scope(), Texts{"local-1", "local-1"}, {}, false},
      {"eight IDs", withNine, eight, {}, true},
      {"nine IDs", withNine, nine, {}, false},
      {"an ID of 160 bytes", odd, Texts{longest}, {}, true},
      {"an ID of 161 bytes", odd, Texts{longest + "x"}, {}, false},
      {"a space", odd, Texts{"a b"}, {}, false},
      {"a slash", odd, Texts{"a/b"}, {}, false},
      {"an empty ID", odd, Texts{""}, {}, false},
      {"an ID of a record only", scope(), Texts{"shadow"}, {}, false},
      {"a URL in other case", scope(), {}, {"https://W/3"}, false},
      {"a local URL beside its ID", scope(), Texts{"local-1"}, {"https://l/1"}, false},
      {"nothing where evidence is required", scope(), Texts{}, {}, false},
      {"nothing in an empty scope", empty, {}, {}, true},
      {"nothing with a public source", withPublic, {}, {}, false},
      {"something in an empty scope", empty, {}, {"https://h"}, false},
  };
  const Outcome refused =
      "validationFailed: Use exact trusted local snapshot IDs or accepted public evidence; local evidence "
      "needs "
      "no public URL.";
  for (const auto& row : rows) {
    const auto outcome = outcomeOf([&] { row.scope.validate(row.ids, row.urls, true); });
    EXPECT_EQ(outcome, row.holds ? "" : refused) << row.name;
  }
  EXPECT_NO_THROW(scope().validate({}, {}, false)) << "nothing where evidence is not required";
}

TEST(ResearchSourceScope, SelectsAndDescribesRecords) {
  const struct {
    Texts ids;
    Texts urls;
    Texts expected;
  } rows[] = {
      {{}, {}, {}},
      {{"unknown"}, {"https://unknown"}, {}},
      // A record of that URL comes before the public source, and stands for it by its own identifier.
      {{}, {"https://w/3"}, {"web.3 | publicPage | First | Not recorded | All | https://w/3"}},
      {{},
       {"https://w/shared"},
       {"web.1 | publicURL | Public reference | Not recorded | Returned public URL; coverage metadata "
        "unavailable | "
        "https://w/shared"}},
      {{"web.3", "local-2", "local-1"},
       {"https://l/1", "https://w/3"},
       {"local-1 | localSnapshot | Page | 2024-03-01T01:00:00Z | Half | Provenance only: https://l/1",
        "local-2 | localSnapshot | Visible source | Not recorded | Partial visible excerpt; capture metadata "
        "unavailable | No URL",
        "web.3 | publicPage | First | Not recorded | All | https://w/3"}},
      {{"shadow"}, {}, {"shadow | publicURL | Shadow | Not recorded | All | https://w/3"}},
  };
  for (const auto& row : rows) {
    Texts metadata;
    for (const auto& record : scope().selectedRecords(row.ids, row.urls))
      metadata.push_back(record.metadata());
    EXPECT_EQ(metadata, row.expected);
  }
  Texts labels;
  for (const std::string id : {"local-1", "local-2", "web.1", "web.3"})
    labels.emplace_back(scope().selectedRecords({id}, {}).at(0).kindLabel());
  EXPECT_EQ(labels, (Texts{"Local visible excerpt", "Local visible excerpt", "Public source URL",
                           "Public page excerpt"}));
}

TEST(ResearchSourceScope, ComposesEachIdentifierOnce) {
  // All lead to one URL, and the first in byte order is long and not ASCII.
  std::map<std::string, std::string> sources = {{"!" + repeated("\u00e9", 90'000), "https://h/"}};
  for (int i = 0; i < 8'000; ++i)
    sources.emplace("k" + std::to_string(i), "https://h/");
  const std::string first = sources.begin()->first;
  const std::clock_t start = std::clock();
  const ResearchSourceScope many({}, sources, {});
  EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
  EXPECT_EQ(many.selectedRecords({}, {"https://h/"}).at(0).id, first);
  // U+212B sorts by what it is composed to, U+00C5, and so before U+0100.
  const ResearchSourceScope composed({}, {{"\u0100", "https://h/"}, {"\u212b", "https://h/"}}, {});
  EXPECT_EQ(composed.selectedRecords({}, {"https://h/"}).at(0).id, "\u212b");
}

/// A scope of `count` entries of the list, or with one text of that many bytes.
std::string scopeWith(const std::string& place, std::size_t count) {
  const auto entries = [count](const std::function<std::string(std::size_t)>& entry) {
    std::string list = entry(0);
    for (std::size_t i = 1; i < count; ++i)
      list += "," + entry(i);
    return list;
  };
  const auto record = [](const std::string& label) {
    return R"({"id":"i","kind":"publicURL","coverage":"","label":")" + label + "\"}";
  };
  std::string ids, sources, records;
  if (place == "localSnapshotIDs") ids = entries([](auto) { return R"("i")"; });
  if (place == "publicSources")
    sources = entries([](auto i) { return '"' + std::to_string(i) + R"(":"u")"; });
  if (place == "records") records = entries([&](auto) { return record(""); });
  if (place == "localSnapshotIDs[0]") ids = '"' + std::string(count, 'i') + '"';
  if (place == "publicSources: key") sources = '"' + std::string(count, 'i') + R"(":"u")";
  if (place == "publicSources.i") sources = R"("i":")" + std::string(count, 'u') + '"';
  if (place == "records[0].label") records = record(std::string(count, 'l'));
  return R"({"localSnapshotIDs":[)" + ids + R"(],"publicSources":{)" + sources + R"(},"records":[)" +
         records + "]}";
}

TEST(ResearchSourceScope, BoundsWhatAFileHolds) {
  const std::string bytes = "Expected at most 8000 bytes.";
  const std::string entries = "Expected at most 20000 entries.";
  const struct {
    std::string place;
    std::size_t last;
    std::string message;
  } rows[] = {{"localSnapshotIDs", 20'000, entries},
              {"publicSources", 20'000, entries},
              {"records", 20'000, entries},
              {"localSnapshotIDs[0]", 8'000, bytes},
              {"publicSources: key", 8'000, "Expected identifiers of at most 8000 bytes."},
              {"publicSources.i", 8'000, bytes},
              {"records[0].label", 2'000, "Expected at most 2000 characters."}};
  for (const auto& [place, last, message] : rows) {
    EXPECT_NO_THROW(researchSourceScopeFromJson(scopeWith(place, last))) << place;
    try {
      researchSourceScopeFromJson(scopeWith(place, last + 1));
      ADD_FAILURE() << place;
    } catch (const DecodingError& error) {
      EXPECT_EQ(error.path(), place.substr(0, place.find(':'))) << place;
      EXPECT_EQ(error.message(), message) << place;
    }
  }
}

TEST(ResearchSourceScope, RefusesAFileOfAnotherShape) {
  for (const auto& [from, to, path] : cases<3>(R"(
      "publicPage" | "page" => records[1].kind ; "publicSources" | "sources" =>
      2024-02-29T23:30:00.9-01:30 | 2024-02-29T23:30:00 => records[0].observedAt
      2024-02-29T23:30:00.9-01:30 | 2023-02-29T23:30:00Z => records[0].observedAt
      "https://w/3","é" | null,"é" => publicSources.web.3)")) {
    try {
      researchSourceScopeFromJson(replaced(scopeJson, from, to));
      ADD_FAILURE() << to;
    } catch (const DecodingError& error) {
      EXPECT_EQ(error.path(), path) << to;
    }
  }
}

}  // namespace
}  // namespace zelvo
