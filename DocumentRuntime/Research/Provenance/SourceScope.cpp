#include "DocumentRuntime/Research/Provenance/SourceScope.hpp"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Provenance/SourceReferences.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using Record = ResearchSourceScope::Record;

struct KindTexts {
  std::string_view rawValue;
  std::string_view label;
};

constexpr std::array<KindTexts, 4> kindTexts = {{
    {"localSnapshot", "Local visible excerpt"},
    {"publicSearch", "Public search snippet"},
    {"publicPage", "Public page excerpt"},
    {"publicURL", "Public source URL"},
}};

const KindTexts& textsOf(Record::Kind kind) {
  return kindTexts[static_cast<std::size_t>(kind)];
}

std::string urlPart(const Record& record) {
  if (!record.provenanceURL) return "No URL";
  // A local excerpt does not permit fetching its page.
  const bool isLocal = record.kind == Record::Kind::localSnapshot;
  return (isLocal ? "Provenance only: " : "") + *record.provenanceURL;
}

bool hasRepeats(std::vector<std::string> texts) {
  std::sort(texts.begin(), texts.end());
  return std::adjacent_find(texts.begin(), texts.end()) != texts.end();
}

/// The positions below `count`, sorted by `textOf(position)`, then by position.
template <typename TextOf>
std::vector<std::size_t> sortedPositions(std::size_t count, const TextOf& textOf) {
  std::vector<std::size_t> positions(count);
  std::iota(positions.begin(), positions.end(), std::size_t{0});
  std::ranges::stable_sort(positions, {}, textOf);
  return positions;
}

/// The first of the sorted positions with that text.
template <typename TextOf>
std::optional<std::size_t> firstPosition(const std::vector<std::size_t>& positions, std::string_view text,
                                         const TextOf& textOf) {
  const auto found = std::ranges::lower_bound(positions, text, {}, textOf);
  if (found == positions.end() || textOf(*found) != text) return std::nullopt;
  return *found;
}

/// A view of one text of a list's elements, by position.
template <typename List, typename Text>
auto textIn(const List& list, Text text) {
  return [&list, text](std::size_t position) { return std::string_view(list[position].*text); };
}

auto urlIn(const std::vector<ResearchSourceScope::Record>& records) {
  return [&records](std::size_t position) { return std::string_view(*records[position].provenanceURL); };
}

}  // namespace

ResearchSourceScope::ResearchSourceScope(std::vector<std::string> localSnapshotIDs,
                                         std::map<std::string, std::string> publicSources,
                                         std::vector<Record> records)
    : localSnapshotIDs_(std::move(localSnapshotIDs)), records_(std::move(records)) {
  std::sort(localSnapshotIDs_.begin(), localSnapshotIDs_.end());
  localSnapshotIDs_.erase(std::unique(localSnapshotIDs_.begin(), localSnapshotIDs_.end()),
                          localSnapshotIDs_.end());

  publicSources_.reserve(publicSources.size());
  while (!publicSources.empty()) {
    auto source = publicSources.extract(publicSources.begin());
    publicSources_.push_back({std::move(source.key()), std::move(source.mapped())});
  }
  indexPublicSources();

  recordByID_ = sortedPositions(records_.size(), textIn(records_, &Record::id));
  for (std::size_t i = 0; i < records_.size(); ++i) {
    if (records_[i].provenanceURL) recordByURL_.push_back(i);
  }
  std::ranges::stable_sort(recordByURL_, {}, urlIn(records_));
}

/// Many identifiers may have one URL. Each is composed once; `Unicode::sortsBefore` would compose a long one
/// again for each comparison.
void ResearchSourceScope::indexPublicSources() {
  const auto positions = sortedPositions(publicSources_.size(), textIn(publicSources_, &PublicSource::url));
  std::string first;  // the composed identifier of the last position in the index
  for (const std::size_t position : positions) {
    const auto& [id, url] = publicSources_[position];
    std::string composed = Unicode::composed(id);
    const bool isNewURL = publicSourceByURL_.empty() || publicSources_[publicSourceByURL_.back()].url != url;
    if (!isNewURL && composed >= first) continue;
    if (isNewURL) publicSourceByURL_.emplace_back();
    publicSourceByURL_.back() = position;
    first = std::move(composed);
  }
}

void ResearchSourceScope::validate(const std::optional<std::vector<std::string>>& ids,
                                   const std::vector<std::string>& urls, bool requiresEvidence) const {
  const std::vector<std::string> cited = ids.value_or(std::vector<std::string>());
  const bool isScopeEmpty = localSnapshotIDs_.empty() && publicSources_.empty();
  const bool lacksEvidence = requiresEvidence && cited.empty() && urls.empty() && !isScopeEmpty;
  if (lacksEvidence || !holds(cited, urls)) {
    throw DocumentError::validationFailed(RefusalDetail::scopedSources);
  }
}

bool ResearchSourceScope::holds(const std::vector<std::string>& ids,
                                const std::vector<std::string>& urls) const {
  if (ids.size() > SourceReferences::maximumPerRow || hasRepeats(ids)) return false;
  const bool idsHold = std::ranges::all_of(ids, [this](const std::string& id) {
    return SourceReferences::isIdentifier(id) &&
           (std::ranges::binary_search(localSnapshotIDs_, id) || publicSource(id) != nullptr);
  });
  const auto urlOf = textIn(publicSources_, &PublicSource::url);
  return idsHold && std::ranges::all_of(urls, [&](const std::string& url) {
           return firstPosition(publicSourceByURL_, url, urlOf).has_value();
         });
}

std::vector<ResearchSourceScope::Record> ResearchSourceScope::selectedRecords(
    const std::vector<std::string>& ids, const std::vector<std::string>& urls) const {
  std::vector<std::string> gathered = ids;
  for (const std::string& url : urls) {
    if (const std::string* id = identifierOf(url)) gathered.push_back(*id);
  }
  std::vector<Record> selected;
  for (const std::string& id : SourceReferences::distinctSorted(std::move(gathered))) {
    if (auto record = recordOf(id)) selected.push_back(*std::move(record));
  }
  return selected;
}

const ResearchSourceScope::PublicSource* ResearchSourceScope::publicSource(std::string_view id) const {
  const auto found = std::ranges::lower_bound(publicSources_, id, {}, &PublicSource::id);
  return found != publicSources_.end() && found->id == id ? &*found : nullptr;
}

const std::string* ResearchSourceScope::identifierOf(std::string_view url) const {
  if (const auto record = firstPosition(recordByURL_, url, urlIn(records_))) return &records_[*record].id;
  const auto source = firstPosition(publicSourceByURL_, url, textIn(publicSources_, &PublicSource::url));
  return source ? &publicSources_[*source].id : nullptr;
}

std::optional<ResearchSourceScope::Record> ResearchSourceScope::recordOf(const std::string& id) const {
  if (const auto record = firstPosition(recordByID_, id, textIn(records_, &Record::id)))
    return records_[*record];
  if (std::ranges::binary_search(localSnapshotIDs_, id)) {
    return Record{.id = id,
                  .kind = Record::Kind::localSnapshot,
                  .label = "Visible source",
                  .observedAt = {},
                  .coverage = "Partial visible excerpt; capture metadata unavailable",
                  .provenanceURL = {}};
  }
  if (const PublicSource* source = publicSource(id)) {
    return Record{.id = id,
                  .kind = Record::Kind::publicURL,
                  .label = "Public reference",
                  .observedAt = {},
                  .coverage = "Returned public URL; coverage metadata unavailable",
                  .provenanceURL = source->url};
  }
  return std::nullopt;
}

std::string_view rawValue(Record::Kind kind) {
  return textsOf(kind).rawValue;
}

std::optional<Record::Kind> evidenceKind(std::string_view rawValue) {
  for (std::size_t i = 0; i < kindTexts.size(); ++i) {
    if (kindTexts[i].rawValue == rawValue) return static_cast<Record::Kind>(i);
  }
  return std::nullopt;
}

std::string_view Record::kindLabel() const {
  return textsOf(kind).label;
}

std::string Record::observedUTC() const {
  return observedAt ? SerialDate::isoDateTimeText(*observedAt) : "Not recorded";
}

std::string Record::metadata() const {
  constexpr std::string_view separator = " | ";
  std::string text = id;
  text.append(separator).append(rawValue(kind));
  text.append(separator).append(label);
  text.append(separator).append(observedUTC());
  text.append(separator).append(coverage);
  text.append(separator).append(urlPart(*this));
  return text;
}

}  // namespace zelvo
