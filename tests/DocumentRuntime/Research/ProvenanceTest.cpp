// Owns what a result may cite: the rules of a scope, its records, and its file.

#include <ctime>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "Support/RefusalTable.hpp"

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
  const Texts nine = words("a b c d e f g h i");
  const ResearchSourceScope odd({longest, longest + "x", "a b", ""}, {{"a/b", "https://h"}}, {});
  const ResearchSourceScope withNine(nine, {}, {}), empty({}, {}, {}),
      withPublic({}, {{"a", "https://h"}}, {});
  const struct {
    ResearchSourceScope scope;
    Texts ids, urls;
    bool holds;
  } rows[] = {
      {scope(), {"local-1", "web.1"}, {}, true},
      {scope(), {}, {"https://w/3"}, true},
      {scope(), {}, {"https://w/3", "https://w/3"}, true},
      {scope(), {"local-1", "local-1"}, {}, false},
      {withNine, {nine.begin(), nine.end() - 1}, {}, true},
      {withNine, nine, {}, false},
      {odd, {longest}, {}, true},
      {odd, {longest + "x"}, {}, false},
      {odd, {"a b"}, {}, false},
      {odd, {"a/b"}, {}, false},
      {odd, {""}, {}, false},
      {scope(), {"shadow"}, {}, false},  // only a record
      {scope(), {}, {"https://W/3"}, false},
      {scope(), {"local-1"}, {"https://l/1"}, false},
      {scope(), {}, {}, false},
      {empty, {}, {}, true},
      {withPublic, {}, {}, false},
      {empty, {}, {"https://h"}, false},
  };
  const Outcome refused =
      "validationFailed: Use exact trusted local snapshot IDs or accepted public evidence; local evidence "
      "needs "
      "no public URL.";
  for (const auto& row : rows) {
    EXPECT_EQ(outcomeOf([&] { row.scope.validate(row.ids, row.urls, true); }), row.holds ? "" : refused)
        << "row " << &row - rows;
  }
  EXPECT_NO_THROW(scope().validate({}, {}, false)) << "evidence is not required";
}

TEST(ResearchSourceScope, SelectsAndDescribesRecords) {
  const auto described = [](const Texts& ids, const Texts& urls) {
    std::string lines;
    for (const auto& record : scope().selectedRecords(ids, urls))
      lines += record.metadata() + " (" + std::string(record.kindLabel()) + ")\n";
    return lines;
  };
  // The record of a URL is preferred to the public source, under the record's own identifier.
  const std::string page =
      "web.3 | publicPage | First | Not recorded | All | https://w/3 (Public page excerpt)\n";
  EXPECT_EQ(described({"unknown"}, {"https://unknown"}), "");
  EXPECT_EQ(described({}, {"https://w/3"}), page);
  EXPECT_EQ(described({}, {"https://w/shared"}),
            "web.1 | publicURL | Public reference | Not recorded | Returned public URL; coverage metadata "
            "unavailable | https://w/shared (Public source URL)\n");
  EXPECT_EQ(described({"web.3", "local-2", "local-1"}, {"https://l/1", "https://w/3"}),
            "local-1 | localSnapshot | Page | 2024-03-01T01:00:00Z | Half | Provenance only: https://l/1 "
            "(Local visible excerpt)\n"
            "local-2 | localSnapshot | Visible source | Not recorded | Partial visible excerpt; capture "
            "metadata unavailable | No URL (Local visible excerpt)\n" +
                page);
}

TEST(ResearchSourceScope, ComposesEachIdentifierOnce) {
  // All have one URL; the first in byte order is long and not ASCII.
  std::map<std::string, std::string> sources = {{"!" + repeated("\u00e9", 90'000), "https://h/"}};
  for (int i = 0; i < 8'000; ++i)
    sources.emplace("k" + std::to_string(i), "https://h/");
  const std::clock_t start = std::clock();
  const ResearchSourceScope many({}, sources, {});
  EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
  EXPECT_EQ(many.selectedRecords({}, {"https://h/"}).at(0).id, sources.begin()->first);
  // U+212B sorts by its composed form, U+00C5, and so before U+0100.
  const ResearchSourceScope composed({}, {{"\u0100", "https://h/"}, {"\u212b", "https://h/"}}, {});
  EXPECT_EQ(composed.selectedRecords({}, {"https://h/"}).at(0).id, "\u212b");
}

TEST(ResearchSourceScope, BoundsItsFile) {
  const auto fileWith = [](std::string_view list, const std::string& entry, std::size_t count) {
    std::string entries;
    for (std::size_t i = 0; i < count; ++i)
      entries += (i > 0 ? "," : "") + (entry == "#" ? '"' + std::to_string(i) + R"(":"u")" : entry);
    return replaced(R"({"localSnapshotIDs":[],"publicSources":{},"records":[]})", list,
                    std::string(list.substr(0, list.size() - 1)) + entries + list.back());
  };
  const auto textOf = [&](std::string_view list, const std::string& entry, std::size_t bytes) {
    return fileWith(list, replaced(entry, "#", std::string(bytes, 't')), 1);
  };
  const std::string record = R"({"id":"i","kind":"publicURL","coverage":"","label":"#"})";
  const auto ids = R"("localSnapshotIDs":[])", sources = R"("publicSources":{})", records = R"("records":[])";
  const std::string entries = "Expected at most 20000 entries.", bytes = "Expected at most 8000 bytes.";
  const struct {
    std::string file, beyond, path, message;
  } rows[] = {
      {fileWith(ids, R"("i")", 20'000), fileWith(ids, R"("i")", 20'001), "localSnapshotIDs", entries},
      {fileWith(sources, "#", 20'000), fileWith(sources, "#", 20'001), "publicSources", entries},
      {fileWith(records, record, 20'000), fileWith(records, record, 20'001), "records", entries},
      {textOf(ids, R"("#")", 8000), textOf(ids, R"("#")", 8001), "localSnapshotIDs[0]", bytes},
      {textOf(sources, R"("#":"u")", 8000), textOf(sources, R"("#":"u")", 8001), "publicSources",
       "Expected identifiers of at most 8000 bytes."},
      {textOf(sources, R"("i":"#")", 8000), textOf(sources, R"("i":"#")", 8001), "publicSources.i", bytes},
      {textOf(records, record, 2000), textOf(records, record, 2001), "records[0].label",
       "Expected at most 2000 characters."}};
  for (const auto& [file, beyond, path, message] : rows) {
    EXPECT_NO_THROW(researchSourceScopeFromJson(file)) << path;
    try {
      researchSourceScopeFromJson(beyond);
      ADD_FAILURE() << path;
    } catch (const DecodingError& error) {
      EXPECT_EQ(error.path() + ": " + error.message(), path + ": " + message);
    }
  }
}

TEST(ResearchSourceScope, RefusesAFileOfAnotherShape) {
  for (const auto& [from, to, path] : cases<3>(R"(
      "publicPage" | "page" => records[1].kind ; "publicSources" | "sources" =>
      2024-02-29T23:30:00.9-01:30 | 2024-02-29T23:30:00 => records[0].observedAt
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
