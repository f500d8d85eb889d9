#include "DocumentRuntime/Research/ResearchSourceScope.hpp"

#include <algorithm>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/SourceReferences.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

bool hasRepeats(std::vector<std::string> texts) {
  std::sort(texts.begin(), texts.end());
  return std::adjacent_find(texts.begin(), texts.end()) != texts.end();
}

}  // namespace

ResearchSourceScope::ResearchSourceScope(const std::vector<std::string>& localSnapshotIDs,
                                         std::map<std::string, std::string> publicSources,
                                         std::vector<Record> records)
    : localSnapshotIDs_(localSnapshotIDs.begin(), localSnapshotIDs.end()),
      publicSources_(std::move(publicSources)),
      records_(std::move(records)) {
  for (std::size_t i = 0; i < records_.size(); ++i) {
    recordByID_.try_emplace(records_[i].id, i);
    if (records_[i].provenanceURL) recordByURL_.try_emplace(*records_[i].provenanceURL, i);
  }
  for (const auto& [id, url] : publicSources_) {
    const auto [found, isNew] = publicIDByURL_.try_emplace(url, id);
    if (!isNew && Unicode::sortsBefore(id, found->second)) found->second = id;
  }
}

void ResearchSourceScope::validate(const std::optional<std::vector<std::string>>& ids,
                                   const std::vector<std::string>& urls, bool requiresEvidence) const {
  const std::vector<std::string> cited = ids.value_or(std::vector<std::string>());
  const bool isScopeEmpty = localSnapshotIDs_.empty() && publicSources_.empty();
  const bool lacksEvidence = requiresEvidence && cited.empty() && urls.empty() && !isScopeEmpty;
  if (lacksEvidence || !holds(cited, urls)) {
    throw DocumentError::validationFailed(
        "Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public "
        "URL.");
  }
}

bool ResearchSourceScope::holds(const std::vector<std::string>& ids,
                                const std::vector<std::string>& urls) const {
  if (ids.size() > SourceReferences::maximumPerRow || hasRepeats(ids)) return false;
  const bool idsHold = std::ranges::all_of(ids, [this](const std::string& id) {
    return SourceReferences::isIdentifier(id) &&
           (localSnapshotIDs_.contains(id) || publicSources_.contains(id));
  });
  return idsHold &&
         std::ranges::all_of(urls, [this](const std::string& url) { return publicIDByURL_.contains(url); });
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

const std::string* ResearchSourceScope::identifierOf(const std::string& url) const {
  if (const auto found = recordByURL_.find(url); found != recordByURL_.end())
    return &records_[found->second].id;
  if (const auto found = publicIDByURL_.find(url); found != publicIDByURL_.end()) return &found->second;
  return nullptr;
}

std::optional<ResearchSourceScope::Record> ResearchSourceScope::recordOf(const std::string& id) const {
  if (const auto found = recordByID_.find(id); found != recordByID_.end()) return records_[found->second];
  if (localSnapshotIDs_.contains(id)) {
    return Record{.id = id,
                  .kind = Record::Kind::localSnapshot,
                  .label = "Visible source",
                  .observedAt = {},
                  .coverage = "Partial visible excerpt; capture metadata unavailable",
                  .provenanceURL = {}};
  }
  if (const auto found = publicSources_.find(id); found != publicSources_.end()) {
    return Record{.id = id,
                  .kind = Record::Kind::publicURL,
                  .label = "Public reference",
                  .observedAt = {},
                  .coverage = "Returned public URL; coverage metadata unavailable",
                  .provenanceURL = found->second};
  }
  return std::nullopt;
}

}  // namespace zelvo
