#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* scopedSources =
    "Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public URL.";

}  // namespace RefusalDetail

/// The URLs that a result may cite. Nullopt allows every URL, an empty list none.
using AllowedSources = std::optional<std::vector<std::string>>;

/// The evidence that a research result may cite, as stated by the host, never by the model. Local snapshots
/// are cited by identifier alone; public sources by identifier or URL.
class ResearchSourceScope {
 public:
  /// A description of one piece of evidence. Texts are valid UTF-8.
  struct Record {
    enum class Kind { localSnapshot, publicSearch, publicPage, publicURL };

    std::string id;
    Kind kind = Kind::localSnapshot;
    std::string label;
    std::optional<std::chrono::sys_seconds> observedAt;
    std::string coverage;  ///< how much of the source the evidence covers
    std::optional<std::string> provenanceURL;

    /// The human-readable kind: "Local visible excerpt".
    std::string_view kindLabel() const;
    /// "2024-02-29T12:00:00Z", or "Not recorded".
    std::string observedUTC() const;
    /// Identifier, kind, label, observation, coverage and URL in one line, joined with " | ".
    std::string metadata() const;

    bool operator==(const Record&) const = default;
  };

  /// `publicSources` maps identifiers to URLs.
  ResearchSourceScope(std::vector<std::string> localSnapshotIDs,
                      std::map<std::string, std::string> publicSources, std::vector<Record> records);

  /// Checks the references of one row or slide. Throws `DocumentError` validationFailed, always with the same
  /// message, for a reference outside the scope, a malformed or repeated one, and, if evidence is required
  /// and the scope is not empty, for no reference at all.
  void validate(const std::optional<std::vector<std::string>>& ids, const std::vector<std::string>& urls,
                bool requiresEvidence) const;

  /// The records of these references, in ascending order of their identifiers, each once. A reference without
  /// a record of the host gets one with default texts. References outside the scope are ignored.
  std::vector<Record> selectedRecords(const std::vector<std::string>& ids,
                                      const std::vector<std::string>& urls) const;

 private:
  struct PublicSource {
    std::string id;
    std::string url;
  };

  bool holds(const std::vector<std::string>& ids, const std::vector<std::string>& urls) const;
  const PublicSource* publicSource(std::string_view id) const;
  const std::string* identifierOf(std::string_view url) const;
  std::optional<Record> recordOf(const std::string& id) const;
  void indexPublicSources();

  // Every text is stored once; the indexes hold positions in these lists.
  std::vector<std::string> localSnapshotIDs_;  ///< ascending, each once
  std::vector<PublicSource> publicSources_;    ///< ascending by identifier
  std::vector<Record> records_;                ///< in the host's order
  /// One for each URL, ascending by URL: of its public sources the one whose identifier sorts first.
  std::vector<std::size_t> publicSourceByURL_;
  std::vector<std::size_t> recordByID_;   ///< ascending by identifier, then by position
  std::vector<std::size_t> recordByURL_;  ///< of the records with a URL, ascending by URL, then by position
};

/// The name of a kind in JSON and metadata.
std::string_view rawValue(ResearchSourceScope::Record::Kind kind);
std::optional<ResearchSourceScope::Record::Kind> evidenceKind(std::string_view rawValue);

}  // namespace zelvo
