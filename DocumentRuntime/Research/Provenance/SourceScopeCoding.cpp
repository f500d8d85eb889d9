#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"

#include <utility>

#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Research/Provenance/HostFileLimits.hpp"

namespace zelvo {
namespace {

/// The limit of each list. A dataset cites at most 4,000 identifiers and as many URLs.
constexpr std::size_t maximumEntries = 20'000;

std::chrono::sys_seconds decodedInstant(JsonValue value) {
  const auto instant = SerialDate::parseISODateTime(value.string());
  if (!instant) value.fail("Expected an ISO 8601 date and time.");
  return *instant;
}

std::map<std::string, std::string> decodedPublicSources(JsonObject object) {
  std::map<std::string, std::string> sources;
  for (const auto& [id, url] : object) {
    // Not with the entry's path, which would contain the identifier.
    if (id.size() > HostFileLimits::maximumTextBytes) {
      object.fail("Expected identifiers of at most " + std::to_string(HostFileLimits::maximumTextBytes) +
                  " bytes.");
    }
    HostFileLimits::checkText(url);
    sources.insert_or_assign(std::string(id), std::string(url.string()));
    if (sources.size() > maximumEntries)
      object.fail("Expected at most " + std::to_string(maximumEntries) + " entries.");
  }
  return sources;
}

std::vector<std::string> decodedIdentifiers(JsonValue value) {
  for (const JsonValue id : HostFileLimits::array(value, maximumEntries))
    HostFileLimits::checkText(id);
  std::vector<std::string> identifiers;
  decode(value, identifiers);
  return identifiers;
}

}  // namespace

void decode(JsonValue value, ResearchSourceScope::Record& record) {
  const JsonObject object = value.object();
  const FieldDecoder field(object);
  field("id", record.id);
  const JsonValue kind = object.required("kind");
  const auto knownKind = evidenceKind(kind.string());
  if (!knownKind) kind.fail("Unknown value.");
  record.kind = *knownKind;
  field("label", record.label);
  if (const auto observedAt = object.optional("observedAt")) record.observedAt = decodedInstant(*observedAt);
  field("coverage", record.coverage);
  field("provenanceURL", record.provenanceURL);

  HostFileLimits::checkText(object.required("id"));
  HostFileLimits::checkCellText(object.required("label"));
  HostFileLimits::checkCellText(object.required("coverage"));
  if (const auto url = object.optional("provenanceURL")) HostFileLimits::checkText(*url);
}

ResearchSourceScope researchSourceScopeFromJson(std::string text) {
  const JsonDocument document(std::move(text));
  const JsonObject object = document.root().object();
  std::vector<std::string> localSnapshotIDs = decodedIdentifiers(object.required("localSnapshotIDs"));
  const JsonValue list = object.required("records");
  HostFileLimits::array(list, maximumEntries);
  std::vector<ResearchSourceScope::Record> records;
  decode(list, records);
  return {std::move(localSnapshotIDs), decodedPublicSources(object.required("publicSources").object()),
          std::move(records)};
}

}  // namespace zelvo
