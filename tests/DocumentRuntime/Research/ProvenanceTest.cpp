// Owns what a result may cite: the rules of a scope, its records, and its file.

#include <cctype>
#include <ctime>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

const std::string scopeJson =
    R"({"localSnapshotIDs":["local-1","local-2","local-2","a","b","c","d","e","f","g","LONG","LONGx"],)"
    R"("publicSources":{"web.2":"https://w/shared","web.1":"https://w/shared","web.3":"https://w/3","é":"https://w/é"},)"
    R"("records":[)"
    R"({"id":"local-1","kind":"localSnapshot","label":"Page","observedAt":"2024-02-29T23:30:00.9-01:30",)"
    R"("coverage":"Half","provenanceURL":"https://l/1"},)"
    R"({"id":"web.3","kind":"publicPage","label":"First","coverage":"All","provenanceURL":"https://w/3"},)"
    R"({"id":"web.3","kind":"publicSearch","label":"Second","coverage":"All"},)"
    R"({"id":"shadow","kind":"publicURL","label":"Shadow","coverage":"All","provenanceURL":"https://w/3"}]})";

/// Words, of which LONG is as long as an identifier may be.
std::vector<std::string> list(const std::string& text) {
  return words(std::regex_replace(text, std::regex("LONG"), std::string(160, 'x')));
}

ResearchSourceScope scope() {
  return researchSourceScopeFromJson(
      std::regex_replace(scopeJson, std::regex("LONG"), std::string(160, 'x')));
}

TEST(ResearchSourceScope, ChecksReferences) {
  const auto outcome = [](const ResearchSourceScope& scope, const auto& ids, const auto& urls, bool needed) {
    return outcomeOf([&] { scope.validate(ids, urls, needed); });
  };
  const Outcome refused =
      "validationFailed: Use exact trusted local snapshot IDs or accepted public evidence; local evidence "
      "needs no public URL.";
  // A record alone ("shadow") permits nothing, neither does a local record its URL.
  for (const auto& [ids, urls, holds] : cases<3>(R"(
      local-1 web.1 | | yes ; | https://w/3 | yes ; | https://w/3 https://w/3 | yes ; local-1 local-1 | | no
      a b c d e f g local-1 | | yes ; a b c d e f g local-1 local-2 | | no ; LONG | | yes ; LONGx | | no
      é | | no ; shadow | | no ; | https://W/3 | no ; local-1 | https://l/1 | no ; | | no ; a | https://w/4 | no)"))
    EXPECT_EQ(outcome(scope(), list(ids), list(urls), true), holds == "yes" ? "" : refused) << ids << urls;
  const std::vector<std::string> none;
  EXPECT_EQ(outcome(scope(), none, none, false), "") << "evidence is not required";
  EXPECT_EQ(outcome({{}, {}, {}}, none, none, true), "") << "no evidence exists";
  for (int c = 0; c < 256; ++c) {
    const std::vector<std::string> id = {std::string(1, static_cast<char>(c))};
    const bool isIdentifier = (c < 128 && std::isalnum(c)) || c == '-' || c == '.' || c == '_';
    EXPECT_EQ(outcome({id, {}, {}}, id, none, true), isIdentifier ? "" : refused) << c;
  }
}

TEST(ResearchSourceScope, SelectsAndDescribesRecords) {
  const auto described = [](const std::vector<std::string>& ids, const std::vector<std::string>& urls) {
    std::string lines;
    for (const auto& record : scope().selectedRecords(ids, urls))
      lines += record.metadata() + " (" + std::string(record.kindLabel()) + ")\n";
    return lines;
  };
  // The record of a URL is preferred to the public source, under the record's own identifier.
  const std::string page =
      "web.3 | publicPage | First | Not recorded | All | https://w/3 (Public page excerpt)\n";
  EXPECT_EQ(described({"unknown"}, {"https://unknown"}), "");
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
}

TEST(ResearchSourceScope, BoundsItsFile) {
  // Of two members with the same name, the last counts.
  const std::string start = R"({"localSnapshotIDs":[],"publicSources":{},"records":[],)";
  for (const auto& [member, last, error] :
       cases<3>(R"(
      "localSnapshotIDs":[#"i"#]   | 20000 | localSnapshotIDs: Expected at most 20000 entries.
      "publicSources":{#"%":"u"#}  | 20000 | publicSources: Expected at most 20000 entries.
      "records":[#{"id":"i","kind":"publicURL","coverage":"","label":""}#] | 20000 | )"
                R"(records: Expected at most 20000 entries.
      "localSnapshotIDs":["#t#"]   | 8000  | localSnapshotIDs[0]: Expected at most 8000 bytes.
      "publicSources":{"#t#":"u"}  | 8000  | publicSources: Expected identifiers of at most 8000 bytes.
      "records":[{"id":"i","kind":"publicURL","coverage":"","label":"#t#"}] | 2000 | )"
                R"(records[0].label: Expected at most 2000 characters.
      "records":[{"id":"i","kind":"publicURL","label":"","coverage":"","provenanceURL":"#t#"}] | 8000 | )"
                R"(records[0].provenanceURL: Expected at most 8000 bytes.)"))
    EXPECT_EQ(errorsAtBound(start + member + "}", last, researchSourceScopeFromJson), error);
}

}  // namespace
}  // namespace zelvo
