#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"

#include <charconv>
#include <utility>

#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Research/Provenance/HostFileLimits.hpp"

namespace zelvo {
namespace {

/// Of each list. A dataset cites at most 4,000 identifiers and as many URLs.
constexpr std::size_t maximumEntries = 20'000;

/// The number that the text has there, which is known to be digits.
int digitsAt(std::string_view text, std::size_t position, std::size_t count) {
  int number = 0;
  std::from_chars(text.data() + position, text.data() + position + count, number);
  return number;
}

/// The instant of a text that `isoDateTime` accepts: the places of its digits are fixed, those of the zone
/// from the end.
std::chrono::sys_seconds instantOf(std::string_view text) {
  const std::chrono::year_month_day date(std::chrono::year(digitsAt(text, 0, 4)),
                                         std::chrono::month(static_cast<unsigned>(digitsAt(text, 5, 2))),
                                         std::chrono::day(static_cast<unsigned>(digitsAt(text, 8, 2))));
  std::chrono::sys_seconds instant = std::chrono::sys_days(date);
  instant += std::chrono::hours(digitsAt(text, 11, 2)) + std::chrono::minutes(digitsAt(text, 14, 2)) +
             std::chrono::seconds(digitsAt(text, 17, 2));
  if (text.ends_with('Z')) return instant;
  const std::string_view zone = text.substr(text.size() - 6);
  const auto offset = std::chrono::hours(digitsAt(zone, 1, 2)) + std::chrono::minutes(digitsAt(zone, 4, 2));
  return zone.front() == '+' ? instant - offset : instant + offset;
}

std::chrono::sys_seconds decodedInstant(JsonValue value) {
  const std::string_view text = value.string();
  if (!SerialDate::isoDateTime(text)) value.fail("Expected an ISO 8601 date and time.");
  return instantOf(text);
}

std::map<std::string, std::string> decodedPublicSources(JsonObject object) {
  std::map<std::string, std::string> sources;
  for (const auto& [id, url] : object) {
    // Not with the entry's path, which holds the identifier.
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
